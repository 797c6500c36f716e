// The binary-tree toolkit of bnode_t.
#include <tevbase/bnode.h>

#include "treelink.h"

template class TVarr<bnode_t*>;

namespace {

using tevbase_tree::LinkLeft;
using tevbase_tree::LinkRight;

typedef bnode_t::Iterator It;

// In-order successor (predecessor) of n within the subtree rooted at top, or null. Bounded by top so
// that a walk over a subtree never climbs out of it.
bnode_t* NextIn(bnode_t* n, const bnode_t* top)
{
    if (n->right != nullptr)
        return It::LDown(n->right);
    for (; n != top; n = n->parent)
        if (n->parent->left == n)
            return n->parent;
    return nullptr;
}

bnode_t* PrevIn(bnode_t* n, const bnode_t* top)
{
    if (n->left != nullptr)
        return It::RDown(n->left);
    for (; n != top; n = n->parent)
        if (n->parent->right == n)
            return n->parent;
    return nullptr;
}

bnode_t* NextPre(bnode_t* n, const bnode_t* top)
{
    if (n->left != nullptr)
        return n->left;
    if (n->right != nullptr)
        return n->right;
    for (; n != top; n = n->parent)
        if (n->parent->left == n && n->parent->right != nullptr)
            return n->parent->right;
    return nullptr;
}

// The first node of the subtree at n in post-order: descend, left before right, to a leaf.
bnode_t* FirstPost(bnode_t* n)
{
    for (;;) {
        if (n->left != nullptr)
            n = n->left;
        else if (n->right != nullptr)
            n = n->right;
        else
            return n;
    }
}

// Reads only n's parent and that parent's links, so it may run after n's children are destroyed.
bnode_t* NextPost(bnode_t* n, const bnode_t* top)
{
    if (n == top)
        return nullptr;
    bnode_t* p = n->parent;
    if (p->left == n && p->right != nullptr)
        return FirstPost(p->right);
    return p;
}

typedef bnode_t* (*step_t)(bnode_t* n, const bnode_t* top);

// Visits n and the nodes that step finds after it within the subtree at top. Stops at the first
// non-zero visit result, which it returns, and, when cmp is given, before the first node beyond bound
// (ordered after it for past > 0, before it for past < 0). Each step is taken before the visit, so a
// visit may destroy its node.
int Walk(bnode_t* n, const bnode_t* top, step_t step, bnode_visit_t visit, void* arg,
         bnode_cmp_t cmp = nullptr, const void* bound = nullptr, int past = 0)
{
    while (n != nullptr) {
        if (cmp != nullptr) {
            const int c = cmp(n, bound); // > 0: n orders after bound
            if (past > 0 ? c > 0 : c < 0)
                break;
        }
        bnode_t* next = step(n, top);
        if (const int r = visit(n, arg))
            return r;
        n = next;
    }
    return 0;
}

// Visit of DeleteTree: a post-order walk reaches a node after its children and steps on first.
int Destroy(bnode_t* n, void*)
{
    delete n;
    return 0;
}

} // namespace

bnode_t::~bnode_t() {}

bnode_t* bnode_t::Find(bnode_t* t, bnode_cmp_t cmp, const void* key)
{
    while (t != nullptr) {
        const int c = cmp(t, key);
        if (c == 0)
            return t;
        t = c > 0 ? t->left : t->right;
    }
    return nullptr;
}

bnode_t* bnode_t::Insert(bnode_t* t, bnode_cmp_t cmp, const void* key, bnode_create_t create, void* arg,
                         bnode_found_t found, void* foundarg)
{
    bnode_t* p = nullptr;
    int c = 0;
    for (bnode_t* n = t; n != nullptr; n = c > 0 ? n->left : n->right) {
        c = cmp(n, key);
        if (c == 0) {
            if (found != nullptr)
                found(n, foundarg);
            return t;
        }
        p = n;
    }
    bnode_t* n = create(arg);
    if (n == nullptr)
        return t;
    n->left = n->right = nullptr;
    n->parent = p;
    if (p == nullptr)
        return n;
    if (c > 0)
        p->left = n;
    else
        p->right = n;
    return t;
}

bnode_t* bnode_t::Delete(bnode_t* t, bnode_cmp_t cmp, const void* key)
{
    bnode_t* n = Find(t, cmp, key);
    if (n == nullptr)
        return t;

    bnode_t* r;
    if (n->right == nullptr) {
        r = n->left;
    } else if (n->left == nullptr) {
        r = n->right;
    } else {
        // The rightmost node of the left subtree takes n's place; when it lies deeper than n's left
        // child, its own left subtree first takes its place under its parent.
        r = It::RDown(n->left);
        if (r != n->left) {
            LinkRight(r->parent, r->left);
            LinkLeft(r, n->left);
        }
        LinkRight(r, n->right);
    }

    bnode_t* up = n->parent;
    if (r != nullptr)
        r->parent = up;
    if (n == t)
        t = r;
    else if (up->left == n)
        up->left = r;
    else
        up->right = r;
    delete n;
    return t;
}

int bnode_t::Preorder(bnode_t* t, bnode_visit_t visit, void* arg)
{
    return Walk(t, t, NextPre, visit, arg);
}

int bnode_t::Inorder(bnode_t* t, bnode_visit_t visit, void* arg)
{
    return Walk(It::LDown(t), t, NextIn, visit, arg);
}

int bnode_t::Revorder(bnode_t* t, bnode_visit_t visit, void* arg)
{
    return Walk(It::RDown(t), t, PrevIn, visit, arg);
}

int bnode_t::Postorder(bnode_t* t, bnode_visit_t visit, void* arg)
{
    return Walk(t != nullptr ? FirstPost(t) : nullptr, t, NextPost, visit, arg);
}

// Both walks start at the bound's neighbour found by one descent and then step through successors
// (predecessors): every node entered on the way lies on the search path or inside the range.
int bnode_t::Range(bnode_t* t, bnode_visit_t visit, void* arg, bnode_cmp_t cmp, const void* lo,
                   const void* hi)
{
    bnode_t* first = nullptr; // the smallest node not below lo
    for (bnode_t* n = t; n != nullptr;) {
        const int c = cmp(n, lo);
        if (c < 0) {
            n = n->right;
        } else {
            first = n;
            n = c > 0 ? n->left : nullptr;
        }
    }
    return Walk(first, t, NextIn, visit, arg, cmp, hi, 1);
}

int bnode_t::RevRange(bnode_t* t, bnode_visit_t visit, void* arg, bnode_cmp_t cmp, const void* lo,
                      const void* hi)
{
    bnode_t* last = nullptr; // the largest node not above hi
    for (bnode_t* n = t; n != nullptr;) {
        const int c = cmp(n, hi);
        if (c > 0) {
            n = n->left;
        } else {
            last = n;
            n = c < 0 ? n->right : nullptr;
        }
    }
    return Walk(last, t, PrevIn, visit, arg, cmp, lo, -1);
}

bnode_t* bnode_t::Iterator::LDown(bnode_t* n)
{
    if (n != nullptr)
        while (n->left != nullptr)
            n = n->left;
    return n;
}

bnode_t* bnode_t::Iterator::RDown(bnode_t* n)
{
    if (n != nullptr)
        while (n->right != nullptr)
            n = n->right;
    return n;
}

bnode_t* bnode_t::Iterator::LUp(bnode_t* n)
{
    if (n == nullptr)
        return nullptr;
    while (n->parent != nullptr && n->parent->right == n)
        n = n->parent;
    return n->parent;
}

bnode_t* bnode_t::Iterator::RUp(bnode_t* n)
{
    if (n == nullptr)
        return nullptr;
    while (n->parent != nullptr && n->parent->left == n)
        n = n->parent;
    return n->parent;
}

bnode_t* bnode_t::DupTree() const
{
    bnode_t* top = Dup();
    top->parent = top->left = top->right = nullptr;
    try {
        // Source and copy are walked in step: down into a child not yet copied, else back up.
        const bnode_t* s = this;
        bnode_t* d = top;
        for (;;) {
            if (s->left != nullptr && d->left == nullptr) {
                bnode_t* c = s->left->Dup();
                c->left = c->right = nullptr;
                LinkLeft(d, c);
                s = s->left;
                d = c;
            } else if (s->right != nullptr && d->right == nullptr) {
                bnode_t* c = s->right->Dup();
                c->left = c->right = nullptr;
                LinkRight(d, c);
                s = s->right;
                d = c;
            } else if (s != this) {
                s = s->parent;
                d = d->parent;
            } else {
                return top;
            }
        }
    } catch (...) {
        top->DeleteTree(); // the part copied so far is a well-linked tree
        throw;
    }
}

bnode_t* bnode_t::DeleteTree()
{
    Postorder(this, Destroy, nullptr);
    return nullptr;
}

int bnode_t::Size() const
{
    bnode_t* top = const_cast<bnode_t*>(this);
    int n = 0;
    for (bnode_t* p = It::LDown(top); p != nullptr; p = NextIn(p, top))
        ++n;
    return n;
}

void bnode_t::CheckTree(int depth, bnode_check_t check, void* arg)
{
    bnode_t* n = this;
    for (;;) {
        for (; n->left != nullptr; n = n->left)
            ++depth;
        for (;;) {
            check(n, depth, arg);
            if (n->right != nullptr) {
                n = n->right;
                ++depth;
                break; // on to the leftmost node of the right subtree
            }
            // Climb out of finished right subtrees; the ancestor reached from the left is next.
            for (; n != this && n->parent->right == n; n = n->parent)
                --depth;
            if (n == this)
                return;
            n = n->parent;
            --depth;
        }
    }
}

bnode_t* bnode_t::BuildTree(bnode_t* parent, bnode_t** nodes, int lo, int hi)
{
    if (lo > hi)
        return nullptr;
    const int mid = lo + (hi - lo) / 2;
    bnode_t* n = nodes[mid];
    n->parent = parent;
    n->left = BuildTree(n, nodes, lo, mid - 1);
    n->right = BuildTree(n, nodes, mid + 1, hi);
    return n;
}

bnode_t* bnode_t::Balance(bnode_sort_t cmp)
{
    TVarr<bnode_t*> nodes(1024, VARR_DOUBLE);
    for (bnode_t* n = It::LDown(this); n != nullptr; n = NextIn(n, this))
        nodes.App(n);
    nodes.Sort(cmp);
    return BuildTree(nullptr, nodes.Get(), 0, static_cast<int>(nodes.Len()) - 1);
}
