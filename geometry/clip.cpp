// Polyline clipping against an axis-parallel window (parametric, Liang-Barsky).
#include <tevbase/geometry.h>

#include <stdlib.h>

#include <algorithm>
#include <cmath>

#include <tevbase/alloc.h>

namespace {

// Growable process-wide buffer, kept at its largest size until exit.
template <class T>
struct Scratch {
    T* data;
    uint32_t cap; // elements

    T* Reserve(uint32_t n)
    {
        if (n > cap) {
            const uint32_t want = std::max(n, cap > UINT32_MAX / 2 ? n : 2 * cap);
            data = static_cast<T*>(SArealloc(data, want, sizeof(T)));
            cap = want;
        }
        return data;
    }
    ~Scratch()
    {
        free(data);
        data = nullptr; // a call from a later destructor starts afresh
        cap = 0;
    }
};

Scratch<gu_point_t> scratch_l;
Scratch<float> scratch_r;

// The part of one segment inside the window: parameters t0 <= t1 on a -> b; the entry is a itself
// when t0 = 0 and the exit is b itself when t1 = 1, else each is a crossing with one border.
template <class Point>
struct Visible {
    bool visible;
    bool ends_inside; // t1 = 1: the piece may go on with the next segment
    bool point_only;  // t0 = t1: the segment only touches the window
    Point entry, exit;
};

// Borders in the order of the parametric constraints p t <= q.
enum Border { kLeft, kRight, kBottom, kTop };

// Narrows the segment's parameter range [*t0, *t1] by the constraints p[k] t <= q[k] of the four
// borders and records the border that sets each end (-1 when it stays the segment's own end).
// ratio(q, p) forms q / p as a Param. False when nothing is left.
template <class T, class Ratio, class Param>
bool narrow_to_window(const T (&p)[4], const T (&q)[4], Ratio ratio, Param* t0, Param* t1, int* in, int* out)
{
    for (int k = 0; k < 4; ++k) {
        if (p[k] == 0) {
            if (q[k] < 0)
                return false; // parallel to this border and outside it
            continue;
        }
        const Param r = ratio(q[k], p[k]);
        if (p[k] < 0) { // entering across this border
            if (*t1 < r)
                return false;
            if (*t0 < r) {
                *t0 = r;
                *in = k;
            }
        } else { // leaving across it
            if (r < *t0)
                return false;
            if (r < *t1) {
                *t1 = r;
                *out = k;
            }
        }
    }
    return true;
}

// Pieces are gathered in the scratch array and handed to fn when they end. A piece that goes on
// from one segment to the next already holds the shared point as its last, so each segment adds its
// exit only.
template <class Point, class Clip, class Emit>
void clip_polyline(int n, Clip clip, Emit emit)
{
    int count = 0;
    const auto flush = [&] {
        if (count > 1)
            emit(count);
        count = 0;
    };
    for (int i = 0; i + 1 < n; ++i) {
        Visible<Point> v;
        clip(i, &v);
        if (!v.visible) {
            flush();
            continue;
        }
        if (count == 0)
            emit.Put(count++, v.entry);
        if (!v.point_only)
            emit.Put(count++, v.exit);
        if (!v.ends_inside)
            flush();
    }
    flush();
}

// ---- integer points: exact parameters as fractions ----

// num / den with den > 0, |num| and den below 2^32.
struct Frac {
    int64_t num, den;
};

uint64_t magnitude(int64_t v)
{
    return v < 0 ? uint64_t(0) - uint64_t(v) : uint64_t(v);
}

// The cross products reach 2^64: compared as magnitudes.
bool operator<(Frac a, Frac b)
{
    const bool an = a.num < 0, bn = b.num < 0;
    if (an != bn)
        return an;
    const uint64_t x = magnitude(a.num) * uint64_t(b.den), y = magnitude(b.num) * uint64_t(a.den);
    return an ? x > y : x < y;
}

Frac frac(int64_t num, int64_t den)
{
    return den < 0 ? Frac{-num, -den} : Frac{num, den};
}

// mth_round(base + a * b / c), exactly, for c != 0, |a| <= |c| and every magnitude below 2^32.
gu_coord_t round_ratio(int64_t base, int64_t a, int64_t b, int64_t c)
{
    const bool neg = (a < 0) != (b < 0) ? (c > 0) : (c < 0);
    const uint64_t m = magnitude(c);
    const uint64_t prod = magnitude(a) * magnitude(b); // below 2^64
    const uint64_t quot = prod / m, rem = prod % m;
    int64_t w = neg ? base - int64_t(quot) : base + int64_t(quot); // |quot| <= |b|
    if (rem != 0) {
        // The value is w + f or w - f with f = rem / m in (0, 1); halves go away from zero.
        const bool half_or_more = 2 * rem >= m, more_than_half = 2 * rem > m;
        if (!neg)
            w += (w >= 0 ? half_or_more : more_than_half) ? 1 : 0;
        else
            w -= (w >= 1 ? more_than_half : half_or_more) ? 1 : 0;
    }
    return static_cast<gu_coord_t>(w); // between the segment's ends
}

struct WindowL {
    gu_coord_t xmin, ymin, xmax, ymax;
};

gu_point_t crossing(gu_point_t a, int64_t dx, int64_t dy, int border, const WindowL& w)
{
    switch (border) {
    case kLeft:
        return {w.xmin, round_ratio(a.y, int64_t(w.xmin) - a.x, dy, dx)};
    case kRight:
        return {w.xmax, round_ratio(a.y, int64_t(w.xmax) - a.x, dy, dx)};
    case kBottom:
        return {round_ratio(a.x, int64_t(w.ymin) - a.y, dx, dy), w.ymin};
    default:
        return {round_ratio(a.x, int64_t(w.ymax) - a.y, dx, dy), w.ymax};
    }
}

void clip_segment(gu_point_t a, gu_point_t b, const WindowL& w, Visible<gu_point_t>* v)
{
    const int64_t dx = int64_t(b.x) - a.x, dy = int64_t(b.y) - a.y;
    const int64_t p[4] = {-dx, dx, -dy, dy};
    const int64_t q[4] = {int64_t(a.x) - w.xmin, int64_t(w.xmax) - a.x, int64_t(a.y) - w.ymin,
                          int64_t(w.ymax) - a.y};
    Frac t0 = {0, 1}, t1 = {1, 1};
    int in = -1, out = -1;
    v->visible = narrow_to_window(p, q, frac, &t0, &t1, &in, &out);
    if (!v->visible)
        return;
    v->ends_inside = out < 0;
    v->point_only = !(t0 < t1);
    v->entry = in < 0 ? a : crossing(a, dx, dy, in, w);
    v->exit = out < 0 ? b : crossing(a, dx, dy, out, w);
}

// ---- float points: parameters in double ----

struct Vec {
    float x, y;
};

struct WindowR {
    float xmin, ymin, xmax, ymax;
};

float clamp_to(double v, float lo, float hi)
{
    return static_cast<float>(std::min(std::max(v, double(lo)), double(hi)));
}

Vec crossing(double x0, double y0, double dx, double dy, int border, const WindowR& w)
{
    switch (border) {
    case kLeft:
        return {w.xmin, clamp_to(y0 + (w.xmin - x0) * dy / dx, w.ymin, w.ymax)};
    case kRight:
        return {w.xmax, clamp_to(y0 + (w.xmax - x0) * dy / dx, w.ymin, w.ymax)};
    case kBottom:
        return {clamp_to(x0 + (w.ymin - y0) * dx / dy, w.xmin, w.xmax), w.ymin};
    default:
        return {clamp_to(x0 + (w.ymax - y0) * dx / dy, w.xmin, w.xmax), w.ymax};
    }
}

void clip_segment(Vec a, Vec b, const WindowR& w, Visible<Vec>* v)
{
    const double x0 = a.x, y0 = a.y, dx = double(b.x) - x0, dy = double(b.y) - y0;
    const double p[4] = {-dx, dx, -dy, dy};
    const double q[4] = {x0 - w.xmin, w.xmax - x0, y0 - w.ymin, w.ymax - y0};
    double t0 = 0, t1 = 1;
    int in = -1, out = -1;
    const auto ratio = [](double num, double den) { return num / den; };
    v->visible = !std::isnan(dx) && !std::isnan(dy) && narrow_to_window(p, q, ratio, &t0, &t1, &in, &out);
    if (!v->visible)
        return;
    v->ends_inside = out < 0;
    v->point_only = !(t0 < t1);
    v->entry = in < 0 ? a : crossing(x0, y0, dx, dy, in, w);
    v->exit = out < 0 ? b : crossing(x0, y0, dx, dy, out, w);
}

} // namespace

extern "C" {

void gu_clip_polyline_l(int n, const gu_point_t* pts, gu_coord_t xmin, gu_coord_t ymin, gu_coord_t xmax,
                        gu_coord_t ymax, void (*fn)(int n, gu_point_t* pts, void* user), void* user)
{
    if (n < 2 || xmin > xmax || ymin > ymax)
        return;
    const WindowL w = {xmin, ymin, xmax, ymax};
    scratch_l.Reserve(static_cast<uint32_t>(n)); // a piece never has more points than the polyline
    struct Emit {
        void (*fn)(int, gu_point_t*, void*);
        void* user;
        void Put(int i, gu_point_t p) const { scratch_l.data[i] = p; }
        void operator()(int count) const { fn(count, scratch_l.data, user); }
    };
    clip_polyline<gu_point_t>(
        n, [&](int i, Visible<gu_point_t>* v) { clip_segment(pts[i], pts[i + 1], w, v); }, Emit{fn, user});
}

void gu_clip_polyline_r(int n, const float* xy, float xmin, float ymin, float xmax, float ymax,
                        void (*fn)(int n, float* xy, void* user), void* user)
{
    if (n < 2 || !(xmin <= xmax) || !(ymin <= ymax)) // NaN borders included
        return;
    const WindowR w = {xmin, ymin, xmax, ymax};
    scratch_r.Reserve(2 * static_cast<uint32_t>(n));
    struct Emit {
        void (*fn)(int, float*, void*);
        void* user;
        void Put(int i, Vec p) const
        {
            scratch_r.data[2 * i] = p.x;
            scratch_r.data[2 * i + 1] = p.y;
        }
        void operator()(int count) const { fn(count, scratch_r.data, user); }
    };
    clip_polyline<Vec>(
        n,
        [&](int i, Visible<Vec>* v) {
            clip_segment(Vec{xy[2 * i], xy[2 * i + 1]}, Vec{xy[2 * i + 2], xy[2 * i + 3]}, w, v);
        },
        Emit{fn, user});
}

} // extern "C"
