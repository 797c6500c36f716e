// varr_t: growable array of untyped elements.
#include <tevbase/alloc.h>
#include <tevbase/varr.h>

#include <stdint.h>

#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>

namespace {

[[noreturn]] void out_of_memory()
{
    std::fwrite("out of memory", 1, 13, stderr);
    std::abort();
}

char* storage(void* old, int slots, int elsize)
{
    return static_cast<char*>(SArealloc(old, static_cast<uint32_t>(slots), static_cast<uint32_t>(elsize)));
}

// p - elsize on the address: the result may lie before the storage, where callers ignore it.
char* before(char* p, int elsize)
{
    return reinterpret_cast<char*>(reinterpret_cast<uintptr_t>(p) - static_cast<uintptr_t>(elsize));
}

bool inside(const varr_t* v, const char* p)
{
    std::less<const char*> lt;
    return !lt(p, v->base) && lt(p, v->base + static_cast<std::size_t>(v->alloc) * v->elsize);
}

} // namespace

extern "C" {

varr_t* varr_create(int elsize, int size, int type)
{
    varr_t* v = static_cast<varr_t*>(SMalloc(sizeof(varr_t)));
    v->type = type;
    v->elsize = elsize;
    v->alloc = v->incr = size;
    v->base = v->cur = storage(nullptr, size, elsize);
    return v;
}

void varr_delete(varr_t* v)
{
    std::free(v->base);
    std::free(v);
}

void varr_reset(varr_t* v)
{
    v->cur = v->base;
}

char* varr_ass(varr_t* v, const void* e)
{
    varr_reset(v);
    return varr_cat(v, 1, e);
}

char* varr_app(varr_t* v, const void* e)
{
    return varr_cat(v, 1, e);
}

char* varr_cat(varr_t* v, int n, const void* src)
{
    const char* from = static_cast<const char*>(src);
    const int len = varr_len(v);
    const int64_t need = static_cast<int64_t>(len) + (n > 0 ? n : 0);
    if (v->alloc < need) {
        const bool own = inside(v, from); // src is one of our elements: it moves with the storage
        const std::ptrdiff_t at = own ? from - v->base : 0;
        while (v->alloc < need) {
            int64_t next = v->alloc;
            if (v->type == 0)
                next += v->incr;
            else if (v->type == 1)
                next *= 2;
            if (next > INT_MAX)
                out_of_memory();
            v->alloc = static_cast<int>(next);
            // One realloc per step, not one at the end: callers see the same sequence of sizes.
            v->base = storage(v->base, v->alloc, v->elsize);
            v->cur = v->base + static_cast<std::ptrdiff_t>(len) * v->elsize;
        }
        if (own)
            from = v->base + at;
    }
    if (n > 0) {
        const std::size_t bytes = static_cast<std::size_t>(n) * v->elsize;
        std::memmove(v->cur, from, bytes);
        v->cur += bytes;
    }
    return before(v->cur, v->elsize);
}

char* varr_cpy(varr_t* v, int n, const void* src)
{
    varr_reset(v);
    return varr_cat(v, n, src);
}

char* varr_override(varr_t* v, int n, void* p)
{
    v->alloc = n;
    v->base = static_cast<char*>(p);
    v->cur = v->base + static_cast<std::ptrdiff_t>(n) * v->elsize;
    return before(v->cur, v->elsize);
}

char* varr_get(varr_t* v)
{
    return v->base;
}

char* varr_retrieve(varr_t* v)
{
    char* block = v->base;
    v->alloc = v->incr;
    v->base = v->cur = storage(nullptr, v->incr, v->elsize);
    return block;
}

char* varr_get_by_index(varr_t* v, int i)
{
    return v->base + static_cast<std::ptrdiff_t>(i) * v->elsize;
}

int varr_len(const varr_t* v)
{
    return v->elsize > 0 ? static_cast<int>((v->cur - v->base) / v->elsize) : 0;
}

char* varr_save(varr_t* v)
{
    const int len = varr_len(v);
    char* block = static_cast<char*>(SCalloc(static_cast<uint32_t>(len), static_cast<uint32_t>(v->elsize)));
    if (len > 0)
        std::memcpy(block, v->base, static_cast<std::size_t>(len) * v->elsize);
    varr_reset(v);
    return block;
}

char* varr_find(varr_t* v, int (*fn)(const void* elem, const void* key), const void* key)
{
    if (v->elsize <= 0)
        return nullptr;
    for (char* p = v->base; p < v->cur; p += v->elsize)
        if (fn(p, key) == 0)
            return p;
    return nullptr;
}

char* varr_pop(varr_t* v)
{
    if (v->cur <= v->base)
        return nullptr;
    v->cur -= v->elsize;
    return v->cur;
}

void varr_sort(varr_t* v, int (*cmp)(const void*, const void*))
{
    const int len = varr_len(v);
    if (len > 1)
        std::qsort(v->base, static_cast<std::size_t>(len), static_cast<std::size_t>(v->elsize), cmp);
}

void varr_uniq(varr_t* v, int (*cmp)(const void*, const void*))
{
    const std::size_t size = static_cast<std::size_t>(v->elsize);
    char* out = v->base + size;
    for (char* p = v->base + size; p < v->cur; p += size) {
        if (cmp(p - size, p) != 0) {
            if (out != p)
                std::memcpy(out, p, size);
            out += size;
        }
    }
    // Also on an empty array, which is left with one element: callers rely on it.
    v->cur = out;
}

} // extern "C"
