// TMap over the AVL tree: exact shapes against a model AVL, iterators, visitors, copies.
#include <tevbase/tmap.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace {

typedef TMap<String_t, int, GStringCmp> IntMap;
typedef TMap<String_t, String_t, GStringCmp> StrMap;

// Height-based AVL with the same deletion rule (the in-order predecessor takes a removed inner node's
// place): every operation sequence must give it and TMap the same shape and balance factors.
class ModelAvl {
public:
    ModelAvl() = default;
    ModelAvl(const ModelAvl& o) : root(Copy(o.root)) {}
    ModelAvl& operator=(const ModelAvl& o)
    {
        root = Copy(o.root);
        return *this;
    }
    void Insert(const std::string& k) { Insert(root, k); }
    void Remove(const std::string& k) { Remove(root, k); }
    std::string Shape() const { return Shape(root.get()); }

private:
    struct Node {
        std::string key;
        std::unique_ptr<Node> l, r;
        int h = 1;
    };
    typedef std::unique_ptr<Node> Ptr;

    static Ptr Copy(const Ptr& n)
    {
        if (!n)
            return nullptr;
        Ptr c(new Node{n->key, Copy(n->l), Copy(n->r), n->h});
        return c;
    }
    static int H(const Ptr& n) { return n ? n->h : 0; }
    static void Fix(Ptr& n) { n->h = 1 + std::max(H(n->l), H(n->r)); }
    static void RotRight(Ptr& n)
    {
        Ptr a = std::move(n->l);
        n->l = std::move(a->r);
        Fix(n);
        a->r = std::move(n);
        n = std::move(a);
        Fix(n);
    }
    static void RotLeft(Ptr& n)
    {
        Ptr a = std::move(n->r);
        n->r = std::move(a->l);
        Fix(n);
        a->l = std::move(n);
        n = std::move(a);
        Fix(n);
    }
    static void Rebalance(Ptr& n)
    {
        Fix(n);
        const int b = H(n->r) - H(n->l);
        if (b < -1) {
            if (H(n->l->r) > H(n->l->l))
                RotLeft(n->l);
            RotRight(n);
        } else if (b > 1) {
            if (H(n->r->l) > H(n->r->r))
                RotRight(n->r);
            RotLeft(n);
        }
    }
    static void Insert(Ptr& n, const std::string& k)
    {
        if (!n) {
            n.reset(new Node{k, nullptr, nullptr, 1});
            return;
        }
        if (k == n->key)
            return;
        Insert(k < n->key ? n->l : n->r, k);
        Rebalance(n);
    }
    static Ptr RemoveMax(Ptr& n)
    {
        if (!n->r) {
            Ptr m = std::move(n);
            n = std::move(m->l);
            return m;
        }
        Ptr m = RemoveMax(n->r);
        Rebalance(n);
        return m;
    }
    static void Remove(Ptr& n, const std::string& k)
    {
        if (!n)
            return;
        if (k != n->key) {
            Remove(k < n->key ? n->l : n->r, k);
        } else if (!n->r) {
            n = std::move(n->l);
            return;
        } else if (!n->l) {
            n = std::move(n->r);
            return;
        } else {
            Ptr pred = RemoveMax(n->l);
            pred->l = std::move(n->l);
            pred->r = std::move(n->r);
            n = std::move(pred);
        }
        Rebalance(n);
    }
    static std::string Shape(const Node* n)
    {
        if (n == nullptr)
            return "-";
        return n->key + ":" + std::to_string(H(n->r) - H(n->l)) + "(" + Shape(n->l.get()) + "," +
               Shape(n->r.get()) + ")";
    }

    Ptr root;
};

// The map's shape in the model's notation; fails the test on a broken parent link.
template <class Node> std::string Shape(const bnode_t* b, const bnode_t* parent = nullptr)
{
    if (b == nullptr)
        return "-";
    const Node* n = static_cast<const Node*>(b);
    EXPECT_EQ(n->parent, parent) << "parent link of " << n->Key().Text();
    return std::string(n->Key().Text()) + ":" + std::to_string(n->bal) + "(" + Shape<Node>(n->left, n) + "," +
           Shape<Node>(n->right, n) + ")";
}
std::string Shape(const IntMap& m) { return Shape<IntMap::Node>(m.Root()); }

std::string Keys(IntMap& m, bool backwards = false)
{
    std::string s;
    IntMap::Iterator it(m, backwards);
    for (IntMap::Pair* p = it.Curr(); p != nullptr; p = backwards ? it.Prev() : it.Next())
        s += p->key.Text();
    return s;
}

IntMap Make(const std::vector<const char*>& keys)
{
    IntMap m;
    int i = 0;
    for (const char* k : keys)
        m.Insert(k, ++i);
    return m;
}

// Random operations on a map, its model AVL and a std::map; all are compared after every step, and
// every stored value must stay at its address until its own entry is removed.
struct Mirror {
    IntMap map;
    ModelAvl model;
    std::map<std::string, int> contents;
    std::map<std::string, int*> where;

    void Step(std::mt19937& rng, int keys)
    {
        char key[8];
        std::snprintf(key, sizeof key, "k%03u", static_cast<unsigned>(rng() % keys));
        const int v = static_cast<int>(rng() % 1000);
        if (rng() % 5 < 3) {
            std::pair<int*, int> r = map.Insert(key, v);
            const bool fresh = contents.emplace(key, v).second;
            ASSERT_EQ(r.second, fresh ? 1 : 0);
            ASSERT_EQ(*r.first, contents[key]);
            if (fresh)
                where[key] = r.first;
            else
                ASSERT_EQ(r.first, where[key]);
            model.Insert(key);
        } else {
            ASSERT_EQ(map.Remove(key), static_cast<int>(contents.erase(key)));
            where.erase(key);
            model.Remove(key);
        }
        Check();
    }
    void Check()
    {
        ASSERT_EQ(Shape(map), model.Shape());
        IntMap::Iterator it(map, 0);
        for (const auto& kv : contents) {
            IntMap::Pair* p = it();
            ASSERT_NE(p, nullptr);
            ASSERT_EQ(p->key, kv.first.c_str());
            ASSERT_EQ(p->value, kv.second);
            ASSERT_EQ(map.Find(kv.first.c_str()), where[kv.first]);
        }
        ASSERT_EQ(it(), nullptr);
    }
};

TEST(TMapTest, RandomOperationsGiveTheModelsShapeAndBalance)
{
    for (unsigned seed = 1; seed <= 30; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 rng(seed);
        Mirror m;
        const int keys = seed % 10 == 0 ? 300 : 40;
        for (int step = 0; step < 1500; ++step) {
            m.Step(rng, keys);
            if (::testing::Test::HasFatalFailure())
                return;
        }
    }
}

TEST(TMapTest, CopiesKeepShapeAndBalanceAndEvolveLikeTheModel)
{
    for (unsigned seed = 1; seed <= 10; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 rng(seed);
        Mirror a;
        for (int step = 0; step < 300; ++step)
            a.Step(rng, 60);
        Mirror b;
        b.map = a.map;
        b.model = a.model;
        b.contents = a.contents;
        for (const auto& kv : b.contents)
            b.where[kv.first] = b.map.Find(kv.first.c_str());
        b.Check();
        const std::string before = Shape(a.map);
        for (int step = 0; step < 300; ++step)
            b.Step(rng, 60);
        EXPECT_EQ(Shape(a.map), before);
        a.Check();
        if (::testing::Test::HasFatalFailure())
            return;
    }

    // With zeroed balance factors the copy's next rotation would follow a missing child.
    IntMap src = Make({"c", "e"});
    IntMap copy(src);
    EXPECT_EQ(Shape(copy), "c:1(-,e:0(-,-))");
    copy.Remove("e");
    copy.Insert("a", 1);
    EXPECT_EQ(Shape(copy), "c:-1(a:0(-,-),-)");
    EXPECT_EQ(Shape(src), "c:1(-,e:0(-,-))");
    const IntMap& same = copy;
    copy = same;
    EXPECT_EQ(Keys(copy), "ac");
    copy = IntMap();
    EXPECT_EQ(copy.Root(), nullptr);
}

TEST(TMapTest, AscendingInsertionsRotateIntoAPerfectTree)
{
    IntMap m = Make({"1", "2", "3", "4", "5", "6", "7"});
    EXPECT_EQ(Shape(m), "4:0(2:0(1:0(-,-),3:0(-,-)),6:0(5:0(-,-),7:0(-,-)))");
    m = Make({"b", "a", "c"});
    EXPECT_EQ(Keys(m), "abc");
    EXPECT_EQ(Keys(m, true), "cba");
    EXPECT_EQ(m.Remove("b"), 1); // the root: its predecessor takes its place
    EXPECT_EQ(Shape(m), "a:1(-,c:0(-,-))");
    EXPECT_EQ(m.Remove("x"), 0);
    EXPECT_EQ(Shape(m), "a:1(-,c:0(-,-))");
}

TEST(TMapTest, InsertKeepsTheStoredValueAndIndexingAddsDefaults)
{
    StrMap s;
    std::pair<String_t*, int> r = s.Insert("k", "first");
    EXPECT_EQ(r.second, 1);
    std::pair<String_t*, int> again = s.Insert("k", "second");
    EXPECT_EQ(again.second, 0);
    EXPECT_EQ(again.first, r.first);
    EXPECT_EQ(*s.Find("k"), "first");
    EXPECT_EQ(s.Find("absent"), nullptr);
    EXPECT_TRUE(s["new"].IsNull());
    s["new"] = "set";
    EXPECT_EQ(*s.Find("new"), "set");

    IntMap m;
    EXPECT_EQ(m["x"], 0);
    EXPECT_NE(m.Find("x"), nullptr);
    m["x"] += 5;
    EXPECT_EQ(m["x"], 5);
    // Null data orders before "", so the two are different keys.
    m[String_t()] = 1;
    m[""] = 2;
    EXPECT_EQ(*m.Find(String_t()), 1);
    EXPECT_EQ(*m.Find(""), 2);
    EXPECT_EQ(m.Root()->Size(), 3);
    EXPECT_LT(GStringCmp()(String_t(), ""), 0);
    EXPECT_GT(GStringCmp()("\xe9", "z"), 0); // bytes compare unsigned
}

TEST(TMapTest, IteratorsStopAtTheEnds)
{
    IntMap empty;
    IntMap::Iterator none(empty, 0);
    EXPECT_EQ(none.Curr(), nullptr);
    EXPECT_EQ(none.First(), nullptr);
    EXPECT_EQ(none.Last(), nullptr);
    EXPECT_EQ(IntMap::Iterator().Next(), nullptr);

    IntMap m = Make({"d", "b", "f", "a", "c", "e", "g"});
    IntMap::Iterator it(m, 1);
    EXPECT_EQ(it->key, "g");
    EXPECT_EQ(it.Next(), nullptr);
    EXPECT_EQ(it.Prev(), nullptr); // past the end stays there
    EXPECT_EQ(it.First()->key, "a");
    EXPECT_EQ(it.Prev(), nullptr);
    it.First();
    IntMap::Iterator old = it++;
    EXPECT_EQ(old->key, "a");
    EXPECT_EQ((*it).key, "b");
    EXPECT_EQ((++it)->key, "c");
    EXPECT_EQ((--it)->key, "b");
    EXPECT_EQ((it--)->key, "b");
    EXPECT_EQ(it->key, "a");
    EXPECT_EQ(it.Last()->key, "g");
    it->value = 70;
    EXPECT_EQ(*m.Find("g"), 70);

    const IntMap& cm = m;
    IntMap::ConstIterator c(cm, 0);
    std::string keys;
    while (const IntMap::Pair* p = c())
        keys += p->key.Text();
    EXPECT_EQ(keys, "abcdefg");
    EXPECT_EQ(c.Curr(), nullptr);
    EXPECT_EQ(c.Last()->key, "g");
    EXPECT_EQ((--c)->key, "f");
    EXPECT_EQ((c++)->key, "f");
    EXPECT_EQ((*c).value, 70);
}

struct Collect : TMapAction<String_t, int, GStringCmp> {
    std::string seen;
    int stop_after = 0;
    int Action(const String_t& key, int& value) override
    {
        seen += key.Text();
        ++value;
        return static_cast<int>(seen.size()) == stop_after;
    }
};

TEST(TMapTest, ForEachAndRangeVisitInOrderAndStopOnRequest)
{
    IntMap m = Make({"d", "b", "f", "a", "c", "e", "g"});
    Collect all;
    EXPECT_EQ(&ForEach(m, all), &all);
    EXPECT_EQ(all.seen, "abcdefg");
    EXPECT_EQ(*m.Find("a"), 5); // incremented through the reference

    Collect two;
    two.stop_after = 2;
    ForEach(m, two);
    EXPECT_EQ(two.seen, "ab");

    const struct {
        const char *lo, *hi, *seen;
    } rows[] = {{"c", "c", "c"}, {"b", "e", "bcde"}, {"bb", "ee", "cde"}, {"e", "b", ""},
                {"", "a", "a"},  {"g", "z", "g"},    {"h", "z", ""},      {"", "zz", "abcdefg"}};
    for (const auto& row : rows) {
        Collect c;
        EXPECT_EQ(&Range(m, c, String_t(row.lo), String_t(row.hi)), &c);
        EXPECT_EQ(c.seen, row.seen) << row.lo << ".." << row.hi;
    }
    Collect stop;
    stop.stop_after = 1;
    Range(m, stop, String_t("b"), String_t("f"));
    EXPECT_EQ(stop.seen, "b");

    StrMap empty;
    struct : TMapAction<String_t, String_t, GStringCmp> {
        int Action(const String_t&, String_t&) override { return 1; }
    } never;
    ForEach(empty, never);
    Range(empty, never, String_t("a"), String_t("z"));
}

} // namespace
