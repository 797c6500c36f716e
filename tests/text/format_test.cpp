// StrFmt and StrFormat: directives, escapes, the stream state they leave, diagnostics.
#include <tevbase/format.h>

#include <support/testutil.h>

#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <random>
#include <sstream>
#include <string>
#include <vector>

// StrFormat over text arguments: what it wrote, '#', what it returned, '#', what it reported.
static std::string format_text(const char* format, std::vector<const char*> args)
{
    std::ostringstream os;
    testutil::StderrCapture capture;
    const int ret = StrFormat(os, format, static_cast<int>(args.size()), const_cast<char**>(args.data()));
    return os.str() + "#" + std::to_string(ret) + "#" + capture.Release();
}

// StrFmt onto a fresh stream: what it wrote, '#' and what it returned.
template <class... Args> static std::string typed(const char* format, Args... args)
{
    std::ostringstream os;
    const int ret = StrFmt(os, format, args...);
    return os.str() + "#" + std::to_string(ret);
}

// The directives through text arguments; TypedAndTextArgumentsAgree carries them over to StrFmt.
TEST(FormatTest, DirectivesAndTextArguments)
{
    const struct { const char* f; std::vector<const char*> args; std::string out; int ret; const char* err; }
        rows[] = {
        {"%5d|%-5d|%-6.3d|%-.3d", {"42", "42", "7", "7"}, "   42|42   |700   |700", 4, ""},
        {"%6.3d|%2.4d|%05d|%.3d", {"12345", "7", "7", "-7"}, "   12345|0007|    7|0-7", 4, ""}, // blanks ignore length
        {"%+d|% d|%#x|%ld %hd %Lf", {"5", "5", "255", "1", "2", "0.5"}, "5|5|ff|1 2 0.500000", 6, ""},
        {"%x %d|%X %o %d|%x", {"255", "255", "255", "8", "9", "255"}, "ff ff|FF 10 11|ff", 6, ""}, // base persists
        {"%f %.2f %8.3f|%-8.1f|", {"1.5", "2", "3.14159", "1.25"}, "1.500000 2.00    3.142|1.2     |", 4, ""},
        {"%.2E %.2e %G %g", {"1234.5", "0.5", "2e20", "1e-5"}, "1.23E+03 5.00e-01 2E+20 1e-05", 4, ""},
        {"[%5s][%-5s][%.2s][%2s]", {"ab", "ab", "abc", "abc"}, "[   ab][ab   ][ab][abc]", 4, ""},
        {"[%6.2s][%-6.2s][%6.4s][%2.4s]", {"abc", "abc", "ab", "abcdef"}, "[    ab][ab    ][  ab  ][abcd]", 4, ""},
        {"[%c%5c][%c]", {"xyz", "b", ""}, "[xb][]", 3, ""}, // the first character, no padding
        {"%s|%5s|%d", {nullptr, nullptr, nullptr}, "(nil)|(nil)|0", 3, ""},
        {"%s-%s\n[%3s][%2d][%c][%b]", {"a"}, "a-\n[   ][ 0][][]", 1, ""}, // missing arguments are "", widths stay
        // Text without a number is reported; trailing text is ignored; empty text is a silent 0.
        {"%d|%f|%d|%x|%.1f|%d|%f", {"abc", "x1", "12abc", "255 ", "2.25kg", "", ""}, "0|0.000000|12|ff|2.2|0|0.0", 7,
         "abc: expected a numeric value\nx1: expected a numeric value\n"},
        {"%d|%u", {"99999999999999999999", "-1"}, std::to_string(LONG_MAX) + "|" + std::to_string(ULONG_MAX), 2,
         "99999999999999999999: Numerical result out of range\n"},
        {"[%*.*s][%*d][%*d]", {"5", "2", "abc", "-3", "7", "w", "7"}, "[   ab][7][7]", 7, // a negative '*' is none
         "w: expected a numeric value\n"},
        {"%.d|100%%%b%%", {"5", "a\\tb\\q"}, "5|100%a\tbq%", 2, // a bare '.': the text behind is converted
         "d: expected a numeric value\n\\q: invalid escape\n"},
        // Escapes: numbers inserted as integers, bad ones reported; the same code serves %b arguments.
        {"\\a\\b\\f\\n\\r\\t\\v|\\\"\\\\\\c|ab\\", {}, "\a\b\f\n\r\t\v|\"\\c|ab\\", 0, ""},
        {"\\x41|\\xfFf|\\x1234|\\0101|\\0|\\08|\\01234", {}, "65|4095|2914|65|0|08|834", 0, ""},
        {"a\\xg|\\%d|\\q\\1", {}, "a0g|%d|q1", 0,
         "missing hexadecimal number in escape\n\\%: invalid escape\n\\q: invalid escape\n"
         "\\1: invalid escape\n"},
        {"%s", {"a", "b", "c"}, "a", 1, ""}, {"", {"a"}, "", 0, ""}, {nullptr, {}, "", -1, ""},
        {"[%000000000000000000000000000000000000005d]", {"7"}, "[    7]", 1, ""}, // beyond the local copy
    };
    for (const auto& r : rows)
        EXPECT_EQ(format_text(r.f, r.args), r.out + "#" + std::to_string(r.ret) + "#" + r.err);
}

TEST(StrFmtTest, CountsDirectivesAndLeavesTheirStateOnTheStream)
{
    const char* null_text = nullptr;
    EXPECT_EQ(typed("100%%|%b%b", "x\\ty", null_text), "100%|x\ty#3");
    EXPECT_EQ(typed("%*d|%.*s|%*.*d|%99999999999d|%.s|%.f", -4, 7L, -1, "ab", 6, 3, 7L, 7L, "abc", 2.5),
              "7|ab|   007|7||2#6"); // a negative '*' is none, a width beyond INT_MAX too
    EXPECT_EQ(typed(nullptr), "#-1");
    // The state stays: the '0' fill and precision, the base ("\x41" in octal too).
    EXPECT_EQ(typed("%.3d|%5.1f|%X|%d|%o|\\x41", 7L, 2.25, 255L, 255L, 8L), "007|002.2|FF|FF|10|101#5");
    // e replaces fixed; f adds fixed to scientific, printing as the stream prints both.
    std::ostringstream both;
    both.setf(std::ios::fixed | std::ios::scientific, std::ios::floatfield);
    both << 0.5;
    EXPECT_EQ(typed("%f|%e|%f", 0.5, 0.5, 0.5), "0.500000|5.000000e-01|" + both.str() + "#3");

    std::ostringstream os;
    EXPECT_EQ(StrFmt(os, "a%sb%d", null_text, 5L), 2);
    EXPECT_TRUE(os.bad()); // a null %s text: nothing more is written
    EXPECT_EQ(os.str(), "a");
}

TEST(FormatDeathTest, InvalidDirectiveAborts)
{
    const std::string strfmt =
        testutil::AssertionPattern("text/strfmt.cpp", "int StrFmt(std::ostream&, const char*, ...)", "0");
    const std::string format = testutil::AssertionPattern(
        "text/format.cpp", "void print_direc(std::ostream&, const char*, size_t, int, int, int, const char*)",
        "0");
    std::ostringstream os;
    char* argv[] = {const_cast<char*>("1")};
    EXPECT_DEATH(StrFmt(os, "ab%k", 1L), "%k: invalid directive\n.*" + strfmt);
    EXPECT_DEATH(StrFormat(os, "%5.2k", 1, argv), "%k: invalid directive\n.*" + format);
    EXPECT_DEATH(StrFmt(os, "%5"), "%: invalid directive");
    EXPECT_DEATH(StrFormat(os, "abc%", 1, argv), "%: invalid directive");
}

// Random directives through both formatters: typed arguments and their text must print alike, with the
// state each directive leaves on its stream (carried over runs of 20 directives).
TEST(FormatTest, TypedAndTextArgumentsAgree)
{
    std::mt19937 rng(20240611);
    auto pick = [&](const char* set) { return set[rng() % std::strlen(set)]; };
    auto number = [&] { return static_cast<int>(rng() % 25) - 2; };
    testutil::StderrCapture capture;
    for (int run = 0; run < 150; ++run) {
        std::ostringstream by_type, by_text;
        for (int i = 0; i < 20; ++i) {
            // <escape%[flag][width][.precision][h|l|L]conversion>: width and precision both '*' or digits.
            const char* escapes[] = {"", "\\t", "\\x4f", "\\017", "\\\\"};
            std::string format = std::string("<") + escapes[rng() % 5] + "%";
            format += std::string(rng() % 5 != 0, pick("-+ #"));
            const int width = number(), prec = number();
            const bool stars = rng() % 3 == 0;
            if (stars)
                format += "*.*";
            else
                format +=
                    (width >= 0 ? std::to_string(width) : "") + (prec >= 0 ? "." + std::to_string(prec) : "");
            const char conv = pick("diouxXfeEgGcs");
            format += std::string(rng() % 4 == 0, pick("hlL")) + conv + ">";

            const long l = static_cast<long>(static_cast<int32_t>(rng())) >> (rng() % 31);
            const std::string d = (rng() % 2 ? "-" : "") + std::to_string(rng()) + "e" + // read with strtod
                                  std::to_string(static_cast<int>(rng() % 80) - 45);
            const char c = static_cast<char>('!' + rng() % 90);
            const std::string s(rng() % 12, pick("ab c"));
            const bool integer = std::strchr("diouxX", conv) != nullptr;
            std::string w = std::to_string(width), p = std::to_string(prec);
            std::string text = integer ? std::to_string(l) : conv == 's' ? s : conv == 'c' ? c + s + "z" : d;

            const char* f = format.c_str();
            auto typed_with = [&](auto value) {
                stars ? StrFmt(by_type, f, width, prec, value) : StrFmt(by_type, f, value);
            };
            integer       ? typed_with(l)
            : conv == 'c' ? typed_with(+c)
            : conv == 's' ? typed_with(s.c_str())
                          : typed_with(std::stod(d));
            char* argv[] = {&w[0], &p[0], &text[0]};
            StrFormat(by_text, f, stars ? 3 : 1, stars ? argv : argv + 2);
            ASSERT_EQ(by_type.str(), by_text.str()) << format;
            ASSERT_EQ(by_type.flags(), by_text.flags()) << format;
            ASSERT_EQ(by_type.fill(), by_text.fill()) << format;
        }
    }
    EXPECT_EQ(capture.Release(), "");
}
