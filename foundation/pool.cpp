// Fixed-size block allocator.
#include <tevbase/pool.h>

#include <cstdlib>

namespace {

const char kMarker[4] = {'6', '5', '4', '3'};

inline void* next_of(void* element)
{
    return *static_cast<void**>(element);
}

inline void set_next(void* element, void* next)
{
    *static_cast<void**>(element) = next;
}

} // namespace

Pool::~Pool()
{
    if (std::memcmp(marker_, kMarker, sizeof marker_) == 0) {
        pthread_mutex_destroy(&mutex_);
        // Objects destroyed later at exit still free into this pool: they must not lock a dead mutex.
        std::memset(marker_, 0, sizeof marker_);
    }
}

bool Pool::Lock() noexcept
{
    return std::memcmp(marker_, kMarker, sizeof marker_) == 0 && pthread_mutex_lock(&mutex_) == 0;
}

void Pool::Unlock(bool locked) noexcept
{
    if (locked)
        pthread_mutex_unlock(&mutex_);
}

void* Pool::Alloc(unsigned elemsize, unsigned blocksize)
{
    const bool locked = Lock();
    if (free_ != nullptr) {
        void* p = free_;
        free_ = next_of(p);
        Unlock(locked);
        return p;
    }

    // An element must hold the free-list link, and a block at least one element.
    const std::size_t size = elemsize < sizeof(void*) ? sizeof(void*) : elemsize;
    std::size_t n = blocksize > 8 ? (blocksize - 8) / size : 0;
    if (n == 0)
        n = 1;

    Block* block;
    char* storage;
    try {
        block = static_cast<Block*>(::operator new(sizeof(Block)));
        try {
            storage = static_cast<char*>(::operator new(n * size));
        } catch (...) {
            ::operator delete(block);
            throw;
        }
    } catch (...) {
        Unlock(locked);
        throw;
    }
    block->next = blocks_;
    block->storage = storage;
    blocks_ = block;

    for (std::size_t i = 0; i + 1 < n; ++i)
        set_next(storage + i * size, storage + (i + 1) * size);
    set_next(storage + (n - 1) * size, nullptr);

    free_ = next_of(storage);
    Unlock(locked);
    return storage;
}

void Pool::Free(void* p) noexcept
{
    const bool locked = Lock();
    if (p != nullptr) {
        set_next(p, free_);
        free_ = p;
    }
    Unlock(locked);
}

void Pool::Destroy() noexcept
{
    const bool locked = Lock();
    while (blocks_ != nullptr) {
        Block* b = blocks_;
        blocks_ = b->next;
        ::operator delete(b->storage);
        ::operator delete(b);
    }
    free_ = nullptr;
    Unlock(locked);
}

void* Pool::operator new(std::size_t)
{
    std::abort();
}

void Pool::operator delete(void*)
{
    std::abort();
}
