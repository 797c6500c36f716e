// Checked allocation.
#include <tevbase/alloc.h>

#include <cstdio>
#include <cstdlib>

namespace {

[[noreturn]] void out_of_memory()
{
    std::fwrite("out of memory", 1, 13, stderr);
    std::abort();
}

void* checked(void* p)
{
    if (p == nullptr)
        out_of_memory();
    return p;
}

} // namespace

extern "C" {

void* SMalloc(uint32_t size)
{
    return checked(std::malloc(size));
}

void* SCalloc(uint32_t count, uint32_t size)
{
    return checked(std::calloc(count, size));
}

void* SRealloc(void* ptr, uint32_t size)
{
    if (ptr == nullptr)
        return checked(std::malloc(size));
    // realloc(p, 0) frees p and returns null here; a zero-byte request keeps a minimal block instead
    // of reporting a failure that did not happen.
    return checked(std::realloc(ptr, size != 0 ? size : 1));
}

void* SArealloc(void* ptr, uint32_t count, uint32_t size)
{
    const uint32_t limit = size != 0 ? 0xFFFFFFFFu / size : 0;
    if (count > limit)
        out_of_memory();
    return SRealloc(ptr, count * size);
}

void* SBalloc(uint32_t* capacity, void* ptr, uint32_t needed, uint32_t elemsize)
{
    if (*capacity >= needed)
        return ptr;
    const uint32_t blocks = needed / 256 + 1;
    if (blocks == 0x1000000)
        out_of_memory();
    const uint32_t newcap = blocks * 256;
    void* p = SArealloc(ptr, newcap, elemsize);
    *capacity = newcap;
    return p;
}

void halt(void)
{
    std::abort();
}

} // extern "C"
