// C string routines: compare rules, fixed-field edges, copies and writers within sizes, tokeniser
// state, column order, text buffer growth.
#include <tevbase/cstr.h>

#include <gtest/gtest.h>

#include <ctype.h>

#include <cstring>
#include <memory>
#include <string>

// An exact-size heap copy of a literal without its NUL: reading past it trips AddressSanitizer.
template <std::size_t N> static std::unique_ptr<char[]> Exact(const char (&s)[N])
{
    std::unique_ptr<char[]> p(new char[N - 1]);
    std::memcpy(p.get(), s, N - 1);
    return p;
}

// Fixed-field rows pass s on past slen: a match running off the field would be found.
TEST(CstrTest, ComparesAndSearchesKeepToTheirRules)
{
    const int rows[][2] = { // what a call returned, what it must return
        {str_cmp(nullptr, nullptr), 0}, {str_cmp(nullptr, ""), -1}, {str_cmp("", nullptr), 1},
        {str_ncmp(nullptr, "a", 0), -1}, {str_icmp("abc", "ABD"), 'C' - 'D'}, {str_icmp("Z", "a"), 'Z' - 'A'},
        {str_icmp("a1", "A2"), '1' - '2'}, {str_icmp("a_", "a^"), '_' - '^'}, {str_icmp("a", "["), 'a' - '['},
        {str_icmp("x\x80", "X\xff"), 0x80 - 0xff}, {str_icmp("", "x"), -'x'}, {str_icmp("abc", "AB"), 'c'},
        {str_nicmp("a", "b", -3), 0}, {str_nicmp("abcd", "ABCE", 3), 0}, {str_nicmp("abcd", "ABCE", 4), -1},
        {str_nicmp("ab", "AbC", 5), -'C'}, {str_nicmp("\xc0", "z", 1), 0xc0 - 'z'},
        {str_index("hello", 5, Exact("lo").get(), 2), 4}, {str_index("hello", 4, Exact("lo").get(), 2), 0},
        {str_index("xxab", 4, Exact("abc").get(), 3), 0}, {str_index("a\0b", 3, Exact("b").get(), 1), 3},
        {str_index("abc", 3, Exact("").get(), 0), 1}, {str_index("", 0, Exact("").get(), 0), 0},
        {str_iindex("xyAb", 4, Exact("aB").get(), 2), 3}, {str_iindex("xxAB", 4, Exact("abc").get(), 3), 0},
        {str_iindex("a[", 2, Exact("{").get(), 1), 0}, {str_ncont(3, "hello", 5, Exact("ll").get(), 2), 1},
        {str_ncont(4, "hello", 4, Exact("lo").get(), 2), 0}, {str_ncont(3, "ab", 2, Exact("b").get(), 1), 0},
        {str_ncont(9, "ab", 2, Exact("").get(), 0), 1}, {str_nicont(1, "Ab", 2, Exact("aB").get(), 2), 1},
        {str_nicont(2, "xA", 2, Exact("ab").get(), 2), 0}, {str_indx("hello", ""), 1}, {str_indx("", ""), 0},
        {str_iindx("abAB", "abc"), 0}, {str_cont(4, "hello", "lox"), 0}, {str_icont(5, "hellO", "o"), 1},
        {str_length("ab  ", 4), 2}, {str_length("    ", 4), 0}, {str_length("ab", -3), -3}, {str_length("ab\t", 3), 3},
    };
    for (const auto& r : rows)
        EXPECT_EQ(r[0], r[1]) << "row " << &r - rows;
}

// Each writer gets `init` (with its NUL for lcpy and lcat), '#' up to n bytes and a '!' guard behind.
TEST(CstrTest, WritersStayWithinTheirSizes)
{
    // op: 'c' lcpy, 'a' lcat (a = size), 's' substr (a = pos, b = len), 'p' pad (a = n, b = pad char),
    // 'l' / 'r' shift by a.
    const struct { char op; const char *init, *src; int a, b, n; const char* want; } rows[] = {
        {'c', "", "abcdef", 4, 0, 4, "abc"}, {'c', "zz", "ab", 1, 0, 3, ""}, {'c', "zz", "ab", 0, 0, 3, "zz"},
        {'a', "ab", "cdef", 5, 0, 5, "abcd"}, {'a', "ab", "c", 4, 0, 4, "abc"}, {'a', "abc", "d", 4, 0, 4, "abc"},
        {'a', "abcdef", "g", 3, 0, 7, "abcdef"}, {'a', "ab", nullptr, 8, 0, 8, "ab"}, // size below strlen + 1
        {'s', "", "abcdef", 2, 3, 5, "bcd  "}, {'s', "", "ab", 2, 3, 4, "b   "}, {'p', "", "abc", 5, '*', 6, "abc***"},
        {'p', "", "abcdef", 2, '.', 4, "ab.."}, {'p', "", nullptr, 3, '-', 2, "--"}, {'r', "abc", "", 2, 0, 3, "  a"},
        {'l', "abcde", "", 2, 0, 5, "cde  "}, {'l', "abcde", "", 7, 0, 5, "     "},
    };
    for (const auto& r : rows) {
        std::string dst = std::string(r.init, std::strlen(r.init) + (r.op == 'c' || r.op == 'a'));
        dst.resize(r.n, '#');
        dst += '!';
        switch (r.op) {
        case 'c': EXPECT_EQ(str_lcpy(&dst[0], r.src, r.a), &dst[0]); break;
        case 'a': EXPECT_EQ(str_lcat(&dst[0], r.src, r.a), &dst[0]); break;
        case 's': str_substr(r.src, r.a, r.b, &dst[0], r.n); break;
        case 'p': str_pad(r.src, r.a, static_cast<char>(r.b), r.n, &dst[0]); break;
        case 'l': str_lshft(&dst[0], r.n, r.a); break;
        case 'r': str_rshft(&dst[0], r.n, r.a); break;
        }
        const std::string got = r.op == 'c' || r.op == 'a' ? dst.c_str() : dst.substr(0, r.n);
        EXPECT_EQ(got + dst.substr(r.n), std::string(r.want) + "!") << "row " << &r - rows;
    }
    char buf[8] = "xxxxxxx";
    EXPECT_STREQ(str_ncat(str_ncpy(buf, "abcdef", 3), "cdef", 2), "abccd");
    EXPECT_STREQ(str_cat(str_ncpy(buf, nullptr, 3), nullptr), "");
    const int nine = 9, two = 2;
    toupper_(std::strcpy(buf, "AbC\xc4z"), &nine, 4); // the first min(*len, hidden length) only
    tolower_(buf, &two, 5);
    EXPECT_STREQ(buf, "abC\xc4z"); // a high byte stays as it is
}

TEST(CstrTest, TokLeavesItsSlotJustBehindEachToken)
{
    char text[] = "  ab \tcd";
    char* slot = nullptr;
    EXPECT_EQ(str_Tok(&slot, text, nullptr), nullptr);
    EXPECT_EQ(str_Tok(&slot, nullptr, isspace), text + 2);
    EXPECT_EQ(slot, text + 5); // behind the NUL written over ' ', on the '\t'
    EXPECT_EQ(str_Tok(&slot, nullptr, isspace), text + 6);
    EXPECT_EQ(slot, text + 8); // a token ending the text leaves the slot at its NUL
    EXPECT_EQ(str_Tok(&slot, nullptr, isspace), nullptr);
    EXPECT_EQ(std::memcmp(text, "  ab\0\tcd", sizeof text), 0);

    char line[] = "  a bb ";
    char* out[4] = {line, line, line, line};
    EXPECT_EQ(str_split(line, isspace, out), 2);
    EXPECT_EQ(std::string(out[0]) + "," + out[1] + (out[2] ? "" : ",null"), "a,bb,null");
    const char* s = "ab1c\xe9";
    EXPECT_EQ(str_FindC(s, [](int c) { return c == 0xe9 ? 1 : 0; }), s + 4); // pred sees unsigned bytes
}

static std::string printed;

TEST(CstrTest, ColumnsRunDownwardsRowByRow)
{
    int items[] = {7, 6, 5, 4, 3};
    const auto print = [](const void* p) { printed += std::to_string(*static_cast<const int*>(p)) + " "; };
    const auto newline = [] { printed += "|"; };
    for (int ncols : {0, 2, 5})
        str_fmt_mul_cols(items, 5, sizeof(int), nullptr, ncols, print, newline);
    const auto ascending = [](const void* a, const void* b) {
        return *static_cast<const int*>(a) - *static_cast<const int*>(b);
    };
    str_fmt_mul_cols(items, 5, sizeof(int), ascending, 2, print, newline);
    EXPECT_EQ(printed, "7 4 |6 3 |5 |7 6 5 4 3 |3 6 |4 7 |5 |");
}

TEST(CstrTest, TextBufferGrowsWhileSizeIsAtMostUsedPlusLength)
{
    str_arr_t a;
    str_arr_init(&a);
    std::string model;
    for (const auto& step : {std::pair<int, int>{127, 128}, {1, 256}, {127, 256}, {301, 640}}) {
        model += std::string(step.first, static_cast<char>('a' + model.size() % 26));
        EXPECT_EQ(str_arr_cat(&a, model.c_str() + model.size() - step.first), a.buf);
        EXPECT_EQ(a.size, step.second) << model.size();
        EXPECT_EQ(str_arr_str(&a), model);
    }
    str_arr_cat(&a, a.buf + 100); // our own text, which the growth moves
    EXPECT_EQ(str_arr_str(&a), model + model.substr(100));
    EXPECT_STREQ(str_arr_cpy(&a, "xy"), "xy");
    EXPECT_EQ(a.size, 1024);
    str_arr_delete(&a);
}
