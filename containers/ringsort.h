// Stable top-down merge sort of the singly linked rings of olist_t and slist_t.
#ifndef TEVBASE_CONTAINERS_RINGSORT_H
#define TEVBASE_CONTAINERS_RINGSORT_H

namespace tevbase_list {

// Sorts a null-terminated chain linked through `next` and returns its new head. Each chain is halved
// by a pointer that moves one step while another moves two; the halves are sorted and merged. The
// merge takes from the second half only when greater(first-half link, second-half link) holds, so
// equal links keep their order.
template <class Link, class Greater> Link* merge_sort(Link* head, const Greater& greater)
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

// Sorts the ring behind last (the last link, or null) and returns the new last link.
template <class Link, class Greater> Link* sort_ring(Link* last, const Greater& greater)
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

} // namespace tevbase_list

#endif
