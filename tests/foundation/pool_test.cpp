// Pool: free-list reuse, blocks, Destroy, class-specific operators, concurrent use.
#include <tevbase/pool.h>

#include <gtest/gtest.h>

#include <set>
#include <thread>
#include <vector>

namespace {

Pool test_pool;

struct Pooled {
    void* a;
    int b;
    static void* operator new(std::size_t n) { return test_pool.New(n, sizeof(Pooled), 256); }
    static void operator delete(void* p, std::size_t n) { test_pool.Delete(p, n, sizeof(Pooled)); }
};

struct Bigger : Pooled {
    char extra[100];
};

} // namespace

TEST(PoolTest, ElementsComeInAddressOrderAndAreReusedLastFreedFirst)
{
    static Pool pool;
    const unsigned size = 16, block = 8 + 4 * size; // four elements a block
    char* first = static_cast<char*>(pool.Alloc(size, block));
    for (int i = 1; i < 4; ++i)
        EXPECT_EQ(pool.Alloc(size, block), first + i * size);
    char* fifth = static_cast<char*>(pool.Alloc(size, block)); // a new block
    EXPECT_TRUE(fifth < first || fifth >= first + 4 * size);
    pool.Free(first + 2 * size);
    pool.Free(first);
    pool.Free(nullptr); // ignored
    EXPECT_EQ(pool.Alloc(size, block), first);
    EXPECT_EQ(pool.Alloc(size, block), first + 2 * size);
    pool.Destroy(); // the free list goes with the blocks: AddressSanitizer sees any later use
    EXPECT_NE(pool.Alloc(size, block), nullptr);
    pool.Destroy();
}

TEST(PoolTest, ClassOperatorsUsePoolOnlyForTheirOwnSize)
{
    Pooled* a = new Pooled;
    delete a;
    Bigger* big = new Bigger; // a foreign size goes to the general allocator and back
    big->extra[99] = 1;
    delete big;
    Pooled* b = new Pooled;
    EXPECT_EQ(a, b); // reused from the free list, which never saw the derived object
    delete b;
}

TEST(PoolDeathTest, PoolIsNeverAllocatedDynamically)
{
    EXPECT_DEATH(new Pool, "");
}

TEST(PoolTest, ConcurrentAllocationHandsOutEachElementOnce)
{
    constexpr int kThreads = 4, kRounds = 2000, kHeld = 50;
    std::vector<std::vector<Pooled*>> kept(kThreads);
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t)
        threads.emplace_back([t, &held = kept[t]] {
            for (int r = 0; r < kRounds; ++r) {
                held.push_back(new Pooled{nullptr, t});
                if (held.size() > kHeld) {
                    EXPECT_EQ(held.front()->b, t);
                    delete held.front();
                    held.erase(held.begin());
                }
            }
        });
    for (std::thread& th : threads)
        th.join();
    std::set<Pooled*> live;
    for (int t = 0; t < kThreads; ++t)
        for (Pooled* p : kept[t]) {
            EXPECT_EQ(p->b, t);
            EXPECT_TRUE(live.insert(p).second);
            delete p;
        }
}
