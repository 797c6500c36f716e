// olist_t: intrusive singly linked ring of olink_t.
#include "ringsort.h"

#include <tevbase/list.h>

olink_t::~olink_t() = default;

olist_cmpo_t::~olist_cmpo_t() = default;

namespace {

// Takes link (whose predecessor is prev) out of the ring behind last.
void unlink_after(olink_t*& last, olink_t* prev, olink_t* link)
{
    if (prev == link) {
        last = nullptr;
    } else {
        prev->next = link->next;
        if (link == last)
            last = prev;
    }
    link->next = nullptr;
}

// Takes out every link for which match(link) is 0, in order, handing each to dispose or deleting it.
// The ring stays whole at every step, so a callback may throw.
template <class Match> void remove_matching(olink_t*& last, const Match& match, olist_dispose_t dispose)
{
    if (last == nullptr)
        return;
    olink_t* const end = last;
    olink_t* prev = last;
    olink_t* p = last->next;
    for (;;) {
        olink_t* const next = p->next;
        const bool at_end = p == end;
        if (match(p) == 0) {
            unlink_after(last, prev, p);
            if (dispose != nullptr)
                dispose(p);
            else
                delete p;
        } else {
            prev = p;
        }
        if (at_end || last == nullptr)
            return;
        p = next;
    }
}

} // namespace

void olist_t::append(olink_t* link)
{
    insert(link);
    last = link;
}

void olist_t::insert(olink_t* link)
{
    if (last == nullptr) {
        link->next = link;
        last = link;
    } else {
        link->next = last->next;
        last->next = link;
    }
}

olink_t* olist_t::removeTop()
{
    if (last == nullptr)
        return nullptr;
    olink_t* first = last->next;
    unlink_after(last, last, first);
    return first;
}

olink_t* olist_t::removeBottom()
{
    if (last == nullptr)
        return nullptr;
    olink_t* prev = last;
    while (prev->next != last)
        prev = prev->next;
    olink_t* link = last;
    unlink_after(last, prev, link);
    return link;
}

olink_t* olist_t::find(olist_cmp_t fn, const void* key) const
{
    if (last == nullptr)
        return nullptr;
    olink_t* p = last;
    do {
        p = p->next;
        if (fn(p, key) == 0)
            return p;
    } while (p != last);
    return nullptr;
}

olink_t* olist_t::remove(olist_cmp_t fn, const void* key)
{
    if (last == nullptr)
        return nullptr;
    olink_t* prev = last;
    do {
        olink_t* p = prev->next;
        if (fn(p, key) == 0) {
            unlink_after(last, prev, p);
            return p;
        }
        prev = p;
    } while (prev != last);
    return nullptr;
}

olink_t* olist_t::operator[](int i) const
{
    if (last == nullptr || i < 0)
        return nullptr;
    olink_t* p = last->next;
    for (; i > 0; --i) {
        if (p == last)
            return nullptr;
        p = p->next;
    }
    return p;
}

void olist_t::loop(olist_fn_t fn, void* arg)
{
    if (last == nullptr)
        return;
    olink_t* const end = last;
    olink_t* p = last->next;
    for (;;) {
        olink_t* const next = p->next;
        const bool at_end = p == end;
        fn(p, arg);
        if (at_end)
            return;
        p = next;
    }
}

void olist_t::removeLoop(olist_cmp_t fn, const void* key, olist_dispose_t dispose)
{
    remove_matching(last, [fn, key](const olink_t* p) { return fn(p, key); }, dispose);
}

void olist_t::removeLoop(const olist_cmpo_t& cmp, olist_dispose_t dispose)
{
    remove_matching(last, [&cmp](const olink_t* p) { return cmp(p); }, dispose);
}

void olist_t::Sort(olist_sort_t cmp, const void* arg)
{
    last = tevbase_list::sort_ring(last, [cmp, arg](const olink_t* a, const olink_t* b) { return cmp(a, b, arg) > 0; });
}

void olist_t::clear()
{
    while (olink_t* p = removeTop())
        delete p;
}

int olist_t::Len() const
{
    if (last == nullptr)
        return 0;
    int n = 0;
    const olink_t* p = last;
    do {
        ++n;
        p = p->next;
    } while (p != last);
    return n;
}
