// Child linking shared by the tree toolkit and the AVL algorithms.
#ifndef TEVBASE_CONTAINERS_TREELINK_H
#define TEVBASE_CONTAINERS_TREELINK_H

#include <tevbase/bnode.h>

namespace tevbase_tree {

// Makes c the left (right) child of p and p the parent of c; c may be null.
inline void LinkLeft(bnode_t* p, bnode_t* c)
{
    p->left = c;
    if (c != nullptr)
        c->parent = p;
}

inline void LinkRight(bnode_t* p, bnode_t* c)
{
    p->right = c;
    if (c != nullptr)
        c->parent = p;
}

} // namespace tevbase_tree

#endif
