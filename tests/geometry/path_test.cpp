// Wide-path outlines: entry layout, end types, turn directions, strides, and the failures.
#include <utility>

#include "points.h"

namespace {
const Pts kEll = {{0, 0}, {10, 0}, {10, 10}};
const Pts kEllFlush = {{0, 1}, {9, 1}, {9, 10}, {11, 10}, {11, -1}, {0, -1}};
} // namespace

TEST(PathTest, Outlines)
{
    // Left side in path order, then the right side back: clockwise for a path towards +x. An empty
    // want is a failure; the entries written before it stay written.
    const Pts vee = {{0, 0}, {30, 40}, {60, 0}};
    const struct { const char* name; int16_t any_angle; Pts path; int width; gu_PathType_t type; Pts want; }
    rows[] = {
        {"right then up, flush", 0, kEll, 2, 0, kEllFlush},
        {"right then up, extended", 0, kEll, 2, 1, {{-1, 1}, {9, 1}, {9, 11}, {11, 11}, {11, -1}, {-1, -1}}},
        {"left then down, type 2", 0, {{10, 10}, {0, 10}, {0, 0}}, 4, 2,
         {{12, 8}, {2, 8}, {2, -2}, {-2, -2}, {-2, 12}, {12, 12}}},
        // a first segment that does not move counts as going right
        {"standing start", 0, {{5, 5}, {5, 5}, {5, 9}}, 2, 0,
         {{5, 6}, {4, 6}, {4, 9}, {6, 9}, {6, 4}, {5, 4}}},
        // the segment ahead has no y direction: positive sign
        {"straight on", 0, {{0, 0}, {10, 0}, {20, 0}}, 2, 0,
         {{0, 1}, {9, 1}, {20, 1}, {20, -1}, {11, -1}, {0, -1}}},
        // a last segment that does not move counts as going right, extended along +x
        {"standing finish", 0, {{0, 0}, {0, 10}, {0, 10}}, 2, 1,
         {{-1, -1}, {-1, 11}, {1, 11}, {1, 9}, {1, 9}, {1, -1}}},
        // both segments count as vertical
        {"slanted input", 0, vee, 10, 0, {{-5, 0}, {-5, 45}, {65, 0}, {55, 0}, {5, 35}, {5, 0}}},
        {"beyond the maximum", 0, {{kMax - 1, 0}, {kMax - 1, 10}}, 4, 0, {}},
        // the along-path coordinate of the end entries is not written
        {"unknown type", 0, kEll, 2, 3, {{U, 1}, {9, 1}, {9, U}, {11, U}, {11, -1}, {U, -1}}},

        // 3-4-5 directions: the corner at (30, 40) moves by 5 / 0.72 along (0, 1.2)
        {"slanted mitre", 1, vee, 10, 0, {{-4, 3}, {30, 48}, {64, 3}, {56, -3}, {30, 32}, {4, -3}}},
        // the second corner starts from the first one's left point before rounding: (16.73, 27.22)
        {"corners from unrounded points", 1, {{-5, 30}, {13, 26}, {-30, -23}, {-12, 30}}, 4, 0,
         {{-5, 32}, {17, 27}, {-35, -32}, {-14, 31}, {-10, 29}, {-25, -14}, {9, 25}, {-5, 28}}},
        {"slanted mitre, extended", 1, vee, 11, 1,
         {{-7, -1}, {30, 48}, {67, -1}, {59, -7}, {30, 32}, {1, -7}}},
        // single precision: floats are 2 apart here, and double arithmetic gives other points
        {"near 3e7, type 2", 1, {{29999998, -29999991}, {30000004, -29999992}, {29999991, -30000007}}, 5, 2,
         {{29999996, -29999990}, {30000006, -29999992}, {29999992, -30000012}, {29999988, -30000008},
          {30000002, -29999992}, {29999996, -29999994}}},
        {"any angle: unknown type leaves the ends", 1, kEll, 2, 3,
         {{U, U}, {9, 1}, {U, U}, {U, U}, {11, -1}, {U, U}}},
        {"zero-length first segment", 1, {{0, 0}, {0, 0}, {5, 5}}, 2, 0, {}},
        {"zero-length inner segment", 1, {{0, 0}, {10, 0}, {10, 0}, {10, 5}}, 2, 0, {}},
        {"near reversal throws the corner out of range", 1, {{0, 0}, {1000, 0}, {0, 1}}, 2000000000, 0, {}},

        // one point: the square of half side width / 2 (integer halving), in either form
        {"one point", 0, {{7, -7}}, 3, 0, {{6, -8}, {8, -8}, {8, -6}, {6, -6}}},
        {"one point beyond the range", 1, {{kMax, 0}}, 2, 0, {}},
        {"no points", 0, {}, 2, 0, {}}};
    for (const auto& row : rows) {
        // Entries 12 bytes apart, input and output alike; only x and y are written.
        std::vector<std::pair<gu_point_t, int32_t>> in, res(2 * row.path.size() + 4, {{U, U}, 7});
        for (const gu_point_t p : row.path)
            in.push_back({p, 7});
        int16_t n = 99;
        gu_n_path_to_polygon(int(sizeof(in[0])), &n, res.data(), int(in.size()), in.data(), row.width,
                             row.type, row.any_angle);
        Pts out;
        for (const auto& r : res)
            out.push_back(r.second == 7 ? r.first : gu_point_t{7, 7});
        EXPECT_EQ(n == 0 ? Pts{} : Head(out, n), row.want) << row.name;
    }

    // A reversal: the first end was written before it was found.
    Pts out(32768, gu_point_t{U, U});
    int16_t n = 99;
    gu_path_to_polygon(&n, out.data(), 3, Pts{{0, 0}, {10, 0}, {5, 0}}.data(), 2, 0, 1);
    EXPECT_EQ(n, 0);
    EXPECT_EQ(Pts(out.begin(), out.begin() + 6), Pts({{0, 1}, {U, U}, {U, U}, {U, U}, {U, U}, {0, -1}}));

    // 2n must fit the 16-bit count: 16383 points do, 16384 do not.
    Pts zigzag;
    for (int i = 0; i < 16384; ++i)
        zigzag.push_back({i, i % 2});
    gu_path_to_polygon(&n, out.data(), 16383, zigzag.data(), 2, 0, 1);
    EXPECT_EQ(n, 32766);
    gu_path_to_polygon(&n, out.data(), 16384, zigzag.data(), 2, 0, 0);
    EXPECT_EQ(n, 0);
}
