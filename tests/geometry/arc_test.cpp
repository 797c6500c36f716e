// Circles and arcs: circumscription, single-precision three-point geometry across the atan2 branch
// cut, arc direction, truncation (arcs) against rounding (circles), and the point-count rules.
#include <tevbase/geometry.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include <support/testutil.h>

namespace {

using Pts = std::vector<gu_point_t>;

::testing::AssertionResult same_points(const Pts& want, const gu_point_t* got, int n)
{
    if (static_cast<int>(want.size()) != n)
        return ::testing::AssertionFailure() << "count " << n << ", want " << want.size();
    for (int i = 0; i < n; ++i) {
        if (want[i].x != got[i].x || want[i].y != got[i].y)
            return ::testing::AssertionFailure() << "point " << i << " is (" << got[i].x << "," << got[i].y
                                                 << "), want (" << want[i].x << "," << want[i].y << ")";
    }
    return ::testing::AssertionSuccess();
}

const gu_point_t kOrigin = {0, 0};

} // namespace

TEST(ArcTest, CircleRoundsCircumscribedVertices)
{
    const struct {
        const char* name;
        gu_point_t centre;
        int width, height, n;
        Pts want;
    } rows[] = {
        // first vertex at 45 degrees, radius enlarged by 1 / cos 45
        {"square", {0, 0}, 200, 200, 4, {{100, 100}, {-100, 100}, {-100, -100}, {100, -100}}},
        // -7 + 7.5 rounds away from zero to 1 (an arc would truncate to 0)
        {"triangle rounds halves up", {-7, -3}, 15, 15, 3, {{1, 10}, {-22, -3}, {0, -16}}},
        {"ellipse near 1e6, negative height",
         {1000000, -1000000},
         101,
         -40,
         6,
         {{1000051, -1000012}, {1000000, -1000023}, {999950, -1000012}, {999950, -999988}, {1000000, -999977},
          {1000051, -999988}}},
        {"one vertex at half a turn", {5, 5}, 10, 4, 1, {{10, 5}}},
        {"two vertices of a point", {3, -3}, 0, 0, 2, {{3, -3}, {3, -3}}},
        {"two vertices of a circle lie at infinity", {3, -3}, 10, 10, 2, {}},
        {"beyond the coordinate range", {2147483000, 0}, 2000, 2000, 8, {}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        Pts out(row.n > 0 ? row.n : 1, gu_point_t{-99, -99});
        int16_t n = -1;
        gu_circle2polygon(&n, out.data(), &row.centre, row.width, row.height, static_cast<int16_t>(row.n));
        EXPECT_TRUE(same_points(row.want, out.data(), n));
    }
    int16_t n = 7;
    gu_circle2polygon(&n, nullptr, &kOrigin, 10, 10, 0);
    EXPECT_EQ(n, 0);
    gu_circle2polygon(&n, nullptr, &kOrigin, 10, 10, -3);
    EXPECT_EQ(n, -3);
}

TEST(ArcTest, ThreePointGeometryInSinglePrecision)
{
    const struct {
        const char* name;
        gu_point_t p1, p2, p3;
        gu_point_t centre;
        gu_coord_t radius;
        float start, sweep;
    } rows[] = {
        {"counter-clockwise half", {10, 0}, {0, 10}, {-10, 0}, {0, 0}, 10, 0.0f, 3.1415927410125732f},
        {"clockwise half", {-10, 0}, {0, 10}, {10, 0}, {0, 0}, 10, 3.1415927410125732f, -3.1415927410125732f},
        // atan2 jumps between p2 and p3: the first pass overshoots 2pi, the second fixes the end
        {"counter-clockwise across the cut", {0, 10}, {-10, 0}, {0, -10}, {0, 0}, 10, 1.5707963705062866f,
         3.141592502593994f},
        {"clockwise across the cut", {0, -10}, {-10, 0}, {0, 10}, {0, 0}, 10, 4.71238899230957f, -3.141592502593994f},
        {"clockwise through the bottom", {10, 0}, {0, -10}, {-10, 0}, {0, 0}, 10, 0.0f, -3.1415927410125732f},
        // midpoints halve toward zero: (-1000000 - 999997) / 2 is -999998 (floor would give a centre
        // y of -1000006); centre (1000005.56, -1000005.31) truncated, radius 15.53 truncated
        {"slanted near 1e6", {1000003, -999990}, {999990, -1000007}, {1000021, -1000012}, {1000005, -1000005}, 15,
         -4.546578407287598f, 4.137784004211426f},
        {"small, unrounded centre (0.33, 1.67)", {-7, 2}, {0, 9}, {6, -3}, {0, 1}, 7, 3.0961694717407227f,
         -3.7850937843322754f},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        gu_point_t centre = {-99, -99};
        gu_coord_t radius = -99;
        float start = -99, sweep = -99;
        ASSERT_EQ(gu_arc3p_calc(&row.p1, &row.p2, &row.p3, &centre, &radius, &start, &sweep), 1);
        EXPECT_EQ(centre.x, row.centre.x);
        EXPECT_EQ(centre.y, row.centre.y);
        EXPECT_EQ(radius, row.radius);
        EXPECT_EQ(start, row.start);
        EXPECT_EQ(sweep, row.sweep);
    }

    const gu_point_t a = {0, 0}, b = {5, 5}, c = {-7, -7};
    gu_point_t centre = {-99, -99};
    gu_coord_t radius = -99;
    float start = -99, sweep = -99;
    EXPECT_EQ(gu_arc3p_calc(&a, &b, &c, &centre, &radius, &start, &sweep), 0);
    // Nearly collinear: the centre lies some 5e11 below.
    const gu_point_t top = {1000000, 1}, end = {2000000, 0};
    EXPECT_EQ(gu_arc3p_calc(&a, &top, &end, &centre, &radius, &start, &sweep), 0);
    EXPECT_EQ(centre.x, -99); // untouched
    EXPECT_EQ(radius, -99);
    EXPECT_EQ(start, -99);
}

TEST(ArcTest, ArcPolygonsTruncateAndFollowTheCountRule)
{
    const gu_point_t e = {10, 0}, n = {0, 10}, w = {-10, 0};
    const struct {
        const char* name;
        gu_point_t p1, p2, p3;
        int segs, max;
        int count;
        Pts want;
    } rows[] = {
        // k = 8 * pi / 2pi = 4 points; cos(pi) * 10 truncates to -9, a circle would round to -10
        {"half circle", e, n, w, 8, 100, 4, {{10, 0}, {4, 8}, {-5, 8}, {-9, 0}}},
        {"capped at max", e, n, w, 64, 5, 5, {{10, 0}, {7, 7}, {0, 9}, {-7, 7}, {-9, 0}}},
        {"two points at least", e, n, w, 1, 100, 2, {{10, 0}, {-9, 0}}},
        {"across the cut", {0, 10}, {-10, 0}, {0, -10}, 8, 100, 3, {{0, 9}, {-9, 0}, {0, -9}}},
        {"collinear gives the chord", {0, 0}, {5, 5}, {-7, -7}, 8, 100, 2, {{0, 0}, {-7, -7}}},
        {"max below 1 is passed back", e, n, w, 64, 0, 0, {}},
        {"negative max is passed back", e, n, w, 64, -3, -3, {}},
        {"one point cannot hold an arc", e, n, w, 64, 1, 0, {}},
        {"nor can it hold the chord", {0, 0}, {5, 5}, {-7, -7}, 8, 1, 0, {}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        Pts out(100, gu_point_t{-99, -99});
        int16_t count = 99;
        gu_arc3p2polygon(&count, out.data(), &row.p1, &row.p2, &row.p3, static_cast<int16_t>(row.segs),
                         static_cast<int16_t>(row.max));
        EXPECT_EQ(count, row.count);
        if (count > 0) {
            EXPECT_TRUE(same_points(row.want, out.data(), count));
        } else {
            EXPECT_EQ(out[0].x, -99);
        }
    }

    // Near 1e6: 21 points, both ends on the circle (radius 15 about the truncated centre).
    const gu_point_t p1 = {1000003, -999990}, p2 = {999990, -1000007}, p3 = {1000021, -1000012};
    Pts out(100);
    int16_t count = 0;
    gu_arc3p2polygon(&count, out.data(), &p1, &p2, &p3, 32, 100);
    EXPECT_TRUE(same_points({{1000002, -999990}, {999999, -999991}, {999996, -999992}, {999994, -999994},
                             {999992, -999996}, {999991, -999999}, {999990, -1000002}, {999990, -1000005},
                             {999990, -1000008}, {999991, -1000011}, {999993, -1000014}, {999995, -1000016},
                             {999997, -1000018}, {1000000, -1000019}, {1000003, -1000019}, {1000006, -1000019},
                             {1000009, -1000019}, {1000012, -1000017}, {1000015, -1000015}, {1000017, -1000013},
                             {1000018, -1000010}},
                            out.data(), count));
}

TEST(ArcTest, CentreArcDirections)
{
    const gu_point_t s = {10, 0}, e = {0, 10};
    const struct {
        const char* name;
        gu_point_t start, centre, end;
        int direction;
        gu_coord_t radius;
        float a0, sweep;
    } rows[] = {
        {"counter-clockwise quarter", s, kOrigin, e, 0, 10, 0.0f, 1.5707963705062866f},
        {"clockwise three quarters", s, kOrigin, e, 1, 10, 0.0f, -4.71238899230957f},
        // radius 9.9 truncates; the end's own distance is ignored
        {"radius from the start only", {7, 7}, kOrigin, {-3, 1}, 0, 9, 0.7853981852531433f, 2.0344438552856445f},
        {"same angle, no sweep", s, kOrigin, {20, 0}, 1, 10, 0.0f, 0.0f},
        {"near 1e6", {-1000000, 999999}, {-1000010, 1000005}, {-1000020, 999990}, 1, 11, -0.5404195189476013f,
         -1.6183794736862183f},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        gu_coord_t radius = -99;
        float a0 = -99, sweep = -99;
        ASSERT_EQ(gu_arcc2p_calc(&row.start, &row.centre, &row.end, row.direction, &radius, &a0, &sweep), 1);
        EXPECT_EQ(radius, row.radius);
        EXPECT_EQ(a0, row.a0);
        EXPECT_EQ(sweep, row.sweep);
    }

    gu_coord_t radius = -99;
    float a0 = -99, sweep = -99;
    EXPECT_EQ(gu_arcc2p_calc(&kOrigin, &kOrigin, &e, 0, &radius, &a0, &sweep), 0);
    EXPECT_EQ(gu_arcc2p_calc(&s, &kOrigin, &kOrigin, 1, &radius, &a0, &sweep), 0);
    EXPECT_EQ(radius, -99);
}

TEST(ArcTest, CentreArcPolygons)
{
    const gu_point_t s = {10, 0}, e = {0, 10};
    const struct {
        const char* name;
        gu_point_t start, centre, end;
        int direction, segs, max;
        Pts want;
    } rows[] = {
        // sin(pi/6) * 10 = 4.999... truncates to 4
        {"counter-clockwise quarter", s, kOrigin, e, 0, 16, 100, {{10, 0}, {8, 5}, {4, 8}, {0, 9}}},
        {"clockwise three quarters",
         s,
         kOrigin,
         e,
         1,
         16,
         100,
         {{10, 0}, {9, -4}, {6, -7}, {2, -9}, {-1, -9}, {-5, -8}, {-8, -5}, {-9, -1}, {-9, 2}, {-7, 6}, {-4, 9}, {0, 9}}},
        {"near 1e6",
         {-1000000, 999999},
         {-1000010, 1000005},
         {-1000020, 999990},
         1,
         24,
         100,
         {{-1000000, 999999}, {-1000002, 999996}, {-1000005, 999994}, {-1000009, 999994}, {-1000012, 999994},
          {-1000016, 999995}}},
        {"end at the centre", s, kOrigin, kOrigin, 0, 16, 100, {}},
        {"radius beyond the range", {2147483647, 0}, {-2147483647, 0}, e, 0, 16, 100, {}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        Pts out(100);
        int16_t count = 99;
        gu_arcc2p2polygon(&count, out.data(), &row.start, &row.centre, &row.end, static_cast<int16_t>(row.direction),
                          static_cast<int16_t>(row.segs), static_cast<int16_t>(row.max));
        EXPECT_TRUE(same_points(row.want, out.data(), count));
    }
}

TEST(ArcTest, UnknownDirectionAborts)
{
    const gu_point_t s = {10, 0}, e = {0, 10};
    gu_coord_t radius;
    float a0, sweep;
    const std::string pattern = testutil::AssertionPattern(
        "geometry/arc.cpp",
        "int gu_arcc2p_calc(const gu_point_t*, const gu_point_t*, const gu_point_t*, int, gu_coord_t*, float*, float*)",
        "direction == 1");
    EXPECT_DEATH(gu_arcc2p_calc(&s, &kOrigin, &e, 2, &radius, &a0, &sweep), pattern);
    gu_point_t out[100];
    int16_t count;
    EXPECT_DEATH(gu_arcc2p2polygon(&count, out, &s, &kOrigin, &e, -1, 16, 100), pattern);
}

TEST(ArcTest, EllipticArcs)
{
    const float quarter = 1.5707963705062866f; // pi/2 as a float, a little above it
    const float inf = std::numeric_limits<float>::infinity();
    const struct {
        const char* name;
        gu_point_t centre;
        int width, height, segs, max;
        float a0, sweep;
        Pts want;
    } rows[] = {
        // step 0: every point at the start angle, the enlargement factor is 1
        {"no sweep", {100, 200}, 40, 20, 16, 50, 0.7853981852531433f, 0.0f, {{114, 207}, {114, 207}, {114, 207}}},
        // two segments: the inner points at pi/8 and 3pi/8 on the ellipse enlarged by 1 / cos(pi/8)
        {"quarter", {0, 0}, 200, 100, 8, 50, 0.0f, quarter, {{100, 0}, {100, 20}, {41, 50}, {0, 49}}},
        {"three pi becomes pi",
         {0, 0},
         200,
         100,
         8,
         50,
         0.0f,
         9.42477798f,
         {{100, 0}, {100, 20}, {41, 50}, {-41, 49}, {-100, 20}, {-99, 0}}},
        {"-7 becomes -0.72", {0, 0}, 200, 100, 8, 50, 0.0f, -7.0f, {{100, 0}, {100, -18}, {75, -32}}},
        // the float nearest 2pi lies above the double 2pi: a full turn leaves 1.7e-7
        {"a float full turn", {0, 0}, 200, 100, 8, 50, 0.0f, 6.2831854820251465f, {{100, 0}, {100, 0}, {99, 0}}},
        // k = 30 reaches max - 1: four segments; odd negative width halves toward zero
        {"capped, odd and negative sizes",
         {-5, 5},
         -31,
         61,
         64,
         6,
         1.0f,
         -3.0f,
         {{-13, 30}, {-18, 23}, {-20, 0}, {-15, -19}, {-4, -27}, {1, -22}}},
        {"max below 3", {0, 0}, 200, 100, 8, 2, 0.0f, quarter, {}},
        {"infinite sweep", {0, 0}, 200, 100, 8, 50, 0.0f, inf, {}},
        {"NaN start", {0, 0}, 200, 100, 8, 50, std::nanf(""), quarter, {}},
        // one segment over a half turn: the enlarged ellipse is 2.3e7 times the true one
        {"half turn in one segment", {0, 0}, 200, 100, 1, 50, 0.0f, 3.14159274f, {}},
        {"beyond the range", {2147483600, 0}, 200, 100, 8, 50, 0.0f, quarter, {}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        Pts out(50, gu_point_t{-99, -99});
        int16_t count = 99;
        gu_arc2a2polygon(&count, out.data(), &row.centre, row.width, row.height, static_cast<int16_t>(row.segs),
                         static_cast<int16_t>(row.max), row.a0, row.sweep);
        EXPECT_TRUE(same_points(row.want, out.data(), count));
        if (count == 0) {
            EXPECT_EQ(out[0].x, -99);
        }
    }

    // A huge sweep is reduced, not looped over forever.
    Pts out(50);
    int16_t count = 0;
    gu_arc2a2polygon(&count, out.data(), &kOrigin, 200, 100, 8, 50, 0.0f, 3e38f);
    EXPECT_GE(count, 3);
}

TEST(ArcTest, ArcFromStartPoint)
{
    // Start angle atan2(10, 0) = pi/2, narrowed to float, then a half turn of the ellipse.
    const gu_point_t start = {0, 10};
    Pts out(50);
    int16_t count = 0;
    gu_arcpa2polygon(&count, out.data(), &kOrigin, &start, 200, 100, 8, 50, 3.14159274f);
    EXPECT_TRUE(same_points({{0, 49}, {-41, 49}, {-100, 20}, {-99, -20}, {-41, -50}, {0, -49}}, out.data(), count));
}
