// slist_t, DList and DPList against one std::deque model, the ring checked after every step; the
// deliberate RemoveLast. olist_t runs under TOList (strlist_test.cpp).
#include <tevbase/list.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <deque>
#include <random>
#include <type_traits>

namespace {

using Model = std::deque<intptr_t>;

// Elements are small integers; 0 stands for "none".
void* P(intptr_t v) { return reinterpret_cast<void*>(v); }
intptr_t V(const void* p) { return reinterpret_cast<intptr_t>(p); }

struct Node : DLink {
    static int live;
    intptr_t v;
    explicit Node(intptr_t x) : v(x) { ++live; }
    ~Node() override { --live; }
};
int Node::live = 0;

// The value of a link or an element, and the match callbacks of each kind of list.
intptr_t Val(const DLink* l) { return l != nullptr ? static_cast<const Node*>(l)->v : 0; }
intptr_t Val(const DPLink* l) { return l != nullptr ? V(l->data) : 0; }
intptr_t Val(const slink_t* l) { return V(l->data); }
intptr_t Val(const void* d) { return V(d); }
int Is(const void* data, const void* key) { return data != key; }
int Is(const DLink* l, const void* key) { return Val(l) != V(key); }

long disposed;
void Dispose(void*) { ++disposed; }
void Dispose(DLink* l) { ++disposed, delete l; }

// The ring behind last closes at last after exactly the model's size; prev mirrors next.
template <class Link> void ExpectRing(const Link* last, const Model& model)
{
    ASSERT_EQ(last == nullptr, model.empty());
    const Link* p = last;
    for (std::size_t i = 0; i < model.size(); ++i) {
        const Link* next = p->next;
        if constexpr (!std::is_same_v<Link, slink_t>) {
            ASSERT_EQ(next->prev, p) << "at " << i;
        }
        p = next;
        ASSERT_EQ(Val(p), model[i]) << "at " << i;
        ASSERT_EQ(p == last, i + 1 == model.size()) << "at " << i;
    }
}

// Each list behind one face for the driver; Check also copies slist_t (and assigns it to itself).
struct SlistSide {
    slist_t list;
    void Clear() { list.clear(); }
    void Append(intptr_t x) { EXPECT_EQ(list.append(P(x))->data, P(x)); }
    void Insert(intptr_t x) { list.insert(P(x)); }
    intptr_t RemoveFirst() { return V(list.removeTop()); }
    intptr_t Remove(intptr_t x) { return V(list.remove(Is, P(x))); }
    void RemoveLoop(intptr_t x) { list.removeLoop(Is, P(x), Dispose); }
    intptr_t Replace(intptr_t x, intptr_t y) { return V(list.Replace(Is, P(x), P(y))); }
    void Check(const Model& model)
    {
        list = slist_t(list);
        const slist_t& self = list;
        list = self;
        ExpectRing(list.last, model);
    }
};

// DList and DPList: In makes an element, Out takes a removed one (freeing a node).
DLink* In(DList*, intptr_t x) { return new Node(x); }
void* In(DPList*, intptr_t x) { return P(x); }
intptr_t Out(void* d) { return V(d); }
intptr_t Out(DLink* l) // taken links have their pointers cleared
{
    EXPECT_TRUE(l == nullptr || (l->next == nullptr && l->prev == nullptr));
    const intptr_t v = Val(l);
    delete l;
    return v;
}

template <class L, class It> struct DSide {
    L list;
    It it{list};
    void Clear() { list.Clear(); }
    void Append(intptr_t x) { list.Append(In(&list, x)); }
    void Insert(intptr_t x) { list.Insert(In(&list, x)); }
    intptr_t RemoveFirst() { return Out(list.RemoveFirst()); }
    intptr_t Remove(intptr_t x) { return Out(list.Remove(Is, P(x))); }
    void RemoveLoop(intptr_t x) { list.RemoveLoop(Is, P(x), Dispose); }
    intptr_t Replace(intptr_t x, intptr_t y) { return V(list.Replace(Is, P(x), P(y))); }
    void ItInsert(intptr_t x) { it.Insert(In(&list, x)); }
    void ItAppend(intptr_t x) { it.Append(In(&list, x)); }
    intptr_t ItRemove() { return Out(it.Remove()); }
    intptr_t ItNext() { return Val(it()); }
    void Check(const Model& model) { ExpectRing(list.Last(), model); }
};

} // namespace

template <class Side> class ListTest : public ::testing::Test {};
using Sides = ::testing::Types<SlistSide, DSide<DList, DListIterator>, DSide<DPList, DPListIterator>>;
TYPED_TEST_SUITE(ListTest, Sides);

TYPED_TEST(ListTest, RandomOperationsMatchModel)
{
    // slist_t has no iterator: its own operations take the iterator's cases, and it stays at the end.
    constexpr bool iterates = !std::is_same_v<TypeParam, SlistSide>;
    std::mt19937 rng(5);
    TypeParam side;
    Model model;
    std::size_t pos = 0; // the iterator's index into the model; model.size() at the end
    for (int step = 0; step < 4000; ++step) {
        SCOPED_TRACE(step);
        const intptr_t x = rng() % 8 + 1;
        const auto found = std::find(model.begin(), model.end(), x);
        const intptr_t hit = found != model.end() ? x : 0;
        // The iterator's own link is taken out only through the iterator.
        const bool own = pos < model.size() && model[pos] == x;
        bool was_end = pos == model.size();
        switch (rng() % 11) {
        case 0: side.Append(x), model.push_back(x); break;
        case 1: side.Insert(x), model.push_front(x), ++pos; break;
        case 2:
            if (pos != 0 || model.empty()) {
                EXPECT_EQ(side.RemoveFirst(), model.empty() ? 0 : model.front());
                if (!model.empty())
                    model.pop_front(), --pos;
            }
            break;
        case 3:
            if (!own) {
                EXPECT_EQ(side.Remove(x), hit);
                if (hit)
                    pos -= static_cast<std::size_t>(found - model.begin()) < pos, model.erase(found);
            }
            break;
        case 4:
            if (!own) {
                pos -= std::count(model.begin(), model.begin() + pos, x);
                disposed = 0;
                side.RemoveLoop(x);
                EXPECT_EQ(disposed, std::count(model.begin(), model.end(), x));
                model.erase(std::remove(model.begin(), model.end(), x), model.end());
            }
            break;
        case 5:
            if constexpr (!std::is_same_v<TypeParam, DSide<DList, DListIterator>>) {
                EXPECT_EQ(side.Replace(x, x + 8), hit);
                if (hit)
                    *found = x + 8;
            }
            break;
        case 6:
            if constexpr (iterates) {
                side.ItInsert(x);
                model.insert(model.begin() + pos++, x);
            } else {
                EXPECT_EQ(V(side.list.removeBottom()), model.empty() ? 0 : model.back());
                if (!model.empty())
                    model.pop_back();
            }
            break;
        case 7:
            if constexpr (iterates) {
                side.ItAppend(x);
                model.insert(was_end ? model.end() : model.begin() + pos + 1, x);
            } else { // splice another list at either end; splicing a list into itself changes nothing
                slist_t other;
                const Model more(x % 4, x);
                for (intptr_t m : more)
                    other.append(P(m));
                x % 2 ? side.list.append(other) : side.list.insert(other);
                model.insert(x % 2 ? model.end() : model.begin(), more.begin(), more.end());
                side.list.append(side.list);
                side.list.insert(side.list);
                EXPECT_EQ(other.last, nullptr);
            }
            break;
        case 8:
            if constexpr (iterates) {
                EXPECT_EQ(side.ItRemove(), was_end ? 0 : model[pos]);
                if (!was_end)
                    model.erase(model.begin() + pos);
            } else {
                side.list.Uniq(Is);
                model.erase(std::unique(model.begin(), model.end()), model.end());
            }
            break;
        case 9:
            if constexpr (iterates) {
                EXPECT_EQ(side.ItNext(), was_end ? 0 : model[pos]);
                pos += !was_end;
            } else { // keys are value / 3, so equal keys hold different values: the order shows stability
                side.list.Sort([](const void* a, const void* b) { return V(a) / 3 > V(b) / 3 ? 1 : 0; });
                std::stable_sort(model.begin(), model.end(), [](intptr_t a, intptr_t b) { return a / 3 < b / 3; });
            }
            break;
        default:
            if constexpr (iterates)
                side.it.Reset(), pos = 0, was_end = false;
        }
        if (was_end) // an iterator at the end stays there whatever is added or removed
            pos = model.size();
        ASSERT_NO_FATAL_FAILURE(side.Check(model));
        if constexpr (iterates) {
            ASSERT_EQ(Val(side.it.Current()), pos < model.size() ? model[pos] : 0);
        }
        ASSERT_EQ(side.list.Len(), static_cast<int>(model.size()));
        if (model.size() > 50) {
            side.Clear(), model.clear(), pos = 0;
            if constexpr (iterates)
                side.it.Reset();
        }
    }
    side.Clear();
    EXPECT_EQ(Node::live, 0);
}

TEST(ListTest, RemoveLastLeavesTheOtherLinksOut)
{
    Node a(1), b(2), c(3);
    DList list;
    for (Node* n : {&a, &b, &c})
        list.Append(n);
    EXPECT_EQ(list.RemoveLast(), &c);
    EXPECT_TRUE(list.Last() == nullptr && a.next == &b && list.RemoveLast() == nullptr); // not unlinked
    DPList plist;
    plist.Append(P(1)), plist.Append(P(2));
    EXPECT_EQ(V(plist.RemoveLast()), 2);
    EXPECT_EQ(plist.First(), nullptr);
}
