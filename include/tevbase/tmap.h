// TMap<K, V, Cmp>: ordered map on an AVL tree; TPair, TMapNode, TMapData, TMapAction, GStringCmp.
#ifndef TEVBASE_TMAP_H
#define TEVBASE_TMAP_H

#include <utility>

#include <tevbase/bnode.h>
#include <tevbase/config.h>
#include <tevbase/string.h>

// Byte-wise order of strings (str_cmp): null data orders before every text, "" included.
struct TEVBASE_API GStringCmp {
    int operator()(const String_t& a, const String_t& b) const;
};

// A key with its value: the entry of a map.
template <class K, class V> class TEVBASE_API TPair {
public:
    K key;
    V value;

    TPair() : key(), value() {}
    TPair(const K& k, const V& v) : key(k), value(v) {}
    TPair(const TPair& other) : key(other.key), value(other.value) {}
    TPair& operator=(const TPair&) = default;
};

// Insertion context handed through the tree routines: Create and Found record the value of the node
// that now holds the key.
template <class K, class V, class Cmp> struct TEVBASE_API TMapData {
    const K* key;
    const V* value;
    V* created; // value of the new node, null until Create runs
    V* found;   // value of the node that already held the key, null until Found runs
};

// A map entry as a node of the AVL tree. C, the map's comparison, is a class whose objects order two
// keys as C()(a, b) < 0, == 0, > 0.
template <class K, class V, class C> class TEVBASE_API TMapNode : public AVLnode {
public:
    typedef TMapData<K, V, C> Data_t;

    TMapNode(const K& key, const V& value) : entry(key, value) {}
    // A new node with copies of the key and the value and the same balance factor; no links.
    TMapNode* Dup() const override { return new TMapNode(*this); }
    ~TMapNode() override {}

    const K& Key() const { return entry.key; }
    V& Value() { return entry.value; }
    const V& Value() const { return entry.value; }
    TPair<K, V>& Data() { return entry; }
    const TPair<K, V>& Data() const { return entry; }

    // Tree callbacks. Cmp compares the node's key with *(const K*)key; Create and Found take a Data_t.
    static int Cmp(const bnode_t* node, const void* key)
    {
        return C()(static_cast<const TMapNode*>(node)->entry.key, *static_cast<const K*>(key));
    }
    static bnode_t* Create(void* data)
    {
        Data_t* d = static_cast<Data_t*>(data);
        TMapNode* n = new TMapNode(*d->key, *d->value);
        d->created = &n->entry.value;
        return n;
    }
    static void Found(bnode_t* node, void* data)
    {
        static_cast<Data_t*>(data)->found = &static_cast<TMapNode*>(node)->entry.value;
    }

private:
    TMapNode(const TMapNode&) = default;

    TPair<K, V> entry;
};

// Visitor of ForEach and Range.
template <class K, class V, class Cmp> class TEVBASE_API TMapAction {
public:
    TMapAction() {}
    // Called with each entry; a non-zero result stops the walk.
    virtual int Action(const K& key, V& value) = 0;
    virtual ~TMapAction() {}

    // Visit adapter for the tree routines: arg is the TMapAction.
    static int Do(bnode_t* node, void* arg)
    {
        TMapNode<K, V, Cmp>* n = static_cast<TMapNode<K, V, Cmp>*>(node);
        return static_cast<TMapAction*>(arg)->Action(n->Key(), n->Value());
    }
};

// Ordered map: unique keys in ascending Cmp order, each with one value, in an AVL tree (see AVLnode)
// whose nodes the map owns. Search, insertion and removal cost O(log n). Removing an entry destroys
// only its own node: pointers to the other values stay valid.
//
// Iterators hold the root at the time they were made and the current node; they step through the
// parent links without a stack. A change to the map invalidates its iterators.
template <class K, class V, class Cmp> class TEVBASE_API TMap {
public:
    typedef TMapNode<K, V, Cmp> Node;
    typedef TPair<K, V> Pair;

    TMap() : root(nullptr) {}
    // A deep, independent copy of the same shape and balance.
    TMap(const TMap& other)
        : root(other.root != nullptr ? static_cast<Node*>(other.root->DupTree()) : nullptr)
    {
    }
    ~TMap()
    {
        if (root != nullptr)
            root->DeleteTree();
    }
    TMap& operator=(const TMap& other)
    {
        if (&other != this) {
            TMap copy(other); // a throwing copy leaves this map as it was
            std::swap(root, copy.root);
        }
        return *this;
    }

    // Inserts key with value when key is absent: returns the new entry's value and 1. A present key is
    // left as it is (its value is not replaced): returns the stored value and 0.
    std::pair<V*, int> Insert(const K& key, const V& value)
    {
        Data_t d = {&key, &value, nullptr, nullptr};
        root =
            static_cast<Node*>(AVLnode::Insert(root, &Node::Cmp, &key, &Node::Create, &d, &Node::Found, &d));
        root->parent = nullptr;
        return d.created != nullptr ? std::pair<V*, int>(d.created, 1) : std::pair<V*, int>(d.found, 0);
    }
    // The value of key, inserted with a default value (V()) when absent.
    V& operator[](const K& key) { return *Insert(key, V()).first; }
    // The value of key, or null.
    V* Find(const K& key) const
    {
        bnode_t* n = bnode_t::Find(static_cast<bnode_t*>(root), &Node::Cmp, &key);
        return n != nullptr ? &static_cast<Node*>(n)->Value() : nullptr;
    }
    // Removes the entry of key and destroys its node; 1 when there was one, else 0.
    int Remove(const K& key)
    {
        AVLnode* removed;
        root = static_cast<Node*>(AVLnode::Delete(root, &Node::Cmp, &key, removed));
        if (root != nullptr)
            root->parent = nullptr;
        const int found = removed != nullptr;
        delete static_cast<Node*>(removed);
        return found;
    }
    Node* Root() const { return root; }

    class Iterator;
    class ConstIterator;

private:
    typedef TMapData<K, V, Cmp> Data_t;

    Node* root;
};

// In-order iterator: null past either end, and it stays there.
template <class K, class V, class Cmp> class TEVBASE_API TMap<K, V, Cmp>::Iterator {
public:
    Iterator() : root(nullptr), cur(nullptr) {}
    // On the smallest key when end is 0, else on the largest.
    Iterator(TMap& map, int end = 0) : root(map.root), cur(Edge(end)) {}

    Pair* First() { return Set(Edge(0)); }
    Pair* Last() { return Set(Edge(1)); }
    Pair* Next()
    {
        if (cur != nullptr)
            cur = cur->right != nullptr ? bnode_t::Iterator::LDown(cur->right) : bnode_t::Iterator::LUp(cur);
        return Curr();
    }
    Pair* Prev()
    {
        if (cur != nullptr)
            cur = cur->left != nullptr ? bnode_t::Iterator::RDown(cur->left) : bnode_t::Iterator::RUp(cur);
        return Curr();
    }
    Iterator& operator++()
    {
        Next();
        return *this;
    }
    Iterator operator++(int)
    {
        Iterator old(*this);
        Next();
        return old;
    }
    Iterator& operator--()
    {
        Prev();
        return *this;
    }
    Iterator operator--(int)
    {
        Iterator old(*this);
        Prev();
        return old;
    }
    // The current entry, then a step to the next one; null at the end.
    Pair* operator()()
    {
        Pair* p = Curr();
        Next();
        return p;
    }
    // The current entry, or null.
    Pair* Curr() const { return cur != nullptr ? &static_cast<Node*>(cur)->Data() : nullptr; }
    Pair& operator*() const { return *Curr(); }
    Pair* operator->() const { return Curr(); }

private:
    bnode_t* Edge(int end) const
    {
        return end == 0 ? bnode_t::Iterator::LDown(root) : bnode_t::Iterator::RDown(root);
    }
    Pair* Set(bnode_t* n)
    {
        cur = n;
        return Curr();
    }

    bnode_t* root;
    bnode_t* cur;
};

// Iterator over a const map: the same walk, read-only entries.
template <class K, class V, class Cmp> class TEVBASE_API TMap<K, V, Cmp>::ConstIterator {
public:
    ConstIterator() {}
    ConstIterator(const TMap& map, int end = 0) : it(const_cast<TMap&>(map), end) {}

    const Pair* First() { return it.First(); }
    const Pair* Last() { return it.Last(); }
    const Pair* Next() { return it.Next(); }
    const Pair* Prev() { return it.Prev(); }
    ConstIterator& operator++()
    {
        it.Next();
        return *this;
    }
    ConstIterator operator++(int)
    {
        ConstIterator old(*this);
        it.Next();
        return old;
    }
    ConstIterator& operator--()
    {
        it.Prev();
        return *this;
    }
    ConstIterator operator--(int)
    {
        ConstIterator old(*this);
        it.Prev();
        return old;
    }
    const Pair* operator()() { return it(); }
    const Pair* Curr() const { return it.Curr(); }
    const Pair& operator*() const { return *it; }
    const Pair* operator->() const { return it.Curr(); }

private:
    Iterator it;
};

// Calls action on every entry in ascending key order until it returns non-zero; returns the action.
template <class K, class V, class Cmp>
TEVBASE_API TMapAction<K, V, Cmp>& ForEach(TMap<K, V, Cmp>& map, TMapAction<K, V, Cmp>& action);
// Calls action on every entry with lo <= key <= hi in ascending order until it returns non-zero;
// returns the action.
template <class K, class V, class Cmp>
TEVBASE_API TMapAction<K, V, Cmp>& Range(TMap<K, V, Cmp>& map, TMapAction<K, V, Cmp>& action, const K& lo,
                                         const K& hi);

template <class K, class V, class Cmp>
TMapAction<K, V, Cmp>& ForEach(TMap<K, V, Cmp>& map, TMapAction<K, V, Cmp>& action)
{
    bnode_t::Inorder(map.Root(), &TMapAction<K, V, Cmp>::Do, &action);
    return action;
}

template <class K, class V, class Cmp>
TMapAction<K, V, Cmp>& Range(TMap<K, V, Cmp>& map, TMapAction<K, V, Cmp>& action, const K& lo, const K& hi)
{
    bnode_t::Range(map.Root(), &TMapAction<K, V, Cmp>::Do, &action, &TMapNode<K, V, Cmp>::Cmp, &lo, &hi);
    return action;
}

extern template class TPair<String_t, String_t>;
extern template class TPair<String_t, int>;
extern template class TMapNode<String_t, String_t, GStringCmp>;
extern template class TMapNode<String_t, int, GStringCmp>;
extern template class TMapAction<String_t, String_t, GStringCmp>;
extern template class TMapAction<String_t, int, GStringCmp>;
extern template class TMap<String_t, String_t, GStringCmp>;
extern template class TMap<String_t, int, GStringCmp>;
extern template TMapAction<String_t, String_t, GStringCmp>&
ForEach(TMap<String_t, String_t, GStringCmp>&, TMapAction<String_t, String_t, GStringCmp>&);
extern template TMapAction<String_t, int, GStringCmp>& ForEach(TMap<String_t, int, GStringCmp>&,
                                                               TMapAction<String_t, int, GStringCmp>&);
extern template TMapAction<String_t, String_t, GStringCmp>& Range(TMap<String_t, String_t, GStringCmp>&,
                                                                  TMapAction<String_t, String_t, GStringCmp>&,
                                                                  const String_t&, const String_t&);
extern template TMapAction<String_t, int, GStringCmp>& Range(TMap<String_t, int, GStringCmp>&,
                                                             TMapAction<String_t, int, GStringCmp>&,
                                                             const String_t&, const String_t&);

#endif
