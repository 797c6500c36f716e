// The stroke font's glyph and marker tables, built at compile time from readable outlines.
#include <tevbase/stroke.h>

#include <array>

namespace {

// Outlines: strokes separated by '/', points "x,y" separated by spaces, one polyline per pen-down
// run. Glyphs are drawn in sevenths of the cell (halves allowed): x 0..5, y 0..7, descenders of
// , ; g j p q y down to -3, lower case with x-height 5. Capitals are square-shouldered, rounds
// octagonal with corners cut by one seventh ('O' by one and a half, to tell it from '0').
// A glyph that one run can draw is one polyline, retracing a stretch where it must, as 'A' and
// 'I' do. Crossing lines that one run could only draw by retracing ('#', '$', '*', 'Q', 'X', 'f',
// 't', 'x', like '+') are separate strokes, and so are the stems of 'Y' and 'y', which one run
// would retrace whole. 120 strokes in all. The space is one stroke without points.
constexpr const char* kGlyphOutlines[95] = {
    /*   */ "",
    /* ! */ "2.5,7 2.5,2 / 2.5,1 1.5,0 3.5,0 2.5,1",
    /* " */ "1.5,7 1.5,5 / 3.5,7 3.5,5",
    /* # */ "1.5,0.5 1.5,6.5 / 3.5,0.5 3.5,6.5 / 0,2 5,2 / 0,5 5,5",
    /* $ */ "5,5 4,6 1,6 0,5 0,4.5 1,3.5 4,3.5 5,2.5 5,2 4,1 1,1 0,2 / 2.5,7 2.5,0",
    /* % */ "0,7 1.5,7 1.5,5.5 0,5.5 0,7 / 0,0 5,7 / 3.5,1.5 5,1.5 5,0 3.5,0 3.5,1.5",
    /* & */ "5,0 1,5 1,6 2,7 3,7 4,6 4,5 0,2 0,1 1,0 3,0 5,2.5",
    /* ' */ "2.5,7 2.5,5",
    /* ( */ "3.5,7 1.5,5 1.5,2 3.5,0",
    /* ) */ "1.5,7 3.5,5 3.5,2 1.5,0",
    /* * */ "2.5,6 2.5,1 / 0.5,4.5 4.5,2.5 / 0.5,2.5 4.5,4.5",
    /* + */ "1,3 4,3 / 2.5,1.5 2.5,4.5",
    /* , */ "3.5,0 2.5,1 1.5,0 3.5,0 3.5,-1 2,-3",
    /* - */ "1,3 4,3",
    /* . */ "2.5,1 1.5,0 3.5,0 2.5,1",
    /* / */ "0,0 5,7",
    /* 0 */ "0,1 0,6 1,7 4,7 5,6 5,1 4,0 1,0 0,1 / 0,0 5,7",
    /* 1 */ "1,5.5 2.5,7 2.5,0 1,0 4,0",
    /* 2 */ "0,6 1,7 4,7 5,6 5,4 0,1 0,0 5,0",
    /* 3 */ "0,6 1,7 4,7 5,6 5,4.5 4,3.5 2,3.5 4,3.5 5,2.5 5,1 4,0 1,0 0,1",
    /* 4 */ "3.5,0 3.5,7 0,2 5,2",
    /* 5 */ "5,7 0,7 0,4 4,4 5,3 5,1 4,0 1,0 0,1",
    /* 6 */ "5,6 4,7 1,7 0,6 0,1 1,0 4,0 5,1 5,3 4,4 0,4",
    /* 7 */ "0,7 5,7 5,6 2,2 2,0",
    /* 8 */ "1,3.5 0,4.5 0,6 1,7 4,7 5,6 5,4.5 4,3.5 1,3.5 0,2.5 0,1 1,0 4,0 5,1 5,2.5 4,3.5",
    /* 9 */ "0,1 1,0 4,0 5,1 5,6 4,7 1,7 0,6 0,4 1,3 5,3",
    /* : */ "2.5,1 1.5,0 3.5,0 2.5,1 / 2.5,5 1.5,4 3.5,4 2.5,5",
    /* ; */ "2.5,5 1.5,4 3.5,4 2.5,5 / 3.5,0 2.5,1 1.5,0 3.5,0 3.5,-1 2,-3",
    /* < */ "5,6 0,3 5,0",
    /* = */ "0,2 5,2 / 0,4 5,4",
    /* > */ "0,6 5,3 0,0",
    /* ? */ "0,6 1,7 4,7 5,6 5,4.5 4,3.5 2.5,3.5 2.5,2 / 2.5,1 1.5,0 3.5,0 2.5,1",
    /* @ */ "5,5 2.5,5 1.5,4 1.5,3 2.5,2 5,2 5,6 4,7 1,7 0,6 0,1 1,0 4,0 5,1",
    /* A */ "0,0 0,6 1,7 4,7 5,6 5,3 0,3 5,3 5,0",
    /* B */ "0,3.5 0,7 4,7 5,6 5,4.5 4,3.5 0,3.5 0,0 4,0 5,1 5,2.5 4,3.5",
    /* C */ "5,6 4,7 1,7 0,6 0,1 1,0 4,0 5,1",
    /* D */ "0,0 0,7 3,7 5,5 5,2 3,0 0,0",
    /* E */ "5,7 0,7 0,3.5 4,3.5 0,3.5 0,0 5,0",
    /* F */ "5,7 0,7 0,3.5 4,3.5 0,3.5 0,0",
    /* G */ "5,6 4,7 1,7 0,6 0,1 1,0 4,0 5,1 5,3 2.5,3",
    /* H */ "0,7 0,0 0,3.5 5,3.5 5,7 5,0",
    /* I */ "1,0 4,0 2.5,0 2.5,7 1,7 4,7",
    /* J */ "2,7 5,7 4,7 4,1 3,0 1,0 0,1 0,2",
    /* K */ "0,7 0,0 0,2 5,7 1.5,3.5 5,0",
    /* L */ "0,7 0,0 5,0",
    /* M */ "0,0 0,7 2.5,3 5,7 5,0",
    /* N */ "0,0 0,7 5,0 5,7",
    /* O */ "0,1.5 0,5.5 1.5,7 3.5,7 5,5.5 5,1.5 3.5,0 1.5,0 0,1.5",
    /* P */ "0,0 0,7 4,7 5,6 5,4 4,3 0,3",
    /* Q */ "0,1.5 0,5.5 1.5,7 3.5,7 5,5.5 5,1.5 3.5,0 1.5,0 0,1.5 / 3,2 5,0",
    /* R */ "0,0 0,7 4,7 5,6 5,4 4,3 0,3 2,3 5,0",
    /* S */ "5,6 4,7 1,7 0,6 0,4.5 1,3.5 4,3.5 5,2.5 5,1 4,0 1,0 0,1",
    /* T */ "0,7 5,7 2.5,7 2.5,0",
    /* U */ "0,7 0,1 1,0 4,0 5,1 5,7",
    /* V */ "0,7 2.5,0 5,7",
    /* W */ "0,7 1,0 2.5,4 4,0 5,7",
    /* X */ "0,7 5,0 / 0,0 5,7",
    /* Y */ "0,7 2.5,3.5 5,7 / 2.5,3.5 2.5,0",
    /* Z */ "0,7 5,7 0,0 5,0",
    /* [ */ "3.5,7 1.5,7 1.5,0 3.5,0",
    /* \ */ "0,7 5,0",
    /* ] */ "1.5,7 3.5,7 3.5,0 1.5,0",
    /* ^ */ "1,5 2.5,7 4,5",
    /* _ */ "0,0 5,0",
    /* ` */ "1.5,7 3,5.5",
    /* a */ "1,5 4,5 5,4 5,0 1,0 0,1 0,2 1,3 5,3",
    /* b */ "0,7 0,0 4,0 5,1 5,4 4,5 1,5 0,4",
    /* c */ "5,4 4,5 1,5 0,4 0,1 1,0 4,0 5,1",
    /* d */ "5,7 5,0 1,0 0,1 0,4 1,5 4,5 5,4",
    /* e */ "0,2.5 5,2.5 5,4 4,5 1,5 0,4 0,1 1,0 4.5,0",
    /* f */ "5,6 4,7 3,7 2,6 2,0 / 0,5 4,5",
    /* g */ "5,1 1,1 0,2 0,4 1,5 5,5 5,-2 4,-3 1,-3 0,-2",
    /* h */ "0,7 0,0 0,4 1,5 4,5 5,4 5,0",
    /* i */ "1.5,5 2.5,5 2.5,0 / 2,6 3,6 3,7 2,7 2,6",
    /* j */ "2,5 4,5 4,-2 3,-3 1,-3 0,-2 / 3.5,6 4.5,6 4.5,7 3.5,7 3.5,6",
    /* k */ "0,7 0,0 0,1 4,5 1.5,2.5 4,0",
    /* l */ "1.5,7 2.5,7 2.5,1 3.5,0 4,0",
    /* m */ "0,5 0,0 0,4 1,5 1.5,5 2.5,4 2.5,0 2.5,4 3.5,5 4,5 5,4 5,0",
    /* n */ "0,5 0,0 0,4 1,5 4,5 5,4 5,0",
    /* o */ "0,1 0,4 1,5 4,5 5,4 5,1 4,0 1,0 0,1",
    /* p */ "0,-3 0,5 4,5 5,4 5,1 4,0 0,0",
    /* q */ "5,-3 5,5 1,5 0,4 0,1 1,0 5,0",
    /* r */ "0,5 0,0 0,3 2,5 4,5 5,4",
    /* s */ "5,4 4,5 1,5 0,4 0,3.5 1,2.5 4,2.5 5,1.5 5,1 4,0 1,0 0,1",
    /* t */ "0,5 4,5 / 2,6.5 2,1 3,0 4,0 5,1",
    /* u */ "0,5 0,1 1,0 4,0 5,1 5,5 5,0",
    /* v */ "0,5 2.5,0 5,5",
    /* w */ "0,5 1,0 2.5,3 4,0 5,5",
    /* x */ "0,5 5,0 / 0,0 5,5",
    /* y */ "0,5 0,1 1,0 5,0 / 5,5 5,-2 4,-3 1,-3 0,-2",
    /* z */ "0,5 5,5 0,0 5,0",
    /* { */ "4,7 3,7 2,6 2,4.5 1,3.5 2,2.5 2,1 3,0 4,0",
    /* | */ "2.5,7 2.5,0",
    /* } */ "1,7 2,7 3,6 3,4.5 4,3.5 3,2.5 3,1 2,0 1,0",
    /* ~ */ "0,3 1,4 2,4 3,3 4,3 5,4",
};

// Markers in marker units: a full-size marker spans -3..3. The octagon of type 4 is irregular
// (its first side runs on from (-2,2) to (-2,3)); callers' pictures depend on it as it is.
constexpr const char* kMarkerOutlines[13] = {
    /*  0 dot */ "0,0",
    /*  1 small plus */ "-2,0 2,0 / 0,-2 0,2",
    /*  2 plus */ "-3,0 3,0 / 0,-3 0,3",
    /*  3 asterisk */ "0,-3 0,3 / -3,-2 3,2 / -3,2 3,-2",
    /*  4 octagon */ "-2,-2 -2,2 -2,3 2,3 3,2 3,-2 2,-3 -2,-3 -2,-2",
    /*  5 cross */ "-3,-3 3,3 / -3,3 3,-3",
    /*  6 square */ "-3,-3 3,-3 3,3 -3,3 -3,-3",
    /*  7 diamond */ "-3,0 0,-3 3,0 0,3 -3,0",
    /*  8 square, dot */ "-3,-3 3,-3 3,3 -3,3 -3,-3 / 0,0",
    /*  9 diamond, dot */ "-3,0 0,-3 3,0 0,3 -3,0 / 0,0",
    /* 10 square, diamond */ "-3,-3 3,-3 3,3 -3,3 -3,-3 / -3,0 0,-3 3,0 0,3 -3,0",
    /* 11 cross, square, diamond */
    "-3,-3 3,3 / -3,3 3,-3 / -3,-3 3,-3 3,3 -3,3 -3,-3 / -3,0 0,-3 3,0 0,3 -3,0",
    /* 12 plus in diamond */ "-3,0 3,0 / 0,-3 0,3 / -3,0 0,-3 3,0 0,3 -3,0",
};

// ---- Compile-time reading of the outlines ------------------------------------------------------
// A malformed outline makes the table's initialiser non-constant: the build fails.

struct Sizes {
    int strokes;
    int points;
    int longest;  // points of the longest stroke
};

template <int N>
constexpr Sizes Measure(const char* const (&outlines)[N])
{
    Sizes s{0, 0, 0};
    for (const char* outline : outlines) {
        int run = 0;
        for (const char* p = outline;; ++p) {
            if (*p == ',') {
                ++run;
                ++s.points;
            } else if (*p == '/' || *p == '\0') {
                ++s.strokes;
                s.longest = run > s.longest ? run : s.longest;
                run = 0;
                if (*p == '\0')
                    break;
            }
        }
    }
    return s;
}

// Reads "[-]digits[.digits]" and moves p past it.
constexpr double ReadNumber(const char*& p)
{
    const bool negative = *p == '-';
    if (negative)
        ++p;
    if (*p < '0' || *p > '9')
        throw "number expected";
    double whole = 0;
    while (*p >= '0' && *p <= '9')
        whole = whole * 10 + (*p++ - '0');
    double fraction = 0;
    double scale = 1;
    if (*p == '.') {
        for (++p; *p >= '0' && *p <= '9'; ++p) {
            fraction = fraction * 10 + (*p - '0');
            scale *= 10;
        }
    }
    const double v = whole + fraction / scale;  // exact for halves
    return negative ? -v : v;
}

template <int Shapes, int Strokes, int Points>
struct Parsed {
    float xy[2 * Points];
    int first[Strokes];  // index into xy of each stroke's first x
    int count[Strokes];  // points of each stroke
    int shape_first[Shapes];
    int shape_count[Shapes];
};

// Reads every outline into one coordinate pool; each coordinate is divided by unit.
template <int Shapes, int Strokes, int Points>
constexpr Parsed<Shapes, Strokes, Points> Parse(const char* const (&outlines)[Shapes], double unit)
{
    Parsed<Shapes, Strokes, Points> t{};
    int stroke = 0;
    int coord = 0;
    for (int i = 0; i < Shapes; ++i) {
        t.shape_first[i] = stroke;
        t.shape_count[i] = 1;
        t.first[stroke] = coord;
        for (const char* p = outlines[i];;) {
            while (*p == ' ')
                ++p;
            if (*p == '\0')
                break;
            if (*p == '/') {
                ++p;
                ++stroke;
                ++t.shape_count[i];
                t.first[stroke] = coord;
                continue;
            }
            const double x = ReadNumber(p);
            if (*p++ != ',')
                throw "',' expected";
            const double y = ReadNumber(p);
            if (*p != ' ' && *p != '/' && *p != '\0')
                throw "end of point expected";
            t.xy[coord++] = static_cast<float>(x / unit);
            t.xy[coord++] = static_cast<float>(y / unit);
            ++t.count[stroke];
        }
        ++stroke;
    }
    return t;
}

template <int Shapes, int Strokes, int Points>
constexpr std::array<stroke_line_t, Strokes> LineTable(const Parsed<Shapes, Strokes, Points>& t)
{
    std::array<stroke_line_t, Strokes> lines{};
    for (int i = 0; i < Strokes; ++i)
        lines[i] = stroke_line_t{t.count[i] > 0 ? &t.xy[t.first[i]] : nullptr, t.count[i]};
    return lines;
}

template <int Shapes, int Strokes, int Points>
constexpr std::array<stroke_shape_t, Shapes> ShapeTable(const Parsed<Shapes, Strokes, Points>& t,
                                                       const stroke_line_t* lines)
{
    std::array<stroke_shape_t, Shapes> shapes{};
    for (int i = 0; i < Shapes; ++i)
        shapes[i] = stroke_shape_t{&lines[t.shape_first[i]], t.shape_count[i]};
    return shapes;
}

constexpr Sizes kGlyphSizes = Measure(kGlyphOutlines);
constexpr Sizes kMarkerSizes = Measure(kMarkerOutlines);
// The drawing code transforms a stroke in a buffer of STROKE_MAX_POINTS points.
static_assert(kGlyphSizes.longest <= STROKE_MAX_POINTS && kMarkerSizes.longest <= STROKE_MAX_POINTS,
              "stroke too long");

constexpr auto kGlyphData = Parse<95, kGlyphSizes.strokes, kGlyphSizes.points>(kGlyphOutlines, 7.0);
constexpr auto kGlyphLines = LineTable(kGlyphData);
constexpr auto kGlyphs = ShapeTable(kGlyphData, kGlyphLines.data());

constexpr auto kMarkerData = Parse<13, kMarkerSizes.strokes, kMarkerSizes.points>(kMarkerOutlines, 1.0);
constexpr auto kMarkerLines = LineTable(kMarkerData);
constexpr auto kMarkers = ShapeTable(kMarkerData, kMarkerLines.data());

}  // namespace

const stroke_shape_t* stroke_glyph(int code)
{
    return code >= 32 && code <= 126 ? &kGlyphs[code - 32] : nullptr;
}

const stroke_shape_t* stroke_marker(int type)
{
    return type >= 0 && type <= 12 ? &kMarkers[type] : nullptr;
}
