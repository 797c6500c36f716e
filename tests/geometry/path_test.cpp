// Wide-path outlines: entry layout, end types, turn directions, strides, and the failures.
#include <tevbase/geometry.h>

#include <gtest/gtest.h>

#include <vector>

namespace {

using Pts = std::vector<gu_point_t>;

constexpr gu_coord_t kMax = INT32_MAX;
constexpr gu_coord_t U = -99; // an entry left unwritten

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

struct Row {
    const char* name;
    Pts path;
    int width;
    gu_PathType_t type;
    Pts want; // empty: no points
};

void run(const Row& row, int16_t any_angle)
{
    SCOPED_TRACE(row.name);
    Pts out(2 * row.path.size() + 4, gu_point_t{U, U});
    int16_t n = 99;
    gu_path_to_polygon(&n, out.data(), static_cast<int>(row.path.size()), row.path.data(), row.width, row.type,
                       any_angle);
    EXPECT_TRUE(same_points(row.want, out.data(), n));
}

const Pts kEll = {{0, 0}, {10, 0}, {10, 10}};

} // namespace

TEST(PathTest, OrthogonalOutlines)
{
    const Row rows[] = {
        // left side in path order, then the right side back: clockwise for a path towards +x
        {"right then up, flush", kEll, 2, 0, {{0, 1}, {9, 1}, {9, 10}, {11, 10}, {11, -1}, {0, -1}}},
        {"right then up, extended", kEll, 2, 1, {{-1, 1}, {9, 1}, {9, 11}, {11, 11}, {11, -1}, {-1, -1}}},
        {"left then down, type 2", {{10, 10}, {0, 10}, {0, 0}}, 4, 2, {{12, 8}, {2, 8}, {2, -2}, {-2, -2}, {-2, 12}, {12, 12}}},
        {"odd width halves", kEll, 5, 0, {{0, 2}, {8, 2}, {8, 10}, {12, 10}, {12, -2}, {0, -2}}},
        // a first segment that does not move counts as going right
        {"standing start", {{5, 5}, {5, 5}, {5, 9}}, 2, 0, {{5, 6}, {4, 6}, {4, 9}, {6, 9}, {6, 4}, {5, 4}}},
        // the segment ahead has no y direction: positive sign
        {"straight through", {{0, 0}, {10, 0}, {20, 0}}, 2, 0, {{0, 1}, {9, 1}, {20, 1}, {20, -1}, {11, -1}, {0, -1}}},
        // the last segment does not move: it counts as going right, extended along +x
        {"standing finish", {{0, 0}, {0, 10}, {0, 10}}, 2, 1, {{-1, -1}, {-1, 11}, {1, 11}, {1, 9}, {1, 9}, {1, -1}}},
        {"near the maximum", {{kMax - 1, 0}, {kMax - 1, 10}}, 2, 0, {{kMax - 2, 0}, {kMax - 2, 10}, {kMax, 10}, {kMax, 0}}},
        {"beyond the maximum", {{kMax - 1, 0}, {kMax - 1, 10}}, 4, 0, {}},
        // the along-path coordinate of the end entries is not written
        {"unknown type", kEll, 2, 3, {{U, 1}, {9, 1}, {9, U}, {11, U}, {11, -1}, {U, -1}}},
    };
    for (const Row& row : rows)
        run(row, 0);
}

TEST(PathTest, AnyAngleOutlines)
{
    const Row rows[] = {
        {"right then up agrees with the orthogonal form", kEll, 2, 0, {{0, 1}, {9, 1}, {9, 10}, {11, 10}, {11, -1}, {0, -1}}},
        // 3-4-5 directions: the corner at (30, 40) moves by 5 / 0.72 along (0, 1.2)
        {"slanted mitre", {{0, 0}, {30, 40}, {60, 0}}, 10, 0, {{-4, 3}, {30, 48}, {64, 3}, {56, -3}, {30, 32}, {4, -3}}},
        {"slanted mitre, extended", {{0, 0}, {30, 40}, {60, 0}}, 11, 1, {{-7, -1}, {30, 48}, {67, -1}, {59, -7}, {30, 32}, {1, -7}}},
        {"near 1e6, type 2",
         {{1000000, -1000000}, {1000007, -999993}, {999990, -999980}, {999980, -999990}},
         7,
         2,
         {{999996, -1000000}, {1000002, -999993}, {999990, -999984}, {999980, -999994}, {999976, -999990},
          {999990, -999976}, {1000012, -999993}, {1000000, -1000004}}},
        {"negative width swaps the sides", {{-5, -5}, {-5, -4}}, -6, 0, {{-2, -5}, {-2, -4}, {-8, -4}, {-8, -5}}},
        {"unknown type leaves the ends", kEll, 2, 3, {{U, U}, {9, 1}, {U, U}, {U, U}, {11, -1}, {U, U}}},
        {"zero-length first segment", {{0, 0}, {0, 0}, {5, 5}}, 2, 0, {}},
        {"zero-length inner segment", {{0, 0}, {10, 0}, {10, 0}, {10, 5}}, 2, 0, {}},
        {"reversal", {{0, 0}, {10, 0}, {5, 0}}, 2, 0, {}},
        {"near reversal throws the corner out of range", {{0, 0}, {1000, 0}, {0, 1}}, 2000000000, 0, {}},
    };
    for (const Row& row : rows)
        run(row, 1);
}

TEST(PathTest, SinglePointsCountsAndFailureLeftovers)
{
    for (int16_t any_angle : {0, 1}) {
        SCOPED_TRACE(any_angle);
        run({"width 3 gives half side 1", {{7, -7}}, 3, 0, {{6, -8}, {8, -8}, {8, -6}, {6, -6}}}, any_angle);
        run({"point beyond the range", {{kMax, 0}}, 2, 0, {}}, any_angle);
        run({"no points", {}, 2, 0, {}}, any_angle);

        // 2n must fit the 16-bit count: 16383 points do, 16384 do not (and nothing is written).
        Pts path;
        for (int i = 0; i < 16384; ++i)
            path.push_back({i, i % 2});
        Pts out(2 * path.size(), gu_point_t{U, U});
        int16_t n = 0;
        gu_path_to_polygon(&n, out.data(), 16383, path.data(), 2, 0, any_angle);
        EXPECT_EQ(n, 32766);
        out.assign(out.size(), gu_point_t{U, U});
        gu_path_to_polygon(&n, out.data(), 16384, path.data(), 2, 0, any_angle);
        EXPECT_EQ(n, 0);
        EXPECT_EQ(out[0].x, U);
    }

    // The first end is written before the reversal is found.
    const Pts path = {{0, 0}, {10, 0}, {5, 0}};
    Pts out(6, gu_point_t{U, U});
    int16_t n = 99;
    gu_path_to_polygon(&n, out.data(), 3, path.data(), 2, 0, 1);
    EXPECT_EQ(n, 0);
    EXPECT_TRUE(same_points({{0, 1}, {U, U}, {U, U}, {U, U}, {U, U}, {0, -1}}, out.data(), 6));
}

TEST(PathTest, StridesApplyToInputAndOutput)
{
    struct Rec {
        gu_point_t p;
        int32_t tag;
    };
    const Rec in[] = {{{0, 0}, 1}, {{30, 40}, 2}, {{60, 0}, 3}};
    for (int16_t any_angle : {0, 1}) {
        SCOPED_TRACE(any_angle);
        Rec out[6];
        for (int i = 0; i < 6; ++i)
            out[i] = {{U, U}, 100 + i};
        int16_t n = 0;
        gu_n_path_to_polygon(sizeof(Rec), &n, out, 3, in, 10, 0, any_angle);
        ASSERT_EQ(n, 6);
        Pts got;
        for (int i = 0; i < 6; ++i) {
            got.push_back(out[i].p);
            EXPECT_EQ(out[i].tag, 100 + i); // only x and y are written
        }
        // The orthogonal form takes (0,0)-(30,40) as vertical and (30,40)-(60,0) as vertical too.
        const Pts want = any_angle ? Pts{{-4, 3}, {30, 48}, {64, 3}, {56, -3}, {30, 32}, {4, -3}}
                                   : Pts{{-5, 0}, {-5, 45}, {65, 0}, {55, 0}, {5, 35}, {5, 0}};
        EXPECT_TRUE(same_points(want, got.data(), 6));
    }
}
