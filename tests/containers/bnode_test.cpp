// bnode_t toolkit: plain insertion and deletion, traversals, ranges, depths, rebuilding.
#include <tevbase/bnode.h>

#include <gtest/gtest.h>

#include <random>
#include <set>
#include <string>
#include <tuple>
#include <vector>

namespace {

using Ints = std::vector<int>;

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

// "k(left,right)", "-" for an absent child; fails the test on a broken parent link.
std::string Shape(const bnode_t* n, const bnode_t* parent = nullptr)
{
    if (n == nullptr)
        return "-";
    EXPECT_EQ(n->parent, parent) << "parent link of " << Key(n);
    const std::string k = std::to_string(Key(n));
    return n->left || n->right ? k + "(" + Shape(n->left, n) + "," + Shape(n->right, n) + ")" : k;
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

class BnodeTest : public ::testing::Test {
protected:
    void TearDown() override
    {
        if (t != nullptr)
            t = t->DeleteTree();
        EXPECT_EQ(INode::live, 0);
    }
    bnode_t* t = nullptr;
};

TEST_F(BnodeTest, DeleteFollowsTheReplacementRule)
{
    const std::tuple<const char*, Ints, int, const char*> rows[] = {
        {"no right child: the left child", {5, 3, 1, 2}, 3, "5(1(-,2),-)"},
        {"no left child: the right child", {5, 3, 4}, 3, "5(4,-)"},
        {"left child without right child", {5, 3, 8, 1, 9}, 5, "3(1,8(-,9))"},
        {"rightmost of the left subtree", {9, 5, 2, 7, 4, 3}, 5, "9(4(2(-,3),7),-)"},
        {"only node", {5}, 5, "-"},
    };
    for (const auto& [name, keys, del, shape] : rows) {
        t = bnode_t::Delete(Build(keys), Cmp, &del);
        EXPECT_EQ(Shape(t), shape) << name;
        EXPECT_EQ(INode::live, t != nullptr ? t->Size() : 0) << name; // the removed node was destroyed
        t = t != nullptr ? t->DeleteTree() : nullptr;
    }
}

// Plain insertions and deletions against a std::set. After every step: parent links, Size, the four
// walks (of the tree or its left subtree) against recursive ones, and both ranges between random
// bounds; walks and ranges stop at a random visit. (TMap's iterators step through the tree.)
TEST_F(BnodeTest, RandomRunMatchesASetAndRecursiveWalks)
{
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
        EXPECT_EQ(t != nullptr ? t->Size() : 0, static_cast<int>(model.size()));
        EXPECT_EQ(INode::live, static_cast<int>(model.size()));
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
}

TEST_F(BnodeTest, CheckTreeAndBalance)
{
    t = Build({60, 50, 30, 70, 20, 40, 35, 45, 42});
    Ints depths; // 100 * depth + key
    t->left->CheckTree(3, Depth, &depths);
    EXPECT_EQ(depths, (Ints{520, 430, 635, 540, 742, 645, 350}));
    t = t->DeleteTree();
    // From a chain; the sort decides, and mid rounds down.
    t = Build({1, 2, 3, 4, 5, 6, 7, 8})->Balance(Descending);
    EXPECT_EQ(Shape(t), "5(7(8,6),3(4,2(-,1)))");
}

} // namespace
