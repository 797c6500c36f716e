// StringPool: one representation per text, growth points, concurrent interning.
#include <tevbase/strpool.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <numeric>
#include <random>
#include <string>
#include <thread>
#include <vector>

TEST(StringPoolTest, EqualTextsShareOneRepresentation)
{
    char buf[] = "abc";
    const String_t a = StringPool::Get(buf);
    buf[2] = 'd'; // the pool keeps its own copy
    const String_t b = StringPool::Get("abc"), d = StringPool::Get(buf);
    EXPECT_EQ(a.Chars(), b.Chars());
    EXPECT_NE(a.Chars(), d.Chars());
    EXPECT_EQ(d, "abd");
    const String_t e = StringPool::Get("");
    EXPECT_FALSE(e.IsNull()); // pooled like any text
    EXPECT_EQ(StringPool::Get("").Chars(), e.Chars());
}

namespace {

// Growth of the pool's first table, taken during static initialisation while the pool is still empty.
// Bit k set means check k failed.
int FirstTableGrowth()
{
    int failures = StringPool::Capacity() != 0;
    const char* t0 = StringPool::Get("t0").Chars();
    failures |= (StringPool::Capacity() != 100) << 1;
    for (int i = 1; i < 88; ++i)
        StringPool::Get(("t" + std::to_string(i)).c_str());
    failures |= (StringPool::Capacity() != 100 || StringPool::Card() != 88) << 2;
    // The growth comes before the lookup, even of a present text; texts keep their arrays.
    failures |= (StringPool::Get("t0").Chars() != t0 || StringPool::Capacity() != 200) << 3;
    return failures | (StringPool::Card() != 88) << 4;
}

const int g_first_table_growth = FirstTableGrowth();

} // namespace

TEST(StringPoolTest, FirstTableHasHundredSlotsAndDoublesAtSevenEighths)
{
    EXPECT_EQ(g_first_table_growth, 0);
}

TEST(StringPoolTest, ConcurrentCallersGetIdenticalCharacterPointers)
{
    constexpr int kThreads = 8, kTexts = 3000;
    // Each thread keeps its handles until all are joined: the counts are plain, so handles of one
    // text are never released while another thread may be copying it in Get.
    std::vector<std::vector<std::unique_ptr<String_t>>> got(kThreads);
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([t, &got] {
            std::vector<int> order(kTexts);
            std::iota(order.begin(), order.end(), 0);
            std::shuffle(order.begin(), order.end(), std::mt19937(t));
            got[t].resize(kTexts);
            for (int i : order)
                got[t][i].reset(new String_t(StringPool::Get(("conc" + std::to_string(i)).c_str())));
        });
    }
    for (auto& th : threads)
        th.join();
    for (int i = 0; i < kTexts; ++i) {
        ASSERT_EQ(*got[0][i], ("conc" + std::to_string(i)).c_str());
        for (int t = 1; t < kThreads; ++t)
            ASSERT_EQ(got[t][i]->Chars(), got[0][i]->Chars()) << "text " << i << ", thread " << t;
    }
}

TEST(StringPoolTest, TableRebuildKeepsEveryRepresentation)
{
    // A table of its own (the process-wide one cannot be reset): asked for 90 slots with 85 texts,
    // the rebuild reaches 90 - 11 and doubles again on the way.
    StringPool::Tab tab;
    std::vector<const char*> chars;
    for (int i = 0; i < 85; ++i)
        chars.push_back(tab.Intern(("own" + std::to_string(i)).c_str()).Chars());
    tab.Resize(90);
    EXPECT_EQ(tab.capacity, 180u);
    for (int i = 0; i < 85; ++i)
        ASSERT_EQ(tab.Intern(("own" + std::to_string(i)).c_str()).Chars(), chars[i]) << i;
    EXPECT_EQ(tab.count, 85u);
    delete[] tab.states; // ~Tab leaves them to the process's end
    delete[] tab.entries;
}

TEST(StringPoolDeathTest, NullTextIsRefused)
{
    EXPECT_DEATH(StringPool::Get(nullptr), "Assertion .?text != 0.? failed");
}
