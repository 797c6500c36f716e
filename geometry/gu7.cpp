// Polygon primitives: orthogonality, snapping, orientation, area, clean-up, offsetting, intersections;
// orthogonal wide paths as rectangles.
#include <tevbase/geometry.h>

#include <assert.h>
#include <stddef.h>
#include <stdlib.h>
#include <string.h>

#include <algorithm>
#include <cmath>
#include <memory>

#include <tevbase/alloc.h>
#include <tevbase/decompose.h>
#include <tevbase/textutil.h>

#include "coord.h"

using gu::Diff;

// Callers pass raw coordinate arrays: x then y, 32 bits each, no gaps.
static_assert(sizeof(gu_point_t) == 8 && offsetof(gu_point_t, y) == 4, "gu_point_t layout");
static_assert(sizeof(gu_rect_t) == 16, "gu_rect_t layout");

namespace {

// Class of the segment a-b: 0 axis-parallel (or no length), 1 at 45 degrees, 2 any other angle.
int segment_class(const gu_point_t& a, const gu_point_t& b)
{
    const double dx = Diff(b.x, a.x), dy = Diff(b.y, a.y);
    if (dx == 0 || dy == 0)
        return 0;
    return dx == dy || dx == -dy ? 1 : 2;
}

// The collinearity test at b: (b - a) x (c - b), zero when b lies on the line through a and c or
// repeats one of them.
double turn(const gu_point_t& a, const gu_point_t& b, const gu_point_t& c)
{
    return Diff(b.x, a.x) * Diff(c.y, b.y) - Diff(c.x, b.x) * Diff(b.y, a.y);
}

gu_coord_t clamp_coord(double v)
{
    return static_cast<gu_coord_t>(std::min(std::max(v, double(INT32_MIN)), double(INT32_MAX)));
}

inline bool same(const gu_point_t& a, const gu_point_t& b)
{
    return a.x == b.x && a.y == b.y;
}

struct FreeDeleter {
    void operator()(void* p) const { free(p); }
};
using ScratchPoints = std::unique_ptr<gu_point_t[], FreeDeleter>;

// Points without repeats and two more entries for the wrap-around copies; zero-filled, aborts when
// memory is exhausted. *m receives the count of distinct points.
ScratchPoints dedupe_with_wrap(int n, const gu_point_t* pts, int* m)
{
    ScratchPoints p(static_cast<gu_point_t*>(SCalloc(static_cast<uint32_t>(n) + 2, sizeof(gu_point_t))));
    *m = gu_delete_multiple_pointsi(n, pts, p.get());
    p[*m] = p[0];
    p[*m + 1] = p[1];
    return p;
}

// Outcome of the line-parameter step shared by the intersection functions.
struct LineParam {
    double d1x, d1y, d2x, d2y, wx, wy; // p2 - p1, q2 - q1, q1 - p1
    double den;                        // 0 for parallel lines
    double t;                          // parameter on the first line
    const gu_point_t* on;              // parallel lines: the point found on the first line
};

bool in_unit(double v)
{
    return v >= 0 && v <= 1;
}

bool line_parameter(const gu_point_t* p1, const gu_point_t* p2, const gu_point_t* q1, const gu_point_t* q2,
                    LineParam& r)
{
    r.d1x = Diff(p2->x, p1->x);
    r.d1y = Diff(p2->y, p1->y);
    r.d2x = Diff(q2->x, q1->x);
    r.d2y = Diff(q2->y, q1->y);
    r.wx = Diff(q1->x, p1->x);
    r.wy = Diff(q1->y, p1->y);
    r.den = r.d1y * r.d2x - r.d2y * r.d1x;
    if (r.den != 0) {
        r.t = (r.d2x * r.wy - r.wx * r.d2y) / r.den;
        return true;
    }
    if (r.d1x == 0 && r.d1y == 0)
        return false;

    // Parallel lines. Deliberately q1.x - (p1.x / d1.x), not (q1.x - p1.x) / d1.x: callers rely on
    // this parameter, and it is taken from q1 for q2 as well.
    const double t = r.d1x != 0 ? q1->x - (p1->x / r.d1x) : q1->y - (p1->y / r.d1y);
    const auto on_line = [&](const gu_point_t* q) {
        return r.d1y * Diff(q->x, p1->x) - Diff(q->y, p1->y) * r.d1x == 0;
    };
    for (const gu_point_t* q : {q1, q2}) {
        if (on_line(q) && in_unit(t)) {
            r.t = t;
            r.on = q;
            return true;
        }
    }
    return false;
}

// base + round(offset), if that is a coordinate.
bool offset_coord(gu_coord_t base, double offset, gu_coord_t* out)
{
    const double v = base + gu::RoundAway(offset); // exact: both are integers below 2^53
    if (!(v >= INT32_MIN && v <= INT32_MAX))
        return false;
    *out = static_cast<gu_coord_t>(v);
    return true;
}

} // namespace

extern "C" {

int gu_check_orthoi(int n, const gu_point_t* pts, int closed)
{
    if (n < 2)
        return 0;
    int worst = 0;
    for (int i = 1; i < n && worst < 2; ++i)
        worst = std::max(worst, segment_class(pts[i - 1], pts[i]));
    if (closed && worst < 2)
        worst = std::max(worst, segment_class(pts[n - 1], pts[0]));
    return worst;
}

int16_t gu_check_ortho(int16_t n, const gu_point_t* pts, int closed)
{
    return gu::Narrow16(gu_check_orthoi(n, pts, closed));
}

void gu_snap_ortho(gu_point_t anchor, gu_point_t* pt, int mode)
{
    const double dx = Diff(pt->x, anchor.x), dy = Diff(pt->y, anchor.y);
    if (dx == 0 || dy == 0)
        return;
    if (mode == 0) {
        if (std::fabs(dy / dx) <= 1.0)
            pt->y = anchor.y;
        else
            pt->x = anchor.x;
    } else if (mode == 1) {
        if (std::fabs(dx) == std::fabs(dy))
            return;
        const double s = dy / dx;
        if (std::fabs(s) <= 0.414213562373095) // tan 22.5 degrees
            pt->y = anchor.y;
        else if (std::fabs(s) >= 2.41421356237309) // tan 67.5 degrees
            pt->x = anchor.x;
        else if (s > 1)
            pt->x = clamp_coord(anchor.x + dy);
        else if (s > 0)
            pt->y = clamp_coord(anchor.y + dx);
        else // every negative slope keeps x, also the steep ones: callers rely on it
            pt->y = clamp_coord(anchor.y - dx);
    }
}

int gu_polygon_orientationi(int n, const gu_point_t* pts)
{
    if (n < 3)
        return 1;
    gu_coord_t xmin = pts[0].x;
    int right = 0; // first point of largest x
    for (int i = 1; i < n; ++i) {
        xmin = std::min(xmin, pts[i].x);
        if (pts[i].x > pts[right].x)
            right = i;
    }
    // Walk forward to the point before the first leftmost vertex met; some point has x = xmin.
    int a = right;
    for (int next = a + 1 == n ? 0 : a + 1; pts[next].x > xmin; next = a + 1 == n ? 0 : a + 1)
        a = next;
    const int b = a + 1 == n ? 0 : a + 1;
    const int c = b + 1 == n ? 0 : b + 1;
    const gu_point_t &A = pts[a], &B = pts[b], &C = pts[c];
    const double v =
        double(A.x) * Diff(C.y, B.y) + double(C.x) * Diff(B.y, A.y) + double(B.x) * Diff(A.y, C.y);
    return v > 0 ? -1 : 1;
}

int16_t gu_polygon_orientation(int16_t n, const gu_point_t* pts)
{
    return gu::Narrow16(gu_polygon_orientationi(n, pts));
}

int gu_ortho_polygon_orientationi(int n, const gu_point_t* pts)
{
    if (n < 3)
        return 1;
    int low = 0; // leftmost, then lowest, then first
    for (int i = 1; i < n; ++i) {
        if (pts[i].x < pts[low].x || (pts[i].x == pts[low].x && pts[i].y < pts[low].y))
            low = i;
    }
    const int next = low + 1 == n ? 0 : low + 1;
    return pts[next].y > pts[low].y ? -1 : 1;
}

int16_t gu_ortho_polygon_orientation(int16_t n, const gu_point_t* pts)
{
    return gu::Narrow16(gu_ortho_polygon_orientationi(n, pts));
}

double gu_polygon_area(uint16_t count, const gu_point_t* pts)
{
    const int n = count;
    double sum = 0;
    for (int i = 0, j = n - 1; i < n; j = i++)
        sum += (double(pts[i].y) + double(pts[j].y)) * Diff(pts[i].x, pts[j].x);
    return std::fabs(sum / 2);
}

double gu_polygon_periphery(uint16_t count, const gu_point_t* pts)
{
    const int n = count;
    if (n == 0)
        return 0;
    double sum = 0;
    for (int i = 1; i < n; ++i)
        sum += std::hypot(Diff(pts[i].x, pts[i - 1].x), Diff(pts[i].y, pts[i - 1].y));
    return sum + std::hypot(Diff(pts[0].x, pts[n - 1].x), Diff(pts[0].y, pts[n - 1].y));
}

gu_rect_t gu_bounding_box(uint16_t count, const gu_point_t* pts)
{
    // The maximum starts at -2147483647, not at the smallest int: callers rely on the empty box.
    gu_rect_t box = {2147483647, 2147483647, -2147483647, -2147483647};
    for (int i = 0; i < count; ++i) {
        box.xmin = std::min(box.xmin, pts[i].x);
        box.ymin = std::min(box.ymin, pts[i].y);
        box.xmax = std::max(box.xmax, pts[i].x);
        box.ymax = std::max(box.ymax, pts[i].y);
    }
    return box;
}

int gu_delete_multiple_pointsi(int n, const gu_point_t* in, gu_point_t* out)
{
    out[0] = in[0];
    int m = 1;
    for (int i = 1; i < n; ++i) {
        if (!same(in[i], in[i - 1]))
            out[m++] = in[i];
    }
    return m;
}

int16_t gu_delete_multiple_points(int16_t n, const gu_point_t* in, gu_point_t* out)
{
    return gu::Narrow16(gu_delete_multiple_pointsi(n, in, out));
}

int gu_delete_redundant_pointsi(int n, gu_point_t* pts, int closed)
{
    if (n < 1)
        return 0;
    if (n > 2) {
        // Each point is tested between the last point kept before it and its successor, which is
        // what removing it and testing the same index again amounts to, in one pass.
        int kept = 1;
        gu_point_t cand = pts[1];
        for (int k = 2; k < n; ++k) {
            if (turn(pts[kept - 1], cand, pts[k]) != 0)
                pts[kept++] = cand;
            cand = pts[k];
        }
        pts[kept++] = cand;
        n = kept;
    }
    if (!closed) {
        if (n >= 2 && same(pts[n - 1], pts[n - 2]))
            --n;
        return n;
    }
    if (n > 1 && turn(pts[n - 1], pts[0], pts[1]) == 0) {
        memmove(pts, pts + 1, sizeof(gu_point_t) * static_cast<size_t>(n - 1));
        --n;
    }
    if (n >= 2 && turn(pts[n - 2], pts[n - 1], pts[0]) == 0)
        --n;
    return n;
}

int16_t gu_delete_redundant_points(int16_t n, gu_point_t* pts, int closed)
{
    return gu::Narrow16(gu_delete_redundant_pointsi(n, pts, closed));
}

int16_t gu_size_polygon(int n, gu_point_t* pts, int distance)
{
    if (n < 2)
        return -1;
    int m;
    const ScratchPoints p = dedupe_with_wrap(n, pts, &m);
    if (m < 2)
        return -1;
    const double s = gu_polygon_orientationi(m, p.get()) > 0 ? distance : -double(distance);

    double e0x = Diff(p[1].x, p[0].x), e0y = Diff(p[1].y, p[0].y);
    double l0 = std::hypot(e0x, e0y);
    for (int k = 0; k < m; ++k) {
        const gu_point_t& v = p[k + 1];
        const double e1x = Diff(p[k + 2].x, v.x), e1y = Diff(p[k + 2].y, v.y);
        const double l1 = std::hypot(e1x, e1y);
        if (l1 == 0) // only the closing edge can be empty: the last point repeats the first
            return -1;
        // (b, a) is e0 + e1 scaled to the length of e0; the vertex moves along its normal.
        const double a = e0y + l0 * e1y / l1;
        const double b = e0x + l0 * e1x / l1;
        const double q = a * a + b * b;
        if (q == 0) // the outline turns back on itself
            return -1;
        const double f = s * 2 * l0 / q;
        const double x = v.x + a * f, y = v.y - b * f;
        if (!gu::RoundFits(x) || !gu::RoundFits(y))
            return -1;
        pts[(k + 1) % m] = gu_point_t{mth_round(x), mth_round(y)};
        e0x = e1x;
        e0y = e1y;
        l0 = l1;
    }
    return gu::Narrow16(m);
}

int gu_size_ortho_polygoni(int n, gu_point_t* pts, int distance)
{
    if (n < 2)
        return -1;
    int m;
    const ScratchPoints p = dedupe_with_wrap(n, pts, &m);
    if (m < 1)
        return m;
    const int64_t s = gu_ortho_polygon_orientationi(m, p.get()) == -1 ? -int64_t(distance) : distance;

    for (int k = 0; k < m; ++k) {
        const gu_point_t &a = p[k], &v = p[k + 1], &c = p[k + 2];
        int64_t x = v.x, y = v.y;
        if (v.y != a.y) { // coming in vertically
            x += v.y > a.y ? s : -s;
            y += c.x > v.x ? -s : s;
        } else {
            x += c.y > v.y ? s : -s;
            y += v.x > a.x ? -s : s;
        }
        if (!gu::CoordFits(x) || !gu::CoordFits(y))
            return -1;
        pts[(k + 1) % m] = gu_point_t{static_cast<gu_coord_t>(x), static_cast<gu_coord_t>(y)};
    }
    return m;
}

int16_t gu_size_ortho_polygon(int16_t n, gu_point_t* pts, int distance)
{
    return gu::Narrow16(gu_size_ortho_polygoni(n, pts, distance));
}

int gu_is_rectangle(int n, const gu_point_t* pts)
{
    if (n != 4)
        return 0;
    const double sx = Diff(pts[2].x, pts[3].x), sy = Diff(pts[2].y, pts[3].y);
    if (sx != Diff(pts[1].x, pts[0].x) || sy != Diff(pts[1].y, pts[0].y))
        return 0;
    return sx * Diff(pts[2].x, pts[1].x) + sy * Diff(pts[2].y, pts[1].y) == 0;
}

int gu_line_intersection_l(const gu_point_t* p1, const gu_point_t* p2, const gu_point_t* q1,
                           const gu_point_t* q2, double* t, gu_point_t* out)
{
    LineParam r;
    if (!line_parameter(p1, p2, q1, q2, r))
        return 0;
    gu_point_t at;
    if (r.den == 0)
        at = *r.on;
    else if (!offset_coord(p1->x, r.d1x * r.t, &at.x) || !offset_coord(p1->y, r.d1y * r.t, &at.y))
        return 0;
    *t = r.t;
    *out = at;
    return 1;
}

int gu_line_intersection(const gu_point_t* p1, const gu_point_t* p2, const gu_point_t* q1,
                         const gu_point_t* q2, gu_point_t* out)
{
    double t;
    return gu_line_intersection_l(p1, p2, q1, q2, &t, out);
}

int gu_intersection_l(const gu_point_t* p1, const gu_point_t* p2, const gu_point_t* q1, const gu_point_t* q2,
                      double* t, gu_point_t* out)
{
    // Boxes that cannot overlap; touching boxes go on.
    if (std::max(p1->x, p2->x) < std::min(q1->x, q2->x) || std::max(p1->y, p2->y) < std::min(q1->y, q2->y) ||
        std::min(p1->x, p2->x) > std::max(q1->x, q2->x) || std::min(p1->y, p2->y) > std::max(q1->y, q2->y))
        return 0;
    LineParam r;
    if (!line_parameter(p1, p2, q1, q2, r) || !in_unit(r.t))
        return 0;
    gu_point_t at;
    if (r.den == 0) {
        at = *r.on;
    } else {
        const double u = (r.d1x * r.wy - r.wx * r.d1y) / r.den;
        if (!in_unit(u))
            return 0;
        // From the second segment; u in [0, 1] keeps the point between q1 and q2.
        offset_coord(q1->x, r.d2x * u, &at.x);
        offset_coord(q1->y, r.d2y * u, &at.y);
    }
    *t = r.t;
    *out = at;
    return 1;
}

int gu_intersection(const gu_point_t* p1, const gu_point_t* p2, const gu_point_t* q1, const gu_point_t* q2,
                    gu_point_t* out)
{
    double t;
    return gu_intersection_l(p1, p2, q1, q2, &t, out);
}

float gu_rad2deg(float angle)
{
    return static_cast<float>(angle * 180.0 / 3.141592653589793);
}

float gu_deg2rad(float angle)
{
    return static_cast<float>(angle * 3.141592653589793 / 180.0);
}

} // extern "C"

// ---- Wide orthogonal paths as rectangles (C++ linkage: the result is a TVarr) --------------------

namespace {

inline gu_coord_t wrap32(int64_t v)
{
    return static_cast<gu_coord_t>(static_cast<uint32_t>(v));
}

// The rectangle with corners a and b, minimum corner first.
gu_rect_t span(const gu_point_t& a, const gu_point_t& b)
{
    return {std::min(a.x, b.x), std::min(a.y, b.y), std::max(a.x, b.x), std::max(a.y, b.y)};
}

} // namespace

unsigned int gu_path_to_rects(unsigned int stride, unsigned int n, const void* pts, gu_coord_t width,
                              gu_PathType_t type, TVarr<gu_rect_t>& out)
{
    out.Reset();
    if (n == 0)
        return 0;
    const int64_t hw = width / 2;
    gu_point_t p = gu::PointAt(pts, stride, 0);
    if (n == 1) {
        out.App(span({wrap32(p.x - hw), wrap32(p.y - hw)}, {wrap32(p.x + hw), wrap32(p.y + hw)}));
        return 1;
    }
    // Flush (0) and extended (1) ends only.
    if (type != GU_PATH_FLUSH && type != GU_PATH_EXTENDED)
        assert(0);
    const bool extended = type == GU_PATH_EXTENDED;
    out.Resize(n - 1);

    // Each rectangle runs from its first corner, on one side of the path, to the corner diagonally
    // across its segment. At the start that side is the right-hand one; a first segment that does not
    // move counts as going right.
    gu_point_t next = gu::PointAt(pts, stride, 1);
    gu_point_t first;
    if (next.y != p.y) {
        const int64_t s = next.y > p.y ? hw : -hw;
        first = {wrap32(p.x + s), wrap32(extended ? p.y - s : p.y)};
    } else {
        const int64_t s = next.x >= p.x ? hw : -hw;
        first = {wrap32(extended ? p.x - s : p.x), wrap32(p.y - s)};
    }

    // At a bend p the rectangle ends at its first corner mirrored across the incoming centre line,
    // half a width from p along it: coming in vertically, below p when the path leaves to the right and
    // above otherwise; coming in horizontally, right of p when it leaves upwards and left otherwise.
    // The next rectangle starts at that corner.
    for (unsigned int i = 1; i + 1 < n; ++i) {
        const gu_point_t prev = p;
        p = next;
        next = gu::PointAt(pts, stride, i + 1);
        gu_point_t corner;
        if (prev.y == p.y) {
            const int64_t s = next.y > p.y ? hw : -hw;
            corner = {wrap32(p.x + s), wrap32(2 * int64_t{p.y} - first.y)};
        } else {
            const int64_t s = next.x > p.x ? hw : -hw;
            corner = {wrap32(2 * int64_t{p.x} - first.x), wrap32(p.y - s)};
        }
        out.Ass(span(first, corner));
        first = corner;
    }

    // The last segment; one that does not move counts as going right.
    const gu_point_t prev = p;
    p = next;
    gu_point_t last;
    if (prev.y != p.y) {
        const int64_t s = p.y > prev.y ? hw : -hw;
        last = {wrap32(2 * int64_t{p.x} - first.x), wrap32(extended ? p.y + s : p.y)};
    } else {
        const int64_t s = p.x >= prev.x ? hw : -hw;
        last = {wrap32(extended ? p.x + s : p.x), wrap32(2 * int64_t{p.y} - first.y)};
    }
    out.Ass(span(first, last));
    return out.Len();
}
