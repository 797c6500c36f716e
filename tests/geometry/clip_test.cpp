// Polyline clipping: visible pieces against an exact model, borders, touches, exact crossings.
#include <tevbase/geometry.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

namespace {

using Pts = std::vector<gu_point_t>;
using Pieces = std::vector<Pts>;

struct Window {
    gu_coord_t xmin, ymin, xmax, ymax;
};

void collect_l(int n, gu_point_t* pts, void* user)
{
    static_cast<Pieces*>(user)->push_back(Pts(pts, pts + n));
}

Pieces clip_l(const Pts& line, Window w)
{
    Pieces got;
    gu_clip_polyline_l(static_cast<int>(line.size()), line.data(), w.xmin, w.ymin, w.xmax, w.ymax, collect_l, &got);
    return got;
}

using Floats = std::vector<float>;

void collect_r(int n, float* xy, void* user)
{
    static_cast<std::vector<Floats>*>(user)->push_back(Floats(xy, xy + 2 * n));
}

std::vector<Floats> clip_r(const Floats& xy, float xmin, float ymin, float xmax, float ymax)
{
    std::vector<Floats> got;
    gu_clip_polyline_r(static_cast<int>(xy.size() / 2), xy.data(), xmin, ymin, xmax, ymax, collect_r, &got);
    return got;
}

// ---- the model: per-axis parameter intervals in exact fractions (small coordinates only) ----

struct Q {
    long long n, d; // d > 0
};

Q frac(long long n, long long d)
{
    return d < 0 ? Q{-n, -d} : Q{n, d};
}

bool less(Q a, Q b)
{
    return a.n * b.d < b.n * a.d;
}

bool equal(Q a, Q b)
{
    return a.n * b.d == b.n * a.d;
}

// n / d rounded half away from zero, d > 0.
long long round_q(long long n, long long d)
{
    return n >= 0 ? (2 * n + d) / (2 * d) : -((-2 * n + d) / (2 * d));
}

// Narrows [lo, hi] to the parameters where a + t d lies in [min, max]; false if none can.
bool axis(long long a, long long d, long long min, long long max, Q* lo, Q* hi)
{
    if (d == 0)
        return a >= min && a <= max;
    Q u = frac(min - a, d), v = frac(max - a, d);
    if (less(v, u))
        std::swap(u, v);
    if (less(*lo, u))
        *lo = u;
    if (less(v, *hi))
        *hi = v;
    return true;
}

struct Range {
    int seg;
    Q lo, hi;
};

gu_point_t at(const Pts& line, int seg, Q t)
{
    const gu_point_t a = line[seg], b = line[seg + 1];
    return {static_cast<gu_coord_t>(round_q(a.x * t.d + t.n * (b.x - a.x), t.d)),
            static_cast<gu_coord_t>(round_q(a.y * t.d + t.n * (b.y - a.y), t.d))};
}

// Visible ranges of the segments; a range ending at t = 1 joins one starting at t = 0 on the next
// segment; a piece lists its start, then every range's end (a range of one point adds nothing).
Pieces model_l(const Pts& line, Window w)
{
    std::vector<Range> ranges;
    for (int i = 0; i + 1 < static_cast<int>(line.size()); ++i) {
        Q lo = {0, 1}, hi = {1, 1};
        const gu_point_t a = line[i], b = line[i + 1];
        if (axis(a.x, b.x - a.x, w.xmin, w.xmax, &lo, &hi) && axis(a.y, b.y - a.y, w.ymin, w.ymax, &lo, &hi) &&
            !less(hi, lo))
            ranges.push_back({i, lo, hi});
    }
    Pieces pieces;
    Pts cur;
    for (size_t k = 0; k < ranges.size(); ++k) {
        const Range& r = ranges[k];
        const bool joins = k > 0 && ranges[k - 1].seg == r.seg - 1 && equal(ranges[k - 1].hi, {1, 1}) &&
                           equal(r.lo, {0, 1});
        if (!joins) {
            if (cur.size() > 1)
                pieces.push_back(cur);
            cur = {at(line, r.seg, r.lo)};
        }
        if (!equal(r.lo, r.hi))
            cur.push_back(at(line, r.seg, r.hi));
    }
    if (cur.size() > 1)
        pieces.push_back(cur);
    return pieces;
}

::testing::AssertionResult same_pieces(const Pieces& want, const Pieces& got)
{
    if (want.size() != got.size())
        return ::testing::AssertionFailure() << got.size() << " pieces, want " << want.size();
    for (size_t i = 0; i < want.size(); ++i) {
        if (want[i].size() != got[i].size())
            return ::testing::AssertionFailure() << "piece " << i << " has " << got[i].size() << " points, want "
                                                 << want[i].size();
        for (size_t j = 0; j < want[i].size(); ++j) {
            if (want[i][j].x != got[i][j].x || want[i][j].y != got[i][j].y)
                return ::testing::AssertionFailure()
                       << "piece " << i << " point " << j << " is (" << got[i][j].x << "," << got[i][j].y
                       << "), want (" << want[i][j].x << "," << want[i][j].y << ")";
        }
    }
    return ::testing::AssertionSuccess();
}

bool inside(gu_point_t p, Window w)
{
    return p.x >= w.xmin && p.x <= w.xmax && p.y >= w.ymin && p.y <= w.ymax;
}

} // namespace

TEST(ClipTest, IntegerPieces)
{
    const Window box = {0, 0, 10, 10};
    const struct {
        const char* name;
        Pts line;
        Window w;
        Pieces want;
    } rows[] = {
        {"through the window", {{-10, 5}, {20, 5}}, box, {{{0, 5}, {10, 5}}}},
        {"along the border", {{0, -5}, {0, 15}}, box, {{{0, 0}, {0, 10}}}},
        {"wholly inside, repeats kept", {{1, 1}, {1, 1}, {5, 5}, {9, 2}}, box, {{{1, 1}, {1, 1}, {5, 5}, {9, 2}}}},
        {"wholly outside", {{-5, -5}, {-1, 20}, {20, 20}}, box, {}},
        {"touches a corner only", {{-5, 5}, {5, -5}}, box, {}},
        {"touches at a vertex, then goes in", {{-5, 0}, {0, 0}, {5, 5}}, box, {{{0, 0}, {5, 5}}}},
        {"leaves and comes back", {{2, 2}, {20, 2}, {20, 8}, {2, 8}}, box, {{{2, 2}, {10, 2}}, {{10, 8}, {2, 8}}}},
        {"bounces off the border", {{5, 5}, {10, 7}, {5, 9}}, box, {{{5, 5}, {10, 7}, {5, 9}}}},
        {"corner to corner", {{-10, -10}, {20, 20}}, box, {{{0, 0}, {10, 10}}}},
        // -3 + 2 * 1 / 4 = -2.5 rounds away from zero
        {"halves round away from zero", {{-3, -3}, {1, -2}}, {-1, -10, 5, 10}, {{{-1, -3}, {1, -2}}}},
        // exactly 0.49999999988: a double computation of the crossing gives 0.5 and rounds to 1
        {"exact crossing across the whole range",
         {{-2147483647 - 1, -1942668281}, {2147272119, 1470646349}},
         {296851759, -10, 296851769, 10},
         {{{296851759, 0}, {296851769, 8}}}},
        {"limits as the window", {{-2147483647 - 1, 0}, {2147483647, 0}}, {-2147483647 - 1, 0, 2147483647, 0},
         {{{-2147483647 - 1, 0}, {2147483647, 0}}}},
        {"inverted window", {{1, 1}, {5, 5}}, {10, 0, 0, 10}, {}},
        {"one point", {{1, 1}}, box, {}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_TRUE(same_pieces(row.want, clip_l(row.line, row.w)));
    }
}

TEST(ClipTest, IntegerPiecesMatchTheModel)
{
    std::mt19937 rng(20240607);
    const auto coord = [&](int lo, int hi) { return std::uniform_int_distribution<int>(lo, hi)(rng); };
    int reported = 0;
    for (int round = 0; round < 3000; ++round) {
        // A coarse grid, so that points fall on the borders and segments run along them.
        Window w;
        w.xmin = coord(-8, 2);
        w.xmax = w.xmin + coord(0, 10);
        w.ymin = coord(-8, 2);
        w.ymax = w.ymin + coord(0, 10);
        Pts line(coord(1, 12));
        for (gu_point_t& p : line)
            p = {coord(-14, 14), coord(-14, 14)};
        if (coord(0, 9) == 0 && line.size() > 1)
            line[1] = line[0]; // a zero-length segment

        SCOPED_TRACE(testing::Message() << "round " << round);
        const Pieces got = clip_l(line, w);
        ASSERT_TRUE(same_pieces(model_l(line, w), got));
        for (const Pts& piece : got) {
            ++reported;
            for (const gu_point_t& p : piece)
                ASSERT_TRUE(inside(p, w));
        }
        if (std::all_of(line.begin(), line.end(), [&](gu_point_t p) { return inside(p, w); }) && line.size() > 1) {
            ASSERT_EQ(got.size(), 1u); // reported once and whole
            ASSERT_TRUE(same_pieces({line}, got));
        }
    }
    EXPECT_GT(reported, 1000);
}

TEST(ClipTest, FloatPieces)
{
    const struct {
        const char* name;
        Floats xy;
        float xmin, ymin, xmax, ymax;
        std::vector<Floats> want;
    } rows[] = {
        {"through the window", {-10, 5, 20, 8}, 0, 0, 10, 10, {{0, 6, 10, 7}}},
        {"along the border", {0, -5, 0, 15}, 0, 0, 10, 10, {{0, 0, 0, 10}}},
        {"wholly inside", {0.5f, 0.25f, 9.5f, 0.25f, 1, 9}, 0, 0, 10, 10, {{0.5f, 0.25f, 9.5f, 0.25f, 1, 9}}},
        {"touches a corner only", {-5, 5, 5, -5}, 0, 0, 10, 10, {}},
        {"leaves and comes back", {2, 2, 20, 2, 20, 8, 2, 8}, 0, 0, 10, 10, {{2, 2, 10, 2}, {10, 8, 2, 8}}},
        // the crossing 0.1 + 0.2 * 0.5 is computed in double, then narrowed
        {"fractional crossing", {-0.5f, 0.1f, 0.5f, 0.3f}, 0, -1, 1, 1, {{0, 0.2f, 0.5f, 0.3f}}},
        {"NaN window", {1, 1, 5, 5}, 0, 0, std::nanf(""), 10, {}},
        {"NaN point", {1, 1, std::nanf(""), 5, 5, 5, 6, 6}, 0, 0, 10, 10, {{5, 5, 6, 6}}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const auto got = clip_r(row.xy, row.xmin, row.ymin, row.xmax, row.ymax);
        EXPECT_EQ(got, row.want);
    }
}

TEST(ClipTest, FloatPiecesMatchTheModel)
{
    // On an integer grid the float form sees the same geometry as the integer form; its crossings
    // are the exact ones up to float rounding.
    std::mt19937 rng(7);
    const auto coord = [&](int lo, int hi) { return std::uniform_int_distribution<int>(lo, hi)(rng); };
    for (int round = 0; round < 2000; ++round) {
        Window w;
        w.xmin = coord(-8, 2);
        w.xmax = w.xmin + coord(0, 10);
        w.ymin = coord(-8, 2);
        w.ymax = w.ymin + coord(0, 10);
        Pts line(coord(1, 10));
        Floats xy;
        for (gu_point_t& p : line) {
            p = {coord(-14, 14), coord(-14, 14)};
            xy.push_back(static_cast<float>(p.x));
            xy.push_back(static_cast<float>(p.y));
        }
        SCOPED_TRACE(testing::Message() << "round " << round);
        const auto got = clip_r(xy, float(w.xmin), float(w.ymin), float(w.xmax), float(w.ymax));
        // The model's rounded points are within half a unit of the exact crossings.
        const Pieces want = model_l(line, w);
        ASSERT_EQ(got.size(), want.size());
        for (size_t i = 0; i < want.size(); ++i) {
            ASSERT_EQ(got[i].size(), 2 * want[i].size());
            for (size_t j = 0; j < want[i].size(); ++j) {
                const float x = got[i][2 * j], y = got[i][2 * j + 1];
                EXPECT_LE(std::fabs(x - want[i][j].x), 0.5f);
                EXPECT_LE(std::fabs(y - want[i][j].y), 0.5f);
                EXPECT_TRUE(x >= w.xmin && x <= w.xmax && y >= w.ymin && y <= w.ymax);
            }
        }
    }
}

TEST(ClipTest, LongPolylinesAndNestedUse)
{
    // A long zigzag through the window: one piece per pass, and a callback may use the other form.
    Pts line;
    for (int i = 0; i < 100000; ++i)
        line.push_back({i % 2 ? 30 : -10, i});
    struct Seen {
        int pieces = 0, floats = 0;
    } seen;
    gu_clip_polyline_l(
        static_cast<int>(line.size()), line.data(), 0, 0, 20, 99999,
        [](int n, gu_point_t* pts, void* user) {
            auto* s = static_cast<Seen*>(user);
            ++s->pieces;
            const float xy[] = {float(pts[0].x), float(pts[0].y), float(pts[n - 1].x), float(pts[n - 1].y)};
            gu_clip_polyline_r(
                2, xy, 0, 0, 20, 99999, [](int, float*, void* u) { ++static_cast<Seen*>(u)->floats; }, user);
        },
        &seen);
    EXPECT_EQ(seen.pieces, 99999);
    EXPECT_EQ(seen.floats, 99999);
}
