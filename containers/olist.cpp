// olist_t: intrusive singly linked ring of olink_t.
#include "ring.h"

#include <tevbase/list.h>

olink_t::~olink_t() = default;

olist_cmpo_t::~olist_cmpo_t() = default;

namespace {

using Ring = tevbase_list::SingleRing<olink_t>;

// Hands a link that is out of the ring to dispose, or destroys it.
void dispose_or_delete(olink_t* link, olist_dispose_t dispose)
{
    if (dispose != nullptr)
        dispose(link);
    else
        delete link;
}

} // namespace

void olist_t::append(olink_t* link)
{
    insert(link);
    last = link;
}

void olist_t::insert(olink_t* link)
{
    Ring::push_front(last, link);
}

olink_t* olist_t::removeTop()
{
    return Ring::unlink_first(last);
}

olink_t* olist_t::removeBottom()
{
    return Ring::unlink_last(last);
}

olink_t* olist_t::find(olist_cmp_t fn, const void* key) const
{
    return Ring::find(last, [fn, key](const olink_t* p) { return fn(p, key) == 0; });
}

olink_t* olist_t::remove(olist_cmp_t fn, const void* key)
{
    return Ring::unlink_match(last, [fn, key](const olink_t* p) { return fn(p, key) == 0; });
}

olink_t* olist_t::operator[](int i) const
{
    return Ring::at(last, i);
}

void olist_t::loop(olist_fn_t fn, void* arg)
{
    Ring::each(last, [fn, arg](olink_t* p) { fn(p, arg); });
}

void olist_t::removeLoop(olist_cmp_t fn, const void* key, olist_dispose_t dispose)
{
    Ring::unlink_each(
        last, [fn, key](const olink_t* p) { return fn(p, key) == 0; },
        [dispose](olink_t* p) { dispose_or_delete(p, dispose); });
}

void olist_t::removeLoop(const olist_cmpo_t& cmp, olist_dispose_t dispose)
{
    Ring::unlink_each(
        last, [&cmp](const olink_t* p) { return cmp(p) == 0; },
        [dispose](olink_t* p) { dispose_or_delete(p, dispose); });
}

void olist_t::Sort(olist_sort_t cmp, const void* arg)
{
    last = Ring::sort(last, [cmp, arg](const olink_t* a, const olink_t* b) { return cmp(a, b, arg) > 0; });
}

void olist_t::clear()
{
    while (olink_t* p = removeTop())
        delete p;
}

int olist_t::Len() const
{
    return Ring::count(last);
}
