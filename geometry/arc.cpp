// Circles, ellipses and arcs as integer polygons.
#include <tevbase/geometry.h>

#include <assert.h>

#include <cmath>
#include <cstdlib>

#include <tevbase/textutil.h>

#include "coord.h"

using gu::Diff;
using gu::kTwoPi;

namespace {

// gu_arc3p_calc works in single precision as written: differences are formed exactly, then
// narrowed; the double maths functions are called on floats and their results narrowed.
float narrow(double v)
{
    return static_cast<float>(v);
}

int sign(float v)
{
    return (v > 0) - (v < 0);
}

// Both c - r and c + r convert to coordinates by `fits` (rounding or truncation), so every
// c + r * cos(a) does.
bool span_fits(gu_coord_t c, double r, bool (*fits)(double))
{
    const double a = std::fabs(r);
    return fits(c - a) && fits(c + a);
}

// Circular arc of `radius` about `centre` from `start` over `sweep` as 2 .. max points, both ends on
// the circle, coordinates truncated: the point rule shared by the three-point and centre arcs.
void arc_points(int16_t* nout, gu_point_t* out, gu_point_t centre, gu_coord_t radius, float start,
                float sweep, int16_t segs, int16_t max)
{
    const double sw = sweep;
    const int k = std::abs(static_cast<int>(std::trunc(segs * sw / kTwoPi))); // |sw| stays below 4pi
    int count;
    double inc;
    if (k > max) {
        if (max < 1) {
            *nout = max;
            return;
        }
        count = max;
        inc = sw / (max - 1);
    } else if (k < 2) {
        count = 2;
        inc = sw;
    } else {
        count = k;
        inc = sw / (k - 1);
    }
    // Two points at least, and a one-point arc would divide by zero.
    if (count < 2 || count > max || !span_fits(centre.x, radius, gu::TruncFits) ||
        !span_fits(centre.y, radius, gu::TruncFits)) {
        *nout = 0;
        return;
    }
    for (int i = 0; i < count; ++i) {
        const double a = start + i * inc;
        out[i].x = static_cast<gu_coord_t>(centre.x + std::cos(a) * radius);
        out[i].y = static_cast<gu_coord_t>(centre.y + std::sin(a) * radius);
    }
    *nout = static_cast<int16_t>(count);
}

} // namespace

extern "C" {

void gu_circle2polygon(int16_t* nout, gu_point_t* out, const gu_point_t* centre, int width, int height,
                       int16_t n)
{
    if (n <= 0) {
        *nout = n;
        return;
    }
    const double step = kTwoPi / n;
    const double cs = std::cos(step / 2);
    const double rx = width * 0.5 / cs, ry = height * 0.5 / cs; // edge midpoints touch the ellipse
    if (!span_fits(centre->x, rx, gu::RoundFits) || !span_fits(centre->y, ry, gu::RoundFits)) {
        *nout = 0; // n = 2 puts the vertices near infinity
        return;
    }
    for (int i = 0; i < n; ++i) {
        const double a = step / 2 + i * step;
        out[i].x = mth_round(centre->x + std::cos(a) * rx);
        out[i].y = mth_round(centre->y + std::sin(a) * ry);
    }
    *nout = n;
}

int gu_arc3p_calc(const gu_point_t* p1, const gu_point_t* p2, const gu_point_t* p3, gu_point_t* centre,
                  gu_coord_t* radius, float* start, float* sweep)
{
    const float x21 = narrow(Diff(p2->x, p1->x)), y23 = narrow(Diff(p2->y, p3->y));
    const float x32 = narrow(Diff(p3->x, p2->x)), y12 = narrow(Diff(p1->y, p2->y));
    const float den = x21 * y23 - x32 * y12;
    if (den == 0)
        return 0; // collinear

    // Chord midpoints with integer halving, then the centre on the bisector of p1-p2.
    const int64_t m12x = (int64_t(p1->x) + p2->x) / 2, m12y = (int64_t(p1->y) + p2->y) / 2;
    const int64_t m23x = (int64_t(p3->x) + p2->x) / 2, m23y = (int64_t(p3->y) + p2->y) / 2;
    const float s = (y23 * narrow(double(m23y - m12y)) - narrow(double(m23x - m12x)) * x32) / den;
    const float cx = narrow(double(m12x)) + y12 * s;
    const float cy = narrow(double(m12y)) + x21 * s;

    // Measured from the unrounded centre.
    const float dx1 = narrow(p1->x) - cx, dy1 = narrow(p1->y) - cy;
    const float r = narrow(std::hypot(double(dx1), double(dy1)));
    if (!gu::TruncFits(cx) || !gu::TruncFits(cy) || !gu::TruncFits(r))
        return 0; // nearly collinear: the circle lies beyond the coordinate range

    const float a1 = narrow(std::atan2(double(dy1), double(dx1)));
    const float a2 = narrow(std::atan2(double(narrow(p2->y) - cy), double(narrow(p2->x) - cx)));
    const float a3 = narrow(std::atan2(double(narrow(p3->y) - cy), double(narrow(p3->x) - cx)));
    const float d12 = a2 - a1;
    float d23 = a3 - a2;
    // Held in float like every other value here.
    const float shift = a2 < 0 ? narrow(-kTwoPi) : a2 > 0 ? narrow(kTwoPi) : 0.0f;

    // The two steps p1 -> p2 -> p3 must turn the same way; where atan2 jumps across the branch cut
    // between them, one end moves by a full turn. (Both steps negative falls under equal signs.)
    float st = sign(d12) == sign(d23) ? a1 : a1 + shift;
    float en = sign(a2 - st) == sign(d23) ? a3 : a3 + shift;
    float sw = en - st;
    if (std::fabs(double(sw)) > kTwoPi) {
        st = a1;
        en = a3;
        if (sign(d12) != sign(d23)) {
            en = a3 + shift;
            d23 = en - a2;
        }
        if (sign(d12) != sign(d23))
            st = a1 + shift;
        sw = en - st;
    }

    centre->x = static_cast<gu_coord_t>(cx);
    centre->y = static_cast<gu_coord_t>(cy);
    *radius = static_cast<gu_coord_t>(r);
    *start = st;
    *sweep = sw;
    return 1;
}

void gu_arc3p2polygon(int16_t* nout, gu_point_t* out, const gu_point_t* p1, const gu_point_t* p2,
                      const gu_point_t* p3, int16_t segs, int16_t max)
{
    gu_point_t centre;
    gu_coord_t radius;
    float start, sweep;
    if (gu_arc3p_calc(p1, p2, p3, &centre, &radius, &start, &sweep)) {
        arc_points(nout, out, centre, radius, start, sweep, segs, max);
    } else if (max < 2) {
        *nout = 0;
    } else {
        out[0] = *p1; // the chord
        out[1] = *p3;
        *nout = 2;
    }
}

int gu_arcc2p_calc(const gu_point_t* start, const gu_point_t* centre, const gu_point_t* end, int direction,
                   gu_coord_t* radius, float* start_angle, float* sweep)
{
    if ((start->x == centre->x && start->y == centre->y) || (end->x == centre->x && end->y == centre->y))
        return 0;
    const double sx = Diff(start->x, centre->x), sy = Diff(start->y, centre->y);
    const double a0 = std::atan2(sy, sx);
    double sw = std::atan2(Diff(end->y, centre->y), Diff(end->x, centre->x)) - a0;
    const double r = std::hypot(sx, sy);
    if (direction == 0) {
        if (sw < 0)
            sw += kTwoPi;
    } else {
        // An unknown direction is a programming error.
        assert(direction == 1);
        if (sw > 0)
            sw -= kTwoPi;
    }
    if (!gu::TruncFits(r))
        return 0;
    *radius = static_cast<gu_coord_t>(r);
    *start_angle = static_cast<float>(a0);
    *sweep = static_cast<float>(sw);
    return 1;
}

void gu_arcc2p2polygon(int16_t* nout, gu_point_t* out, const gu_point_t* start, const gu_point_t* centre,
                       const gu_point_t* end, int16_t direction, int16_t segs, int16_t max)
{
    gu_coord_t radius;
    float a0, sweep;
    if (gu_arcc2p_calc(start, centre, end, direction, &radius, &a0, &sweep))
        arc_points(nout, out, *centre, radius, a0, sweep, segs, max);
    else
        *nout = 0;
}

void gu_arc2a2polygon(int16_t* nout, gu_point_t* out, const gu_point_t* centre, int width, int height,
                      int16_t segs, int16_t max, float start_angle, float sweep)
{
    if (max < 3 || !std::isfinite(start_angle) || !std::isfinite(sweep)) {
        *nout = 0;
        return;
    }
    double sw = sweep;
    // Beyond a million turns the subtraction loops would run (nearly) forever.
    if (std::fabs(sw) > kTwoPi * 1048576)
        sw = std::fmod(sw, kTwoPi);
    while (sw > kTwoPi)
        sw -= kTwoPi;
    while (sw < -kTwoPi)
        sw += kTwoPi;

    const int k = std::abs(static_cast<int>(std::trunc(segs * sw / kTwoPi)));
    int nseg, count;
    if (k >= max - 1) {
        nseg = max - 2;
        count = max;
    } else if (k < 1) {
        nseg = 1;
        count = 3;
    } else {
        nseg = k;
        count = k + 2;
    }
    const double step = sw / nseg;
    const int hx = width / 2, hy = height / 2;
    // The inner points lie on the ellipse enlarged so that the chords touch the true one.
    const double c = std::cos(step / 2);
    const double ex = hx / c, ey = hy / c;
    // |c| <= 1, so the enlarged semi-axes bound the end points too.
    if (!span_fits(centre->x, ex, gu::TruncFits) || !span_fits(centre->y, ey, gu::TruncFits)) {
        *nout = 0; // a half step near 90 degrees puts the inner points near infinity
        return;
    }

    const double a0 = start_angle;
    out[0].x = static_cast<gu_coord_t>(centre->x + hx * std::cos(a0));
    out[0].y = static_cast<gu_coord_t>(centre->y + hy * std::sin(a0));
    for (int i = 1; i <= nseg; ++i) {
        const double a = a0 + step / 2 + (i - 1) * step;
        out[i].x = static_cast<gu_coord_t>(centre->x + ex * std::cos(a));
        out[i].y = static_cast<gu_coord_t>(centre->y + ey * std::sin(a));
    }
    const double a1 = a0 + sw;
    out[nseg + 1].x = static_cast<gu_coord_t>(centre->x + hx * std::cos(a1));
    out[nseg + 1].y = static_cast<gu_coord_t>(centre->y + hy * std::sin(a1));
    *nout = static_cast<int16_t>(count);
}

void gu_arcpa2polygon(int16_t* nout, gu_point_t* out, const gu_point_t* centre, const gu_point_t* start,
                      int width, int height, int16_t segs, int16_t max, float sweep)
{
    const float a0 = static_cast<float>(std::atan2(Diff(start->y, centre->y), Diff(start->x, centre->x)));
    gu_arc2a2polygon(nout, out, centre, width, height, segs, max, a0, sweep);
}

} // extern "C"
