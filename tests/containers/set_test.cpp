// Set: sizes and growth, algebra across sizes, get's rule, the text syntax, the iterator.
#include <tevbase/set.h>

#include <gtest/gtest.h>
#include <support/testutil.h>

#include <set>
#include <string>
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

TEST(SetTest, SizesGrowthAndGet)
{
    Set s(64);
    EXPECT_EQ(s.nwords(), 2u);
    s.add(100);
    EXPECT_EQ(s.nwords(), 4u); // exactly the word of the new member
    EXPECT_EQ(Set(40).nwords(), 1u);
    s.add(0);
    s.add(-1); // not a member
    s.remove(5000);
    EXPECT_EQ(MembersOf(s), (Members{0, 100}));
    EXPECT_EQ(s.max(), 101u);
    EXPECT_EQ(Make(0, {0, 5}).max(), 6u);
    EXPECT_EQ(Set().max(), 0u);

    // get looks only at the indices below the word count (deliberate): two words list 0 and 1 but
    // not 40, and still return 3.
    int out[4] = {-7, -7, -7, -7};
    EXPECT_EQ(Make(64, {0, 1, 40}).get(out), 3u);
    EXPECT_EQ(std::vector<int>(out, out + 4), (std::vector<int>{0, 1, -7, -7}));

    const int a[] = {3, -1, 64, 3};
    EXPECT_EQ(MembersOf(Set(4, a)), (Members{3, 64}));
    EXPECT_EQ(MembersOf(Set(1, 5, 9, -1)), (Members{1, 5, 9}));
}

TEST(SetTest, CallerStorageIsZeroedAndNeverGrown)
{
    uint32_t buf[2] = {~0u, ~0u}, other[2];
    {
        Set f(2, buf);
        EXPECT_EQ(buf[0] | buf[1], 0u);
        f.add(33);
        EXPECT_EQ(buf[1], 2u); // member 33 is bit 1 of word 1
        f |= Make(0, {5, 200}); // the other's extra words are dropped
        f.bumpsize(1000);
        EXPECT_EQ(f.nwords(), 2u);
        f.add("-63"); // the complement stays within the caller's 64 bits
        EXPECT_EQ(MembersOf(f), Range(0, 62, {5, 33}));
        Set copy(2, other, f);
        copy = Make(64, {7});
        EXPECT_EQ(other[0], 1u << 7);
    }
    EXPECT_EQ(buf[1], 0x7FFFFFFDu); // the words stay the caller's

    Set owned(32);
    owned = Make(0, {1, 100}); // an owned set takes the other's size
    EXPECT_EQ(owned.nwords(), 4u);
    EXPECT_EQ(MembersOf(owned), (Members{1, 100}));
}

TEST(SetTest, AlgebraAcrossSizes)
{
    enum Op { kOr, kAnd, kMinus, kXor };
    const struct {
        const char* name;
        unsigned abits;
        Members a;
        Op op;
        unsigned bbits;
        Members b;
        Members result;
        unsigned words;
    } rows[] = {
        {"or grows to the other's size", 32, {1}, kOr, 128, {2, 100}, {1, 2, 100}, 4},
        {"and grows, new words zero", 32, {1, 2}, kAnd, 128, {2, 100}, {2}, 4},
        {"and clears words beyond the other's", 128, {1, 40, 100}, kAnd, 32, {1, 2}, {1}, 4},
        {"minus keeps this set's extra words", 96, {1, 40, 90}, kMinus, 64, {40, 1}, {90}, 3},
        {"minus ignores the other's extra words", 32, {1, 2}, kMinus, 96, {2, 90}, {1}, 1},
        {"xor grows to the other's size", 32, {1, 2}, kXor, 96, {2, 90}, {1, 90}, 3},
        {"xor keeps this set's extra words", 96, {1, 90}, kXor, 32, {1, 3}, {3, 90}, 3},
    };
    for (const auto& r : rows) {
        Set a = Make(r.abits, r.a);
        const Set b = Make(r.bbits, r.b);
        (r.op == kOr ? a |= b : r.op == kAnd ? a &= b : r.op == kMinus ? a -= b : a ^= b);
        EXPECT_EQ(MembersOf(a), r.result) << r.name;
        EXPECT_EQ(a.nwords(), r.words) << r.name;
    }
    Set c = Make(32, {0, 31});
    EXPECT_EQ(MembersOf(~c), Range(1, 30));
}

TEST(SetTest, ComparisonsAcrossSizes)
{
    const struct {
        const char* name;
        unsigned abits;
        Members a;
        unsigned bbits;
        Members b;
        bool equal, subset, share;
    } rows[] = {
        {"same members, other sizes", 32, {1}, 96, {1}, true, true, true},
        {"both empty", 0, {}, 128, {}, true, true, false},
        {"extra member in the longer", 32, {1}, 96, {1, 70}, false, true, true},
        {"not a subset", 64, {1, 3}, 64, {1, 2}, false, false, true},
        {"member in the first extra word", 64, {1, 40}, 32, {1}, false, false, true},
        {"only the first extra word counts (deliberate)", 96, {1, 70}, 32, {1}, false, true, true},
        {"no shared member", 64, {40}, 32, {8}, false, false, false},
    };
    for (const auto& r : rows) {
        const Set a = Make(r.abits, r.a), b = Make(r.bbits, r.b);
        EXPECT_EQ(a == b, r.equal) << r.name;
        EXPECT_EQ(b == a, r.equal) << r.name;
        EXPECT_EQ(a <= b, r.subset) << r.name;
        EXPECT_EQ(a && b, r.share) << r.name;
    }
}

TEST(SetTest, TextSyntax)
{
    const struct {
        unsigned bits;
        Members before;
        const char* text;
        Members after;
        unsigned words;
    } rows[] = {
        {0, {}, "1,3,5-7", {1, 3, 5, 6, 7}, 1},
        {0, {}, " 1 ,\t2 , 3 ", {1, 2, 3}, 1},
        {0, {}, "7-5", {}, 0},
        {0, {}, "30-33", {30, 31, 32, 33}, 2},
        {0, {}, "4-", {}, 0},
        {0, {}, "4-,5", {5}, 1},
        {0, {}, "1 2", {2}, 1}, // commas separate members
        {0, {}, "-0-3", Range(4, 31), 1},
        {32, {1}, "-2", Range(0, 31, {1, 2}), 1}, // the members from before are complemented too
        {64, {5}, "-", Range(0, 63, {5}), 2},
    };
    for (const auto& r : rows) {
        Set s = Make(r.bits, r.before);
        testutil::StderrCapture err;
        s.add(r.text);
        EXPECT_EQ(err.Release(), "") << r.text;
        EXPECT_EQ(MembersOf(s), r.after) << r.text;
        EXPECT_EQ(s.nwords(), r.words) << r.text;
    }

    const struct {
        const char* text;
        const char* near;
    } errors[] = {
        {"1 x", "x"}, {"--1", "-"}, {"1-3-5", "-"}, {"-1,2,y", "y"}, {"1\n", "\n"}, {"2147483648", "2147483648"},
    };
    for (const auto& r : errors) {
        Set s = Make(64, {7, 40});
        testutil::StderrCapture err;
        s.add(r.text);
        const std::string line = std::string("Set::add(const char*): syntax error near \"") + r.near + "\"\n";
        EXPECT_EQ(err.Release(), line);
        EXPECT_EQ(MembersOf(s), (Members{7, 40})) << r.text;
        EXPECT_EQ(s.nwords(), 2u);
    }
}

TEST(SetTest, IteratorWalksMembersInOrder)
{
    const Set s = Make(0, {0, 31, 32, 63, 64, 200});
    Setiterator it(s);
    EXPECT_EQ(*++it, 31);
    for (int want : {31, 32, 63, 64, 200, -1, -1})
        EXPECT_EQ(it(), want);
    it.Reset();
    EXPECT_EQ(it(), 0);
    EXPECT_EQ(Setiterator(Set(96))(), -1);
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
