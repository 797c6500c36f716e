// Planar geometry on integer coordinates: polygon primitives, arcs, circles, wide-path outlines and
// polyline clipping.
#ifndef TEVBASE_GEOMETRY_H
#define TEVBASE_GEOMETRY_H

#include <stdint.h>

#include <tevbase/config.h>

// A coordinate in database units. The y axis points up, so counter-clockwise (the positive
// orientation) is counter-clockwise in a y-up system.
typedef int32_t gu_coord_t;

// One point. Callers pass raw arrays of these: x then y, 32-bit each, no gaps.
typedef struct gu_point_t {
    gu_coord_t x;
    gu_coord_t y;
} gu_point_t;

// An axis-parallel box.
typedef struct gu_rect_t {
    gu_coord_t xmin;
    gu_coord_t ymin;
    gu_coord_t xmax;
    gu_coord_t ymax;
} gu_rect_t;

// End style of a wide path.
typedef int16_t gu_PathType_t;
enum {
    GU_PATH_FLUSH = 0,    // the outline ends at the end points
    GU_PATH_EXTENDED = 1, // the outline reaches half the width beyond each end point
    GU_PATH_EXTENDED2 = 2 // drawn exactly like GU_PATH_EXTENDED
};

// Polygons are a count and that many consecutive points, implicitly closed (the last point is not
// repeated). Polylines are the same without the closing edge.
//
// Functions whose names end in `i` take and return int counts; the same names without `i` take a
// 16-bit count (negative means no points) and return the result narrowed to 16 bits.
// Cross products, ratios, lengths and areas are computed in double from the coordinates; coordinates
// written back are rounded with mth_round (halves away from zero) unless a function says otherwise.
// A result that would not fit a coordinate makes the function fail the way it fails on degenerate
// input. Nothing here keeps state between calls, except the clipping functions at the end.

TEVBASE_C_BEGIN

// ---- Polygon primitives ----------------------------------------------------------------------

// Largest segment class of the polyline (of the polygon if `closed` is non-zero): 0 when every
// segment is axis-parallel (or of zero length), 1 when the steepest is at 45 degrees, 2 for any other
// angle. 0 for fewer than two points.
TEVBASE_API int gu_check_orthoi(int n, const gu_point_t* pts, int closed);
TEVBASE_API int16_t gu_check_ortho(int16_t n, const gu_point_t* pts, int closed);

// Moves *pt so that the direction from anchor to it becomes horizontal or vertical (mode 0), or a
// multiple of 45 degrees (mode 1); other modes change nothing. In mode 1 a point is snapped to the
// nearest of the eight directions; onto a diagonal of positive slope it keeps y when steeper than 45
// degrees and x otherwise, onto one of negative slope it always keeps x (callers rely on that).
// A diagonal point beyond the coordinate range is clamped to it.
TEVBASE_API void gu_snap_ortho(gu_point_t anchor, gu_point_t* pt, int mode);

// 1 for a counter-clockwise polygon, -1 for a clockwise one; 1 for fewer than three points or a
// degenerate turn. Decided at the first leftmost vertex met walking forward from the rightmost one.
TEVBASE_API int gu_polygon_orientationi(int n, const gu_point_t* pts);
TEVBASE_API int16_t gu_polygon_orientation(int16_t n, const gu_point_t* pts);

// Orientation of an orthogonal polygon (1 or -1, 1 for fewer than three points), decided at its
// lowest leftmost vertex. Meaningless for other polygons.
TEVBASE_API int gu_ortho_polygon_orientationi(int n, const gu_point_t* pts);
TEVBASE_API int16_t gu_ortho_polygon_orientation(int16_t n, const gu_point_t* pts);

// Absolute area and perimeter (closing edge included). The count is taken modulo 65536; no points
// give 0.
TEVBASE_API double gu_polygon_area(uint16_t n, const gu_point_t* pts);
TEVBASE_API double gu_polygon_periphery(uint16_t n, const gu_point_t* pts);

// Component-wise minimum and maximum; for no points the empty box (2147483647, 2147483647,
// -2147483647, -2147483647). The count is taken modulo 65536.
TEVBASE_API gu_rect_t gu_bounding_box(uint16_t n, const gu_point_t* pts);

// Copies in to out without points equal to their predecessor (the last point is not compared with
// the first) and returns the count written. out[0] = in[0] always: for n below 2 the result is 1, so
// `in` must hold a point even then. out holds n points and must not overlap in.
TEVBASE_API int gu_delete_multiple_pointsi(int n, const gu_point_t* in, gu_point_t* out);
TEVBASE_API int16_t gu_delete_multiple_points(int16_t n, const gu_point_t* in, gu_point_t* out);

// Removes, in place, every point on the straight line through its neighbours (duplicates included),
// testing each point against the last point kept before it. With `closed` non-zero the first and last
// points are then tested across the closing edge. Returns the new count (0 for no points). O(n).
TEVBASE_API int gu_delete_redundant_pointsi(int n, gu_point_t* pts, int closed);
TEVBASE_API int16_t gu_delete_redundant_points(int16_t n, gu_point_t* pts, int closed);

// Offsets a polygon in place by `distance` (positive grows it) with mitred corners: every edge moves
// along its outward normal and each vertex lands on the corner's bisector. Duplicate points are
// dropped first; the first m entries of pts are rewritten and m is returned narrowed to 16 bits.
// -1 for fewer than two points, fewer than two distinct points, a zero-length closing edge, a
// 180-degree reversal or a vertex outside the coordinate range; the vertices stored before the
// failing one stay rewritten. Scratch memory failure aborts the process.
TEVBASE_API int16_t gu_size_polygon(int n, gu_point_t* pts, int distance);

// The same for an orthogonal polygon without collinear points, in exact integers. -1 for fewer than
// two points or a vertex outside the coordinate range (earlier vertices stay rewritten).
TEVBASE_API int gu_size_ortho_polygoni(int n, gu_point_t* pts, int distance);
TEVBASE_API int16_t gu_size_ortho_polygon(int16_t n, gu_point_t* pts, int distance);

// 1 if the four points form a rectangle, possibly rotated or degenerate (p2 - p3 = p1 - p0 and the
// sides at p2 are perpendicular); 0 otherwise and for any other count.
TEVBASE_API int gu_is_rectangle(int n, const gu_point_t* pts);

// Intersection of the infinite lines p1-p2 and q1-q2. On success returns 1, sets *t to the parameter
// on the first line (0 at p1, 1 at p2, any value) and *out to p1 + round((p2 - p1) * t). For parallel
// lines, deliberately: when q1 (else q2) lies on the first line and q1.x - p1.x / (p2.x - p1.x) (the
// y terms for a vertical first line) lies in [0, 1], that value is *t and the point itself is *out;
// otherwise 0. Returns 0 without writing for a point-like first line or a result outside the
// coordinate range.
TEVBASE_API int gu_line_intersection_l(const gu_point_t* p1, const gu_point_t* p2, const gu_point_t* q1,
                                       const gu_point_t* q2, double* t, gu_point_t* out);
TEVBASE_API int gu_line_intersection(const gu_point_t* p1, const gu_point_t* p2, const gu_point_t* q1,
                                     const gu_point_t* q2, gu_point_t* out);

// Intersection of the segments p1-p2 and q1-q2, ends included. On success returns 1 with *t the
// parameter on the first segment and *out = q1 + round((q2 - q1) * u), u the parameter on the second;
// collinear segments follow the parallel rule of gu_line_intersection_l. Returns 0 without writing
// when the segments do not meet.
TEVBASE_API int gu_intersection_l(const gu_point_t* p1, const gu_point_t* p2, const gu_point_t* q1,
                                  const gu_point_t* q2, double* t, gu_point_t* out);
TEVBASE_API int gu_intersection(const gu_point_t* p1, const gu_point_t* p2, const gu_point_t* q1,
                                const gu_point_t* q2, gu_point_t* out);

// Angle conversions, computed in double.
TEVBASE_API float gu_rad2deg(float angle);
TEVBASE_API float gu_deg2rad(float angle);

// ---- Arcs, circles and paths -----------------------------------------------------------------
//
// Angles are radians, sweeps positive counter-clockwise. `segs` is the number of segments a full
// circle gets, `max` the number of points out can take; *nout receives the number of points written.
// Circles and path outlines round to coordinates; arcs truncate toward zero (callers rely on the
// difference).

// The n-gon around the ellipse of the given width and height (its edge midpoints touch the ellipse),
// first vertex at half a step. *nout = n; nothing is written for n of 0 or less. 0 points when a
// vertex falls outside the coordinate range (n = 2 with a non-zero size).
TEVBASE_API void gu_circle2polygon(int16_t* nout, gu_point_t* out, const gu_point_t* centre, int width,
                                   int height, int16_t n);

// Circle through three points, in single precision: the centre and radius (both truncated), the
// start angle of p1 and the signed sweep from p1 through p2 to p3. Returns 0 without writing for
// collinear points or a circle outside the coordinate range.
TEVBASE_API int gu_arc3p_calc(const gu_point_t* p1, const gu_point_t* p2, const gu_point_t* p3,
                              gu_point_t* centre, gu_coord_t* radius, float* start, float* sweep);

// The arc through three points as a polyline from p1 to p3 with its end points on the circle: about
// segs * sweep / 2pi points, at least 2, at most max. Collinear points give the chord p1, p3.
// Nothing is written and *nout = 0 when max is too small for the rule (below 2) or a point would
// leave the coordinate range; for max below 1 with a longer arc *nout = max.
TEVBASE_API void gu_arc3p2polygon(int16_t* nout, gu_point_t* out, const gu_point_t* p1, const gu_point_t* p2,
                                  const gu_point_t* p3, int16_t segs, int16_t max);

// Arc from start around centre towards end: direction 0 counter-clockwise, 1 clockwise (any other
// value fails an assertion). Sets the radius (distance of start, truncated), start angle and sweep;
// the distance of end is ignored. Returns 0 without writing when start or end is the centre.
TEVBASE_API int gu_arcc2p_calc(const gu_point_t* start, const gu_point_t* centre, const gu_point_t* end,
                               int direction, gu_coord_t* radius, float* start_angle, float* sweep);

// That arc as a polyline, with the point rule of gu_arc3p2polygon; 0 points when the arc is
// degenerate.
TEVBASE_API void gu_arcc2p2polygon(int16_t* nout, gu_point_t* out, const gu_point_t* start,
                                   const gu_point_t* centre, const gu_point_t* end, int16_t direction,
                                   int16_t segs, int16_t max);

// Elliptic arc (semi-axes width / 2 and height / 2) from start_angle over sweep, whose chords touch
// the ellipse: the two end points lie on it, the nseg points between on an enlarged ellipse.
// *nout = nseg + 2 with nseg about segs * |sweep| / 2pi, at least 1 and at most max - 2. The sweep is
// first brought into [-2pi, 2pi]. 0 points for max below 3, a non-finite sweep or a point outside the
// coordinate range.
TEVBASE_API void gu_arc2a2polygon(int16_t* nout, gu_point_t* out, const gu_point_t* centre, int width,
                                  int height, int16_t segs, int16_t max, float start_angle, float sweep);

// gu_arc2a2polygon starting at the angle of start about centre.
TEVBASE_API void gu_arcpa2polygon(int16_t* nout, gu_point_t* out, const gu_point_t* centre,
                                  const gu_point_t* start, int width, int height, int16_t segs, int16_t max,
                                  float sweep);

// Outline of a wide path: 2n points, entries 0 .. n-1 offset to the left of the path in path order,
// entries n .. 2n-1 to the right in reverse order (a path running to +x gives a clockwise outline).
// One point gives the square of side 2 * (width / 2) (4 points). With any_angle non-zero corners are
// mitred in single precision; otherwise every segment is taken as horizontal (equal y) or vertical.
// Points are `stride` bytes apart in pts and out alike; each starts with its x and y coordinates, and
// only those are written. *nout = 0 for no points, more than 16383 points, a zero-length segment or a
// 180-degree reversal in the any-angle form, or a point outside the coordinate range; entries
// written before the failure stay written. Types other than 0, 1 and 2 leave the along-path
// coordinates of the end entries (in the any-angle form the end entries) unwritten.
TEVBASE_API void gu_n_path_to_polygon(int stride, int16_t* nout, void* out, int n, const void* pts, int width,
                                      gu_PathType_t type, int16_t any_angle);
TEVBASE_API void gu_path_to_polygon(int16_t* nout, gu_point_t* out, int n, const gu_point_t* pts, int width,
                                    gu_PathType_t type, int16_t any_angle);

// ---- Polyline clipping -----------------------------------------------------------------------
//
// Calls fn once for every maximal piece of the polyline inside the window (border included) that has
// more than one point, in order along the polyline, with the piece's count and points and `user`.
// Crossing points lie exactly on the border, the other coordinate computed exactly (and rounded with
// mth_round in the integer form). A polyline wholly inside comes back whole in one call; a piece
// whose only visible part is a single point is not reported. The points passed belong to the
// function and may be changed by fn; they are valid during the call only.
// Uses process-wide scratch storage (kept at its largest size, nothing allocated once warm): not
// reentrant (fn must not clip), not thread-safe.

TEVBASE_API void gu_clip_polyline_l(int n, const gu_point_t* pts, gu_coord_t xmin, gu_coord_t ymin,
                                    gu_coord_t xmax, gu_coord_t ymax,
                                    void (*fn)(int n, gu_point_t* pts, void* user), void* user);
// xy holds n (x, y) pairs. Crossings are computed in double and narrowed to float.
TEVBASE_API void gu_clip_polyline_r(int n, const float* xy, float xmin, float ymin, float xmax, float ymax,
                                    void (*fn)(int n, float* xy, void* user), void* user);

TEVBASE_C_END

#endif
