// slist_t, DList and DPList against a std::deque model, with the ring invariants checked after every
// step; the deliberate RemoveLast. olist_t is exercised through TOList (strlist_test.cpp).
#include <tevbase/list.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <deque>
#include <memory>
#include <random>
#include <type_traits>
#include <vector>

namespace {

using Model = std::deque<intptr_t>;

// Elements of the void* lists are small integers stored in the pointer; 0 stands for "none".
void* P(intptr_t v) { return reinterpret_cast<void*>(v); }
intptr_t V(const void* p) { return reinterpret_cast<intptr_t>(p); }
int equal_value(const void* data, const void* key) { return V(data) == V(key) ? 0 : 1; }

struct Node : DLink {
    static int live;
    intptr_t v;
    explicit Node(intptr_t x) : v(x) { ++live; }
    ~Node() override { --live; }
};
int Node::live = 0;
intptr_t value_of(const DLink* l) { return l != nullptr ? static_cast<const Node*>(l)->v : 0; }
int node_is(const DLink* l, const void* key) { return value_of(l) == V(key) ? 0 : 1; }

intptr_t value_of(const slink_t* l) { return V(l->data); }
intptr_t value_of(const DPLink* l) { return V(l->data); }

// The ring behind last closes at last after exactly the model's size; prev mirrors next.
template <class Link> void expect_ring(const Link* last, const Model& model)
{
    ASSERT_EQ(last == nullptr, model.empty());
    const Link* p = last;
    for (std::size_t i = 0; i < model.size(); ++i) {
        const Link* next = p->next;
        if constexpr (!std::is_same_v<Link, slink_t>) {
            ASSERT_EQ(next->prev, p) << "at " << i;
        }
        p = next;
        ASSERT_EQ(value_of(p), model[i]) << "at " << i;
        ASSERT_EQ(p == last, i + 1 == model.size()) << "at " << i;
    }
}

} // namespace

TEST(SlistTest, RandomOperationsMatchModel)
{
    std::mt19937 rng(7);
    slist_t list;
    Model model;
    for (int step = 0; step < 4000; ++step) {
        SCOPED_TRACE(step);
        const intptr_t x = rng() % 8 + 1;
        const auto found = std::find(model.begin(), model.end(), x);
        const intptr_t hit = found != model.end() ? x : 0;
        switch (rng() % 11) {
        case 0:
            list.append(P(x));
            model.push_back(x);
            break;
        case 1:
            list.insert(P(x));
            model.push_front(x);
            break;
        case 2:
            EXPECT_EQ(V(list.removeTop()), model.empty() ? 0 : model.front());
            if (!model.empty())
                model.pop_front();
            break;
        case 3:
            EXPECT_EQ(V(list.removeBottom()), model.empty() ? 0 : model.back());
            if (!model.empty())
                model.pop_back();
            break;
        case 4:
            EXPECT_EQ(V(list.remove(equal_value, P(x))), hit);
            if (hit)
                model.erase(found);
            break;
        case 5: {
            static int disposed;
            disposed = 0;
            list.removeLoop(equal_value, P(x), [](void*) { ++disposed; });
            EXPECT_EQ(disposed, std::count(model.begin(), model.end(), x));
            model.erase(std::remove(model.begin(), model.end(), x), model.end());
            break;
        }
        case 6:
            EXPECT_EQ(V(list.Replace(equal_value, P(x), P(x + 8))), hit);
            if (hit)
                *found = x + 8;
            break;
        case 7: {
            slist_t other;
            Model more;
            for (intptr_t i = rng() % 4; i > 0; --i) {
                other.append(P(i));
                more.push_back(i);
            }
            const bool at_end = rng() % 2;
            at_end ? list.append(other) : list.insert(other);
            model.insert(at_end ? model.end() : model.begin(), more.begin(), more.end());
            EXPECT_EQ(other.last, nullptr);
            list.append(list); // splicing a list into itself changes nothing
            break;
        }
        case 8:
            list.Uniq(equal_value);
            model.erase(std::unique(model.begin(), model.end()), model.end());
            break;
        case 9: {
            // Keys are value / 3, so equal keys hold different values: the order shows stability.
            list.Sort([](const void* a, const void* b) { return V(a) / 3 > V(b) / 3 ? 1 : 0; });
            std::stable_sort(model.begin(), model.end(), [](intptr_t a, intptr_t b) { return a / 3 < b / 3; });
            slist_t copy(list);
            ASSERT_NO_FATAL_FAILURE(expect_ring(copy.last, model));
            const slist_t& self = copy;
            list = self;
            break;
        }
        default: {
            const int i = static_cast<int>(rng() % (model.size() + 2)) - 1;
            EXPECT_EQ(V(list[i]), i >= 0 && i < static_cast<int>(model.size()) ? model[i] : 0);
            EXPECT_EQ(V(list.find(equal_value, P(x))), hit);
            break;
        }
        }
        ASSERT_NO_FATAL_FAILURE(expect_ring(list.last, model));
        ASSERT_EQ(list.Len(), static_cast<int>(model.size()));
        if (model.size() > 60)
            list.clear(), model.clear();
    }
}

TEST(SlistTest, EdgeCases)
{
    slist_t list;
    for (intptr_t v : {1, 2, 3})
        list.append(P(v));
    EXPECT_EQ(V(list.removeTop()), 1);
    EXPECT_EQ(V(list.removeBottom()), 3);
    EXPECT_EQ(list.Replace(equal_value, P(9), P(5)), nullptr);
    ASSERT_NO_FATAL_FAILURE(expect_ring(list.last, {2}));

    // Uniq compares each element with its predecessor as the list stood: with a comparison that is not
    // transitive, 1 2 3 4 6 keeps 1 and 6.
    for (intptr_t v : {2, 3, 4, 6})
        list.append(P(v));
    list.insert(P(1));
    list.Uniq([](const void* a, const void* b) { return std::abs(V(a) - V(b)) <= 1 ? 0 : 1; });
    ASSERT_NO_FATAL_FAILURE(expect_ring(list.last, {1, 6}));

    intptr_t sum = 0;
    list.loop([](void* d, void* arg) { *static_cast<intptr_t*>(arg) += V(d); }, &sum);
    EXPECT_EQ(sum, 7);

    // Links come from the pool: a freed link is the next one handed out.
    slink_t* freed = list.last;
    list.removeBottom();
    EXPECT_EQ(list.append(P(8)), freed);
    list.clear();
    EXPECT_EQ(list.removeTop(), nullptr);
    EXPECT_EQ(list.removeBottom(), nullptr);
}

namespace {

// DList (Node links) and DPList (pointer elements) behind one face, for one random driver.
struct DListSide {
    DList list;
    DListIterator it{list};
    static intptr_t Take(DLink* l)
    {
        if (l != nullptr) {
            EXPECT_EQ(l->next, nullptr); // taken links have their pointers cleared
            EXPECT_EQ(l->prev, nullptr);
        }
        const intptr_t v = value_of(l);
        delete l;
        return v;
    }
    void Append(intptr_t x) { list.Append(new Node(x)); }
    void Insert(intptr_t x) { list.Insert(new Node(x)); }
    intptr_t RemoveFirst() { return Take(list.RemoveFirst()); }
    intptr_t Remove(intptr_t x) { return Take(list.Remove(node_is, P(x))); }
    long RemoveLoop(intptr_t x)
    {
        const int before = Node::live;
        list.RemoveLoop(node_is, P(x));
        return before - Node::live;
    }
    void ItInsert(intptr_t x) { it.Insert(new Node(x)); }
    void ItAppend(intptr_t x) { it.Append(new Node(x)); }
    intptr_t ItRemove() { return Take(it.Remove()); }
    intptr_t ItNext() { return value_of(it()); }
    intptr_t Current() { return value_of(it.Current()); }
    intptr_t At(int i) { return value_of(list[i]); }
    void Check(const Model& model) { expect_ring(list.Last(), model); }
};

struct DPListSide {
    DPList list;
    DPListIterator it{list};
    void Append(intptr_t x) { EXPECT_EQ(list.Append(P(x))->data, P(x)); }
    void Insert(intptr_t x) { list.Insert(P(x)); }
    intptr_t RemoveFirst() { return V(list.RemoveFirst()); }
    intptr_t Remove(intptr_t x) { return V(list.Remove(equal_value, P(x))); }
    long RemoveLoop(intptr_t x)
    {
        static long disposed;
        disposed = 0;
        list.RemoveLoop(equal_value, P(x), [](void*) { ++disposed; });
        return disposed;
    }
    void ItInsert(intptr_t x) { it.Insert(P(x)); }
    void ItAppend(intptr_t x) { it.Append(P(x)); }
    intptr_t ItRemove() { return V(it.Remove()); }
    intptr_t ItNext() { return V(it()); }
    intptr_t Current() { return it.Current() != nullptr ? V(it.Current()->data) : 0; }
    intptr_t At(int i) { return V(list[i]); }
    void Check(const Model& model)
    {
        expect_ring(list.Last(), model);
        DPList copy(list);
        const DPList& self = copy;
        copy = self;
        expect_ring(copy.Last(), model);
    }
};

} // namespace

template <class Side> class DoublyLinkedTest : public ::testing::Test {};
using DoublyLinked = ::testing::Types<DListSide, DPListSide>;
TYPED_TEST_SUITE(DoublyLinkedTest, DoublyLinked);

TYPED_TEST(DoublyLinkedTest, RandomOperationsMatchModel)
{
    std::mt19937 rng(5);
    TypeParam side;
    Model model;
    std::size_t pos = 0; // the iterator's index into the model; model.size() at the end
    for (int step = 0; step < 4000; ++step) {
        SCOPED_TRACE(step);
        const intptr_t x = rng() % 8 + 1;
        const auto found = std::find(model.begin(), model.end(), x);
        const std::size_t at = found - model.begin();
        // The iterator's own link is taken out only through the iterator.
        const bool own = pos < model.size() && model[pos] == x;
        bool was_end = pos == model.size();
        switch (rng() % 10) {
        case 0:
            side.Append(x);
            model.push_back(x);
            break;
        case 1:
            side.Insert(x);
            model.push_front(x);
            ++pos;
            break;
        case 2:
            if (pos != 0 || model.empty()) {
                EXPECT_EQ(side.RemoveFirst(), model.empty() ? 0 : model.front());
                if (!model.empty())
                    model.pop_front(), --pos;
            }
            break;
        case 3:
            if (!own) {
                EXPECT_EQ(side.Remove(x), found != model.end() ? x : 0);
                if (found != model.end())
                    model.erase(found), pos -= at < pos;
            }
            break;
        case 4:
            side.ItInsert(x);
            model.insert(model.begin() + pos++, x);
            break;
        case 5:
            side.ItAppend(x);
            model.insert(was_end ? model.end() : model.begin() + pos + 1, x);
            break;
        case 6:
            EXPECT_EQ(side.ItRemove(), was_end ? 0 : model[pos]);
            if (!was_end)
                model.erase(model.begin() + pos);
            break;
        case 7:
            EXPECT_EQ(side.ItNext(), was_end ? 0 : model[pos]);
            pos += !was_end;
            break;
        case 8:
            side.it.Reset();
            pos = 0;
            was_end = false;
            break;
        default:
            if (own)
                break;
            pos -= std::count(model.begin(), model.begin() + pos, x);
            EXPECT_EQ(side.RemoveLoop(x), std::count(model.begin(), model.end(), x));
            model.erase(std::remove(model.begin(), model.end(), x), model.end());
            break;
        }
        if (was_end) // an iterator at the end stays there whatever is added or removed
            pos = model.size();
        ASSERT_NO_FATAL_FAILURE(side.Check(model));
        ASSERT_EQ(side.Current(), pos < model.size() ? model[pos] : 0);
        const int i = static_cast<int>(rng() % (model.size() + 1));
        ASSERT_EQ(side.At(i), i < static_cast<int>(model.size()) ? model[i] : 0);
        ASSERT_EQ(side.list.Len(), static_cast<int>(model.size()));
        if (model.size() > 50) {
            side.list.Clear();
            model.clear();
            side.it.Reset();
            pos = 0;
        }
    }
    side.list.Clear();
    EXPECT_EQ(Node::live, 0);
}

TEST(DListTest, RemoveLastDropsTheRest)
{
    Node a(1), b(2), c(3);
    DList list;
    list.Append(&a);
    list.Append(&b);
    list.Append(&c);
    EXPECT_EQ(list.RemoveLast(), &c);
    EXPECT_EQ(list.Last(), nullptr);
    EXPECT_EQ(a.next, &b); // the others were not unlinked
    EXPECT_EQ(list.RemoveLast(), nullptr);
    EXPECT_EQ(list.RemoveFirst(), nullptr);

    list.Append(&a);
    DListIterator it(list);
    EXPECT_EQ(it.Remove(), &a); // the only link: the list becomes empty
    EXPECT_EQ(list.Last(), nullptr);
    EXPECT_EQ(it.Remove(), nullptr);

    list.Append(&a);
    list.Append(&b);
    EXPECT_EQ(list.Find(node_is, P(2)), &b);
    int visits = 0;
    list.Loop([](DLink*, void* n) { ++*static_cast<int*>(n); }, &visits);
    EXPECT_EQ(visits, 2);
    while (list.RemoveFirst() != nullptr) {
    }
}

TEST(DPListTest, RemoveLastFreesOnlyTheLastLink)
{
    DPList list;
    EXPECT_EQ(list.RemoveFirst(), nullptr);
    EXPECT_EQ(list.RemoveLast(), nullptr);
    for (intptr_t v : {1, 2, 3})
        list.Append(P(v));
    EXPECT_EQ(V(list.RemoveLast()), 3);
    EXPECT_EQ(list.First(), nullptr);
    list.Append(P(4));
    DPListIterator it(list);
    EXPECT_EQ(V(it.Remove()), 4);
    EXPECT_EQ(list.Last(), nullptr);
    EXPECT_EQ(list.Replace(equal_value, P(4), P(5)), nullptr);
    EXPECT_EQ(list.FindL(equal_value, P(4)), nullptr);
}
