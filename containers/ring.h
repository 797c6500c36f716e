// Ring operations shared by the four lists of list.h: Ring<Link> walks any of them through next,
// SingleRing<Link> serves olist_t and slist_t, DoubleRing<Link> serves DList and DPList. A ring is reached
// through `last`, its last link (null when empty); last->next is the first link.
#ifndef TEVBASE_CONTAINERS_RING_H
#define TEVBASE_CONTAINERS_RING_H

namespace tevbase_list {

template <class Link> struct Ring {
    // Calls visit(link) on every link present when it starts, in order. visit may unlink (and free)
    // the link it is given: the next one is read first. The walk ends early if the ring empties.
    template <class Visit> static void each(Link* const& last, const Visit& visit)
    {
        if (last == nullptr)
            return;
        Link* const end = last;
        for (Link* p = last->next;;) {
            Link* const next = p->next;
            const bool at_end = p == end;
            visit(p);
            if (at_end || last == nullptr)
                return;
            p = next;
        }
    }

    // The first link, from the front, for which match(link) holds; null if none.
    template <class Match> static Link* find(Link* last, const Match& match)
    {
        if (last == nullptr)
            return nullptr;
        Link* p = last;
        do {
            p = p->next;
            if (match(p))
                return p;
        } while (p != last);
        return nullptr;
    }

    // The i-th link from the first (0-based); null when i is outside the ring.
    static Link* at(Link* last, int i)
    {
        if (last == nullptr || i < 0)
            return nullptr;
        Link* p = last->next;
        for (; i > 0; --i) {
            if (p == last)
                return nullptr;
            p = p->next;
        }
        return p;
    }

    static int count(const Link* last)
    {
        if (last == nullptr)
            return 0;
        int n = 0;
        const Link* p = last;
        do {
            ++n;
            p = p->next;
        } while (p != last);
        return n;
    }
};

// Singly linked: taking a link out needs its predecessor.
template <class Link> struct SingleRing : Ring<Link> {
    // Links link at the front; it is the only link of an empty ring.
    static void push_front(Link*& last, Link* link)
    {
        if (last == nullptr) {
            link->next = link;
            last = link;
        } else {
            link->next = last->next;
            last->next = link;
        }
    }

    // Takes link, whose predecessor is prev, out of the ring and clears its next.
    static void unlink_after(Link*& last, Link* prev, Link* link)
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

    // Unlink and return the first or the last link; null when empty. The last needs a walk.
    static Link* unlink_first(Link*& last)
    {
        if (last == nullptr)
            return nullptr;
        Link* first = last->next;
        unlink_after(last, last, first);
        return first;
    }
    static Link* unlink_last(Link*& last)
    {
        if (last == nullptr)
            return nullptr;
        Link* prev = last;
        while (prev->next != last)
            prev = prev->next;
        Link* link = last;
        unlink_after(last, prev, link);
        return link;
    }

    // Unlinks and returns the first link for which match(link) holds; null if none.
    template <class Match> static Link* unlink_match(Link*& last, const Match& match)
    {
        if (last == nullptr)
            return nullptr;
        Link* prev = last;
        do {
            Link* p = prev->next;
            if (match(p)) {
                unlink_after(last, prev, p);
                return p;
            }
            prev = p;
        } while (prev != last);
        return nullptr;
    }

    // Unlinks every link for which match(link) holds, in order, handing each to take once it is out.
    // The ring is whole at every call, so match and take may throw.
    template <class Match, class Take>
    static void unlink_each(Link*& last, const Match& match, const Take& take)
    {
        Link* prev = last;
        Ring<Link>::each(last, [&](Link* p) {
            if (match(p)) {
                unlink_after(last, prev, p);
                take(p);
            } else {
                prev = p;
            }
        });
    }

    // Stable sort; returns the new last link. The merge takes from the second half only when
    // greater(first-half link, second-half link) holds, so equal links keep their order.
    template <class Greater> static Link* sort(Link* last, const Greater& greater)
    {
        if (last == nullptr || last->next == last)
            return last;
        Link* head = last->next;
        last->next = nullptr; // open the ring into a chain
        head = merge_sort(head, greater);
        Link* tail = head;
        while (tail->next != nullptr)
            tail = tail->next;
        tail->next = head;
        return tail;
    }

private:
    // Sorts a null-terminated chain and returns its new head: halved by one pointer moving a step while
    // another moves two, the halves sorted and merged. Recursion depth log2(n).
    template <class Greater> static Link* merge_sort(Link* head, const Greater& greater)
    {
        if (head == nullptr || head->next == nullptr)
            return head;
        Link* slow = head;
        Link* fast = head->next;
        while (fast != nullptr && fast->next != nullptr) {
            slow = slow->next;
            fast = fast->next->next;
        }
        Link* second = slow->next;
        slow->next = nullptr;

        Link* a = merge_sort(head, greater);
        Link* b = merge_sort(second, greater);
        Link* out = nullptr;
        Link** tail = &out;
        while (a != nullptr && b != nullptr) {
            if (greater(a, b)) {
                *tail = b;
                b = b->next;
            } else {
                *tail = a;
                a = a->next;
            }
            tail = &(*tail)->next;
        }
        *tail = a != nullptr ? a : b;
        return out;
    }
};

// Doubly linked: the first link's prev is last.
template <class Link> struct DoubleRing : Ring<Link> {
    static void link_after(Link* pos, Link* link)
    {
        link->prev = pos;
        link->next = pos->next;
        pos->next->prev = link;
        pos->next = link;
    }

    // Links link at the front; it is the only link of an empty ring.
    static void push_front(Link*& last, Link* link)
    {
        if (last == nullptr) {
            link->next = link->prev = link;
            last = link;
        } else {
            link_after(last, link);
        }
    }

    // Takes link out of the ring; the link keeps its own pointers.
    static void unlink(Link*& last, Link* link)
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

    // The link after link on a walk from the first; null after the last.
    static Link* after(const Link* last, const Link* link) { return link == last ? nullptr : link->next; }

    // Unlinks every link for which match(link) holds, in order, handing each to take once it is out.
    template <class Match, class Take>
    static void unlink_each(Link*& last, const Match& match, const Take& take)
    {
        Ring<Link>::each(last, [&](Link* p) {
            if (match(p)) {
                unlink(last, p);
                take(p);
            }
        });
    }
};

// Frees a pooled link (slink_t, DPLink) that is out of its ring and returns the element it held; null
// for no link.
template <class Link> void* release(Link* link)
{
    if (link == nullptr)
        return nullptr;
    void* data = link->data;
    delete link;
    return data;
}

} // namespace tevbase_list

#endif
