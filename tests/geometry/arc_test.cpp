// Circles and arcs: circumscription, single-precision three-point geometry across the atan2 branch
// cut, arc directions, truncation (arcs) against rounding (circles), and the point-count rules.
// Expected values follow the formulas by hand (float steps in float, the rest in double).
#include <cmath>
#include <limits>

#include <support/testutil.h>

#include "points.h"

namespace {
const gu_point_t kO = {0, 0}, kE = {10, 0}, kN = {0, 10}, kW = {-10, 0}, kS = {0, -10};
} // namespace

TEST(ArcTest, ArcGeometry)
{
    const struct { const char* name; gu_point_t p1, p2, p3, c; gu_coord_t r; float start, sweep; } rows[] = {
        {"counter-clockwise half", kE, kN, kW, kO, 10, 0.0f, 3.1415927410125732f},
        {"clockwise through the bottom (second pass)", kE, kS, kW, kO, 10, 0.0f, -3.1415927410125732f},
        // atan2 jumps across the cut: between p2 and p3 the first pass overshoots 2pi and the second
        // moves the end; between p1 and p2 the first pass moves the start
        {"counter-clockwise across the cut", kN, kW, kS, kO, 10, 1.5707963705062866f, 3.141592502593994f},
        {"clockwise across the cut", kS, kW, kN, kO, 10, 4.71238899230957f, -3.141592502593994f},
        // midpoints halve toward zero ((-1000000 - 999997) / 2 = -999998; floor would move the
        // centre's y to -1000006); centre (1000005.56, -1000005.31) and radius 15.53 truncated
        {"slanted near 1e6", {1000003, -999990}, {999990, -1000007}, {1000021, -1000012}, {1000005, -1000005},
         15, -4.546578407287598f, 4.137784004211426f},
        {"unrounded centre (0.33, 1.67)", {-7, 2}, {0, 9}, {6, -3}, {0, 1}, 7, 3.0961694717407227f,
         -3.7850937843322754f},
        // failures write nothing
        {"collinear", kO, {5, 5}, {-7, -7}, {U, U}, U, U, U},
        {"centre some 5e11 away", kO, {1000000, 1}, {2000000, 0}, {U, U}, U, U, U}};
    for (const auto& row : rows) {
        gu_point_t c = {U, U};
        gu_coord_t r = U;
        float start = U, sweep = U;
        EXPECT_EQ(gu_arc3p_calc(&row.p1, &row.p2, &row.p3, &c, &r, &start, &sweep), row.r != U) << row.name;
        EXPECT_EQ(Pts({c, {r, 0}}), Pts({row.c, {row.r, 0}})) << row.name;
        EXPECT_EQ(start, row.start) << row.name;
        EXPECT_EQ(sweep, row.sweep) << row.name;
    }

    // From a centre, in double.
    const struct { gu_point_t s, c, e; int dir; gu_coord_t r; float a0, sweep; } centre[] = {
        {kE, kO, kN, 0, 10, 0.0f, 1.5707963705062866f}, {kE, kO, kN, 1, 10, 0.0f, -4.71238899230957f},
        {{7, 7}, kO, {-3, 1}, 0, 9, 0.7853981852531433f, 2.0344438552856445f}, // the end's distance: unused
        {kE, kO, {20, 0}, 0, 10, 0.0f, 0.0f}, {kE, kO, {20, 0}, 1, 10, 0.0f, 0.0f}};
    gu_coord_t r = U;
    float a0 = U, sweep = U;
    for (const auto& row : centre) {
        ASSERT_EQ(gu_arcc2p_calc(&row.s, &row.c, &row.e, row.dir, &r, &a0, &sweep), 1);
        EXPECT_EQ(r, row.r) << &row - centre;
        EXPECT_EQ(a0, row.a0) << &row - centre;
        EXPECT_EQ(sweep, row.sweep) << &row - centre;
    }
    r = U;
    EXPECT_EQ(gu_arcc2p_calc(&kO, &kO, &kN, 0, &r, &a0, &sweep), 0);
    EXPECT_EQ(gu_arcc2p_calc(&kE, &kO, &kO, 1, &r, &a0, &sweep), 0);
    EXPECT_EQ(r, U);

    EXPECT_DEATH(gu_arcc2p_calc(&kE, &kO, &kN, 2, &r, &a0, &sweep),
                 testutil::AssertionPattern("geometry/arc.cpp",
                                            "int gu_arcc2p_calc(const gu_point_t*, const gu_point_t*, const "
                                            "gu_point_t*, int, gu_coord_t*, float*, float*)",
                                            "direction == 1"));
}

TEST(ArcTest, PolygonsOfCirclesAndArcs)
{
    // three: gu_arc3p2polygon through p1, p2, p3; else gu_arcc2p2polygon from p1 about p2 to p3.
    const struct { const char* name; bool three; gu_point_t p1, p2, p3; int dir, segs, max, n; Pts want; }
    rows[] = {
        // 8 * pi / 2pi = 4 points; cos(pi) * 10 truncates to -9 where a circle would round to -10
        {"half circle", true, kE, kN, kW, 0, 8, 100, 4, {{10, 0}, {4, 8}, {-5, 8}, {-9, 0}}},
        {"capped at max", true, kE, kN, kW, 0, 64, 5, 5, {{10, 0}, {7, 7}, {0, 9}, {-7, 7}, {-9, 0}}},
        {"two points at least", true, kE, kN, kW, 0, 3, 100, 2, {{10, 0}, {-9, 0}}},
        {"collinear gives the chord", true, kO, {5, 5}, {-7, -7}, 0, 8, 100, 2, {{0, 0}, {-7, -7}}},
        {"max below 1 is passed back", true, kE, kN, kW, 0, 64, -3, -3, {}},
        {"one point cannot hold an arc", true, kE, kN, kW, 0, 64, 1, 0, {}},
        {"nor the chord", true, kO, {5, 5}, {-7, -7}, 0, 8, 1, 0, {}},
        // sin(pi/6) * 10 = 4.999... truncates to 4
        {"centre, counter-clockwise", false, kE, kO, kN, 0, 16, 100, 4, {{10, 0}, {8, 5}, {4, 8}, {0, 9}}},
        {"centre, clockwise", false, kE, kO, kN, 1, 4, 100, 3, {{10, 0}, {-7, -7}, {0, 9}}},
        {"centre, end at the centre", false, kE, kO, kO, 0, 16, 100, 0, {}},
        {"centre, radius beyond the range", false, {kMax, 0}, {-kMax, 0}, kN, 0, 16, 100, 0, {}}};
    for (const auto& row : rows) {
        Pts out(100, gu_point_t{U, U});
        int16_t n = 99;
        const auto segs = int16_t(row.segs), max = int16_t(row.max);
        if (row.three)
            gu_arc3p2polygon(&n, out.data(), &row.p1, &row.p2, &row.p3, segs, max);
        else
            gu_arcc2p2polygon(&n, out.data(), &row.p1, &row.p2, &row.p3, int16_t(row.dir), segs, max);
        EXPECT_EQ(n, row.n) << row.name;
        EXPECT_EQ(Head(out, n), row.want) << row.name;
    }

    // Elliptic arcs from angles.
    const float inf = std::numeric_limits<float>::infinity();
    const struct { const char* name; gu_point_t c; int w, h, segs, max; float a0, sweep; Pts want; }
    ellipse[] = {
        // no step: every point at the start angle, the enlargement factor is 1
        {"no sweep", {100, 200}, 40, 20, 16, 50, 0.78539818f, 0.0f, {{114, 207}, {114, 207}, {114, 207}}},
        // four segments: inner points at odd multiples of pi/8 on the ellipse enlarged by 1 / cos(pi/8)
        {"three pi becomes pi", kO, 200, 100, 8, 50, 0.0f, 9.42477798f,
         {{100, 0}, {100, 20}, {41, 50}, {-41, 49}, {-100, 20}, {-99, 0}}},
        {"-7 becomes -0.72", kO, 200, 100, 8, 50, 0.0f, -7.0f, {{100, 0}, {100, -18}, {75, -32}}},
        // the float nearest 2pi lies above the double 2pi: a full turn leaves 1.7e-7
        {"a float full turn", kO, 200, 100, 8, 50, 0.0f, 6.2831854820251465f, {{100, 0}, {100, 0}, {99, 0}}},
        // k = 30 reaches max - 1: four segments; the odd negative width halves toward zero
        {"capped, odd and negative sizes", {-5, 5}, -31, 61, 64, 6, 1.0f, -3.0f,
         {{-13, 30}, {-18, 23}, {-20, 0}, {-15, -19}, {-4, -27}, {1, -22}}},
        {"max below 3", kO, 200, 100, 8, 2, 0.0f, 1.0f, {}},
        {"infinite sweep", kO, 200, 100, 8, 50, 0.0f, inf, {}},
        {"NaN start", kO, 200, 100, 8, 50, std::nanf(""), 1.0f, {}},
        // one segment over a half turn: the enlarged ellipse is 2.3e7 times the true one
        {"half turn in one segment", kO, 200, 100, 1, 50, 0.0f, 3.14159274f, {}}};
    for (const auto& row : ellipse) {
        Pts out(50, gu_point_t{U, U});
        int16_t n = 99;
        gu_arc2a2polygon(&n, out.data(), &row.c, row.w, row.h, int16_t(row.segs), int16_t(row.max), row.a0,
                         row.sweep);
        EXPECT_EQ(Head(out, n), row.want) << row.name;
    }
    Pts out(50);
    int16_t n = 0;
    // From a start point: atan2(10, 0) = pi/2 narrowed to float, then a half turn.
    gu_arcpa2polygon(&n, out.data(), &kO, &kN, 200, 100, 8, 50, 3.14159274f);
    EXPECT_EQ(Head(out, n), Pts({{0, 49}, {-41, 49}, {-100, 20}, {-99, -20}, {-41, -50}, {0, -49}}));

    // Circles round their circumscribed vertices.
    const struct { const char* name; gu_point_t c; int w, h, n; Pts want; } circles[] = {
        // first vertex at 45 degrees, radius enlarged by 1 / cos 45
        {"square", kO, 200, 200, 4, {{100, 100}, {-100, 100}, {-100, -100}, {100, -100}}},
        // -7 + 7.5 rounds away from zero to 1 (an arc would truncate it to 0)
        {"triangle rounds halves up", {-7, -3}, 15, 15, 3, {{1, 10}, {-22, -3}, {0, -16}}},
        {"two vertices of a circle lie at infinity", {3, -3}, 10, 10, 2, {}},
        {"beyond the coordinate range", {2147483000, 0}, 2000, 2000, 8, {}}};
    for (const auto& row : circles) {
        Pts out(8, gu_point_t{U, U});
        n = -1;
        gu_circle2polygon(&n, out.data(), &row.c, row.w, row.h, int16_t(row.n));
        EXPECT_EQ(Head(out, n), row.want) << row.name;
    }
    n = 7;
    gu_circle2polygon(&n, nullptr, &kO, 10, 10, -3);
    EXPECT_EQ(n, -3);
}
