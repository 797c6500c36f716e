// Outlines of wide paths: mitred in single precision, or orthogonal in integers.
#include <tevbase/geometry.h>

#include <stddef.h>
#include <string.h>

#include <cmath>

#include <tevbase/textutil.h>

#include "coord.h"

using gu::Diff;

namespace {

// Points `stride` bytes apart, each starting with its x and y; only those eight bytes are touched.
class Strided {
public:
    Strided(const void* base, int stride) : base_(static_cast<const char*>(base)), stride_(stride) {}

    gu_point_t Get(int i) const
    {
        gu_point_t p;
        memcpy(&p, At(i), sizeof p);
        return p;
    }
    void Set(int i, gu_coord_t x, gu_coord_t y) const
    {
        SetX(i, x);
        SetY(i, y);
    }
    void SetX(int i, gu_coord_t x) const { memcpy(At(i) + offsetof(gu_point_t, x), &x, sizeof x); }
    void SetY(int i, gu_coord_t y) const { memcpy(At(i) + offsetof(gu_point_t, y), &y, sizeof y); }

private:
    char* At(int i) const { return const_cast<char*>(base_) + static_cast<ptrdiff_t>(i) * stride_; }

    const char* base_;
    int stride_;
};

bool known_type(gu_PathType_t type)
{
    return type == 0 || type == 1 || type == 2;
}

// ---- any angle, single precision ----

struct Vec {
    float x, y;
};

// Unit direction from a to b; false for a zero-length segment.
bool unit(gu_point_t a, gu_point_t b, Vec* u)
{
    const float dx = static_cast<float>(Diff(b.x, a.x)), dy = static_cast<float>(Diff(b.y, a.y));
    const float len = static_cast<float>(std::hypot(double(dx), double(dy)));
    if (len == 0)
        return false;
    *u = {dx / len, dy / len};
    return true;
}

// The left and right offset points at p across the unit direction u, moved `along` u first.
void end_points(gu_point_t p, Vec u, float w, float along, Vec* L, Vec* R)
{
    const float x = static_cast<float>(p.x) + along * u.x, y = static_cast<float>(p.y) + along * u.y;
    const Vec nrm = {-u.y, u.x};
    *L = {x + w * nrm.x, y + w * nrm.y};
    *R = {x - w * nrm.x, y - w * nrm.y};
}

bool store_rounded(const Strided& out, int i, Vec v)
{
    if (!gu::RoundFits(v.x) || !gu::RoundFits(v.y))
        return false;
    out.Set(i, mth_round(v.x), mth_round(v.y));
    return true;
}

// The outline of n >= 2 points: left side at entries 0 .. n-1, right side at 2n-1 .. n.
bool outline_any_angle(const Strided& in, const Strided& out, int n, int hw, gu_PathType_t type)
{
    gu_point_t p = in.Get(0), next = in.Get(1);
    Vec u;
    if (!unit(p, next, &u))
        return false;
    const float w = static_cast<float>(hw);
    const float reach = type == 1 || type == 2 ? w : 0; // how far the ends extend beyond the points

    // First end; L is the left point before rounding, on the left offset line of the segment.
    Vec L, R;
    end_points(p, u, w, -reach, &L, &R);
    if (known_type(type) && (!store_rounded(out, 0, L) || !store_rounded(out, 2 * n - 1, R)))
        return false;

    // Interior corners: the mirror pair p +- t b, b normal to the corner's bisector, t putting the
    // left point on the left offset line of the incoming segment.
    for (int i = 1; i < n - 1; ++i) {
        p = next;
        next = in.Get(i + 1);
        Vec u1;
        if (!unit(p, next, &u1))
            return false;
        const Vec b = {-(u.y + u1.y), u.x + u1.x};
        const float q = -(1 + (u.x * u1.x + u.y * u1.y));
        if (q == 0) // the path doubles back
            return false;
        const float cx = static_cast<float>(p.x), cy = static_cast<float>(p.y);
        const float t = ((cy - L.y) * u.x - u.y * (cx - L.x)) / q;
        L = {cx + t * b.x, cy + t * b.y};
        R = {cx - t * b.x, cy - t * b.y};
        if (!store_rounded(out, i, L) || !store_rounded(out, 2 * n - 1 - i, R))
            return false;
        u = u1;
    }

    // Last end.
    if (!known_type(type))
        return true;
    end_points(next, u, w, reach, &L, &R);
    return store_rounded(out, n - 1, L) && store_rounded(out, n, R);
}

// ---- orthogonal, integers ----

struct Side {
    int64_t x, y;
};

bool fits(Side s)
{
    return gu::CoordFits(s.x) && gu::CoordFits(s.y);
}

// Stores a point that fits().
void put(const Strided& out, int i, Side s)
{
    out.Set(i, static_cast<gu_coord_t>(s.x), static_cast<gu_coord_t>(s.y));
}

// An end of the outline at p, its segment from -> to vertical when the y values differ. `ahead` is
// the direction along the path away from the outline (-1 at the first end, +1 at the last): extended
// ends reach hw further that way. For unknown types only the coordinate across the segment is
// written. *l and *r receive the two side points.
bool ortho_end(const Strided& out, int li, int ri, gu_point_t from, gu_point_t to, gu_point_t p, int64_t hw,
               gu_PathType_t type, int ahead, Side* l, Side* r)
{
    const bool vertical = to.y != from.y;
    // Half width signed by the segment's direction: up, or right (a horizontal segment that does not
    // move counts as going right).
    const int64_t s = (vertical ? to.y > from.y : to.x >= from.x) ? hw : -hw;
    const int64_t along = type == 1 || type == 2 ? ahead * s : 0;
    if (vertical) {
        *l = {p.x - s, p.y + along};
        *r = {p.x + s, p.y + along};
    } else {
        *l = {p.x + along, p.y + s};
        *r = {p.x + along, p.y - s};
    }
    if (!fits(*l) || !fits(*r))
        return false;
    if (known_type(type)) {
        put(out, li, *l);
        put(out, ri, *r);
    } else if (vertical) {
        out.SetX(li, static_cast<gu_coord_t>(l->x));
        out.SetX(ri, static_cast<gu_coord_t>(r->x));
    } else {
        out.SetY(li, static_cast<gu_coord_t>(l->y));
        out.SetY(ri, static_cast<gu_coord_t>(r->y));
    }
    return true;
}

bool outline_ortho(const Strided& in, const Strided& out, int n, int64_t hw, gu_PathType_t type)
{
    gu_point_t prev = in.Get(0), p = in.Get(1);
    // The side points of the previous entry; each corner takes over the coordinate across its incoming
    // segment from them.
    Side l, r;
    if (!ortho_end(out, 0, 2 * n - 1, prev, p, prev, hw, type, -1, &l, &r))
        return false;

    for (int i = 1; i < n - 1; ++i) {
        const gu_point_t next = in.Get(i + 1);
        // The sign comes from the segment ahead; one that does not move on the deciding axis is positive.
        if (p.y == prev.y) { // coming in horizontally: y carries on
            const int64_t s = next.y >= p.y ? hw : -hw;
            l.x = p.x - s;
            r.x = p.x + s;
        } else { // coming in vertically: x carries on
            const int64_t s = next.x >= p.x ? hw : -hw;
            l.y = p.y + s;
            r.y = p.y - s;
        }
        if (!fits(l) || !fits(r))
            return false;
        put(out, i, l);
        put(out, 2 * n - 1 - i, r);
        prev = p;
        p = next;
    }
    return ortho_end(out, n - 1, n, prev, p, p, hw, type, 1, &l, &r);
}

} // namespace

extern "C" {

void gu_n_path_to_polygon(int stride, int16_t* nout, void* out, int n, const void* pts, int width,
                          gu_PathType_t type, int16_t any_angle)
{
    *nout = 0;
    if (n <= 0 || n > 16383) // 2n must fit the 16-bit count
        return;
    const Strided in(pts, stride), dst(out, stride);
    const int hw = width / 2;
    if (n == 1) {
        const gu_point_t p = in.Get(0);
        const Side lo = {int64_t(p.x) - hw, int64_t(p.y) - hw}, hi = {int64_t(p.x) + hw, int64_t(p.y) + hw};
        if (!fits(lo) || !fits(hi))
            return;
        put(dst, 0, lo);
        put(dst, 1, {hi.x, lo.y});
        put(dst, 2, hi);
        put(dst, 3, {lo.x, hi.y});
        *nout = 4;
        return;
    }
    const bool ok = any_angle ? outline_any_angle(in, dst, n, hw, type) : outline_ortho(in, dst, n, hw, type);
    if (ok)
        *nout = static_cast<int16_t>(2 * n);
}

void gu_path_to_polygon(int16_t* nout, gu_point_t* out, int n, const gu_point_t* pts, int width,
                        gu_PathType_t type, int16_t any_angle)
{
    gu_n_path_to_polygon(sizeof(gu_point_t), nout, out, n, pts, width, type, any_angle);
}

} // extern "C"
