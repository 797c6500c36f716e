// DPList and DPListIterator: doubly linked ring of pooled links holding void* elements.
#include "ring.h"

#include <tevbase/list.h>
#include <tevbase/pool.h>

#include <utility>

namespace {

Pool dplink_pool;
constexpr unsigned kLinkBlock = 8192;

using Ring = tevbase_list::DoubleRing<DPLink>;
using tevbase_list::release;

} // namespace

void* DPLink::operator new(std::size_t size)
{
    return dplink_pool.New(size, sizeof(DPLink), kLinkBlock);
}

void DPLink::operator delete(void* p, std::size_t size)
{
    dplink_pool.Delete(p, size, sizeof(DPLink));
}

DPList::DPList(const DPList& other) : last(nullptr)
{
    Ring::each(other.last, [this](const DPLink* p) { Append(p->data); });
}

DPList& DPList::operator=(const DPList& other)
{
    DPList copy(other); // fine when &other == this
    std::swap(last, copy.last);
    return *this;
}

// A new link holding d after pos, or the only link when pos is null (an empty list).
DPLink* DPList::LinkAfter(DPLink* pos, void* d)
{
    DPLink* link = new DPLink{nullptr, nullptr, d};
    if (pos == nullptr)
        Ring::push_front(last, link);
    else
        Ring::link_after(pos, link);
    return link;
}

void DPList::Unlink(DPLink* link)
{
    Ring::unlink(last, link);
}

DPLink* DPList::Append(void* d)
{
    DPLink* link = LinkAfter(last, d);
    last = link;
    return link;
}

DPLink* DPList::Insert(void* d)
{
    return LinkAfter(last, d);
}

void* DPList::RemoveFirst()
{
    if (last == nullptr)
        return nullptr;
    DPLink* link = last->next;
    Unlink(link);
    return release(link);
}

void* DPList::RemoveLast()
{
    void* data = release(last);
    last = nullptr;
    return data;
}

DPLink* DPList::FindL(slist_cmp_t fn, const void* key) const
{
    return Ring::find(last, [fn, key](const DPLink* p) { return fn(p->data, key) == 0; });
}

void* DPList::Find(slist_cmp_t fn, const void* key) const
{
    const DPLink* link = FindL(fn, key);
    return link != nullptr ? link->data : nullptr;
}

void* DPList::Remove(slist_cmp_t fn, const void* key)
{
    DPLink* link = FindL(fn, key);
    if (link != nullptr)
        Unlink(link);
    return release(link);
}

void DPList::RemoveLoop(slist_cmp_t fn, const void* key, slist_dispose_t dispose)
{
    Ring::unlink_each(
        last, [fn, key](const DPLink* p) { return fn(p->data, key) == 0; },
        [dispose](DPLink* p) {
            void* data = release(p);
            if (dispose != nullptr)
                dispose(data);
        });
}

void* DPList::Replace(slist_cmp_t fn, const void* key, void* d)
{
    DPLink* link = FindL(fn, key);
    return link != nullptr ? std::exchange(link->data, d) : nullptr;
}

void DPList::Loop(slist_fn_t fn, void* arg) const
{
    Ring::each(last, [fn, arg](const DPLink* p) { fn(p->data, arg); });
}

void* DPList::operator[](int i) const
{
    const DPLink* link = Ring::at(last, i);
    return link != nullptr ? link->data : nullptr;
}

int DPList::Len() const
{
    return Ring::count(last);
}

void DPList::Clear()
{
    while (last != nullptr)
        RemoveFirst();
}

void* DPListIterator::operator()()
{
    DPLink* link = cur_;
    if (link == nullptr)
        return nullptr;
    cur_ = Ring::after(list_->last, link);
    return link->data;
}

DPLink* DPListIterator::Insert(void* d)
{
    if (cur_ == nullptr)
        return list_->Append(d);
    return list_->LinkAfter(cur_->prev, d); // before the first link is after the last: a new first
}

DPLink* DPListIterator::Append(void* d)
{
    if (cur_ == nullptr || cur_ == list_->last)
        return list_->Append(d);
    return list_->LinkAfter(cur_, d);
}

void* DPListIterator::Remove()
{
    DPLink* link = cur_;
    if (link == nullptr)
        return nullptr;
    cur_ = Ring::after(list_->last, link);
    list_->Unlink(link);
    return release(link);
}
