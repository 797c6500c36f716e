// slist_t: singly linked ring of pooled links holding void* elements.
#include "ring.h"

#include <tevbase/list.h>
#include <tevbase/pool.h>

#include <utility>

namespace {

Pool slink_pool;
constexpr unsigned kLinkBlock = 8192;

using Ring = tevbase_list::SingleRing<slink_t>;
using tevbase_list::release;

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
    Ring::each(other.last, [this](const slink_t* p) { append(p->data); });
}

slist_t& slist_t::operator=(const slist_t& other)
{
    slist_t copy(other); // fine when &other == this
    std::swap(last, copy.last);
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
    Ring::push_front(last, link);
    return link;
}

void slist_t::append(slist_t& other)
{
    slink_t* const end = other.last;
    insert(other);
    if (end != nullptr)
        last = end;
}

void slist_t::insert(slist_t& other)
{
    if (&other == this || other.last == nullptr)
        return;
    if (last != nullptr)
        std::swap(last->next, other.last->next); // each last now leads to the other's first
    else
        last = other.last;
    other.last = nullptr;
}

void* slist_t::removeTop()
{
    return release(Ring::unlink_first(last));
}

void* slist_t::removeBottom()
{
    return release(Ring::unlink_last(last));
}

slink_t* slist_t::Findl(slist_cmp_t fn, const void* key) const
{
    return Ring::find(last, [fn, key](const slink_t* p) { return fn(p->data, key) == 0; });
}

void* slist_t::find(slist_cmp_t fn, const void* key) const
{
    const slink_t* link = Findl(fn, key);
    return link != nullptr ? link->data : nullptr;
}

void* slist_t::remove(slist_cmp_t fn, const void* key)
{
    return release(Ring::unlink_match(last, [fn, key](const slink_t* p) { return fn(p->data, key) == 0; }));
}

void slist_t::removeLoop(slist_cmp_t fn, const void* key, slist_dispose_t dispose)
{
    Ring::unlink_each(
        last, [fn, key](const slink_t* p) { return fn(p->data, key) == 0; },
        [dispose](slink_t* p) {
            void* data = release(p);
            if (dispose != nullptr)
                dispose(data);
        });
}

void* slist_t::Replace(slist_cmp_t fn, const void* key, void* d)
{
    slink_t* link = Findl(fn, key);
    return link != nullptr ? std::exchange(link->data, d) : nullptr;
}

void slist_t::loop(slist_fn_t fn, void* arg) const
{
    Ring::each(last, [fn, arg](const slink_t* p) { fn(p->data, arg); });
}

int slist_t::Len() const
{
    return Ring::count(last);
}

void* slist_t::operator[](int i) const
{
    const slink_t* link = Ring::at(last, i);
    return link != nullptr ? link->data : nullptr;
}

void slist_t::clear()
{
    while (last != nullptr)
        removeTop();
}

void slist_t::Sort(slist_order_t cmp)
{
    last = Ring::sort(last, [cmp](const slink_t* a, const slink_t* b) { return cmp(a->data, b->data) > 0; });
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
            Ring::unlink_after(last, kept, p);
            release(p);
            if (dispose != nullptr)
                dispose(data);
        } else {
            kept = p;
        }
        before = data;
    }
}
