// slist_t: singly linked ring of pooled links holding void* elements.
#include "ringsort.h"

#include <tevbase/list.h>
#include <tevbase/pool.h>

namespace {

Pool slink_pool;
constexpr unsigned kLinkBlock = 8192;

// Takes link (whose predecessor is prev) out of the ring behind last, frees it and returns its data.
void* free_after(slink_t*& last, slink_t* prev, slink_t* link)
{
    if (prev == link) {
        last = nullptr;
    } else {
        prev->next = link->next;
        if (link == last)
            last = prev;
    }
    void* data = link->data;
    delete link;
    return data;
}

} // namespace

void* slink_t::operator new(std::size_t size)
{
    return slink_pool.New(size, sizeof(slink_t), kLinkBlock);
}

void slink_t::operator delete(void* p, std::size_t size)
{
    slink_pool.Delete(p, size, sizeof(slink_t));
}

slist_t::slist_t(const slist_t& other) : last(nullptr)
{
    if (other.last == nullptr)
        return;
    const slink_t* p = other.last;
    do {
        p = p->next;
        append(p->data);
    } while (p != other.last);
}

slist_t& slist_t::operator=(const slist_t& other)
{
    slist_t copy(other); // fine when &other == this
    slink_t* mine = last;
    last = copy.last;
    copy.last = mine;
    return *this;
}

slink_t* slist_t::append(void* d)
{
    slink_t* link = insert(d);
    last = link;
    return link;
}

slink_t* slist_t::insert(void* d)
{
    slink_t* link = new slink_t{nullptr, d};
    if (last == nullptr) {
        link->next = link;
        last = link;
    } else {
        link->next = last->next;
        last->next = link;
    }
    return link;
}

void slist_t::append(slist_t& other)
{
    if (&other == this || other.last == nullptr)
        return;
    if (last != nullptr) {
        slink_t* first = last->next;
        last->next = other.last->next;
        other.last->next = first;
    }
    last = other.last;
    other.last = nullptr;
}

void slist_t::insert(slist_t& other)
{
    if (&other == this || other.last == nullptr)
        return;
    if (last != nullptr) {
        slink_t* first = last->next;
        last->next = other.last->next;
        other.last->next = first;
    } else {
        last = other.last;
    }
    other.last = nullptr;
}

void* slist_t::removeTop()
{
    return last != nullptr ? free_after(last, last, last->next) : nullptr;
}

void* slist_t::removeBottom()
{
    if (last == nullptr)
        return nullptr;
    slink_t* prev = last;
    while (prev->next != last)
        prev = prev->next;
    return free_after(last, prev, last);
}

slink_t* slist_t::Findl(slist_cmp_t fn, const void* key) const
{
    if (last == nullptr)
        return nullptr;
    slink_t* p = last;
    do {
        p = p->next;
        if (fn(p->data, key) == 0)
            return p;
    } while (p != last);
    return nullptr;
}

void* slist_t::find(slist_cmp_t fn, const void* key) const
{
    const slink_t* link = Findl(fn, key);
    return link != nullptr ? link->data : nullptr;
}

void* slist_t::remove(slist_cmp_t fn, const void* key)
{
    if (last == nullptr)
        return nullptr;
    slink_t* prev = last;
    do {
        slink_t* p = prev->next;
        if (fn(p->data, key) == 0)
            return free_after(last, prev, p);
        prev = p;
    } while (prev != last);
    return nullptr;
}

void slist_t::removeLoop(slist_cmp_t fn, const void* key, slist_dispose_t dispose)
{
    if (last == nullptr)
        return;
    slink_t* const end = last;
    slink_t* prev = last;
    slink_t* p = last->next;
    for (;;) {
        slink_t* const next = p->next;
        const bool at_end = p == end;
        if (fn(p->data, key) == 0) {
            void* data = free_after(last, prev, p);
            if (dispose != nullptr)
                dispose(data);
        } else {
            prev = p;
        }
        if (at_end || last == nullptr)
            return;
        p = next;
    }
}

void* slist_t::Replace(slist_cmp_t fn, const void* key, void* d)
{
    slink_t* link = Findl(fn, key);
    if (link == nullptr)
        return nullptr;
    void* old = link->data;
    link->data = d;
    return old;
}

void slist_t::loop(slist_fn_t fn, void* arg) const
{
    if (last == nullptr)
        return;
    slink_t* const end = last;
    slink_t* p = last->next;
    for (;;) {
        slink_t* const next = p->next;
        const bool at_end = p == end;
        fn(p->data, arg);
        if (at_end)
            return;
        p = next;
    }
}

int slist_t::Len() const
{
    if (last == nullptr)
        return 0;
    int n = 0;
    const slink_t* p = last;
    do {
        ++n;
        p = p->next;
    } while (p != last);
    return n;
}

void* slist_t::operator[](int i) const
{
    if (last == nullptr || i < 0)
        return nullptr;
    const slink_t* p = last->next;
    for (; i > 0; --i) {
        if (p == last)
            return nullptr;
        p = p->next;
    }
    return p->data;
}

void slist_t::clear()
{
    while (last != nullptr)
        removeTop();
}

void slist_t::Sort(slist_order_t cmp)
{
    last = tevbase_list::sort_ring(last, [cmp](const slink_t* a, const slink_t* b) { return cmp(a->data, b->data) > 0; });
}

void slist_t::Uniq(slist_order_t cmp, slist_dispose_t dispose)
{
    if (last == nullptr)
        return;
    // Each element is compared with its predecessor as the list stood, dropped or not.
    slink_t* kept = last->next;
    void* before = kept->data;
    while (kept != last) {
        slink_t* p = kept->next;
        void* data = p->data;
        if (cmp(data, before) == 0) {
            free_after(last, kept, p);
            if (dispose != nullptr)
                dispose(data);
        } else {
            kept = p;
        }
        before = data;
    }
}
