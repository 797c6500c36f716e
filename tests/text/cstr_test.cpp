// C string routines: compare rules, copies within sizes, fixed-field edges, tokeniser state, column
// order, text buffer growth.
#include <tevbase/cstr.h>

#include <gtest/gtest.h>

#include <ctype.h>

#include <algorithm>
#include <cstring>
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

struct Case { const char* name; int got, want; };

TEST(CstrTest, ComparesApplyNullRulesThenTheCaseRule)
{
    static const char same[] = "same";
    const Case rows[] = {
        {"cmp null null", str_cmp(nullptr, nullptr), 0}, {"cmp null first", str_cmp(nullptr, ""), -1},
        {"cmp null second", str_cmp("", nullptr), 1}, {"ncmp null first", str_ncmp(nullptr, "a", 0), -1},
        {"ncmp n < 0", str_ncmp("a", "b", -1), 0}, {"icmp same", str_icmp(same, same), 0},
        {"icmp fold", str_icmp("abc", "ABD"), 'C' - 'D'}, {"icmp unclamped", str_icmp("Z", "a"), 'Z' - 'A'},
        {"icmp digits", str_icmp("a1", "A2"), '1' - '2'}, {"icmp punct", str_icmp("a_", "a^"), '_' - '^'},
        {"icmp letter/non", str_icmp("a", "["), 'a' - '['}, {"icmp high", str_icmp("\xe9", "a"), 0xe9 - 'a'},
        {"icmp highs", str_icmp("x\x80", "X\xff"), 0x80 - 0xff}, {"icmp empty", str_icmp("", "x"), -'x'},
        {"icmp b ends", str_icmp("abc", "AB"), 'c'}, {"icmp equal", str_icmp("MiXeD", "mIxEd"), 0},
        {"nicmp null first", str_nicmp(nullptr, "x", 0), -1}, {"nicmp n < 0", str_nicmp("a", "b", -3), 0},
        {"nicmp n = 3", str_nicmp("abcd", "ABCE", 3), 0}, {"nicmp n = 4", str_nicmp("abcd", "ABCE", 4), -1},
        {"nicmp a ends", str_nicmp("ab", "AbC", 5), -'C'}, {"nicmp both end", str_nicmp("ab", "AB", 5), 0},
        {"nicmp high", str_nicmp("\xc0", "z", 1), 0xc0 - 'z'}, {"cmp high", str_cmp("\x90", "a") > 0, 1},
    };
    for (const Case& r : rows)
        EXPECT_EQ(r.got, r.want) << r.name;
}

TEST(CstrTest, CopiesStayWithinTheirSizes)
{
    struct Row { const char* name; bool cat; const char *dst, *src; int size; const char* want; };
    const Row rows[] = {
        {"lcpy cuts", false, "", "abcdef", 4, "abc"}, {"lcpy size 1", false, "zz", "ab", 1, ""},
        {"lcpy size 0", false, "zz", "ab", 0, "zz"}, {"lcpy null src", false, "zz", nullptr, 4, "zz"},
        {"lcat cuts", true, "ab", "cdef", 5, "abcd"}, {"lcat exact room", true, "ab", "c", 4, "abc"},
        {"lcat no room", true, "abc", "d", 4, "abc"},
        {"lcat size < len + 1", true, "abcdef", "g", 3, "abcdef"},
        {"lcat size 0", true, "ab", "c", 0, "ab"}, {"lcat null src", true, "ab", nullptr, 8, "ab"},
    };
    for (const Row& r : rows) {
        // max(size, strlen(dst) + 1) bytes exactly: a write past size trips AddressSanitizer.
        const int len = static_cast<int>(std::strlen(r.dst)) + 1;
        std::unique_ptr<char[]> dst(new char[std::max(r.size, len)]);
        std::memcpy(dst.get(), r.dst, len);
        char* got = r.cat ? str_lcat(dst.get(), r.src, r.size) : str_lcpy(dst.get(), r.src, r.size);
        EXPECT_EQ(got, dst.get()) << r.name;
        EXPECT_STREQ(dst.get(), r.want) << r.name;
    }

    char buf[8] = "xxxxxxx";
    EXPECT_STREQ(str_ncpy(buf, "abcdef", 3), "abc");
    EXPECT_STREQ(str_ncpy(buf, nullptr, 3), "");
    EXPECT_STREQ(str_cpy(buf, nullptr), "");
    EXPECT_EQ(str_cpy(nullptr, "a"), nullptr);
    EXPECT_STREQ(str_ncat(str_cat(str_cpy(buf, "ab"), nullptr), "cdef", 2), "abcd");
    EXPECT_EQ(str_len(nullptr), 0);
    char* saved[] = {str_save(nullptr), str_nsave("abcdef", 3), str_nsave("ab", 5), str_nsave(nullptr, 5)};
    EXPECT_STREQ(saved[0], "");
    EXPECT_STREQ(saved[1], "abc");
    EXPECT_STREQ(saved[2], "ab");
    EXPECT_STREQ(saved[3], "");
    EXPECT_EQ(saved[3][5], '\0'); // n + 1 bytes even for a null source
    for (char* p : saved)
        str_free(p);
}

TEST(CstrTest, FixedFieldSearchesKeepMatchesInsideTheField)
{
    // op: 'i' str_index, 'I' str_iindex, 'c' str_ncont, 'C' str_nicont (pos used by these two only).
    struct Row { const char* name; char op; int pos; const char* s; int slen; const char* sub; int sublen;
                 int want; };
    const Row rows[] = {
        {"index", 'i', 0, "hello", 5, "ll", 2, 3}, {"index at end", 'i', 0, "hello", 5, "lo", 2, 4},
        {"index off end", 'i', 0, "hello", 4, "lo", 2, 0}, {"index partial", 'i', 0, "xxab", 4, "abc", 3, 0},
        {"index NUL", 'i', 0, "a\0b", 3, "b", 1, 3}, {"index empty sub", 'i', 0, "abc", 3, "", 0, 1},
        {"index no field", 'i', 0, "", 0, "", 0, 0}, {"index long sub", 'i', 0, "ab", 2, "abc", 3, 0},
        {"iindex fold", 'I', 0, "HeLLo", 5, "ll", 2, 3}, {"iindex at end", 'I', 0, "xyAb", 4, "aB", 2, 3},
        {"iindex partial", 'I', 0, "xxAB", 4, "abc", 3, 0}, {"iindex punct", 'I', 0, "a[", 2, "{", 1, 0},
        {"iindex no field", 'I', 0, "", 0, "", 0, 0}, {"ncont", 'c', 3, "hello", 5, "ll", 2, 1},
        {"ncont last", 'c', 2, "ab", 2, "b", 1, 1}, {"ncont off end", 'c', 4, "hello", 4, "lo", 2, 0},
        {"ncont past field", 'c', 3, "ab", 2, "b", 1, 0}, {"ncont empty past", 'c', 9, "ab", 2, "", 0, 1},
        {"ncont sublen < 0", 'c', 1, "ab", 2, "a", -1, 0}, {"nicont fold", 'C', 1, "Ab", 2, "aB", 2, 1},
        {"nicont off end", 'C', 2, "xA", 2, "ab", 2, 0},
    };
    for (const Row& r : rows) {
        const auto s = exact(r.s, r.slen), sub = exact(r.sub, r.sublen);
        int got = 0;
        switch (r.op) {
        case 'i': got = str_index(s.get(), r.slen, sub.get(), r.sublen); break;
        case 'I': got = str_iindex(s.get(), r.slen, sub.get(), r.sublen); break;
        case 'c': got = str_ncont(r.pos, s.get(), r.slen, sub.get(), r.sublen); break;
        case 'C': got = str_nicont(r.pos, s.get(), r.slen, sub.get(), r.sublen); break;
        }
        EXPECT_EQ(got, r.want) << r.name;
    }

    const Case texts[] = {
        {"indx", str_indx("hello", "ll"), 3}, {"indx empty sub", str_indx("hello", ""), 1},
        {"indx both empty", str_indx("", ""), 0}, {"indx empty s", str_indx("", "x"), 0},
        {"iindx fold", str_iindx("HELLO", "lo"), 4}, {"iindx s runs out", str_iindx("abAB", "abc"), 0},
        {"cont", str_cont(2, "hello", "ell"), 1}, {"cont past NUL", str_cont(4, "hello", "lox"), 0},
        {"cont empty sub", str_cont(9, "ab", ""), 1}, {"icont fold", str_icont(1, "HeLLo", "hell"), 1},
        {"icont at end", str_icont(5, "hellO", "o"), 1}, {"length", str_length("ab  ", 4), 2},
        {"length blanks", str_length("    ", 4), 0}, {"length n 0", str_length("ab", 0), 0},
        {"length n < 0", str_length("ab", -3), -3}, {"length tab", str_length("ab\t", 3), 3},
    };
    for (const Case& t : texts)
        EXPECT_EQ(t.got, t.want) << t.name;
}

TEST(CstrTest, FieldWritersFillExactlyTheirLength)
{
    // op: 's' substr (a = pos, b = len), 'p' pad (a = n, b = pad char), 'l' / 'r' shift src by a.
    struct Row { const char* name; char op; const char* src; int a, b, dstlen; const char* want; };
    const Row rows[] = {
        {"substr", 's', "abcdef", 2, 3, 5, "bcd  "}, {"substr NUL", 's', "ab", 2, 3, 4, "b   "},
        {"substr len 0", 's', "abc", 1, 0, 3, "   "}, {"pad", 'p', "abc", 5, '*', 6, "abc***"},
        {"pad dstlen", 'p', "abcdef", 5, '*', 3, "abc"}, {"pad n", 'p', "abcdef", 2, '.', 4, "ab.."},
        {"pad null", 'p', nullptr, 3, '-', 2, "--"}, {"lshft 0", 'l', "abcde", 0, 0, 5, "abcde"},
        {"lshft 2", 'l', "abcde", 2, 0, 5, "cde  "}, {"lshft k = n", 'l', "abcde", 5, 0, 5, "     "},
        {"lshft k > n", 'l', "abcde", 7, 0, 5, "     "}, {"rshft 2", 'r', "abcde", 2, 0, 5, "  abc"},
        {"rshft 4", 'r', "abcde", 4, 0, 5, "    a"}, {"rshft k > n", 'r', "abcde", 9, 0, 5, "     "},
    };
    for (const Row& r : rows) {
        std::string dst(r.dstlen, '#');
        dst += "!"; // neither a NUL nor anything past dstlen may be written
        if (r.op == 'l' || r.op == 'r')
            dst.replace(0, r.dstlen, r.src);
        switch (r.op) {
        case 's': str_substr(r.src, r.a, r.b, &dst[0], r.dstlen); break;
        case 'p': str_pad(r.src, r.a, static_cast<char>(r.b), r.dstlen, &dst[0]); break;
        case 'l': str_lshft(&dst[0], r.dstlen, r.a); break;
        case 'r': str_rshft(&dst[0], r.dstlen, r.a); break;
        }
        EXPECT_EQ(dst, std::string(r.want) + "!") << r.name;
    }

    char f[] = "AbC\xc4z";
    int len = 3;
    toupper_(f, &len, 5);
    EXPECT_STREQ(f, "ABC\xc4z"); // the first *len characters only
    len = 9;
    tolower_(f, &len, 4); // the hidden length is the smaller; a high byte stays as it is
    EXPECT_STREQ(f, "abc\xc4z");
    len = 0;
    toupper_(f, &len, 5);
    EXPECT_STREQ(f, "abc\xc4z");
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

    char line[] = "  a bb ", blanks[] = " \t ";
    char* out[4] = {line, line, line, line};
    EXPECT_EQ(str_split(line, isspace, out), 2);
    EXPECT_STREQ(out[0], "a");
    EXPECT_STREQ(out[1], "bb");
    EXPECT_EQ(out[2], nullptr);
    EXPECT_EQ(str_split(blanks, isspace, out), 0);
    EXPECT_EQ(out[0], nullptr);

    const char* s = "ab1c\xe9";
    EXPECT_EQ(str_FindC(s, isdigit), s + 2);
    EXPECT_EQ(str_FindCN(s, isdigit), s + 2);
    EXPECT_EQ(str_FindC("", isdigit), nullptr);
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
    struct Row { const char* name; int n, ncols; bool sort; const char* want; };
    const Row rows[] = {
        {"5 in 2", 5, 2, false, "7 4 |6 3 |5 |"}, {"7 in 3", 7, 3, false, "7 4 1 |6 3 |5 2 |"},
        {"3 in 5", 3, 5, false, "7 6 5 |"}, {"3 in 1", 3, 1, false, "7 |6 |5 |"},
        {"none", 0, 3, false, ""}, {"0 columns", 4, 0, false, ""},
        {"-2 columns", 4, -2, false, ""}, {"sorted first", 5, 2, true, "3 6 |4 7 |5 |"},
    };
    for (const Row& r : rows) {
        int items[] = {7, 6, 5, 4, 3, 2, 1, 0};
        printed.clear();
        str_fmt_mul_cols(items, r.n, sizeof(int), r.sort ? +ascending : nullptr, r.ncols, print, newline);
        EXPECT_EQ(printed, r.want) << r.name;
    }
}

TEST(CstrTest, TextBufferGrowsWhileSizeIsAtMostUsedPlusLength)
{
    str_arr_t a;
    str_arr_init(&a);
    EXPECT_EQ(a.buf, nullptr);
    EXPECT_EQ(a.size, 0);
    EXPECT_STREQ(str_arr_cat(&a, nullptr), "");
    EXPECT_EQ(a.size, 128);

    std::string model;
    const struct { int add, size; } steps[] = {{127, 128}, {1, 256}, {127, 256}, {1, 384}, {300, 640}};
    for (const auto& step : steps) {
        const std::string piece(step.add, static_cast<char>('a' + model.size() % 26));
        model += piece;
        EXPECT_EQ(str_arr_cat(&a, piece.c_str()), a.buf);
        EXPECT_EQ(a.size, step.size) << model.size();
        EXPECT_EQ(a.end, a.buf + model.size());
        EXPECT_EQ(str_arr_str(&a), model);
    }
    str_arr_cat(&a, a.buf + 100); // our own text, which the growth moves
    model += model.substr(100);
    EXPECT_EQ(str_arr_str(&a), model);
    EXPECT_EQ(a.size, 1024);
    EXPECT_STREQ(str_arr_cpy(&a, "xy"), "xy");
    EXPECT_STREQ(str_arr_cpy(&a, nullptr), "xy"); // starts over, yet the old text stays in buf
    EXPECT_EQ(a.end, a.buf);
    EXPECT_EQ(a.size, 1024);
    str_arr_delete(&a);
}

} // namespace
