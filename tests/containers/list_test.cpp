// slist_t, DList, DPList and olist_t against a std::deque model, with the ring invariants checked after
// every step; stable sorting; the deliberate RemoveLast.
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

// Elements of the void* lists are small integers stored in the pointer.
void* P(intptr_t v)
{
    return reinterpret_cast<void*>(v);
}
intptr_t V(const void* p)
{
    return reinterpret_cast<intptr_t>(p);
}
int equal_value(const void* data, const void* key)
{
    return V(data) == V(key) ? 0 : 1;
}
int greater_value(const void* a, const void* b)
{
    return V(a) > V(b) ? 1 : 0;
}

// A ring behind last must close at last after exactly the model's size, with prev mirroring next.
template <class Link> void expect_ring(const Link* last, const std::deque<intptr_t>& model, intptr_t (*value)(const Link*))
{
    if (model.empty()) {
        ASSERT_EQ(last, nullptr);
        return;
    }
    ASSERT_NE(last, nullptr);
    const Link* p = last;
    for (std::size_t i = 0; i < model.size(); ++i) {
        const Link* next = p->next;
        ASSERT_NE(next, nullptr);
        if constexpr (!std::is_same_v<Link, slink_t> && !std::is_same_v<Link, olink_t>) {
            ASSERT_EQ(next->prev, p) << "at " << i;
        }
        p = next;
        ASSERT_EQ(value(p), model[i]) << "at " << i;
        ASSERT_EQ(p == last, i + 1 == model.size()) << "at " << i;
    }
}

intptr_t slink_value(const slink_t* l)
{
    return V(l->data);
}
intptr_t dplink_value(const DPLink* l)
{
    return V(l->data);
}

struct Node : DLink {
    static int live;
    intptr_t v;
    explicit Node(intptr_t x) : v(x) { ++live; }
    ~Node() override { --live; }
};
int Node::live = 0;

intptr_t node_value(const DLink* l)
{
    return static_cast<const Node*>(l)->v;
}
int node_is(const DLink* l, const void* key)
{
    return node_value(l) == V(key) ? 0 : 1;
}

struct ONode : olink_t {
    static int live;
    intptr_t v;
    int id;
    ONode(intptr_t x, int i) : v(x), id(i) { ++live; }
    ~ONode() override { --live; }
};
int ONode::live = 0;

intptr_t onode_value(const olink_t* l)
{
    return static_cast<const ONode*>(l)->v;
}

} // namespace

TEST(SlistTest, RandomOperationsMatchModel)
{
    std::mt19937 rng(7);
    slist_t list;
    std::deque<intptr_t> model;
    for (int step = 0; step < 4000; ++step) {
        SCOPED_TRACE(step);
        const intptr_t x = rng() % 8;
        switch (rng() % 12) {
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
        case 4: {
            auto it = std::find(model.begin(), model.end(), x);
            EXPECT_EQ(V(list.remove(equal_value, P(x))), it == model.end() ? 0 : x);
            if (it != model.end())
                model.erase(it);
            break;
        }
        case 5: {
            std::vector<intptr_t> disposed;
            static std::vector<intptr_t>* sink;
            sink = &disposed;
            list.removeLoop(equal_value, P(x), [](void* d) { sink->push_back(V(d)); });
            const auto n = std::count(model.begin(), model.end(), x);
            model.erase(std::remove(model.begin(), model.end(), x), model.end());
            EXPECT_EQ(disposed, std::vector<intptr_t>(n, x));
            break;
        }
        case 6: {
            auto it = std::find(model.begin(), model.end(), x);
            EXPECT_EQ(V(list.Replace(equal_value, P(x), P(x + 100))), it == model.end() ? 0 : x);
            if (it != model.end())
                *it = x + 100;
            break;
        }
        case 7: {
            slist_t other;
            std::deque<intptr_t> more;
            for (intptr_t i = rng() % 4; i > 0; --i) {
                other.append(P(i));
                more.push_back(i);
            }
            if (rng() % 2) {
                list.append(other);
                model.insert(model.end(), more.begin(), more.end());
            } else {
                list.insert(other);
                model.insert(model.begin(), more.begin(), more.end());
            }
            EXPECT_EQ(other.last, nullptr);
            break;
        }
        case 8:
            list.Uniq(equal_value);
            model.erase(std::unique(model.begin(), model.end()), model.end());
            break;
        case 9:
            if (rng() % 4 == 0) {
                list.Sort(greater_value);
                std::stable_sort(model.begin(), model.end());
            } else {
                list.append(list); // splicing a list into itself changes nothing
            }
            break;
        case 10: {
            slist_t copy(list);
            expect_ring(copy.last, model, slink_value);
            list = copy;
            list = list;
            break;
        }
        default: {
            const int i = static_cast<int>(rng() % (model.size() + 2)) - 1;
            const bool inside = i >= 0 && i < static_cast<int>(model.size());
            EXPECT_EQ(V(list[i]), inside ? model[i] : 0);
            EXPECT_EQ(V(list.find(equal_value, P(x))),
                      std::find(model.begin(), model.end(), x) != model.end() ? x : 0);
            break;
        }
        }
        ASSERT_NO_FATAL_FAILURE(expect_ring(list.last, model, slink_value));
        ASSERT_EQ(list.Len(), static_cast<int>(model.size()));
        if (model.size() > 60)
            list.clear(), model.clear();
    }
}

TEST(SlistTest, EndsAndLoop)
{
    slist_t list;
    for (intptr_t v : {1, 2, 3})
        list.append(P(v));
    EXPECT_EQ(V(list.removeTop()), 1);
    EXPECT_EQ(V(list.removeBottom()), 3);
    expect_ring(list.last, {2}, slink_value);
    EXPECT_EQ(list.Replace(equal_value, P(9), P(5)), nullptr);
    expect_ring(list.last, {2}, slink_value);

    // Uniq compares each element with its predecessor as the list stood: with a comparison that is not
    // transitive, 1 2 3 4 6 keeps 1 and 6.
    list.clear();
    for (intptr_t v : {1, 2, 3, 4, 6})
        list.append(P(v));
    list.Uniq([](const void* a, const void* b) { return std::abs(V(a) - V(b)) <= 1 ? 0 : 1; });
    expect_ring(list.last, {1, 6}, slink_value);
    list.clear();
    list.append(P(2));

    intptr_t sum = 0;
    list.append(P(40));
    list.loop([](void* d, void* arg) { *static_cast<intptr_t*>(arg) += V(d); }, &sum);
    EXPECT_EQ(sum, 42);
    list.clear();
    EXPECT_EQ(list.removeTop(), nullptr);
    EXPECT_EQ(list.removeBottom(), nullptr);
    EXPECT_EQ(list[0], nullptr);
}

TEST(SlistTest, FreedLinksAreReused)
{
    slist_t list;
    slink_t* a = list.append(P(1));
    list.removeTop();
    EXPECT_EQ(list.append(P(2)), a); // from the pool's free list, not the general allocator
}

TEST(ListSortTest, StableForEqualKeys)
{
    std::mt19937 rng(11);
    for (int n : {0, 1, 2, 3, 7, 64, 257}) {
        SCOPED_TRACE(n);
        // Records (key, id) packed as key * 1000 + id; the order compares keys only.
        std::vector<intptr_t> records;
        for (int i = 0; i < n; ++i)
            records.push_back(static_cast<intptr_t>(rng() % 5) * 1000 + i);
        auto key_greater = [](const void* a, const void* b) { return V(a) / 1000 > V(b) / 1000 ? 1 : 0; };
        std::vector<intptr_t> expected = records;
        std::stable_sort(expected.begin(), expected.end(), [](intptr_t a, intptr_t b) { return a / 1000 < b / 1000; });

        slist_t slist;
        olist_t olist;
        for (intptr_t r : records) {
            slist.append(P(r));
            olist.append(new ONode(r / 1000, static_cast<int>(r % 1000)));
        }
        slist.Sort(key_greater);
        expect_ring(slist.last, std::deque<intptr_t>(expected.begin(), expected.end()), slink_value);

        olist.Sort([](const olink_t* a, const olink_t* b, const void* arg) {
            EXPECT_EQ(V(arg), 77);
            return static_cast<int>(onode_value(a) - onode_value(b));
        }, P(77));
        std::deque<intptr_t> ids;
        for (int i = 0; i < n; ++i) {
            const ONode* node = static_cast<const ONode*>(olist[i]);
            ids.push_back(node->v * 1000 + node->id);
        }
        EXPECT_EQ(ids, std::deque<intptr_t>(expected.begin(), expected.end()));
        std::deque<intptr_t> keys;
        for (intptr_t r : expected)
            keys.push_back(r / 1000);
        expect_ring(olist.last, keys, onode_value);
        olist.clear();
        EXPECT_EQ(ONode::live, 0);
    }
}

TEST(OlistTest, RemovalKeepsTheRing)
{
    olist_t list;
    for (int i = 0; i < 6; ++i)
        list.append(new ONode(i % 3, i));
    list.insert(new ONode(9, 6));
    expect_ring(list.last, {9, 0, 1, 2, 0, 1, 2}, onode_value);

    auto is = [](const olink_t* l, const void* key) { return onode_value(l) == V(key) ? 0 : 1; };
    EXPECT_EQ(list.find(is, P(5)), nullptr);
    EXPECT_EQ(static_cast<ONode*>(list.find(is, P(1)))->id, 1);
    std::unique_ptr<olink_t> top(list.removeTop()), bottom(list.removeBottom()), two(list.remove(is, P(2)));
    EXPECT_EQ(onode_value(top.get()), 9);
    EXPECT_EQ(onode_value(bottom.get()), 2);
    EXPECT_EQ(onode_value(two.get()), 2);
    expect_ring(list.last, {0, 1, 0, 1}, onode_value);

    struct IsZero : olist_cmpo_t {
        int operator()(const olink_t* l) const override { return onode_value(l) == 0 ? 0 : 1; }
    };
    list.removeLoop(IsZero());
    expect_ring(list.last, {1, 1}, onode_value);
    EXPECT_EQ(ONode::live, 5); // the two zeros were destroyed

    // A link that removes itself while looped over.
    static olist_t* self;
    self = &list;
    list.loop([](olink_t* l, void*) { delete self->remove([](const olink_t* a, const void* b) { return a == b ? 0 : 1; }, l); },
              nullptr);
    EXPECT_EQ(list.last, nullptr);
    EXPECT_EQ(ONode::live, 3);
    EXPECT_EQ(list.removeTop(), nullptr);
    EXPECT_EQ(list.removeBottom(), nullptr);
    EXPECT_EQ(list[0], nullptr);
    EXPECT_EQ(list.Len(), 0);
}

TEST(DListTest, RandomOperationsMatchModel)
{
    std::mt19937 rng(5);
    DList list;
    std::deque<intptr_t> model;
    DListIterator it(list);
    std::size_t pos = 0; // the iterator's index in the model; model.size() at the end
    for (int step = 0; step < 4000; ++step) {
        SCOPED_TRACE(step);
        const intptr_t x = rng() % 8;
        // An iterator at the end stays there whatever is added or removed; only Reset moves it.
        const bool was_end = pos == model.size();
        bool reset = false;
        switch (rng() % 10) {
        case 0:
            list.Append(new Node(x));
            model.push_back(x);
            break;
        case 1:
            list.Insert(new Node(x));
            model.push_front(x);
            ++pos;
            break;
        case 2: {
            std::unique_ptr<DLink> l(list.RemoveFirst());
            ASSERT_EQ(l == nullptr, model.empty());
            if (l) {
                EXPECT_EQ(node_value(l.get()), model.front());
                EXPECT_EQ(l->next, nullptr);
                EXPECT_EQ(l->prev, nullptr);
                model.pop_front();
                if (pos == 0) {
                    it.Reset(); // its link is gone
                    reset = true;
                } else
                    --pos;
            }
            break;
        }
        case 3: {
            auto found = std::find(model.begin(), model.end(), x);
            const std::size_t at = found - model.begin();
            if (found != model.end() && at == pos)
                break; // keep the iterator's own link: it removes it itself
            std::unique_ptr<DLink> l(list.Remove(node_is, P(x)));
            ASSERT_EQ(l == nullptr, found == model.end());
            if (l) {
                model.erase(found);
                if (at < pos)
                    --pos;
            }
            break;
        }
        case 4:
            it.Insert(new Node(x));
            model.insert(model.begin() + pos, x);
            ++pos;
            break;
        case 5:
            it.Append(new Node(x));
            model.insert(pos < model.size() ? model.begin() + pos + 1 : model.end(), x);
            break;
        case 6: {
            std::unique_ptr<DLink> l(it.Remove());
            ASSERT_EQ(l == nullptr, pos == model.size());
            if (l) {
                EXPECT_EQ(node_value(l.get()), model[pos]);
                EXPECT_EQ(l->next, nullptr);
                model.erase(model.begin() + pos);
            }
            break;
        }
        case 7: {
            DLink* l = it();
            ASSERT_EQ(l == nullptr, pos == model.size());
            if (l) {
                EXPECT_EQ(node_value(l), model[pos]);
                ++pos;
            }
            break;
        }
        case 8:
            it.Reset();
            pos = 0;
            reset = true;
            break;
        default: {
            if (pos < model.size() && model[pos] == x)
                break; // as in case 3
            const auto before = std::count(model.begin(), model.begin() + pos, x);
            const int live = Node::live;
            list.RemoveLoop(node_is, P(x));
            const auto n = std::count(model.begin(), model.end(), x);
            EXPECT_EQ(Node::live, live - n);
            model.erase(std::remove(model.begin(), model.end(), x), model.end());
            pos -= before;
            break;
        }
        }
        if (was_end && !reset)
            pos = model.size();
        ASSERT_NO_FATAL_FAILURE(expect_ring(list.Last(), model, node_value));
        ASSERT_EQ(it.Current() == nullptr, pos == model.size());
        if (it.Current() != nullptr) {
            ASSERT_EQ(node_value(it.Current()), model[pos]);
        }
        const int i = static_cast<int>(rng() % (model.size() + 1));
        ASSERT_EQ(list[i] == nullptr, i == static_cast<int>(model.size()));
        ASSERT_EQ(list.Len(), static_cast<int>(model.size()));
        if (model.size() > 50) {
            list.Clear();
            model.clear();
            it.Reset();
            pos = 0;
        }
    }
    list.Clear();
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
    EXPECT_EQ(list.Len(), 0);
    EXPECT_EQ(a.next, &b); // left as they were, not unlinked
    EXPECT_EQ(list.RemoveLast(), nullptr);
    EXPECT_EQ(list.RemoveFirst(), nullptr);

    list.Append(&a);
    DListIterator it(list);
    EXPECT_EQ(it.Remove(), &a);
    EXPECT_EQ(list.Last(), nullptr);
    EXPECT_EQ(it.Current(), nullptr);
    EXPECT_EQ(it.Remove(), nullptr);

    // A new iterator starts at the first link; inserting before it makes a new first link.
    list.Append(&a);
    DListIterator front(list);
    front.Insert(&b);
    EXPECT_EQ(list.First(), &b);
    EXPECT_EQ(front.Current(), &a);
    EXPECT_EQ(list.Find(node_is, P(1)), &a);
    EXPECT_EQ(list.Find(node_is, P(7)), nullptr);
    int visits = 0;
    list.Loop([](DLink*, void* n) { ++*static_cast<int*>(n); }, &visits);
    EXPECT_EQ(visits, 2);
    while (list.RemoveFirst() != nullptr) {
    }
}

TEST(DPListTest, RandomOperationsMatchModel)
{
    std::mt19937 rng(3);
    DPList list;
    std::deque<intptr_t> model;
    DPListIterator it(list);
    std::size_t pos = 0;
    for (int step = 0; step < 4000; ++step) {
        SCOPED_TRACE(step);
        const intptr_t x = rng() % 8 + 1;
        const bool at_cur = pos < model.size() && model[pos] == x;
        const bool was_end = pos == model.size();
        bool reset = false;
        switch (rng() % 10) {
        case 0:
            list.Append(P(x));
            model.push_back(x);
            break;
        case 1:
            list.Insert(P(x));
            model.push_front(x);
            ++pos;
            break;
        case 2:
            if (pos == 0 && !model.empty())
                break; // the iterator's own link
            EXPECT_EQ(V(list.RemoveFirst()), model.empty() ? 0 : model.front());
            if (!model.empty()) {
                model.pop_front();
                --pos;
            }
            break;
        case 3: {
            auto found = std::find(model.begin(), model.end(), x);
            if (found != model.end() && static_cast<std::size_t>(found - model.begin()) == pos)
                break;
            EXPECT_EQ(V(list.Remove(equal_value, P(x))), found == model.end() ? 0 : x);
            if (found != model.end()) {
                if (static_cast<std::size_t>(found - model.begin()) < pos)
                    --pos;
                model.erase(found);
            }
            break;
        }
        case 4:
            EXPECT_EQ(it.Insert(P(x))->data, P(x));
            model.insert(model.begin() + pos, x);
            ++pos;
            break;
        case 5:
            it.Append(P(x));
            model.insert(pos < model.size() ? model.begin() + pos + 1 : model.end(), x);
            break;
        case 6:
            EXPECT_EQ(V(it.Remove()), pos < model.size() ? model[pos] : 0);
            if (pos < model.size())
                model.erase(model.begin() + pos);
            break;
        case 7:
            EXPECT_EQ(V(it()), pos < model.size() ? model[pos] : 0);
            if (pos < model.size())
                ++pos;
            break;
        case 8: {
            if (at_cur)
                break;
            auto found = std::find(model.begin(), model.end(), x);
            EXPECT_EQ(V(list.Replace(equal_value, P(x), P(x + 8))), found == model.end() ? 0 : x);
            if (found != model.end())
                *found = x + 8;
            DPList copy(list);
            expect_ring(copy.Last(), model, dplink_value);
            copy = list;
            copy = copy;
            expect_ring(copy.Last(), model, dplink_value);
            break;
        }
        default: {
            if (at_cur)
                break;
            const auto before = std::count(model.begin(), model.begin() + pos, x);
            int disposed = 0;
            static int* counter;
            counter = &disposed;
            list.RemoveLoop(equal_value, P(x), [](void*) { ++*counter; });
            EXPECT_EQ(disposed, std::count(model.begin(), model.end(), x));
            model.erase(std::remove(model.begin(), model.end(), x), model.end());
            pos -= before;
            break;
        }
        }
        if (was_end && !reset)
            pos = model.size();
        ASSERT_NO_FATAL_FAILURE(expect_ring(list.Last(), model, dplink_value));
        ASSERT_EQ(it.Current() == nullptr, pos == model.size());
        if (it.Current() != nullptr) {
            ASSERT_EQ(V(it.Current()->data), model[pos]);
        }
        ASSERT_EQ(list.Len(), static_cast<int>(model.size()));
        const int i = static_cast<int>(rng() % (model.size() + 1));
        ASSERT_EQ(V(list[i]), i < static_cast<int>(model.size()) ? model[i] : 0);
        EXPECT_EQ(V(list.Find(equal_value, P(x))), std::find(model.begin(), model.end(), x) != model.end() ? x : 0);
        if (model.size() > 50) {
            list.Clear();
            model.clear();
            it.Reset();
            pos = 0;
        }
    }
}

TEST(DPListTest, RemoveLastFreesOnlyTheLastLink)
{
    DPList list;
    EXPECT_EQ(list.RemoveFirst(), nullptr);
    EXPECT_EQ(list.RemoveLast(), nullptr);
    list.Append(P(1));
    list.Append(P(2));
    list.Append(P(3));
    EXPECT_EQ(V(list.RemoveLast()), 3);
    EXPECT_EQ(list.Len(), 0);
    EXPECT_EQ(list.First(), nullptr);

    list.Append(P(4));
    DPListIterator it(list);
    EXPECT_EQ(V(it.Remove()), 4);
    EXPECT_EQ(list.Last(), nullptr);
    EXPECT_EQ(list.Replace(equal_value, P(4), P(5)), nullptr);
    EXPECT_EQ(list.FindL(equal_value, P(4)), nullptr);
}
