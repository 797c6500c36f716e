// OHashTable: the hash, bucket placement, tombstones, growth points, Resize, iteration, assertions.
#include <generic/gohash>

#include <gtest/gtest.h>
#include <support/testutil.h>

#include <map>
#include <random>
#include <string>
#include <vector>

namespace {

using Table = OHashTable<String_t, TabStr>;
using Layout = std::vector<std::pair<int, std::string>>;

// Keys "k0", "k1", ... whose walk over `size` buckets starts at p0 with (h / size) % size == step.
std::vector<std::string> KeysWalking(uint32_t size, uint32_t p0, uint32_t step, unsigned want)
{
    std::vector<std::string> keys;
    for (unsigned i = 0; keys.size() < want; ++i) {
        const std::string k = "k" + std::to_string(i);
        const uint32_t h = GHash(k.c_str());
        if (h % size == p0 && (h / size) % size == step)
            keys.push_back(k);
    }
    return keys;
}

// (bucket, key) in iteration order.
Layout LayoutOf(const Table& t)
{
    Layout out;
    OHashIterator<String_t, TabStr> it(t);
    while (TabStr* e = it())
        out.emplace_back(it.Index(), e->str.Text());
    return out;
}

String_t Key(const char* prefix, int i) { return String_t((prefix + std::to_string(i)).c_str()); }

} // namespace

TEST(OHashTableTest, HashAndPlacementFollowTheProbeSequence)
{
    const std::pair<const char*, uint32_t> hashes[] = { // the top byte folds into the low one
        {nullptr, 0}, {"", 0}, {"\xff", 0xff}, {"ab", 1650}, {"abcdefg", 0x89ab60},
        {"hello world", 0xdfa855}, {"\xff\xff\xff\xff\xff\xff\xff", 0xfffee0}};
    for (const auto& [text, hash] : hashes)
        EXPECT_EQ(GHash(text), hash) << (text ? text : "null");
    // p0 = 10, step 5: 10, 15, 16, 17. Start 15, step 7: 15 is taken, so 22. Step 0 means 1.
    // Near the end the walk wraps: 98, then 3, then 4.
    const auto chain = KeysWalking(100, 10, 5, 5), at15 = KeysWalking(100, 15, 7, 1);
    const auto nostep = KeysWalking(100, 40, 0, 2), wrap = KeysWalking(100, 98, 5, 3);
    Table t;
    for (const auto& k : {chain[0], chain[1], chain[2], chain[3], at15[0], nostep[0], nostep[1], wrap[0],
                          wrap[1], wrap[2]})
        ASSERT_NE(t.Add(TabStr(k.c_str())), nullptr);
    const Layout want = {{3, wrap[1]},   {4, wrap[2]},   {10, chain[0]},  {15, chain[1]}, {16, chain[2]},
                         {17, chain[3]}, {22, at15[0]}, {40, nostep[0]}, {41, nostep[1]}, {98, wrap[0]}};
    EXPECT_EQ(LayoutOf(t), want);
    // The tombstone at 15 keeps the chain, and an absent key of the chain takes it.
    EXPECT_TRUE(t.Del(String_t(chain[1].c_str())) && t.Find(String_t(chain[3].c_str())));
    t.Add(TabStr(chain[4].c_str()));
    EXPECT_EQ(LayoutOf(t)[3], std::make_pair(15, chain[4]));
    // A walk that meets a tombstone and then the key finds the key: no duplicate.
    t.Del(String_t(chain[0].c_str()));
    EXPECT_EQ(t.Add(TabStr(chain[2].c_str())), nullptr);
    EXPECT_EQ(t.Card(), 9u);
    // Resize re-adds in old bucket order and drops tombstones.
    t.Resize(100);
    EXPECT_EQ(LayoutOf(t), (Layout{{3, wrap[2]}, {4, wrap[0]}, {10, chain[4]}, {15, chain[2]}, {16, chain[3]},
                                   {22, at15[0]}, {40, nostep[0]}, {41, nostep[1]}, {98, wrap[1]}}));
    t.Clear(); // drops them too
    t.Add(TabStr(chain[3].c_str()));
    EXPECT_EQ(LayoutOf(t), (Layout{{10, chain[3]}}));

    Table z; // null data and "" both hash to 0 and are different keys
    EXPECT_TRUE(z.Add(TabStr()) && z.Add(TabStr("")) && z.Find(String_t())->str.Chars() == nullptr);
}

// The table grows before the lookup at seven eighths; Resize replaces sizes that cannot hold the
// elements.
TEST(OHashTableTest, GrowthPointsAndResize)
{
    Table t;
    for (int i = 0; i < 88; ++i)
        t.Add(TabStr(Key("g", i)));
    EXPECT_EQ(t.Size(), 100u); // the 88th found 87 < 100 - 12
    // Present keys, and still the table doubles first; the arguments are elements of the table itself,
    // which the growth moves.
    Table present(t), indexed(t);
    EXPECT_EQ(present.Add(*present.Find(String_t("g0"))), nullptr);
    EXPECT_EQ(indexed[*indexed.Find(String_t("g5"))].str, "g5");
    EXPECT_TRUE(present.Size() == 200 && indexed.Size() == 200 && indexed.Card() == 88);
    t.Add(TabStr("g88")); // the 89th: 88 reaches 100 - 12
    EXPECT_TRUE(t.Size() == 200 && t.Card() == 89 && (t & Key("g", 0)));
    // count, asked, size; 85 in 90 reaches 90 - 11 while rebuilding
    const unsigned rows[][3] = {{30, 40, 40}, {50, 10, 100}, {88, 88, 200}, {175, 10, 400}, {85, 90, 180}};
    for (const auto& r : rows) {
        Table big(1000);
        for (unsigned i = 0; i < r[0]; ++i)
            big.Add(TabStr(Key("r", i)));
        big.Resize(r[1]);
        EXPECT_TRUE(big.Size() == r[2] && big.Card() == r[0]) << r[0] << " in " << r[1];
        for (unsigned i = 0; i < r[0]; ++i)
            ASSERT_TRUE(big & TabStr(Key("r", i))) << r[0] << " in " << r[1];
    }
}

// Every operation mirrored into std::map. Small tables under churn fill with tombstones: lookups of
// absent keys then walk every bucket, and insertions reuse tombstones. At the end an iterator walks
// the table, deleting every other element: deletion disturbs nothing and releases the text at once.
TEST(OHashTableTest, MatchesAMapUnderChurn)
{
    for (unsigned initial : {1u, 8u, 100u}) {
        std::mt19937 rng(initial);
        OHashTable<String_t, StrCnt> t(initial);
        std::map<std::string, int> model, walked;
        for (int step = 0; step < 6000; ++step) {
            const std::string k = "m" + std::to_string(rng() % (step < 3000 ? 12 : 300));
            StrCnt x(k.c_str());
            x.count = static_cast<int>(rng() % 1000);
            const bool had = model.count(k) == 1;
            switch (rng() % 4) {
            case 0: ASSERT_EQ(t.Add(x) == nullptr, !model.emplace(k, x.count).second); break;
            case 1: ASSERT_EQ(t[x].count, model.emplace(k, x.count).first->second); break;
            case 2: ASSERT_EQ(t.Del(x.str) != nullptr, model.erase(k) == 1); break;
            default:
                StrCnt* e = t.Find(x.str);
                ASSERT_TRUE(e == nullptr ? !had : had && e->count == model[k]);
            }
            ASSERT_EQ(t.Card(), model.size());
        }
        OHashIterator<String_t, StrCnt> it(t);
        EXPECT_EQ(it.Del(), nullptr); // no current element yet
        unsigned n = 0;
        while (StrCnt* e = it()) {
            walked.emplace(e->str.Text(), e->count);
            EXPECT_TRUE(n++ % 2 || (it.Del() == e && e->str.IsNull()));
        }
        EXPECT_EQ(it.Del(), nullptr);
        EXPECT_EQ(walked, model) << initial;
        EXPECT_TRUE(n == model.size() && t.Card() == n / 2);
    }
}

TEST(OHashTableDeathTest, NoRoomFailsTheBestspotAssertion)
{
    // _Del of an empty bucket uncounts it, so _Add can fill every bucket under the load limit: an
    // insertion then walks size + 1 used buckets.
    OHashTable<String_t, StrCnt> t(10);
    t._Del(0), t._Del(0);
    for (int i = 0; i < 10; ++i)
        t._Add(i, StrCnt(Key("", i)));
    EXPECT_EQ(t.Find(String_t("x")), nullptr);
    EXPECT_EQ(t.Add(StrCnt("3")), nullptr);
    auto report = [](const std::string& function) {
        const std::string signature = function + " [with K = String_t; T = StrCnt]";
        return testutil::AssertionPattern("include/generic/gohash", signature, "bestspot < size");
    };
    EXPECT_DEATH(t.Add(StrCnt("new")), report("T* OHashTable<K, T>::Add(const T&)"));
    EXPECT_DEATH(t[StrCnt("new")], report("T& OHashTable<K, T>::operator[](const T&)"));
    t._Del(5); // one tombstone: the insertion takes it
    StrCnt* got = t.Add(StrCnt("new"));
    EXPECT_EQ(t.Find(String_t("new")), got);
}
