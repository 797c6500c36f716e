// Polyline clipping: visible pieces against an exact model, borders, touches, exact crossings.
#include <algorithm>
#include <cmath>
#include <random>

#include "points.h"

namespace {

using Pieces = std::vector<Pts>;
using Floats = std::vector<float>;

struct Window {
    gu_coord_t xmin, ymin, xmax, ymax;
};

// Collects a piece of n points (a vector of T: points, or x, y pairs).
template <class T> void collect(int n, T* p, void* user)
{
    static_cast<std::vector<std::vector<T>>*>(user)->emplace_back(p, p + n * sizeof(gu_point_t) / sizeof(T));
}

Pieces clip_l(const Pts& line, Window w)
{
    Pieces got;
    gu_clip_polyline_l(int(line.size()), line.data(), w.xmin, w.ymin, w.xmax, w.ymax, collect<gu_point_t>,
                       &got);
    return got;
}

std::vector<Floats> clip_r(const Floats& xy, float xmin, float ymin, float xmax, float ymax)
{
    std::vector<Floats> got;
    gu_clip_polyline_r(int(xy.size() / 2), xy.data(), xmin, ymin, xmax, ymax, collect<float>, &got);
    return got;
}

// The model, for small coordinates: each segment's visible parameters [lo, hi] as exact fractions,
// from the x and y ranges separately. A range ending at 1 goes on into one starting at 0 on the next
// segment; a piece lists its start, then every range's end (a range of one point adds nothing).
struct Q {
    long long n, d; // d > 0
    bool operator<(Q o) const { return n * o.d < o.n * d; }
};

// Narrows [lo, hi] to the parameters where a + t d lies in [min, max]; false if a constant a does not.
bool narrow(long long a, long long d, long long min, long long max, Q* lo, Q* hi)
{
    if (d == 0)
        return a >= min && a <= max;
    const Q u = d > 0 ? Q{min - a, d} : Q{a - max, -d}, v = d > 0 ? Q{max - a, d} : Q{a - min, -d};
    *lo = std::max(*lo, u);
    *hi = std::min(*hi, v);
    return true;
}

gu_point_t at(gu_point_t a, gu_point_t b, Q t) // the quotient is exact on halves: round() goes away from 0
{
    return {gu_coord_t(std::round(double(a.x * t.d + t.n * (b.x - a.x)) / t.d)),
            gu_coord_t(std::round(double(a.y * t.d + t.n * (b.y - a.y)) / t.d))};
}

Pieces model(const Pts& line, Window w)
{
    Pieces pieces(1);
    bool open = false; // the previous segment's range ended at 1
    for (size_t i = 0; i + 1 < line.size(); ++i) {
        const gu_point_t a = line[i], b = line[i + 1];
        Q lo = {0, 1}, hi = {1, 1};
        const bool seen = narrow(a.x, b.x - a.x, w.xmin, w.xmax, &lo, &hi) &&
                          narrow(a.y, b.y - a.y, w.ymin, w.ymax, &lo, &hi) && !(hi < lo);
        if (!(seen && open && lo.n == 0)) { // a new piece
            if (pieces.back().size() > 1)
                pieces.emplace_back();
            pieces.back().clear();
        }
        if (seen && pieces.back().empty())
            pieces.back().push_back(at(a, b, lo));
        if (seen && lo < hi)
            pieces.back().push_back(at(a, b, hi));
        open = seen && hi.n == hi.d;
    }
    if (pieces.back().size() < 2)
        pieces.pop_back();
    return pieces;
}

} // namespace

TEST(ClipTest, PiecesMatchTheModelAndExactRows)
{
    // A coarse grid, so that points fall on the borders, segments run along them and windows collapse.
    std::mt19937 rng(20240607);
    const auto coord = [&](int lo, int hi) { return std::uniform_int_distribution<int>(lo, hi)(rng); };
    for (int round = 0; round < 4000; ++round) {
        Window w = {coord(-8, 2), coord(-8, 2), 0, 0};
        w.xmax = w.xmin + coord(0, 10);
        w.ymax = w.ymin + coord(0, 10);
        Pts line(coord(1, 12));
        Floats xy;
        for (gu_point_t& p : line) {
            p = {coord(-14, 14), coord(-14, 14)};
            xy.insert(xy.end(), {float(p.x), float(p.y)});
        }
        SCOPED_TRACE(testing::Message() << "round " << round);
        const Pieces want = model(line, w), got = clip_l(line, w);
        ASSERT_EQ(got, want);

        // The float form sees the same pieces, its crossings the exact ones up to float rounding.
        const auto fgot = clip_r(xy, float(w.xmin), float(w.ymin), float(w.xmax), float(w.ymax));
        ASSERT_EQ(fgot.size(), want.size());
        for (size_t i = 0; i < want.size(); ++i) {
            ASSERT_EQ(fgot[i].size(), 2 * want[i].size());
            for (size_t j = 0; j < want[i].size(); ++j)
                ASSERT_TRUE(std::fabs(fgot[i][2 * j] - want[i][j].x) <= 0.5f &&
                            std::fabs(fgot[i][2 * j + 1] - want[i][j].y) <= 0.5f);
        }
    }

    // Rows the model cannot check: large coordinates, and the float form.
    const struct { const char* name; Pts line; Window w; Pieces want; } rows[] = {
        // exactly 0.49999999988: a double computation of the crossing gives 0.5 and rounds to 1
        {"exact crossing across the whole range", {{kMin, -1942668281}, {2147272119, 1470646349}},
         {296851759, -10, 296851769, 10}, {{{296851759, 0}, {296851769, 8}}}},
        {"limits as the window", {{kMin, 0}, {kMax, 0}}, {kMin, 0, kMax, 0}, {{{kMin, 0}, {kMax, 0}}}}};
    for (const auto& row : rows)
        EXPECT_EQ(clip_l(row.line, row.w), row.want) << row.name;

    const struct { const char* name; Floats xy; float xmax; std::vector<Floats> want; } frows[] = {
        // the crossing 0.1 + 0.2 * 0.5 is computed in double, then narrowed
        {"fractional crossing", {-0.5f, 0.1f, 0.5f, 0.3f}, 1, {{0, 0.2f, 0.5f, 0.3f}}},
        {"NaN window", {1, 1, 5, 5}, std::nanf(""), {}},
        {"NaN point", {1, 1, std::nanf(""), 5, 5, 5, 6, 6}, 10, {{5, 5, 6, 6}}}};
    for (const auto& row : frows)
        EXPECT_EQ(clip_r(row.xy, 0, 0, row.xmax, 10), row.want) << row.name;
}
