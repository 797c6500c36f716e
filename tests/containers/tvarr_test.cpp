// TVarr: growth sequences, aliasing appends, removal without destruction, searches, assertions; TShSort.
#include <generic/tvarr>

#include <support/testutil.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <deque>
#include <random>
#include <string>
#include <utility>
#include <vector>

// Counts live objects: every slot of a TVarr is a constructed element, removal destroys nothing.
struct Counted {
    static int live;
    int v;
    Counted(int x = 0) : v(x) { ++live; }
    Counted(const Counted& o) : v(o.v) { ++live; }
    Counted& operator=(const Counted& o) = default;
    ~Counted()
    {
        v = -999; // a read after destruction shows up as a wrong value (and under ASan as an error)
        --live;
    }
};
int Counted::live = 0;

// An element whose array new returns null on request, to reach the "newarr != 0" check.
struct NullAlloc {
    static bool fail;
    int v = 0;
    static void* operator new[](std::size_t n) noexcept { return fail ? nullptr : ::operator new[](n, std::nothrow); }
    static void operator delete[](void* p) noexcept { ::operator delete[](p); }
};
bool NullAlloc::fail = false;

namespace {

// Element factories: value i and back, for each element type under test.
template <class T> struct Elem;
template <> struct Elem<int> {
    static int Make(int i) { return i; }
    static int Key(int e) { return e; }
};
template <> struct Elem<String_t> {
    static String_t Make(int i) { return String_t(std::to_string(i).c_str()); }
    static int Key(const String_t& s) { return std::atoi(s.Text()); }
};
template <> struct Elem<char*> {
    static char* Make(int i)
    {
        static std::deque<std::string> texts; // stable addresses
        while (static_cast<int>(texts.size()) <= i)
            texts.push_back(std::to_string(texts.size()));
        return const_cast<char*>(texts[i].c_str());
    }
    static int Key(const char* s) { return std::atoi(s); }
};
template <> struct Elem<Counted> {
    static Counted Make(int i) { return Counted(i); }
    static int Key(const Counted& c) { return c.v; }
};

template <class T> std::vector<int> Keys(const TVarr<T>& a)
{
    std::vector<int> out;
    for (unsigned i = 0; i < a.Len(); ++i)
        out.push_back(Elem<T>::Key(a.Get()[i]));
    return out;
}

template <class T> void Fill(TVarr<T>& a, std::initializer_list<int> keys)
{
    for (int k : keys)
        a.App(Elem<T>::Make(k));
}

// The slot count, found through Adjust, which takes any length up to it; the length is restored.
template <class T> unsigned Slots(TVarr<T>& a)
{
    const unsigned len = a.Len();
    unsigned lo = len, hi = 1u << 24;
    while (lo < hi) {
        const unsigned mid = lo + (hi - lo + 1) / 2;
        if (a.Adjust(mid) == a.Get() + mid)
            lo = mid;
        else
            hi = mid - 1;
    }
    a.Adjust(len);
    return lo;
}

template <class T> int CmpKeys(const T* a, const T* b)
{
    const int x = Elem<T>::Key(*a), y = Elem<T>::Key(*b);
    return x < y ? -1 : x > y;
}

template <class T> struct KeyIs : TVarrCmp<T> {
    int key;
    mutable int calls = 0;
    explicit KeyIs(int k) : key(k) {}
    int Cmp(const T* e) const override
    {
        ++calls;
        const int k = Elem<T>::Key(*e);
        return key < k ? -1 : key > k;
    }
};

template <class T> struct Between : TVarrRange<T> {
    int low, high;
    std::vector<int> seen;
    Between(int l, int h) : low(l), high(h) {}
    int CmpLow(const T* e) override { return low < Elem<T>::Key(*e) ? -1 : low > Elem<T>::Key(*e); }
    int CmpHigh(const T* e) override { return high < Elem<T>::Key(*e) ? -1 : high > Elem<T>::Key(*e); }
    void Action(T* e) override { seen.push_back(Elem<T>::Key(*e)); }
};

template <class T> class TVarrTyped : public ::testing::Test {
protected:
    void TearDown() override { EXPECT_EQ(Counted::live, 0); }
};
using ElementTypes = ::testing::Types<int, String_t, char*, Counted>;
TYPED_TEST_SUITE(TVarrTyped, ElementTypes);

} // namespace

TYPED_TEST(TVarrTyped, GrowthFollowsTheModeSlotBySlot)
{
    struct Row {
        const char* name;
        unsigned size;
        VarrTypeT mode;
        std::vector<unsigned> slots; // after the 1st, 2nd, ... App
    } rows[] = {
        {"additive 3", 3, VARR_INCR, {3, 3, 3, 6, 6, 6, 9, 9, 9, 12}},
        {"doubling 3", 3, VARR_DOUBLE, {3, 3, 3, 6, 6, 6, 12, 12, 12, 12, 12, 12, 24}},
        {"additive 1", 1, VARR_INCR, {1, 2, 3, 4, 5}},
        {"doubling 1", 1, VARR_DOUBLE, {1, 2, 4, 4, 8, 8, 8, 8, 16}},
    };
    for (const Row& r : rows) {
        SCOPED_TRACE(r.name);
        TVarr<TypeParam> a(r.size, r.mode);
        EXPECT_EQ(Slots(a), r.size);
        for (unsigned i = 0; i < r.slots.size(); ++i) {
            a.App(Elem<TypeParam>::Make(static_cast<int>(i)));
            EXPECT_EQ(Slots(a), r.slots[i]) << "after append " << i + 1;
        }
        std::vector<int> expect(r.slots.size());
        for (unsigned i = 0; i < expect.size(); ++i)
            expect[i] = static_cast<int>(i);
        EXPECT_EQ(Keys(a), expect);
        if (std::is_same<TypeParam, Counted>::value) {
            EXPECT_EQ(Counted::live, static_cast<int>(Slots(a))); // every slot constructed, no more
        }
    }
}

TYPED_TEST(TVarrTyped, ConstructionSizeMinusOneAllocatesLazilyInStepsOf32)
{
    TVarr<TypeParam> a(static_cast<unsigned>(-1), VARR_INCR);
    EXPECT_EQ(a.Get(), nullptr);
    EXPECT_EQ(a.Len(), 0u);
    EXPECT_EQ(a.Pop(), nullptr);
    a.App(Elem<TypeParam>::Make(0));
    EXPECT_EQ(Slots(a), 32u);
    for (int i = 1; i < 32; ++i)
        a.App(Elem<TypeParam>::Make(i));
    EXPECT_EQ(Slots(a), 32u);
    a.App(Elem<TypeParam>::Make(32));
    EXPECT_EQ(Slots(a), 64u);

    // Retrieve of a never-grown lazy array: null, then a fresh block of 32 slots.
    TVarr<TypeParam> lazy(static_cast<unsigned>(-1), VARR_INCR);
    EXPECT_EQ(lazy.Retrieve(), nullptr);
    EXPECT_NE(lazy.Get(), nullptr);
    EXPECT_EQ(Slots(lazy), 32u);

    // Copy of a lazy array: an empty block of 0 slots, still stepping by 32.
    TVarr<TypeParam> copy(lazy);
    TVarr<TypeParam> lazy2(static_cast<unsigned>(-1), VARR_INCR);
    TVarr<TypeParam> copy2(lazy2);
    EXPECT_EQ(Slots(copy2), 0u);
    copy2.App(Elem<TypeParam>::Make(1));
    EXPECT_EQ(Slots(copy2), 32u);
}

TYPED_TEST(TVarrTyped, ExtendComputesTheFinalSizeAndResizeOnlyReserves)
{
    TVarr<TypeParam> d(10, VARR_DOUBLE);
    Fill(d, {1, 2, 3});
    TypeParam* before = d.Get();
    d.Extend(7); // fits: nothing changes
    EXPECT_EQ(d.Get(), before);
    d.Extend(100);
    EXPECT_EQ(Slots(d), 160u); // 10, 20, 40, 80, 160 in one allocation
    EXPECT_EQ(Keys(d), (std::vector<int>{1, 2, 3}));

    TVarr<TypeParam> i(10, VARR_INCR);
    Fill(i, {1, 2, 3});
    i.Extend(92);
    EXPECT_EQ(Slots(i), 100u);
    i.Resize(2); // below the length: the wrapped sum fits
    EXPECT_EQ(Slots(i), 100u);
    EXPECT_EQ(i.Len(), 3u);
    i.Resize(250);
    EXPECT_EQ(Slots(i), 250u);
    EXPECT_EQ(i.Len(), 3u);
    for (int k = 4; k <= 250; ++k)
        i.Ass(Elem<TypeParam>::Make(k)); // room was made
    EXPECT_EQ(i.Len(), 250u);
    EXPECT_EQ(Slots(i), 250u);
}

TYPED_TEST(TVarrTyped, AppendingOwnElementsAtFullCapacity)
{
    TVarr<TypeParam> a(4, VARR_DOUBLE);
    Fill(a, {10, 11, 12, 13});
    a.App(a[0]); // a[0] lives in the block that growth replaces
    EXPECT_EQ(Keys(a), (std::vector<int>{10, 11, 12, 13, 10}));

    TVarr<TypeParam> b(3, VARR_INCR);
    Fill(b, {1, 2, 3});
    TypeParam* last = b.Cat(b.Len(), b.Get());
    EXPECT_EQ(Keys(b), (std::vector<int>{1, 2, 3, 1, 2, 3}));
    EXPECT_EQ(last, b.Get() + 5);
    b.Cpy(2, b.Get() + 3);
    EXPECT_EQ(Keys(b), (std::vector<int>{1, 2}));
    b.Cat(0, nullptr);
    EXPECT_EQ(b.Len(), 2u);
}

TYPED_TEST(TVarrTyped, RemovalOnlyMovesTheEnd)
{
    TVarr<TypeParam> a(8, VARR_INCR);
    Fill(a, {1, 1, 2, 2, 2, 3, 1});
    a.Uniq(CmpKeys<TypeParam>);
    EXPECT_EQ(Keys(a), (std::vector<int>{1, 2, 3, 1}));
    // The removed values stay in the slots behind the end.
    EXPECT_EQ(Elem<TypeParam>::Key(a.Get()[4]), 2);

    a.Cpy(0, nullptr);
    Fill(a, {2, 5, 2, 7});
    a.Remove(KeyIs<TypeParam>(2));
    EXPECT_EQ(Keys(a), (std::vector<int>{5, 7}));

    TypeParam* popped = a.Pop();
    ASSERT_NE(popped, nullptr);
    EXPECT_EQ(Elem<TypeParam>::Key(*popped), 7); // readable until the next append
    EXPECT_EQ(a.Len(), 1u);
    EXPECT_EQ(a.Adjust(Slots(a) + 1), a.Get() + 1);
    EXPECT_EQ(a.Adjust(3), a.Get() + 3); // the slots behind the end come back as they were
    EXPECT_EQ(Keys(a), (std::vector<int>{5, 7, 2}));
    a.Reset();
    EXPECT_EQ(a.Pop(), nullptr);
    EXPECT_EQ(a.Len(), 0u);
}

TYPED_TEST(TVarrTyped, CopiesKeepSlotsStepAndMode)
{
    TVarr<TypeParam> a(5, VARR_INCR);
    Fill(a, {1, 2, 3, 4, 5, 6, 7});
    TVarr<TypeParam> b(a);
    EXPECT_EQ(Slots(b), 10u);
    EXPECT_EQ(Keys(b), Keys(a));
    b.Cat(4, b.Get());
    EXPECT_EQ(Slots(b), 15u); // additive by 5
    EXPECT_EQ(a.Len(), 7u);

    TVarr<TypeParam> c(2, VARR_DOUBLE);
    c = b;
    EXPECT_EQ(Keys(c), Keys(b));
    const TVarr<TypeParam>& same = c;
    c = same;
    EXPECT_EQ(Keys(c), Keys(b));

    TypeParam* saved = a.Save();
    for (int i = 0; i < 7; ++i)
        EXPECT_EQ(Elem<TypeParam>::Key(saved[i]), i + 1);
    delete[] saved;
    a.Reset();
    saved = a.Save();
    EXPECT_NE(saved, nullptr); // a zero-length block
    delete[] saved;

    TypeParam* block = b.Retrieve();
    EXPECT_EQ(b.Len(), 0u);
    EXPECT_EQ(Slots(b), 5u);
    TypeParam* end = b.Override(11, block);
    EXPECT_EQ(end, b.Get() + 10);
    EXPECT_EQ(Keys(b), (std::vector<int>{1, 2, 3, 4, 5, 6, 7, 1, 2, 3, 4}));
}

TYPED_TEST(TVarrTyped, BFindMeetsEveryKeyAndMissesBetween)
{
    TVarr<TypeParam> a(4, VARR_DOUBLE);
    KeyIs<TypeParam> none(5);
    EXPECT_EQ(a.BFind(none), nullptr);
    EXPECT_EQ(none.calls, 0);
    for (int n = 1; n <= 9; ++n) {
        a.Reset();
        for (int k = 0; k < n; ++k)
            a.App(Elem<TypeParam>::Make(2 * k + 1)); // 1, 3, 5, ...
        for (int key = 0; key <= 2 * n + 1; ++key) {
            SCOPED_TRACE(testing::Message() << "n " << n << " key " << key);
            TypeParam* hit = a.BFind(KeyIs<TypeParam>(key));
            if (key % 2 == 1 && key < 2 * n)
                EXPECT_EQ(hit, a.Get() + key / 2);
            else
                EXPECT_EQ(hit, nullptr);
            EXPECT_EQ(a.Find(KeyIs<TypeParam>(key)), hit);
        }
    }
    a.Cpy(0, nullptr);
    Fill(a, {4, 4, 4, 4, 4});
    EXPECT_EQ(a.BFind(KeyIs<TypeParam>(4)), a.Get() + 2); // the first met, not the first of the run
    EXPECT_EQ(a.Find(KeyIs<TypeParam>(4)), a.Get());
}

TYPED_TEST(TVarrTyped, RSearchVisitsTheRangeBetweenBisectedBounds)
{
    TVarr<TypeParam> a(8, VARR_DOUBLE);
    Between<TypeParam> empty(0, 100);
    a.RSearch(empty);
    EXPECT_TRUE(empty.seen.empty());

    Fill(a, {1, 3, 5, 7, 9});
    struct Row {
        int low, high;
        std::vector<int> seen;
    } rows[] = {{4, 8, {5, 7}}, {10, 20, {}}, {0, 1, {1}}, {1, 9, {1, 3, 5, 7, 9}}, {-5, 0, {}},
                {3, 3, {3}},    {6, 6, {}},    {8, 2, {}},  {0, 100, {1, 3, 5, 7, 9}}};
    for (const Row& r : rows) {
        Between<TypeParam> range(r.low, r.high);
        a.RSearch(range);
        EXPECT_EQ(range.seen, r.seen) << r.low << ".." << r.high;
    }

    // A bound equal to a run stops at the element its bisection meets: the rest of the run is out.
    a.Cpy(0, nullptr);
    Fill(a, {5, 5, 5, 5, 5});
    Between<TypeParam> fives(5, 5);
    a.RSearch(fives);
    EXPECT_EQ(fives.seen, (std::vector<int>{5}));
    a.Cpy(0, nullptr);
    Fill(a, {1, 5, 5, 5, 9});
    Between<TypeParam> upto(0, 5);
    a.RSearch(upto);
    EXPECT_EQ(upto.seen, (std::vector<int>{1, 5, 5})); // upper bisection meets index 2
}

TYPED_TEST(TVarrTyped, SortsWithQsort)
{
    std::mt19937 rng(7);
    TVarr<TypeParam> a(16, VARR_DOUBLE);
    std::vector<int> model;
    for (int i = 0; i < 300; ++i) {
        const int k = static_cast<int>(rng() % 50);
        a.App(Elem<TypeParam>::Make(k));
        model.push_back(k);
    }
    a.Sort(CmpKeys<TypeParam>);
    std::sort(model.begin(), model.end());
    EXPECT_EQ(Keys(a), model);
    a.Uniq(CmpKeys<TypeParam>);
    model.erase(std::unique(model.begin(), model.end()), model.end());
    EXPECT_EQ(Keys(a), model);
}

// Random operations mirrored into a vector; with Counted, every slot is a live object at all times.
TEST(TVarrModelTest, RandomOperationsMatchAVector)
{
    std::mt19937 rng(2024);
    for (int round = 0; round < 20; ++round) {
        const VarrTypeT mode = round % 2 ? VARR_DOUBLE : VARR_INCR;
        TVarr<Counted> a(1 + rng() % 6, mode);
        std::vector<int> model;
        for (int step = 0; step < 400; ++step) {
            const int k = static_cast<int>(rng() % 10);
            switch (rng() % 9) {
            case 0:
            case 1:
                a.App(Counted(k));
                model.push_back(k);
                break;
            case 2: {
                const Counted run[3] = {k, k, k + 1};
                a.Cat(3, run);
                model.insert(model.end(), {k, k, k + 1});
                break;
            }
            case 3:
                if (!model.empty()) {
                    const unsigned at = rng() % model.size();
                    a.App(a[static_cast<int>(at)]);
                    model.push_back(model[at]);
                }
                break;
            case 4:
                if (a.Pop() != nullptr)
                    model.pop_back();
                break;
            case 5:
                a.Uniq(CmpKeys<Counted>);
                model.erase(std::unique(model.begin(), model.end()), model.end());
                break;
            case 6:
                a.Remove(KeyIs<Counted>(k));
                model.erase(std::remove(model.begin(), model.end(), k), model.end());
                break;
            case 7: {
                TVarr<Counted> b(a);
                a = b;
                break;
            }
            case 8:
                if (rng() % 8 == 0) {
                    a.Reset();
                    model.clear();
                }
                break;
            }
            ASSERT_EQ(Keys(a), model) << "round " << round << " step " << step;
            ASSERT_EQ(Counted::live, static_cast<int>(Slots(a)));
        }
    }
    EXPECT_EQ(Counted::live, 0);
}

TEST(TVarrTest, IndexAndCharBuffers)
{
    TVarr<char> text(1024, VARR_DOUBLE);
    const char* hello = "hello";
    text.Cat(5, hello);
    text.App('\0');
    EXPECT_STREQ(text.Get(), "hello");
    EXPECT_EQ(&text[-1], text.Get() - 1); // negative indexes are not checked
    const TVarr<char>& view = text;
    EXPECT_EQ(view[4], 'o');
    char* p = text;
    EXPECT_EQ(p, text.Get());

    char buf[8] = "abcdefg";
    ArrSet(buf, 'x', 3);
    EXPECT_STREQ(buf, "xxxdefg");
    ArrCpy(buf + 3, "123", 3);
    EXPECT_STREQ(buf, "xxx123g");
    ArrCpy(buf, static_cast<const char*>(buf), 7); // same range: nothing
    EXPECT_STREQ(buf, "xxx123g");
}

TEST(TVarrDeathTest, AssertionsNameTheInstantiatedSignature)
{
    TVarr<char*> args(4, VARR_INCR);
    args.App(const_cast<char*>("ls"));
    EXPECT_DEATH(args[1], testutil::AssertionPattern("include/generic/tvarr",
                                                      "T& TVarr<T>::operator[](int) [with T = char*]",
                                                      "i < (arrp-arr)"));
    const TVarr<char*>& cargs = args;
    EXPECT_DEATH(cargs[1], testutil::AssertionPattern("include/generic/tvarr",
                                                       "const T& TVarr<T>::operator[](int) const [with T = char*]",
                                                       "i < (arrp-arr)"));

    // An unknown mode is stored without complaint and fails only when growth is needed.
    TVarr<int> odd(2, static_cast<VarrTypeT>(7));
    odd.App(1);
    odd.App(2);
    odd.Extend(0);
    EXPECT_DEATH(odd.App(3), testutil::AssertionPattern("include/generic/tvarr",
                                                        "void TVarr<T>::Extend(unsigned int) [with T = int]", "0"));

    TVarr<NullAlloc> nulls(1, VARR_DOUBLE);
    nulls.App(NullAlloc());
    NullAlloc::fail = true;
    EXPECT_DEATH(nulls.App(NullAlloc()),
                 testutil::AssertionPattern("include/generic/tvarr",
                                            "void TVarr<T>::Extend(unsigned int) [with T = NullAlloc]", "newarr != 0"));
    NullAlloc::fail = false;

    // Doubling from no slots would never end.
    TVarr<int> stuck(0, VARR_DOUBLE);
    EXPECT_DEATH(stuck.App(1), "Assertion .newsize > before. failed");
}

// Shell sort: on sorted input every pass compares each element once with the one a gap below, so
// the first-argument indexes of one pass run 0, 1, ..., n - gap - 1.
TEST(TShSortTest, GapSequenceStartsAboveNinthOfN)
{
    static std::vector<long> firsts;
    static const int* base;
    auto cmp = [](const int* a, const int* b) {
        firsts.push_back(a - base);
        return *a < *b ? -1 : *a > *b;
    };
    struct Row {
        unsigned n;
        std::vector<unsigned> gaps;
    } rows[] = {{1, {1}}, {8, {1}}, {9, {4, 1}}, {35, {4, 1}}, {36, {13, 4, 1}}, {40, {13, 4, 1}},
                {121, {40, 13, 4, 1}}};
    for (const Row& r : rows) {
        std::vector<int> a(r.n);
        for (unsigned i = 0; i < r.n; ++i)
            a[i] = static_cast<int>(i);
        firsts.clear();
        base = a.data();
        TShSort<int>(a.data(), r.n, cmp);
        std::vector<long> expect;
        for (unsigned gap : r.gaps)
            for (unsigned i = 0; i + gap < r.n; ++i)
                expect.push_back(i);
        EXPECT_EQ(firsts, expect) << "n " << r.n;
    }
}

TEST(TShSortTest, SortsAndShiftsOnlyStrictlyGreater)
{
    std::mt19937 rng(11);
    for (unsigned n : {0u, 1u, 2u, 8u, 9u, 50u, 333u}) {
        std::vector<int> a(n);
        for (int& x : a)
            x = static_cast<int>(rng() % 20);
        std::vector<int> expect = a;
        std::sort(expect.begin(), expect.end());
        TShSort<int>(a.data(), n, [](const int* x, const int* y) { return *x < *y ? -1 : *x > *y; });
        EXPECT_EQ(a, expect) << "n " << n;
    }
    // Below 9 elements it is a plain insertion sort: equal keys keep their order.
    std::pair<int, char> p[8] = {{2, 'a'}, {1, 'b'}, {2, 'c'}, {1, 'd'}, {0, 'e'}, {2, 'f'}, {1, 'g'}, {0, 'h'}};
    TShSort<std::pair<int, char>>(p, 8, [](const std::pair<int, char>* x, const std::pair<int, char>* y) {
        return x->first - y->first;
    });
    std::string order;
    for (const auto& e : p)
        order += e.second;
    EXPECT_EQ(order, "ehbdgacf");
}
