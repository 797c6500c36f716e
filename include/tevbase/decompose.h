// Decomposition of polygons into horizontal trapezoids, of orthogonal polygons into rectangles and of
// orthogonal wide paths into rectangles; the edge records and the tree of cut heights behind them.
#ifndef TEVBASE_DECOMPOSE_H
#define TEVBASE_DECOMPOSE_H

#include <cstddef>

#include <generic/tvarr>
#include <tevbase/bnode.h>
#include <tevbase/config.h>
#include <tevbase/geometry.h>
#include <tevbase/pool.h>

// A trapezoid with a horizontal bottom (at ybot) and top (at ytop); its corners, counter-clockwise from
// the bottom left: (xbl, ybot), (xbr, ybot), (xtr, ytop), (xtl, ytop). A side may collapse to a point.
typedef struct TEVBASE_API gu_trapezoid_t {
    gu_coord_t xbl; // bottom left
    gu_coord_t xtl; // top left
    gu_coord_t xtr; // top right
    gu_coord_t xbr; // bottom right
    gu_coord_t ybot;
    gu_coord_t ytop;
} gu_trapezoid_t;

// A non-horizontal polygon edge of the trapezoid scan, lower end first (ylow < yhigh).
struct TEVBASE_API Edge_t {
    long xlow;
    long ylow;
    long xhigh;
    long yhigh;
};

// A polygon edge of the rectangle scan, taken as vertical at x (ylow < yhigh).
struct TEVBASE_API OEdge_t {
    long ylow;
    long yhigh;
    long x;
};

// The scan-band algorithm of gu_polygon_to_trapezoids and gu_polygon_to_rects:
//
//   1. Collect the non-horizontal edges (the closing edge first, then each point to the next) and put
//      the heights of their ends in a balanced tree.
//   2. Cut each edge at every tree height strictly inside it: afterwards every edge spans one band
//      between two neighbouring heights.
//   3. Sort the edges by lower y, then left to right (lower x, then upper x).
//   4. In each band pair the 1st edge with the 2nd, the 3rd with the 4th, ...: each pair bounds one
//      piece (even-odd rule: orientation does not matter, and overlaps of even depth become holes).
//
//     y=20  +------+            band [10,20]: edges at x 0 and 10  ->  (0, 10, 10, 20)
//           |      |
//     y=10  |      +------+     band [0,10]:  edges at x 0 and 20  ->  (0, 0, 20, 10)
//           |             |
//     y=0   +-------------+     rectangles of the L, in this order: (0, 0, 20, 10), (0, 10, 10, 20)
//           0      10     20
//
// Edges that cross between two vertex heights are not cut where they cross: self-intersecting
// polygons come out exact only when their crossings lie at vertex heights.
//
// Deliberate, callers rely on both: the sort compares fields by their 32-bit difference, which wraps
// (coordinates 2^31 or more apart order the wrong way round, and their pieces with them); and a cut
// through a slanted edge lands at x truncated toward zero, interpolated from the previous cut below it.
//
// The tree of cut heights. Each node is an AVL node holding one height y. FindLowestYCut, called on the
// root, lowers ylow (which the caller sets to 2147483647) to the smallest height strictly between e's
// lower and upper y if that is below it, and returns how many times it lowered it on the way down the
// tree: 0 when it found none.
// Nodes come from the class's pool `heap` in blocks of 16384 bytes; derived classes of another size
// use the general allocator.
class TEVBASE_API ctree_node_t : public AVLnode {
public:
    long y;

    explicit ctree_node_t(long height) : y(height) {}
    ~ctree_node_t() override;
    // A new node with the same height and no links.
    bnode_t* Dup() const override;

    int FindLowestYCut(const Edge_t& e, long& ylow) const;

    static void* operator new(std::size_t size);
    static void operator delete(void* p, std::size_t size);

    static Pool heap;
};

// The same tree for the rectangle scan.
class TEVBASE_API octree_node_t : public AVLnode {
public:
    long y;

    explicit octree_node_t(long height) : y(height) {}
    ~octree_node_t() override;
    bnode_t* Dup() const override;

    int FindLowestYCut(const OEdge_t& e, long& ylow) const;

    static void* operator new(std::size_t size);
    static void operator delete(void* p, std::size_t size);

    static Pool heap;
};

// The polygon has n points, `stride` bytes apart from pts on, each starting with its x and y; it is
// implicitly closed. out is emptied first; the pieces are appended band by band from the lowest, left to
// right within a band, and their number is returned. Horizontal-only polygons (fewer than two distinct
// heights) and no points give none. Time O(k log h) for k pieces of edge between h distinct heights,
// plus the sort.
//
// Each function keeps a process-wide scratch array of edges (256 to start, kept at its largest size):
// not reentrant, not thread-safe; callers serialise calls of the same function.

// Trapezoids of any polygon: a piece from left edge a and right edge b is
// (a.xlow, a.xhigh, b.xhigh, b.xlow, a.ylow, b.yhigh).
TEVBASE_API unsigned int gu_polygon_to_trapezoids(unsigned int stride, unsigned int n, const void* pts,
                                                  TVarr<gu_trapezoid_t>& out);

// Rectangles of an orthogonal polygon: a piece from left edge a and right edge b is
// (a.x, a.ylow, b.x, b.yhigh). A slanted edge is taken, without a check, as vertical at the x of its
// start point (the closing edge starts at the last point).
TEVBASE_API unsigned int gu_polygon_to_rects(unsigned int stride, unsigned int n, const void* pts,
                                             TVarr<gu_rect_t>& out);

// The outline of an orthogonal wide path (points as above, a segment vertical when its y values differ,
// else horizontal) as one rectangle per segment, each normalised (min corner first); consecutive
// rectangles share a corner at each bend and do not overlap. The half width is width / 2;
// type 0 ends flush at the end points, type 1 reaches half the width beyond them, any other type fails
// an assertion once there are two points. One point gives the square of side twice the half width.
// out is emptied first; returns the number of rectangles, n - 1 (1 for one point, 0 for none).
// Coordinates wrap at 32 bits.
//
//     path (0,0) (0,10) (10,10), width 2, type 0:   (-1,11) +-----------------+
//     rectangles (-1, 0, 1, 9) and (-1, 9, 10, 11),         |                 |
//     sharing the corner (-1, 9) at the bend         (-1,9) +---+-------------+ (10,9)
//                                                           |   |
//                                                    (-1,0) +---+ (1,0)
TEVBASE_API unsigned int gu_path_to_rects(unsigned int stride, unsigned int n, const void* pts,
                                          gu_coord_t width, gu_PathType_t type, TVarr<gu_rect_t>& out);

// ---- Instances in the library (geometry/decompose.cpp) -------------------------------------------

extern template class TVarr<gu_trapezoid_t>;
extern template class TVarrCmp<gu_trapezoid_t>;
extern template class TVarrRange<gu_trapezoid_t>;
// gu_rect_t, a C type, has no visibility of its own: the attribute exports these instances.
extern template class TEVBASE_API TVarr<gu_rect_t>;
extern template class TEVBASE_API TVarrCmp<gu_rect_t>;
extern template class TEVBASE_API TVarrRange<gu_rect_t>;
extern template class TVarr<Edge_t>;
extern template class TVarr<OEdge_t>;
extern template void TShSort<Edge_t>(Edge_t*, unsigned int, int (*)(const Edge_t*, const Edge_t*));
extern template void TShSort<OEdge_t>(OEdge_t*, unsigned int, int (*)(const OEdge_t*, const OEdge_t*));

#endif
