// Stroke font and point markers: text and markers as polylines handed to a caller's plot function.
#ifndef TEVBASE_STROKE_H
#define TEVBASE_STROKE_H

#include <tevbase/config.h>

TEVBASE_C_BEGIN

// Receives one stroke: npoints (x, y) pairs, already transformed into output space. The buffer
// belongs to the library and is valid only during the call; user is the drawing call's value,
// passed through unchanged. The return value is ignored.
typedef int (*stroke_plot_fn)(int npoints, float* points, int user);

// ---- Text -------------------------------------------------------------------------------------
//
// A glyph lives in a cell one unit wide: x from 0 to 5/7, y from 0 (baseline) to 1 (capital
// height), descenders of , ; g j p q y down to -3/7. Output point = pen + gx * X + gy * Y, with
//     X = expansion * height * (up_y, -up_x) / |up|   (the baseline: up turned clockwise)
//     Y = height * (up_x, up_y) / |up|
// After each character the pen moves by (1 + spacing) cells along X (path 0), -X (path 1),
// Y (path 2) or -Y (path 3).
//
// The text and marker attributes are process-wide, unguarded state shared by every caller: not
// thread-safe. Callers that draw from several threads must serialise setting and drawing.

// Replaces all text attributes at once. path: 0 left to right, 1 right to left, 2 bottom to top,
// 3 top to bottom (with any other value the pen does not move). (up_x, up_y): the glyph's up
// direction, any length. height: capital height in output units. expansion: width factor of the
// glyph x axis. spacing: extra gap between cells, as a fraction of a cell.
// Until the first call everything is 0, and with a zero-length up vector text draws nothing.
TEVBASE_API void stroke_set_text_attributes(int path, float up_x, float up_y, float height,
                                            float expansion, float spacing);

// Draws len bytes of text, the first cell's origin (baseline left) at (x, y). Each stroke with
// more than one point goes to plot, in table order; single points are dropped. Codes outside
// 32..126 (as unsigned bytes, NUL included) draw nothing but advance the pen. A null text, a
// len <= 0 or a zero-length up vector draws nothing. plot must not be null.
TEVBASE_API void stroke_plot_string(const char* text, int len, stroke_plot_fn plot, int user,
                                    float x, float y);

// Writes into box (8 floats) the corners of the box of a len-character text at (x, y): the cell
// corners (0, -0.421), (len, -0.421), (len, 1), (0, 1) under the text transform, in that order.
// text is not read. The box always runs one cell per character along the baseline: callers rely
// on it ignoring spacing and path. A negative len counts as 0; with a zero-length up vector the
// box is all zeros. box must not be null.
TEVBASE_API void stroke_inq_textstring_extent(const char* text, int len, float* box, float x,
                                              float y);

// ---- Markers ----------------------------------------------------------------------------------

// Replaces both marker attributes: type (kept as a 16-bit unsigned value, so 65538 is 2; types
// above 12 draw nothing) and size, stored as size / 7.0. A full marker spans -3..3 marker units,
// that is six sevenths of size.
//   0 dot                 4 octagon (irregular)   8 square with dot         12 plus in diamond
//   1 small plus          5 cross                 9 diamond with dot
//   2 plus                6 square               10 square and diamond
//   3 asterisk            7 diamond              11 cross, square and diamond
TEVBASE_API void stroke_set_marker_attributes(int type, float size);

// Draws the current marker centred at (x, y): point = (x, y) + size / 7 * marker point, no
// rotation. Every stroke goes to plot, single points too (the dot of types 0, 8 and 9).
// plot must not be null.
TEVBASE_API void stroke_plot_marker(stroke_plot_fn plot, int user, float x, float y);

// ---- The tables -------------------------------------------------------------------------------

// Longest stroke of any glyph or marker, in points.
enum { STROKE_MAX_POINTS = 16 };

// One polyline: npoints (x, y) pairs (0 for the space, else 1..STROKE_MAX_POINTS).
typedef struct stroke_line_t {
    const float* points;
    int npoints;
} stroke_line_t;

// A glyph or marker: its polylines in drawing order.
typedef struct stroke_shape_t {
    const stroke_line_t* strokes;
    int nstrokes;
} stroke_shape_t;

// The glyph of a character code 32..126, in cell units; null for any other code.
TEVBASE_API const stroke_shape_t* stroke_glyph(int code);

// The marker of a type 0..12, in marker units (-3..3); null for any other type.
TEVBASE_API const stroke_shape_t* stroke_marker(int type);

TEVBASE_C_END

#endif
