// Polygon decomposition into trapezoids and rectangles: the scan-band algorithm (drawn in decompose.h)
// and its tree of cut heights.
#include <tevbase/decompose.h>

#include <stdint.h>

#include "coord.h"

template class TVarr<gu_trapezoid_t>;
template class TVarrCmp<gu_trapezoid_t>;
template class TVarrRange<gu_trapezoid_t>;
template class TVarr<gu_rect_t>;
template class TVarrCmp<gu_rect_t>;
template class TVarrRange<gu_rect_t>;
template class TVarr<Edge_t>;
template class TVarr<OEdge_t>;
template void TShSort<Edge_t>(Edge_t*, unsigned int, int (*)(const Edge_t*, const Edge_t*));
template void TShSort<OEdge_t>(OEdge_t*, unsigned int, int (*)(const OEdge_t*, const OEdge_t*));

Pool ctree_node_t::heap;
Pool octree_node_t::heap;

namespace {

constexpr unsigned kNodeBlock = 16384;
constexpr unsigned kScratchSize = 256;
constexpr long kNoCut = 2147483647;

// From the root: heights not above the edge's lower y send the search right; any other height is a
// candidate when below the upper y, and the search goes left for a lower one.
template <class Node, class Edge> int lowest_cut(const Node* n, const Edge& e, long& ylow)
{
    int found = 0;
    while (n != nullptr) {
        if (e.ylow >= n->y) {
            n = static_cast<const Node*>(n->right);
            continue;
        }
        if (n->y < e.yhigh && n->y < ylow) {
            ylow = n->y;
            ++found;
        }
        n = static_cast<const Node*>(n->left);
    }
    return found;
}

// a - b as the 32-bit machine subtracts: wraps for operands 2^31 or more apart (callers rely on it).
inline int wrapped_diff(long a, long b)
{
    return static_cast<int32_t>(static_cast<uint32_t>(a) - static_cast<uint32_t>(b));
}

// The distinct heights of one call. The nodes go back to their pool when the call ends, by return or by
// exception.
template <class Node> class CutTree {
public:
    CutTree() = default;
    CutTree(const CutTree&) = delete;
    CutTree& operator=(const CutTree&) = delete;
    ~CutTree()
    {
        if (root_ != nullptr)
            root_->DeleteTree();
    }

    // Adds y unless present.
    void Insert(long y) { root_ = AVLnode::Insert(root_, Compare, &y, Create, &y); }
    const Node* Root() const { return static_cast<const Node*>(root_); }

private:
    static int Compare(const bnode_t* node, const void* key)
    {
        const long y = *static_cast<const long*>(key), at = static_cast<const Node*>(node)->y;
        return y < at ? 1 : y > at ? -1 : 0;
    }
    static bnode_t* Create(void* key) { return new Node(*static_cast<const long*>(key)); }

    AVLnode* root_ = nullptr;
};

// The two scans differ only in their records: how an edge is taken from two points, how it is cut,
// how edges are ordered and what a pair of them gives.
struct TrapezoidScan {
    using Edge = Edge_t;
    using Node = ctree_node_t;
    using Piece = gu_trapezoid_t;

    static Edge_t Make(const gu_point_t& a, const gu_point_t& b)
    {
        return a.y < b.y ? Edge_t{a.x, a.y, b.x, b.y} : Edge_t{b.x, b.y, a.x, a.y};
    }
    // Shortens e to end at height ycut and returns the rest above it. The cut is interpolated in double
    // from the edge as it stands (so from the previous, truncated cut) and truncated toward zero; it lies
    // between the ends, so it is a coordinate.
    static Edge_t Cut(Edge_t& e, long ycut)
    {
        const double x = static_cast<double>(e.xlow) +
                         (static_cast<double>(e.xhigh) - static_cast<double>(e.xlow)) /
                             (static_cast<double>(e.yhigh) - static_cast<double>(e.ylow)) *
                             (static_cast<double>(ycut) - static_cast<double>(e.ylow));
        const long xcut = static_cast<long>(x);
        const Edge_t rest{xcut, ycut, e.xhigh, e.yhigh};
        e.xhigh = xcut;
        e.yhigh = ycut;
        return rest;
    }
    static int Compare(const Edge_t* a, const Edge_t* b)
    {
        if (a->ylow != b->ylow)
            return wrapped_diff(a->ylow, b->ylow);
        if (a->xlow != b->xlow)
            return wrapped_diff(a->xlow, b->xlow);
        return wrapped_diff(a->xhigh, b->xhigh);
    }
    static gu_trapezoid_t Pair(const Edge_t& a, const Edge_t& b)
    {
        return {static_cast<gu_coord_t>(a.xlow), static_cast<gu_coord_t>(a.xhigh),
                static_cast<gu_coord_t>(b.xhigh), static_cast<gu_coord_t>(b.xlow),
                static_cast<gu_coord_t>(a.ylow),  static_cast<gu_coord_t>(b.yhigh)};
    }
};

struct RectScan {
    using Edge = OEdge_t;
    using Node = octree_node_t;
    using Piece = gu_rect_t;

    // x of the start point a: a slanted edge is taken as vertical there (deliberately unchecked).
    static OEdge_t Make(const gu_point_t& a, const gu_point_t& b)
    {
        return a.y < b.y ? OEdge_t{a.y, b.y, a.x} : OEdge_t{b.y, a.y, a.x};
    }
    static OEdge_t Cut(OEdge_t& e, long ycut)
    {
        const OEdge_t rest{ycut, e.yhigh, e.x};
        e.yhigh = ycut;
        return rest;
    }
    static int Compare(const OEdge_t* a, const OEdge_t* b)
    {
        if (a->ylow != b->ylow)
            return wrapped_diff(a->ylow, b->ylow);
        return wrapped_diff(a->x, b->x);
    }
    static gu_rect_t Pair(const OEdge_t& a, const OEdge_t& b)
    {
        return {static_cast<gu_coord_t>(a.x), static_cast<gu_coord_t>(a.ylow), static_cast<gu_coord_t>(b.x),
                static_cast<gu_coord_t>(b.yhigh)};
    }
};

template <class Scan>
unsigned int decompose(unsigned int stride, unsigned int n, const void* pts,
                       TVarr<typename Scan::Edge>& edges, TVarr<typename Scan::Piece>& out)
{
    using Edge = typename Scan::Edge;
    out.Reset();
    edges.Reset();
    CutTree<typename Scan::Node> tree;

    // The closing edge first, then each point to the next.
    gu_point_t from = n != 0 ? gu::PointAt(pts, stride, n - 1) : gu_point_t{0, 0};
    for (unsigned int i = 0; i < n; ++i) {
        const gu_point_t to = gu::PointAt(pts, stride, i);
        if (from.y != to.y) {
            const Edge e = Scan::Make(from, to);
            edges.App(e);
            tree.Insert(e.ylow);
            tree.Insert(e.yhigh);
        }
        from = to;
    }

    // Each edge is cut at its lowest inner height and the rest appended, to be cut in its turn.
    for (unsigned int i = 0; i < edges.Len(); ++i) {
        long ycut = kNoCut;
        if (tree.Root()->FindLowestYCut(edges.Get()[i], ycut) == 0)
            continue;
        const Edge rest = Scan::Cut(edges.Get()[i], ycut);
        edges.App(rest);
    }

    // Every edge now spans one band: sorted, each band's edges are consecutive, left to right.
    const unsigned int len = edges.Len();
    TShSort(edges.Get(), len, Scan::Compare);
    const Edge* e = edges.Get();
    out.Resize(len / 2);
    for (unsigned int i = 0; i + 1 < len; i += 2)
        out.Ass(Scan::Pair(e[i], e[i + 1]));
    return out.Len();
}

} // namespace

ctree_node_t::~ctree_node_t() {}

bnode_t* ctree_node_t::Dup() const
{
    return new ctree_node_t(y);
}

int ctree_node_t::FindLowestYCut(const Edge_t& e, long& ylow) const
{
    return lowest_cut(this, e, ylow);
}

void* ctree_node_t::operator new(std::size_t size)
{
    return heap.New(size, sizeof(ctree_node_t), kNodeBlock);
}

void ctree_node_t::operator delete(void* p, std::size_t size)
{
    heap.Delete(p, size, sizeof(ctree_node_t));
}

octree_node_t::~octree_node_t() {}

bnode_t* octree_node_t::Dup() const
{
    return new octree_node_t(y);
}

int octree_node_t::FindLowestYCut(const OEdge_t& e, long& ylow) const
{
    return lowest_cut(this, e, ylow);
}

void* octree_node_t::operator new(std::size_t size)
{
    return heap.New(size, sizeof(octree_node_t), kNodeBlock);
}

void octree_node_t::operator delete(void* p, std::size_t size)
{
    heap.Delete(p, size, sizeof(octree_node_t));
}

unsigned int gu_polygon_to_trapezoids(unsigned int stride, unsigned int n, const void* pts,
                                      TVarr<gu_trapezoid_t>& out)
{
    static TVarr<Edge_t> edges(kScratchSize, VARR_DOUBLE);
    return decompose<TrapezoidScan>(stride, n, pts, edges, out);
}

unsigned int gu_polygon_to_rects(unsigned int stride, unsigned int n, const void* pts, TVarr<gu_rect_t>& out)
{
    static TVarr<OEdge_t> edges(kScratchSize, VARR_DOUBLE);
    return decompose<RectScan>(stride, n, pts, edges, out);
}
