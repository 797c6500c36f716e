// Set: sizes and growth, algebra across sizes, get's rule, the text syntax, the iterator.
#include <tevbase/set.h>

#include <gtest/gtest.h>
#include <support/testutil.h>

#include <algorithm>
#include <random>
#include <set>
#include <string>
#include <tuple>
#include <vector>

namespace {

using Members = std::vector<unsigned>;

Members MembersOf(const Set& s)
{
    Members out;
    Setiterator it(s);
    for (int i; (i = it()) >= 0;)
        out.push_back(static_cast<unsigned>(i));
    return out;
}

// An owned set of `bits` capacity (rounded down to words) holding the members.
Set Make(unsigned bits, const Members& members)
{
    Set s(bits);
    for (unsigned m : members)
        s.add(m);
    return s;
}

// from..to without the members of `gone`.
Members Range(unsigned from, unsigned to, const std::set<unsigned>& gone = {})
{
    Members out;
    for (unsigned i = from; i <= to; ++i)
        if (gone.count(i) == 0)
            out.push_back(i);
    return out;
}

} // namespace

TEST(SetTest, SizesGetIteratorAndCallerStorage)
{
    Set s(64);
    s.add(100); // grows to exactly the word of the new member
    s.add(-1);  // not a member
    s.remove(5000);
    EXPECT_TRUE(s.nwords() == 4 && Set(40).nwords() == 1 && s.max() == 101 && Set().max() == 0);
    // get looks only at the indices below the word count (deliberate): two words list 0 and 1 but
    // not 40, and still return 3.
    int out[4] = {-7, -7, -7, -7};
    EXPECT_TRUE(Make(64, {0, 1, 40}).get(out) == 3 && out[0] == 0 && out[1] == 1 && out[2] == -7);
    const int a[] = {3, -1, 64, 3};
    EXPECT_EQ(MembersOf(Set(4, a)), (Members{3, 64}));
    EXPECT_EQ(MembersOf(Set(1, 5, 9, -1)), (Members{1, 5, 9}));

    const Set members = Make(0, {0, 31, 200});
    Setiterator it(members);
    EXPECT_EQ(*++it, 31);
    EXPECT_TRUE(it() == 31 && it() == 200 && it() == -1 && it() == -1);
    it.Reset();
    EXPECT_EQ(it(), 0);
    // Caller's storage: zeroed, never grown.
    uint32_t buf[2] = {~0u, ~0u}, other[2];
    {
        Set f(2, buf); // zeroed
        f.add(33);
        f.bumpsize(1000);
        f.add("-63"); // the complement stays within the caller's 64 bits
        Set copy(2, other, f);
        EXPECT_EQ(f.nwords(), 2u);
    }
    EXPECT_TRUE(buf[0] == ~0u && buf[1] == 0x7FFFFFFDu && other[1] == buf[1]); // the words stay the caller's
}

// Random pairs of sets of 0 to 4 words against std::set. The algebra keeps this set's words for -=
// and otherwise takes the larger count; == and && go by members; <= looks only at the first of this
// set's extra words (deliberate).
TEST(SetTest, AlgebraAndComparisonsAcrossSizes)
{
    std::mt19937 rng(3);
    for (int i = 0; i < 3000; ++i) {
        unsigned words[2];
        std::set<unsigned> m[2];
        Set s[2];
        for (int j = 0; j < 2; ++j) {
            words[j] = rng() % 5;
            s[j] = Set(32 * words[j]);
            for (unsigned k = words[j] != 0 ? rng() % 6 : 0; k > 0; --k) {
                const unsigned v = rng() % (32 * words[j]);
                s[j].add(v), m[j].insert(v);
            }
        }
        SCOPED_TRACE(::testing::PrintToString(m[0]) + " " + ::testing::PrintToString(m[1]));
        for (char op : {'|', '&', '-', '^'}) {
            Set x(s[0]);
            (op == '|' ? x |= s[1] : op == '&' ? x &= s[1] : op == '-' ? x -= s[1] : x ^= s[1]);
            Members want;
            for (unsigned v = 0; v < 160; ++v) {
                const bool a = m[0].count(v), b = m[1].count(v);
                if (op == '|' ? a || b : op == '&' ? a && b : op == '-' ? a && !b : a != b)
                    want.push_back(v);
            }
            EXPECT_EQ(MembersOf(x), want) << op;
            EXPECT_EQ(x.nwords(), op == '-' ? words[0] : std::max(words[0], words[1])) << op;
        }
        bool subset = true, share = false;
        for (unsigned v : m[0])
            subset &= m[1].count(v) || v >= 32 * (words[1] + 1), share |= m[1].count(v) != 0;
        EXPECT_TRUE((s[0] == s[1]) == (m[0] == m[1]) && (s[1] == s[0]) == (m[0] == m[1]));
        EXPECT_EQ(s[0] <= s[1], subset);
        EXPECT_EQ(s[0] && s[1], share);
    }
    EXPECT_EQ(MembersOf(~Make(32, {0, 31})), Range(1, 30));
}

// Capacity and members before, the text; members and words after, and the token a syntax error is near.
TEST(SetTest, TextSyntax)
{
    const std::tuple<unsigned, Members, const char*, Members, unsigned, const char*> rows[] = {
        {0, {}, "1,3,5-7", {1, 3, 5, 6, 7}, 1, ""}, {0, {}, " 1 ,\t2 , 3 ", {1, 2, 3}, 1, ""},
        {0, {}, "7-5", {}, 0, ""},                  {0, {}, "30-33", {30, 31, 32, 33}, 2, ""},
        {0, {}, "4-", {}, 0, ""},                   {0, {}, "4-,5", {5}, 1, ""},
        {0, {}, "1 2", {2}, 1, ""}, // commas separate members
        {0, {}, "-0-3", Range(4, 31), 1, ""},
        {32, {1}, "-2", Range(0, 31, {1, 2}), 1, ""}, // the members from before are complemented too
        {64, {5}, "-", Range(0, 63, {5}), 2, ""},
        {64, {7, 40}, "1 x", {7, 40}, 2, "x"},      {64, {7, 40}, "--1", {7, 40}, 2, "-"},
        {64, {7, 40}, "1-3-5", {7, 40}, 2, "-"},    {64, {7, 40}, "-1,2,y", {7, 40}, 2, "y"},
        {64, {7, 40}, "1\n", {7, 40}, 2, "\n"},     {64, {7, 40}, "2147483648", {7, 40}, 2, "2147483648"},
    };
    for (const auto& [bits, before, text, after, words, near] : rows) {
        Set s = Make(bits, before);
        testutil::StderrCapture err;
        s.add(text);
        const std::string error = std::string("Set::add(const char*): syntax error near \"") + near + "\"\n";
        EXPECT_EQ(err.Release(), *near ? error : "") << text;
        EXPECT_EQ(MembersOf(s), after) << text;
        EXPECT_EQ(s.nwords(), words) << text;
    }
}

TEST(SetDeathTest, SizeMismatchesAndFixedOverflowAssert)
{
    auto report = [](const char* signature, const char* expr) {
        return testutil::AssertionPattern("containers/set.cpp", signature, expr);
    };
    uint32_t buf[3];
    const Set two(64);
    EXPECT_DEATH(Set(3, buf, two), report("Set::Set(unsigned int, uint32_t*, const Set&)", "n == s.num"));
    Set fixed(3, buf);
    EXPECT_DEATH(fixed = two, report("Set& Set::operator=(const Set&)", "num == s.num"));
    EXPECT_DEATH(fixed.add(96), report("void Set::add(unsigned int)", "i / 32 < num"));
}
