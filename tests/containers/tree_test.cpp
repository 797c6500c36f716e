// Binary trees: the bnode_t toolkit (plain insertion and deletion, traversals, ranges, depths,
// rebuilding) and TMap over the AVL tree (shapes and balance factors against a model AVL, copies,
// iterators, visitors).
#include <tevbase/bnode.h>
#include <tevbase/tmap.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <memory>
#include <random>
#include <set>
#include <string>
#include <tuple>
#include <vector>

namespace {

using Ints = std::vector<int>;
typedef TMap<String_t, int, GStringCmp> IntMap;

// "label(left,right)", the label alone for a leaf.
std::string Tree(const std::string& label, const std::string& left, const std::string& right)
{
    return left == "-" && right == "-" ? label : label + "(" + left + "," + right + ")";
}

struct INode : bnode_t {
    static int live;
    int key;
    explicit INode(int k) : key(k) { ++live; }
    INode(const INode& o) : bnode_t(o), key(o.key) { ++live; }
    ~INode() override { --live; }
    bnode_t* Dup() const override { return new INode(*this); }
};
int INode::live = 0;

int Key(const bnode_t* n) { return static_cast<const INode*>(n)->key; }
int Cmp(const bnode_t* n, const void* key) { return Key(n) - *static_cast<const int*>(key); }
bnode_t* Create(void* arg) { return new INode(*static_cast<int*>(arg)); }
void Found(bnode_t* n, void* arg) { *static_cast<int*>(arg) = Key(n); }
int Descending(bnode_t* const* a, bnode_t* const* b) { return Key(*b) - Key(*a); }
void Depth(bnode_t* n, int depth, void* arg) { static_cast<Ints*>(arg)->push_back(100 * depth + Key(n)); }

bnode_t* Build(const Ints& keys)
{
    bnode_t* t = nullptr;
    for (int k : keys)
        t = bnode_t::Insert(t, Cmp, &k, Create, &k);
    return t;
}

// The tree's shape, "-" for none: an IntMap node is labelled key:bal, an INode by its key. Fails the
// test on a broken parent link.
std::string Shape(const bnode_t* n, const bnode_t* parent = nullptr)
{
    if (n == nullptr)
        return "-";
    EXPECT_EQ(n->parent, parent);
    const auto* m = dynamic_cast<const IntMap::Node*>(n);
    const std::string label = m ? m->Key().Text() + (":" + std::to_string(m->bal)) : std::to_string(Key(n));
    return Tree(label, Shape(n->left, n), Shape(n->right, n));
}

// What the walks of the subtree at n visit, by recursion: o[0] pre-order, o[1] in-order, o[2] post-order.
void Orders(const bnode_t* n, Ints* o)
{
    if (n != nullptr) {
        o[0].push_back(Key(n));
        Orders(n->left, o);
        o[1].push_back(Key(n));
        Orders(n->right, o);
        o[2].push_back(Key(n));
    }
}

// Runs walk(visit, &seen) with the stop-th visit (counted from 1; 0: none) returning non-zero, and
// checks what it saw against the whole order want.
template <class Walk> void ExpectWalk(Walk walk, size_t stop, Ints want)
{
    static Ints seen;
    static size_t stop_at;
    seen.clear(), stop_at = stop;
    auto visit = [](bnode_t* n, void*) { return seen.push_back(Key(n)), seen.size() == stop_at ? 7 : 0; };
    const int r = walk(visit);
    const bool stops = stop != 0 && stop <= want.size();
    if (stops)
        want.resize(stop);
    EXPECT_EQ(r, stops ? 7 : 0);
    EXPECT_EQ(seen, want);
}

TEST(BnodeTest, DeleteRuleDepthsAndBalance)
{
    const std::tuple<const char*, Ints, int, const char*> rows[] = {
        {"no right child: the left child", {5, 3, 1, 2}, 3, "5(1(-,2),-)"},
        {"no left child: the right child", {5, 3, 4}, 3, "5(4,-)"},
        {"left child without right child", {5, 3, 8, 1, 9}, 5, "3(1,8(-,9))"},
        {"rightmost of the left subtree", {9, 5, 2, 7, 4, 3}, 5, "9(4(2(-,3),7),-)"},
    };
    for (const auto& [name, keys, del, shape] : rows) {
        bnode_t* t = bnode_t::Delete(Build(keys), Cmp, &del);
        EXPECT_EQ(Shape(t), shape) << name;
        EXPECT_EQ(INode::live, t != nullptr ? t->Size() : 0) << name; // the removed node was destroyed
        t = t != nullptr ? t->DeleteTree() : nullptr;
    }
    bnode_t* t = Build({60, 50, 30, 70, 20, 40, 35, 45, 42});
    Ints depths; // 100 * depth + key
    t->left->CheckTree(3, Depth, &depths);
    EXPECT_EQ(depths, (Ints{520, 430, 635, 540, 742, 645, 350}));
    t->DeleteTree();
    // From a chain; the sort decides, and mid rounds down.
    t = Build({1, 2, 3, 4, 5, 6, 7, 8})->Balance(Descending);
    EXPECT_EQ(Shape(t), "5(7(8,6),3(4,2(-,1)))");
    t->DeleteTree();
    EXPECT_EQ(INode::live, 0);
}

// Plain insertions and deletions against a std::set. After every step: parent links, Size, the four
// walks (of the tree or its left subtree) against recursive ones, and both ranges between random
// bounds; walks and ranges stop at a random visit. (TMap's iterators step through the tree.)
TEST(BnodeTest, RandomRunMatchesASetAndRecursiveWalks)
{
    bnode_t* t = nullptr;
    int (*const walks[])(bnode_t*, bnode_visit_t, void*) = {bnode_t::Preorder, bnode_t::Inorder,
                                                            bnode_t::Postorder, bnode_t::Revorder};
    std::mt19937 rng(6);
    std::set<int> model;
    for (int step = 0; step < 3000 && !HasFailure(); ++step) {
        SCOPED_TRACE(step);
        int k = static_cast<int>(rng() % 100), seen = -1;
        if (rng() % 3 != 0) { // every other insertion without a found callback
            t = bnode_t::Insert(t, Cmp, &k, Create, &k, step % 2 ? Found : nullptr, &seen);
            EXPECT_EQ(seen, step % 2 && model.count(k) ? k : -1);
            model.insert(k);
        } else {
            t = bnode_t::Delete(t, Cmp, &k);
            model.erase(k);
        }
        Shape(t);
        EXPECT_TRUE(INode::live == int(model.size()) && (t != nullptr ? t->Size() : 0) == INode::live);
        const size_t stop = rng() % 10;
        bnode_t* sub = t != nullptr && rng() % 2 ? t->left : t;
        Ints in, want[4];
        Orders(sub, want);
        EXPECT_TRUE(sub != t || want[1] == Ints(model.begin(), model.end()));
        want[3].assign(want[1].rbegin(), want[1].rend());
        for (int kind = 0; kind < 4; ++kind)
            ExpectWalk([&](bnode_visit_t v) { return walks[kind](sub, v, nullptr); }, stop, want[kind]);
        const int lo = static_cast<int>(rng() % 110) - 5, hi = static_cast<int>(rng() % 110) - 5;
        for (int x : model)
            if (lo <= x && x <= hi)
                in.push_back(x);
        ExpectWalk([&](bnode_visit_t v) { return bnode_t::Range(t, v, nullptr, Cmp, &lo, &hi); }, stop, in);
        ExpectWalk([&](bnode_visit_t v) { return bnode_t::RevRange(t, v, nullptr, Cmp, &lo, &hi); }, stop,
                   Ints(in.rbegin(), in.rend()));
    }
    if (t != nullptr)
        t->DeleteTree();
    EXPECT_EQ(INode::live, 0);
}

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
    const std::string label = n ? n->key + ":" + std::to_string(H(n->c[1]) - H(n->c[0])) : "";
    return n ? Tree(label, Shape(n->c[0]), Shape(n->c[1])) : "-";
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
            for (const auto& [name, at] : where) {
                IntMap::Pair* p = it();
                ASSERT_TRUE(p && p->key == name.c_str() && std::make_pair(&p->value, p->value) == at);
                ASSERT_EQ(map.Find(name.c_str()), at.first);
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
    copy.Remove("e"), copy.Insert("a", 1);
    EXPECT_EQ(Shape(copy), "c:-1(a:0,-)");
    EXPECT_EQ(Shape(src), "c:1(-,e:0)");
    IntMap m;
    m["x"] += 5;
    m[""] = 2;
    m[String_t()] = 1; // null data orders before "" (str_cmp): two keys
    EXPECT_TRUE(IntMap::Iterator(m).Curr()->key.IsNull() && *m.Find("") == 2 && *m.Find("x") == 5);
    EXPECT_GT(GStringCmp()("\xe9", "z"), 0); // bytes compare unsigned
    IntMap w;
    for (const char* k : {"d", "b", "f", "a", "c", "e", "g"})
        w.Insert(k, 0);
    Collect all, two, range;
    two.stop = 2;
    EXPECT_TRUE(&ForEach(w, all) == &all && &ForEach(w, two) == &two);
    EXPECT_EQ(&Range(w, range, String_t("bb"), String_t("ee")), &range);
    EXPECT_TRUE(all.seen == "abcdefg" && two.seen == "ab" && range.seen == "cde" && *w.Find("a") == 2);
}

} // namespace
