// Pool: fixed-size block allocator used as the class-specific heap of small, frequent objects.
#ifndef TEVBASE_POOL_H
#define TEVBASE_POOL_H

#include <pthread.h>

#include <cstddef>
#include <cstring>
#include <new>

#include <tevbase/config.h>

// Free elements form a singly linked list threaded through their first machine word. Elements come
// from blocks of `blocksize` bytes, (blocksize - 8) / elemsize elements each, carved in address order;
// freed elements go back to the free list, never to the system.
//
// A pool is a static object of its class: its constructor is constexpr, so every pool is ready before
// any dynamic initialisation runs. A mutex guards the free list; when it is not usable (the marker is
// not "6543", or locking fails) operations go on without it.
//
// A pooled class routes its allocation through its pool:
//
//     static Pool heap;
//     void* Node::operator new(std::size_t n) { return heap.New(n, sizeof(Node), 8192); }
//     void Node::operator delete(void* p, std::size_t n) { heap.Delete(p, n, sizeof(Node)); }
class TEVBASE_API Pool {
public:
    constexpr Pool() noexcept
        : free_(nullptr), blocks_(nullptr), mutex_(PTHREAD_MUTEX_INITIALIZER), marker_{'6', '5', '4', '3'}
    {
    }
    // Destroys the mutex only; blocks are reclaimed with the process.
    ~Pool();
    Pool(const Pool&) = delete;
    Pool& operator=(const Pool&) = delete;

    // One element of elemsize bytes. Throws std::bad_alloc when a new block cannot be had.
    void* Alloc(unsigned elemsize, unsigned blocksize);
    // Pushes p (which came from Alloc) on the free list; null is ignored.
    void Free(void* p) noexcept;
    // Frees every block. Elements still in use dangle afterwards: call it only when none are live.
    void Destroy() noexcept;

    // Class-specific operator new of a class of `own` bytes: sizes of derived classes go to the
    // general allocator.
    void* New(std::size_t size, std::size_t own, unsigned blocksize)
    {
        return size == own ? Alloc(static_cast<unsigned>(size), blocksize) : ::operator new(size);
    }
    // Class-specific sized operator delete.
    void Delete(void* p, std::size_t size, std::size_t own) noexcept
    {
        if (size != own)
            ::operator delete(p);
        else
            Free(p);
    }

    // A pool is never allocated dynamically.
    static void* operator new(std::size_t);
    static void operator delete(void*);

private:
    struct Block {
        Block* next;
        void* storage;
    };

    bool Lock() noexcept;
    void Unlock(bool locked) noexcept;

    void* free_;
    Block* blocks_;
    pthread_mutex_t mutex_;
    char marker_[4];
};

#endif
