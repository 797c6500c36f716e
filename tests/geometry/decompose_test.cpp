// Decomposition: hand-derived shapes, wrapping order, wide paths, seeded random polygons against an
// even-odd cell model, and the cut tree's fate when an allocation fails.
#include <tevbase/decompose.h>

#include <support/testutil.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <new>
#include <random>
#include <utility>
#include <vector>

// Test-only global allocator: counts calls and fails the next one on request. Out of line, so that the
// compiler pairs neither malloc() with delete nor new with free().
static long g_news = 0;
static bool g_fail = false;
[[gnu::noinline]] void* operator new(std::size_t n)
{
    ++g_news;
    if (void* p = std::exchange(g_fail, false) ? nullptr : std::malloc(n + 1))
        return p;
    throw std::bad_alloc();
}
[[gnu::noinline]] void* operator new[](std::size_t n) { return operator new(n); }
[[gnu::noinline]] void operator delete(void* p) noexcept { std::free(p); }
[[gnu::noinline]] void operator delete[](void* p) noexcept { std::free(p); }
[[gnu::noinline]] void operator delete(void* p, std::size_t) noexcept { std::free(p); }
[[gnu::noinline]] void operator delete[](void* p, std::size_t) noexcept { std::free(p); }

namespace {

using Pts = std::vector<gu_point_t>;
using R4 = std::array<int, 4>; // a gu_rect_t
using R6 = std::array<int, 6>; // a gu_trapezoid_t
constexpr int G = 2000000000, M = 1000000000;

// fn on p, stored 9 bytes apart from an odd address, and args, into an output that holds a piece already.
template <class Piece, class Fn, class... Args>
std::vector<std::array<int, sizeof(Piece) / 4>> run(Fn fn, const Pts& p, Args... args)
{
    std::vector<char> raw(1 + 9 * p.size());
    for (size_t i = 0; i < p.size(); ++i)
        std::memcpy(&raw[1 + 9 * i], &p[i], sizeof(gu_point_t));
    TVarr<Piece> out(1, VARR_DOUBLE);
    out.App(Piece{});
    const unsigned n = fn(9, p.size(), &raw[1], args..., out);
    EXPECT_EQ(n, out.Len());
    std::vector<std::array<int, sizeof(Piece) / 4>> got(n);
    if (n != 0)
        std::memcpy(got.data(), out.Get(), n * sizeof(Piece));
    return got;
}

std::vector<R4> rects(const Pts& p) { return run<gu_rect_t>(gu_polygon_to_rects, p); }
std::vector<R6> traps(const Pts& p) { return run<gu_trapezoid_t>(gu_polygon_to_trapezoids, p); }

std::vector<R6> as_traps(const std::vector<R4>& rs)
{
    std::vector<R6> out;
    for (const R4& r : rs)
        out.push_back({r[0], r[0], r[2], r[2], r[1], r[3]});
    return out;
}

} // namespace

TEST(DecomposeTest, HandDerivedShapesAndPaths)
{
    // Pieces by bottom y, then x.
    const struct { const char* name; Pts pts; std::vector<R4> want; } ortho[] = {
        {"square, clockwise", {{0, 0}, {0, 10}, {10, 10}, {10, 0}}, {{0, 0, 10, 10}}},
        {"L", {{0, 0}, {20, 0}, {20, 10}, {10, 10}, {10, 20}, {0, 20}}, {{0, 0, 20, 10}, {0, 10, 10, 20}}},
        {"U", {{0, 0}, {30, 0}, {30, 20}, {20, 20}, {20, 10}, {10, 10}, {10, 20}, {0, 20}},
         {{0, 0, 30, 10}, {0, 10, 10, 20}, {20, 10, 30, 20}}},
        {"staircase", {{0, 0}, {30, 0}, {30, 10}, {20, 10}, {20, 20}, {10, 20}, {10, 30}, {0, 30}},
         {{0, 0, 30, 10}, {0, 10, 20, 20}, {0, 20, 10, 30}}},
        {"overlap of depth 2 is a hole",
         {{0, 0}, {20, 0}, {20, 30}, {10, 30}, {10, 10}, {30, 10}, {30, 20}, {0, 20}},
         {{0, 0, 20, 10}, {0, 10, 10, 20}, {20, 10, 30, 20}, {10, 20, 20, 30}}},
        {"no points", {}, {}},
        // 32-bit differences wrap: x 4e9 apart order right to left, lower y 3e9 apart top band first
        {"wide square", {{-G, 0}, {G, 0}, {G, 10}, {-G, 10}}, {{G, 0, -G, 10}}},
        {"tall bands", {{0, -G}, {20, -G}, {20, M}, {10, M}, {10, G}, {0, G}},
         {{0, M, 10, G}, {0, -G, 20, M}}}};
    for (const auto& row : ortho) {
        EXPECT_EQ(rects(row.pts), row.want) << row.name;
        EXPECT_EQ(traps(row.pts), as_traps(row.want)) << row.name;
    }

    const Pts tri = {{0, 0}, {10, 0}, {0, 10}};
    const struct { const char* name; Pts pts; std::vector<R6> want; } slanted[] = {
        {"triangle: the top collapses", tri, {{0, 0, 0, 10, 0, 10}}},
        {"quadrilateral, four heights", {{0, 0}, {10, 2}, {12, 8}, {2, 6}},
         {{0, 0, 10, 0, 0, 2}, {0, 2, 11, 10, 2, 6}, {2, 12, 12, 11, 6, 8}}},
        // cuts at -2.5, then -2 - 8/3 (from the truncated cut below), then -4 - 3, each truncated
        // toward zero; in the lowest band the equal lower x are ordered by upper x
        {"fan", {{0, 0}, {-10, 4}, {0, 4}, {0, 3}, {0, 2}, {0, 1}},
         {{0, -2, 0, 0, 0, 1}, {-2, -4, 0, 0, 1, 2}, {-4, -7, 0, 0, 2, 3}, {-7, -10, 0, 0, 3, 4}}},
        // a crossing between two heights is not cut; equal lower ends are ordered by lower x first
        {"bow tie", {{0, 0}, {10, 10}, {10, 0}, {0, 10}}, {{0, 0, 10, 0, 0, 10}, {10, 0, 10, 10, 0, 10}}}};
    for (const auto& row : slanted)
        EXPECT_EQ(traps(row.pts), row.want) << row.name;
    // Rectangles take a slanted edge as vertical at its start point.
    EXPECT_EQ(rects(tri), (std::vector<R4>{{0, 0, 10, 10}}));

    // Wide orthogonal paths.
    const Pts ell = {{0, 0}, {0, 10}, {10, 10}};
    const struct { const char* name; Pts path; int width; gu_PathType_t type; std::vector<R4> want; }
    paths[] = {
        {"up then right", ell, 2, 0, {{-1, 0, 1, 9}, {-1, 9, 10, 11}}},
        {"up then right, extended", ell, 2, 1, {{-1, -1, 1, 9}, {-1, 9, 11, 11}}},
        {"U turn", {{0, 0}, {10, 0}, {10, 10}, {0, 10}}, 2, 0,
         {{0, -1, 11, 1}, {9, 1, 11, 11}, {0, 9, 9, 11}}},
        {"left then down, extended, odd width", {{10, 10}, {0, 10}, {0, 0}}, 5, 1,
         {{-2, 8, 12, 12}, {-2, -2, 2, 8}}},
        {"standing start counts as right", {{5, 5}, {5, 5}, {5, 9}}, 2, 0, {{5, 4, 6, 6}, {4, 6, 6, 9}}},
        {"standing end counts as right", {{0, 0}, {10, 0}, {10, 0}}, 2, 1, {{-1, -1, 9, 1}, {9, -1, 11, 1}}},
        {"one point, type unchecked", {{5, 5}}, 4, 7, {{3, 3, 7, 7}}},
        {"no points", {}, 4, 0, {}}};
    for (const auto& row : paths)
        EXPECT_EQ(run<gu_rect_t>(gu_path_to_rects, row.path, row.width, row.type), row.want) << row.name;

    TVarr<gu_rect_t> out(1, VARR_DOUBLE);
    EXPECT_DEATH(gu_path_to_rects(8, 2, ell.data(), 2, 2, out),
                 testutil::AssertionPattern("geometry/gu7.cpp",
                                            "unsigned int gu_path_to_rects(unsigned int, unsigned int, const "
                                            "void*, gu_coord_t, gu_PathType_t, TVarr<gu_rect_t>&)",
                                            "0"));
}

TEST(DecomposeTest, RandomPolygonsAgainstTheEvenOddModel)
{
    // Random orthogonal polygons on a small grid, self-overlapping as they come: each cell lies in exactly
    // one piece when it is inside (even-odd), in none otherwise, and the areas add up.
    constexpr int kGrid = 12;
    std::mt19937 rng(8);
    std::uniform_int_distribution<int> coord(0, kGrid), sides(1, 7);
    for (int run = 0; run < 600; ++run) {
        Pts v(sides(rng)), pts;
        for (gu_point_t& p : v)
            p = {coord(rng), coord(rng)};
        for (size_t i = 0; i < v.size(); ++i)
            pts.insert(pts.end(), {v[i], {v[(i + 1) % v.size()].x, v[i].y}});
        const std::vector<R6> pieces = traps(pts);
        EXPECT_EQ(as_traps(rects(pts)), pieces) << "run " << run; // the same bands, the same order
        long area = 0, want = 0;
        for (const R6& t : pieces)
            area += long(t[3] - t[0]) * (t[5] - t[4]);
        for (int cy = 0; cy < kGrid; ++cy) {
            for (int cx = 0; cx < kGrid; ++cx) {
                bool in = false;
                for (size_t i = 0; i < pts.size(); ++i) {
                    const gu_point_t a = pts[i], b = pts[(i + 1) % pts.size()];
                    in ^= a.x > cx && std::min(a.y, b.y) <= cy && cy < std::max(a.y, b.y);
                }
                int covered = 0;
                for (const R6& t : pieces)
                    covered += t[4] <= cy && cy < t[5] && t[0] <= cx && cx < t[3];
                ASSERT_EQ(covered, in ? 1 : 0) << "run " << run << ", cell " << cx << "," << cy;
                want += covered;
            }
        }
        EXPECT_EQ(area, want) << "run " << run;
    }
}

TEST(DecomposeTest, FailedAllocationReturnsTheTreeToItsPool)
{
    Pts fan = {{10, 1000}}; // 2001 distinct heights
    for (int i = 0; i <= 2000; ++i)
        fan.push_back({0, i});
    TVarr<gu_trapezoid_t> big(4096, VARR_DOUBLE), small(-1, VARR_INCR);
    ASSERT_EQ(gu_polygon_to_trapezoids(8, fan.size(), fan.data(), big), 2000u); // warms scratch and pool

    // The output grows only once the tree is complete; had its nodes been lost, the pool would need
    // new blocks within a few calls.
    const long before = g_news;
    for (int i = 0; i < 50; ++i) {
        g_fail = true;
        EXPECT_THROW(gu_polygon_to_trapezoids(8, fan.size(), fan.data(), small), std::bad_alloc);
    }
    EXPECT_EQ(gu_polygon_to_trapezoids(8, fan.size(), fan.data(), big), 2000u);
    EXPECT_EQ(g_news - before, 50);
}

