// Percent-encoding, file-name completion and matching, gcd, rounding, time-stamp names.
#include <tevbase/textutil.h>

#include <gtest/gtest.h>

#include <cstring>
#include <ctime>
#include <random>
#include <string>

TEST(UrlTest, EncodeAndDecode)
{
    EXPECT_EQ(UrlEncode("a b/*-._Az09+\x01\xff"), "a%20b%2f*-._Az09%2b%01%ff");
    const struct { const char* in; std::string out; } dec[] = {
        {"%2F%2f+", "//+"}, {"100%", "100%"}, {"%4", "%4"}, {"x%4", "x%4"}, // fewer than two characters after '%'
        {"%4z", "\x04"}, {"%zz", "\x02"}, {"%g1abc", "\x02" "abc"}, // what sscanf reads, or 2 for nothing
        {"% 9", "\x09"}, {"%-1", "\xff"}, {"%%41", "\x02" "1"},     // it skips blanks and takes a sign
        {"ab%00cd", "ab"},                                           // a zero byte ends the text
    };
    for (const auto& r : dec)
        EXPECT_EQ(std::string(UrlDecode(r.in).Text()), r.out) << r.in;
    EXPECT_TRUE(UrlEncode(nullptr).IsNull() && UrlDecode(nullptr).IsNull());
    std::mt19937 rng(5); // random bytes make the round trip
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
        char name[64], base[64];
        EXPECT_EQ(cfname(std::strcpy(name, r.name), base, r.ext), r.returns_base ? base : name) << r.name;
        EXPECT_EQ(std::string(name) + "|" + base, std::string(r.name_after) + "|" + r.base);
    }
}

// fname_match gives 0 for a match; gcd subtracts; mth_round rounds halves away from zero.
TEST(TextUtilTest, IntegerResults)
{
    const std::string stars(40, '*'), aaa(5000, 'a'); // a long mismatch: no exponential backtracking
    const int rows[][2] = { // what a call returned, what it must return
        {fname_match("*.c", "a.c"), 0}, {fname_match("?.c", "ab.c"), -1}, {fname_match("*", ""), 0},
        {fname_match("", ""), 0}, {fname_match("a", ""), -1}, {fname_match("", "a"), -1}, {fname_match("**", "x"), 0},
        {fname_match("a*b", "axxb"), 0}, {fname_match("a*b", "axxbc"), -1}, {fname_match("*b*", "abc"), 0},
        {fname_match("a?c", "ac"), -1}, {fname_match("A", "a"), -1}, {fname_match("x*", "x"), 0},
        {fname_match("*a*a*b", "aaaaaaaaab"), 0}, {fname_match("*a*a*b", "aaaaaaaaaa"), -1},
        {fname_match((stars + "b").c_str(), aaa.c_str()), -1}, {gcd(12, 18), 6}, {gcd(18, 12), 6}, {gcd(0, 7), 7},
        {gcd(-3, 9), 9}, {gcd(5, -3), -3}, {gcd(2147483646, 1073741823), 1073741823}, {mth_round(2.5), 3},
        {mth_round(-2.5), -3}, {mth_round(-0.5), -1}, {mth_round(0.49), 0}, {mth_round(-0.49), 0},
    };
    for (const auto& r : rows)
        EXPECT_EQ(r[0], r[1]) << "row " << &r - rows;
}

// Year count since 1900 (three digits) and day of the year, from the time before or after the call.
TEST(GetunameTest, LocalTimeDigits)
{
    const auto day = [](std::time_t t) {
        const std::tm* tm = std::localtime(&t);
        return std::to_string(tm->tm_year * 1000 + tm->tm_yday);
    };
    const std::time_t before = std::time(nullptr);
    const std::string name = getuname(), from = day(before), to = day(std::time(nullptr));
    EXPECT_TRUE(name.size() == 12 && (name.substr(0, 6) == from || name.substr(0, 6) == to)) << name;
    EXPECT_EQ(getuname(), getuname()); // one static buffer
}
