// Percent-encoding, file-name completion and matching, gcd, rounding, time-stamp names.
#include <tevbase/textutil.h>

#include <gtest/gtest.h>

#include <cstring>
#include <ctime>
#include <random>
#include <string>

TEST(UrlTest, EncodeAndDecode)
{
    EXPECT_EQ(UrlEncode("a b/c"), "a%20b%2fc");
    EXPECT_EQ(UrlEncode("*-._Az09+\x01\xff"), "*-._Az09%2b%01%ff");
    const struct { const char* in; std::string out; } dec[] = {
        {"a%20b", "a b"}, {"%2F%2f", "//"}, {"a+b", "a+b"},
        {"100%", "100%"}, {"%4", "%4"}, {"x%4", "x%4"},         // fewer than two characters after '%'
        {"%4z", "\x04"}, {"%zz", "\x02"}, {"%g1abc", "\x02" "abc"}, // what sscanf reads, or 2 for nothing
        {"% 9", "\x09"}, {"%-1", "\xff"}, {"%%41", "\x02" "1"},     // it skips blanks and takes a sign
        {"ab%00cd", "ab"},                                           // a zero byte ends the text
    };
    for (const auto& r : dec)
        EXPECT_EQ(std::string(UrlDecode(r.in).Text()), r.out) << r.in;
    EXPECT_TRUE(UrlEncode(nullptr).IsNull());
    EXPECT_TRUE(UrlDecode(nullptr).IsNull());

    std::mt19937 rng(5);
    for (int round = 0; round < 200; ++round) {
        std::string s;
        for (int i = rng() % 20; i > 0; --i)
            s += static_cast<char>(1 + rng() % 255);
        EXPECT_EQ(std::string(UrlDecode(UrlEncode(s.c_str()).Chars()).Text()), s);
    }
}

TEST(CfnameTest, CompletesOrSplitsTheLastComponent)
{
    const struct { const char *name, *ext, *name_after, *base; bool returns_base; } rows[] = {
        {"dir.d/file", ".c", "dir.d/file.c", "dir.d/file", false}, {"x.txt", ".c", "x.txt", "x", true},
        {"a.b.c", ".c", "a.b.c", "a.b", true}, {"dir/.rc", ".c", "dir/.rc", "dir/", true},
        {"plain", nullptr, "plain", "plain", false},
    };
    for (const auto& r : rows) {
        char name[64], base[64] = "untouched";
        std::strcpy(name, r.name);
        char* got = cfname(name, base, r.ext);
        EXPECT_STREQ(name, r.name_after) << r.name;
        EXPECT_STREQ(base, r.base) << r.name;
        EXPECT_EQ(got, r.returns_base ? base : name) << r.name;
    }
    char name[16] = "in.place";
    EXPECT_STREQ(cfname(name, name, ".x"), "in"); // base may be the name itself
    EXPECT_EQ(cfname(name, nullptr, ".h"), name);
    EXPECT_STREQ(name, "in.h");
}

TEST(FnameMatchTest, WholeNameWildcards)
{
    const struct { const char *pattern, *name; int result; } rows[] = {
        {"*.c", "a.c", 0}, {"?.c", "ab.c", -1}, {"*", "", 0}, {"", "", 0}, {"a", "", -1}, {"", "a", -1},
        {"a*b", "axxb", 0}, {"a*b", "axxbc", -1}, {"*b*", "abc", 0}, {"a?c", "ac", -1}, {"**", "x", 0},
        {"A", "a", -1}, {"*a*a*b", "aaaaaaaaab", 0}, {"*a*a*b", "aaaaaaaaaa", -1}, {"x*", "x", 0},
    };
    for (const auto& r : rows)
        EXPECT_EQ(fname_match(r.pattern, r.name), r.result) << r.pattern << " ~ " << r.name;
    // Many stars against a long mismatch: no exponential backtracking.
    const std::string stars(40, '*'), name(5000, 'a');
    EXPECT_EQ(fname_match((stars + "b").c_str(), name.c_str()), -1);
}

TEST(NumberUtilTest, GcdAndRound)
{
    const int gcds[][3] = {{12, 18, 6}, {18, 12, 6}, {0, 7, 7}, {-3, 9, 9}, {7, 7, 7}, {5, -3, -3},
                           {2147483646, 1073741823, 1073741823}};
    for (const auto& r : gcds)
        EXPECT_EQ(gcd(r[0], r[1]), r[2]) << r[0] << ", " << r[1];
    const struct { double x; int r; } rounds[] = {{2.5, 3}, {-2.5, -3}, {-0.5, -1}, {0.49, 0}, {-0.49, 0}};
    for (const auto& r : rounds)
        EXPECT_EQ(mth_round(r.x), r.r) << r.x;
}

TEST(GetunameTest, LocalTimeDigits)
{
    // Year count since 1900 (three digits) and day of the year, from the time before or after the call.
    auto day = [](std::time_t t) {
        const std::tm* tm = std::localtime(&t);
        return std::to_string(tm->tm_year * 1000 + tm->tm_yday);
    };
    const std::time_t before = std::time(nullptr);
    const std::string name = getuname();
    const std::time_t after = std::time(nullptr);
    EXPECT_EQ(name.size(), 12u);
    EXPECT_TRUE(name.substr(0, 6) == day(before) || name.substr(0, 6) == day(after)) << name;
    EXPECT_EQ(getuname(), getuname()); // one static buffer
}
