// Polygon primitives: sign conventions, coordinates near the 32-bit limits, snapping, clean-up,
// offsetting and intersections.
#include <cmath>

#include "points.h"

namespace {
const Pts kSquare = {{0, 0}, {10, 0}, {10, 10}, {0, 10}};
const Pts kWhole = {{kMin, kMin}, {kMax, kMin}, {kMax, kMax}, {kMin, kMax}}; // differences overflow int
} // namespace

TEST(PolygonTest, Orientation)
{
    const Pts ccw[] = {kSquare, {{-3, -4}, {5, -1}, {2, 6}}, {{kMin, kMin}, {kMax, kMin}, {0, kMax}},
                       {{0, 0}, {10, 0}, {10, 10}, {0, 10}, {0, 5}},  // two leftmost vertices
                       {{0, 10}, {0, 5}, {0, 0}, {10, 0}, {10, 10}}, // leftmost run reached by wrapping
                       {{0, 0}, {20, 10}, {0, 20}, {5, 10}}};        // concave
    for (const Pts& p : ccw) {
        EXPECT_EQ(gu_polygon_orientationi(static_cast<int>(p.size()), p.data()), 1) << &p - ccw;
        EXPECT_EQ(gu_polygon_orientation(static_cast<int16_t>(p.size()), Reversed(p).data()), -1) << &p - ccw;
    }
    EXPECT_EQ(gu_polygon_orientationi(3, Pts{{5, 0}, {5, 10}, {5, 20}}.data()), 1); // no turn
    EXPECT_EQ(gu_polygon_orientationi(2, Reversed(kSquare).data()), 1);
    EXPECT_EQ(gu_polygon_orientation(-1, kSquare.data()), 1);

    // Orthogonal rule: the lowest leftmost vertex and the y of its successor; (0,10) comes first below.
    const struct { Pts p; int want; } ortho[] = {
        {kSquare, 1}, {Reversed(kSquare), -1}, {kWhole, 1}, {{{0, 0}, {0, 10}}, 1},
        {{{0, 10}, {5, 10}, {5, 5}, {10, 5}, {10, 0}, {0, 0}}, -1},
        {{{0, 10}, {0, 0}, {10, 0}, {10, 5}, {5, 5}, {5, 10}}, 1}};
    for (const auto& row : ortho) {
        EXPECT_EQ(gu_ortho_polygon_orientationi(static_cast<int>(row.p.size()), row.p.data()), row.want);
        EXPECT_EQ(gu_ortho_polygon_orientation(static_cast<int16_t>(row.p.size()), row.p.data()), row.want);
    }
}

TEST(PolygonTest, CheckOrthoAndSnap)
{
    const struct { Pts p; int open, closed; } classes[] = {
        {{{0, 0}, {5, 5}, {5, 9}}, 1, 2}, {kSquare, 0, 0}, {{{3, 3}, {3, 3}, {3, 8}}, 0, 0},
        {{{0, 0}, {-5, 5}}, 1, 1}, {{{kMin, 0}, {kMax, -1}}, 2, 2}, // as ints the differences are -1, -1
        {{{kMin, kMin}, {kMax, kMax}}, 1, 1}, {{{1, 2}}, 0, 0}};
    for (const auto& row : classes) {
        const int n = static_cast<int>(row.p.size());
        EXPECT_EQ(gu_check_orthoi(n, row.p.data(), 0), row.open) << &row - classes;
        EXPECT_EQ(gu_check_ortho(static_cast<int16_t>(n), row.p.data(), 1), row.closed) << &row - classes;
    }
    EXPECT_EQ(gu_check_ortho(-3, kSquare.data(), 1), 0);

    const struct { const char* name; int mode; gu_point_t anchor, pt, want; } snaps[] = {
        {"shallow to horizontal", 1, {0, 0}, {10, 3}, {10, 0}},
        {"rising diagonal keeps x", 1, {0, 0}, {10, 7}, {10, 10}},
        {"falling diagonal keeps x", 1, {0, 0}, {10, -7}, {10, -10}},
        {"steep rising diagonal keeps y", 1, {0, 0}, {4, 7}, {7, 7}},
        {"steep falling diagonal keeps x anyway", 1, {0, 0}, {3, -7}, {3, -3}},
        {"steep falling, left of the anchor", 1, {100, -50}, {97, -43}, {97, -47}},
        {"very steep to vertical", 1, {100, -50}, {101, -40}, {100, -40}},
        {"already diagonal", 1, {0, 0}, {-6, 6}, {-6, 6}},
        {"45 degrees goes horizontal", 0, {0, 0}, {10, 10}, {10, 0}},
        {"steep goes vertical", 0, {0, 0}, {3, -7}, {0, -7}},
        {"unknown mode", 2, {0, 0}, {3, -7}, {3, -7}},
        {"whole range (as ints dx = -1: a diagonal)", 1, {kMin, 0}, {kMax, 1}, {kMax, 0}},
        {"diagonal clamped at the maximum", 1, {2147483000, 0}, {2147483600, 1000}, {kMax, 1000}},
        {"diagonal clamped at the minimum", 1, {0, -2147483000}, {1000, -2147483600}, {1000, kMin}}};
    for (const auto& row : snaps) {
        gu_point_t pt = row.pt;
        gu_snap_ortho(row.anchor, &pt, row.mode);
        EXPECT_TRUE(SamePoints({row.want}, &pt, 1)) << row.name;
    }
}

TEST(PolygonTest, AreaPerimeterBox)
{
    const Pts tri = {{-3, -4}, {5, -1}, {2, 6}};
    EXPECT_EQ(gu_polygon_area(4, Reversed(kSquare).data()), 100.0);
    EXPECT_EQ(gu_polygon_periphery(4, kSquare.data()), 40.0);
    EXPECT_EQ(gu_polygon_area(3, tri.data()), 32.5);
    EXPECT_DOUBLE_EQ(gu_polygon_periphery(3, tri.data()), std::sqrt(73.) + std::sqrt(58.) + std::sqrt(125.));
    EXPECT_DOUBLE_EQ(gu_polygon_area(4, kWhole.data()), 4294967295.0 * 4294967295.0);
    EXPECT_DOUBLE_EQ(gu_polygon_periphery(4, kWhole.data()), 4 * 4294967295.0);
    const gu_point_t one = {7, -8};
    EXPECT_EQ(gu_polygon_area(1, &one) + gu_polygon_periphery(1, &one), 0.0);
    EXPECT_EQ(gu_polygon_area(0, nullptr) + gu_polygon_periphery(0, nullptr), 0.0);

    // The empty box's maximum starts at -2147483647, not at the smallest int.
    const gu_rect_t boxes[] = {gu_bounding_box(4, kWhole.data()), gu_bounding_box(3, tri.data()),
                               gu_bounding_box(0, nullptr)};
    Pts corners;
    for (const gu_rect_t& r : boxes)
        corners.insert(corners.end(), {{r.xmin, r.ymin}, {r.xmax, r.ymax}});
    EXPECT_TRUE(SamePoints({{kMin, kMin}, {kMax, kMax}, {-3, -4}, {5, 6}, {kMax, kMax}, {-kMax, -kMax}},
                           corners.data(), 6));
}

TEST(PolygonTest, CountsAboveTheSigned16BitRange)
{
    Pts p; // 40000 unit steps round a 10000 square, counter-clockwise
    for (int i = 0; i < 40000; ++i) {
        const int k = i % 10000, side = i / 10000;
        p.push_back(side == 0 ? gu_point_t{k, 0} : side == 1 ? gu_point_t{10000, k}
                    : side == 2 ? gu_point_t{10000 - k, 10000} : gu_point_t{0, 10000 - k});
    }
    EXPECT_EQ(gu_polygon_area(40000, p.data()), 1e8);
    EXPECT_EQ(gu_polygon_periphery(40000, p.data()), 40000.0);
    EXPECT_EQ(gu_bounding_box(40000, p.data()).xmax, 10000);
    EXPECT_EQ(gu_polygon_orientationi(40000, Reversed(p).data()), -1);
    Pts q = p;
    EXPECT_EQ(gu_delete_redundant_pointsi(40000, q.data(), 1), 4);
    EXPECT_TRUE(SamePoints({{0, 0}, {10000, 0}, {10000, 10000}, {0, 10000}}, q.data(), 4));
    q = p; // every point moves; the count comes back narrowed to 16 bits
    EXPECT_EQ(gu_size_polygon(40000, q.data(), 1), static_cast<int16_t>(40000 - 65536));
    EXPECT_TRUE(SamePoints({{-1, -1}, {1, -1}}, q.data(), 2));

    Pts line; // a million collinear points: one pass, not one shift per removed point
    for (int i = 0; i < 1000000; ++i)
        line.push_back({i, 2 * i});
    line.push_back({0, 5});
    const int m = gu_delete_redundant_pointsi(static_cast<int>(line.size()), line.data(), 0);
    EXPECT_TRUE(SamePoints({{0, 0}, {999999, 1999998}, {0, 5}}, line.data(), m));
}

TEST(PolygonTest, DeletePoints)
{
    Pts out(6);
    const Pts runs = {{1, 1}, {1, 1}, {2, 2}, {2, 2}, {2, 2}, {1, 1}}, closing = {{0, 0}, {5, 0}, {0, 0}};
    const int m = gu_delete_multiple_pointsi(6, runs.data(), out.data());
    EXPECT_TRUE(SamePoints({{1, 1}, {2, 2}, {1, 1}}, out.data(), m));
    EXPECT_EQ(gu_delete_multiple_points(3, closing.data(), out.data()), 3); // the closing pair stays
    EXPECT_EQ(gu_delete_multiple_points(0, closing.data(), out.data()), 1); // copies the first point anyway

    const struct { const char* name; int closed; Pts in, want; } rows[] = {
        {"collinear run", 0, {{0, 0}, {1, 0}, {2, 0}, {3, 0}, {3, 5}}, {{0, 0}, {3, 0}, {3, 5}}},
        {"reversal on the line", 0, {{0, 0}, {2, 0}, {1, 0}, {5, 5}}, {{0, 0}, {1, 0}, {5, 5}}},
        // the first (1,1) goes; the second is tested against the last point kept, (0,0), and stays
        {"repeated corner keeps one copy", 0, {{0, 0}, {1, 1}, {1, 1}, {5, 0}}, {{0, 0}, {1, 1}, {5, 0}}},
        {"open two equal points", 0, {{3, 3}, {3, 3}}, {{3, 3}}},
        {"open keeps collinear ends", 0, {{5, 0}, {10, 0}, {10, 10}, {0, 0}, {3, 0}},
         {{5, 0}, {10, 0}, {10, 10}, {0, 0}, {3, 0}}},
        {"closed drops the first", 1, {{5, 0}, {10, 0}, {10, 10}, {0, 10}, {0, 0}},
         {{10, 0}, {10, 10}, {0, 10}, {0, 0}}},
        {"closed drops the last", 1, {{0, 0}, {10, 0}, {10, 10}, {0, 10}, {0, 5}}, kSquare},
        {"closed two points", 1, {{0, 0}, {7, 7}}, {{7, 7}}},
        {"collinear across the range", 0, {{kMin, kMin}, {0, 0}, {kMax, kMax}}, {{kMin, kMin}, {kMax, kMax}}},
        {"nearly collinear at the limits", 0, {{kMin, kMin}, {0, 1}, {kMax, kMax}},
         {{kMin, kMin}, {0, 1}, {kMax, kMax}}}};
    for (const auto& row : rows) {
        Pts p = row.in, q = row.in;
        const int k = gu_delete_redundant_pointsi(static_cast<int>(p.size()), p.data(), row.closed);
        EXPECT_TRUE(SamePoints(row.want, p.data(), k)) << row.name;
        EXPECT_EQ(gu_delete_redundant_points(static_cast<int16_t>(q.size()), q.data(), row.closed), k);
    }
    EXPECT_EQ(gu_delete_redundant_points(-2, nullptr, 1), 0);
}

TEST(PolygonTest, SizePolygons)
{
    const Pts grown = {{-1, -1}, {11, -1}, {11, 11}, {-1, 11}}, shrunk = {{1, 1}, {9, 1}, {9, 9}, {1, 9}};
    const Pts tri = {{0, 0}, {40, 0}, {0, 30}};
    const Pts ell = {{0, 0}, {20, 0}, {20, 10}, {10, 10}, {10, 20}, {0, 20}};
    const struct { const char* name; bool ortho; Pts in; int d; Pts want; /* empty: -1 */ } rows[] = {
        {"square grows", false, kSquare, 1, grown},
        {"square shrinks", false, kSquare, -1, shrunk},
        // 3-4-5 triangle: the hypotenuse 3x + 4y = 120 moves to 3x + 4y = 130
        {"slanted triangle grows", false, tri, 2, {{-2, -2}, {46, -2}, {-2, 34}}},
        {"clockwise triangle grows too", false, Reversed(tri), 2, {{-2, 34}, {46, -2}, {-2, -2}}},
        {"slanted triangle shrinks", false, tri, -2, {{2, 2}, {34, 2}, {2, 26}}},
        // exact (999998.73, -1000004.18), (1000013.36, -999995.82), (999988.29, -999983.29)
        {"slanted near 1e6", false, {{1000000, -1000000}, {1000007, -999996}, {999995, -999990}}, 3,
         {{999999, -1000004}, {1000013, -999996}, {999988, -999983}}},
        {"repeats dropped, the rest untouched", false, {{0, 0}, {0, 0}, {10, 0}, {10, 10}, {10, 10}, {0, 10}},
         1, {{-1, -1}, {11, -1}, {11, 11}, {-1, 11}, {10, 10}, {0, 10}}},
        {"one point", false, {{0, 0}}, 1, {}},
        {"one distinct point", false, {{3, 3}, {3, 3}, {3, 3}}, 1, {}},
        {"two points turn back", false, {{0, 0}, {10, 0}}, 1, {}},
        {"explicitly closed: zero-length edge", false, {{0, 0}, {10, 0}, {10, 10}, {0, 0}}, 1, {}},
        {"outside the range", false, {{0, 0}, {kMax, 0}, {kMax, 10}, {0, 10}}, 5, {}},
        {"ortho square grows", true, kSquare, 1, grown},
        {"ortho square shrinks", true, kSquare, -1, shrunk},
        {"ortho clockwise square grows", true, Reversed(kSquare), 1, Reversed(grown)},
        {"ortho L grows", true, ell, 2, {{-2, -2}, {22, -2}, {22, 12}, {12, 12}, {12, 22}, {-2, 22}}},
        {"ortho clockwise L shrinks", true, {{0, 20}, {10, 20}, {10, 10}, {20, 10}, {20, 0}, {0, 0}}, -3,
         {{3, 17}, {7, 17}, {7, 7}, {17, 7}, {17, 3}, {3, 3}}},
        {"ortho at the limits", true, kWhole, -1,
         {{kMin + 1, kMin + 1}, {kMax - 1, kMin + 1}, {kMax - 1, kMax - 1}, {kMin + 1, kMax - 1}}},
        {"ortho beyond the limits", true, kWhole, 1, {}},
        {"ortho one point", true, {{0, 0}}, 1, {}}};
    for (const auto& row : rows) {
        Pts p = row.in, q = row.in;
        const int n = static_cast<int>(p.size());
        const int m = row.ortho ? gu_size_ortho_polygoni(n, p.data(), row.d)
                                : gu_size_polygon(n, p.data(), row.d);
        if (row.ortho) {
            EXPECT_EQ(gu_size_ortho_polygon(static_cast<int16_t>(n), q.data(), row.d), m) << row.name;
        }
        if (row.want.empty()) {
            EXPECT_EQ(m, -1) << row.name;
        } else {
            EXPECT_TRUE(SamePoints(row.want, p.data(), static_cast<int>(row.want.size()))) << row.name;
        }
    }
    Pts p = {{0, 0}, {10, 0}, {10, 10}, {10, 5}}; // a reversal, found after one vertex was stored
    EXPECT_EQ(gu_size_polygon(4, p.data(), 1), -1);
    EXPECT_TRUE(SamePoints({{0, 0}, {11, -1}, {10, 10}, {10, 5}}, p.data(), 4));
}

TEST(PolygonTest, IsRectangle)
{
    const struct { Pts p; int want; } rows[] = {
        {kSquare, 1}, {kWhole, 1}, {{{0, 0}, {3, 4}, {-1, 7}, {-4, 3}}, 1},
        {{{2, 2}, {2, 2}, {2, 2}, {2, 2}}, 1},
        {{{0, 0}, {4, 0}, {5, 3}, {1, 3}}, 0}, {{{0, 0}, {4, 0}, {4, 4}, {1, 3}}, 0},
        {{{0, 0}, {10, 0}, {10, 10}, {0, 10}, {0, 0}}, 0}};
    for (const auto& row : rows)
        EXPECT_EQ(gu_is_rectangle(static_cast<int>(row.p.size()), row.p.data()), row.want) << &row - rows;
}

TEST(PolygonTest, Intersections)
{
    // line: gu_line_intersection_l and its point p1 + round(d1 t); seg: gu_intersection_l and its
    // point q1 + round(d2 u); t for whichever succeeds.
    const struct { const char* name; gu_point_t p1, p2, q1, q2; int line; gu_point_t lout; int seg;
                   gu_point_t sout; double t; } rows[] = {
        {"crossing diagonals", {0, 0}, {10, 10}, {0, 10}, {10, 0}, 1, {5, 5}, 1, {5, 5}, 0.5},
        {"shared end point", {0, 0}, {10, 0}, {10, 0}, {10, 10}, 1, {10, 0}, 1, {10, 0}, 1},
        {"segments apart, lines meet", {0, 0}, {10, 0}, {5, 1}, {5, 10}, 1, {5, 0}, 0, {}, 0.5},
        {"touching boxes", {0, 0}, {10, 10}, {10, 10}, {20, 0}, 1, {10, 10}, 1, {10, 10}, 1},
        {"rounded from different segments", {0, 0}, {4, -2}, {1, -3}, {1, 5}, 1, {1, -1}, 1, {1, 0}, 0.25},
        // offsets of 2147483647.5 do not fit an int; the points do
        {"whole-range diagonals", {kMin, kMin}, {kMax, kMax}, {kMin, kMax}, {kMax, kMin}, 1, {0, 0}, 1,
         {0, -1}, 0.5},
        {"parallel", {0, 0}, {10, 0}, {0, 1}, {10, 1}, 0, {}, 0, {}, 0},
        {"point-like first segment", {3, 3}, {3, 3}, {0, 0}, {10, 10}, 0, {}, 0, {}, 0},
        // collinear: the parameter is q1.x - p1.x / d1.x, deliberately
        {"collinear, 5 - 0/10 out of range", {0, 0}, {10, 0}, {5, 0}, {20, 0}, 0, {}, 0, {}, 0},
        {"collinear, 2 - 10/10 = 1 takes q1", {10, 0}, {20, 0}, {2, 0}, {30, 0}, 1, {2, 0}, 1, {2, 0}, 1},
        {"collinear vertical, 1 - 4/4 = 0", {0, 4}, {0, 8}, {0, 1}, {0, 20}, 1, {0, 1}, 1, {0, 1}, 0},
        {"crossing outside the range", {0, 0}, {2000000000, 1}, {0, 10}, {2000000000, 10}, 0, {}, 0, {}, 0}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        double t1 = -7, t2 = -7;
        gu_point_t o1 = {U, U}, o2 = {U, U}, o3 = {U, U}, o4 = {U, U};
        EXPECT_EQ(gu_line_intersection_l(&row.p1, &row.p2, &row.q1, &row.q2, &t1, &o1), row.line);
        EXPECT_EQ(gu_line_intersection(&row.p1, &row.p2, &row.q1, &row.q2, &o2), row.line);
        EXPECT_EQ(gu_intersection_l(&row.p1, &row.p2, &row.q1, &row.q2, &t2, &o3), row.seg);
        EXPECT_EQ(gu_intersection(&row.p1, &row.p2, &row.q1, &row.q2, &o4), row.seg);
        const gu_point_t none = {U, U}, l = row.line ? row.lout : none, s = row.seg ? row.sout : none;
        EXPECT_TRUE(SamePoints({l, l, s, s}, Pts{o1, o2, o3, o4}.data(), 4)); // untouched on 0
        EXPECT_EQ(t1, row.line ? row.t : -7);
        EXPECT_EQ(t2, row.seg ? row.t : -7);
    }
}

TEST(PolygonTest, AngleConversions)
{
    EXPECT_EQ(gu_deg2rad(180.0f), 3.14159274f);
    EXPECT_EQ(gu_deg2rad(-90.0f), -1.57079637f);
    EXPECT_EQ(gu_rad2deg(1.0f), 57.2957802f); // in float arithmetic 57.2957764
    EXPECT_EQ(gu_rad2deg(1.57079637f), 90.0f);
}
