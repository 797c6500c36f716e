// Stroke text and markers: table strokes transformed into output space for a caller's plot function.
#include <tevbase/stroke.h>

#include <cassert>
#include <cmath>
#include <cstdint>

namespace {

// Bottom of the text extent box in cell units, a little above the descenders at -3/7: callers
// rely on the box as it is.
constexpr float kExtentBottom = -0.421f;

// The text attributes with what follows from them, so that drawing only multiplies and adds.
struct TextState {
    bool drawable;  // the up vector has a length
    float x_x, x_y;  // X: one cell unit along the baseline
    float y_x, y_y;  // Y: one cell unit up
    float step_x, step_y;  // pen advance per character
};

// Process-wide, unguarded: all zero until set, so nothing is drawn before the first setting.
TextState g_text;
uint16_t g_marker_type;
float g_marker_scale;

// Cell point (gx, gy) of the text at pen (px, py), in output space.
inline void MapText(float px, float py, float gx, float gy, float* out)
{
    out[0] = px + gx * g_text.x_x + gy * g_text.y_x;
    out[1] = py + gx * g_text.x_y + gy * g_text.y_y;
}

}  // namespace

void stroke_set_text_attributes(int path, float up_x, float up_y, float height, float expansion,
                                float spacing)
{
    TextState t{};
    const float length = std::hypot(up_x, up_y);
    t.drawable = length > 0;
    if (t.drawable) {
        const float wide = expansion * height;
        t.x_x = wide * (up_y / length);
        t.x_y = wide * (-up_x / length);
        t.y_x = height * (up_x / length);
        t.y_y = height * (up_y / length);
    }
    // Advance (a, b) in cell units along (X, Y); an unknown path leaves the pen in place.
    const float cell = 1 + spacing;
    float a = 0;
    float b = 0;
    switch (path) {
    case 0: a = cell; break;
    case 1: a = -cell; break;
    case 2: b = cell; break;
    case 3: b = -cell; break;
    default: break;
    }
    t.step_x = a * t.x_x + b * t.y_x;
    t.step_y = a * t.x_y + b * t.y_y;
    g_text = t;
}

void stroke_plot_string(const char* text, int len, stroke_plot_fn plot, int user, float x, float y)
{
    assert(plot != 0);
    if (text == nullptr || len <= 0 || !g_text.drawable)
        return;
    float out[2 * STROKE_MAX_POINTS];
    for (int i = 0; i < len; ++i) {
        if (const stroke_shape_t* glyph = stroke_glyph(static_cast<unsigned char>(text[i]))) {
            for (int s = 0; s < glyph->nstrokes; ++s) {
                const stroke_line_t& line = glyph->strokes[s];
                if (line.npoints < 2)
                    continue;  // text drops single points (and the space's empty stroke)
                for (int k = 0; k < line.npoints; ++k)
                    MapText(x, y, line.points[2 * k], line.points[2 * k + 1], &out[2 * k]);
                plot(line.npoints, out, user);
            }
        }
        x += g_text.step_x;
        y += g_text.step_y;
    }
}

void stroke_inq_textstring_extent(const char*, int len, float* box, float x, float y)
{
    assert(box != 0);
    if (!g_text.drawable) {
        for (int i = 0; i < 8; ++i)
            box[i] = 0;
        return;
    }
    const float right = len > 0 ? static_cast<float>(len) : 0.0f;
    MapText(x, y, 0, kExtentBottom, &box[0]);
    MapText(x, y, right, kExtentBottom, &box[2]);
    MapText(x, y, right, 1, &box[4]);
    MapText(x, y, 0, 1, &box[6]);
}

void stroke_set_marker_attributes(int type, float size)
{
    g_marker_type = static_cast<uint16_t>(type);
    g_marker_scale = static_cast<float>(size / 7.0);
}

void stroke_plot_marker(stroke_plot_fn plot, int user, float x, float y)
{
    assert(plot != 0);
    const stroke_shape_t* marker = stroke_marker(g_marker_type);
    if (marker == nullptr)
        return;
    const float s = g_marker_scale;
    float out[2 * STROKE_MAX_POINTS];
    for (int i = 0; i < marker->nstrokes; ++i) {
        // Markers pass every stroke on, single points included.
        const stroke_line_t& line = marker->strokes[i];
        for (int k = 0; k < line.npoints; ++k) {
            out[2 * k] = x + s * line.points[2 * k];
            out[2 * k + 1] = y + s * line.points[2 * k + 1];
        }
        plot(line.npoints, out, user);
    }
}
