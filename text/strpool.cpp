// The process-wide string pool and the Mutex wrapper.
#include <tevbase/strpool.h>

#include <assert.h>

#include <cstring>
#include <memory>

#include <generic/gohash>

namespace {

const char kMarker[4] = {'6', '5', '4', '3'};

enum : unsigned char { kEmpty = 0, kOccupied = 1, kDeleted = 2 };

// The pool's table and mutex, created on first use under the compiler's guard for local statics and
// destroyed at exit (the table leaving its arrays behind).
struct Shared {
    Mutex mutex;
    StringPool::Tab tab;
};

Shared& shared()
{
    static Shared pool;
    return pool;
}

} // namespace

Mutex::Mutex() noexcept : mutex_(), marker_{0, 0, 0, 0}
{
    if (pthread_mutex_init(&mutex_, nullptr) == 0)
        std::memcpy(marker_, kMarker, sizeof marker_);
}

Mutex::~Mutex()
{
    if (std::memcmp(marker_, kMarker, sizeof marker_) == 0) {
        pthread_mutex_destroy(&mutex_);
        std::memset(marker_, 0, sizeof marker_); // later users at exit go on without the lock
    }
}

bool Mutex::Lock() noexcept
{
    return std::memcmp(marker_, kMarker, sizeof marker_) == 0 && pthread_mutex_lock(&mutex_) == 0;
}

void Mutex::Unlock() noexcept
{
    pthread_mutex_unlock(&mutex_);
}

void StringPool::Tab::Resize(unsigned n)
{
    n = GHashSize(count, n);
    std::unique_ptr<unsigned char[]> new_states(new unsigned char[n]());
    std::unique_ptr<String_t[]> new_entries(new String_t[n]);
    const struct {
        uint32_t capacity, count;
        unsigned char* states;
        String_t* entries;
    } old_fields = {capacity, count, states, entries};
    capacity = n;
    count = 0;
    states = new_states.release();
    entries = new_entries.release();
    // The old arrays stay intact until the new table is complete. A direct call may ask for fewer
    // slots than the texts need below seven eighths: then the table grows again on the way, and
    // should that fail, the old arrays come back.
    try {
        for (uint32_t i = 0; i < old_fields.capacity; ++i) {
            if (old_fields.states[i] != kOccupied)
                continue;
            if (capacity - capacity / 8 <= count)
                Resize(2 * capacity);
            // The texts are distinct, and a new table has no tombstones: the first empty slot.
            GHashProbe p(GHash(old_fields.entries[i].Chars()), capacity);
            while (states[p.pos] != kEmpty)
                p.Next();
            entries[p.pos] = old_fields.entries[i];
            states[p.pos] = kOccupied;
            ++count;
        }
    } catch (...) {
        delete[] states;
        delete[] entries;
        capacity = old_fields.capacity;
        count = old_fields.count;
        states = old_fields.states;
        entries = old_fields.entries;
        throw;
    }
    delete[] old_fields.states;
    delete[] old_fields.entries;
}

String_t& StringPool::Tab::Intern(const char* text)
{
    if (capacity - capacity / 8 <= count)
        Resize(2 * capacity);
    uint32_t spot = capacity;
    for (GHashProbe p(GHash(text), capacity); p.More(); p.Next()) {
        const uint32_t h = p.pos;
        if (states[h] == kEmpty) {
            if (spot == capacity)
                spot = h;
            break;
        }
        if (states[h] == kDeleted) {
            if (spot == capacity)
                spot = h;
        } else if (std::strcmp(entries[h].Chars(), text) == 0) {
            return entries[h];
        }
    }
    // Below seven eighths there is always an empty slot, and the pool never deletes.
    assert(spot < capacity);
    entries[spot] = String_t(text);
    states[spot] = kOccupied;
    ++count;
    return entries[spot];
}

String_t StringPool::Get(const char* text)
{
    assert(text != 0);
    Shared& pool = shared();
    Mutex::Guard lock(pool.mutex);
    return pool.tab.Intern(text); // the handle is made before the lock goes
}

unsigned StringPool::Capacity()
{
    Shared& pool = shared();
    Mutex::Guard lock(pool.mutex);
    return pool.tab.capacity;
}

unsigned StringPool::Card()
{
    Shared& pool = shared();
    Mutex::Guard lock(pool.mutex);
    return pool.tab.count;
}
