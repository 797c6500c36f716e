// TVarr: growth sequences, aliasing appends, removal without destruction, searches, assertions; TShSort.
#include <generic/tvarr>

#include <support/testutil.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

// Counts live objects: every slot of a TVarr is a constructed element, and removal destroys nothing.
struct Counted {
    static int live;
    int v;
    Counted(int x = 0) : v(x) { ++live; }
    Counted(const Counted& o) : v(o.v) { ++live; }
    Counted& operator=(const Counted& o) = default;
    ~Counted() { --live; }
};
int Counted::live = 0;

// Array new that returns null on request, to reach the "newarr != 0" check.
struct NullAlloc {
    static bool fail;
    static void* operator new[](std::size_t n) noexcept { return fail ? nullptr : ::operator new[](n, std::nothrow); }
    static void operator delete[](void* p) noexcept { ::operator delete[](p); }
};
bool NullAlloc::fail = false;

namespace {

using Ints = std::vector<int>;

int Key(const Counted& c) { return c.v; }
int Key(const String_t& s) { return std::atoi(s.Text()); }
String_t Str(int i) { return String_t(std::to_string(i).c_str()); }

template <class T> Ints Keys(const TVarr<T>& a)
{
    Ints out;
    for (unsigned i = 0; i < a.Len(); ++i)
        out.push_back(Key(a.Get()[i]));
    return out;
}

void Fill(TVarr<String_t>& a, const Ints& keys)
{
    a.Reset();
    for (int k : keys)
        a.App(Str(k));
}

// The slot count, found through Adjust, which takes any length up to it; the length is restored.
template <class T> unsigned Slots(TVarr<T>& a)
{
    const unsigned len = a.Len();
    unsigned n = len;
    while (a.Adjust(n + 1) == a.Get() + n + 1)
        ++n;
    a.Adjust(len);
    return n;
}

int Sign(int key, int elem) { return key < elem ? -1 : key > elem; }
template <class T> int CmpKeys(const T* a, const T* b) { return Sign(Key(*a), Key(*b)); }

template <class T> struct KeyIs : TVarrCmp<T> {
    int key;
    mutable int calls = 0;
    explicit KeyIs(int k) : key(k) {}
    int Cmp(const T* e) const override { return ++calls, Sign(key, Key(*e)); }
};

template <class T> struct Between : TVarrRange<T> {
    int low, high;
    Ints seen;
    Between(int l, int h) : low(l), high(h) {}
    int CmpLow(const T* e) override { return Sign(low, Key(*e)); }
    int CmpHigh(const T* e) override { return Sign(high, Key(*e)); }
    void Action(T* e) override { seen.push_back(Key(*e)); }
};

} // namespace

TEST(TVarrTest, GrowthFollowsTheModeSlotBySlot)
{
    const unsigned lazy = static_cast<unsigned>(-1); // nothing until the first App, then steps of 32
    struct Row {
        unsigned size;
        VarrTypeT mode;
        std::vector<unsigned> slots; // after the 1st, 2nd, ... App
    } rows[] = {{3, VARR_INCR, {3, 3, 3, 6, 6, 6, 9}},
                {3, VARR_DOUBLE, {3, 3, 3, 6, 6, 6, 12, 12, 12, 12, 12, 12, 24}},
                {1, VARR_DOUBLE, {1, 2, 4, 4, 8}},
                {lazy, VARR_INCR, std::vector<unsigned>(32, 32)}};
    for (const Row& r : rows) {
        TVarr<String_t> a(r.size, r.mode);
        EXPECT_EQ(a.Get() == nullptr, r.size == lazy);
        for (unsigned i = 0; i < r.slots.size(); ++i) {
            a.App(Str(static_cast<int>(i)));
            EXPECT_EQ(Slots(a), r.slots[i]) << "size " << r.size << " mode " << r.mode << " append " << i + 1;
        }
        a.App(Str(0));
        if (r.size == lazy) {
            EXPECT_EQ(Slots(a), 64u); // the 33rd
        }
    }
    TVarr<String_t> never(lazy, VARR_INCR);
    EXPECT_EQ(never.Retrieve(), nullptr); // then a fresh block of 32 slots
    EXPECT_EQ(Slots(never), 32u);

    TVarr<String_t> d(10, VARR_DOUBLE);
    Fill(d, {1, 2, 3});
    d.Extend(100); // 10, 20, 40, 80, 160 in one allocation
    EXPECT_EQ(Slots(d), 160u);
    String_t* before = d.Get();
    d.Resize(2); // below the length: the wrapped sum fits, nothing changes
    EXPECT_EQ(d.Get(), before);
    EXPECT_EQ(Slots(d), 160u);
    EXPECT_EQ(Keys(d), (Ints{1, 2, 3}));
}

TEST(TVarrTest, RemovalCopiesAndBlocks)
{
    TVarr<String_t> a(3, VARR_INCR);
    Fill(a, {1, 2, 3, 4});
    EXPECT_EQ(Key(*a.Pop()), 4); // removal only moves the end: the value stays behind it
    EXPECT_EQ(a.Adjust(Slots(a) + 1), a.Get() + 3);
    a.Adjust(4);
    EXPECT_EQ(Keys(a), (Ints{1, 2, 3, 4}));

    TVarr<String_t> c(a); // the source's slots, not its length; its step and mode
    EXPECT_EQ(Slots(c), 6u);
    c.Cat(3, c.Get());
    EXPECT_EQ(Slots(c), 9u);
    String_t* saved = c.Save();
    EXPECT_EQ(Key(saved[6]), 3);
    delete[] saved;
    c.Reset();
    saved = c.Save();
    EXPECT_NE(saved, nullptr); // a zero-length block
    delete[] saved;

    String_t* block = a.Retrieve();
    EXPECT_EQ(a.Len(), 0u);
    EXPECT_EQ(Slots(a), 3u);
    String_t* last = a.Override(4, block);
    EXPECT_EQ(last, a.Get() + 3);
    EXPECT_EQ(Keys(a), (Ints{1, 2, 3, 4}));
}

TEST(TVarrTest, BisectionBoundsOfBFindAndRSearch)
{
    TVarr<String_t> a(4, VARR_DOUBLE);
    KeyIs<String_t> none(5);
    Between<String_t> all(0, 100);
    EXPECT_EQ(a.BFind(none), nullptr);
    a.RSearch(all);
    EXPECT_EQ(none.calls + all.seen.size(), 0u); // empty: no callback at all
    for (int n = 1; n <= 9; ++n) {
        a.Reset();
        for (int k = 0; k < n; ++k)
            a.App(Str(2 * k + 1)); // 1, 3, 5, ...
        for (int key = 0; key <= 2 * n + 1; ++key) {
            String_t* hit = a.BFind(KeyIs<String_t>(key));
            EXPECT_EQ(hit, key % 2 && key < 2 * n ? a.Get() + key / 2 : nullptr) << n << " " << key;
            EXPECT_EQ(a.Find(KeyIs<String_t>(key)), hit);
            for (int high = 0; high <= 2 * n + 1; ++high) {
                Between<String_t> range(key, high);
                a.RSearch(range);
                Ints inside;
                for (int v = key | 1; v <= std::min(high, 2 * n - 1); v += 2)
                    inside.push_back(v);
                EXPECT_EQ(range.seen, inside) << n << ": " << key << ".." << high;
            }
        }
    }
    // On a run equal to a bound or key, the bisection stops where it first meets the run.
    Fill(a, {1, 3, 5, 5, 5, 7});
    Between<String_t> fives(4, 5);
    a.RSearch(fives);
    EXPECT_EQ(fives.seen, Ints{5});
    EXPECT_EQ(a.BFind(KeyIs<String_t>(5)), a.Get() + 2);
}

// Random operations mirrored into a vector; every slot is a live object at all times.
TEST(TVarrModelTest, RandomOperationsMatchAVector)
{
    std::mt19937 rng(2024);
    for (int round = 0; round < 20; ++round) {
        TVarr<Counted> a(1 + rng() % 6, round % 2 ? VARR_DOUBLE : VARR_INCR);
        Ints model;
        for (int step = 0; step < 400; ++step) {
            const int k = static_cast<int>(rng() % 10);
            switch (rng() % 8) {
            case 0: a.App(Counted(k)), model.push_back(k); break;
            case 1: {
                const Counted run[3] = {k, k, k + 1};
                a.Cat(3, run);
                model.insert(model.end(), {k, k, k + 1});
                break;
            }
            case 2: // elements of the array itself, whose block growth may replace
                if (!model.empty()) {
                    const unsigned at = rng() % model.size(), n = k % 2 ? 1 : std::min(3u, unsigned(model.size()) - at);
                    k % 2 ? a.App(a[static_cast<int>(at)]) : a.Cat(n, a.Get() + at);
                    const Ints part(model.begin() + at, model.begin() + at + n);
                    model.insert(model.end(), part.begin(), part.end());
                }
                break;
            case 3:
                if (a.Pop() != nullptr)
                    model.pop_back();
                break;
            case 4:
                a.Uniq(CmpKeys<Counted>);
                model.erase(std::unique(model.begin(), model.end()), model.end());
                break;
            case 5:
                a.Remove(KeyIs<Counted>(k));
                model.erase(std::remove(model.begin(), model.end(), k), model.end());
                break;
            case 6: a.Sort(CmpKeys<Counted>), std::sort(model.begin(), model.end()); break;
            case 7: a = TVarr<Counted>(a); break;
            }
            ASSERT_EQ(Keys(a), model) << "round " << round << " step " << step;
            ASSERT_EQ(Counted::live, static_cast<int>(Slots(a)));
        }
    }
    EXPECT_EQ(Counted::live, 0);
}

TEST(TVarrDeathTest, AssertionsNameTheInstantiatedSignature)
{
    auto report = [](const std::string& signature, const char* expr) {
        return testutil::AssertionPattern("include/generic/tvarr", signature, expr);
    };
    TVarr<char*> args(4, VARR_INCR);
    args.App(const_cast<char*>("ls"));
    EXPECT_EQ(&args[-1], args.Get() - 1); // negative indexes are not checked
    const TVarr<char*>& cargs = args;
    EXPECT_DEATH(args[1], report("T& TVarr<T>::operator[](int) [with T = char*]", "i < (arrp-arr)"));
    EXPECT_DEATH(cargs[1], report("const T& TVarr<T>::operator[](int) const [with T = char*]", "i < (arrp-arr)"));
    // An unknown mode is stored without complaint and fails only when growth is needed.
    TVarr<int> odd(2, static_cast<VarrTypeT>(7));
    odd.App(1);
    odd.App(2);
    EXPECT_DEATH(odd.App(3), report("void TVarr<T>::Extend(unsigned int) [with T = int]", "0"));
    TVarr<NullAlloc> nulls(1, VARR_DOUBLE);
    nulls.App(NullAlloc());
    NullAlloc::fail = true;
    EXPECT_DEATH(nulls.App(NullAlloc()), report("void TVarr<T>::Extend(unsigned int) [with T = NullAlloc]", "newarr != 0"));
    NullAlloc::fail = false;
    TVarr<int> stuck(0, VARR_DOUBLE); // doubling no slots would never end
    EXPECT_DEATH(stuck.App(1), "Assertion .newsize > before. failed");

    char buf[8] = "abcdefg";
    ArrSet(buf, 'x', 3);
    ArrCpy(buf + 3, "123", 3);
    ArrCpy(buf, static_cast<const char*>(buf), 7); // same range: nothing
    EXPECT_STREQ(buf, "xxx123g");
}

// On sorted input each pass compares every element once with the one a gap below, so the first
// arguments of one pass run 0, 1, ..., n - gap - 1: the runs give the gap sequence.
TEST(TShSortTest, GapSequenceAndOrder)
{
    static std::vector<long> firsts;
    static const int* base;
    auto cmp = [](const int* a, const int* b) {
        firsts.push_back(a - base);
        return Sign(*a, *b);
    };
    struct Row {
        unsigned n;
        std::vector<unsigned> gaps;
    } rows[] = {{8, {1}}, {9, {4, 1}}, {35, {4, 1}}, {36, {13, 4, 1}}, {121, {40, 13, 4, 1}}};
    for (const Row& r : rows) {
        Ints a(r.n);
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
    std::mt19937 rng(11);
    Ints a(333);
    for (int& x : a)
        x = static_cast<int>(rng() % 20);
    Ints expect = a;
    std::sort(expect.begin(), expect.end());
    TShSort<int>(a.data(), 333, [](const int* x, const int* y) { return Sign(*x, *y); });
    EXPECT_EQ(a, expect);
    // Below 9 elements, a plain insertion sort that shifts only strictly greater: equal keys keep order.
    std::pair<int, char> p[8] = {{2, 'a'}, {1, 'b'}, {2, 'c'}, {1, 'd'}, {0, 'e'}, {2, 'f'}, {1, 'g'}, {0, 'h'}};
    using P = std::pair<int, char>;
    TShSort<P>(p, 8, [](const P* x, const P* y) { return x->first - y->first; });
    std::string order;
    for (const P& e : p)
        order += e.second;
    EXPECT_EQ(order, "ehbdgacf");
}
