// Set: sizes and growth, algebra across sizes, get's rule, the text syntax, the iterator.
#include <tevbase/set.h>

#include <gtest/gtest.h>
#include <support/testutil.h>

#include <algorithm>
#include <random>
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

Members Range(unsigned from, unsigned to)
{
    Members out;
    for (unsigned i = from; i <= to; ++i)
        out.push_back(i);
    return out;
}

Members Except(unsigned from, unsigned to, const Members& gone)
{
    Members out;
    for (unsigned i = from; i <= to; ++i)
        if (std::find(gone.begin(), gone.end(), i) == gone.end())
            out.push_back(i);
    return out;
}

} // namespace

TEST(SetTest, OwnedSetsGrowToTheWordOfTheNewMember)
{
    Set s64(64);
    EXPECT_EQ(s64.nwords(), 2u);
    s64.add(100);
    EXPECT_EQ(s64.nwords(), 4u);
    EXPECT_EQ(Set(40).nwords(), 1u); // rounded down
    EXPECT_EQ(Set(31).nwords(), 0u);
    EXPECT_EQ(Set(0).nwords(), 0u);
    EXPECT_EQ(Set(-5).nwords(), 0u);

    Set s;
    EXPECT_EQ(s.nwords(), 0u);
    EXPECT_EQ(s.size(), 0u);
    EXPECT_EQ(s.max(), 0u);
    EXPECT_EQ(MembersOf(s), Members{});
    s.add(31);
    EXPECT_EQ(s.nwords(), 1u);
    s.add(32);
    EXPECT_EQ(s.nwords(), 2u);
    s.add(0);
    s.add(-1); // not a member
    EXPECT_EQ(MembersOf(s), (Members{0, 31, 32}));
    s.bumpsize(200);
    EXPECT_EQ(s.nwords(), 7u);
    s.bumpsize(10); // never shrinks
    EXPECT_EQ(s.nwords(), 7u);
    EXPECT_EQ(s.size(), 3u);

    s.remove(31);
    s.remove(5000); // beyond the capacity: absent anyway
    EXPECT_EQ(MembersOf(s), (Members{0, 32}));
    EXPECT_TRUE(s.has(32));
    EXPECT_FALSE(s.has(31));
    EXPECT_FALSE(s.has(100000));
    s.clear();
    EXPECT_EQ(s.size(), 0u);
    EXPECT_EQ(s.nwords(), 7u);
}

TEST(SetTest, MaxSizeAndGet)
{
    const struct {
        const char* name;
        unsigned bits;
        Members members;
        unsigned max;
    } rows[] = {
        {"empty", 64, {}, 0}, {"0 and 5", 0, {0, 5}, 6}, {"word end", 0, {31}, 32},
        {"next word", 0, {32}, 33}, {"top bit", 96, {95, 3}, 96},
    };
    for (const auto& r : rows) {
        SCOPED_TRACE(r.name);
        const Set s = Make(r.bits, r.members);
        EXPECT_EQ(s.max(), r.max);
        EXPECT_EQ(s.size(), r.members.size());
    }

    // get looks only at the indices below the word count (deliberate): two words list 0 and 1 but
    // not 40, and still return 3.
    const Set two = Make(64, {0, 1, 40});
    int out[4] = {-7, -7, -7, -7};
    EXPECT_EQ(two.get(out), 3u);
    EXPECT_EQ(out[0], 0);
    EXPECT_EQ(out[1], 1);
    EXPECT_EQ(out[2], -7);
    const Set four = Make(0, {0, 3, 4, 100}); // four words: 0 and 3 are below 4
    EXPECT_EQ(four.get(out), 4u);
    EXPECT_EQ(out[0], 0);
    EXPECT_EQ(out[1], 3);
    EXPECT_EQ(out[2], -7);
}

TEST(SetTest, CallerStorageIsZeroedAndNeverGrown)
{
    uint32_t buf[2] = {0xFFFFFFFFu, 0xFFFFFFFFu};
    {
        Set f(2, buf);
        EXPECT_TRUE(f.isfixed());
        EXPECT_EQ(buf[0], 0u);
        EXPECT_EQ(buf[1], 0u);
        f.add(33);
        f.add(0);
        EXPECT_EQ(buf[1], 2u); // member 33 is bit 1 of word 1
        EXPECT_EQ(buf[0], 1u);
        f.bumpsize(1000);
        EXPECT_EQ(f.nwords(), 2u);

        f |= Make(0, {5, 200}); // the other's extra words are dropped
        EXPECT_EQ(MembersOf(f), (Members{0, 5, 33}));
        f ^= Make(0, {5, 100});
        EXPECT_EQ(MembersOf(f), (Members{0, 33}));
        f.add("-63"); // the complement stays within the caller's 64 bits
        EXPECT_EQ(MembersOf(f), Except(1, 62, {33}));
        EXPECT_EQ(f.nwords(), 2u);

        uint32_t copy_buf[2];
        Set copy(2, copy_buf, f);
        EXPECT_EQ(copy, f);
        EXPECT_TRUE(copy.isfixed());
        copy = Make(64, {7});
        EXPECT_EQ(MembersOf(copy), Members{7});
        EXPECT_EQ(copy_buf[0], 1u << 7);
    }
    EXPECT_EQ(buf[1], 0x7FFFFFFDu); // the set's end leaves the words to the caller

    Set owned(32);
    owned = Make(0, {1, 100}); // an owned set takes the other's size
    EXPECT_EQ(owned.nwords(), 4u);
    EXPECT_EQ(MembersOf(owned), (Members{1, 100}));
    const Set copied(owned);
    EXPECT_FALSE(copied.isfixed());
    owned = Set(0u);
    EXPECT_EQ(owned.nwords(), 0u);
    EXPECT_EQ(MembersOf(copied), (Members{1, 100}));
    Set& alias = owned;
    owned = alias;
    EXPECT_EQ(owned.nwords(), 0u);
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
        {"or keeps a larger size", 128, {100}, kOr, 32, {3}, {3, 100}, 4},
        {"and grows and clears the new words", 32, {1, 2}, kAnd, 128, {2, 100}, {2}, 4},
        {"and clears words beyond the other's", 128, {1, 40, 100}, kAnd, 32, {1, 2}, {1}, 4},
        {"and with an empty other clears all", 96, {1, 90}, kAnd, 0, {}, {}, 3},
        {"minus over common words", 96, {1, 40, 90}, kMinus, 64, {40, 1}, {90}, 3},
        {"minus ignores the other's extra words", 32, {1, 2}, kMinus, 96, {2, 90}, {1}, 1},
        {"xor grows to the other's size", 32, {1, 2}, kXor, 96, {2, 90}, {1, 90}, 3},
        {"xor leaves this set's extra words", 96, {1, 90}, kXor, 32, {1, 3}, {3, 90}, 3},
    };
    for (const auto& r : rows) {
        SCOPED_TRACE(r.name);
        Set a = Make(r.abits, r.a);
        const Set b = Make(r.bbits, r.b);
        switch (r.op) {
        case kOr:
            a |= b;
            break;
        case kAnd:
            a &= b;
            break;
        case kMinus:
            a -= b;
            break;
        case kXor:
            a ^= b;
            break;
        }
        EXPECT_EQ(MembersOf(a), r.result);
        EXPECT_EQ(a.nwords(), r.words);
    }

    Set c = Make(32, {0, 31});
    ~c;
    EXPECT_EQ(MembersOf(c), Range(1, 30));
    Set none; // no words, no members: nothing to flip
    ~none;
    EXPECT_EQ(none.nwords(), 0u);
    Set self = Make(64, {1, 40});
    const Set& same = self;
    self ^= same;
    EXPECT_EQ(self.size(), 0u);
    self.add(3);
    self |= same;
    self &= same;
    EXPECT_EQ(MembersOf(self), Members{3});
    self -= same;
    EXPECT_EQ(self.size(), 0u);
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
        {"proper subset", 64, {1}, 64, {1, 2}, false, true, true},
        {"not a subset", 64, {1, 3}, 64, {1, 2}, false, false, true},
        {"member in the first extra word", 64, {1, 40}, 32, {1}, false, false, true},
        {"only the first extra word counts (deliberate)", 96, {1, 70}, 32, {1}, false, true, true},
        {"no shared member", 64, {40}, 32, {8}, false, false, false},
    };
    for (const auto& r : rows) {
        SCOPED_TRACE(r.name);
        const Set a = Make(r.abits, r.a), b = Make(r.bbits, r.b);
        EXPECT_EQ(a == b, r.equal);
        EXPECT_EQ(b == a, r.equal);
        EXPECT_EQ(a != b, !r.equal);
        EXPECT_EQ(a <= b, r.subset);
        EXPECT_EQ(a && b, r.share);
        EXPECT_EQ(b && a, r.share);
    }
}

TEST(SetTest, MembersFromArraysAndArgumentLists)
{
    const int a[] = {3, -1, 64, 3};
    Set s(4, a); // negative entries are not members
    EXPECT_EQ(MembersOf(s), (Members{3, 64}));
    EXPECT_EQ(s.nwords(), 3u);
    const int gone[] = {64, -5};
    s.remove(2, gone);
    EXPECT_EQ(MembersOf(s), Members{3});
    s.add(2, gone);
    EXPECT_EQ(MembersOf(s), (Members{3, 64}));

    EXPECT_EQ(MembersOf(Set(1, 5, 9, -1)), (Members{1, 5, 9}));
    EXPECT_EQ(MembersOf(Set(4, -1)), Members{4});
    EXPECT_EQ(MembersOf(Set(-1, 7)), Members{});
    const Set listed(0, 63, 2, -3);
    EXPECT_EQ(MembersOf(listed), (Members{0, 2, 63}));
    EXPECT_EQ(listed.nwords(), 2u);
}

TEST(SetTest, TextSyntax)
{
    const struct {
        const char* name;
        unsigned bits;
        Members before;
        const char* text;
        Members after;
        unsigned words;
    } rows[] = {
        {"list and range", 0, {}, "1,3,5-7", {1, 3, 5, 6, 7}, 1},
        {"blanks and tabs", 0, {}, " 1 ,\t2 , 3 ", {1, 2, 3}, 1},
        {"empty text", 64, {}, "", {}, 2},
        {"empty items", 0, {}, ",,1,,", {1}, 1},
        {"descending range adds nothing", 0, {}, "7-5", {}, 0},
        {"one-member range", 0, {}, "5-5", {5}, 1},
        {"range across words", 0, {}, "30-33", {30, 31, 32, 33}, 2},
        {"long range", 0, {}, "0-100", Range(0, 100), 4},
        {"dangling range at the end", 0, {}, "4-", {}, 0},
        {"dangling range before a comma", 0, {}, "4-,5", {5}, 1},
        {"blank-separated numbers keep the last", 0, {}, "1 2", {2}, 1},
        {"leading zeros", 0, {}, "007", {7}, 1},
        {"members are added to earlier ones", 0, {40}, "1", {1, 40}, 2},
        {"complement within one word", 0, {}, "-0-3", Range(4, 31), 1},
        {"complement within the capacity", 64, {}, "-0-3", Range(4, 63), 2},
        {"complement covers earlier members", 32, {1}, "-2", Except(0, 31, {1, 2}), 1},
        {"bare complement", 64, {5}, "-", Except(0, 63, {5}), 2},
        {"complement of nothing", 0, {}, "-", {}, 0},
    };
    for (const auto& r : rows) {
        SCOPED_TRACE(r.name);
        Set s = Make(r.bits, r.before);
        testutil::StderrCapture err;
        s.add(r.text);
        EXPECT_EQ(err.Release(), "");
        EXPECT_EQ(MembersOf(s), r.after);
        EXPECT_EQ(s.nwords(), r.words);
        if (r.bits == 0 && r.before.empty()) {
            const Set made(r.text);
            EXPECT_EQ(MembersOf(made), r.after);
            EXPECT_EQ(made.nwords(), r.words);
        }
    }
    Set s = Make(0, {3});
    s.add(static_cast<const char*>(nullptr));
    EXPECT_EQ(MembersOf(s), Members{3});
}

TEST(SetTest, TextSyntaxErrorsChangeNothing)
{
    const struct {
        const char* text;
        const char* near;
    } rows[] = {
        {"1 x", "x"},
        {"x", "x"},
        {"1,a,2", "a"},
        {"--1", "-"},
        {"1-3-5", "-"},
        {"1;2", ";"},
        {"-1,2,y", "y"},
        {"1\n", "\n"},
        {"2147483648", "2147483648"},
        {"1-99999999999", "99999999999"},
    };
    for (const auto& r : rows) {
        SCOPED_TRACE(r.text);
        Set s = Make(64, {7, 40});
        testutil::StderrCapture err;
        s.add(r.text);
        EXPECT_EQ(err.Release(), std::string("Set::add(const char*): syntax error near \"") + r.near + "\"\n");
        EXPECT_EQ(MembersOf(s), (Members{7, 40}));
        EXPECT_EQ(s.nwords(), 2u);
    }
}

TEST(SetTest, FuzzedTextsEitherParseOrChangeNothing)
{
    std::mt19937 rng(11);
    // Numbers end with a blank: fused digits could ask for a huge set.
    const char* const pieces[] = {"0 ", "7 ", "31 ", "32 ", "99 ", ",", "-", "-", " ", "\t", "x"};
    for (int round = 0; round < 3000; ++round) {
        std::string text;
        for (int n = rng() % 8; n > 0; --n)
            text += pieces[rng() % (sizeof pieces / sizeof pieces[0])];
        SCOPED_TRACE(text);
        Set s = Make(64, {7});
        testutil::StderrCapture err;
        s.add(text.c_str());
        const std::string message = err.Release();
        if (!message.empty()) {
            EXPECT_EQ(message.rfind("Set::add(const char*): syntax error near \"", 0), 0u);
            EXPECT_EQ(MembersOf(s), Members{7});
        }
        EXPECT_LE(s.nwords(), 4u);
    }
}

TEST(SetTest, IteratorWalksMembersInOrder)
{
    const Set s = Make(0, {0, 31, 32, 63, 64, 200});
    Setiterator it(s);
    EXPECT_EQ(*it, 0);
    ++it;
    EXPECT_EQ(*it, 31);
    Setiterator before = it++;
    EXPECT_EQ(*before, 31);
    EXPECT_EQ(*it, 32);
    EXPECT_EQ(it(), 32);
    EXPECT_EQ(it(), 63);
    EXPECT_EQ(it(), 64);
    EXPECT_EQ(it(), 200);
    EXPECT_EQ(it(), -1);
    EXPECT_EQ(*it, -1);
    ++it;
    EXPECT_EQ(it(), -1);
    it.Reset();
    EXPECT_EQ(it(), 0);

    Setiterator none(Set(96));
    EXPECT_EQ(none(), -1);
}

TEST(SetTest, MatchesAModelSet)
{
    std::mt19937 rng(5);
    auto random_set = [&](std::set<unsigned>& model) {
        Set s(32 * (rng() % 4));
        for (int k = rng() % 6; k > 0; --k) {
            const unsigned m = rng() % 160;
            s.add(m);
            model.insert(m);
        }
        return s;
    };
    for (int round = 0; round < 300; ++round) {
        std::set<unsigned> ma;
        Set a = random_set(ma);
        for (int step = 0; step < 20; ++step) {
            std::set<unsigned> mb;
            const Set b = random_set(mb);
            std::set<unsigned> want;
            switch (rng() % 5) {
            case 0:
                a |= b;
                want = ma;
                want.insert(mb.begin(), mb.end());
                break;
            case 1:
                a &= b;
                for (unsigned m : ma)
                    if (mb.count(m))
                        want.insert(m);
                break;
            case 2:
                a -= b;
                for (unsigned m : ma)
                    if (!mb.count(m))
                        want.insert(m);
                break;
            case 3:
                a ^= b;
                for (unsigned m = 0; m < 200; ++m)
                    if (ma.count(m) != mb.count(m))
                        want.insert(m);
                break;
            default: {
                const unsigned m = rng() % 160;
                want = ma;
                if (rng() % 2) {
                    a.add(m);
                    want.insert(m);
                } else {
                    a.remove(m);
                    want.erase(m);
                }
            }
            }
            ma = want;
            ASSERT_EQ(MembersOf(a), Members(ma.begin(), ma.end()));
            ASSERT_EQ(a.size(), ma.size());
            ASSERT_EQ(a.max(), ma.empty() ? 0 : *ma.rbegin() + 1);
            ASSERT_EQ(a == b, ma == mb);
            bool subset = true;
            for (unsigned m : ma)
                subset = subset && mb.count(m) == 1;
            if (a.nwords() <= b.nwords() + 1) { // beyond that, only the first extra word counts
                ASSERT_EQ(a <= b, subset);
            }
        }
    }
}

TEST(SetDeathTest, SizeMismatchesAndFixedOverflowAssert)
{
    uint32_t buf[3];
    const Set two(64);
    EXPECT_DEATH(Set(3, buf, two), testutil::AssertionPattern("containers/set.cpp",
                                                             "Set::Set(unsigned int, uint32_t*, const Set&)",
                                                             "n == s.num"));
    Set fixed(3, buf);
    EXPECT_DEATH(fixed = two, testutil::AssertionPattern("containers/set.cpp", "Set& Set::operator=(const Set&)",
                                                         "num == s.num"));
    EXPECT_DEATH(fixed.add(96), testutil::AssertionPattern("containers/set.cpp", "void Set::add(unsigned int)",
                                                           "i / 32 < num"));
    fixed.add(95);
    EXPECT_EQ(fixed.max(), 96u);
}
