// Polygon primitives: sign conventions, coordinates near the 32-bit limits, snapping, clean-up,
// offsetting and intersections.
#include <tevbase/geometry.h>

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace {

using Pts = std::vector<gu_point_t>;

constexpr gu_coord_t kMin = INT32_MIN;
constexpr gu_coord_t kMax = INT32_MAX;

Pts reversed(Pts p)
{
    return Pts(p.rbegin(), p.rend());
}

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

const Pts kSquare = {{0, 0}, {10, 0}, {10, 10}, {0, 10}};

} // namespace

TEST(PolygonTest, OrientationSigns)
{
    const struct {
        const char* name;
        Pts ccw;
    } rows[] = {
        {"square", kSquare},
        {"slanted triangle, negative coordinates", {{-3, -4}, {5, -1}, {2, 6}}},
        // differences of these overflow 32 bits
        {"triangle spanning the coordinate range", {{kMin, kMin}, {kMax, kMin}, {0, kMax}}},
        {"two leftmost vertices", {{0, 0}, {10, 0}, {10, 10}, {0, 10}, {0, 5}}},
        {"leftmost run found walking from the rightmost", {{0, 10}, {0, 5}, {0, 0}, {10, 0}, {10, 10}}},
        {"concave arrow", {{0, 0}, {20, 10}, {0, 20}, {5, 10}}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const Pts cw = reversed(row.ccw);
        const int n = static_cast<int>(row.ccw.size());
        EXPECT_EQ(gu_polygon_orientationi(n, row.ccw.data()), 1);
        EXPECT_EQ(gu_polygon_orientationi(n, cw.data()), -1);
        EXPECT_EQ(gu_polygon_orientation(static_cast<int16_t>(n), cw.data()), -1);
    }

    const Pts line = {{5, 0}, {5, 10}, {5, 20}}; // degenerate turn
    EXPECT_EQ(gu_polygon_orientationi(3, line.data()), 1);
    EXPECT_EQ(gu_polygon_orientationi(2, reversed(kSquare).data()), 1);
    EXPECT_EQ(gu_polygon_orientation(-1, kSquare.data()), 1);
}

TEST(PolygonTest, OrthogonalOrientationDecidesAtLowestLeftmostVertex)
{
    const struct {
        const char* name;
        Pts pts;
        int want;
    } rows[] = {
        {"square", kSquare, 1},
        {"square reversed", reversed(kSquare), -1},
        // (0,10) comes first but (0,0) is the lowest leftmost vertex
        {"L shape clockwise from the top", {{0, 10}, {5, 10}, {5, 5}, {10, 5}, {10, 0}, {0, 0}}, -1},
        {"L shape counter-clockwise from the top", {{0, 10}, {0, 0}, {10, 0}, {10, 5}, {5, 5}, {5, 10}}, 1},
        {"at the limits", {{kMin, kMin}, {kMax, kMin}, {kMax, kMax}, {kMin, kMax}}, 1},
        {"two points", {{0, 0}, {0, 10}}, 1},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const int n = static_cast<int>(row.pts.size());
        EXPECT_EQ(gu_ortho_polygon_orientationi(n, row.pts.data()), row.want);
        EXPECT_EQ(gu_ortho_polygon_orientation(static_cast<int16_t>(n), row.pts.data()), row.want);
    }
}

TEST(PolygonTest, CheckOrthoClasses)
{
    const struct {
        const char* name;
        Pts pts;
        int open, closed;
    } rows[] = {
        {"diagonal then vertical", {{0, 0}, {5, 5}, {5, 9}}, 1, 2},
        {"square", kSquare, 0, 0},
        {"zero-length segment", {{3, 3}, {3, 3}, {3, 8}}, 0, 0},
        {"falling diagonal", {{0, 0}, {-5, 5}}, 1, 1},
        // as 32-bit ints the differences wrap to -1 and -1, a diagonal
        {"huge slant", {{kMin, 0}, {kMax, -1}}, 2, 2},
        {"huge diagonal", {{kMin, kMin}, {kMax, kMax}}, 1, 1},
        {"one point", {{1, 2}}, 0, 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const int n = static_cast<int>(row.pts.size());
        EXPECT_EQ(gu_check_orthoi(n, row.pts.data(), 0), row.open);
        EXPECT_EQ(gu_check_orthoi(n, row.pts.data(), 1), row.closed);
        EXPECT_EQ(gu_check_ortho(static_cast<int16_t>(n), row.pts.data(), 1), row.closed);
    }
    EXPECT_EQ(gu_check_ortho(-3, kSquare.data(), 1), 0);
}

TEST(PolygonTest, SnapOrtho)
{
    const struct {
        const char* name;
        int mode;
        gu_point_t anchor, pt, want;
    } rows[] = {
        {"shallow to horizontal", 1, {0, 0}, {10, 3}, {10, 0}},
        {"onto the rising diagonal, keeps x", 1, {0, 0}, {10, 7}, {10, 10}},
        {"onto the falling diagonal, keeps x", 1, {0, 0}, {10, -7}, {10, -10}},
        {"steep rising diagonal keeps y", 1, {0, 0}, {4, 7}, {7, 7}},
        {"steep falling diagonal keeps x anyway", 1, {0, 0}, {3, -7}, {3, -3}},
        {"steep falling diagonal, left side", 1, {100, -50}, {97, -43}, {97, -47}},
        {"very steep to vertical", 1, {100, -50}, {101, -40}, {100, -40}},
        {"already diagonal", 1, {0, 0}, {-6, 6}, {-6, 6}},
        {"already vertical", 1, {0, 0}, {0, 9}, {0, 9}},
        {"45 degrees goes horizontal", 0, {0, 0}, {10, 10}, {10, 0}},
        {"steep goes vertical", 0, {0, 0}, {3, -7}, {0, -7}},
        {"unknown mode", 2, {0, 0}, {3, -7}, {3, -7}},
        // as 32-bit ints dx wraps to -1: a diagonal that would stay put
        {"span of the whole range", 1, {kMin, 0}, {kMax, 1}, {kMax, 0}},
        {"diagonal beyond the maximum is clamped", 1, {2147483000, 0}, {2147483600, 1000}, {kMax, 1000}},
        {"diagonal beyond the minimum is clamped", 1, {0, -2147483000}, {1000, -2147483600}, {1000, kMin}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        gu_point_t pt = row.pt;
        gu_snap_ortho(row.anchor, &pt, row.mode);
        EXPECT_EQ(pt.x, row.want.x);
        EXPECT_EQ(pt.y, row.want.y);
    }
}

TEST(PolygonTest, AreaPerimeterAndBox)
{
    EXPECT_EQ(gu_polygon_area(4, kSquare.data()), 100.0);
    EXPECT_EQ(gu_polygon_area(4, reversed(kSquare).data()), 100.0);
    EXPECT_EQ(gu_polygon_periphery(4, kSquare.data()), 40.0);

    const Pts tri = {{-3, -4}, {5, -1}, {2, 6}};
    EXPECT_EQ(gu_polygon_area(3, tri.data()), 32.5);
    EXPECT_DOUBLE_EQ(gu_polygon_periphery(3, tri.data()), std::sqrt(73.0) + std::sqrt(58.0) + std::sqrt(125.0));

    // Whole-range square: int differences and sums would overflow.
    const Pts huge = {{kMin, kMin}, {kMax, kMin}, {kMax, kMax}, {kMin, kMax}};
    const double side = 4294967295.0;
    EXPECT_DOUBLE_EQ(gu_polygon_area(4, huge.data()), side * side);
    EXPECT_DOUBLE_EQ(gu_polygon_periphery(4, huge.data()), 4 * side);
    const gu_rect_t hb = gu_bounding_box(4, huge.data());
    EXPECT_EQ(hb.xmin, kMin);
    EXPECT_EQ(hb.ymin, kMin);
    EXPECT_EQ(hb.xmax, kMax);
    EXPECT_EQ(hb.ymax, kMax);

    const gu_point_t one = {7, -8};
    EXPECT_EQ(gu_polygon_area(1, &one), 0.0);
    EXPECT_EQ(gu_polygon_periphery(1, &one), 0.0);
    EXPECT_EQ(gu_polygon_area(0, nullptr), 0.0);
    EXPECT_EQ(gu_polygon_periphery(0, nullptr), 0.0);

    const gu_rect_t empty = gu_bounding_box(0, nullptr);
    EXPECT_EQ(empty.xmin, 2147483647);
    EXPECT_EQ(empty.ymin, 2147483647);
    EXPECT_EQ(empty.xmax, -2147483647);
    EXPECT_EQ(empty.ymax, -2147483647);
    const gu_rect_t b = gu_bounding_box(3, tri.data());
    EXPECT_EQ(b.xmin, -3);
    EXPECT_EQ(b.ymin, -4);
    EXPECT_EQ(b.xmax, 5);
    EXPECT_EQ(b.ymax, 6);
}

TEST(PolygonTest, SixteenBitCountsAboveSignedRange)
{
    // 40000 points round the border of a 10000 x 10000 square, counter-clockwise.
    Pts p;
    for (int i = 0; i < 10000; ++i)
        p.push_back({i, 0});
    for (int i = 0; i < 10000; ++i)
        p.push_back({10000, i});
    for (int i = 0; i < 10000; ++i)
        p.push_back({10000 - i, 10000});
    for (int i = 0; i < 10000; ++i)
        p.push_back({0, 10000 - i});
    const uint16_t n = 40000;
    EXPECT_EQ(gu_polygon_area(n, p.data()), 1e8);
    EXPECT_EQ(gu_polygon_periphery(n, p.data()), 40000.0);
    EXPECT_EQ(gu_bounding_box(n, p.data()).xmax, 10000);
    EXPECT_EQ(gu_polygon_orientationi(40000, p.data()), 1);
    EXPECT_EQ(gu_polygon_orientationi(40000, reversed(p).data()), -1);
    EXPECT_EQ(gu_check_orthoi(40000, p.data(), 1), 0);

    Pts copy = p;
    EXPECT_EQ(gu_delete_redundant_pointsi(40000, copy.data(), 1), 4);
    EXPECT_TRUE(same_points({{0, 0}, {10000, 0}, {10000, 10000}, {0, 10000}}, copy.data(), 4));

    // The sized polygon keeps its 40000 points; the count comes back narrowed to 16 bits.
    copy = p;
    EXPECT_EQ(gu_size_polygon(40000, copy.data(), 1), static_cast<int16_t>(40000 - 65536));
    EXPECT_EQ(copy[0].x, -1);
    EXPECT_EQ(copy[0].y, -1);
    EXPECT_EQ(copy[5].x, 5);
    EXPECT_EQ(copy[5].y, -1);
}

TEST(PolygonTest, DeleteMultiplePoints)
{
    const struct {
        const char* name;
        Pts in, want;
    } rows[] = {
        {"runs of repeats", {{1, 1}, {1, 1}, {2, 2}, {2, 2}, {2, 2}, {1, 1}}, {{1, 1}, {2, 2}, {1, 1}}},
        {"closing repeat kept", {{0, 0}, {5, 0}, {0, 0}}, {{0, 0}, {5, 0}, {0, 0}}},
        {"same x only", {{0, 0}, {0, 1}, {0, 1}}, {{0, 0}, {0, 1}}},
        {"one point", {{4, 4}}, {{4, 4}}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        Pts out(row.in.size());
        const int m = gu_delete_multiple_pointsi(static_cast<int>(row.in.size()), row.in.data(), out.data());
        EXPECT_TRUE(same_points(row.want, out.data(), m));
    }
    // A count below 2 still copies the first point.
    const gu_point_t in = {9, -9};
    gu_point_t out = {0, 0};
    EXPECT_EQ(gu_delete_multiple_points(0, &in, &out), 1);
    EXPECT_EQ(out.x, 9);
}

TEST(PolygonTest, DeleteRedundantPoints)
{
    const struct {
        const char* name;
        int closed;
        Pts in, want;
    } rows[] = {
        {"collinear run", 0, {{0, 0}, {1, 0}, {2, 0}, {3, 0}, {3, 5}}, {{0, 0}, {3, 0}, {3, 5}}},
        {"duplicates", 0, {{0, 0}, {0, 0}, {4, 4}, {4, 4}, {4, 9}}, {{0, 0}, {4, 4}, {4, 9}}},
        {"reversal on the line", 0, {{0, 0}, {2, 0}, {1, 0}, {5, 5}}, {{0, 0}, {1, 0}, {5, 5}}},
        // the first (1,1) goes; the second is tested against (0,0), the last point kept, and stays
        {"duplicate corner keeps one copy", 0, {{0, 0}, {1, 1}, {1, 1}, {5, 0}}, {{0, 0}, {1, 1}, {5, 0}}},
        {"open last point repeated", 0, {{3, 3}, {3, 3}}, {{3, 3}}},
        {"open keeps collinear ends", 0, {{5, 0}, {10, 0}, {10, 10}, {0, 10}, {0, 0}, {3, 0}},
         {{5, 0}, {10, 0}, {10, 10}, {0, 10}, {0, 0}, {3, 0}}},
        {"closed drops the first point", 1, {{5, 0}, {10, 0}, {10, 10}, {0, 10}, {0, 0}},
         {{10, 0}, {10, 10}, {0, 10}, {0, 0}}},
        {"closed drops the last point", 1, {{0, 0}, {10, 0}, {10, 10}, {0, 10}, {0, 5}},
         {{0, 0}, {10, 0}, {10, 10}, {0, 10}}},
        {"closed two points", 1, {{0, 0}, {7, 7}}, {{7, 7}}},
        // the differences overflow 32 bits
        {"collinear across the whole range", 0, {{kMin, kMin}, {0, 0}, {kMax, kMax}}, {{kMin, kMin}, {kMax, kMax}}},
        {"nearly collinear at the limits", 0, {{kMin, kMin}, {0, 1}, {kMax, kMax}}, {{kMin, kMin}, {0, 1}, {kMax, kMax}}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        Pts p = row.in;
        const int m = gu_delete_redundant_pointsi(static_cast<int>(p.size()), p.data(), row.closed);
        EXPECT_TRUE(same_points(row.want, p.data(), m));
        Pts q = row.in;
        EXPECT_EQ(gu_delete_redundant_points(static_cast<int16_t>(q.size()), q.data(), row.closed), m);
    }
    EXPECT_EQ(gu_delete_redundant_points(-2, nullptr, 1), 0);
}

TEST(PolygonTest, DeleteRedundantPointsIsLinear)
{
    // A million points on one line: removing them one shift at a time would never finish.
    Pts p;
    for (int i = 0; i < 1000000; ++i)
        p.push_back({i, 2 * i});
    p.push_back({0, 5});
    const int m = gu_delete_redundant_pointsi(static_cast<int>(p.size()), p.data(), 0);
    EXPECT_TRUE(same_points({{0, 0}, {999999, 1999998}, {0, 5}}, p.data(), m));
}

TEST(PolygonTest, SizePolygonMitres)
{
    const struct {
        const char* name;
        Pts in;
        int d;
        Pts want;
    } rows[] = {
        {"square grows", kSquare, 1, {{-1, -1}, {11, -1}, {11, 11}, {-1, 11}}},
        {"square shrinks", kSquare, -1, {{1, 1}, {9, 1}, {9, 9}, {1, 9}}},
        // 3-4-5 triangle: the hypotenuse 3x + 4y = 120 moves to 3x + 4y = 130
        {"slanted triangle grows", {{0, 0}, {40, 0}, {0, 30}}, 2, {{-2, -2}, {46, -2}, {-2, 34}}},
        {"clockwise triangle grows too", {{0, 0}, {0, 30}, {40, 0}}, 2, {{-2, -2}, {-2, 34}, {46, -2}}},
        {"slanted triangle shrinks", {{0, 0}, {40, 0}, {0, 30}}, -2, {{2, 2}, {34, 2}, {2, 26}}},
        // exact vertices (998.73..., -1000004.178...), (1000013.355..., -999995.823...),
        // (999988.291..., -999983.291...)
        {"slanted near 1e6",
         {{1000000, -1000000}, {1000007, -999996}, {999995, -999990}},
         3,
         {{999999, -1000004}, {1000013, -999996}, {999988, -999983}}},
        {"repeats dropped", {{0, 0}, {0, 0}, {10, 0}, {10, 10}, {10, 10}, {0, 10}}, 1,
         {{-1, -1}, {11, -1}, {11, 11}, {-1, 11}, {10, 10}, {0, 10}}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        Pts p = row.in;
        const int m = gu_size_polygon(static_cast<int>(p.size()), p.data(), row.d);
        EXPECT_GT(m, 0);
        EXPECT_TRUE(same_points(row.want, p.data(), static_cast<int>(row.want.size())));
    }
}

TEST(PolygonTest, SizePolygonFailures)
{
    const struct {
        const char* name;
        Pts in;
    } rows[] = {
        {"one point", {{0, 0}}},
        {"one distinct point", {{3, 3}, {3, 3}, {3, 3}}},
        {"two points turn back", {{0, 0}, {10, 0}}},
        {"reversal", {{0, 0}, {10, 0}, {5, 0}}},
        {"explicitly closed", {{0, 0}, {10, 0}, {10, 10}, {0, 0}}},
        {"outside the coordinate range", {{0, 0}, {kMax, 0}, {kMax, 10}, {0, 10}}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        Pts p = row.in;
        EXPECT_EQ(gu_size_polygon(static_cast<int>(p.size()), p.data(), 5), -1);
    }
    // The vertex before the reversal has already been stored.
    Pts p = {{0, 0}, {10, 0}, {10, 10}, {10, 5}};
    EXPECT_EQ(gu_size_polygon(4, p.data(), 1), -1);
    EXPECT_TRUE(same_points({{0, 0}, {11, -1}, {10, 10}, {10, 5}}, p.data(), 4));
}

TEST(PolygonTest, SizeOrthoPolygon)
{
    const struct {
        const char* name;
        Pts in;
        int d;
        Pts want; // empty: -1
    } rows[] = {
        {"square grows", kSquare, 1, {{-1, -1}, {11, -1}, {11, 11}, {-1, 11}}},
        {"square shrinks", kSquare, -1, {{1, 1}, {9, 1}, {9, 9}, {1, 9}}},
        {"clockwise square grows", reversed(kSquare), 1, {{-1, 11}, {11, 11}, {11, -1}, {-1, -1}}},
        {"L shape grows",
         {{0, 0}, {20, 0}, {20, 10}, {10, 10}, {10, 20}, {0, 20}},
         2,
         {{-2, -2}, {22, -2}, {22, 12}, {12, 12}, {12, 22}, {-2, 22}}},
        {"clockwise L shape from the top shrinks",
         {{0, 20}, {10, 20}, {10, 10}, {20, 10}, {20, 0}, {0, 0}},
         -3,
         {{3, 17}, {7, 17}, {7, 7}, {17, 7}, {17, 3}, {3, 3}}},
        {"at the limits", {{kMin, kMin}, {kMax, kMin}, {kMax, kMax}, {kMin, kMax}}, -1,
         {{kMin + 1, kMin + 1}, {kMax - 1, kMin + 1}, {kMax - 1, kMax - 1}, {kMin + 1, kMax - 1}}},
        {"beyond the limits", {{kMin, kMin}, {kMax, kMin}, {kMax, kMax}, {kMin, kMax}}, 1, {}},
        {"one point", {{0, 0}}, 1, {}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        Pts p = row.in;
        const int n = static_cast<int>(p.size());
        const int m = gu_size_ortho_polygoni(n, p.data(), row.d);
        if (row.want.empty()) {
            EXPECT_EQ(m, -1);
            continue;
        }
        EXPECT_TRUE(same_points(row.want, p.data(), m));
        Pts q = row.in;
        EXPECT_EQ(gu_size_ortho_polygon(static_cast<int16_t>(n), q.data(), row.d), m);
    }
    EXPECT_EQ(gu_size_ortho_polygon(-4, nullptr, 1), -1);
}

TEST(PolygonTest, IsRectangle)
{
    const struct {
        const char* name;
        Pts pts;
        int want;
    } rows[] = {
        {"square", kSquare, 1},
        {"rotated", {{0, 0}, {3, 4}, {-1, 7}, {-4, 3}}, 1},
        {"parallelogram", {{0, 0}, {4, 0}, {5, 3}, {1, 3}}, 0},
        {"kite", {{0, 0}, {4, 0}, {4, 4}, {1, 3}}, 0},
        {"four equal points", {{2, 2}, {2, 2}, {2, 2}, {2, 2}}, 1},
        {"whole range", {{kMin, kMin}, {kMax, kMin}, {kMax, kMax}, {kMin, kMax}}, 1},
        {"five points", {{0, 0}, {10, 0}, {10, 10}, {0, 10}, {0, 0}}, 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(gu_is_rectangle(static_cast<int>(row.pts.size()), row.pts.data()), row.want);
    }
}

TEST(PolygonTest, Intersections)
{
    const struct {
        const char* name;
        gu_point_t p1, p2, q1, q2;
        int line;        // gu_line_intersection_l result
        gu_point_t lout; // and its point
        int seg;         // gu_intersection_l result
        gu_point_t sout;
        double t; // when either succeeds
    } rows[] = {
        {"crossing diagonals", {0, 0}, {10, 10}, {0, 10}, {10, 0}, 1, {5, 5}, 1, {5, 5}, 0.5},
        {"shared end point", {0, 0}, {10, 0}, {10, 0}, {10, 10}, 1, {10, 0}, 1, {10, 0}, 1},
        {"segments apart, lines meet", {0, 0}, {10, 0}, {5, 1}, {5, 10}, 1, {5, 0}, 0, {}, 0.5},
        {"touching boxes", {0, 0}, {10, 10}, {10, 10}, {20, 0}, 1, {10, 10}, 1, {10, 10}, 1},
        // the line rounds p1 + d1 t from the first line, the segment q1 + d2 u from the second
        {"rounding from different segments", {0, 0}, {4, -2}, {1, -3}, {1, 5}, 1, {1, -1}, 1, {1, 0}, 0.25},
        // offsets of 2147483647.5 do not fit an int, the points do
        {"whole-range diagonals", {kMin, kMin}, {kMax, kMax}, {kMin, kMax}, {kMax, kMin}, 1, {0, 0}, 1, {0, -1}, 0.5},
        {"parallel", {0, 0}, {10, 0}, {0, 1}, {10, 1}, 0, {}, 0, {}, 0},
        {"point-like first segment", {3, 3}, {3, 3}, {0, 0}, {10, 10}, 0, {}, 0, {}, 0},
        // collinear: the parameter is q1.x - p1.x / d1.x, deliberately
        {"collinear overlap, 5 - 0/10 out of range", {0, 0}, {10, 0}, {5, 0}, {20, 0}, 0, {}, 0, {}, 0},
        {"collinear, 2 - 10/10 = 1 accepts q1", {10, 0}, {20, 0}, {2, 0}, {30, 0}, 1, {2, 0}, 1, {2, 0}, 1},
        {"collinear vertical, 1 - 4/4 = 0", {0, 4}, {0, 8}, {0, 1}, {0, 20}, 1, {0, 1}, 1, {0, 1}, 0},
        {"far crossing outside the range", {0, 0}, {2000000000, 1}, {0, 10}, {2000000000, 10}, 0, {}, 0, {}, 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        double t = -7;
        gu_point_t out = {-7, -7};
        EXPECT_EQ(gu_line_intersection_l(&row.p1, &row.p2, &row.q1, &row.q2, &t, &out), row.line);
        if (row.line) {
            EXPECT_EQ(t, row.t);
            EXPECT_EQ(out.x, row.lout.x);
            EXPECT_EQ(out.y, row.lout.y);
        } else {
            EXPECT_EQ(t, -7); // untouched
            EXPECT_EQ(out.x, -7);
        }
        gu_point_t plain = {-7, -7};
        EXPECT_EQ(gu_line_intersection(&row.p1, &row.p2, &row.q1, &row.q2, &plain), row.line);
        EXPECT_EQ(plain.y, row.line ? row.lout.y : -7);

        t = -7;
        out = {-7, -7};
        EXPECT_EQ(gu_intersection_l(&row.p1, &row.p2, &row.q1, &row.q2, &t, &out), row.seg);
        if (row.seg) {
            EXPECT_EQ(t, row.t);
            EXPECT_EQ(out.x, row.sout.x);
            EXPECT_EQ(out.y, row.sout.y);
        } else {
            EXPECT_EQ(t, -7);
            EXPECT_EQ(out.x, -7);
        }
        plain = {-7, -7};
        EXPECT_EQ(gu_intersection(&row.p1, &row.p2, &row.q1, &row.q2, &plain), row.seg);
        EXPECT_EQ(plain.y, row.seg ? row.sout.y : -7);
    }
}

TEST(PolygonTest, AngleConversions)
{
    EXPECT_EQ(gu_deg2rad(180.0f), 3.14159274f);
    EXPECT_EQ(gu_deg2rad(-90.0f), -1.57079637f);
    EXPECT_EQ(gu_rad2deg(1.0f), 57.2957802f); // float arithmetic would give 57.2957764
    EXPECT_EQ(gu_rad2deg(1.57079637f), 90.0f);
}
