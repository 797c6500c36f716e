// StringPool: process-wide interning of texts; Mutex, a pthread mutex that knows it was initialised.
#ifndef TEVBASE_STRPOOL_H
#define TEVBASE_STRPOOL_H

#include <pthread.h>
#include <stdint.h>

#include <tevbase/config.h>
#include <tevbase/string.h>

// A default pthread mutex with a marker that reads "6543" once pthread_mutex_init has succeeded.
// Without the marker (initialisation failed, or the mutex was destroyed at exit) Lock fails, and the
// callers go on without the lock rather than fail.
class TEVBASE_API Mutex {
public:
    Mutex() noexcept;
    // Destroys the mutex only when the marker is there, and clears the marker.
    ~Mutex();
    Mutex(const Mutex&) = delete;
    Mutex& operator=(const Mutex&) = delete;

    // True when the mutex is now held.
    bool Lock() noexcept;
    void Unlock() noexcept;

    // Holds the mutex for a scope when it can be had.
    class Guard {
    public:
        explicit Guard(Mutex& m) noexcept : mutex_(m), locked_(m.Lock()) {}
        ~Guard()
        {
            if (locked_)
                mutex_.Unlock();
        }
        Guard(const Guard&) = delete;
        Guard& operator=(const Guard&) = delete;

    private:
        Mutex& mutex_;
        bool locked_;
    };

private:
    pthread_mutex_t mutex_;
    char marker_[4];
};

// Interned texts: Get returns a handle to the one pooled copy of a text, so equal texts share one
// representation and one character pointer. The pool is process-wide, guarded by a mutex, and never
// shrinks: pooled texts stay until the process ends.
//
// Get may be called from any thread at once. The handles it returns are ordinary String_t values with
// a plain count, which Get itself updates under the pool's lock: copy or release a pooled text's
// handles only where no other thread can be handling (or interning) the same text at that moment. A
// text's character pointer stays valid until the process ends.
class TEVBASE_API StringPool {
public:
    // The pool's open-addressing table of texts: same hash (GHash), probe sequence, tombstone and
    // growth rules as OHashTable (generic/gohash). Entries are never removed, so no tombstones arise.
    struct TEVBASE_API Tab {
        uint32_t capacity;      // slots; 0 before the first text
        uint32_t count;         // occupied slots
        unsigned char* states;  // per slot: 0 empty, 1 occupied, 2 deleted
        String_t* entries;      // new[] array of capacity strings

        Tab() noexcept : capacity(0), count(0), states(nullptr), entries(nullptr) {}
        // Leaves the arrays to the process's end: pooled texts outlive every static object.
        ~Tab() {}
        Tab(const Tab&) = delete;
        Tab& operator=(const Tab&) = delete;

        // Rebuilds with GHashSize(count, n) slots (at least 100). Throws std::bad_alloc, leaving the
        // table as it was.
        void Resize(unsigned n);
        // The entry holding text, added first when absent (growing at seven eighths before the
        // lookup). Throws std::bad_alloc, leaving the table as it was.
        String_t& Intern(const char* text);
    };

    StringPool() {}
    ~StringPool() {}

    // A handle sharing the pooled copy of text, which must not be null. Throws std::bad_alloc.
    // Costs one hash and, as a rule, one or two comparisons.
    static String_t Get(const char* text);
    // The pool's slots and texts, read under its lock.
    static unsigned Capacity();
    static unsigned Card();
};

#endif
