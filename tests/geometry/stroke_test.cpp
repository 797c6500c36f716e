// Stroke font: text transform and advance, extent box, markers, and the glyph and marker tables.
#include <tevbase/stroke.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <string>
#include <vector>

namespace {

struct Stroke {
    int user;
    std::vector<float> xy;
};
std::vector<Stroke> g_strokes;

int Record(int npoints, float* points, int user)
{
    g_strokes.push_back({user, std::vector<float>(points, points + 2 * npoints)});
    return 1;
}

std::vector<Stroke> Draw(const std::string& text, float x, float y)
{
    g_strokes.clear();
    stroke_plot_string(text.data(), static_cast<int>(text.size()), Record, 42, x, y);
    return g_strokes;
}

std::vector<Stroke> Marker(int type, float size, float x, float y)
{
    g_strokes.clear();
    stroke_set_marker_attributes(type, size);
    stroke_plot_marker(Record, 7, x, y);
    return g_strokes;
}

void ExpectPoints(const std::vector<float>& got, const std::vector<float>& want)
{
    ASSERT_EQ(got.size(), want.size());
    for (size_t i = 0; i < got.size(); ++i)
        EXPECT_NEAR(got[i], want[i], 1e-4 * (1 + std::fabs(want[i]))) << "coordinate " << i;
}

// (x, y) pairs in sevenths -> cell units, rounded as the table rounds them.
std::vector<float> Sevenths(std::vector<double> v)
{
    std::vector<float> out;
    for (double c : v)
        out.push_back(static_cast<float>(c / 7.0));
    return out;
}

std::vector<float> Points(const stroke_line_t& line)
{
    return std::vector<float>(line.points, line.points + 2 * line.npoints);
}

// True when text draws nothing and the extent box is all zeros.
bool TextIsOff()
{
    float box[8] = {1, 1, 1, 1, 1, 1, 1, 1};
    stroke_inq_textstring_extent("AB", 2, box, 5, 5);
    return std::count(box, box + 8, 0.0f) == 8 && Draw("AB", 5, 5).empty();
}

// Taken during static initialisation, before any test sets attributes.
const bool g_text_off_at_start = TextIsOff();

}  // namespace

TEST(StrokeText, NothingIsDrawnBeforeTheFirstSetting)
{
    EXPECT_TRUE(g_text_off_at_start);
}

TEST(StrokeText, TransformAndAdvance)
{
    // "LL": the first L at the pen, the second one advance further on.
    struct Row {
        const char* name;
        int path;
        float up_x, up_y, height, expansion, spacing, x, y;
        std::vector<float> first_l;  // (0,1) (0,0) (5/7,0)
        float step_x, step_y;
    };
    const Row rows[] = {
        {"upright", 0, 0, 1, 7, 1, 0, 0, 0, {0, 7, 0, 0, 5, 0}, 7, 0},
        {"right to left", 1, 0, 1, 7, 1, 0, 0, 0, {0, 7, 0, 0, 5, 0}, -7, 0},
        {"bottom to top", 2, 0, 1, 7, 1, 0, 0, 0, {0, 7, 0, 0, 5, 0}, 0, 7},
        {"top to bottom", 3, 0, 1, 7, 1, 0, 0, 0, {0, 7, 0, 0, 5, 0}, 0, -7},
        {"up to the left", 0, -1, 0, 7, 1, 0, 0, 0, {-7, 0, 0, 0, 0, 5}, 0, 7},
        {"long up vector", 0, -20, 0, 7, 1, 0, 0, 0, {-7, 0, 0, 0, 0, 5}, 0, 7},
        {"up to the left, path 2", 2, -1, 0, 7, 1, 0, 0, 0, {-7, 0, 0, 0, 0, 5}, -7, 0},
        // up (3,4)/5: X = 10 * 0.5 * (0.8, -0.6) = (4, -3), Y = 10 * (0.6, 0.8) = (6, 8).
        {"tilted, expanded, spaced", 0, 3, 4, 10, 0.5f, 0.5f, 10, 20,
         {16, 28, 10, 20, 10 + 20.0f / 7, 20 - 15.0f / 7}, 6, -4.5f},
        {"tilted, path 1", 1, 3, 4, 10, 0.5f, 0.5f, 10, 20,
         {16, 28, 10, 20, 10 + 20.0f / 7, 20 - 15.0f / 7}, -6, 4.5f},
        {"tilted, path 3", 3, 3, 4, 10, 0.5f, 0.5f, 10, 20,
         {16, 28, 10, 20, 10 + 20.0f / 7, 20 - 15.0f / 7}, -9, -12},
        {"negative spacing", 0, 0, 1, 7, 1, -0.5f, 1, 2, {1, 9, 1, 2, 6, 2}, 3.5f, 0},
        {"unknown path stays put", 9, 0, 1, 7, 1, 0, 0, 0, {0, 7, 0, 0, 5, 0}, 0, 0},
    };
    for (const Row& r : rows) {
        SCOPED_TRACE(r.name);
        stroke_set_text_attributes(r.path, r.up_x, r.up_y, r.height, r.expansion, r.spacing);
        const std::vector<Stroke> got = Draw("LL", r.x, r.y);
        ASSERT_EQ(got.size(), 2u);
        EXPECT_EQ(got[0].user, 42);
        ExpectPoints(got[0].xy, r.first_l);
        std::vector<float> second = r.first_l;
        for (size_t i = 0; i < second.size(); i += 2) {
            second[i] += r.step_x;
            second[i + 1] += r.step_y;
        }
        ExpectPoints(got[1].xy, second);
    }
}

TEST(StrokeText, CodesWithoutGlyphAdvanceThePen)
{
    stroke_set_text_attributes(0, 0, 1, 7, 1, 0);
    for (int code : {0, 1, 31, 32, 127, 128, 200, 255}) {
        SCOPED_TRACE(code);
        const std::vector<Stroke> got = Draw(std::string(1, static_cast<char>(code)) + "L", 0, 0);
        ASSERT_EQ(got.size(), 1u);
        ExpectPoints(got[0].xy, {7, 7, 7, 0, 12, 0});
    }
    g_strokes.clear();
    stroke_plot_string(nullptr, 3, Record, 0, 0, 0);
    stroke_plot_string("L", 0, Record, 0, 0, 0);
    stroke_plot_string("L", -1, Record, 0, 0, 0);
    EXPECT_TRUE(g_strokes.empty());
    stroke_set_text_attributes(0, 0, 0, 7, 1, 0);  // no direction: nothing to draw
    EXPECT_TRUE(Draw("L", 0, 0).empty());
}

TEST(StrokeText, ExtentIgnoresSpacingAndPath)
{
    float box[8];
    stroke_set_text_attributes(0, 0, 1, 7, 1, 0);
    stroke_inq_textstring_extent("abc", 3, box, 0, 0);
    ExpectPoints({box, box + 8}, {0, -2.947f, 21, -2.947f, 21, 7, 0, 7});
    stroke_set_text_attributes(3, 0, 1, 7, 1, 2.5f);
    stroke_inq_textstring_extent(nullptr, 3, box, 0, 0);  // the text is not read
    ExpectPoints({box, box + 8}, {0, -2.947f, 21, -2.947f, 21, 7, 0, 7});
    stroke_set_text_attributes(2, -1, 0, 7, 2, 0);  // rotated, expanded: X = (0, 14), Y = (-7, 0)
    stroke_inq_textstring_extent("ab", 2, box, 10, 1);
    ExpectPoints({box, box + 8}, {12.947f, 1, 12.947f, 29, 3, 29, 3, 1});
    stroke_inq_textstring_extent("ab", -4, box, 10, 1);  // no characters: no width
    ExpectPoints({box, box + 8}, {12.947f, 1, 12.947f, 1, 3, 1, 3, 1});
    stroke_set_text_attributes(0, 0, 0, 7, 1, 0);
    stroke_inq_textstring_extent("ab", 2, box, 10, 1);
    ExpectPoints({box, box + 8}, {0, 0, 0, 0, 0, 0, 0, 0});
}

TEST(StrokeMarker, StrokesScaledAndSinglePointsPassed)
{
    // Size 14: two output units a marker unit, no rotation; the centre dot comes as one point.
    std::vector<Stroke> got = Marker(8, 14, 100, 50);
    ASSERT_EQ(got.size(), 2u);
    EXPECT_EQ(got[0].user, 7);
    ExpectPoints(got[0].xy, {94, 44, 106, 44, 106, 56, 94, 56, 94, 44});
    ExpectPoints(got[1].xy, {100, 50});
    got = Marker(9, 3.5f, 0, 0);
    ASSERT_EQ(got.size(), 2u);
    ExpectPoints(got[0].xy, {-1.5f, 0, 0, -1.5f, 1.5f, 0, 0, 1.5f, -1.5f, 0});
    ExpectPoints(got[1].xy, {0, 0});
    for (float size : {0.0f, 3.5f, 1000.0f}) {  // the dot: one point at the position, any size
        got = Marker(0, size, -3, 4);
        ASSERT_EQ(got.size(), 1u);
        ExpectPoints(got[0].xy, {-3, 4});
    }
    // The type is kept in 16 bits: 65538 is the plus; -1 (65535) and 13 draw nothing.
    got = Marker(65538, 7, 0, 0);
    ASSERT_EQ(got.size(), 2u);
    ExpectPoints(got[0].xy, {-3, 0, 3, 0});
    for (int type : {-1, 13, 65535})
        EXPECT_TRUE(Marker(type, 7, 0, 0).empty()) << type;
}

TEST(StrokeTables, MarkersExactlyAsGiven)
{
    const std::vector<float> square = {-3, -3, 3, -3, 3, 3, -3, 3, -3, -3};
    const std::vector<float> diamond = {-3, 0, 0, -3, 3, 0, 0, 3, -3, 0};
    const std::vector<std::vector<float>> want[13] = {
        {{0, 0}},
        {{-2, 0, 2, 0}, {0, -2, 0, 2}},
        {{-3, 0, 3, 0}, {0, -3, 0, 3}},
        {{0, -3, 0, 3}, {-3, -2, 3, 2}, {-3, 2, 3, -2}},
        {{-2, -2, -2, 2, -2, 3, 2, 3, 3, 2, 3, -2, 2, -3, -2, -3, -2, -2}},
        {{-3, -3, 3, 3}, {-3, 3, 3, -3}},
        {square},
        {diamond},
        {square, {0, 0}},
        {diamond, {0, 0}},
        {square, diamond},
        {{-3, -3, 3, 3}, {-3, 3, 3, -3}, square, diamond},
        {{-3, 0, 3, 0}, {0, -3, 0, 3}, diamond},
    };
    for (int type = 0; type <= 12; ++type) {
        SCOPED_TRACE(type);
        const stroke_shape_t* marker = stroke_marker(type);
        ASSERT_EQ(marker->nstrokes, static_cast<int>(want[type].size()));
        for (int s = 0; s < marker->nstrokes; ++s)
            EXPECT_EQ(Points(marker->strokes[s]), want[type][s]);
    }
    EXPECT_EQ(stroke_marker(-1), nullptr);
    EXPECT_EQ(stroke_marker(13), nullptr);
}

TEST(StrokeTables, GivenGlyphsExactlyAsGiven)
{
    const struct {
        char c;
        std::vector<std::vector<double>> strokes;  // sevenths
    } given[] = {
        {' ', {{}}},
        {'-', {{1, 3, 4, 3}}},
        {'+', {{1, 3, 4, 3}, {2.5, 1.5, 2.5, 4.5}}},
        {'L', {{0, 7, 0, 0, 5, 0}}},
        {'I', {{1, 0, 4, 0, 2.5, 0, 2.5, 7, 1, 7, 4, 7}}},
        {'A', {{0, 0, 0, 6, 1, 7, 4, 7, 5, 6, 5, 3, 0, 3, 5, 3, 5, 0}}},
        {'0', {{0, 1, 0, 6, 1, 7, 4, 7, 5, 6, 5, 1, 4, 0, 1, 0, 0, 1}, {0, 0, 5, 7}}},
        {'!', {{2.5, 7, 2.5, 2}, {2.5, 1, 1.5, 0, 3.5, 0, 2.5, 1}}},
    };
    for (const auto& g : given) {
        SCOPED_TRACE(g.c);
        const stroke_shape_t* glyph = stroke_glyph(g.c);
        ASSERT_EQ(glyph->nstrokes, static_cast<int>(g.strokes.size()));
        for (int s = 0; s < glyph->nstrokes; ++s)
            EXPECT_EQ(Points(glyph->strokes[s]), Sevenths(g.strokes[s]));
    }
}

TEST(StrokeTables, GlyphsOnTheGridOfSevenths)
{
    int strokes = 0;
    std::vector<std::vector<float>> shapes;
    for (int code = 32; code <= 126; ++code) {
        SCOPED_TRACE(static_cast<char>(code));
        const stroke_shape_t* glyph = stroke_glyph(code);
        ASSERT_NE(glyph, nullptr);
        ASSERT_GE(glyph->nstrokes, 1);
        strokes += glyph->nstrokes;
        float lowest = 0;
        std::vector<float> all;
        for (int s = 0; s < glyph->nstrokes; ++s) {
            const stroke_line_t& line = glyph->strokes[s];
            EXPECT_LE(line.npoints, 16);
            EXPECT_GE(line.npoints, code == ' ' ? 0 : 2);  // dots are small closed shapes
            for (int k = 0; k < line.npoints; ++k) {
                const float x = line.points[2 * k], y = line.points[2 * k + 1];
                for (float c : {x, y})  // whole or half sevenths
                    EXPECT_NEAR(c * 14, std::round(c * 14), 1e-4) << c * 7;
                EXPECT_GE(x, 0);
                EXPECT_LE(x, 5.0f / 7 + 1e-6f);
                EXPECT_GE(y, -3.0f / 7 - 1e-6f);
                EXPECT_LE(y, 1 + 1e-6f);
                lowest = std::min(lowest, y);
            }
            all.insert(all.end(), line.points, line.points + 2 * line.npoints);
        }
        // Exactly the descenders reach below the baseline, all to -3/7.
        if (std::strchr(",;gjpqy", code))
            EXPECT_FLOAT_EQ(lowest, -3.0f / 7);
        else
            EXPECT_EQ(lowest, 0);
        for (size_t other = 0; other < shapes.size(); ++other)
            EXPECT_NE(all, shapes[other]) << "same as " << static_cast<char>(32 + other);
        shapes.push_back(all);
    }
    EXPECT_EQ(strokes, 120);
    for (int code : {-1, 0, 31, 127, 255})
        EXPECT_EQ(stroke_glyph(code), nullptr) << code;
}

TEST(StrokeDeathTest, NullOutputsAreCallerErrors)
{
    EXPECT_DEATH(stroke_plot_string("A", 1, nullptr, 0, 0, 0), "plot != 0");
    EXPECT_DEATH(stroke_plot_marker(nullptr, 0, 0, 0), "plot != 0");
    EXPECT_DEATH(stroke_inq_textstring_extent("A", 1, nullptr, 0, 0), "box != 0");
}
