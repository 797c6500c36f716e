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

Pieces clip_l(const Pts& line, Window w)
{
    Pieces got;
    const auto collect = [](int n, gu_point_t* pts, void* user) {
        static_cast<Pieces*>(user)->push_back(Pts(pts, pts + n));
    };
    const int n = static_cast<int>(line.size());
    gu_clip_polyline_l(n, line.data(), w.xmin, w.ymin, w.xmax, w.ymax, collect, &got);
    return got;
}

std::vector<Floats> clip_r(const Floats& xy, float xmin, float ymin, float xmax, float ymax)
{
    std::vector<Floats> got;
    const auto collect = [](int n, float* xy, void* user) {
        static_cast<std::vector<Floats>*>(user)->push_back(Floats(xy, xy + 2 * n));
    };
    gu_clip_polyline_r(static_cast<int>(xy.size() / 2), xy.data(), xmin, ymin, xmax, ymax, collect, &got);
    return got;
}

// The model, for small coordinates: each segment's visible parameters [lo, hi] as exact fractions,
// from the x and y ranges separately. A range ending at 1 joins one starting at 0 on the next
// segment; a piece lists its start, then every range's end (a range of one point adds nothing).
struct Q {
    long long n, d; // d > 0
    bool operator<(Q o) const { return n * o.d < o.n * d; }
    bool operator==(Q o) const { return n * o.d == o.n * d; }
};

bool narrow_to_axis(long long a, long long d, long long min, long long max, Q* lo, Q* hi)
{
    if (d == 0)
        return a >= min && a <= max;
    const long long s = d < 0 ? -1 : 1; // keeps the denominators positive
    Q u = {(min - a) * s, d * s}, v = {(max - a) * s, d * s};
    if (v < u)
        std::swap(u, v);
    *lo = std::max(*lo, u);
    *hi = std::min(*hi, v);
    return true;
}

gu_point_t at(gu_point_t a, gu_point_t b, Q t) // rounded half away from zero
{
    const auto round = [&](long long n) {
        return gu_coord_t(n >= 0 ? (2 * n + t.d) / (2 * t.d) : -((t.d - 2 * n) / (2 * t.d)));
    };
    return {round(a.x * t.d + t.n * (b.x - a.x)), round(a.y * t.d + t.n * (b.y - a.y))};
}

Pieces model(const Pts& line, Window w)
{
    Pieces pieces;
    Pts cur;
    bool open = false; // the previous segment's range ended at 1
    for (size_t i = 0; i + 1 < line.size(); ++i) {
        const gu_point_t a = line[i], b = line[i + 1];
        Q lo = {0, 1}, hi = {1, 1};
        const bool seen = narrow_to_axis(a.x, b.x - a.x, w.xmin, w.xmax, &lo, &hi) &&
                          narrow_to_axis(a.y, b.y - a.y, w.ymin, w.ymax, &lo, &hi) && !(hi < lo);
        if (!seen || !(open && lo == Q{0, 1})) {
            if (cur.size() > 1)
                pieces.push_back(cur);
            cur.clear();
        }
        if (seen && cur.empty())
            cur.push_back(at(a, b, lo));
        if (seen && !(lo == hi))
            cur.push_back(at(a, b, hi));
        open = seen && hi == Q{1, 1};
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
        ::testing::AssertionResult r = SamePoints(want[i], got[i].data(), static_cast<int>(got[i].size()));
        if (!r)
            return r << " in piece " << i;
    }
    return ::testing::AssertionSuccess();
}

} // namespace

TEST(ClipTest, IntegerPieces)
{
    const Window box = {0, 0, 10, 10};
    const struct { const char* name; Pts line; Window w; Pieces want; } rows[] = {
        {"through the window", {{-10, 5}, {20, 5}}, box, {{{0, 5}, {10, 5}}}},
        {"along the border", {{0, -5}, {0, 15}}, box, {{{0, 0}, {0, 10}}}},
        {"wholly inside, repeats kept", {{1, 1}, {1, 1}, {5, 5}, {9, 2}}, box,
         {{{1, 1}, {1, 1}, {5, 5}, {9, 2}}}},
        {"wholly outside", {{-5, -5}, {-1, 20}, {20, 20}}, box, {}},
        {"touches a corner only", {{-5, 5}, {5, -5}}, box, {}},
        {"touches at a vertex, then goes in", {{-5, 0}, {0, 0}, {5, 5}}, box, {{{0, 0}, {5, 5}}}},
        {"leaves and comes back", {{2, 2}, {20, 2}, {20, 8}, {2, 8}}, box,
         {{{2, 2}, {10, 2}}, {{10, 8}, {2, 8}}}},
        {"bounces off the border", {{5, 5}, {10, 7}, {5, 9}}, box, {{{5, 5}, {10, 7}, {5, 9}}}},
        {"corner to corner", {{-10, -10}, {20, 20}}, box, {{{0, 0}, {10, 10}}}},
        // -3 + 2 * 1 / 4 = -2.5 rounds away from zero
        {"halves round away from zero", {{-3, -3}, {1, -2}}, {-1, -10, 5, 10}, {{{-1, -3}, {1, -2}}}},
        // exactly 0.49999999988: a double computation of the crossing gives 0.5 and rounds to 1
        {"exact crossing across the whole range", {{kMin, -1942668281}, {2147272119, 1470646349}},
         {296851759, -10, 296851769, 10}, {{{296851759, 0}, {296851769, 8}}}},
        {"limits as the window", {{kMin, 0}, {kMax, 0}}, {kMin, 0, kMax, 0}, {{{kMin, 0}, {kMax, 0}}}},
        {"inverted window", {{1, 1}, {5, 5}}, {10, 0, 0, 10}, {}},
        {"one point", {{1, 1}}, box, {}}};
    for (const auto& row : rows)
        EXPECT_TRUE(same_pieces(row.want, clip_l(row.line, row.w))) << row.name;
}

TEST(ClipTest, RandomPolylinesMatchTheModel)
{
    // A coarse grid, so that points fall on the borders, segments run along them and windows collapse.
    std::mt19937 rng(20240607);
    const auto coord = [&](int lo, int hi) { return std::uniform_int_distribution<int>(lo, hi)(rng); };
    int pieces = 0;
    for (int round = 0; round < 4000; ++round) {
        Window w;
        w.xmin = coord(-8, 2);
        w.xmax = w.xmin + coord(0, 10);
        w.ymin = coord(-8, 2);
        w.ymax = w.ymin + coord(0, 10);
        Pts line(coord(1, 12));
        Floats xy;
        for (gu_point_t& p : line) {
            p = {coord(-14, 14), coord(-14, 14)};
            xy.insert(xy.end(), {float(p.x), float(p.y)});
        }
        SCOPED_TRACE(testing::Message() << "round " << round);
        const auto in = [&](double x, double y) {
            return x >= w.xmin && x <= w.xmax && y >= w.ymin && y <= w.ymax;
        };
        const Pieces want = model(line, w), got = clip_l(line, w);
        ASSERT_TRUE(same_pieces(want, got));
        pieces += static_cast<int>(got.size());
        const bool all_in = std::all_of(line.begin(), line.end(), [&](gu_point_t p) { return in(p.x, p.y); });
        if (all_in && line.size() > 1) {
            ASSERT_TRUE(same_pieces({line}, got)); // once and whole
        }

        // The float form sees the same pieces; its crossings are the exact ones up to float rounding.
        const auto fgot = clip_r(xy, float(w.xmin), float(w.ymin), float(w.xmax), float(w.ymax));
        ASSERT_EQ(fgot.size(), want.size());
        for (size_t i = 0; i < want.size(); ++i) {
            ASSERT_EQ(fgot[i].size(), 2 * want[i].size());
            for (size_t j = 0; j < want[i].size(); ++j) {
                const float x = fgot[i][2 * j], y = fgot[i][2 * j + 1];
                ASSERT_TRUE(in(x, y) && std::fabs(x - want[i][j].x) <= 0.5f);
                ASSERT_LE(std::fabs(y - want[i][j].y), 0.5f);
            }
        }
    }
    EXPECT_GT(pieces, 1500);
}

TEST(ClipTest, FloatPieces)
{
    const struct { const char* name; Floats xy; float xmax; std::vector<Floats> want; } rows[] = {
        {"through the window", {-10, 5, 20, 8}, 10, {{0, 6, 10, 7}}},
        {"wholly inside", {0.5f, 0.25f, 9.5f, 0.25f, 1, 9}, 10, {{0.5f, 0.25f, 9.5f, 0.25f, 1, 9}}},
        {"touches a corner only", {-5, 5, 5, -5}, 10, {}},
        // the crossing 0.1 + 0.2 * 0.5 is computed in double, then narrowed
        {"fractional crossing", {-0.5f, 0.1f, 0.5f, 0.3f}, 1, {{0, 0.2f, 0.5f, 0.3f}}},
        {"NaN window", {1, 1, 5, 5}, std::nanf(""), {}},
        {"NaN point", {1, 1, std::nanf(""), 5, 5, 5, 6, 6}, 10, {{5, 5, 6, 6}}}};
    for (const auto& row : rows)
        EXPECT_EQ(clip_r(row.xy, 0, 0, row.xmax, 10), row.want) << row.name;
}

TEST(ClipTest, LongPolylinesAndNestedUse)
{
    // A zigzag through the window: one piece per segment; the callback may use the other form.
    Pts line;
    for (int i = 0; i < 100000; ++i)
        line.push_back({i % 2 ? 30 : -10, i});
    int seen[2] = {0, 0};
    const auto count_l = [](int n, gu_point_t* pts, void* user) {
        ++static_cast<int*>(user)[0];
        const float xy[] = {float(pts[0].x), float(pts[0].y), float(pts[n - 1].x), float(pts[n - 1].y)};
        const auto count_r = [](int, float*, void* u) { ++static_cast<int*>(u)[1]; };
        gu_clip_polyline_r(2, xy, 0, 0, 20, 99999, count_r, user);
    };
    gu_clip_polyline_l(static_cast<int>(line.size()), line.data(), 0, 0, 20, 99999, count_l, seen);
    EXPECT_EQ(seen[0], 99999);
    EXPECT_EQ(seen[1], 99999);
}
