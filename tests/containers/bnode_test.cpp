// bnode_t toolkit: plain insertion and deletion, traversals, ranges, stepping, copy and destruction.
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
void Found(bnode_t* n, void* arg) { *static_cast<int*>(arg) = Key(n); }

bnode_t* Build(const std::vector<int>& keys)
{
    bnode_t* t = nullptr;
    for (int k : keys)
        t = bnode_t::Insert(t, Cmp, &k, Create, &k);
    return t;
}

// "k(left,right)" with "-" for an absent child; fails the test on a broken parent link.
std::string Shape(const bnode_t* n, const bnode_t* parent = nullptr)
{
    if (n == nullptr)
        return "-";
    EXPECT_EQ(n->parent, parent) << "parent link of " << Key(n);
    if (n->left == nullptr && n->right == nullptr)
        return std::to_string(Key(n));
    return std::to_string(Key(n)) + "(" + Shape(n->left, n) + "," + Shape(n->right, n) + ")";
}

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

TEST_F(BnodeTest, PlainInsertFindsAndReportsExistingKeys)
{
    t = Build({5, 3, 8, 1, 4});
    EXPECT_EQ(Shape(t), "5(3(1,4),8)");
    int k = 4, seen = -1;
    EXPECT_EQ(bnode_t::Insert(t, Cmp, &k, Create, &k, Found, &seen), t);
    EXPECT_EQ(seen, 4);
    bnode_t::Insert(t, Cmp, &k, Create, &k); // no found callback: nothing happens
    EXPECT_EQ(INode::live, 5);
    EXPECT_EQ(Key(bnode_t::Find(t, Cmp, &k)), 4);
    k = 6;
    EXPECT_EQ(bnode_t::Find(t, Cmp, &k), nullptr);
    EXPECT_EQ(bnode_t::Find(nullptr, Cmp, &k), nullptr);
    EXPECT_EQ(t->Size(), 5);
}

TEST_F(BnodeTest, DeleteChoosesTheReplacementByTheChildren)
{
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
        {"inner node, rightmost moves", {9, 5, 2, 7, 4, 3}, 5, "9(4(2(-,3),7),-)"},
        {"absent key", {5, 3, 8}, 4, "5(3,8)"},
        {"only node", {5}, 5, "-"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        t = Build(row.keys);
        t = bnode_t::Delete(t, Cmp, &row.del);
        EXPECT_EQ(Shape(t), row.shape);
        const bool present = std::find(row.keys.begin(), row.keys.end(), row.del) != row.keys.end();
        EXPECT_EQ(INode::live, static_cast<int>(row.keys.size()) - present);
        if (t != nullptr)
            t = t->DeleteTree();
    }
}

TEST_F(BnodeTest, RandomInsertionsAndDeletionsKeepOrderAndParents)
{
    std::mt19937 rng(6);
    std::set<int> model;
    for (int step = 0; step < 4000; ++step) {
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
        ASSERT_EQ(v.keys, std::vector<int>(model.begin(), model.end())) << "step " << step;
        Shape(t);
        ASSERT_EQ(INode::live, static_cast<int>(model.size()));
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
        Visits all;
        EXPECT_EQ(row.walk(t, Record, &all), 0);
        EXPECT_EQ(all.keys, row.order);
        for (size_t stop = 1; stop <= row.order.size(); ++stop) {
            Visits some;
            some.stop_at = stop;
            EXPECT_EQ(row.walk(t, Record, &some), 7);
            EXPECT_EQ(some.keys, std::vector<int>(row.order.begin(), row.order.begin() + stop));
        }
        Visits none;
        EXPECT_EQ(row.walk(nullptr, Record, &none), 0);
        EXPECT_TRUE(none.keys.empty());
        // A walk over a subtree stays inside it.
        Visits sub;
        row.walk(t->left, Record, &sub);
        EXPECT_EQ(std::set<int>(sub.keys.begin(), sub.keys.end()), (std::set<int>{1, 2, 3}));
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
        {40, 40, {40}},
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
    Visits stop;
    stop.stop_at = 2;
    EXPECT_EQ(bnode_t::Range(t, Record, &stop, Cmp, &lo, &hi), 7);
    EXPECT_EQ(stop.keys, (std::vector<int>{20, 30}));
    Visits rstop;
    rstop.stop_at = 2;
    EXPECT_EQ(bnode_t::RevRange(t, Record, &rstop, Cmp, &lo, &hi), 7);
    EXPECT_EQ(rstop.keys, (std::vector<int>{60, 50}));
}

TEST_F(BnodeTest, IteratorStepsThroughParentLinks)
{
    t = Build({50, 30, 70, 20, 40, 60, 80, 35, 45});
    typedef bnode_t::Iterator It;
    std::vector<int> up, down;
    for (bnode_t* n = It::LDown(t); n != nullptr; n = n->right ? It::LDown(n->right) : It::LUp(n))
        up.push_back(Key(n));
    for (bnode_t* n = It::RDown(t); n != nullptr; n = n->left ? It::RDown(n->left) : It::RUp(n))
        down.push_back(Key(n));
    EXPECT_EQ(up, (std::vector<int>{20, 30, 35, 40, 45, 50, 60, 70, 80}));
    EXPECT_EQ(down, std::vector<int>(up.rbegin(), up.rend()));
    EXPECT_EQ(It::LDown(nullptr), nullptr);
    EXPECT_EQ(It::RUp(nullptr), nullptr);
    const int k45 = 45, k35 = 35;
    EXPECT_EQ(Key(It::LUp(bnode_t::Find(t, Cmp, &k45))), 50);
    EXPECT_EQ(Key(It::RUp(bnode_t::Find(t, Cmp, &k35))), 30);
}

TEST_F(BnodeTest, DupTreeCopiesTheShapeAndCleansUpAfterAThrowingDup)
{
    t = Build({5, 2, 8, 1, 3, 9, 7, 6});
    bnode_t* copy = t->DupTree();
    EXPECT_EQ(Shape(copy), Shape(t));
    int k = 2;
    copy = bnode_t::Delete(copy, Cmp, &k);
    EXPECT_EQ(Shape(t), "5(2(1,3),8(7(6,-),9))");
    copy = copy->DeleteTree();
    EXPECT_EQ(copy, nullptr);

    for (int fail = 0; fail < 8; ++fail) {
        INode::dups_left = fail;
        EXPECT_THROW(t->DupTree(), std::runtime_error);
        EXPECT_EQ(INode::live, 8) << "copy failing at Dup " << fail;
    }
    INode::dups_left = -1;
    bnode_t* sub = t->right->DupTree(); // a subtree copy gets a root without parent
    EXPECT_EQ(Shape(sub), "8(7(6,-),9)");
    sub->DeleteTree();
}

TEST_F(BnodeTest, CheckTreeReportsDepthsInOrder)
{
    t = Build({2, 1, 3});
    std::vector<std::pair<int, int>> seen;
    auto check = [](bnode_t* n, int depth, void* arg) {
        static_cast<std::vector<std::pair<int, int>>*>(arg)->push_back({Key(n), depth});
    };
    t->CheckTree(0, check, &seen);
    EXPECT_EQ(seen, (std::vector<std::pair<int, int>>{{1, 1}, {2, 0}, {3, 1}}));
    t = t->DeleteTree();

    t = Build({50, 30, 70, 20, 40, 35, 45, 42, 80});
    seen.clear();
    t->CheckTree(3, check, &seen);
    EXPECT_EQ(seen, (std::vector<std::pair<int, int>>{
                        {20, 5}, {30, 4}, {35, 6}, {40, 5}, {42, 7}, {45, 6}, {50, 3}, {70, 4}, {80, 5}}));
    seen.clear();
    t->left->right->CheckTree(0, check, &seen); // a subtree only
    EXPECT_EQ(seen, (std::vector<std::pair<int, int>>{{35, 1}, {40, 0}, {42, 2}, {45, 1}}));
}

int Ascending(bnode_t* const* a, bnode_t* const* b) { return Key(*a) - Key(*b); }
int Descending(bnode_t* const* a, bnode_t* const* b) { return Key(*b) - Key(*a); }

int Height(const bnode_t* n) { return n == nullptr ? 0 : 1 + std::max(Height(n->left), Height(n->right)); }

TEST_F(BnodeTest, BalanceRebuildsByTheSortOrder)
{
    t = Build({1, 2, 3, 4, 5, 6, 7});
    EXPECT_EQ(Height(t), 7);
    t = t->Balance(Ascending);
    EXPECT_EQ(Shape(t), "4(2(1,3),6(5,7))");
    t = t->Balance(Descending); // the sort decides, not the old order
    EXPECT_EQ(Shape(t), "4(6(7,5),2(3,1))");
    t = t->DeleteTree();

    const struct {
        std::vector<int> keys;
        const char* shape;
    } rows[] = {
        {{1}, "1"},
        {{2, 1}, "1(-,2)"},
        {{6, 5, 4, 3, 2, 1}, "3(1(-,2),5(4,6))"},
        {{8, 1, 7, 2, 6, 3, 5, 4}, "4(2(1,3),6(5,7(-,8)))"},
    };
    for (const auto& row : rows) {
        t = Build(row.keys)->Balance(Ascending);
        EXPECT_EQ(Shape(t), row.shape);
        t = t->DeleteTree();
    }

    std::mt19937 rng(7);
    for (int n : {100, 1000, 4095, 4096}) {
        std::vector<int> keys(n);
        for (int i = 0; i < n; ++i)
            keys[i] = i;
        std::shuffle(keys.begin(), keys.end(), rng);
        t = Build(keys)->Balance(Ascending);
        int h = 0;
        while ((1 << h) <= n)
            ++h;
        EXPECT_EQ(Height(t), h) << n;
        Visits v;
        bnode_t::Inorder(t, Record, &v);
        EXPECT_TRUE(std::is_sorted(v.keys.begin(), v.keys.end()));
        EXPECT_EQ(static_cast<int>(v.keys.size()), n);
        Shape(t); // parent links
        t = t->DeleteTree();
    }
}

TEST_F(BnodeTest, BuildTreeOfOneNodeTakesTheParent)
{
    INode parent(0), only(1);
    only.left = &parent; // stale links are overwritten
    bnode_t* nodes[] = {&only};
    EXPECT_EQ(bnode_t::BuildTree(&parent, nodes, 0, 0), &only);
    EXPECT_EQ(only.parent, &parent);
    EXPECT_EQ(only.left, nullptr);
    EXPECT_EQ(only.right, nullptr);
    EXPECT_EQ(bnode_t::BuildTree(&parent, nodes, 1, 0), nullptr);
}

TEST_F(BnodeTest, DegenerateChainsNeedNoStack)
{
    // Sorted plain insertion makes a chain as deep as it is long; the walks follow parent links.
    const int n = 200000;
    bnode_t* last = nullptr;
    for (int k = 0; k < n; ++k) {
        bnode_t* node = new INode(k);
        if (last == nullptr)
            t = node;
        else
            last->right = node, node->parent = last;
        last = node;
    }
    EXPECT_EQ(t->Size(), n);
    Visits v;
    v.stop_at = n;
    EXPECT_EQ(bnode_t::Postorder(t, Record, &v), 7);
    EXPECT_EQ(v.keys.front(), n - 1);
    bnode_t* copy = t->DupTree();
    EXPECT_EQ(copy->Size(), n);
    copy->DeleteTree();
    int max = 0;
    t->CheckTree(0, [](bnode_t*, int d, void* arg) { *static_cast<int*>(arg) = d; }, &max);
    EXPECT_EQ(max, n - 1);
}

} // namespace
