// StringPool: one representation per text, growth points, concurrent interning; Mutex.
#include <tevbase/strpool.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <random>
#include <string>
#include <thread>
#include <vector>

TEST(StringPoolTest, EqualTextsShareOneRepresentation)
{
    char buf[] = "abc";
    const String_t a = StringPool::Get(buf);
    buf[2] = 'd'; // the pool keeps its own copy
    const String_t b = StringPool::Get("abc");
    const String_t d = StringPool::Get(buf);
    EXPECT_EQ(a, "abc");
    EXPECT_EQ(d, "abd");
    EXPECT_EQ(a.Chars(), b.Chars());
    EXPECT_NE(a.Chars(), d.Chars());

    const String_t e1 = StringPool::Get(""), e2 = StringPool::Get("");
    EXPECT_EQ(e1, ""); // pooled like any text: non-null
    EXPECT_FALSE(e1.IsNull());
    EXPECT_EQ(e1.Chars(), e2.Chars());

    const String_t prefix = StringPool::Get("ab");
    EXPECT_NE(prefix.Chars(), a.Chars());
    const unsigned card = StringPool::Card();
    StringPool::Get("abc");
    StringPool::Get("ab");
    EXPECT_EQ(StringPool::Card(), card);
}

TEST(StringPoolTest, DoublesAtSevenEighthsBeforeTheLookup)
{
    StringPool::Get("seed"); // the table exists from here on
    const unsigned capacity = StringPool::Capacity();
    ASSERT_GE(capacity, 100u);
    int n = 0;
    while (StringPool::Card() < capacity - capacity / 8)
        StringPool::Get(("grow" + std::to_string(n++)).c_str());
    EXPECT_EQ(StringPool::Capacity(), capacity);
    const String_t before = StringPool::Get("seed"); // present, yet the table doubles first
    EXPECT_EQ(StringPool::Capacity(), 2 * capacity);
    EXPECT_EQ(StringPool::Card(), capacity - capacity / 8);
    for (int i = 0; i < n; ++i) // every text survived the rebuild with its representation
        ASSERT_EQ(StringPool::Get(("grow" + std::to_string(i)).c_str()), ("grow" + std::to_string(i)).c_str());
    EXPECT_EQ(StringPool::Get("seed").Chars(), before.Chars());
}

TEST(StringPoolTest, FirstTableHasHundredSlotsAndGrowsToTwoHundred)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe"); // a fresh process with an empty pool
    EXPECT_EXIT(
        {
            int failures = StringPool::Capacity() != 0;
            StringPool::Get("t0");
            failures |= (StringPool::Capacity() != 100) << 1;
            for (int i = 1; i < 88; ++i)
                StringPool::Get(("t" + std::to_string(i)).c_str());
            failures |= (StringPool::Capacity() != 100 || StringPool::Card() != 88) << 2;
            StringPool::Get("t88"); // the 89th text: 88 reaches 100 - 12
            failures |= (StringPool::Capacity() != 200 || StringPool::Card() != 89) << 3;
            std::exit(failures);
        },
        ::testing::ExitedWithCode(0), "");
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
            for (int i = 0; i < kTexts; ++i)
                order[i] = i;
            std::shuffle(order.begin(), order.end(), std::mt19937(t));
            got[t].resize(kTexts);
            for (int i : order)
                got[t][i].reset(new String_t(StringPool::Get(("conc" + std::to_string(i)).c_str())));
        });
    }
    for (auto& th : threads)
        th.join();
    for (int i = 0; i < kTexts; ++i) {
        const char* p = got[0][i]->Chars();
        ASSERT_STREQ(p, ("conc" + std::to_string(i)).c_str());
        for (int t = 1; t < kThreads; ++t)
            ASSERT_EQ(got[t][i]->Chars(), p) << "text " << i << ", thread " << t;
    }
    EXPECT_EQ(StringPool::Get("conc17").Chars(), got[3][17]->Chars());
}

TEST(MutexTest, LocksWhenInitialisedAndGuardsAScope)
{
    Mutex m;
    ASSERT_TRUE(m.Lock());
    m.Unlock();
    long total = 0;
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&] {
            for (int i = 0; i < 20000; ++i) {
                Mutex::Guard g(m);
                ++total;
            }
        });
    for (auto& th : threads)
        th.join();
    EXPECT_EQ(total, 80000);
}

TEST(StringPoolTest, TableRebuildKeepsEveryRepresentation)
{
    // A table of its own (the process-wide one cannot be reset): asked for 90 slots with 85 texts,
    // the rebuild reaches 90 - 11 and doubles again on the way.
    StringPool::Tab tab;
    std::vector<const char*> chars;
    for (int i = 0; i < 85; ++i)
        chars.push_back(tab.Intern(("own" + std::to_string(i)).c_str()).Chars());
    EXPECT_EQ(tab.capacity, 100u);
    tab.Resize(90);
    EXPECT_EQ(tab.capacity, 180u);
    EXPECT_EQ(tab.count, 85u);
    for (int i = 0; i < 85; ++i)
        ASSERT_EQ(tab.Intern(("own" + std::to_string(i)).c_str()).Chars(), chars[i]) << i;
    EXPECT_EQ(tab.count, 85u);
    tab.Resize(10); // too small for 85: 100 slots
    EXPECT_EQ(tab.capacity, 100u);
    EXPECT_EQ(tab.Intern("own84").Chars(), chars[84]);
    delete[] tab.states; // ~Tab leaves them to the process's end
    delete[] tab.entries;
}

TEST(StringPoolDeathTest, NullTextIsRefused)
{
    EXPECT_DEATH(StringPool::Get(nullptr), "Assertion .?text != 0.? failed");
}
