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

// Model: a height-based AVL with the same deletion rule (the in-order predecessor takes a removed inner
// node's place). Every operation sequence must give it and TMap the same shape and balance factors.
struct MNode {
    std::string key;
    std::unique_ptr<MNode> c[2]; // left, right
    int h = 1;
};
typedef std::unique_ptr<MNode> MPtr;

int H(const MPtr& n) { return n ? n->h : 0; }
void Fix(MPtr& n) { n->h = 1 + std::max(H(n->c[0]), H(n->c[1])); }
void Rotate(MPtr& n, int d) // the child on side d rises into n's place
{
    MPtr a = std::move(n->c[d]);
    n->c[d] = std::move(a->c[!d]);
    Fix(n);
    a->c[!d] = std::move(n);
    n = std::move(a);
    Fix(n);
}
void Rebalance(MPtr& n)
{
    Fix(n);
    for (int d = 0; d < 2; ++d) {
        if (H(n->c[d]) - H(n->c[!d]) == 2) {
            if (H(n->c[d]->c[!d]) > H(n->c[d]->c[d]))
                Rotate(n->c[d], !d);
            Rotate(n, d);
        }
    }
}
void Insert(MPtr& n, const std::string& k)
{
    if (!n) {
        n.reset(new MNode{k, {}, 1});
    } else if (k != n->key) {
        Insert(n->c[k > n->key], k);
        Rebalance(n);
    }
}
MPtr RemoveMax(MPtr& n)
{
    if (n->c[1]) {
        MPtr m = RemoveMax(n->c[1]);
        Rebalance(n);
        return m;
    }
    MPtr m = std::move(n);
    n = std::move(m->c[0]);
    return m;
}
void Remove(MPtr& n, const std::string& k)
{
    if (!n)
        return;
    if (k != n->key) {
        Remove(n->c[k > n->key], k);
    } else if (!n->c[0] || !n->c[1]) {
        n = std::move(n->c[n->c[1] ? 1 : 0]);
        return;
    } else {
        MPtr p = RemoveMax(n->c[0]);
        p->c[0] = std::move(n->c[0]);
        p->c[1] = std::move(n->c[1]);
        n = std::move(p);
    }
    Rebalance(n);
}
MPtr Copy(const MPtr& n)
{
    return n ? MPtr(new MNode{n->key, {Copy(n->c[0]), Copy(n->c[1])}, n->h}) : nullptr;
}
std::string Shape(const MPtr& n)
{
    if (!n)
        return "-";
    const std::string bal = std::to_string(H(n->c[1]) - H(n->c[0]));
    return n->key + ":" + bal + "(" + Shape(n->c[0]) + "," + Shape(n->c[1]) + ")";
}

// The map's shape in the model's notation; fails the test on a broken parent link.
std::string Shape(const bnode_t* b, const bnode_t* parent = nullptr)
{
    if (b == nullptr)
        return "-";
    const IntMap::Node* n = static_cast<const IntMap::Node*>(b);
    EXPECT_EQ(n->parent, parent) << "parent link of " << n->Key().Text();
    return std::string(n->Key().Text()) + ":" + std::to_string(n->bal) + "(" + Shape(n->left, n) + "," +
           Shape(n->right, n) + ")";
}
std::string Shape(const IntMap& m) { return Shape(m.Root()); }

std::string Keys(IntMap& m, int end)
{
    std::string s;
    IntMap::Iterator it(m, end);
    for (IntMap::Pair* p = it.Curr(); p != nullptr; p = end ? it.Prev() : it.Next())
        s += p->key.Text();
    return s;
}

IntMap Make(const char* keys)
{
    IntMap m;
    for (int i = 0; keys[i] != '\0'; ++i)
        m.Insert(String_t(keys + i, 1), i);
    return m;
}

// A map with its model AVL and a std::map, compared after every random step. Every value must stay
// at its address until its own entry is removed (removal relinks nodes, never copies entries).
struct Mirror {
    IntMap map;
    MPtr model;
    std::map<std::string, int*> where;

    void Step(std::mt19937& rng, unsigned keys)
    {
        char key[16];
        std::snprintf(key, sizeof key, "k%03u", static_cast<unsigned>(rng() % keys));
        if (rng() % 5 < 3) {
            const std::pair<int*, int> r = map.Insert(key, static_cast<int>(rng() % 1000));
            ASSERT_EQ(r.second, where.count(key) ? 0 : 1);
            ASSERT_EQ(r.first, where.emplace(key, r.first).first->second);
            Insert(model, key);
        } else {
            ASSERT_EQ(map.Remove(key), static_cast<int>(where.erase(key)));
            Remove(model, key);
        }
        Check();
    }
    void Check()
    {
        ASSERT_EQ(Shape(map), Shape(model));
        IntMap::Iterator it(map, 0);
        for (const auto& kv : where) {
            IntMap::Pair* p = it();
            ASSERT_TRUE(p != nullptr && p->key == kv.first.c_str() && &p->value == kv.second);
            ASSERT_EQ(map.Find(kv.first.c_str()), kv.second);
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
        for (int step = 0; step < 1500 && !HasFatalFailure(); ++step)
            m.Step(rng, seed % 10 == 0 ? 300 : 40);
    }
}

TEST(TMapTest, CopiesKeepShapeAndBalanceAndStayIndependent)
{
    for (unsigned seed = 1; seed <= 10 && !HasFatalFailure(); ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 rng(seed);
        Mirror a, b;
        for (int step = 0; step < 300; ++step)
            a.Step(rng, 60);
        b.map = a.map;
        b.model = Copy(a.model);
        for (const auto& kv : a.where)
            b.where[kv.first] = b.map.Find(kv.first.c_str());
        for (int step = 0; step < 300; ++step)
            b.Step(rng, 60);
        a.Check();
    }

    // With zeroed balance factors the copy's next rotation would follow a missing child.
    IntMap src = Make("ce");
    IntMap copy(src);
    EXPECT_EQ(Shape(copy), "c:1(-,e:0(-,-))");
    copy.Remove("e");
    copy.Insert("a", 1);
    EXPECT_EQ(Shape(copy), "c:-1(a:0(-,-),-)");
    EXPECT_EQ(Shape(src), "c:1(-,e:0(-,-))");
    const IntMap& same = copy;
    copy = same;
    EXPECT_EQ(Keys(copy, 0), "ac");
    copy = IntMap();
    EXPECT_EQ(copy.Root(), nullptr);
}

TEST(TMapTest, SmallTreesTakeTheirExactShapes)
{
    EXPECT_EQ(Shape(Make("1234567")), "4:0(2:0(1:0(-,-),3:0(-,-)),6:0(5:0(-,-),7:0(-,-)))");
    IntMap m = Make("bac");
    EXPECT_EQ(Keys(m, 0), "abc");
    EXPECT_EQ(Keys(m, 1), "cba");
    EXPECT_EQ(m.Remove("b"), 1); // the root: its predecessor takes its place
    EXPECT_EQ(Shape(m), "a:1(-,c:0(-,-))");
    EXPECT_EQ(m.Remove("x"), 0);
    EXPECT_EQ(Shape(m), "a:1(-,c:0(-,-))");
}

TEST(TMapTest, InsertKeepsTheStoredValueAndIndexingAddsDefaults)
{
    TMap<String_t, String_t, GStringCmp> s;
    const std::pair<String_t*, int> r = s.Insert("k", "first");
    EXPECT_EQ(r.second, 1);
    EXPECT_EQ(s.Insert("k", "second"), std::make_pair(r.first, 0));
    EXPECT_EQ(*s.Find("k"), "first");
    EXPECT_EQ(s.Find("absent"), nullptr);
    EXPECT_TRUE(s["new"].IsNull());

    IntMap m;
    EXPECT_EQ(m["x"], 0);
    m["x"] += 5;
    EXPECT_EQ(*m.Find("x"), 5);
    // Null data orders before "" (str_cmp), so the two are different keys.
    m[String_t()] = 1;
    m[""] = 2;
    EXPECT_EQ(*m.Find(String_t()), 1);
    EXPECT_EQ(*m.Find(""), 2);
    EXPECT_GT(GStringCmp()("\xe9", "z"), 0); // bytes compare unsigned
}

TEST(TMapTest, IteratorsStopAtTheEnds)
{
    IntMap empty;
    IntMap::Iterator none(empty, 0);
    EXPECT_TRUE(none.Curr() == nullptr && none.First() == nullptr && none.Last() == nullptr);
    EXPECT_EQ(IntMap::Iterator().Next(), nullptr);

    IntMap m = Make("dbfaceg");
    IntMap::Iterator it(m, 1);
    EXPECT_EQ(it->key, "g");
    EXPECT_EQ(it.Next(), nullptr);
    EXPECT_EQ(it.Prev(), nullptr); // past the end stays there
    EXPECT_EQ(it.First()->key, "a");
    EXPECT_EQ((it++)->key, "a");
    EXPECT_EQ((*it).key, "b");
    EXPECT_EQ((++it)->key, "c");
    EXPECT_EQ((it--)->key, "c");
    EXPECT_EQ((--it)->key, "a");
    EXPECT_EQ(it.Prev(), nullptr);
    it.Last()->value = 70;
    EXPECT_EQ(*m.Find("g"), 70);

    IntMap::ConstIterator c(static_cast<const IntMap&>(m), 0);
    std::string keys;
    while (const IntMap::Pair* p = c())
        keys += p->key.Text();
    EXPECT_EQ(keys, "abcdefg");
    EXPECT_EQ(c.Curr(), nullptr);
    c.Last();
    EXPECT_EQ((--c)->key, "f");
}

struct Collect : TMapAction<String_t, int, GStringCmp> {
    std::string seen;
    size_t stop_after = 0;
    int Action(const String_t& key, int& value) override
    {
        seen += key.Text();
        value += 100;
        return seen.size() == stop_after;
    }
};

TEST(TMapTest, ForEachAndRangeVisitInOrderAndStopOnRequest)
{
    IntMap m = Make("dbfaceg");
    Collect all, two;
    EXPECT_EQ(&ForEach(m, all), &all);
    EXPECT_EQ(all.seen, "abcdefg");
    EXPECT_EQ(*m.Find("a"), 103); // changed through the reference
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
    Collect one;
    one.stop_after = 1;
    Range(m, one, String_t("b"), String_t("f"));
    IntMap empty;
    Range(empty, one, String_t("a"), String_t("z"));
    EXPECT_EQ(one.seen, "b");
}

} // namespace
