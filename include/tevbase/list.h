// Circular linked lists: olist_t (intrusive, singly linked), slist_t (void* elements), DList
// (intrusive, doubly linked) and DPList (void* elements, doubly linked), with their iterators.
#ifndef TEVBASE_LIST_H
#define TEVBASE_LIST_H

#include <cstddef>

#include <tevbase/config.h>

// Every list holds one pointer, to its last link; the last link's next is the first link, so both ends
// are one step away. An empty list's last is null and a single link points to itself:
//
//     last ──────────────────┐
//                            v
//     first ──> a ──> b ──> c
//       ^                   │
//       └───────────────────┘   (c.next == first; in the doubly linked lists first.prev == last)
//
// The intrusive lists (olist_t, DList) link objects that derive from their link class. The lists never
// make links and their destructors leave links alone; clear() and removeLoop() without a dispose
// function destroy the links they take out, so links given to them must come from new.
// slist_t and DPList make and free their own pooled links and hold void* elements they do not own.
//
// Sort is a stable top-down merge sort: O(n log n), recursion depth log2(n). Comparison functions must
// not throw. Nothing here is locked: a list is used by one thread at a time (the link pools lock).

class TEVBASE_API olink_t {
public:
    olink_t() : next(nullptr) {}
    // A copy is not linked anywhere.
    olink_t(const olink_t&) : next(nullptr) {}
    olink_t& operator=(const olink_t&) { return *this; }
    virtual ~olink_t();

    olink_t* next;
};

// 0 when the link matches key.
typedef int (*olist_cmp_t)(const olink_t* link, const void* key);
typedef void (*olist_fn_t)(olink_t* link, void* arg);
// Greater than 0 when a belongs after b; arg is Sort's.
typedef int (*olist_sort_t)(const olink_t* a, const olink_t* b, const void* arg);
typedef void (*olist_dispose_t)(olink_t* link);

// A link predicate with state of its own: 0 selects the link.
class TEVBASE_API olist_cmpo_t {
public:
    virtual ~olist_cmpo_t();
    virtual int operator()(const olink_t* link) const = 0;
};

class TEVBASE_API olist_t {
public:
    olist_t() : last(nullptr) {}
    // A link lives in one list at a time: lists are not copied.
    olist_t(const olist_t&) = delete;
    olist_t& operator=(const olist_t&) = delete;

    olink_t* first() const { return last != nullptr ? last->next : nullptr; }
    // Adds at the end: the link becomes last.
    void append(olink_t* link);
    // Adds at the front.
    void insert(olink_t* link);
    // Unlink and return the first or the last link; null when empty. removeBottom walks the list.
    olink_t* removeTop();
    olink_t* removeBottom();
    // The first link, from the front, for which fn(link, key) is 0; null if none.
    olink_t* find(olist_cmp_t fn, const void* key) const;
    // Unlinks and returns what find would return.
    olink_t* remove(olist_cmp_t fn, const void* key);
    // The i-th link from the first (0-based); null when i is outside the list.
    olink_t* operator[](int i) const;
    // Calls fn on every link present when it starts, in order; fn may unlink the link it is given.
    void loop(olist_fn_t fn, void* arg);
    // Takes out every matching link and hands it to dispose, or destroys it when dispose is null.
    void removeLoop(olist_cmp_t fn, const void* key, olist_dispose_t dispose = nullptr);
    void removeLoop(const olist_cmpo_t& cmp, olist_dispose_t dispose = nullptr);
    // Stable: equal links keep their order.
    void Sort(olist_sort_t cmp, const void* arg = nullptr);
    // Destroys every link.
    void clear();
    int Len() const;

    olink_t* last; // the last link, null when empty
};

// slist_t: singly linked void* elements ----------------------------------------------------------

// 8-byte links on 32-bit targets, served from a pool of 8192-byte blocks.
struct TEVBASE_API slink_t {
    slink_t* next;
    void* data;

    static void* operator new(std::size_t size);
    static void operator delete(void* p, std::size_t size);
};

// Callbacks of the void* lists (slist_t and DPList).
// 0 when the element matches key.
typedef int (*slist_cmp_t)(const void* data, const void* key);
typedef void (*slist_fn_t)(void* data, void* arg);
typedef void (*slist_dispose_t)(void* data);
// Sort: greater than 0 when a belongs after b. Uniq: 0 when a equals b.
typedef int (*slist_order_t)(const void* a, const void* b);

class TEVBASE_API slist_t {
public:
    slist_t() : last(nullptr) {}
    // Copies the element pointers into new links.
    slist_t(const slist_t& other);
    slist_t& operator=(const slist_t& other);
    ~slist_t() { clear(); }

    slink_t* first() const { return last != nullptr ? last->next : nullptr; }
    // A new link holding d at the end or the front; returns it.
    slink_t* append(void* d);
    slink_t* insert(void* d);
    // Moves every link of other to the end or the front of this list; other is left empty.
    void append(slist_t& other);
    void insert(slist_t& other);
    // Free the first or the last link and return its element; null when empty. removeBottom walks.
    void* removeTop();
    void* removeBottom();
    // The first link whose element gives fn(data, key) == 0, or null; find returns its element.
    slink_t* Findl(slist_cmp_t fn, const void* key) const;
    void* find(slist_cmp_t fn, const void* key) const;
    // Frees the first matching link and returns its element; null if none.
    void* remove(slist_cmp_t fn, const void* key);
    // Frees every matching link, passing its element to dispose when that is not null.
    void removeLoop(slist_cmp_t fn, const void* key, slist_dispose_t dispose = nullptr);
    // Stores d in the first matching link and returns the element it held; null if none.
    void* Replace(slist_cmp_t fn, const void* key, void* d);
    // Calls fn on every element present when it starts, in order.
    void loop(slist_fn_t fn, void* arg) const;
    int Len() const;
    // The i-th element from the first; null when i is outside the list.
    void* operator[](int i) const;
    void clear();
    // Stable merge sort of the elements.
    void Sort(slist_order_t cmp);
    // Drops every element that equals its predecessor, cmp(element, predecessor) == 0: the first of
    // each run of equal neighbours stays. Dropped elements go to dispose when that is not null.
    void Uniq(slist_order_t cmp, slist_dispose_t dispose = nullptr);

    slink_t* last; // the last link, null when empty
};

// DList: intrusive, doubly linked ------------------------------------------------------------------

class TEVBASE_API DLink {
public:
    DLink() : next(nullptr), prev(nullptr) {}
    // A copy is not linked anywhere.
    DLink(const DLink&) : next(nullptr), prev(nullptr) {}
    DLink& operator=(const DLink&) { return *this; }
    virtual ~DLink();

    DLink* next;
    DLink* prev;
};

// 0 when the link matches key.
typedef int (*DListCmp)(const DLink* link, const void* key);
typedef void (*DListFn)(DLink* link, void* arg);
typedef void (*DListDispose)(DLink* link);

class TEVBASE_API DList {
public:
    DList() : last(nullptr) {}
    DList(const DList&) = delete;
    DList& operator=(const DList&) = delete;

    DLink* First() const { return last != nullptr ? last->next : nullptr; }
    DLink* Last() const { return last; }
    // Links at the end (it becomes the last) or the front.
    void Append(DLink* link);
    void Insert(DLink* link);
    // Unlinks and returns the first link, its next and prev cleared; null when empty.
    DLink* RemoveFirst();
    // Returns the last link and leaves the list empty: the other links drop out of the list without
    // being unlinked or destroyed. Callers rely on this; RemoveFirst or Remove take out one link.
    DLink* RemoveLast();
    // Unlinks and returns the first link for which fn(link, key) is 0 (next and prev cleared), or null.
    DLink* Remove(DListCmp fn, const void* key);
    // Takes out every matching link and hands it to dispose, or destroys it when dispose is null.
    void RemoveLoop(DListCmp fn, const void* key, DListDispose dispose = nullptr);
    // Calls fn on every link present when it starts, in order; fn may unlink the link it is given.
    void Loop(DListFn fn, void* arg);
    DLink* Find(DListCmp fn, const void* key) const;
    // The i-th link from the first; null when i is outside the list.
    DLink* operator[](int i) const;
    int Len() const;
    // Destroys every link.
    void Clear();

private:
    friend class DListIterator;
    // Takes link out of the ring; the link keeps its own pointers.
    void Unlink(DLink* link);
    void LinkAfter(DLink* pos, DLink* link);

    DLink* last;
};

// Walks a DList from its first link; changes through the iterator keep list and position consistent.
class TEVBASE_API DListIterator {
public:
    explicit DListIterator(DList& list) : list_(&list), cur_(list.First()) {}

    // Back to the first link.
    void Reset() { cur_ = list_->First(); }
    // The link at the position; null at the end.
    DLink* Current() const { return cur_; }
    // Returns the current link and moves to the next; null at the end.
    DLink* operator()();
    // Links before the current link (a new first link when the current one is first), or at the end of
    // the list when the iterator is at the end.
    void Insert(DLink* link);
    // Links after the current link, or at the end of the list when the iterator is at the end.
    void Append(DLink* link);
    // Unlinks the current link, moves to the following one, and returns the link with next and prev
    // cleared; null at the end.
    DLink* Remove();

private:
    DList* list_;
    DLink* cur_;
};

// DPList: doubly linked void* elements ------------------------------------------------------------

// 12-byte links on 32-bit targets, served from a pool of 8192-byte blocks.
struct TEVBASE_API DPLink {
    DPLink* next;
    DPLink* prev;
    void* data;

    static void* operator new(std::size_t size);
    static void operator delete(void* p, std::size_t size);
};

class TEVBASE_API DPList {
public:
    DPList() : last(nullptr) {}
    // Copies the element pointers into new links.
    DPList(const DPList& other);
    DPList& operator=(const DPList& other);
    ~DPList() { Clear(); }

    DPLink* First() const { return last != nullptr ? last->next : nullptr; }
    DPLink* Last() const { return last; }
    // A new link holding d at the end or the front; returns it.
    DPLink* Append(void* d);
    DPLink* Insert(void* d);
    // Frees the first link and returns its element; null when empty.
    void* RemoveFirst();
    // Frees the last link, leaves the list empty and returns the element. The other links are neither
    // freed nor reachable any more: callers rely on this; use RemoveFirst or Remove to take one element.
    void* RemoveLast();
    // Frees the first matching link and returns its element; null if none.
    void* Remove(slist_cmp_t fn, const void* key);
    // Frees every matching link, passing its element to dispose when that is not null.
    void RemoveLoop(slist_cmp_t fn, const void* key, slist_dispose_t dispose = nullptr);
    // Calls fn on every element present when it starts, in order.
    void Loop(slist_fn_t fn, void* arg) const;
    // The first link whose element matches, or null; Find returns its element.
    DPLink* FindL(slist_cmp_t fn, const void* key) const;
    void* Find(slist_cmp_t fn, const void* key) const;
    // Stores d in the first matching link and returns the element it held; null if none.
    void* Replace(slist_cmp_t fn, const void* key, void* d);
    // The i-th element from the first; null when i is outside the list.
    void* operator[](int i) const;
    int Len() const;
    // Frees every link.
    void Clear();

private:
    friend class DPListIterator;
    void Unlink(DPLink* link);
    DPLink* LinkAfter(DPLink* pos, void* d);

    DPLink* last;
};

// Walks a DPList from its first link, as DListIterator walks a DList.
class TEVBASE_API DPListIterator {
public:
    explicit DPListIterator(DPList& list) : list_(&list), cur_(list.First()) {}

    void Reset() { cur_ = list_->First(); }
    // The link at the position; null at the end.
    DPLink* Current() const { return cur_; }
    // Returns the current element and moves to the next; null at the end.
    void* operator()();
    // A new link holding d before the current link (the new first when the current one is first), or
    // at the end when the iterator is at the end. Returns it.
    DPLink* Insert(void* d);
    // A new link holding d after the current link, or at the end. Returns it.
    DPLink* Append(void* d);
    // Frees the current link, moves to the following one and returns the element; null at the end.
    void* Remove();

private:
    DPList* list_;
    DPLink* cur_;
};

#endif
