// ByteString: reference-counted counted bytes.
#ifndef TEVBASE_BYTESTRING_H
#define TEVBASE_BYTESTRING_H

#include <stdint.h>

#include <cstddef>

#include <tevbase/config.h>

// Counted bytes of any value, shared like String_t: copies share one representation, and Append and
// Prepend give the changed string its own exactly sized array (built before the old one goes, so a
// failed allocation changes nothing). Null data is the one empty byte string: every result without
// bytes has null data and size 0.
//
// Erase, Reserve and Redefine write through a shared representation: every copy sees the change.
// Use them on a byte string held alone. Positions are not checked.
//
// The count is not atomic: one thread at a time per family of copies.
class TEVBASE_API ByteString {
public:
    // The shared representation, allocated from a pool of 8192-byte blocks.
    struct TEVBASE_API Srep {
        char* data;     // new[] array, or null when empty
        uint32_t size;  // bytes in data, 0 when data is null
        uint32_t count; // handles sharing this representation

        static void* operator new(std::size_t size);
        static void operator delete(void* p, std::size_t size);
    };

    ByteString();
    // A copy of n bytes at p; null p or n == 0 gives null data.
    ByteString(const void* p, unsigned n);
    // n uninitialised bytes.
    explicit ByteString(unsigned n);
    // n bytes c.
    ByteString(unsigned n, char c);
    // n bytes: the first min(m, n) copied from p (none when p is null), the rest c.
    ByteString(unsigned n, const void* p, unsigned m, char c);
    ByteString(const ByteString& other) noexcept : rep_(other.rep_) { ++rep_->count; }
    ~ByteString()
    {
        if (--rep_->count == 0)
            Free(rep_);
    }
    ByteString& operator=(const ByteString& other) noexcept;

    // Appends n bytes at p (which may lie in this string); null p changes nothing. Throws
    // std::bad_alloc when the size overflows 32 bits.
    ByteString& Append(const void* p, unsigned n);
    // Appends n bytes c.
    ByteString& Append(char c, unsigned n);
    ByteString& Prepend(const void* p, unsigned n);
    ByteString& Prepend(char c, unsigned n);

    // Sets every byte to c, in place: writes through a shared representation.
    void Erase(char c);
    // Replaces the array by n uninitialised bytes (null for 0) and returns it for the caller to fill.
    // Writes through a shared representation: every copy gets the new array.
    char* Reserve(unsigned n);
    // Replaces the array by p (from new[], now owned) of n bytes; writes through a shared
    // representation. A null p or n == 0 leaves null data (p is freed).
    void Redefine(void* p, unsigned n);
    // A new[] copy of the bytes for the caller to delete[]; null for null data.
    char* Save() const;

    // Bytes from..to inclusive, cut at the end; empty when to < from or from is at or past the end.
    ByteString SubStr(unsigned from, unsigned to) const;
    // A copy with every byte `from` replaced by `to`, scanning up to the first zero byte (the bytes
    // hold zero-terminated text): bytes after it stay as they are.
    ByteString Subst(char from, char to) const;
    // A copy with every byte found among the n bytes of `set` replaced by `to`, up to the first zero.
    ByteString Subst(const void* set, unsigned n, char to) const;

    // The bytes, or null when empty.
    const char* Data() const { return rep_->data; }
    uint32_t Size() const { return rep_->size; }

    void swap(ByteString& other) noexcept
    {
        Srep* r = rep_;
        rep_ = other.rep_;
        other.rep_ = r;
    }

private:
    static void Free(Srep* rep) noexcept;
    // The old bytes and n added ones (copied from p, or n bytes c when p is null), the added ones in
    // front when `front`, in a new array and a representation of our own.
    ByteString& Join(bool front, const void* p, char c, unsigned n);

    Srep* rep_;
};

// Equal when both are empty, or both have bytes and agree over the shorter size: sizes are not
// compared, so a byte string equals every longer one that begins with it (callers rely on this).
TEVBASE_API bool operator==(const ByteString& a, const ByteString& b);
inline bool operator!=(const ByteString& a, const ByteString& b) { return !(a == b); }

#endif
