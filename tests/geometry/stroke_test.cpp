// Stroke font: text transform and advance, extent box, markers, and the glyph and marker tables.
#include <tevbase/stroke.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <map>
#include <string>
#include <vector>

namespace {

using Floats = std::vector<float>;
using Strokes = std::vector<Floats>;
Strokes g_strokes;

int Record(int npoints, float* points, int)
{
    g_strokes.emplace_back(points, points + 2 * npoints);
    return 1;
}

Strokes Draw(const std::string& text, float x, float y)
{
    g_strokes.clear();
    stroke_plot_string(text.data(), static_cast<int>(text.size()), Record, 0, x, y);
    return g_strokes;
}

Strokes Marker(int type, float size, float x, float y)
{
    g_strokes.clear();
    stroke_set_marker_attributes(type, size);
    stroke_plot_marker(Record, 0, x, y);
    return g_strokes;
}

void ExpectNear(const Floats& got, const Floats& want)
{
    ASSERT_EQ(got.size(), want.size());
    for (size_t i = 0; i < got.size(); ++i)
        EXPECT_NEAR(got[i], want[i], 1e-4 * (1 + std::fabs(want[i]))) << "coordinate " << i;
}

// Taken during static initialisation, before any test sets attributes.
const bool g_text_off_at_start = [] {
    float box[8] = {1, 1, 1, 1, 1, 1, 1, 1};
    stroke_inq_textstring_extent("AB", 2, box, 5, 5);
    return std::count(box, box + 8, 0.0f) == 8 && Draw("AB", 5, 5).empty();
}();

}  // namespace

TEST(StrokeText, TransformAdvanceExtentAndNothingDrawn)
{
    // "LL": the first L, (0,1) (0,0) (5/7,0), at the pen, the second one step further on.
    const Floats tilted = {16, 28, 10, 20, 10 + 20.0f / 7, 20 - 15.0f / 7};
    const struct {
        int path;
        float up_x, up_y, height, expansion, spacing, x, y;
        Floats first_l;
        float step_x, step_y;
    } rows[] = {
        {0, 0, 1, 7, 1, 0, 0, 0, {0, 7, 0, 0, 5, 0}, 7, 0},
        // up (3,4)/5: X = 10 * 0.5 * (0.8, -0.6) = (4, -3), Y = 10 * (0.6, 0.8) = (6, 8); a step is 1.5 cells
        {0, 3, 4, 10, 0.5f, 0.5f, 10, 20, tilted, 6, -4.5f},
        {1, 3, 4, 10, 0.5f, 0.5f, 10, 20, tilted, -6, 4.5f},
        {2, 3, 4, 10, 0.5f, 0.5f, 10, 20, tilted, 9, 12},
        {3, 3, 4, 10, 0.5f, 0.5f, 10, 20, tilted, -9, -12},
    };
    for (const auto& r : rows) {
        SCOPED_TRACE(&r - rows);
        stroke_set_text_attributes(r.path, r.up_x, r.up_y, r.height, r.expansion, r.spacing);
        const Strokes got = Draw("LL", r.x, r.y);
        ASSERT_EQ(got.size(), 2u);
        ExpectNear(got[0], r.first_l);
        ExpectNear({got[1][0] - got[0][0], got[1][1] - got[0][1]}, {r.step_x, r.step_y});
    }
    // The extent box ignores the text, spacing and path.
    float box[8];
    stroke_set_text_attributes(3, 0, 1, 7, 1, 2.5f);
    stroke_inq_textstring_extent(nullptr, 3, box, 0, 0);
    ExpectNear({box, box + 8}, {0, -2.947f, 21, -2.947f, 21, 7, 0, 7});

    EXPECT_TRUE(g_text_off_at_start);  // nothing is drawn before the first setting
    // Codes without a glyph advance the pen. The space's one stroke has no points: text passes only
    // strokes of two points or more.
    stroke_set_text_attributes(0, 0, 1, 7, 1, 0);
    for (int code : {0, 31, 32, 127, 128, 255}) {
        const Strokes got = Draw(std::string(1, static_cast<char>(code)) + "L", 0, 0);
        ASSERT_EQ(got.size(), 1u) << code;
        ExpectNear(got[0], {7, 7, 7, 0, 12, 0});
    }
    stroke_set_text_attributes(0, 0, 0, 7, 1, 0);  // no direction
    EXPECT_TRUE(Draw("L", 0, 0).empty());
}

TEST(StrokeTables, GlyphsOnTheGridOfSeventhsAndMarkersAsGiven)
{
    std::map<char, Strokes> given = {  // in sevenths
        {' ', {{}}}, {'-', {{1, 3, 4, 3}}}, {'+', {{1, 3, 4, 3}, {2.5, 1.5, 2.5, 4.5}}},
        {'L', {{0, 7, 0, 0, 5, 0}}}, {'I', {{1, 0, 4, 0, 2.5, 0, 2.5, 7, 1, 7, 4, 7}}},
        {'A', {{0, 0, 0, 6, 1, 7, 4, 7, 5, 6, 5, 3, 0, 3, 5, 3, 5, 0}}},
        {'0', {{0, 1, 0, 6, 1, 7, 4, 7, 5, 6, 5, 1, 4, 0, 1, 0, 0, 1}, {0, 0, 5, 7}}},
        {'!', {{2.5, 7, 2.5, 2}, {2.5, 1, 1.5, 0, 3.5, 0, 2.5, 1}}}};
    const auto on_grid = [](float c) { return std::fabs(c * 14 - std::round(c * 14)) < 1e-4; };  // halves too
    size_t strokes = 0;
    for (int code = 32; code <= 126; ++code) {
        const char c = static_cast<char>(code);
        ASSERT_NE(stroke_glyph(code), nullptr) << c;
        const stroke_shape_t& shape = *stroke_glyph(code);
        Strokes glyph;
        float lowest = 0;
        for (const stroke_line_t* l = shape.strokes; l != shape.strokes + shape.nstrokes; ++l) {
            const Floats line(l->points, l->points + 2 * l->npoints);
            // at most 16 points; text would drop a single point
            EXPECT_TRUE(line.size() <= 32 && line.size() >= (c == ' ' ? 0u : 4u)) << c;
            for (size_t k = 0; k < line.size(); k += 2) {
                const float x = line[k], y = line[k + 1];
                EXPECT_TRUE(on_grid(x) && on_grid(y) && x >= 0 && x <= 5.0f / 7 + 1e-6f && y <= 1 + 1e-6f)
                    << c << " " << x * 7 << "," << y * 7;
                lowest = std::min(lowest, y);
            }
            glyph.push_back(line);
        }
        strokes += glyph.size();
        // Exactly the descenders reach below the baseline, all to -3/7.
        EXPECT_FLOAT_EQ(lowest, std::strchr(",;gjpqy", code) ? -3.0f / 7 : 0) << c;
        if (given.count(c) != 0) {
            for (Floats& stroke : given[c])
                for (float& g : stroke)
                    g = static_cast<float>(g / 7.0);
            EXPECT_EQ(glyph, given[c]) << c;
        }
    }
    EXPECT_EQ(strokes, 120u);
    for (int code : {-1, 31, 127})
        EXPECT_EQ(stroke_glyph(code), nullptr) << code;

    // Markers, plotted: the table exactly as given, scaled, single points passed.
    const Floats square = {-3, -3, 3, -3, 3, 3, -3, 3, -3, -3};
    const Floats diamond = {-3, 0, 0, -3, 3, 0, 0, 3, -3, 0};
    const Strokes want[13] = {{{0, 0}},
                              {{-2, 0, 2, 0}, {0, -2, 0, 2}},
                              {{-3, 0, 3, 0}, {0, -3, 0, 3}},
                              {{0, -3, 0, 3}, {-3, -2, 3, 2}, {-3, 2, 3, -2}},
                              {{-2, -2, -2, 2, -2, 3, 2, 3, 3, 2, 3, -2, 2, -3, -2, -3, -2, -2}},
                              {{-3, -3, 3, 3}, {-3, 3, 3, -3}},
                              {square}, {diamond}, {square, {0, 0}}, {diamond, {0, 0}}, {square, diamond},
                              {{-3, -3, 3, 3}, {-3, 3, 3, -3}, square, diamond},
                              {{-3, 0, 3, 0}, {0, -3, 0, 3}, diamond}};
    stroke_set_text_attributes(0, 1, 1, 5, 3, 0);  // text settings do not apply
    for (int type = 0; type <= 12; ++type)  // size 7: one output unit a marker unit
        EXPECT_EQ(Marker(type, 7, 0, 0), want[type]) << type;
    EXPECT_EQ(Marker(8, 14, 100, 50), (Strokes{{94, 44, 106, 44, 106, 56, 94, 56, 94, 44}, {100, 50}}));
    // The type is kept in 16 bits: 65538 is the plus.
    EXPECT_EQ(Marker(65538, 7, 0, 0), want[2]);
    EXPECT_EQ(Marker(13, 7, 0, 0), Strokes{});
}
