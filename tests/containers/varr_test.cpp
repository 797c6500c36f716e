// varr_t: growth per step, the deliberate differences from TVarr, searches and run collapsing.
#include <tevbase/varr.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <utility>
#include <vector>

namespace {

std::vector<int> Ints(varr_t* v)
{
    std::vector<int> out(static_cast<std::size_t>(varr_len(v)));
    if (!out.empty())
        std::memcpy(out.data(), varr_get(v), out.size() * sizeof(int));
    return out;
}

void Append(varr_t* v, std::initializer_list<int> xs)
{
    for (int x : xs)
        varr_app(v, &x);
}

int CmpInt(const void* a, const void* b)
{
    const int x = *static_cast<const int*>(a), y = *static_cast<const int*>(b);
    return x < y ? -1 : x > y;
}

} // namespace

TEST(VarrTest, GrowthAndOwnElementsAcrossRealloc)
{
    struct Row {
        int size, type, appends, alloc;
    } rows[] = {{256, 1, 257, 512}, {3, 1, 13, 24}, {3, 0, 13, 15}};
    for (const Row& r : rows) {
        varr_t* v = varr_create(8, r.size, r.type);
        for (long long i = 0; i < r.appends; ++i) {
            char* e = varr_app(v, &i);
            EXPECT_EQ(e, varr_get_by_index(v, static_cast<int>(i)));
        }
        EXPECT_EQ(v->alloc, r.alloc) << r.size << " " << r.type;
        EXPECT_EQ(*reinterpret_cast<long long*>(varr_get_by_index(v, r.appends - 1)), r.appends - 1);
        varr_delete(v);
    }
    varr_t* v = varr_create(sizeof(int), 2, 0);
    Append(v, {7, 8});
    varr_app(v, varr_get_by_index(v, 0)); // the source moves with the storage
    varr_cat(v, 3, varr_get(v));
    varr_cat(v, 0, nullptr);
    EXPECT_EQ(Ints(v), (std::vector<int>{7, 8, 7, 7, 8, 7}));
    varr_delete(v);
}

TEST(VarrTest, DeliberateDifferencesFromTheTemplate)
{
    varr_t* v = varr_create(sizeof(int), 4, 1);
    Append(v, {1, 2, 3});
    const int nine = 9;
    varr_ass(v, &nine); // resets first
    EXPECT_EQ(Ints(v), (std::vector<int>{9}));
    Append(v, {4, 5});
    int* saved = reinterpret_cast<int*>(varr_save(v));
    EXPECT_EQ(saved[2], 5);
    EXPECT_EQ(varr_len(v), 0); // saving consumes
    std::free(saved);

    char* old = varr_get(v); // override keeps the old storage for the caller
    int* mine = static_cast<int*>(std::malloc(3 * sizeof(int)));
    mine[0] = 10, mine[1] = 20, mine[2] = 30;
    EXPECT_EQ(varr_override(v, 3, mine), reinterpret_cast<char*>(mine + 2));
    std::free(old);
    Append(v, {40});
    EXPECT_EQ(Ints(v), (std::vector<int>{10, 20, 30, 40}));
    varr_reset(v);
    varr_uniq(v, CmpInt); // on an empty array: one element
    EXPECT_EQ(varr_len(v), 1);
    varr_delete(v);
}

TEST(VarrTest, RetrievePopFindSortUniq)
{
    varr_t* v = varr_create(sizeof(int), 2, 0);
    EXPECT_EQ(varr_pop(v), nullptr);
    Append(v, {5, 3, 3, 9, 3, 3, 1});
    const int keys[] = {9, 4};
    EXPECT_EQ(varr_find(v, CmpInt, &keys[0]), varr_get_by_index(v, 3));
    EXPECT_EQ(varr_find(v, CmpInt, &keys[1]), nullptr);

    static std::vector<std::pair<int, int>> calls; // cmp gets (predecessor, element), unlike TVarr::Uniq
    varr_uniq(v, [](const void* a, const void* b) {
        calls.emplace_back(*static_cast<const int*>(a), *static_cast<const int*>(b));
        return CmpInt(a, b);
    });
    EXPECT_EQ(Ints(v), (std::vector<int>{5, 3, 9, 3, 1}));
    EXPECT_EQ(calls.front(), std::make_pair(5, 3));
    EXPECT_EQ(calls.size(), 6u);

    varr_sort(v, CmpInt);
    EXPECT_EQ(*reinterpret_cast<int*>(varr_pop(v)), 9);
    EXPECT_EQ(Ints(v), (std::vector<int>{1, 3, 3, 5}));
    std::free(varr_retrieve(v));
    EXPECT_EQ(varr_len(v), 0);
    EXPECT_EQ(v->alloc, 2); // back to the construction size
    varr_delete(v);
}
