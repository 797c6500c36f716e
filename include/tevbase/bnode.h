// bnode_t: intrusive binary-tree node with parent links and its tree toolkit; AVLnode: the
// height-balanced node under the ordered map.
#ifndef TEVBASE_BNODE_H
#define TEVBASE_BNODE_H

#include <stdint.h>

#include <generic/tvarr>
#include <tevbase/config.h>

class bnode_t;

// Callbacks of the toolkit. The toolkit knows nothing of keys; a comparison tells where a key lies
// relative to a node:
//     cmp(node, key) > 0   the key belongs in node's left subtree (it orders before node)
//     cmp(node, key) < 0   the key belongs in node's right subtree
//     cmp(node, key) == 0  node holds the key
typedef int (*bnode_cmp_t)(const bnode_t* node, const void* key);
// Called for each node of a traversal; a non-zero result stops the traversal and is passed back.
typedef int (*bnode_visit_t)(bnode_t* node, void* arg);
// Returns a new, unlinked node for an absent key.
typedef bnode_t* (*bnode_create_t)(void* arg);
// Told about the node that already holds a key being inserted.
typedef void (*bnode_found_t)(bnode_t* node, void* arg);
// Called by CheckTree with each node and its depth.
typedef void (*bnode_check_t)(bnode_t* node, int depth, void* arg);
// Orders two node pointers for Balance, as qsort compares elements.
typedef int (*bnode_sort_t)(bnode_t* const* a, bnode_t* const* b);

// A node of a binary search tree. A tree is a pointer to its root node, null when empty; every node
// links to its parent and its two children, and the root's parent is null:
//
//              d          left subtree: the keys ordered before the node,
//            /   \        right subtree: the keys ordered after it;
//           b     f       parent links (not drawn) point back up, so
//          / \   /        the in-order successor of c is found from c alone:
//         a   c e         no right child, climb while coming from a right child -> d.
//
// Client classes derive from bnode_t, carry their key and data, and implement Dup(). The static
// routines take the root of the (sub)tree they work on, null for an empty one. Iteration, traversals,
// copying and destruction follow the parent links instead of recursing, so a degenerate chain (plain
// Insert of sorted keys) is as safe to walk as a balanced tree; the routines trust those links.
class TEVBASE_API bnode_t {
public:
    bnode_t* parent;
    bnode_t* left;
    bnode_t* right;

    bnode_t() : parent(nullptr), left(nullptr), right(nullptr) {}
    // A new node with a copy of the derived class's data and no links.
    virtual bnode_t* Dup() const = 0;
    virtual ~bnode_t();

    bnode_t& operator=(const bnode_t&) = delete;

    // The node of tree t that holds key, or null.
    static bnode_t* Find(bnode_t* t, bnode_cmp_t cmp, const void* key);

    // Plain (unbalanced) insertion into tree t; returns the tree's root (the new node when t is null).
    // A new node from create(arg) is linked where the search for key ends. When a node already holds
    // key, found(node, foundarg) is called (if found is not null) and nothing is created.
    static bnode_t* Insert(bnode_t* t, bnode_cmp_t cmp, const void* key, bnode_create_t create, void* arg,
                           bnode_found_t found, void* foundarg);
    // As above without a found callback: an existing key leaves the tree as it is.
    static bnode_t* Insert(bnode_t* t, bnode_cmp_t cmp, const void* key, bnode_create_t create, void* arg)
    {
        return Insert(t, cmp, key, create, arg, nullptr, nullptr);
    }

    // Unlinks and destroys the node holding key; returns the tree's new root, which keeps the old root's
    // parent. The replacement is the left child when there is no right child, the right child when there
    // is no left child, and otherwise the rightmost node of the left subtree, relinked into the removed
    // node's place. An absent key leaves the tree unchanged.
    static bnode_t* Delete(bnode_t* t, bnode_cmp_t cmp, const void* key);

    // Traversals of tree t: node-left-right, left-node-right, right-node-left (descending) and
    // left-right-node. Each stops at the first non-zero visit result and returns it; 0 otherwise.
    static int Preorder(bnode_t* t, bnode_visit_t visit, void* arg);
    static int Inorder(bnode_t* t, bnode_visit_t visit, void* arg);
    static int Revorder(bnode_t* t, bnode_visit_t visit, void* arg);
    static int Postorder(bnode_t* t, bnode_visit_t visit, void* arg);

    // Visits in ascending (Range) or descending (RevRange) order the nodes whose keys lie between lo
    // and hi, both included; lo above hi visits nothing. Only subtrees that can hold such keys are
    // entered. Stops at the first non-zero visit result and returns it.
    static int Range(bnode_t* t, bnode_visit_t visit, void* arg, bnode_cmp_t cmp, const void* lo,
                     const void* hi);
    static int RevRange(bnode_t* t, bnode_visit_t visit, void* arg, bnode_cmp_t cmp, const void* lo,
                        const void* hi);

    // Stackless in-order stepping. Successor of n: LDown(n->right) if n has a right child, else LUp(n);
    // the predecessor mirrors it with RDown and RUp.
    struct TEVBASE_API Iterator {
        // Leftmost (rightmost) node of the subtree at n; null for null.
        static bnode_t* LDown(bnode_t* n);
        static bnode_t* RDown(bnode_t* n);
        // Climbs while n is its parent's right (left) child and returns the parent then reached, or
        // null: the successor (predecessor) of a node without right (left) subtree.
        static bnode_t* LUp(bnode_t* n);
        static bnode_t* RUp(bnode_t* n);
    };

    // A copy of the subtree at this node, of the same shape: Dup of each node in pre-order (node, left
    // subtree, right subtree) with the copy's links set; the copy's root has no parent. When a Dup
    // throws, the part already copied is destroyed and the exception passes on.
    bnode_t* DupTree() const;
    // Destroys the subtree at this node (left subtree, right subtree, then the node, each through the
    // virtual destructor); returns null, so that `root = root->DeleteTree();` empties a tree.
    bnode_t* DeleteTree();
    // Number of nodes in the subtree at this node.
    int Size() const;
    // In-order walk of the subtree calling check(node, depth, arg); this node has the given depth,
    // each level below it one more.
    void CheckTree(int depth, bnode_check_t check, void* arg);

    // Links nodes[lo..hi] (sorted) into a perfectly balanced tree under parent and returns its root,
    // nodes[(lo + hi) / 2]; null when lo exceeds hi.
    static bnode_t* BuildTree(bnode_t* parent, bnode_t** nodes, int lo, int hi);
    // Rebuilds the tree rooted at this node as a balanced tree of the same nodes (relinked, not
    // copied), ordered by cmp; returns the new root, whose parent is null. An AVLnode's balance factors
    // are left as they were.
    bnode_t* Balance(bnode_sort_t cmp);

protected:
    // Copies of a node start unlinked; derived classes use this in Dup().
    bnode_t(const bnode_t&) : parent(nullptr), left(nullptr), right(nullptr) {}
};

// A node of a height-balanced (AVL) tree: bal = height(right subtree) - height(left subtree), kept at
// -1, 0 or +1. Insert and Delete restore the balance on the way back up the search path:
//
//   RotateLL: p is two higher on the left and its left child a leans left (or, in Delete, is even):
//
//           p               a
//          / \             / \      (x, y, z: subtrees)
//         a   z    ==>    x   p
//        / \                 / \    y moves from a to p
//       x   y               y   z
//
//   RotateLR: a leans right: a double rotation through a's right child g:
//
//           p                    g
//          / \                 /   \       g becomes the root,
//         a   z     ==>       a     p      its bal 0
//        / \                 / \   / \      u moves from g to a,
//       w   g               w   u v   z     v moves from g to p
//          / \    (u, v, w, z: subtrees)
//         u   v
//
// RotateRR and RotateRL are the mirror images. After a double rotation g has bal 0, and the two nodes
// it split take the balance that g's old bal implies: p gets +1 if g leaned left, a gets -1 if g leaned
// right, each 0 otherwise (mirrored for RotateRL). Every rotation rewires the parent links.
//
// Delete of a node with two children relinks its in-order predecessor (the rightmost node of its left
// subtree) into its place, inheriting left, right, parent and bal: nodes are never copied, so pointers
// to other entries stay valid.
class TEVBASE_API AVLnode : public bnode_t {
public:
    int32_t bal;

    AVLnode() : bal(0) {}

    // Inserts into the AVL tree t and returns its new root, which keeps the old root's parent (null for
    // a whole tree). A node from create(arg), an AVLnode, is linked when key is absent; when a node holds
    // key, found(node, foundarg) is called if found is not null, and the tree is not changed.
    static AVLnode* Insert(AVLnode* t, bnode_cmp_t cmp, const void* key, bnode_create_t create, void* arg,
                           bnode_found_t found = nullptr, void* foundarg = nullptr);
    // Unlinks the node holding key from the AVL tree t and returns the new root, which keeps the old
    // root's parent. The unlinked node (without links) is handed back in removed for the caller to
    // destroy; removed is null when the key is absent, and the tree is then unchanged.
    static AVLnode* Delete(AVLnode* t, bnode_cmp_t cmp, const void* key, AVLnode*& removed);

protected:
    // A copy carries the balance factor but no links.
    AVLnode(const AVLnode& other) : bnode_t(other), bal(other.bal) {}
};

// Balance collects the nodes in a TVarr<bnode_t*>.
extern template class TVarr<bnode_t*>;

#endif
