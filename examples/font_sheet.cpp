// Font sheet: every glyph and marker of the stroke font drawn through the plot callback into
// font_sheet.svg in the current directory (and font_sheet.png when rsvg-convert is installed).
#include <tevbase.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>

#include <unistd.h>

namespace {

constexpr float kWidth = 1640;
constexpr float kHeight = 1240;

// The callback's only context is an int, so the drawing goes to one process-wide buffer.
std::ostringstream g_svg;

// Pens, passed as the callback's user value.
enum Pen { kGlyph, kLabel, kMarker, kSample };
const char* const kPenClass[] = {"glyph", "label", "marker", "sample"};

// Font space has y up; SVG has y down.
void Point(std::ostream& os, float x, float y)
{
    os << x << ',' << kHeight - y;
}

int Plot(int npoints, float* points, int user)
{
    if (npoints == 1) {  // marker dots
        g_svg << "<circle class=\"" << kPenClass[user] << "\" r=\"1.5\" cx=\"" << points[0]
              << "\" cy=\"" << kHeight - points[1] << "\"/>\n";
        return 0;
    }
    g_svg << "<polyline class=\"" << kPenClass[user] << "\" points=\"";
    for (int i = 0; i < npoints; ++i) {
        if (i > 0)
            g_svg << ' ';
        Point(g_svg, points[2 * i], points[2 * i + 1]);
    }
    g_svg << "\"/>\n";
    return 0;
}

void Line(const char* cls, float x0, float y0, float x1, float y1)
{
    g_svg << "<line class=\"" << cls << "\" x1=\"" << x0 << "\" y1=\"" << kHeight - y0 << "\" x2=\"" << x1
          << "\" y2=\"" << kHeight - y1 << "\"/>\n";
}

// Upright text of the given height, left to right.
void Text(const std::string& text, float height, Pen pen, float x, float y)
{
    stroke_set_text_attributes(0, 0, 1, height, 1, 0);
    stroke_plot_string(text.c_str(), static_cast<int>(text.size()), Plot, pen, x, y);
}

// The grid of sevenths behind a glyph whose origin is (x, y): x 0..5, y -3..7.
void Grid(float x, float y, float seventh)
{
    for (int i = 0; i <= 5; ++i)
        Line(i == 0 ? "axis" : "grid", x + i * seventh, y - 3 * seventh, x + i * seventh, y + 7 * seventh);
    for (int j = -3; j <= 7; ++j)
        Line(j == 0 || j == 7 ? "axis" : "grid", x, y + j * seventh, x + 5 * seventh, y + j * seventh);
}

void Glyphs(float top)
{
    const float height = 56;  // 8 units a seventh
    const float seventh = height / 7;
    for (int code = 32; code <= 126; ++code) {
        const int slot = code - 32;
        const float x = 30 + (slot % 16) * 100.0f;
        const float y = top - (slot / 16) * 112.0f - 7 * seventh;  // baseline
        Grid(x, y, seventh);
        const char c = static_cast<char>(code);
        Text(std::string(1, c), height, kGlyph, x, y);
        Text(std::to_string(code), 11, kLabel, x + 5 * seventh + 8, y);
    }
}

void Markers(float baseline)
{
    Text("markers", 14, kLabel, 30, baseline + 40);
    for (int type = 0; type <= 12; ++type) {
        const float x = 50 + type * 80.0f;
        stroke_set_marker_attributes(type, 42);  // 6 units a marker unit: spans -18..18
        stroke_plot_marker(Plot, kMarker, x, baseline);
        Text(std::to_string(type), 11, kLabel, x - 6, baseline - 40);
    }
}

void Samples(float top)
{
    const std::string sample = "The quick brown fox jumps over the lazy dog 0123456789";
    const int len = static_cast<int>(sample.size());

    // The large line with its extent box, which ignores the descenders below -0.421.
    const float y0 = top - 28;
    stroke_set_text_attributes(0, 0, 1, 28, 1, 0);
    float box[8];
    stroke_inq_textstring_extent(sample.c_str(), len, box, 30, y0);
    g_svg << "<polygon class=\"extent\" points=\"";
    for (int i = 0; i < 4; ++i) {
        Point(g_svg, box[2 * i], box[2 * i + 1]);
        g_svg << ' ';
    }
    g_svg << "\"/>\n";
    stroke_plot_string(sample.c_str(), len, Plot, kSample, 30, y0);

    Text(sample, 14, kSample, 30, y0 - 50);

    // Rotated by 15 degrees counter-clockwise, narrower and spaced out.
    const float angle = 15 * 3.14159265f / 180;
    stroke_set_text_attributes(0, -std::sin(angle), std::cos(angle), 18, 0.8f, 0.25f);
    stroke_plot_string(sample.c_str(), len, Plot, kSample, 40, 40);
}

}  // namespace

int main()
{
    g_svg << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
          << "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" << kWidth << "\" height=\"" << kHeight
          << "\" viewBox=\"0 0 " << kWidth << ' ' << kHeight << "\">\n"
          << "<style>\n"
          << "  polyline, polygon, line { fill: none; stroke-linecap: round; stroke-linejoin: round; }\n"
          << "  .grid { stroke: #dde4ee; stroke-width: 0.6; }\n"
          << "  .axis { stroke: #b4c2d6; stroke-width: 0.8; }\n"
          << "  .glyph { stroke: #111; stroke-width: 2; }\n"
          << "  .label { stroke: #c03020; stroke-width: 1; }\n"
          << "  .marker { stroke: #1050a0; stroke-width: 1.5; }\n"
          << "  circle.marker { fill: #1050a0; stroke: none; }\n"
          << "  .sample { stroke: #111; stroke-width: 1.4; }\n"
          << "  .extent { stroke: #6a9; stroke-width: 0.8; stroke-dasharray: 4 3; }\n"
          << "</style>\n"
          << "<rect width=\"100%\" height=\"100%\" fill=\"white\"/>\n";

    Glyphs(kHeight - 30);
    Markers(kHeight - 30 - 6 * 112 - 40);
    Samples(kHeight - 30 - 6 * 112 - 130);

    g_svg << "</svg>\n";

    const char* svg_name = "font_sheet.svg";
    std::ofstream out(svg_name);
    out << g_svg.str();
    out.close();
    if (!out) {
        std::cerr << "cannot write " << svg_name << '\n';
        return 1;
    }
    char dir[4096];
    std::cout << "wrote " << (getcwd(dir, sizeof dir) ? dir : ".") << '/' << svg_name << '\n';
    if (std::system("command -v rsvg-convert >/dev/null 2>&1") == 0) {
        if (std::system("rsvg-convert -o font_sheet.png font_sheet.svg") == 0)
            std::cout << "wrote font_sheet.png\n";
        else
            std::cerr << "rsvg-convert failed; the SVG is complete\n";
    } else {
        std::cout << "no rsvg-convert: open the SVG, or install librsvg2-bin for a PNG\n";
    }
    return 0;
}
