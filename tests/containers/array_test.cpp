// Arrays: TVarr (growth sequences, aliasing appends, removal without destruction, searches, assertions),
// TShSort, varr_t and its deliberate differences; TVector, TSortedVector and ArrBFindCore over poll records.
#include <generic/tvarr>
#include <generic/tvector>
#include <tevbase/varr.h>

#include <support/testutil.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <map>
#include <numeric>
#include <random>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

// Counts live objects: every slot of a TVarr is a constructed element, so with one array alive the count
// is its slot count.
struct Counted {
    static int live;
    int v;
    Counted(int x = 0) : v(x) { ++live; }
    Counted(const Counted& o) : v(o.v) { ++live; }
    Counted& operator=(const Counted& o) = default;
    ~Counted() { --live; }
    operator int() const { return v; }
};
int Counted::live = 0;

// Array new that returns null on request, to reach the "newarr != 0" check.
struct NullAlloc {
    static bool fail;
    static void* operator new[](std::size_t n) noexcept { return fail ? nullptr : std::malloc(n); }
    static void operator delete[](void* p) noexcept { std::free(p); }
};
bool NullAlloc::fail = false;

namespace {

using Ints = std::vector<int>;
using Arr = TVarr<Counted>;
using SockIO::PollFd;
typedef TSortedVector<PollFd, PollFd::Compare> PollSet;
typedef std::vector<std::pair<int, short>> Records; // descriptor and events

Ints Keys(const Arr& a) { return Ints(a.Get(), a.Get() + a.Len()); }

int Sign(int key, int elem) { return key < elem ? -1 : key > elem; }
int Order(const Counted* a, const Counted* b) { return Sign(*a, *b); }
int I(const void* p) { return *static_cast<const int*>(p); }
int CmpInt(const void* a, const void* b) { return Sign(I(a), I(b)); }

// A key (low) for the searches, a range (low..high) for RSearch; counts comparisons, collects visits.
struct Probe : TVarrCmp<Counted>, TVarrRange<Counted> {
    int low, high;
    mutable int calls = 0;
    Ints seen;
    explicit Probe(int l, int h = 0) : low(l), high(h) {}
    int Cmp(const Counted* e) const override { return ++calls, Sign(low, *e); }
    int CmpLow(const Counted* e) override { return ++calls, Sign(low, *e); }
    int CmpHigh(const Counted* e) override { return Sign(high, *e); }
    void Action(Counted* e) override { seen.push_back(*e); }
};

Ints Contents(varr_t* v)
{
    const int* p = reinterpret_cast<int*>(varr_get(v));
    return Ints(p, p + varr_len(v));
}

} // namespace

// Slots after each App, then after Extend(100); varr_t (its type 0 additive, 1 doubling) grows alike.
TEST(TVarrTest, SlotsGrowByTheModeAndRemovalMovesOnlyTheEnd)
{
    const unsigned lazy = static_cast<unsigned>(-1); // nothing until the first App, then steps of 32
    const std::tuple<unsigned, VarrTypeT, Ints, int> rows[] = {
        {3, VARR_INCR, {3, 3, 3, 6, 6, 6, 9}, 108},
        {3, VARR_DOUBLE, {3, 3, 3, 6, 6, 6, 12, 12, 12, 12, 12, 12, 24}, 192},
        {lazy, VARR_INCR, Ints(32, 32), 160}};
    for (const auto& [size, mode, slots, extended] : rows) {
        Arr a(size, mode);
        varr_t* v = varr_create(sizeof(int), size == lazy ? 32 : static_cast<int>(size), mode);
        EXPECT_EQ(a.Get() == nullptr, size == lazy);
        for (int s : slots) {
            a.App(0), varr_app(v, &s);
            EXPECT_TRUE(Counted::live == s && v->alloc == s) << size << " " << mode << " append " << a.Len();
        }
        a.Extend(100);
        a.Resize(1); // below the length: the wrapped difference fits, nothing changes
        EXPECT_EQ(Counted::live, extended) << size << " " << mode;
        varr_delete(v);
    }
    // Removal only moves the end.
    Arr a(3, VARR_INCR);
    const Counted four[] = {1, 2, 3, 4};
    a.Cat(4, four);
    EXPECT_TRUE(*a.Pop() == 4 && a.Adjust(7) == a.Get() + 3); // beyond the slots Adjust does nothing
    EXPECT_EQ(*(a.Adjust(4) - 1), 4); // the popped element is still there
    const Arr copy(a);
    EXPECT_EQ(Counted::live, 4 + 6 + 6); // `four`, a, and a copy of the source's slots, not of its length
    Arr never(lazy, VARR_INCR);
    EXPECT_EQ(never.Retrieve(), nullptr); // then a fresh block of 32 slots
    EXPECT_EQ(Counted::live, 4 + 6 + 6 + 32);
}

TEST(TVarrTest, BisectionBoundsOfBFindAndRSearch)
{
    Arr a(4, VARR_DOUBLE);
    Probe none(5, 100);
    EXPECT_EQ(a.BFind(none), nullptr);
    a.RSearch(none);
    EXPECT_EQ(none.calls + none.seen.size(), 0u); // empty: no callback at all
    for (int n = 1; n <= 9; ++n) {
        a.App(2 * n - 1); // 1, 3, 5, ...
        for (int low = 0; low <= 2 * n + 1; ++low) {
            const Counted* hit = low % 2 && low < 2 * n ? a.Get() + low / 2 : nullptr;
            EXPECT_TRUE(a.BFind(Probe(low)) == hit && a.Find(Probe(low)) == hit) << n << " " << low;
            for (int high = 0; high <= 2 * n + 1; ++high) { // inside: from index low / 2 to (high + 1) / 2
                Probe range(low, high);
                a.RSearch(range);
                Counted* end = a.Get() + std::max(low / 2, std::min(n, (high + 1) / 2));
                EXPECT_EQ(range.seen, Ints(a.Get() + low / 2, end)) << n << ": " << low << ".." << high;
            }
        }
    }
    // On a run equal to a bound or key, the bisection stops where it first meets the run.
    const Counted run[] = {1, 5, 5, 5, 7, 9};
    a.Cpy(6, run);
    Probe fives(4, 5);
    a.RSearch(fives);
    EXPECT_EQ(fives.seen, (Ints{5, 5}));
    EXPECT_EQ(a.BFind(Probe(5)), a.Get() + 2);
}

// Random operations mirrored into a vector.
TEST(TVarrModelTest, RandomOperationsMatchAVector)
{
    std::mt19937 rng(2024);
    for (int round = 0; round < 20; ++round) {
        Arr a(1 + rng() % 6, round % 2 ? VARR_DOUBLE : VARR_INCR);
        Ints model;
        for (int step = 0; step < 400; ++step) {
            const int k = static_cast<int>(rng() % 10);
            switch (rng() % 9) {
            case 0: a.App(k), model.push_back(k); break;
            case 1: { // a run, for Uniq
                const Counted run[3] = {k, k, k + 1};
                a.Cat(3, run);
                model.insert(model.end(), run, run + 3);
                break;
            }
            case 2: // elements of the array itself, whose block growth may replace
                if (!model.empty()) {
                    const unsigned at = rng() % model.size();
                    const unsigned n = std::min<unsigned>(k % 2 ? 1 : 3, model.size() - at);
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
                a.Uniq(Order);
                model.erase(std::unique(model.begin(), model.end()), model.end());
                break;
            case 5:
                a.Remove(Probe(k));
                model.erase(std::remove(model.begin(), model.end(), k), model.end());
                break;
            case 6: a.Sort(Order), std::sort(model.begin(), model.end()); break;
            case 7: a = Arr(a); break;
            case 8: // a block of exactly the elements, adopted
                if (!model.empty())
                    a.Override(a.Len(), a.Save());
                break;
            }
            ASSERT_EQ(Keys(a), model) << "round " << round << " step " << step;
        }
    }
    EXPECT_EQ(Counted::live, 0);
}

TEST(TVarrDeathTest, AssertionsNameTheInstantiatedSignature)
{
    auto report = [](const std::string& signature, const char* expr = "i < (arrp-arr)") {
        return testutil::AssertionPattern("include/generic/tvarr", signature, expr);
    };
    TVarr<char*> args(4, VARR_INCR);
    args.App(const_cast<char*>("ls"));
    EXPECT_EQ(&args[-1], args.Get() - 1); // negative indexes are not checked
    EXPECT_DEATH(args[1], report("T& TVarr<T>::operator[](int) [with T = char*]"));
    EXPECT_DEATH(std::as_const(args)[1], report("const T& TVarr<T>::operator[](int) const [with T = char*]"));
    // An unknown mode is stored without complaint and fails only when growth is needed.
    TVarr<int> odd(0, static_cast<VarrTypeT>(7));
    EXPECT_DEATH(odd.App(1), report("void TVarr<T>::Extend(unsigned int) [with T = int]", "0"));
    TVarr<NullAlloc> nulls(1, VARR_DOUBLE);
    NullAlloc::fail = true;
    EXPECT_DEATH(nulls.Extend(2),
                 report("void TVarr<T>::Extend(unsigned int) [with T = NullAlloc]", "newarr != 0"));
    TVarr<int> stuck(0, VARR_DOUBLE); // doubling no slots would never end
    EXPECT_DEATH(stuck.App(1), "Assertion .newsize > before. failed");
}

// On sorted input each pass compares every element once with the one a gap below: n - gap comparisons
// per gap, whose sum pins the gap sequence 1; 4, 1; 13, 4, 1; ...
TEST(TShSortTest, GapSequenceAndOrder)
{
    static int calls;
    std::mt19937 rng(11);
    const int rows[][2] = {{8, 7}, {9, 5 + 8}, {35, 31 + 34}, {36, 23 + 32 + 35},
                           {121, 81 + 108 + 117 + 120}};
    for (const auto& r : rows) {
        Ints a(r[0]);
        std::iota(a.begin(), a.end(), 0);
        const Ints sorted = a;
        calls = 0;
        TShSort<int>(a.data(), r[0], [](const int* x, const int* y) { return ++calls, Sign(*x, *y); });
        EXPECT_EQ(calls, r[1]) << "n " << r[0];
        std::shuffle(a.begin(), a.end(), rng);
        TShSort<int>(a.data(), r[0], [](const int* x, const int* y) { return Sign(*x, *y); });
        EXPECT_EQ(a, sorted) << "n " << r[0];
    }
    // Below 9 elements, a plain insertion sort that shifts only strictly greater: equal keys keep order.
    using P = std::pair<int, char>;
    using Ps = std::vector<P>;
    Ps p = {{2, 'a'}, {1, 'b'}, {2, 'c'}, {1, 'd'}, {0, 'e'}, {2, 'f'}, {1, 'g'}, {0, 'h'}};
    TShSort<P>(p.data(), 8, [](const P* x, const P* y) { return x->first - y->first; });
    EXPECT_EQ(p, (Ps{{0, 'e'}, {0, 'h'}, {1, 'b'}, {1, 'd'}, {1, 'g'}, {2, 'a'}, {2, 'c'}, {2, 'f'}}));
}

TEST(VarrTest, DeliberateDifferencesFromTheTemplate)
{
    varr_t* v = varr_create(sizeof(int), 2, 0);
    for (int x : {6, 5, 3, 2, 1})
        varr_app(v, &x);
    varr_sort(v, CmpInt);
    // cmp gets (predecessor, element), unlike TVarr::Uniq: here the elements one above their predecessor go.
    varr_uniq(v, [](const void* a, const void* b) { return I(b) != I(a) + 1 ? 1 : 0; });
    EXPECT_EQ(Contents(v), (Ints{1, 5}));
    const int five = 5, nine = 9;
    EXPECT_TRUE(varr_find(v, CmpInt, &five) == varr_get_by_index(v, 1) && !varr_find(v, CmpInt, &nine));
    EXPECT_EQ(*reinterpret_cast<int*>(varr_pop(v)), 5);
    varr_ass(v, &nine); // resets first
    EXPECT_EQ(Contents(v), (Ints{9}));
    int* saved = reinterpret_cast<int*>(varr_save(v));
    EXPECT_TRUE(saved[0] == 9 && varr_len(v) == 0); // saving consumes
    std::free(saved);
    char* old = varr_get(v); // override keeps the old storage for the caller
    int* mine = static_cast<int*>(std::malloc(3 * sizeof(int)));
    mine[0] = 10, mine[1] = 20, mine[2] = 30;
    EXPECT_EQ(varr_override(v, 3, mine), reinterpret_cast<char*>(mine + 2));
    std::free(old);
    varr_app(v, varr_get_by_index(v, 0)); // the source moves with the storage
    varr_cat(v, 4, varr_get(v));
    varr_cat(v, 0, nullptr);
    EXPECT_EQ(Contents(v), (Ints{10, 20, 30, 10, 10, 20, 30, 10}));
    std::free(varr_retrieve(v));
    EXPECT_TRUE(varr_len(v) == 0 && v->alloc == 2 && varr_pop(v) == nullptr); // back to the construction size
    varr_uniq(v, CmpInt); // on an empty array: one element
    EXPECT_EQ(varr_len(v), 1);
    varr_delete(v);
}

TEST(TVectorDeathTest, CheckedAccessFailsOutsideTheRowsAndResizeKeepsTheFront)
{
    auto report = [](const char* sig) {
        return testutil::AssertionPattern("include/generic/tvector", sig, "m != 0 && 0 <= r && r < rows");
    };
    TVector<int> v(0);
    EXPECT_DEATH(v[0], report("T& TVector<T>::operator[](int) [with T = int]"));
    const TVector<double> cv(3);
    EXPECT_DEATH(cv[3], report("const T& TVector<T>::operator[](int) const [with T = double]"));
    TVector<String_t> a(2);
    EXPECT_DEATH(a[-1], report("T& TVector<T>::operator[](int) [with T = String_t]"));
    v.Resize(2);
    v.Preset(7);
    v[0] = 10;
    v.Resize(5);
    EXPECT_TRUE(v(0) == 10 && v(1) == 7 && v.Rows() == 5 && v.Resize(0) == nullptr);
    a.Preset("x");
    TVector<String_t> b(a), c(7);
    c = b;
    b[0] = "changed";
    EXPECT_TRUE(a[0] == "x" && c.Rows() == 2 && c[0] == "x");
}

// Among equal elements the bisection's first hit is found (index 4 of the first six, not the first 40).
// The sorted vector's run below meets the other bounds: positions before the first element and past the
// last, and an empty array.
TEST(ArrBFindCoreTest, FindsTheFirstEqualElementItMeets)
{
    int a[] = {10, 20, 30, 40, 40, 40, 50};
    TResult<int> r = ArrBFindCore(a, 6, 40, [](int x, int y) { return (x > y) - (x < y); });
    EXPECT_TRUE(r.pos == a + 4 && r.found == 1);
}

// Poll records inserted and removed at random against a std::map of descriptor to events, from a
// vector that starts small to grow often. A record that is there already is not replaced.
TEST(TSortedVectorTest, RandomRunMatchesAMap)
{
    PollSet s(3);
    EXPECT_EQ(s.Find(PollFd(5)), nullptr);
    for (int fd : {5, 3, 9})
        s.Insert(PollFd(fd, 1));
    const TResult<PollFd> own = s.Insert(s[2]); // an element of its own, as the storage grows
    EXPECT_TRUE(own.found == 0 && own.pos == s.Get() + 2);
    std::map<int, short> model = {{3, 1}, {5, 1}, {9, 1}};
    std::mt19937 rng(8);
    for (int step = 0; step < 3000 && !HasFatalFailure(); ++step) {
        const int fd = static_cast<int>(rng() % 300) - 150;
        if (rng() % 3 != 0) {
            const TResult<PollFd> r = s.Insert(PollFd(fd, static_cast<short>(step)));
            ASSERT_EQ(r.found, model.emplace(fd, static_cast<short>(step)).second ? 1 : 0);
            ASSERT_TRUE(r.pos->fd == fd && r.pos->events == model[fd]);
        } else {
            ASSERT_EQ(s.Remove(PollFd(fd)), static_cast<int>(model.erase(fd)));
        }
        Records got;
        for (unsigned i = 0; i < s.Len(); ++i)
            got.emplace_back(s[i].fd, s[i].events);
        ASSERT_EQ(got, Records(model.begin(), model.end())) << "step " << step;
        ASSERT_EQ(static_cast<const PollSet&>(s).Contains(PollFd(fd)), static_cast<int>(model.count(fd)));
    }
    s.Clear();
    EXPECT_TRUE(s.Len() == 0 && s.Get()[0].fd == -1 && s.Get()[model.size() - 1].events == 0);
}
