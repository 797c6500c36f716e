// Pool: free-list reuse, blocks, Destroy, class-specific operators, concurrent use.
#include <tevbase/pool.h>

#include <gtest/gtest.h>

#include <algorithm>
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
    std::vector<char*> got;
    for (int i = 0; i < 4; ++i)
        got.push_back(static_cast<char*>(pool.Alloc(size, block)));
    for (int i = 1; i < 4; ++i)
        EXPECT_EQ(got[i], got[i - 1] + size);

    char* fifth = static_cast<char*>(pool.Alloc(size, block)); // a new block
    EXPECT_TRUE(std::find(got.begin(), got.end(), fifth) == got.end());

    pool.Free(got[2]);
    pool.Free(got[0]);
    pool.Free(nullptr); // ignored
    EXPECT_EQ(pool.Alloc(size, block), got[0]);
    EXPECT_EQ(pool.Alloc(size, block), got[2]);

    pool.Destroy();
    void* after = pool.Alloc(size, block); // the free list was dropped with the blocks
    EXPECT_NE(after, nullptr);
    pool.Destroy();
}

TEST(PoolTest, ClassOperatorsUsePoolOnlyForTheirOwnSize)
{
    Pooled* a = new Pooled;
    delete a;
    Pooled* b = new Pooled;
    EXPECT_EQ(a, b); // reused from the free list
    delete b;

    Bigger* big = new Bigger; // a foreign size goes to the general allocator and back
    big->extra[99] = 1;
    delete big;
    Pooled* c = new Pooled;
    EXPECT_EQ(c, b); // the free list did not see the derived object
    delete c;
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
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([t, &kept] {
            std::vector<Pooled*> held;
            for (int r = 0; r < kRounds; ++r) {
                Pooled* p = new Pooled;
                p->b = t;
                held.push_back(p);
                if (held.size() > kHeld) {
                    EXPECT_EQ(held.front()->b, t);
                    delete held.front();
                    held.erase(held.begin());
                }
            }
            kept[t] = held;
        });
    }
    for (std::thread& th : threads)
        th.join();
    std::set<Pooled*> live;
    for (int t = 0; t < kThreads; ++t)
        for (Pooled* p : kept[t]) {
            EXPECT_EQ(p->b, t);
            EXPECT_TRUE(live.insert(p).second);
        }
    for (Pooled* p : live)
        delete p;
}
