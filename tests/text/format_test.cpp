// StrFmt and StrFormat: directives, escapes, the stream state they leave, diagnostics.
#include <tevbase/format.h>

#include <support/testutil.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdio>
#include <cstring>
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

// StrFmt onto a fresh stream: what it wrote, then '#' and what it returned.
template <class... Args> std::string typed(const char* format, Args... args)
{
    std::ostringstream os;
    const int ret = StrFmt(os, format, args...);
    return os.str() + "#" + std::to_string(ret);
}

} // namespace

// The directives through text arguments; TypedAndTextArgumentsAgree carries them over to StrFmt.
TEST(FormatTest, DirectivesAndTextArguments)
{
    struct Row {
        const char* format;
        std::vector<const char*> args;
        std::string out;
        const char* err;
        int ret; // arguments used
    };
    char hex_max[32];
    std::snprintf(hex_max, sizeof hex_max, "%lx", ULONG_MAX);
    const Row rows[] = {
        {"%5d|%-5d|%.3d|%6.3d|%-6.3d|%-.3d", {"42", "42", "7", "7", "7", "7"}, "   42|42   |007|   007|700   |700",
         "", 6},
        {"%6.3d|%2.4d|%05d|%.3d", {"12345", "7", "7", "-7"}, "   12345|0007|    7|0-7", "", 4}, // blanks ignore length
        {"%+d|% d|%#x|%ld %hd %Lf", {"5", "5", "255", "1", "2", "0.5"}, "5|5|ff|1 2 0.500000", "", 6},
        {"%x %d|%X %o %d", {"255", "255", "255", "8", "9"}, "ff ff|FF 10 11", "", 5}, // the base persists
        {"%f %.2f %8.3f|%-8.1f|", {"1.5", "2", "3.14159", "1.25"}, "1.500000 2.00    3.142|1.2     |", "", 4},
        {"%.2e %.2E %g %G", {"1234.5", "0.5", "1e-5", "2e20"}, "1.23e+03 5.00E-01 1e-05 2E+20", "", 4},
        {"[%5s][%-5s][%.2s][%2s]", {"ab", "ab", "abc", "abc"}, "[   ab][ab   ][ab][abc]", "", 4},
        {"[%6.2s][%-6.2s][%6.4s][%2.4s]", {"abc", "abc", "ab", "abcdef"}, "[    ab][ab    ][  ab  ][abcd]", "", 4},
        {"[%c%5c][%c]", {"xyz", "b", ""}, "[xb][]", "", 3}, // the first character, no padding
        {"%s-%s\n", {"a"}, "a-\n", "", 1},                 // a missing argument is the empty text
        {"[%3s][%2d][%c][%b]", {}, "[   ][ 0][][]", "", 0}, // and keeps its width
        {"%s|%5s|%d", {nullptr, nullptr, nullptr}, "(nil)|(nil)|0", "", 3},
        // Text without a number is reported; trailing text is ignored; empty text is a silent 0.
        {"%d|%f|%d|%x|%.1f|%d|%f", {"abc", "x1", "12abc", "255 ", "2.25kg", "", ""}, "0|0.000000|12|ff|2.2|0|0.0",
         "abc: expected a numeric value\nx1: expected a numeric value\n", 7},
        {"%d", {"99999999999999999999"}, std::to_string(LONG_MAX),
         "99999999999999999999: Numerical result out of range\n", 1},
        {"%u|%x", {"-1", "-1"}, std::to_string(ULONG_MAX) + "|" + hex_max, "", 2},
        {"[%*.*s][%*d][%*d]", {"5", "2", "abc", "-3", "7", "w", "7"}, "[   ab][7][7]", // a negative '*' is none
         "w: expected a numeric value\n", 7},
        {"%.d|100%%%b%%", {"5", "a\\tb"}, "5|100%a\tb%", "d: expected a numeric value\n", 2}, // bare '.': text behind
        {"%s", {"a", "b", "c"}, "a", "", 1}, // leftover arguments
        {"", {"a"}, "", "", 0},
        {"[%000000000000000000000000000000000000005d]", {"7"}, "[    7]", "", 1}, // beyond the local copy
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.format);
        const Formatted f = format_text(row.format, row.args);
        EXPECT_EQ(f.out, row.out);
        EXPECT_EQ(f.err, row.err);
        EXPECT_EQ(f.ret, row.ret);
    }
    std::ostringstream os;
    EXPECT_EQ(StrFormat(os, nullptr, 0, nullptr), -1);
}

TEST(StrFmtTest, CountsDirectivesAndLeavesTheirStateOnTheStream)
{
    EXPECT_EQ(typed("%5d|%-5d|", 42L, 42L), "   42|42   |#2");
    EXPECT_EQ(typed("100%%|%b%b", "x\\ty", static_cast<const char*>(nullptr)), "100%|x\ty#3");
    EXPECT_EQ(typed("%*d|%.*s|%*.*d", -4, 7L, -1, "ab", 6, 3, 7L), "7|ab|   007#3"); // a negative '*' is none
    EXPECT_EQ(typed("%99999999999d|%.s|%.f|[%c%5c]", 7L, "abc", 2.5, 'a', 'b'), "7||2|[ab]#5");
    EXPECT_EQ(typed("plain\\n"), "plain\n#0");
    EXPECT_EQ(typed(nullptr), "#-1");
    // The state stays: the '0' fill and precision, the base ("\x41" in octal too), the case.
    EXPECT_EQ(typed("%.3d|%5.1f|%X|%d|%o|\\x41", 7L, 2.25, 255L, 255L, 8L), "007|002.2|FF|FF|10|101#5");
    EXPECT_EQ(typed("%-5d|%3d|%.1E|%g|%G", 1L, 2L, 0.5, 0.5, 1e-7), "1    |  2|5.0E-01|0.5|1E-07#5");
    // e replaces fixed; f adds fixed to scientific, printing as the stream prints both.
    std::ostringstream both;
    both.setf(std::ios::fixed | std::ios::scientific, std::ios::floatfield);
    both << 0.5;
    EXPECT_EQ(typed("%f|%e|%f", 0.5, 0.5, 0.5), "0.500000|5.000000e-01|" + both.str() + "#3");

    std::ostringstream os;
    EXPECT_EQ(StrFmt(os, "a%sb%d", static_cast<const char*>(nullptr), 5L), 2);
    EXPECT_TRUE(os.bad()); // a null %s text: nothing more is written
    EXPECT_EQ(os.str(), "a");
}

TEST(FormatTest, Escapes)
{
    const struct { const char *format, *out, *err; } rows[] = {
        {"\\a\\b\\f\\n\\r\\t\\v|\\\"\\\\\\c", "\a\b\f\n\r\t\v|\"\\c", ""},
        {"\\x41|\\xfFf|\\x1234", "65|4095|2914", ""}, // hexadecimal, written as a number
        {"\\0101|\\0|\\08|\\01234", "65|0|08|834", ""}, // octal likewise
        {"a\\xg", "a0g", "missing hexadecimal number in escape\n"},
        {"a\\qb\\1", "aqb1", "\\q: invalid escape\n\\1: invalid escape\n"},
        {"\\%d", "%d", "\\%: invalid escape\n"},
        {"ab\\", "ab\\", ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.format);
        // The same escapes in StrFormat's format, in a %b argument and in StrFmt's format.
        for (const Formatted& f : {format_text(row.format, {}), format_text("%b", {row.format})}) {
            EXPECT_EQ(f.out, row.out);
            EXPECT_EQ(f.err, row.err);
        }
        std::ostringstream os;
        testutil::StderrCapture capture;
        StrFmt(os, row.format);
        EXPECT_EQ(capture.Release(), row.err);
        EXPECT_EQ(os.str(), row.out);
    }
}

TEST(FormatDeathTest, InvalidDirectiveAborts)
{
    std::ostringstream os;
    EXPECT_DEATH(StrFmt(os, "ab%k", 1L),
                 "%k: invalid directive\n.*" +
                     testutil::AssertionPattern("text/strfmt.cpp", "int StrFmt(std::ostream&, const char*, ...)", "0"));
    EXPECT_DEATH(StrFmt(os, "%5"), "%: invalid directive");
    char arg[] = "1";
    char* argv[] = {arg};
    EXPECT_DEATH(
        StrFormat(os, "%5.2k", 1, argv),
        "%k: invalid directive\n.*" +
            testutil::AssertionPattern("text/format.cpp",
                                       "void print_direc(std::ostream&, const char*, size_t, int, int, int, const char*)",
                                       "0"));
    EXPECT_DEATH(StrFormat(os, "abc%", 1, argv), "%: invalid directive");
}

// Random directives through both formatters: typed arguments and their text must print alike, with the
// state each directive leaves on its stream (carried over runs of 20 directives).
TEST(FormatTest, TypedAndTextArgumentsAgree)
{
    std::mt19937 rng(20240611);
    auto pick = [&](const char* set) { return std::string(1, set[rng() % std::strlen(set)]); };
    testutil::StderrCapture capture;
    for (int run = 0; run < 150; ++run) {
        std::ostringstream by_type, by_text;
        for (int i = 0; i < 20; ++i) {
            // <%[flag][width][.precision][h|l|L]conversion>; width and precision: none, '*' or digits.
            std::string format = "<%" + pick("-+ #_");
            std::vector<int> stars;
            for (const char* part : {"", "."}) {
                const unsigned kind = rng() % 3;
                if (kind == 1)
                    stars.push_back(static_cast<int>(rng() % 25) - 2);
                if (kind != 0)
                    format += part + (kind == 1 ? std::string("*") : std::to_string(rng() % 25));
            }
            const std::string conv = pick("diouxXfeEgGcs");
            format += (rng() % 4 == 0 ? pick("hlL") : "") + conv + ">";
            format.erase(std::remove(format.begin(), format.end(), '_'), format.end());

            const long l = static_cast<long>(static_cast<int32_t>(rng())) >> (rng() % 31);
            std::ostringstream d;
            d.precision(17);
            d << std::ldexp(static_cast<double>(rng()) - 2e9, static_cast<int>(rng() % 80) - 40);
            const char c = static_cast<char>('!' + rng() % 90);
            const std::string s(rng() % 12, pick("ab c")[0]);
            const bool integer = conv.find_first_of("diouxX") == 0;
            std::vector<std::string> texts;
            for (int star : stars)
                texts.push_back(std::to_string(star));
            texts.push_back(integer       ? std::to_string(l)
                            : conv == "c" ? c + std::string("junk")
                            : conv == "s" ? s : d.str());

            const char* f = format.c_str();
            auto typed_with = [&](auto value) {
                if (stars.empty())
                    return StrFmt(by_type, f, value);
                if (stars.size() == 1)
                    return StrFmt(by_type, f, stars[0], value);
                return StrFmt(by_type, f, stars[0], stars[1], value);
            };
            const int ret = integer       ? typed_with(l)
                            : conv == "c" ? typed_with(static_cast<int>(c))
                            : conv == "s" ? typed_with(s.c_str())
                                          : typed_with(std::stod(d.str()));
            EXPECT_EQ(ret, 1);
            std::vector<char*> argv;
            for (std::string& t : texts)
                argv.push_back(&t[0]);
            EXPECT_EQ(StrFormat(by_text, f, static_cast<int>(argv.size()), argv.data()), static_cast<int>(argv.size()));
            ASSERT_EQ(by_type.str(), by_text.str()) << format;
            ASSERT_EQ(by_type.flags(), by_text.flags()) << format;
            ASSERT_EQ(by_type.fill(), by_text.fill()) << format;
        }
    }
    EXPECT_EQ(capture.Release(), "");
}
