// Decomposition: hand-derived shapes, wrapping order, wide paths, seeded random polygons against an
// even-odd cell model, and the cut tree's fate when an allocation fails.
#include <tevbase/decompose.h>

#include <support/testutil.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <cstdlib>
#include <new>
#include <random>
#include <vector>

// Test-only global allocator: counts calls and fails the Nth one on request.
namespace {
long g_news = 0;
int g_fail_in = 0; // 0: never; else fail the g_fail_in-th call from now
void* counted_new(std::size_t n)
{
    ++g_news;
    if (g_fail_in > 0 && --g_fail_in == 0)
        throw std::bad_alloc();
    if (void* p = std::malloc(n != 0 ? n : 1))
        return p;
    throw std::bad_alloc();
}
} // namespace
void* operator new(std::size_t n) { return counted_new(n); }
void* operator new[](std::size_t n) { return counted_new(n); }
void* operator new(std::size_t n, const std::nothrow_t&) noexcept { return std::malloc(n != 0 ? n : 1); }
void* operator new[](std::size_t n, const std::nothrow_t&) noexcept { return std::malloc(n != 0 ? n : 1); }
void operator delete(void* p) noexcept { std::free(p); }
void operator delete[](void* p) noexcept { std::free(p); }
void operator delete(void* p, std::size_t) noexcept { std::free(p); }
void operator delete[](void* p, std::size_t) noexcept { std::free(p); }

namespace {

using Pts = std::vector<gu_point_t>;
using R4 = std::array<int, 4>; // gu_rect_t
using R6 = std::array<int, 6>; // gu_trapezoid_t
constexpr int G = 2000000000, M = 1000000000;

std::vector<R4> rects(const Pts& p)
{
    TVarr<gu_rect_t> out(1, VARR_DOUBLE);
    const unsigned n = gu_polygon_to_rects(sizeof(gu_point_t), p.size(), p.data(), out);
    std::vector<R4> got;
    for (unsigned i = 0; i < n; ++i)
        got.push_back({out[i].xmin, out[i].ymin, out[i].xmax, out[i].ymax});
    return got;
}

std::vector<R6> traps(const Pts& p)
{
    TVarr<gu_trapezoid_t> out(1, VARR_DOUBLE);
    const unsigned n = gu_polygon_to_trapezoids(sizeof(gu_point_t), p.size(), p.data(), out);
    std::vector<R6> got;
    for (unsigned i = 0; i < n; ++i)
        got.push_back({out[i].xbl, out[i].xtl, out[i].xtr, out[i].xbr, out[i].ybot, out[i].ytop});
    return got;
}

} // namespace

TEST(DecomposeTest, OrthogonalShapesGiveTheSameRectanglesAndTrapezoids)
{
    const struct {
        const char* name;
        Pts pts;
        std::vector<R4> want; // sorted by bottom y, then x
    } rows[] = {
        {"square", {{0, 0}, {10, 0}, {10, 10}, {0, 10}}, {{0, 0, 10, 10}}},
        {"L", {{0, 0}, {20, 0}, {20, 10}, {10, 10}, {10, 20}, {0, 20}}, {{0, 0, 20, 10}, {0, 10, 10, 20}}},
        {"L mirrored, clockwise", {{0, 0}, {-20, 0}, {-20, 10}, {-10, 10}, {-10, 20}, {0, 20}},
         {{-20, 0, 0, 10}, {-10, 10, 0, 20}}},
        {"U", {{0, 0}, {30, 0}, {30, 20}, {20, 20}, {20, 10}, {10, 10}, {10, 20}, {0, 20}},
         {{0, 0, 30, 10}, {0, 10, 10, 20}, {20, 10, 30, 20}}},
        {"staircase", {{0, 0}, {30, 0}, {30, 10}, {20, 10}, {20, 20}, {10, 20}, {10, 30}, {0, 30}},
         {{0, 0, 30, 10}, {0, 10, 20, 20}, {0, 20, 10, 30}}},
        {"cut at a collinear vertex", {{0, 0}, {5, 0}, {5, 0}, {10, 0}, {10, 5}, {10, 10}, {0, 10}},
         {{0, 0, 10, 5}, {0, 5, 10, 10}}},
        {"frame bridged to its hole", {{0, 10}, {0, 0}, {30, 0}, {30, 30}, {0, 30}, {0, 10}, {10, 10}, {10, 20}, {20, 20}, {20, 10}, {10, 10}},
         {{0, 0, 30, 10}, {0, 10, 10, 20}, {20, 10, 30, 20}, {0, 20, 30, 30}}},
        {"self-overlap of depth 2 is a hole", {{0, 0}, {20, 0}, {20, 30}, {10, 30}, {10, 10}, {30, 10}, {30, 20}, {0, 20}},
         {{0, 0, 20, 10}, {0, 10, 10, 20}, {20, 10, 30, 20}, {10, 20, 20, 30}}},
        {"square run twice", {{0, 0}, {10, 0}, {10, 10}, {0, 10}, {0, 0}, {10, 0}, {10, 10}, {0, 10}},
         {{0, 0, 0, 10}, {10, 0, 10, 10}}},
        {"two points", {{0, 0}, {0, 10}}, {{0, 0, 0, 10}}},
        {"horizontal only", {{0, 0}, {10, 0}, {20, 0}}, {}},
        {"one point", {{3, 4}}, {}},
        {"no points", {}, {}},
        // 32-bit differences wrap: x 4e9 apart order right to left, lower y 3e9 apart top band first
        {"wide square", {{-G, 0}, {G, 0}, {G, 10}, {-G, 10}}, {{G, 0, -G, 10}}},
        {"tall bands", {{0, -G}, {20, -G}, {20, M}, {10, M}, {10, G}, {0, G}}, {{0, M, 10, G}, {0, -G, 20, M}}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(rects(row.pts), row.want) << row.name;
        std::vector<R6> want;
        for (const R4& r : row.want)
            want.push_back({r[0], r[0], r[2], r[2], r[1], r[3]});
        EXPECT_EQ(traps(row.pts), want) << row.name;
    }
}

TEST(DecomposeTest, SlantedEdges)
{
    const Pts tri = {{0, 0}, {10, 0}, {0, 10}};
    const struct {
        const char* name;
        Pts pts;
        std::vector<R6> want;
    } rows[] = {
        {"triangle: the top collapses", tri, {{0, 0, 0, 10, 0, 10}}},
        {"quadrilateral", {{0, 0}, {20, 0}, {15, 10}, {5, 10}}, {{0, 5, 15, 20, 0, 10}}},
        {"quadrilateral, four heights", {{0, 0}, {10, 2}, {12, 8}, {2, 6}},
         {{0, 0, 10, 0, 0, 2}, {0, 2, 11, 10, 2, 6}, {2, 12, 12, 11, 6, 8}}},
        // cuts at 2.5, then 2 + 8/3, then 4 + 3: each from the truncated cut below
        {"fan", {{0, 0}, {10, 4}, {0, 4}, {0, 3}, {0, 2}, {0, 1}},
         {{0, 0, 2, 0, 0, 1}, {0, 0, 4, 2, 1, 2}, {0, 0, 7, 4, 2, 3}, {0, 0, 10, 7, 3, 4}}},
        // truncated toward zero; equal lower x ordered by upper x
        {"fan to the left", {{0, 0}, {-10, 4}, {0, 4}, {0, 3}, {0, 2}, {0, 1}},
         {{0, -2, 0, 0, 0, 1}, {-2, -4, 0, 0, 1, 2}, {-4, -7, 0, 0, 2, 3}, {-7, -10, 0, 0, 3, 4}}},
        {"bow tie: a crossing between heights is not cut", {{0, 0}, {10, 10}, {10, 0}, {0, 10}},
         {{0, 0, 10, 0, 0, 10}, {10, 0, 10, 10, 0, 10}}},
    };
    for (const auto& row : rows)
        EXPECT_EQ(traps(row.pts), row.want) << row.name;

    // Rectangles take a slanted edge as vertical at its start point.
    EXPECT_EQ(rects(tri), (std::vector<R4>{{0, 0, 10, 10}}));
    EXPECT_EQ(rects({{0, 0}, {0, 10}, {10, 0}}), (std::vector<R4>{{0, 0, 0, 10}}));
}

TEST(DecomposeTest, StridesOutputAndTheCutTree)
{
    // Points 9 bytes apart from an odd address.
    const Pts ell = {{0, 0}, {20, 0}, {20, 10}, {10, 10}, {10, 20}, {0, 20}};
    std::vector<char> raw(1 + 9 * ell.size(), 'x');
    for (size_t i = 0; i < ell.size(); ++i)
        std::memcpy(&raw[1 + 9 * i], &ell[i], sizeof(gu_point_t));
    TVarr<gu_rect_t> out(1, VARR_DOUBLE);
    out.App({1, 1, 1, 1});
    ASSERT_EQ(gu_polygon_to_rects(9, ell.size(), &raw[1], out), 2u);
    EXPECT_EQ(out[1].ymin, 10);
    TVarr<gu_trapezoid_t> tout(1, VARR_DOUBLE);
    EXPECT_EQ(gu_polygon_to_trapezoids(9, ell.size(), &raw[1], tout), 2u);
    EXPECT_EQ(gu_polygon_to_trapezoids(9, 0, nullptr, tout), 0u); // emptied
    EXPECT_EQ(tout.Len(), 0u);

    // Heights 0 .. 40 in a balanced tree: root 20, then 0 (right 10), 30 (right 40).
    std::vector<ctree_node_t*> nodes;
    for (long y = 0; y <= 40; y += 10)
        nodes.push_back(new ctree_node_t(y));
    bnode_t* root = bnode_t::BuildTree(nullptr, reinterpret_cast<bnode_t**>(nodes.data()), 0, 4);
    const auto cut = [&](long lo, long hi, long ylow) {
        const int found = static_cast<ctree_node_t*>(root)->FindLowestYCut(Edge_t{0, lo, 0, hi}, ylow);
        return std::make_pair(found, ylow);
    };
    EXPECT_EQ(cut(5, 35, 2147483647), std::make_pair(2, 10L)); // lowered at 20, then at 10
    EXPECT_EQ(cut(10, 20, 2147483647), std::make_pair(0, 2147483647L));
    EXPECT_EQ(cut(10, 40, 2147483647), std::make_pair(1, 20L));
    EXPECT_EQ(cut(5, 35, 15), std::make_pair(1, 10L));
    root->DeleteTree();
}

namespace {

// The model: a random orthogonal polygon on a small grid (self-overlapping as it comes), optionally
// warped by x -> x + s[x] * y with s non-decreasing: that keeps the left-to-right order on every line,
// maps vertical edges to edges of integer slope (exact cuts) and grid cells to trapezoids. Pieces must
// then be unions of warped cells: each cell's centre lies in exactly one piece when the cell is inside
// (even-odd), in none otherwise.
constexpr int kGrid = 12;

struct Model {
    Pts grid, pts; // before and after the warp
    std::vector<int> s;

    bool Inside(int cx, int cy) const // even-odd, at the centre of cell (cx, cy)
    {
        bool in = false;
        for (size_t i = 0; i < grid.size(); ++i) {
            const gu_point_t a = grid[i], b = grid[(i + 1) % grid.size()];
            in ^= a.x > cx && std::min(a.y, b.y) <= cy && cy < std::max(a.y, b.y);
        }
        return in;
    }
    double Area(int cx, int cy) const { return 1 + (s[cx + 1] - s[cx]) * (cy + 0.5); } // of a warped cell
};

Model random_polygon(std::mt19937& rng, bool warp)
{
    std::uniform_int_distribution<int> coord(0, kGrid), slope(-2, 2), sides(1, 7);
    Model m;
    for (int x = 0; x <= kGrid; ++x)
        m.s.push_back(warp ? slope(rng) : 0);
    std::sort(m.s.begin(), m.s.end());
    std::vector<int> xs(sides(rng)), ys(xs.size());
    for (size_t i = 0; i < xs.size(); ++i)
        xs[i] = coord(rng), ys[i] = coord(rng);
    for (size_t i = 0; i < xs.size(); ++i) {
        for (int x : {xs[i], xs[(i + 1) % xs.size()]}) {
            m.grid.push_back({x, ys[i]});
            m.pts.push_back({x + m.s[x] * ys[i], ys[i]});
        }
    }
    return m;
}

void check_pieces(const Model& m, const std::vector<R6>& pieces)
{
    double area = 0, want = 0;
    for (size_t i = 0; i < pieces.size(); ++i) {
        const R6& t = pieces[i];
        area += 0.5 * ((t[3] - t[0]) + (t[2] - t[1])) * (t[5] - t[4]);
        ASSERT_TRUE(i == 0 || pieces[i - 1][4] < t[4] || (pieces[i - 1][4] == t[4] && pieces[i - 1][0] <= t[0]));
    }
    for (int cy = 0; cy < kGrid; ++cy) {
        for (int cx = 0; cx < kGrid; ++cx) {
            const double y = cy + 0.5, x = cx + 0.5 + 0.5 * (m.s[cx] + m.s[cx + 1]) * y;
            int covered = 0;
            for (const R6& t : pieces) {
                const double f = (y - t[4]) / (t[5] - t[4]);
                covered += t[4] < y && y < t[5] && t[0] + (t[1] - t[0]) * f < x && x < t[3] + (t[2] - t[3]) * f;
            }
            ASSERT_EQ(covered, m.Inside(cx, cy) ? 1 : 0) << "cell " << cx << "," << cy;
            want += covered != 0 ? m.Area(cx, cy) : 0;
        }
    }
    EXPECT_EQ(area, want);
}

} // namespace

TEST(DecomposeTest, RandomPolygonsAgainstTheEvenOddModel)
{
    std::mt19937 rng(8);
    for (int run = 0; run < 600; ++run) {
        const Model m = random_polygon(rng, run % 2 != 0);
        SCOPED_TRACE(testing::Message() << "run " << run);
        check_pieces(m, traps(m.pts));
        if (run % 2 == 0) {
            std::vector<R6> as_traps;
            for (const R4& r : rects(m.pts))
                as_traps.push_back({r[0], r[0], r[2], r[2], r[1], r[3]});
            check_pieces(m, as_traps);
        }
    }
}

TEST(DecomposeTest, FailedAllocationReturnsTheTreeAndWarmCallsAllocateNothing)
{
    // 2000 distinct heights: a staircase.
    Pts stairs = {{0, 0}};
    for (int i = 1; i <= 2000; ++i)
        stairs.push_back({i, i - 1}), stairs.push_back({i, i});
    stairs.push_back({0, 2000});
    TVarr<gu_rect_t> big(4096, VARR_DOUBLE);
    TVarr<gu_trapezoid_t> tbig(4096, VARR_DOUBLE);
    const auto rects_into = [&](TVarr<gu_rect_t>& out) {
        return gu_polygon_to_rects(sizeof(gu_point_t), stairs.size(), stairs.data(), out);
    };
    const auto traps_into = [&](TVarr<gu_trapezoid_t>& out) {
        return gu_polygon_to_trapezoids(sizeof(gu_point_t), stairs.size(), stairs.data(), out);
    };
    ASSERT_EQ(rects_into(big), 2000u); // warm: scratch array and pool blocks
    ASSERT_EQ(traps_into(tbig), 2000u);

    // The failing output growth comes after the tree is built: were its nodes lost, the pool would
    // need new blocks within a few calls.
    const long before = g_news;
    for (int i = 0; i < 50; ++i) {
        TVarr<gu_rect_t> small(-1, VARR_INCR);
        TVarr<gu_trapezoid_t> tsmall(-1, VARR_INCR);
        g_fail_in = 1;
        EXPECT_THROW(rects_into(small), std::bad_alloc);
        g_fail_in = 1;
        EXPECT_THROW(traps_into(tsmall), std::bad_alloc);
    }
    EXPECT_EQ(g_news - before, 100);

    const long warm = g_news;
    EXPECT_EQ(rects_into(big), 2000u);
    EXPECT_EQ(traps_into(tbig), 2000u);
    EXPECT_EQ(g_news, warm);
}

TEST(DecomposeTest, PathRectangles)
{
    const Pts ell = {{0, 0}, {0, 10}, {10, 10}};
    const struct {
        const char* name;
        Pts path;
        int width;
        gu_PathType_t type;
        std::vector<R4> want;
    } rows[] = {
        {"up then right", ell, 2, 0, {{-1, 0, 1, 9}, {-1, 9, 10, 11}}},
        {"up then right, extended", ell, 2, 1, {{-1, -1, 1, 9}, {-1, 9, 11, 11}}},
        {"odd width halves down", ell, 3, 0, {{-1, 0, 1, 9}, {-1, 9, 10, 11}}},
        {"U turn", {{0, 0}, {10, 0}, {10, 10}, {0, 10}}, 2, 0, {{0, -1, 11, 1}, {9, 1, 11, 11}, {0, 9, 9, 11}}},
        {"left then down, extended", {{10, 10}, {0, 10}, {0, 0}}, 4, 1, {{-2, 8, 12, 12}, {-2, -2, 2, 8}}},
        {"straight on", {{0, 0}, {10, 0}, {20, 0}}, 2, 0, {{0, -1, 9, 1}, {9, -1, 20, 1}}},
        {"standing start counts as right", {{5, 5}, {5, 5}, {5, 9}}, 2, 0, {{5, 4, 6, 6}, {4, 6, 6, 9}}},
        {"standing end counts as right", {{0, 0}, {10, 0}, {10, 0}}, 2, 1, {{-1, -1, 9, 1}, {9, -1, 11, 1}}},
        {"one point, type unchecked", {{5, 5}}, 4, 7, {{3, 3, 7, 7}}},
        {"no points", {}, 4, 0, {}},
    };
    for (const auto& row : rows) {
        TVarr<gu_rect_t> out(1, VARR_DOUBLE);
        out.App({9, 9, 9, 9});
        const unsigned n = gu_path_to_rects(sizeof(gu_point_t), row.path.size(), row.path.data(), row.width, row.type, out);
        std::vector<R4> got;
        for (unsigned i = 0; i < n; ++i)
            got.push_back({out[i].xmin, out[i].ymin, out[i].xmax, out[i].ymax});
        EXPECT_EQ(got, row.want) << row.name;
        EXPECT_EQ(out.Len(), n) << row.name;
    }

    const std::string pattern = testutil::AssertionPattern(
        "geometry/gu7.cpp",
        "unsigned int gu_path_to_rects(unsigned int, unsigned int, const void*, gu_coord_t, gu_PathType_t, "
        "TVarr<gu_rect_t>&)",
        "0");
    TVarr<gu_rect_t> out(1, VARR_DOUBLE);
    EXPECT_DEATH(gu_path_to_rects(sizeof(gu_point_t), 2, ell.data(), 2, 2, out), pattern);
    EXPECT_DEATH(gu_path_to_rects(sizeof(gu_point_t), 3, ell.data(), 2, -1, out), pattern);
}
