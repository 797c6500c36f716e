// bnode_t toolkit: plain insertion and deletion, traversals, ranges, copy, destruction, rebuilding.
#include <tevbase/bnode.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

struct INode : bnode_t {
    static int live;
    static int dups_left; // Dup throws when this reaches 0 (negative: never)
    int key;

    explicit INode(int k) : key(k) { ++live; }
    INode(const INode& o) : bnode_t(o), key(o.key) { ++live; }
    ~INode() override { --live; }
    bnode_t* Dup() const override
    {
        if (dups_left >= 0 && dups_left-- == 0)
            throw std::runtime_error("dup");
        return new INode(*this);
    }
};
int INode::live = 0;
int INode::dups_left = -1;

int Key(const bnode_t* n) { return static_cast<const INode*>(n)->key; }
int Cmp(const bnode_t* n, const void* key) { return Key(n) - *static_cast<const int*>(key); }
bnode_t* Create(void* arg) { return new INode(*static_cast<int*>(arg)); }
int Ascending(bnode_t* const* a, bnode_t* const* b) { return Key(*a) - Key(*b); }
int Descending(bnode_t* const* a, bnode_t* const* b) { return Key(*b) - Key(*a); }

bnode_t* Build(const std::vector<int>& keys)
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

int Height(const bnode_t* n) { return n == nullptr ? 0 : 1 + std::max(Height(n->left), Height(n->right)); }

struct Visits {
    std::vector<int> keys;
    size_t stop_at = 0; // the visit that returns non-zero, counted from 1 (0: none)
};
int Record(bnode_t* n, void* arg)
{
    Visits* v = static_cast<Visits*>(arg);
    v->keys.push_back(Key(n));
    return v->keys.size() == v->stop_at ? 7 : 0;
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

TEST_F(BnodeTest, PlainInsertAndDeleteFollowTheReplacementRule)
{
    t = Build({5, 3, 8, 1, 4});
    int k = 4, seen = -1;
    auto found = [](bnode_t* n, void* arg) { *static_cast<int*>(arg) = Key(n); };
    EXPECT_EQ(bnode_t::Insert(t, Cmp, &k, Create, &k, found, &seen), t);
    EXPECT_EQ(seen, 4);
    bnode_t::Insert(t, Cmp, &k, Create, &k); // without a found callback nothing happens either
    EXPECT_EQ(Shape(t), "5(3(1,4),8)");
    EXPECT_EQ(INode::live, 5);
    k = 6;
    EXPECT_EQ(bnode_t::Find(t, Cmp, &k), nullptr);
    t = t->DeleteTree();

    const struct {
        const char* name;
        std::vector<int> keys;
        int del;
        const char* shape;
    } rows[] = {
        {"leaf", {5, 3, 8}, 8, "5(3,-)"},
        {"only left child", {5, 3, 1}, 3, "5(1,-)"},
        {"only right child", {5, 3, 4}, 3, "5(4,-)"},
        {"left child without right child", {5, 3, 8, 1, 9}, 5, "3(1,8(-,9))"},
        {"rightmost of the left subtree", {8, 3, 9, 1, 6, 4, 7, 5}, 8, "7(3(1,6(4(-,5),-)),9)"},
        {"rightmost with a left subtree", {9, 5, 2, 7, 4, 3}, 5, "9(4(2(-,3),7),-)"},
        {"absent key", {5, 3, 8}, 4, "5(3,8)"},
        {"only node", {5}, 5, "-"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        t = bnode_t::Delete(Build(row.keys), Cmp, &row.del);
        EXPECT_EQ(Shape(t), row.shape);
        const bool present = std::count(row.keys.begin(), row.keys.end(), row.del) != 0;
        EXPECT_EQ(INode::live, static_cast<int>(row.keys.size()) - present);
        if (t != nullptr)
            t = t->DeleteTree();
    }
}

TEST_F(BnodeTest, RandomInsertionsAndDeletionsKeepOrderAndParents)
{
    std::mt19937 rng(6);
    std::set<int> model;
    for (int step = 0; step < 4000 && !HasFailure(); ++step) {
        int k = static_cast<int>(rng() % 100);
        if (rng() % 3 != 0) {
            t = bnode_t::Insert(t, Cmp, &k, Create, &k);
            model.insert(k);
        } else {
            t = bnode_t::Delete(t, Cmp, &k);
            model.erase(k);
        }
        Visits v;
        bnode_t::Inorder(t, Record, &v);
        EXPECT_EQ(v.keys, std::vector<int>(model.begin(), model.end())) << "step " << step;
        EXPECT_EQ(INode::live, static_cast<int>(model.size()));
        Shape(t);
    }
}

TEST_F(BnodeTest, TraversalsVisitInTheirOrderAndStopEarly)
{
    t = Build({4, 2, 6, 1, 3, 5, 7});
    const struct {
        const char* name;
        int (*walk)(bnode_t*, bnode_visit_t, void*);
        std::vector<int> order;
    } rows[] = {
        {"pre", bnode_t::Preorder, {4, 2, 1, 3, 6, 5, 7}},
        {"in", bnode_t::Inorder, {1, 2, 3, 4, 5, 6, 7}},
        {"rev", bnode_t::Revorder, {7, 6, 5, 4, 3, 2, 1}},
        {"post", bnode_t::Postorder, {1, 3, 2, 5, 7, 6, 4}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        for (size_t stop = 0; stop <= row.order.size(); ++stop) {
            Visits v;
            v.stop_at = stop;
            EXPECT_EQ(row.walk(t, Record, &v), stop != 0 ? 7 : 0);
            EXPECT_EQ(v.keys, std::vector<int>(row.order.begin(), row.order.begin() + (stop ? stop : 7)));
        }
        Visits sub, none;
        row.walk(t->left, Record, &sub); // a walk over a subtree stays inside it
        EXPECT_EQ(std::set<int>(sub.keys.begin(), sub.keys.end()), (std::set<int>{1, 2, 3}));
        EXPECT_EQ(row.walk(nullptr, Record, &none), 0);
    }
}

TEST_F(BnodeTest, RangesIncludeBothBoundsInEitherDirection)
{
    t = Build({40, 20, 60, 10, 30, 50, 70});
    const struct {
        int lo, hi;
        std::vector<int> up;
    } rows[] = {
        {20, 50, {20, 30, 40, 50}}, {21, 49, {30, 40}}, {30, 30, {30}}, {31, 39, {}}, {50, 20, {}},
        {0, 5, {}}, {75, 99, {}}, {0, 99, {10, 20, 30, 40, 50, 60, 70}}, {65, 99, {70}}, {0, 10, {10}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::to_string(row.lo) + ".." + std::to_string(row.hi));
        Visits up, down;
        EXPECT_EQ(bnode_t::Range(t, Record, &up, Cmp, &row.lo, &row.hi), 0);
        EXPECT_EQ(bnode_t::RevRange(t, Record, &down, Cmp, &row.lo, &row.hi), 0);
        EXPECT_EQ(up.keys, row.up);
        EXPECT_EQ(down.keys, std::vector<int>(row.up.rbegin(), row.up.rend()));
    }
    const int lo = 15, hi = 65;
    Visits up, down;
    up.stop_at = down.stop_at = 2;
    EXPECT_EQ(bnode_t::Range(t, Record, &up, Cmp, &lo, &hi), 7);
    EXPECT_EQ(bnode_t::RevRange(t, Record, &down, Cmp, &lo, &hi), 7);
    EXPECT_EQ(up.keys, (std::vector<int>{20, 30}));
    EXPECT_EQ(down.keys, (std::vector<int>{60, 50}));
}

TEST_F(BnodeTest, DupTreeCopiesTheShapeAndCleansUpAfterAThrowingDup)
{
    t = Build({5, 2, 8, 1, 3, 9, 7, 6});
    bnode_t* copy = t->DupTree();
    EXPECT_EQ(Shape(copy), "5(2(1,3),8(7(6,-),9))");
    const int k = 2;
    bnode_t::Delete(copy, Cmp, &k)->DeleteTree();
    EXPECT_EQ(Shape(t), "5(2(1,3),8(7(6,-),9))");
    for (int fail = 0; fail < 8; ++fail) {
        INode::dups_left = fail;
        EXPECT_THROW(t->DupTree(), std::runtime_error);
        EXPECT_EQ(INode::live, 8) << "copy failing at Dup " << fail;
    }
    INode::dups_left = -1;
    bnode_t* sub = t->right->DupTree(); // a subtree's copy has a root without parent
    EXPECT_EQ(Shape(sub), "8(7(6,-),9)");
    sub->DeleteTree();
}

TEST_F(BnodeTest, CheckTreeReportsDepthsInOrder)
{
    typedef std::vector<std::pair<int, int>> Depths;
    auto check = [](bnode_t* n, int depth, void* arg) {
        static_cast<Depths*>(arg)->push_back({Key(n), depth});
    };
    Depths seen;
    t = Build({2, 1, 3});
    t->CheckTree(0, check, &seen);
    EXPECT_EQ(seen, (Depths{{1, 1}, {2, 0}, {3, 1}}));
    t = t->DeleteTree();

    t = Build({50, 30, 70, 20, 40, 35, 45, 42, 80});
    seen.clear();
    t->left->right->CheckTree(3, check, &seen); // a subtree only
    EXPECT_EQ(seen, (Depths{{35, 4}, {40, 3}, {42, 5}, {45, 4}}));
}

TEST_F(BnodeTest, BalanceRebuildsByTheSortOrder)
{
    t = Build({1, 2, 3, 4, 5, 6, 7})->Balance(Ascending);
    EXPECT_EQ(Shape(t), "4(2(1,3),6(5,7))");
    t = t->Balance(Descending); // the sort decides, not the old order
    EXPECT_EQ(Shape(t), "4(6(7,5),2(3,1))");
    t = t->DeleteTree();
    t = Build({8, 1, 7, 2, 6, 3, 5, 4})->Balance(Ascending);
    EXPECT_EQ(Shape(t), "4(2(1,3),6(5,7(-,8)))");
    t = t->DeleteTree();

    std::mt19937 rng(7);
    for (int n : {1, 2, 1000, 4095, 4096}) {
        std::vector<int> keys(n);
        for (int i = 0; i < n; ++i)
            keys[i] = i;
        std::shuffle(keys.begin(), keys.end(), rng);
        t = Build(keys)->Balance(Ascending);
        int h = 0;
        while ((1 << h) <= n)
            ++h;
        EXPECT_EQ(Height(t), h) << n;
        EXPECT_EQ(t->Size(), n);
        Shape(t);
        t = t->DeleteTree();
    }

    INode parent(0), only(1);
    only.left = &parent; // stale links are overwritten
    bnode_t* nodes[] = {&only};
    EXPECT_EQ(bnode_t::BuildTree(&parent, nodes, 0, 0), &only);
    EXPECT_TRUE(only.parent == &parent && only.left == nullptr && only.right == nullptr);
    EXPECT_EQ(bnode_t::BuildTree(&parent, nodes, 1, 0), nullptr);
}

TEST_F(BnodeTest, DegenerateChainsNeedNoStack)
{
    // A chain as deep as it is long (what plain Insert makes of sorted keys): walking, copying and
    // destroying it must not recurse.
    const int n = 200000;
    t = new INode(0);
    for (bnode_t* last = t; Key(last) < n - 1; last = last->right) {
        last->right = new INode(Key(last) + 1);
        last->right->parent = last;
    }
    EXPECT_EQ(t->Size(), n);
    Visits v;
    v.stop_at = n;
    EXPECT_EQ(bnode_t::Postorder(t, Record, &v), 7);
    EXPECT_EQ(v.keys.front(), n - 1);
    t->DupTree()->DeleteTree();
    int deepest = 0;
    t->CheckTree(0, [](bnode_t*, int d, void* arg) { *static_cast<int*>(arg) = d; }, &deepest);
    EXPECT_EQ(deepest, n - 1);
}

} // namespace
