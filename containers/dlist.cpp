// DList and DListIterator: intrusive doubly linked ring of DLink.
#include "ring.h"

#include <tevbase/list.h>

DLink::~DLink() = default;

namespace {

using Ring = tevbase_list::DoubleRing<DLink>;

// A link that was taken out: its next and prev are cleared.
DLink* cleared(DLink* link)
{
    link->next = link->prev = nullptr;
    return link;
}

} // namespace

void DList::LinkAfter(DLink* pos, DLink* link)
{
    Ring::link_after(pos, link);
}

void DList::Unlink(DLink* link)
{
    Ring::unlink(last, link);
}

void DList::Append(DLink* link)
{
    Insert(link);
    last = link;
}

void DList::Insert(DLink* link)
{
    Ring::push_front(last, link);
}

DLink* DList::RemoveFirst()
{
    if (last == nullptr)
        return nullptr;
    DLink* link = last->next;
    Unlink(link);
    return cleared(link);
}

DLink* DList::RemoveLast()
{
    DLink* link = last;
    last = nullptr;
    return link;
}

DLink* DList::Find(DListCmp fn, const void* key) const
{
    return Ring::find(last, [fn, key](const DLink* p) { return fn(p, key) == 0; });
}

DLink* DList::Remove(DListCmp fn, const void* key)
{
    DLink* link = Find(fn, key);
    if (link == nullptr)
        return nullptr;
    Unlink(link);
    return cleared(link);
}

void DList::RemoveLoop(DListCmp fn, const void* key, DListDispose dispose)
{
    Ring::unlink_each(
        last, [fn, key](const DLink* p) { return fn(p, key) == 0; },
        [dispose](DLink* p) {
            cleared(p);
            if (dispose != nullptr)
                dispose(p);
            else
                delete p;
        });
}

void DList::Loop(DListFn fn, void* arg)
{
    Ring::each(last, [fn, arg](DLink* p) { fn(p, arg); });
}

DLink* DList::operator[](int i) const
{
    return Ring::at(last, i);
}

int DList::Len() const
{
    return Ring::count(last);
}

void DList::Clear()
{
    while (DLink* p = RemoveFirst())
        delete p;
}

DLink* DListIterator::operator()()
{
    DLink* link = cur_;
    if (link != nullptr)
        cur_ = Ring::after(list_->last, link);
    return link;
}

void DListIterator::Insert(DLink* link)
{
    if (cur_ == nullptr)
        list_->Append(link);
    else
        list_->LinkAfter(cur_->prev, link); // before the first link is after the last: a new first
}

void DListIterator::Append(DLink* link)
{
    if (cur_ == nullptr || cur_ == list_->last)
        list_->Append(link);
    else
        list_->LinkAfter(cur_, link);
}

DLink* DListIterator::Remove()
{
    DLink* link = cur_;
    if (link == nullptr)
        return nullptr;
    cur_ = Ring::after(list_->last, link);
    list_->Unlink(link);
    return cleared(link);
}
