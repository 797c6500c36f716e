// varr_t: growth per step, the deliberate differences from TVarr, searches and run collapsing.
#include <tevbase/varr.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <utility>
#include <vector>

namespace {

using Ints = std::vector<int>;

Ints Contents(varr_t* v)
{
    const int* p = reinterpret_cast<int*>(varr_get(v));
    return Ints(p, p + varr_len(v));
}

varr_t* Make(int size, int type, const Ints& xs)
{
    varr_t* v = varr_create(sizeof(int), size, type);
    for (int x : xs) {
        char* e = varr_app(v, &x);
        EXPECT_EQ(e, varr_get_by_index(v, varr_len(v) - 1));
    }
    return v;
}

int CmpInt(const void* a, const void* b)
{
    const int x = *static_cast<const int*>(a), y = *static_cast<const int*>(b);
    return x < y ? -1 : x > y;
}

} // namespace

TEST(VarrTest, GrowthAndOwnElementsAcrossRealloc)
{
    const struct {
        int size, type, appends, alloc;
    } rows[] = {{256, 1, 257, 512}, {3, 1, 13, 24}, {3, 0, 13, 15}};
    for (const auto& r : rows) {
        varr_t* v = Make(r.size, r.type, Ints(r.appends, 7));
        EXPECT_EQ(v->alloc, r.alloc) << r.size << " " << r.type;
        varr_delete(v);
    }
    varr_t* v = Make(2, 0, {7, 8});
    varr_app(v, varr_get_by_index(v, 0)); // the source moves with the storage
    varr_cat(v, 3, varr_get(v));
    varr_cat(v, 0, nullptr);
    EXPECT_EQ(Contents(v), (Ints{7, 8, 7, 7, 8, 7}));
    varr_delete(v);
}

TEST(VarrTest, DeliberateDifferencesFromTheTemplate)
{
    varr_t* v = Make(4, 1, {1, 2, 3});
    const int nine = 9;
    varr_ass(v, &nine); // resets first
    EXPECT_EQ(Contents(v), (Ints{9}));
    int* saved = reinterpret_cast<int*>(varr_save(v));
    EXPECT_EQ(saved[0], 9);
    EXPECT_EQ(varr_len(v), 0); // saving consumes
    std::free(saved);
    char* old = varr_get(v); // override keeps the old storage for the caller
    int* mine = static_cast<int*>(std::malloc(3 * sizeof(int)));
    mine[0] = 10, mine[1] = 20, mine[2] = 30;
    EXPECT_EQ(varr_override(v, 3, mine), reinterpret_cast<char*>(mine + 2));
    std::free(old);
    varr_app(v, &nine);
    EXPECT_EQ(Contents(v), (Ints{10, 20, 30, 9}));
    varr_reset(v);
    varr_uniq(v, CmpInt); // on an empty array: one element
    EXPECT_EQ(varr_len(v), 1);
    varr_delete(v);
}

TEST(VarrTest, RetrievePopFindSortUniq)
{
    varr_t* v = Make(2, 0, {5, 3, 3, 9, 3, 3, 1});
    const int keys[] = {9, 4};
    EXPECT_EQ(varr_find(v, CmpInt, &keys[0]), varr_get_by_index(v, 3));
    EXPECT_EQ(varr_find(v, CmpInt, &keys[1]), nullptr);
    static std::vector<std::pair<int, int>> calls; // cmp gets (predecessor, element), unlike TVarr::Uniq
    varr_uniq(v, [](const void* a, const void* b) {
        calls.emplace_back(*static_cast<const int*>(a), *static_cast<const int*>(b));
        return CmpInt(a, b);
    });
    EXPECT_EQ(Contents(v), (Ints{5, 3, 9, 3, 1}));
    EXPECT_TRUE(calls.front() == std::make_pair(5, 3) && calls.size() == 6);
    varr_sort(v, CmpInt);
    EXPECT_EQ(*reinterpret_cast<int*>(varr_pop(v)), 9);
    EXPECT_EQ(Contents(v), (Ints{1, 3, 3, 5}));
    std::free(varr_retrieve(v));
    EXPECT_TRUE(varr_len(v) == 0 && v->alloc == 2 && varr_pop(v) == nullptr); // back to the construction size
    varr_delete(v);
}
