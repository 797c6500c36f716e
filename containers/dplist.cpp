// DPList and DPListIterator: doubly linked ring of pooled links holding void* elements.
#include <tevbase/list.h>
#include <tevbase/pool.h>

namespace {

Pool dplink_pool;
constexpr unsigned kLinkBlock = 8192;

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
    if (other.last == nullptr)
        return;
    const DPLink* p = other.last;
    do {
        p = p->next;
        Append(p->data);
    } while (p != other.last);
}

DPList& DPList::operator=(const DPList& other)
{
    DPList copy(other); // fine when &other == this
    DPLink* mine = last;
    last = copy.last;
    copy.last = mine;
    return *this;
}

DPLink* DPList::LinkAfter(DPLink* pos, void* d)
{
    DPLink* link = new DPLink{nullptr, nullptr, d};
    if (pos == nullptr) {
        link->next = link->prev = link;
        last = link;
    } else {
        link->prev = pos;
        link->next = pos->next;
        pos->next->prev = link;
        pos->next = link;
    }
    return link;
}

void DPList::Unlink(DPLink* link)
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
    void* data = link->data;
    delete link;
    return data;
}

void* DPList::RemoveLast()
{
    if (last == nullptr)
        return nullptr;
    void* data = last->data;
    delete last;
    last = nullptr;
    return data;
}

DPLink* DPList::FindL(slist_cmp_t fn, const void* key) const
{
    if (last == nullptr)
        return nullptr;
    DPLink* p = last;
    do {
        p = p->next;
        if (fn(p->data, key) == 0)
            return p;
    } while (p != last);
    return nullptr;
}

void* DPList::Find(slist_cmp_t fn, const void* key) const
{
    const DPLink* link = FindL(fn, key);
    return link != nullptr ? link->data : nullptr;
}

void* DPList::Remove(slist_cmp_t fn, const void* key)
{
    DPLink* link = FindL(fn, key);
    if (link == nullptr)
        return nullptr;
    Unlink(link);
    void* data = link->data;
    delete link;
    return data;
}

void DPList::RemoveLoop(slist_cmp_t fn, const void* key, slist_dispose_t dispose)
{
    if (last == nullptr)
        return;
    DPLink* const end = last;
    DPLink* p = last->next;
    for (;;) {
        DPLink* const next = p->next;
        const bool at_end = p == end;
        if (fn(p->data, key) == 0) {
            Unlink(p);
            void* data = p->data;
            delete p;
            if (dispose != nullptr)
                dispose(data);
        }
        if (at_end || last == nullptr)
            return;
        p = next;
    }
}

void* DPList::Replace(slist_cmp_t fn, const void* key, void* d)
{
    DPLink* link = FindL(fn, key);
    if (link == nullptr)
        return nullptr;
    void* old = link->data;
    link->data = d;
    return old;
}

void DPList::Loop(slist_fn_t fn, void* arg) const
{
    if (last == nullptr)
        return;
    DPLink* const end = last;
    DPLink* p = last->next;
    for (;;) {
        DPLink* const next = p->next;
        const bool at_end = p == end;
        fn(p->data, arg);
        if (at_end)
            return;
        p = next;
    }
}

void* DPList::operator[](int i) const
{
    if (last == nullptr || i < 0)
        return nullptr;
    const DPLink* p = last->next;
    for (; i > 0; --i) {
        if (p == last)
            return nullptr;
        p = p->next;
    }
    return p->data;
}

int DPList::Len() const
{
    if (last == nullptr)
        return 0;
    int n = 0;
    const DPLink* p = last;
    do {
        ++n;
        p = p->next;
    } while (p != last);
    return n;
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
    cur_ = link == list_->last ? nullptr : link->next;
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
    cur_ = link == list_->last ? nullptr : link->next;
    list_->Unlink(link);
    void* data = link->data;
    delete link;
    return data;
}
