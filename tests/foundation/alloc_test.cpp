// Checked allocators and halt.
#include <tevbase/alloc.h>

#include <gtest/gtest.h>
#include <support/testutil.h>

#include <cstdlib>
#include <cstring>

TEST(AllocDeathTest, FailuresReportOutOfMemoryAndAbort)
{
    void* p = SMalloc(16);
    // Overflow of count * size fails before any reallocation; a zero element size is a caller error.
    EXPECT_DEATH(SArealloc(p, 0x10000, 0x10000), testutil::ExactStderr("out of memory"));
    EXPECT_DEATH(SArealloc(p, 1, 0), testutil::ExactStderr("out of memory"));
    uint32_t cap = 0;
    EXPECT_DEATH(SBalloc(&cap, nullptr, 0xFFFFFFFFu, 1), testutil::ExactStderr("out of memory"));
    EXPECT_DEATH(halt(), "");
    std::free(p);
}

TEST(AllocTest, ReallocationKeepsContents)
{
    char* p = static_cast<char*>(SRealloc(nullptr, 4)); // null behaves as SMalloc
    std::memcpy(p, "abc", 4);
    p = static_cast<char*>(SArealloc(p, 1000, 4));
    EXPECT_STREQ(p, "abc");
    std::free(SArealloc(p, 0, 0)); // count 0 passes the overflow test
}

TEST(AllocTest, SBallocGrowsToNextMultipleOf256Above)
{
    const struct { uint32_t cap, needed, expected; } rows[] = {
        {10, 10, 10}, {10, 11, 256}, {0, 0, 0}, {0, 255, 256}, {0, 256, 512}, {256, 300, 512}};
    for (const auto& r : rows) {
        uint32_t cap = r.cap;
        void* old = SMalloc(r.cap ? r.cap : 1);
        void* p = SBalloc(&cap, old, r.needed, 1);
        EXPECT_EQ(cap, r.expected) << r.needed;
        EXPECT_TRUE(r.cap < r.needed || p == old) << r.needed;
        std::free(p);
    }
}
