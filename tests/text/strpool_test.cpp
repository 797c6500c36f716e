// StringPool: one representation per text, growth points, concurrent interning.
#include <tevbase/strpool.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <thread>
#include <vector>

// Growth of the pool's first table, taken during static initialisation while the pool is still empty:
// the capacity before the first text, after it and with 88 texts; whether the first text kept its array
// when the next call grew the table; the capacity and the count then.
static std::string FirstTableGrowth()
{
    std::string seen = std::to_string(StringPool::Capacity());
    const char* t0 = StringPool::Get("t0").Chars();
    seen += " " + std::to_string(StringPool::Capacity());
    for (int i = 1; i < 88; ++i)
        StringPool::Get(("t" + std::to_string(i)).c_str());
    seen += " " + std::to_string(StringPool::Capacity());
    // The growth comes before the lookup, even of a present text; texts keep their arrays.
    seen += StringPool::Get("t0").Chars() == t0 ? " same " : " moved ";
    return seen + std::to_string(StringPool::Capacity()) + " " + std::to_string(StringPool::Card());
}

static const std::string g_first_table_growth = FirstTableGrowth();

TEST(StringPoolTest, InternsOnceAndGrowsAtSevenEighths)
{
    EXPECT_EQ(g_first_table_growth, "0 100 100 same 200 88");
    char buf[] = "abc";
    const String_t a = StringPool::Get(buf);
    buf[2] = 'd'; // the pool keeps its own copy
    EXPECT_EQ(StringPool::Get("abc").Chars(), a.Chars());
    EXPECT_NE(StringPool::Get(buf).Chars(), a.Chars());
    EXPECT_EQ(StringPool::Get(buf), "abd");
    EXPECT_FALSE(StringPool::Get("").IsNull()); // pooled like any text
    EXPECT_EQ(StringPool::Get("").Chars(), StringPool::Get("").Chars());
}

TEST(StringPoolTest, ConcurrentCallersGetIdenticalCharacterPointers)
{
    constexpr int kThreads = 8, kTexts = 3000;
    // Each thread keeps its handles until all are joined: the counts are plain, so handles of one
    // text are never released while another thread may be copying it in Get.
    std::vector<std::vector<std::unique_ptr<String_t>>> got(kThreads);
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t)
        threads.emplace_back([t, &mine = got[t]] {
            mine.resize(kTexts);
            for (int k = 0; k < kTexts; ++k) { // even threads race forwards, odd ones backwards
                const int i = t % 2 != 0 ? kTexts - 1 - k : k;
                mine[i].reset(new String_t(StringPool::Get(("conc" + std::to_string(i)).c_str())));
            }
        });
    for (auto& th : threads)
        th.join();
    for (int i = 0; i < kTexts; ++i) {
        ASSERT_EQ(*got[0][i], ("conc" + std::to_string(i)).c_str());
        for (int t = 1; t < kThreads; ++t)
            ASSERT_EQ(got[t][i]->Chars(), got[0][i]->Chars()) << "text " << i << ", thread " << t;
    }
}

TEST(StringPoolDeathTest, NullTextIsRefused)
{
    EXPECT_DEATH(StringPool::Get(nullptr), "Assertion .?text != 0.? failed");
}
