// DList and DListIterator: intrusive doubly linked ring of DLink.
#include <tevbase/list.h>

DLink::~DLink() = default;

void DList::LinkAfter(DLink* pos, DLink* link)
{
    link->prev = pos;
    link->next = pos->next;
    pos->next->prev = link;
    pos->next = link;
}

void DList::Unlink(DLink* link)
{
    if (link->next == link) {
        last = nullptr;
        return;
    }
    link->prev->next = link->next;
    link->next->prev = link->prev;
    if (link == last)
        last = link->prev;
}

void DList::Append(DLink* link)
{
    Insert(link);
    last = link;
}

void DList::Insert(DLink* link)
{
    if (last == nullptr) {
        link->next = link->prev = link;
        last = link;
    } else {
        LinkAfter(last, link);
    }
}

DLink* DList::RemoveFirst()
{
    if (last == nullptr)
        return nullptr;
    DLink* link = last->next;
    Unlink(link);
    link->next = link->prev = nullptr;
    return link;
}

DLink* DList::RemoveLast()
{
    DLink* link = last;
    last = nullptr;
    return link;
}

DLink* DList::Find(DListCmp fn, const void* key) const
{
    if (last == nullptr)
        return nullptr;
    DLink* p = last;
    do {
        p = p->next;
        if (fn(p, key) == 0)
            return p;
    } while (p != last);
    return nullptr;
}

DLink* DList::Remove(DListCmp fn, const void* key)
{
    DLink* link = Find(fn, key);
    if (link != nullptr) {
        Unlink(link);
        link->next = link->prev = nullptr;
    }
    return link;
}

void DList::RemoveLoop(DListCmp fn, const void* key, DListDispose dispose)
{
    if (last == nullptr)
        return;
    DLink* const end = last;
    DLink* p = last->next;
    for (;;) {
        DLink* const next = p->next;
        const bool at_end = p == end;
        if (fn(p, key) == 0) {
            Unlink(p);
            p->next = p->prev = nullptr;
            if (dispose != nullptr)
                dispose(p);
            else
                delete p;
        }
        if (at_end || last == nullptr)
            return;
        p = next;
    }
}

void DList::Loop(DListFn fn, void* arg)
{
    if (last == nullptr)
        return;
    DLink* const end = last;
    DLink* p = last->next;
    for (;;) {
        DLink* const next = p->next;
        const bool at_end = p == end;
        fn(p, arg);
        if (at_end)
            return;
        p = next;
    }
}

DLink* DList::operator[](int i) const
{
    if (last == nullptr || i < 0)
        return nullptr;
    DLink* p = last->next;
    for (; i > 0; --i) {
        if (p == last)
            return nullptr;
        p = p->next;
    }
    return p;
}

int DList::Len() const
{
    if (last == nullptr)
        return 0;
    int n = 0;
    const DLink* p = last;
    do {
        ++n;
        p = p->next;
    } while (p != last);
    return n;
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
        cur_ = link == list_->last ? nullptr : link->next;
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
    cur_ = link == list_->last ? nullptr : link->next;
    list_->Unlink(link);
    link->next = link->prev = nullptr;
    return link;
}
