// Polygon primitives: sign conventions, coordinates near the 32-bit limits, snapping, clean-up,
// offsetting and intersections.
#include <cmath>

#include "points.h"

namespace {
const Pts kSquare = {{0, 0}, {10, 0}, {10, 10}, {0, 10}};
const Pts kWhole = {{kMin, kMin}, {kMax, kMin}, {kMax, kMax}, {kMin, kMax}}; // differences overflow int
const Pts kTri = {{-3, -4}, {5, -1}, {2, 6}};

int size(const Pts& p)
{
    return static_cast<int>(p.size());
}
} // namespace

TEST(PolygonTest, OrientationAndOrthogonality)
{
    // Counter-clockwise, so 1, and -1 reversed. `ortho`: the orthogonal rule applies too; it decides
    // at the lowest leftmost vertex, which reversed the last row does not list first.
    const struct { Pts p; bool ortho; } ccw[] = {
        {kSquare, true}, {{{kMin, kMin}, {kMax, kMin}, {0, kMax}}, false},
        {{{0, 0}, {10, 0}, {10, 10}, {0, 10}, {0, 5}}, true},  // two leftmost vertices
        {{{0, 10}, {0, 5}, {0, 0}, {10, 0}, {10, 10}}, true}, // leftmost run reached by wrapping
        {{{0, 0}, {20, 10}, {0, 20}, {5, 10}}, false},        // concave
        {{{0, 0}, {10, 0}, {10, 5}, {5, 5}, {5, 10}, {0, 10}}, true}};
    for (const auto& row : ccw) {
        const Pts& p = row.p, rev(p.rbegin(), p.rend());
        EXPECT_EQ(gu_polygon_orientationi(size(p), p.data()), 1) << &row - ccw;
        EXPECT_EQ(gu_polygon_orientation(int16_t(size(p)), rev.data()), -1) << &row - ccw;
        if (row.ortho) {
            EXPECT_EQ(gu_ortho_polygon_orientationi(size(p), p.data()), 1) << &row - ccw;
            EXPECT_EQ(gu_ortho_polygon_orientation(int16_t(size(p)), rev.data()), -1) << &row - ccw;
        }
    }
    EXPECT_EQ(gu_polygon_orientationi(3, Pts{{5, 0}, {5, 10}, {5, 20}}.data()), 1); // no turn

    const struct { Pts p; int open, closed; } classes[] = {
        {{{0, 0}, {5, 5}, {5, 9}}, 1, 2}, {kSquare, 0, 0}, {{{3, 3}, {3, 3}, {3, 8}}, 0, 0},
        {{{0, 0}, {-5, 5}}, 1, 1}, {{{kMin, 0}, {kMax, -1}}, 2, 2}}; // as ints: -1, -1
    for (const auto& row : classes) {
        EXPECT_EQ(gu_check_orthoi(size(row.p), row.p.data(), 0), row.open) << &row - classes;
        EXPECT_EQ(gu_check_ortho(int16_t(size(row.p)), row.p.data(), 1), row.closed) << &row - classes;
    }
    EXPECT_EQ(gu_check_ortho(-3, kSquare.data(), 1), 0);

    const struct { const char* name; int mode; gu_point_t anchor, pt, want; } snaps[] = {
        {"shallow to horizontal", 1, {0, 0}, {10, 3}, {10, 0}},
        {"rising diagonal keeps x", 1, {0, 0}, {10, 7}, {10, 10}},
        {"steep rising diagonal keeps y", 1, {0, 0}, {4, 7}, {7, 7}},
        {"steep falling, left of the anchor", 1, {100, -50}, {97, -43}, {97, -47}},
        {"very steep to vertical", 1, {100, -50}, {101, -40}, {100, -40}},
        {"45 degrees goes horizontal", 0, {0, 0}, {10, 10}, {10, 0}},
        {"steep goes vertical", 0, {0, 0}, {3, -7}, {0, -7}},
        {"unknown mode", 2, {0, 0}, {3, -7}, {3, -7}},
        {"whole range (as ints dx = -1: a diagonal)", 1, {kMin, 0}, {kMax, 1}, {kMax, 0}},
        {"diagonal clamped at the maximum", 1, {2147483000, 0}, {2147483600, 1000}, {kMax, 1000}}};
    for (const auto& row : snaps) {
        gu_point_t pt = row.pt;
        gu_snap_ortho(row.anchor, &pt, row.mode);
        EXPECT_EQ(pt, row.want) << row.name;
    }
}

TEST(PolygonTest, MeasuresAndIntersections)
{
    EXPECT_EQ(gu_polygon_area(4, Pts(kSquare.rbegin(), kSquare.rend()).data()), 100.0);
    EXPECT_EQ(gu_polygon_periphery(4, kSquare.data()), 40.0);
    EXPECT_EQ(gu_polygon_area(3, kTri.data()), 32.5);
    EXPECT_DOUBLE_EQ(gu_polygon_periphery(3, kTri.data()), std::sqrt(73.) + std::sqrt(58.) + std::sqrt(125.));
    EXPECT_DOUBLE_EQ(gu_polygon_area(4, kWhole.data()), 4294967295.0 * 4294967295.0);
    EXPECT_DOUBLE_EQ(gu_polygon_periphery(4, kWhole.data()), 4 * 4294967295.0);
    EXPECT_EQ(gu_polygon_area(0, nullptr) + gu_polygon_periphery(0, nullptr), 0.0);

    // The empty box's maximum starts at -2147483647, not at the smallest int.
    const gu_rect_t b = gu_bounding_box(3, kTri.data()), e = gu_bounding_box(0, nullptr);
    EXPECT_EQ(Pts({{b.xmin, b.ymin}, {b.xmax, b.ymax}, {e.xmin, e.ymin}, {e.xmax, e.ymax}}),
              Pts({{-3, -4}, {5, 6}, {kMax, kMax}, {-kMax, -kMax}}));

    // Rotated and degenerate rectangles qualify; parallelograms, kites and five points do not.
    const Pts rects[] = {kSquare, kWhole, {{0, 0}, {3, 4}, {-1, 7}, {-4, 3}}, Pts(4, gu_point_t{2, 2})};
    const Pts others[] = {{{0, 0}, {4, 0}, {5, 3}, {1, 3}}, {{0, 0}, {4, 0}, {4, 4}, {1, 3}},
                          {{0, 0}, {10, 0}, {10, 10}, {0, 10}, {0, 0}}};
    for (const Pts& p : rects)
        EXPECT_EQ(gu_is_rectangle(size(p), p.data()), 1) << &p - rects;
    for (const Pts& p : others)
        EXPECT_EQ(gu_is_rectangle(size(p), p.data()), 0) << &p - others;

    EXPECT_EQ(gu_deg2rad(180.0f), 3.14159274f);
    EXPECT_EQ(gu_rad2deg(1.0f), 57.2957802f); // computed in double; in float arithmetic 57.2957764

    // Counts above the signed 16-bit range.
    Pts big(40000); // a right triangle with 39998 points along its base
    for (int i = 0; i < 39999; ++i)
        big[i] = {i, 0};
    big[39999] = {0, 39998};
    EXPECT_EQ(gu_polygon_area(40000, big.data()), 39998.0 * 39998 / 2);
    // every point moves; the count comes back narrowed to 16 bits
    EXPECT_EQ(gu_size_polygon(40000, big.data(), 1), static_cast<int16_t>(40000 - 65536));
    EXPECT_EQ(Head(big, 2), Pts({{-1, -1}, {1, -1}}));

    // line: gu_line_intersection_l and its point p1 + round(d1 t); seg: gu_intersection_l and its
    // point q1 + round(d2 u); t for whichever succeeds. Nothing is written on failure.
    const struct { const char* name; gu_point_t p1, p2, q1, q2; int line; gu_point_t lout; int seg;
                   gu_point_t sout; double t; } rows[] = {
        {"crossing diagonals", {0, 0}, {10, 10}, {0, 10}, {10, 0}, 1, {5, 5}, 1, {5, 5}, 0.5},
        {"shared end point, touching boxes", {0, 0}, {10, 0}, {10, 0}, {10, 10}, 1, {10, 0}, 1, {10, 0}, 1},
        {"segments apart, lines meet", {0, 0}, {10, 10}, {0, 10}, {4, 6}, 1, {5, 5}, 0, {}, 0.5},
        {"the same, the other way round", {0, 10}, {4, 6}, {0, 0}, {10, 10}, 1, {5, 5}, 0, {}, 1.25},
        {"rounded from different segments", {0, 0}, {4, -2}, {1, -3}, {1, 5}, 1, {1, -1}, 1, {1, 0}, 0.25},
        // offsets of 2147483647.5 do not fit an int; the points do
        {"whole-range diagonals", {kMin, kMin}, {kMax, kMax}, {kMin, kMax}, {kMax, kMin}, 1, {0, 0}, 1,
         {0, -1}, 0.5},
        {"parallel", {0, 0}, {10, 0}, {0, 1}, {10, 1}, 0, {}, 0, {}, 0},
        // collinear: the parameter is q1.x - p1.x / d1.x, deliberately
        {"collinear, 5 - 0/10 out of range", {0, 0}, {10, 0}, {5, 0}, {20, 0}, 0, {}, 0, {}, 0},
        {"collinear, 2 - 10/10 = 1 takes q1", {10, 0}, {20, 0}, {2, 0}, {30, 0}, 1, {2, 0}, 1, {2, 0}, 1},
        {"collinear vertical, 1 - 4/4 = 0", {0, 4}, {0, 8}, {0, 1}, {0, 20}, 1, {0, 1}, 1, {0, 1}, 0},
        {"crossing outside the range", {0, 0}, {2000000000, 1}, {0, 10}, {2000000000, 10}, 0, {}, 0, {}, 0}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        double t1 = -7, t2 = -7;
        Pts o(4, gu_point_t{U, U});
        EXPECT_EQ(gu_line_intersection_l(&row.p1, &row.p2, &row.q1, &row.q2, &t1, &o[0]), row.line);
        EXPECT_EQ(gu_line_intersection(&row.p1, &row.p2, &row.q1, &row.q2, &o[1]), row.line);
        EXPECT_EQ(gu_intersection_l(&row.p1, &row.p2, &row.q1, &row.q2, &t2, &o[2]), row.seg);
        EXPECT_EQ(gu_intersection(&row.p1, &row.p2, &row.q1, &row.q2, &o[3]), row.seg);
        const gu_point_t none = {U, U}, l = row.line ? row.lout : none, s = row.seg ? row.sout : none;
        EXPECT_EQ(o, Pts({l, l, s, s}));
        EXPECT_EQ(t1, row.line ? row.t : -7);
        EXPECT_EQ(t2, row.seg ? row.t : -7);
    }
}

TEST(PolygonTest, CleanUpAndOffset)
{
    Pts out(6);
    const Pts runs = {{1, 1}, {1, 1}, {2, 2}, {2, 2}, {2, 2}, {1, 1}}, closing = {{0, 0}, {5, 0}, {0, 0}};
    EXPECT_EQ(Head(out, gu_delete_multiple_pointsi(6, runs.data(), out.data())),
              Pts({{1, 1}, {2, 2}, {1, 1}}));
    EXPECT_EQ(gu_delete_multiple_points(3, closing.data(), out.data()), 3); // the closing pair stays
    EXPECT_EQ(gu_delete_multiple_points(0, closing.data(), out.data()), 1); // copies the first point anyway

    // The closed form also tests across the closing edge; an empty want means as open.
    const struct { const char* name; Pts in, open, closed; } rows[] = {
        {"collinear run", {{0, 0}, {1, 0}, {2, 0}, {3, 0}, {3, 5}}, {{0, 0}, {3, 0}, {3, 5}}, {}},
        {"reversal on the line", {{0, 0}, {2, 0}, {1, 0}, {5, 5}}, {{0, 0}, {1, 0}, {5, 5}}, {}},
        // the first (1,1) goes; the second is tested against the last point kept, (0,0), and stays
        {"repeated corner keeps one copy", {{0, 0}, {1, 1}, {1, 1}, {5, 0}}, {{0, 0}, {1, 1}, {5, 0}}, {}},
        {"two equal points", {{3, 3}, {3, 3}}, {{3, 3}}, {}},
        {"two points", {{0, 0}, {7, 7}}, {{0, 0}, {7, 7}}, {{7, 7}}},
        {"collinear across the closing edge", {{5, 0}, {10, 0}, {10, 10}, {0, 0}, {3, 0}},
         {{5, 0}, {10, 0}, {10, 10}, {0, 0}, {3, 0}}, {{10, 0}, {10, 10}, {0, 0}}},
        // as ints the differences wrap and the turn rounds to 0
        {"nearly collinear at the limits", {{kMin, kMin}, {0, 1}, {kMax, kMax}},
         {{kMin, kMin}, {0, 1}, {kMax, kMax}}, {}}};
    for (const auto& row : rows) {
        for (int closed : {0, 1}) {
            Pts p = row.in, q = row.in;
            const int k = gu_delete_redundant_pointsi(size(p), p.data(), closed);
            EXPECT_EQ(Head(p, k), closed && !row.closed.empty() ? row.closed : row.open) << row.name;
            EXPECT_EQ(gu_delete_redundant_points(int16_t(size(q)), q.data(), closed), k);
        }
    }
    EXPECT_EQ(gu_delete_redundant_points(-2, nullptr, 1), 0);

    const Pts grown = {{-1, -1}, {11, -1}, {11, 11}, {-1, 11}}, tri = {{0, 0}, {40, 0}, {0, 30}};
    const struct { const char* name; bool ortho; Pts in; int d; Pts want; /* empty: -1 */ } sizes[] = {
        {"square grows", false, kSquare, 1, grown},
        {"square shrinks", false, kSquare, -1, {{1, 1}, {9, 1}, {9, 9}, {1, 9}}},
        // 3-4-5 triangle: the hypotenuse 3x + 4y = 120 moves to 3x + 4y = 130
        {"clockwise triangle grows", false, {{0, 30}, {40, 0}, {0, 0}}, 2, {{-2, 34}, {46, -2}, {-2, -2}}},
        // exact (999998.73, -1000004.18), (1000013.36, -999995.82), (999988.29, -999983.29)
        {"slanted near 1e6 rounds", false, {{1000000, -1000000}, {1000007, -999996}, {999995, -999990}}, 3,
         {{999999, -1000004}, {1000013, -999996}, {999988, -999983}}},
        {"repeats dropped, the rest untouched", false, {{0, 0}, {0, 0}, {10, 0}, {10, 10}, {10, 10}, {0, 10}},
         1, {{-1, -1}, {11, -1}, {11, 11}, {-1, 11}, {10, 10}, {0, 10}}},
        {"one distinct point", false, {{3, 3}, {3, 3}, {3, 3}}, 1, {}},
        {"explicitly closed: zero-length edge", false, {{0, 0}, {10, 0}, {10, 10}, {0, 0}}, 1, {}},
        {"outside the range", false, {{0, 0}, {kMax, 0}, {kMax, 10}, {0, 10}}, 5, {}},
        {"ortho L grows", true, {{0, 0}, {20, 0}, {20, 10}, {10, 10}, {10, 20}, {0, 20}}, 2,
         {{-2, -2}, {22, -2}, {22, 12}, {12, 12}, {12, 22}, {-2, 22}}},
        {"ortho clockwise L shrinks", true, {{0, 20}, {10, 20}, {10, 10}, {20, 10}, {20, 0}, {0, 0}}, -3,
         {{3, 17}, {7, 17}, {7, 7}, {17, 7}, {17, 3}, {3, 3}}},
        {"ortho beyond the limits", true, kWhole, 1, {}},
        {"ortho one point", true, {{0, 0}}, 1, {}}};
    for (const auto& row : sizes) {
        Pts p = row.in, q = row.in;
        const int m = row.ortho ? gu_size_ortho_polygoni(size(p), p.data(), row.d)
                                : gu_size_polygon(size(p), p.data(), row.d);
        if (row.ortho) {
            EXPECT_EQ(gu_size_ortho_polygon(int16_t(size(q)), q.data(), row.d), m) << row.name;
        }
        EXPECT_EQ(m == -1 ? Pts{} : Head(p, size(row.want)), row.want) << row.name;
    }
    Pts p = {{0, 0}, {10, 0}, {10, 10}, {10, 5}}; // a reversal, found after one vertex was stored
    EXPECT_EQ(gu_size_polygon(4, p.data(), 1), -1);
    EXPECT_EQ(p, Pts({{0, 0}, {11, -1}, {10, 10}, {10, 5}}));
}

