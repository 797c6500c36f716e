// StrFmt and StrFormat: directives, escapes, the stream state they leave, diagnostics.
#include <tevbase/format.h>

#include <support/testutil.h>

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <functional>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace {

// StrFormat over string arguments, with what it wrote, what it reported and what it returned.
struct Formatted {
    std::string out, err;
    int ret;
};

Formatted format_text(const char* format, std::vector<const char*> args)
{
    std::ostringstream os;
    testutil::StderrCapture capture;
    const int ret = StrFormat(os, format, static_cast<int>(args.size()), const_cast<char**>(args.data()));
    return {os.str(), capture.Release(), ret};
}

} // namespace

TEST(StrFmtTest, Directives)
{
    struct Row {
        const char* name;
        std::function<int(std::ostream&)> call;
        std::string out;
        int ret;
    };
    const Row rows[] = {
        {"width", [](std::ostream& os) { return StrFmt(os, "%5d|%-5d|", 42L, 42L); }, "   42|42   |", 2},
        {"precision zero-fills", [](std::ostream& os) { return StrFmt(os, "%.3d", 7L); }, "007", 1},
        {"width and precision", [](std::ostream& os) { return StrFmt(os, "%6.3d|", 7L); }, "   007|", 1},
        {"left width and precision", [](std::ostream& os) { return StrFmt(os, "%-6.3d|", 7L); }, "700   |", 1},
        {"left precision pads on the right", [](std::ostream& os) { return StrFmt(os, "%-.3d", 7L); }, "700", 1},
        {"blanks ignore the number's length", [](std::ostream& os) { return StrFmt(os, "%6.3d|", 12345L); },
         "   12345|", 1},
        {"width below precision", [](std::ostream& os) { return StrFmt(os, "%2.4d|", 7L); }, "0007|", 1},
        {"zero is a width digit", [](std::ostream& os) { return StrFmt(os, "%05d|", 7L); }, "    7|", 1},
        {"negative with zero fill", [](std::ostream& os) { return StrFmt(os, "%.3d", -7L); }, "0-7", 1},
        {"ignored flags", [](std::ostream& os) { return StrFmt(os, "%+d|% d|%#x", 5L, 5L, 255L); }, "5|5|ff", 3},
        {"length modifiers", [](std::ostream& os) { return StrFmt(os, "%ld %hd %Lf", 1L, 2L, 0.5); },
         "1 2 0.500000", 3},
        {"star width and precision", [](std::ostream& os) { return StrFmt(os, "%*.*d|", 6, 3, 7L); }, "   007|", 1},
        {"negative star is none", [](std::ostream& os) { return StrFmt(os, "%*d|%.*s|", -4, 7L, -1, "abc"); },
         "7|abc|", 2},
        {"huge width is none", [](std::ostream& os) { return StrFmt(os, "%99999999999d|", 7L); }, "7|", 1},
        {"bare dot is precision 0", [](std::ostream& os) { return StrFmt(os, "%.s|%.f", "abc", 2.5); }, "|2", 2},
        {"base persists", [](std::ostream& os) { return StrFmt(os, "%x %d", 255L, 255L); }, "ff ff", 2},
        {"upper hex, octal", [](std::ostream& os) { return StrFmt(os, "%X %o %d", 255L, 8L, 9L); }, "FF 10 11", 3},
        {"unsigned", [](std::ostream& os) { return StrFmt(os, "%u", -1L); }, std::to_string(ULONG_MAX), 1},
        {"floats", [](std::ostream& os) { return StrFmt(os, "%f %.2f %8.3f|%-8.1f|", 1.5, 2.0, 3.14159, 1.25); },
         "1.500000 2.00    3.142|1.2     |", 4},
        {"scientific and general", [](std::ostream& os) { return StrFmt(os, "%.2e %.2E %g %G", 1234.5, 0.5, 1e-5, 2e20); },
         "1.23e+03 5.00E-01 1e-05 2E+20", 4},
        {"char", [](std::ostream& os) { return StrFmt(os, "[%c%5c]", 'a', 'b'); }, "[ab]", 2},
        {"strings", [](std::ostream& os) { return StrFmt(os, "[%5s][%-5s][%.2s][%2s]", "ab", "ab", "abc", "abc"); },
         "[   ab][ab   ][ab][abc]", 4},
        {"string width and precision", [](std::ostream& os) { return StrFmt(os, "[%6.2s][%-6.2s]", "abc", "abc"); },
         "[    ab][ab    ]", 2},
        {"string shorter than precision", [](std::ostream& os) { return StrFmt(os, "[%6.4s]", "ab"); }, "[  ab  ]", 1},
        {"string width below precision", [](std::ostream& os) { return StrFmt(os, "[%2.4s]", "abcdef"); }, "[abcd]", 1},
        {"percent", [](std::ostream& os) { return StrFmt(os, "100%%"); }, "100%", 1},
        {"b expands escapes", [](std::ostream& os) { return StrFmt(os, "%b|%b", "x\\ty", static_cast<const char*>(nullptr)); },
         "x\ty|", 2},
        {"no directives", [](std::ostream& os) { return StrFmt(os, "plain\\n"); }, "plain\n", 0},
        {"empty", [](std::ostream& os) { return StrFmt(os, ""); }, "", 0},
        {"null format", [](std::ostream& os) { return StrFmt(os, nullptr); }, "", -1},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        std::ostringstream os;
        EXPECT_EQ(row.call(os), row.ret);
        EXPECT_EQ(os.str(), row.out);
    }
}

TEST(StrFmtTest, NullStringMakesTheStreamBad)
{
    std::ostringstream os;
    EXPECT_EQ(StrFmt(os, "a%sb%d", static_cast<const char*>(nullptr), 5L), 2);
    EXPECT_TRUE(os.bad());
    EXPECT_EQ(os.str(), "a");
}

TEST(FormatTest, Escapes)
{
    struct Row {
        const char* name;
        const char* format;
        const char* out;
        const char* err;
    };
    const Row rows[] = {
        {"controls", "\\a\\b\\f\\n\\r\\t\\v", "\a\b\f\n\r\t\v", ""},
        {"itself", "\\\"\\\\\\c", "\"\\c", ""},
        {"hex is a number", "\\x41|\\xfFf|\\x1234", "65|4095|2914", ""},
        {"octal is a number", "\\0101|\\0|\\08|\\01234", "65|0|08|834", ""},
        {"hex without digits", "a\\xg", "a0g", "missing hexadecimal number in escape\n"},
        {"invalid", "a\\qb", "aqb", "\\q: invalid escape\n"},
        {"invalid percent is text", "\\%d", "%d", "\\%: invalid escape\n"},
        {"invalid digit", "\\1", "1", "\\1: invalid escape\n"},
        {"trailing backslash", "ab\\", "ab\\", ""},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        const Formatted f = format_text(row.format, {});
        EXPECT_EQ(f.out, row.out);
        EXPECT_EQ(f.err, row.err);
        EXPECT_EQ(f.ret, 0);

        // %b expands the same escapes in its argument, StrFmt the same in its format.
        const Formatted b = format_text("%b", {row.format});
        EXPECT_EQ(b.out, row.out);
        EXPECT_EQ(b.err, row.err);
        std::ostringstream os;
        testutil::StderrCapture capture;
        StrFmt(os, row.format);
        EXPECT_EQ(capture.Release(), row.err);
        EXPECT_EQ(os.str(), row.out);
    }
}

TEST(FormatTest, TextArguments)
{
    struct Row {
        const char* name;
        const char* format;
        std::vector<const char*> args;
        std::string out;
        const char* err;
        int ret;
    };
    char hex_max[32];
    std::snprintf(hex_max, sizeof hex_max, "%lx", ULONG_MAX);
    const Row rows[] = {
        {"missing argument is empty", "%s-%s\n", {"a"}, "a-\n", "", 1},
        {"missing arguments keep their width", "[%3s][%2d][%c][%b]", {}, "[   ][ 0][][]", "", 0},
        {"null text", "%s|%5s", {nullptr, nullptr}, "(nil)|(nil)", "", 2},
        {"null number is 0", "%d", {nullptr}, "0", "", 1},
        {"not a number", "%d", {"abc"}, "0", "abc: expected a numeric value\n", 1},
        {"trailing text ignored", "%d|%x|%.1f", {"12abc", "255 ", "2.25kg"}, "12|ff|2.2", "", 3},
        {"empty text is silent 0", "%d|%f", {"", ""}, "0|0.000000", "", 2},
        {"float", "%.3e|%G", {"1234.5", "inf"}, "1.234e+03|INF", "", 2},
        {"not a float", "%f", {"x1"}, "0.000000", "x1: expected a numeric value\n", 1},
        {"out of range", "%d", {"99999999999999999999"}, std::to_string(LONG_MAX),
         "99999999999999999999: Numerical result out of range\n", 1},
        {"unsigned from negative text", "%u|%x", {"-1", "-1"}, std::to_string(ULONG_MAX) + "|" + hex_max, "", 2},
        {"char is the first character", "[%c][%c]", {"xyz", ""}, "[x][]", "", 2},
        {"star arguments", "[%*.*s]", {"5", "2", "abc"}, "[   ab]", "", 3},
        {"bad star argument", "[%*d]", {"w", "7"}, "[7]", "w: expected a numeric value\n", 2},
        {"negative star is none", "[%*d]", {"-3", "7"}, "[7]", "", 2},
        {"bare dot converts the text behind it", "%.d|", {"5"}, "5|", "d: expected a numeric value\n", 1},
        {"percent and b", "%%%b%%", {"a\\tb"}, "%a\tb%", "", 1},
        {"leftover arguments", "%s", {"a", "b", "c"}, "a", "", 1},
        {"empty format", "", {"a"}, "", "", 0},
        {"directive longer than the local buffer", "[%000000000000000000000000000000000000005d]", {"7"},
         "[    7]", "", 1},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        const Formatted f = format_text(row.format, row.args);
        EXPECT_EQ(f.out, row.out);
        EXPECT_EQ(f.err, row.err);
        EXPECT_EQ(f.ret, row.ret);
    }
    std::ostringstream os;
    EXPECT_EQ(StrFormat(os, nullptr, 0, nullptr), -1);
}

TEST(FormatTest, StreamStatePersistsBetweenConversions)
{
    std::ostringstream fill;
    StrFmt(fill, "%.3d|%5.1f|", 7L, 2.25);
    EXPECT_EQ(fill.str(), "007|002.2|"); // the fill of the integer precision stays
    EXPECT_EQ(fill.fill(), '0');
    EXPECT_EQ(fill.precision(), 1);

    std::ostringstream base;
    StrFmt(base, "%X|%d|%x|%d|%o|%u|\\x41", 255L, 255L, 255L, 171L, 8L, 8L);
    EXPECT_EQ(base.str(), "FF|FF|ff|ab|10|10|101"); // "\x41" too is written in octal now
    EXPECT_EQ(base.flags() & std::ios::basefield, std::ios::oct);

    std::ostringstream adjust;
    StrFmt(adjust, "%-5d|%d|", 1L, 2L);
    EXPECT_EQ(adjust.str(), "1    |2|");
    EXPECT_EQ(adjust.flags() & std::ios::adjustfield, std::ios::right);

    // e replaces fixed; f adds fixed to scientific, printing as the stream prints both.
    std::ostringstream floatfield, both;
    StrFmt(floatfield, "%f|%e|%f", 0.5, 0.5, 0.5);
    both.setf(std::ios::fixed | std::ios::scientific, std::ios::floatfield);
    both << 0.5;
    EXPECT_EQ(floatfield.str(), "0.500000|5.000000e-01|" + both.str());

    std::ostringstream upper;
    StrFmt(upper, "%E|%g|%G", 0.5, 0.5, 1e-7);
    EXPECT_EQ(upper.str(), "5.000000E-01|0.5|1E-07");
    EXPECT_TRUE(upper.flags() & std::ios::uppercase);
}

TEST(FormatDeathTest, InvalidDirectiveAborts)
{
    std::ostringstream os;
    EXPECT_DEATH(StrFmt(os, "ab%k", 1L),
                 "%k: invalid directive\n.*" +
                     testutil::AssertionPattern("text/strfmt.cpp", "int StrFmt(std::ostream&, const char*, ...)", "0"));
    EXPECT_DEATH(StrFmt(os, "%-+d", 1L), "%\\+: invalid directive");
    EXPECT_DEATH(StrFmt(os, "%5"), "%: invalid directive");
    char arg[] = "1";
    char* argv[] = {arg};
    EXPECT_DEATH(
        StrFormat(os, "%5.2k", 1, argv),
        "%k: invalid directive\n.*" +
            testutil::AssertionPattern("text/format.cpp",
                                       "void print_direc(std::ostream&, const char*, size_t, int, int, int, const char*)",
                                       "0"));
    EXPECT_DEATH(StrFormat(os, "%5%", 1, argv), "%%: invalid directive");
    EXPECT_DEATH(StrFormat(os, "abc%", 1, argv), "%: invalid directive");
}

// Random directives through both formatters: typed arguments and their text must print alike, with the
// state each directive leaves on its stream.
TEST(FormatTest, TypedAndTextArgumentsAgree)
{
    std::mt19937 rng(20240611);
    auto pick = [&](const char* set) { return set[rng() % std::strlen(set)]; };
    std::ostringstream typed, text;
    testutil::StderrCapture capture;
    for (int i = 0; i < 3000; ++i) {
        SCOPED_TRACE(i);
        std::string format = "<";
        const char flag = pick("-+ #_");
        format += '%';
        if (flag != '_')
            format += flag;
        std::vector<int> stars;
        std::vector<std::string> texts;
        for (const char* part : {"", "."}) { // width, then precision: none, '*' or digits
            const unsigned kind = rng() % 3;
            if (kind != 0)
                format += part;
            if (kind == 1) {
                stars.push_back(static_cast<int>(rng() % 25) - 2);
                texts.push_back(std::to_string(stars.back()));
                format += '*';
            } else if (kind == 2) {
                format += std::to_string(rng() % 25);
            }
        }
        if (rng() % 4 == 0)
            format += pick("hlL");
        const char conv = pick("diouxXfeEgGcs");
        format += conv;
        format += '>';

        const long l = static_cast<long>(static_cast<int32_t>(rng())) >> (rng() % 31);
        const double d = std::ldexp(static_cast<double>(rng()) - 2e9, static_cast<int>(rng() % 80) - 40);
        const char c = static_cast<char>('!' + rng() % 90);
        const std::string s(rng() % 12, pick("ab c"));
        const bool integer = std::strchr("diouxX", conv) != nullptr;
        char number[64];
        integer ? std::snprintf(number, sizeof number, "%ld", l) : std::snprintf(number, sizeof number, "%.17g", d);
        texts.push_back(conv == 'c' ? std::string(1, c) + "junk" : conv == 's' ? s : number);

        const char* f = format.c_str();
        int ret;
        auto with_value = [&](auto value) {
            switch (stars.size()) {
            case 0:
                return StrFmt(typed, f, value);
            case 1:
                return StrFmt(typed, f, stars[0], value);
            default:
                return StrFmt(typed, f, stars[0], stars[1], value);
            }
        };
        if (integer)
            ret = with_value(l);
        else if (conv == 'c')
            ret = with_value(static_cast<int>(c));
        else if (conv == 's')
            ret = with_value(s.c_str());
        else
            ret = with_value(d);
        EXPECT_EQ(ret, 1);

        std::vector<char*> argv;
        for (std::string& t : texts)
            argv.push_back(&t[0]);
        EXPECT_EQ(StrFormat(text, f, static_cast<int>(argv.size()), argv.data()), static_cast<int>(argv.size()));
        ASSERT_EQ(typed.str(), text.str()) << format;
        ASSERT_EQ(typed.flags(), text.flags()) << format;
        ASSERT_EQ(typed.fill(), text.fill()) << format;
        if (i % 20 == 0) {
            for (std::ostringstream* os : {&typed, &text}) {
                os->str("");
                os->flags(std::ios::dec | std::ios::skipws);
                os->fill(' ');
                os->precision(6);
            }
        }
    }
    EXPECT_EQ(capture.Release(), "");
}
