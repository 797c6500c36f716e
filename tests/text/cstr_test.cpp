// C string routines: compare rules, copies within sizes, fixed-field edges, tokeniser state, column
// order, text buffer growth.
#include <tevbase/cstr.h>

#include <gtest/gtest.h>

#include <ctype.h>

#include <algorithm>
#include <cstring>
#include <iterator>
#include <memory>
#include <string>

namespace {

// An exact-size heap copy of n bytes, no NUL added: any access past it trips AddressSanitizer.
std::unique_ptr<char[]> exact(const char* s, int n)
{
    std::unique_ptr<char[]> p(new char[std::max(n, 0)]);
    std::memcpy(p.get(), s, std::max(n, 0));
    return p;
}

// Each row: what a call returned, what it must return.
using Rows = int[][2];

void CheckRows(const int (*rows)[2], std::size_t n)
{
    for (std::size_t i = 0; i < n; ++i)
        EXPECT_EQ(rows[i][0], rows[i][1]) << "row " << i;
}

TEST(CstrTest, ComparesApplyNullRulesThenTheCaseRule)
{
    const Rows rows = {
        {str_cmp(nullptr, nullptr), 0}, {str_cmp(nullptr, ""), -1}, {str_cmp("", nullptr), 1},
        {str_ncmp(nullptr, "a", 0), -1}, {str_icmp("abc", "ABD"), 'C' - 'D'}, {str_icmp("Z", "a"), 'Z' - 'A'},
        {str_icmp("a1", "A2"), '1' - '2'}, {str_icmp("a_", "a^"), '_' - '^'}, {str_icmp("a", "["), 'a' - '['},
        {str_icmp("x\x80", "X\xff"), 0x80 - 0xff}, {str_icmp("", "x"), -'x'}, {str_icmp("abc", "AB"), 'c'},
        {str_nicmp("a", "b", -3), 0}, {str_nicmp("abcd", "ABCE", 3), 0}, {str_nicmp("abcd", "ABCE", 4), -1},
        {str_nicmp("ab", "AbC", 5), -'C'}, {str_nicmp("\xc0", "z", 1), 0xc0 - 'z'},
    };
    CheckRows(rows, std::size(rows));
}

TEST(CstrTest, CopiesStayWithinTheirSizes)
{
    const struct { bool cat; const char *dst, *src; int size; const char* want; } rows[] = {
        {false, "", "abcdef", 4, "abc"}, {false, "zz", "ab", 1, ""}, {false, "zz", "ab", 0, "zz"},
        {true, "ab", "cdef", 5, "abcd"}, {true, "ab", "c", 4, "abc"}, {true, "abc", "d", 4, "abc"},
        {true, "abcdef", "g", 3, "abcdef"}, {true, "ab", nullptr, 8, "ab"}, // size below strlen(dst) + 1
    };
    for (const auto& r : rows) {
        // max(size, strlen(dst) + 1) bytes exactly: a write past size trips AddressSanitizer.
        const int len = static_cast<int>(std::strlen(r.dst)) + 1;
        std::unique_ptr<char[]> dst(new char[std::max(r.size, len)]);
        std::memcpy(dst.get(), r.dst, len);
        EXPECT_EQ(r.cat ? str_lcat(dst.get(), r.src, r.size) : str_lcpy(dst.get(), r.src, r.size), dst.get());
        EXPECT_STREQ(dst.get(), r.want) << "row " << &r - rows;
    }
    char buf[8] = "xxxxxxx";
    EXPECT_STREQ(str_ncpy(buf, "abcdef", 3), "abc");
    EXPECT_STREQ(str_ncat(str_cat(str_cpy(buf, nullptr), nullptr), "cdef", 2), "cd");
    char* saved = str_nsave(nullptr, 5);
    EXPECT_EQ(saved[5], '\0'); // n + 1 bytes even for a null source
    str_free(saved);
}

TEST(CstrTest, FixedFieldSearchesKeepMatchesInsideTheField)
{
    using Search = int (*)(int pos, const char* s, int slen, const char* sub, int sublen);
    const Search index = [](int, const char* s, int n, const char* t, int m) { return str_index(s, n, t, m); };
    const Search iindex = [](int, const char* s, int n, const char* t, int m) { return str_iindex(s, n, t, m); };
    const struct { Search search; int pos; const char* s; int slen; const char* sub; int sublen, want; } rows[] = {
        {index, 0, "hello", 5, "ll", 2, 3}, {index, 0, "hello", 5, "lo", 2, 4}, {index, 0, "hello", 4, "lo", 2, 0},
        {index, 0, "xxab", 4, "abc", 3, 0}, {index, 0, "a\0b", 3, "b", 1, 3}, {index, 0, "abc", 3, "", 0, 1},
        {index, 0, "", 0, "", 0, 0}, {iindex, 0, "HeLLo", 5, "ll", 2, 3}, {iindex, 0, "xyAb", 4, "aB", 2, 3},
        {iindex, 0, "xxAB", 4, "abc", 3, 0}, {iindex, 0, "a[", 2, "{", 1, 0}, {str_ncont, 3, "hello", 5, "ll", 2, 1},
        {str_ncont, 2, "ab", 2, "b", 1, 1}, {str_ncont, 4, "hello", 4, "lo", 2, 0}, {str_ncont, 3, "ab", 2, "b", 1, 0},
        {str_ncont, 9, "ab", 2, "", 0, 1}, {str_nicont, 1, "Ab", 2, "aB", 2, 1}, {str_nicont, 2, "xA", 2, "ab", 2, 0},
    };
    for (const auto& r : rows) // s goes on past slen: a match running off the field would be found
        EXPECT_EQ(r.search(r.pos, r.s, r.slen, exact(r.sub, r.sublen).get(), r.sublen), r.want) << "row " << &r - rows;
    const Rows texts = {
        {str_indx("hello", ""), 1}, {str_indx("", ""), 0}, {str_iindx("HELLO", "lo"), 4},
        {str_iindx("abAB", "abc"), 0}, {str_cont(4, "hello", "lox"), 0}, {str_cont(9, "ab", ""), 1},
        {str_icont(5, "hellO", "o"), 1}, {str_length("ab  ", 4), 2}, {str_length("    ", 4), 0},
        {str_length("ab", -3), -3}, {str_length("ab\t", 3), 3},
    };
    CheckRows(texts, std::size(texts));
}

TEST(CstrTest, FieldWritersFillExactlyTheirLength)
{
    // op: 's' substr (a = pos, b = len), 'p' pad (a = n, b = pad char), 'l' / 'r' shift src by a.
    const struct { char op; const char* src; int a, b, dstlen; const char* want; } rows[] = {
        {'s', "abcdef", 2, 3, 5, "bcd  "}, {'s', "ab", 2, 3, 4, "b   "}, {'p', "abc", 5, '*', 6, "abc***"},
        {'p', "abcdef", 5, '*', 3, "abc"}, {'p', "abcdef", 2, '.', 4, "ab.."}, {'p', nullptr, 3, '-', 2, "--"},
        {'l', "abcde", 2, 0, 5, "cde  "}, {'l', "abcde", 7, 0, 5, "     "}, {'r', "abcde", 2, 0, 5, "  abc"},
    };
    for (const auto& r : rows) {
        std::string dst(r.dstlen, '#');
        dst += "!"; // neither a NUL nor anything past dstlen may be written
        switch (r.op) {
        case 's': str_substr(r.src, r.a, r.b, &dst[0], r.dstlen); break;
        case 'p': str_pad(r.src, r.a, static_cast<char>(r.b), r.dstlen, &dst[0]); break;
        case 'l': str_lshft(&dst.replace(0, r.dstlen, r.src)[0], r.dstlen, r.a); break;
        case 'r': str_rshft(&dst.replace(0, r.dstlen, r.src)[0], r.dstlen, r.a); break;
        }
        EXPECT_EQ(dst, std::string(r.want) + "!") << "row " << &r - rows;
    }
    char f[] = "AbC\xc4z";
    int len = 9;
    toupper_(f, &len, 4); // the first min(*len, hidden length) only; a high byte stays as it is
    EXPECT_STREQ(f, "ABC\xc4z");
    len = 2;
    tolower_(f, &len, 5);
    EXPECT_STREQ(f, "abC\xc4z");
}

TEST(CstrTest, TokLeavesItsSlotJustBehindEachToken)
{
    char text[] = "  ab \tcd";
    char* slot = nullptr;
    EXPECT_EQ(str_Tok(&slot, text, nullptr), nullptr);
    EXPECT_EQ(slot, text);
    EXPECT_EQ(str_Tok(&slot, nullptr, isspace), text + 2);
    EXPECT_EQ(slot, text + 5); // behind the NUL written over ' ', on the '\t'
    EXPECT_EQ(str_Tok(&slot, nullptr, isspace), text + 6);
    EXPECT_EQ(slot, text + 8); // a token ending the text leaves the slot at its NUL
    EXPECT_EQ(str_Tok(&slot, nullptr, isspace), nullptr);
    EXPECT_EQ(std::memcmp(text, "  ab\0\tcd", sizeof text), 0);

    char line[] = "  a bb ";
    char* out[4] = {line, line, line, line};
    EXPECT_EQ(str_split(line, isspace, out), 2);
    EXPECT_STREQ(out[0], "a");
    EXPECT_STREQ(out[1], "bb");
    EXPECT_EQ(out[2], nullptr);

    const char* s = "ab1c\xe9";
    EXPECT_EQ(str_FindCN(s, isdigit), s + 2);
    EXPECT_EQ(str_FindC("abc", isdigit), nullptr);
    EXPECT_EQ(str_FindC(s, [](int c) { return c == 0xe9 ? 1 : 0; }), s + 4); // pred sees unsigned bytes
}

std::string printed;

TEST(CstrTest, ColumnsRunDownwardsRowByRow)
{
    const auto print = [](const void* p) { printed += std::to_string(*static_cast<const int*>(p)) + " "; };
    const auto newline = [] { printed += "|"; };
    const auto ascending = [](const void* a, const void* b) {
        return *static_cast<const int*>(a) - *static_cast<const int*>(b);
    };
    const struct { int n, ncols; bool sort; const char* want; } rows[] = {
        {5, 2, false, "7 4 |6 3 |5 |"}, {7, 3, false, "7 4 1 |6 3 |5 2 |"}, {3, 5, false, "7 6 5 |"},
        {4, 0, false, ""}, {5, 2, true, "3 6 |4 7 |5 |"},
    };
    for (const auto& r : rows) {
        int items[] = {7, 6, 5, 4, 3, 2, 1, 0};
        printed.clear();
        str_fmt_mul_cols(items, r.n, sizeof(int), r.sort ? +ascending : nullptr, r.ncols, print, newline);
        EXPECT_EQ(printed, r.want) << r.n << " in " << r.ncols;
    }
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

} // namespace
