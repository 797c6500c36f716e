// TMap over the AVL tree: shapes and balance factors against a model AVL, copies, iterators, visitors.
#include <tevbase/tmap.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <memory>
#include <random>
#include <string>

namespace {

typedef TMap<String_t, int, GStringCmp> IntMap;

// Model: a height-based AVL with the same deletion rule (the in-order predecessor takes a removed inner
// node's place). Every operation sequence must give it and TMap the same shape and balance factors.
struct MNode;
typedef std::unique_ptr<MNode> MPtr;
struct MNode {
    std::string key;
    MPtr c[2]; // left, right
    int h;
};

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
            if (H(n->c[d]->c[!d]) > H(n->c[d]->c[d])) // an inner-heavy child turns first
                Rotate(n->c[d], !d);
            Rotate(n, d);
        }
    }
}
void Insert(MPtr& n, const std::string& k)
{
    if (!n)
        n.reset(new MNode{k, {}, 1});
    else if (k != n->key)
        Insert(n->c[k > n->key], k), Rebalance(n);
}
void Remove(MPtr& n, const std::string& k)
{
    if (!n)
        return;
    if (k != n->key) {
        Remove(n->c[k > n->key], k);
    } else if (!n->c[0] || !n->c[1]) {
        n = std::move(n->c[!n->c[0]]);
        return;
    } else { // the model copies the predecessor's key: only the shape counts
        const MNode* p = n->c[0].get();
        while (p->c[1])
            p = p->c[1].get();
        n->key = p->key;
        Remove(n->c[0], n->key);
    }
    Rebalance(n);
}
std::string Shape(const MPtr& n)
{
    if (!n)
        return "-";
    return n->key + ":" + std::to_string(H(n->c[1]) - H(n->c[0])) + "(" + Shape(n->c[0]) + "," +
           Shape(n->c[1]) + ")";
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

// A map beside its model AVL and, for each key, the value's address and the value; compared after every
// random step. A value stays at its address until its own entry goes: removal relinks nodes. Halfway
// through each run the map is replaced by a copy of a copy: copies keep the shape and every balance
// factor, and leave their source alone.
TEST(TMapTest, RandomOperationsGiveTheModelsShapeAndBalance)
{
    for (unsigned seed = 1; seed <= 30; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 rng(seed);
        IntMap map, source;
        MPtr model;
        std::map<std::string, std::pair<int*, int>> where;
        std::string shape;
        for (int step = 0; step < 1500 && !HasFatalFailure(); ++step) {
            const std::string key = "k" + std::to_string(rng() % (seed % 10 == 0 ? 300 : 40));
            if (rng() % 5 < 3) {
                const int value = static_cast<int>(rng() % 1000);
                const std::pair<int*, int> r = map.Insert(key.c_str(), value);
                const auto e = where.emplace(key, std::make_pair(r.first, value)); // a stored value stays
                ASSERT_EQ(r, std::make_pair(e.first->second.first, e.second ? 1 : 0));
                Insert(model, key);
            } else {
                ASSERT_EQ(map.Remove(key.c_str()), static_cast<int>(where.erase(key)));
                Remove(model, key);
            }
            ASSERT_EQ(Shape(map), Shape(model));
            IntMap::Iterator it(map, 0);
            for (const auto& kv : where) {
                IntMap::Pair* p = it();
                ASSERT_TRUE(p != nullptr && p->key == kv.first.c_str() && &p->value == kv.second.first);
                ASSERT_EQ(p->value, kv.second.second);
                ASSERT_EQ(map.Find(kv.first.c_str()), kv.second.first);
            }
            ASSERT_EQ(it(), nullptr);
            IntMap::ConstIterator back(map, 1);
            for (auto kv = where.rbegin(); kv != where.rend(); ++kv, back--)
                ASSERT_TRUE(back.Curr() != nullptr && back->key == kv->first.c_str());
            ASSERT_TRUE(back.Curr() == nullptr && back.Next() == nullptr); // past the end stays there
            if (step == 750) {
                source = map;
                shape = Shape(source);
                map = IntMap(source);
                for (auto& kv : where)
                    kv.second.first = map.Find(kv.first.c_str());
            }
        }
        EXPECT_EQ(Shape(source), shape);
    }
}

struct Collect : TMapAction<String_t, int, GStringCmp> {
    int Action(const String_t& key, int& value) override
    {
        seen += key.Text();
        return ++value, seen.size() == stop;
    }
    std::string seen;
    size_t stop = 0; // the visit that returns non-zero (0: none)
};

TEST(TMapTest, CopiesKeysAndVisitors)
{
    // With zeroed balance factors the copy's next rotation would follow a missing child.
    IntMap src, copy;
    src.Insert("c", 1), src.Insert("e", 2);
    copy = src;
    copy.Remove("e");
    copy.Insert("a", 1);
    EXPECT_EQ(Shape(copy), "c:-1(a:0(-,-),-)");
    EXPECT_EQ(Shape(src), "c:1(-,e:0(-,-))");
    IntMap m;
    m["x"] += 5;
    m[""] = 2;
    m[String_t()] = 1; // null data orders before "" (str_cmp): two keys
    EXPECT_EQ(Shape(m), ":0(:0(-,-),x:0(-,-))");
    EXPECT_TRUE(IntMap::Iterator(m).Curr()->key.IsNull() && *m.Find("") == 2 && *m.Find("x") == 5);
    EXPECT_GT(GStringCmp()("\xe9", "z"), 0); // bytes compare unsigned
    IntMap w;
    for (const char* k : {"d", "b", "f", "a", "c", "e", "g"})
        w.Insert(k, 0);
    Collect all, two, range, one, none;
    two.stop = 2;
    EXPECT_EQ(&ForEach(w, all), &all);
    ForEach(w, two);
    EXPECT_EQ(&Range(w, range, String_t("bb"), String_t("ee")), &range);
    Range(w, one, String_t("c"), String_t("c")), Range(w, none, String_t("d"), String_t("c"));
    EXPECT_TRUE(all.seen == "abcdefg" && two.seen == "ab" && range.seen == "cde" && one.seen == "c");
    EXPECT_TRUE(none.seen.empty() && *w.Find("a") == 2); // values by reference
}

} // namespace
