// OHashTable: the hash, bucket placement, tombstones, growth points, Resize, iteration, aliasing.
#include <generic/gohash>

#include <gtest/gtest.h>
#include <support/testutil.h>

#include <map>
#include <random>
#include <string>
#include <vector>

namespace {

using Set = OHashTable<String_t, TabStr>;
using SetIter = OHashIterator<String_t, TabStr>;

// Keys "k0", "k1", ... whose walk in a table of `size` buckets starts at p0 with raw step
// (h / size) % size == step.
std::vector<std::string> KeysWalking(uint32_t size, uint32_t p0, uint32_t step, unsigned want)
{
    std::vector<std::string> keys;
    for (unsigned i = 0; keys.size() < want && i < 10000000; ++i) {
        const std::string k = "k" + std::to_string(i);
        const uint32_t h = GHash(k.c_str());
        if (h % size == p0 && (h / size) % size == step)
            keys.push_back(k);
    }
    return keys;
}

// The assertion report of expr in signature, at that line of the header.
std::string ReportAt(int line, const std::string& signature, const std::string& expr)
{
    std::string pattern = testutil::AssertionPattern("include/generic/gohash", signature, expr);
    return pattern.replace(pattern.find("[0-9]+"), 6, std::to_string(line));
}

// Bucket index -> key, in iteration order.
std::vector<std::pair<int, std::string>> Layout(const Set& t)
{
    std::vector<std::pair<int, std::string>> out;
    SetIter it(t);
    while (TabStr* e = it())
        out.emplace_back(it.Index(), e->str.Text());
    return out;
}

} // namespace

TEST(GHashTest, FoldsTheTopByteIntoTheLowOne)
{
    const struct {
        const char* name;
        const char* text;
        uint32_t hash;
    } rows[] = {
        {"null", nullptr, 0},
        {"empty", "", 0},
        {"one byte", "a", 0x61},
        {"high byte is unsigned", "\xff", 0xff},
        {"two bytes", "ab", 0x61 * 16 + 0x62},
        {"five bytes, no fold yet", "abcde", 0x6789a5},
        {"six bytes, first fold", "abcdef", 0x789ab0},
        {"seven bytes, two folds", "abcdefg", 0x89ab60},
        {"eight bytes", "abcdefgh", 0x9ab660},
        {"blank inside", "hello world", 0xdfa855},
        {"all ones", "\xff\xff\xff\xff\xff\xff\xff", 0xfffee0},
    };
    for (const auto& r : rows) {
        SCOPED_TRACE(r.name);
        EXPECT_EQ(GHash(r.text), r.hash);
    }
    std::mt19937 rng(7);
    for (int i = 0; i < 2000; ++i) {
        std::string s(rng() % 40, 'x');
        for (char& c : s)
            c = static_cast<char>(1 + rng() % 255);
        EXPECT_LT(GHash(s.c_str()), 1u << 24) << s;
    }
}

TEST(OHashTableTest, ProbeTakesOneSecondaryStepThenWalksLinearly)
{
    // Four keys with p0 = 10 and step 5: 10, 15, 16, 17. A key starting at 15 with step 7 then
    // lands at 22, one with step 0 goes to p0 + 1, and a walk near the end wraps to the front.
    const auto chain = KeysWalking(100, 10, 5, 5);
    const auto at15 = KeysWalking(100, 15, 7, 1);
    const auto nostep = KeysWalking(100, 40, 0, 2);
    const auto wrap = KeysWalking(100, 98, 5, 3);
    ASSERT_EQ(chain.size(), 5u);
    ASSERT_EQ(at15.size(), 1u);
    ASSERT_EQ(nostep.size(), 2u);
    ASSERT_EQ(wrap.size(), 3u);

    Set t;
    EXPECT_EQ(t.Size(), 100u);
    for (int i = 0; i < 4; ++i)
        ASSERT_NE(t.Add(TabStr(chain[i].c_str())), nullptr);
    t.Add(TabStr(at15[0].c_str()));
    t.Add(TabStr(nostep[0].c_str()));
    t.Add(TabStr(nostep[1].c_str()));
    for (const auto& k : wrap)
        t.Add(TabStr(k.c_str()));
    const std::vector<std::pair<int, std::string>> expected = {
        {3, wrap[1]},      {4, wrap[2]},      {10, chain[0]}, {15, chain[1]}, {16, chain[2]},
        {17, chain[3]},    {22, at15[0]},     {40, nostep[0]}, {41, nostep[1]}, {98, wrap[0]},
    };
    EXPECT_EQ(Layout(t), expected);
    EXPECT_EQ(t.Card(), 10u);

    // The tombstone at 15 keeps the chain: 16 and 17 are still found, and an absent key of the
    // chain takes the tombstone.
    EXPECT_NE(t.Del(String_t(chain[1].c_str())), nullptr);
    EXPECT_EQ(t.Card(), 9u);
    EXPECT_NE(t.Find(String_t(chain[2].c_str())), nullptr);
    EXPECT_NE(t.Find(String_t(chain[3].c_str())), nullptr);
    EXPECT_EQ(t.Find(String_t(chain[1].c_str())), nullptr);
    t.Add(TabStr(chain[4].c_str()));
    auto layout = Layout(t);
    EXPECT_EQ(layout[3], std::make_pair(15, chain[4]));
    EXPECT_EQ(layout[4], std::make_pair(16, chain[2]));

    // A key whose walk meets the tombstone first and then its own element is found, not added twice.
    t.Del(String_t(chain[0].c_str()));
    EXPECT_EQ(t.Add(TabStr(chain[2].c_str())), nullptr);
    EXPECT_EQ(t.Card(), 9u);
}

TEST(OHashTableTest, NullAndEmptyKeysAreDistinct)
{
    Set t;
    TabStr* null_key = t.Add(TabStr());
    TabStr* empty_key = t.Add(TabStr(""));
    ASSERT_NE(null_key, nullptr);
    ASSERT_NE(empty_key, nullptr);
    EXPECT_NE(null_key, empty_key);
    EXPECT_EQ(t.Find(String_t()), null_key);
    EXPECT_EQ(t.Find(String_t("")), empty_key);
    EXPECT_EQ(Layout(t), (std::vector<std::pair<int, std::string>>{{0, ""}, {1, ""}})); // both hash to 0
}

TEST(OHashTableTest, GrowsBeforeTheLookupAtSevenEighths)
{
    Set t;
    for (int i = 0; i < 88; ++i)
        t.Add(TabStr(("g" + std::to_string(i)).c_str()));
    EXPECT_EQ(t.Size(), 100u); // the 88th insertion found 87 < 100 - 12
    EXPECT_EQ(t.Card(), 88u);

    Set present = t; // growth comes first, even when the key is there
    EXPECT_EQ(present.Add(TabStr("g0")), nullptr);
    EXPECT_EQ(present.Size(), 200u);
    EXPECT_EQ(present.Card(), 88u);
    Set indexed = t;
    EXPECT_EQ(indexed[TabStr("g5")].str, "g5");
    EXPECT_EQ(indexed.Size(), 200u);

    t.Add(TabStr("g88")); // the 89th: 88 reaches 100 - 12
    EXPECT_EQ(t.Size(), 200u);
    EXPECT_EQ(t.Card(), 89u);
    for (int i = 0; i <= 88; ++i)
        EXPECT_TRUE(t & String_t(("g" + std::to_string(i)).c_str())) << i;

    Set small(8); // 8 - 1 = 7: the 8th insertion doubles
    for (int i = 0; i < 7; ++i)
        small.Add(TabStr(("s" + std::to_string(i)).c_str()));
    EXPECT_EQ(small.Size(), 8u);
    small.Add(TabStr("s7"));
    EXPECT_EQ(small.Size(), 16u);
}

TEST(OHashTableTest, ResizeReplacesSizesThatCannotHoldTheElements)
{
    const struct {
        const char* name;
        unsigned count, asked, size;
    } rows[] = {
        {"room enough: kept", 30, 40, 40},
        {"50 in 10: 100", 50, 10, 100},
        {"none in 0: 100", 0, 0, 100},
        {"87 fill 87: 100", 87, 87, 100},
        {"88 fill 88: 200", 88, 88, 200},
        {"150 in 10: 200", 150, 10, 200},
        {"174 below 200 - 25", 174, 10, 200},
        {"175 reaches 200 - 25: 400", 175, 10, 400},
        {"85 in 90 passes 90 - 11 while rebuilding: doubles to 180", 85, 90, 180},
    };
    for (const auto& r : rows) {
        SCOPED_TRACE(r.name);
        Set t(1000);
        for (unsigned i = 0; i < r.count; ++i)
            t.Add(TabStr(("r" + std::to_string(i)).c_str()));
        t.Resize(r.asked);
        EXPECT_EQ(t.Size(), r.size);
        EXPECT_EQ(t.Card(), r.count);
        for (unsigned i = 0; i < r.count; ++i)
            ASSERT_TRUE(t & TabStr(("r" + std::to_string(i)).c_str())) << i;
    }
}

TEST(OHashTableTest, ResizeAndClearDropTombstones)
{
    const auto chain = KeysWalking(100, 20, 3, 3);
    ASSERT_EQ(chain.size(), 3u);
    Set t;
    for (const auto& k : chain)
        t.Add(TabStr(k.c_str()));
    t.Del(String_t(chain[0].c_str()));
    t.Resize(100); // re-added in old bucket order: 23 moves to 20, 24 to 23
    EXPECT_EQ(Layout(t), (std::vector<std::pair<int, std::string>>{{20, chain[1]}, {23, chain[2]}}));

    t.Del(String_t(chain[1].c_str()));
    t.Clear();
    EXPECT_EQ(t.Card(), 0u);
    EXPECT_EQ(t.Size(), 100u);
    t.Add(TabStr(chain[2].c_str())); // no tombstone left at 20
    EXPECT_EQ(Layout(t), (std::vector<std::pair<int, std::string>>{{20, chain[2]}}));
}

TEST(OHashTableTest, RecordsKeepTheirValues)
{
    OHashTable<String_t, StrStrMap> map;
    EXPECT_NE(map.Add(StrStrMap("k", "v1")), nullptr);
    EXPECT_EQ(map.Add(StrStrMap("k", "v2")), nullptr); // present: not stored over
    EXPECT_EQ(map.Find(String_t("k"))->value, "v1");
    map[StrStrMap("k", "v3")].value = "v4";
    EXPECT_EQ(map.Find(StrStrMap("k"))->value, "v4");
    EXPECT_EQ(map[StrStrMap("new", "n")].value, "n");
    EXPECT_EQ(map & String_t("new"), 1);
    EXPECT_EQ(map & StrStrMap("none"), 0);
    EXPECT_EQ(map.Card(), 2u);

    OHashTable<String_t, StrCnt> words;
    for (const char* w : {"to", "be", "or", "not", "to", "be"})
        ++words[StrCnt(w)].count;
    EXPECT_EQ(words.Card(), 4u);
    EXPECT_EQ(words.Find(String_t("to"))->count, 2);
    EXPECT_EQ(words.Find(String_t("not"))->count, 1);

    StrCnt* slot = words -= String_t("to");
    ASSERT_NE(slot, nullptr);
    EXPECT_TRUE(slot->str.IsNull()); // the slot releases the text at once
    EXPECT_EQ(slot->count, 0);
    EXPECT_EQ(words -= StrCnt("to"), nullptr);
    EXPECT_EQ(words.Del(String_t("absent")), nullptr);
    EXPECT_EQ(words.Card(), 3u);
}

TEST(OHashTableTest, CopiesAreIndependent)
{
    OHashTable<String_t, StrCnt> a;
    a[StrCnt("x")].count = 1;
    a[StrCnt("y")].count = 2;
    a -= String_t("y");
    OHashTable<String_t, StrCnt> b(a);
    b[StrCnt("x")].count = 10;
    b += StrCnt("z");
    EXPECT_EQ(a.Find(String_t("x"))->count, 1);
    EXPECT_EQ(a.Card(), 1u);
    EXPECT_EQ(b.Card(), 2u);
    a = b;
    const OHashTable<String_t, StrCnt>& same = a;
    a = same;
    EXPECT_EQ(a.Find(String_t("x"))->count, 10);
    EXPECT_TRUE(a & String_t("z"));
    b.Clear();
    EXPECT_EQ(a.Card(), 2u);
    EXPECT_EQ(a.Find(String_t("x"))->str, "x");
}

TEST(OHashTableTest, AnElementOfTheTableItselfSurvivesGrowth)
{
    OHashTable<String_t, StrStrMap> t;
    for (int i = 0; i < 88; ++i)
        t.Add(StrStrMap(("a" + std::to_string(i)).c_str(), "v"));
    ASSERT_EQ(t.Size(), 100u);
    StrStrMap* inside = t.Find(String_t("a7"));
    StrStrMap& got = t[*inside]; // grows, which frees the slot `inside` points to
    EXPECT_EQ(t.Size(), 200u);
    EXPECT_EQ(got.key, "a7");
    EXPECT_EQ(t.Card(), 88u);

    OHashTable<String_t, StrStrMap> u(8);
    for (int i = 0; i < 7; ++i)
        u.Add(StrStrMap(("b" + std::to_string(i)).c_str()));
    EXPECT_EQ(u.Add(*u.Find(String_t("b3"))), nullptr);
    EXPECT_EQ(u.Size(), 16u);
}

TEST(OHashTableTest, IteratorDeletesWithoutDisturbingTheWalk)
{
    Set t;
    for (int i = 0; i < 60; ++i)
        t.Add(TabStr(("i" + std::to_string(i)).c_str()));
    const auto before = Layout(t);

    SetIter it(t);
    EXPECT_EQ(it.Index(), -1);
    EXPECT_EQ(it.Del(), nullptr); // no current element yet
    std::vector<std::pair<int, std::string>> seen;
    int n = 0;
    while (TabStr* e = it()) {
        seen.emplace_back(it.Index(), e->str.Text());
        if (n++ % 2 == 0) {
            TabStr* slot = it.Del();
            ASSERT_EQ(slot, e);
            EXPECT_TRUE(slot->str.IsNull());
            EXPECT_EQ(it.Del(), nullptr); // removed already
        }
    }
    EXPECT_EQ(seen, before);
    EXPECT_EQ(it.Index(), 100);
    EXPECT_EQ(it(), nullptr);
    EXPECT_EQ(it.Del(), nullptr);
    EXPECT_EQ(t.Card(), 30u);

    it.Reset();
    std::vector<std::pair<int, std::string>> rest;
    while (TabStr* e = it())
        rest.emplace_back(it.Index(), e->str.Text());
    for (size_t i = 0; i < rest.size(); ++i)
        EXPECT_EQ(rest[i], before[2 * i + 1]);
}

// Every operation mirrored into std::map; small tables under churn fill with tombstones, so lookups of
// absent keys walk every bucket and insertions reuse tombstones.
template <class T> struct Record;
template <> struct Record<TabStr> {
    static TabStr Make(const std::string& k, int) { return TabStr(k.c_str()); }
    static int Value(const TabStr&) { return 0; }
};
template <> struct Record<StrCnt> {
    static StrCnt Make(const std::string& k, int v)
    {
        StrCnt c(k.c_str());
        c.count = v;
        return c;
    }
    static int Value(const StrCnt& c) { return c.count; }
};
template <> struct Record<StrStrMap> {
    static StrStrMap Make(const std::string& k, int v) { return StrStrMap(k.c_str(), std::to_string(v).c_str()); }
    static int Value(const StrStrMap& m) { return std::stoi(m.value.Text()); }
};

template <class T> class OHashModelTest : public ::testing::Test {};
using Records = ::testing::Types<TabStr, StrCnt, StrStrMap>;
TYPED_TEST_SUITE(OHashModelTest, Records);

TYPED_TEST(OHashModelTest, MatchesAMapUnderChurn)
{
    using R = Record<TypeParam>;
    for (unsigned initial : {1u, 8u, 100u}) {
        SCOPED_TRACE(initial);
        std::mt19937 rng(initial);
        OHashTable<String_t, TypeParam> t(initial);
        std::map<std::string, int> model;
        for (int step = 0; step < 6000; ++step) {
            const std::string k = "m" + std::to_string(rng() % (step < 3000 ? 12 : 300));
            const int v = R::Value(R::Make(k, static_cast<int>(rng() % 1000))); // 0 for TabStr
            switch (rng() % 6) {
            case 0:
            case 1: {
                TypeParam* got = t.Add(R::Make(k, v));
                ASSERT_EQ(got == nullptr, model.count(k) == 1);
                if (got != nullptr)
                    model[k] = v;
                break;
            }
            case 2: {
                const bool had = model.count(k) == 1;
                TypeParam& e = t[R::Make(k, v)];
                if (!had)
                    model[k] = v;
                ASSERT_EQ(R::Value(e), model[k]);
                break;
            }
            case 3:
            case 4:
                ASSERT_EQ(t.Del(String_t(k.c_str())) != nullptr, model.erase(k) == 1);
                break;
            default: {
                TypeParam* e = t.Find(String_t(k.c_str()));
                ASSERT_EQ(e != nullptr, model.count(k) == 1);
                if (e != nullptr) {
                    ASSERT_EQ(R::Value(*e), model[k]);
                }
            }
            }
            ASSERT_EQ(t.Card(), model.size());
            ASSERT_LT(t.Card(), t.Size() - t.Size() / 8 + 1);
        }
        std::map<std::string, int> walked;
        OHashIterator<String_t, TypeParam> it(t);
        while (TypeParam* e = it())
            ASSERT_TRUE(walked.emplace(reinterpret_cast<String_t*>(e)->Text(), R::Value(*e)).second);
        EXPECT_EQ(walked, model);
    }
}

TEST(OHashTableDeathTest, NoRoomFailsTheBestspotAssertion)
{
    // _Del on an empty bucket uncounts it, so _Add can fill every bucket while the count stays under
    // the load limit: an insertion then walks size + 1 used buckets and finds no room.
    OHashTable<String_t, StrCnt> t(10);
    t._Del(0);
    t._Del(0);
    for (unsigned i = 0; i < 10; ++i)
        t._Add(i, StrCnt(std::to_string(i).c_str()));
    EXPECT_EQ(t.Card(), 8u);
    EXPECT_NE(t.Find(String_t("7")), nullptr);
    EXPECT_EQ(t.Find(String_t("x")), nullptr); // every bucket examined, no empty one
    EXPECT_EQ(t.Add(StrCnt("3")), nullptr);     // a present key is still found
    EXPECT_EQ(t[StrCnt("4")].str, "4");

    const std::string with = " [with K = String_t; T = StrCnt]";
    EXPECT_DEATH(t.Add(StrCnt("new")), ReportAt(133, "T* OHashTable<K, T>::Add(const T&)" + with, "bestspot < size"));
    EXPECT_DEATH(t[StrCnt("new")], ReportAt(162, "T& OHashTable<K, T>::operator[](const T&)" + with, "bestspot < size"));

    t._Del(5); // one tombstone: the insertion takes it
    StrCnt* got = t.Add(StrCnt("new"));
    ASSERT_NE(got, nullptr);
    EXPECT_EQ(t.Find(String_t("new")), got);
}

namespace {

// A record whose default and copy constructors fail on the n-th call, as an exhausted allocator makes
// String_t's do.
struct Flaky {
    String_t key;
    int value;

    static int budget; // calls left before the failing one; negative: never fail
    static void Spend()
    {
        if (budget >= 0 && budget-- == 0)
            throw std::bad_alloc();
    }
    Flaky() : value(0) { Spend(); }
    Flaky(const char* k, int v) : key(k), value(v) {}
    Flaky(const Flaky& o) : key(o.key), value(o.value) { Spend(); }
    Flaky& operator=(const Flaky&) = default;
};
int Flaky::budget = -1;

using FlakyTable = OHashTable<String_t, Flaky>;

std::map<int, std::string> Snapshot(const FlakyTable& t)
{
    std::map<int, std::string> out;
    OHashIterator<String_t, Flaky> it(t);
    while (Flaky* e = it())
        out[it.Index()] = std::string(e->key.Text()) + "=" + std::to_string(e->value);
    return out;
}

// Runs op with the n-th constructor call failing, n = 0, 1, ..., until op completes; after every
// failure the table must be as before. Returns the number of failures.
template <class Op> int FailEachStep(FlakyTable& t, Op op)
{
    for (int n = 0;; ++n) {
        const auto before = Snapshot(t);
        const unsigned size = t.Size(), card = t.Card();
        Flaky::budget = n;
        try {
            op(t);
            Flaky::budget = -1;
            return n;
        } catch (const std::bad_alloc&) {
            Flaky::budget = -1;
        }
        EXPECT_EQ(Snapshot(t), before) << "failure " << n;
        EXPECT_EQ(t.Size(), size);
        EXPECT_EQ(t.Card(), card);
    }
}

} // namespace

TEST(OHashTableTest, FailedStepsLeaveTheTableAsItWas)
{
    FlakyTable t;
    for (int i = 0; i < 88; ++i)
        t.Add(Flaky(("f" + std::to_string(i)).c_str(), i));

    // Growth before the insertion: 200 new slots, each a constructor call that may fail.
    EXPECT_GE(FailEachStep(t, [](FlakyTable& u) { u.Add(Flaky("new", 1)); }), 200);
    EXPECT_EQ(t.Size(), 200u);
    EXPECT_EQ(t.Card(), 89u);

    // A rebuild that doubles again half-way (85 elements reach 90 - 11) fails at either allocation.
    FlakyTable nested(1000);
    for (int i = 0; i < 85; ++i)
        nested.Add(Flaky(("n" + std::to_string(i)).c_str(), i));
    EXPECT_GE(FailEachStep(nested, [](FlakyTable& u) { u.Resize(90); }), 90 + 180);
    EXPECT_EQ(nested.Size(), 180u);
    EXPECT_EQ(nested.Card(), 85u);

    // An element of the table itself, added at the growth point: the copy, then the growth.
    FlakyTable self;
    for (int i = 0; i < 88; ++i)
        self.Add(Flaky(("f" + std::to_string(i)).c_str(), i));
    EXPECT_GE(FailEachStep(self, [](FlakyTable& u) { u[*u.Find(String_t("f3"))].value = 7; }), 201);
    EXPECT_EQ(self.Find(String_t("f3"))->value, 7);

    FlakyTable copy(10);
    FailEachStep(copy, [&](FlakyTable& u) { u = self; });
    EXPECT_EQ(Snapshot(copy), Snapshot(self));
    FailEachStep(copy, [](FlakyTable& u) { u.Del(String_t("f5")); });
    EXPECT_EQ(copy.Find(String_t("f5")), nullptr);
    FailEachStep(copy, [](FlakyTable& u) { u.Clear(); });
    EXPECT_EQ(copy.Card(), 0u);
    EXPECT_EQ(copy.Size(), 200u);
}
