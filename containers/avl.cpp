// AVL insertion and deletion on AVLnode (the rotations are drawn in bnode.h).
#include <tevbase/bnode.h>

#include "treelink.h"

namespace {

using tevbase_tree::LinkLeft;
using tevbase_tree::LinkRight;

struct InsertArgs {
    bnode_cmp_t cmp;
    const void* key;
    bnode_create_t create;
    void* arg;
    bnode_found_t found;
    void* foundarg;
};

AVLnode* Left(const AVLnode* n) { return static_cast<AVLnode*>(n->left); }
AVLnode* Right(const AVLnode* n) { return static_cast<AVLnode*>(n->right); }

// Single rotations: the child on the heavy side becomes the subtree root and takes p's parent. The
// balance factors depend on the caller (insertion or deletion) and are set there.
AVLnode* RotateLL(AVLnode* p)
{
    AVLnode* a = Left(p);
    a->parent = p->parent;
    LinkLeft(p, Right(a));
    LinkRight(a, p);
    return a;
}

AVLnode* RotateRR(AVLnode* p)
{
    AVLnode* a = Right(p);
    a->parent = p->parent;
    LinkRight(p, Left(a));
    LinkLeft(a, p);
    return a;
}

// After a double rotation the grandchild g is the subtree root: the two nodes it split take the
// balance its old lean implies (alike in insertion and deletion), and g gets 0.
AVLnode* Settle(AVLnode* g)
{
    Left(g)->bal = g->bal == 1 ? -1 : 0;
    Right(g)->bal = g->bal == -1 ? 1 : 0;
    g->bal = 0;
    return g;
}

// Double rotations: the heavy child first turns away, then its inner child g rises to the top.
AVLnode* RotateLR(AVLnode* p)
{
    LinkLeft(p, RotateRR(Left(p)));
    return Settle(RotateLL(p));
}

AVLnode* RotateRL(AVLnode* p)
{
    LinkRight(p, RotateLL(Right(p)));
    return Settle(RotateRR(p));
}

// Inserts into the subtree at p and returns its new root; h tells whether the subtree grew.
AVLnode* InsertAt(AVLnode* p, const InsertArgs& a, bool& h)
{
    if (p == nullptr) {
        AVLnode* n = static_cast<AVLnode*>(a.create(a.arg));
        h = n != nullptr;
        if (n != nullptr) {
            n->parent = n->left = n->right = nullptr;
            n->bal = 0;
        }
        return n;
    }
    const int c = a.cmp(p, a.key);
    if (c == 0) {
        if (a.found != nullptr)
            a.found(p, a.foundarg);
        h = false;
        return p;
    }
    if (c > 0) {
        LinkLeft(p, InsertAt(Left(p), a, h));
        if (!h)
            return p;
        switch (p->bal) {
        case 1:
            p->bal = 0;
            h = false;
            return p;
        case 0:
            p->bal = -1;
            return p;
        }
        // Two higher on the left: the rotation restores p's old height, so growth stops here.
        if (Left(p)->bal == -1) {
            p->bal = 0;
            p = RotateLL(p);
        } else {
            p = RotateLR(p);
        }
    } else {
        LinkRight(p, InsertAt(Right(p), a, h));
        if (!h)
            return p;
        switch (p->bal) {
        case -1:
            p->bal = 0;
            h = false;
            return p;
        case 0:
            p->bal = 1;
            return p;
        }
        if (Right(p)->bal == 1) {
            p->bal = 0;
            p = RotateRR(p);
        } else {
            p = RotateRL(p);
        }
    }
    p->bal = 0;
    h = false;
    return p;
}

// The left side of p became one lower; returns the subtree's new root. h stays true while the
// subtree's height still dropped.
AVLnode* Bal1(AVLnode* p, bool& h)
{
    switch (p->bal) {
    case -1:
        p->bal = 0;
        return p;
    case 0:
        p->bal = 1;
        h = false;
        return p;
    }
    AVLnode* r = Right(p);
    if (r->bal < 0)
        return RotateRL(p);
    AVLnode* top = RotateRR(p);
    if (r->bal == 0) { // an even child leaves the height unchanged
        p->bal = 1;
        r->bal = -1;
        h = false;
    } else {
        p->bal = 0;
        r->bal = 0;
    }
    return top;
}

// The right side of p became one lower: the mirror of Bal1.
AVLnode* Bal2(AVLnode* p, bool& h)
{
    switch (p->bal) {
    case 1:
        p->bal = 0;
        return p;
    case 0:
        p->bal = -1;
        h = false;
        return p;
    }
    AVLnode* l = Left(p);
    if (l->bal > 0)
        return RotateLR(p);
    AVLnode* top = RotateLL(p);
    if (l->bal == 0) {
        p->bal = -1;
        l->bal = 1;
        h = false;
    } else {
        p->bal = 0;
        l->bal = 0;
    }
    return top;
}

// Unlinks the rightmost node of the subtree at r into pred and returns the subtree's new root, whose
// parent link the caller sets; h tells whether the subtree became lower.
AVLnode* Del(AVLnode* r, AVLnode*& pred, bool& h)
{
    if (r->right == nullptr) {
        pred = r;
        h = true;
        return Left(r);
    }
    LinkRight(r, Del(Right(r), pred, h));
    return h ? Bal2(r, h) : r;
}

// Unlinks the node holding key from the subtree at p into removed and returns the subtree's new root,
// whose parent link the caller sets; h tells whether the subtree became lower.
AVLnode* DeleteAt(AVLnode* p, bnode_cmp_t cmp, const void* key, AVLnode*& removed, bool& h)
{
    if (p == nullptr) {
        h = false;
        return nullptr;
    }
    const int c = cmp(p, key);
    if (c > 0) {
        LinkLeft(p, DeleteAt(Left(p), cmp, key, removed, h));
        return h ? Bal1(p, h) : p;
    }
    if (c < 0) {
        LinkRight(p, DeleteAt(Right(p), cmp, key, removed, h));
        return h ? Bal2(p, h) : p;
    }
    removed = p;
    h = true;
    if (p->right == nullptr)
        return Left(p);
    if (p->left == nullptr)
        return Right(p);
    // The predecessor leaves the left subtree (rebalancing it), then takes p's place and balance.
    AVLnode* pred = nullptr;
    AVLnode* left = Del(Left(p), pred, h);
    pred->parent = p->parent;
    LinkLeft(pred, left);
    LinkRight(pred, Right(p));
    pred->bal = p->bal;
    return h ? Bal1(pred, h) : pred;
}

} // namespace

AVLnode* AVLnode::Insert(AVLnode* t, bnode_cmp_t cmp, const void* key, bnode_create_t create, void* arg,
                         bnode_found_t found, void* foundarg)
{
    const InsertArgs a = {cmp, key, create, arg, found, foundarg};
    bnode_t* up = t != nullptr ? t->parent : nullptr;
    bool h = false;
    AVLnode* root = InsertAt(t, a, h);
    if (root != nullptr)
        root->parent = up;
    return root;
}

AVLnode* AVLnode::Delete(AVLnode* t, bnode_cmp_t cmp, const void* key, AVLnode*& removed)
{
    removed = nullptr;
    if (t == nullptr)
        return nullptr;
    bnode_t* up = t->parent;
    bool h = false;
    AVLnode* root = DeleteAt(t, cmp, key, removed, h);
    if (root != nullptr)
        root->parent = up;
    if (removed != nullptr)
        removed->parent = removed->left = removed->right = nullptr;
    return root;
}
