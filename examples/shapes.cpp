// Engineering numbers, formatting and polygon decomposition: a U-shaped outline given in text with
// unit suffixes is cut into rectangles and trapezoids and printed with printf-style directives.
#include <tevbase.h>

#include <iostream>

namespace {

// "x y" pairs with engineering suffixes, e.g. "1.5K 0" (1500, 0).
int ParsePoints(const char* const* texts, int n, gu_point_t* out)
{
    for (int i = 0; i < n; ++i) {
        double x, y;
        const char* s = texts[i];
        const int used = str_todouble(s, &x);
        if (used == 0 || str_todouble(s + used, &y) == 0)
            return i;
        out[i].x = mth_round(x);
        out[i].y = mth_round(y);
    }
    return n;
}

} // namespace

int main()
{
    const char* const outline[] = {"0 0", "3K 0", "3K 2K", "2K 2K", "2K 1K", "1K 1K", "1K 2K", "0 2K"};
    const int n = sizeof outline / sizeof outline[0];
    gu_point_t pts[n];
    if (ParsePoints(outline, n, pts) != n) {
        std::cerr << "bad outline\n";
        return 1;
    }
    StrFmt(std::cout, "U shape: %d points, area %.0f, %s\n", long{n}, gu_polygon_area(n, pts),
           gu_polygon_orientationi(n, pts) > 0 ? "counter-clockwise" : "clockwise");

    TVarr<gu_rect_t> rects;
    const unsigned nrects = gu_polygon_to_rects(sizeof(gu_point_t), n, pts, rects);
    StrFmt(std::cout, "%u rectangles:\n", static_cast<long>(nrects));
    for (unsigned i = 0; i < nrects; ++i) {
        const gu_rect_t& r = rects[static_cast<int>(i)];
        StrFmt(std::cout, "  (%5d %5d) .. (%5d %5d)\n", long{r.xmin}, long{r.ymin}, long{r.xmax}, long{r.ymax});
    }

    // A slanted roof on the same footprint gives trapezoids.
    const gu_point_t house[] = {{0, 0}, {3000, 0}, {3000, 2000}, {1500, 3000}, {0, 2000}};
    TVarr<gu_trapezoid_t> traps;
    const unsigned ntraps = gu_polygon_to_trapezoids(sizeof(gu_point_t), 5, house, traps);
    StrFmt(std::cout, "house: %u trapezoids\n", static_cast<long>(ntraps));
    for (unsigned i = 0; i < ntraps; ++i) {
        const gu_trapezoid_t& t = traps[static_cast<int>(i)];
        StrFmt(std::cout, "  y %4d..%-4d  bottom %4d..%-4d  top %4d..%d\n", long{t.ybot}, long{t.ytop},
               long{t.xbl}, long{t.xbr}, long{t.xtl}, long{t.xtr});
    }

    char buf[32];
    StrFmt(std::cout, "scaled: 4700 is %s, 0.0000022 is %s\n", str_tosc_r(buf, 4700.0),
           str_tosc(0.0000022));
    return 0;
}
