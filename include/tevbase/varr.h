// varr_t: growable array of untyped elements, the flat C counterpart of TVarr.
#ifndef TEVBASE_VARR_H
#define TEVBASE_VARR_H

#include <tevbase/config.h>

TEVBASE_C_BEGIN

// Elements are elsize bytes, copied with memcpy. Storage comes from malloc/realloc (exhaustion
// writes "out of memory" and aborts); element pointers are invalid after any growth.
//
// Growth: type 0 adds `incr` slots, type 1 doubles, reallocating after every single step. Any other
// type never grows: an append beyond the slots it has never returns. A record of 0 slots in type 1 is
// in the same position.
//
// Deliberate differences from TVarr: varr_ass leaves exactly one element, varr_save empties the
// array, varr_override keeps (does not free) the old storage, and varr_uniq on an empty array leaves
// one element of unspecified bytes.
typedef struct varr_t {
    int type;   // 0 additive, 1 doubling
    int elsize; // element size in bytes
    int alloc;  // slots allocated
    int incr;   // construction size: first slot count, additive step, slots after varr_retrieve
    char* cur;  // one past the last element
    char* base; // storage
} varr_t;

// A record with `size` slots of elsize bytes; free it with varr_delete.
TEVBASE_API varr_t* varr_create(int elsize, int size, int type);
TEVBASE_API void varr_delete(varr_t* v);
// Length 0; the storage is kept.
TEVBASE_API void varr_reset(varr_t* v);
// Empties the array and appends *e: afterwards it holds exactly that element.
TEVBASE_API char* varr_ass(varr_t* v, const void* e);
// Appends a copy of *e (which may be an element of v); returns the new element.
TEVBASE_API char* varr_app(varr_t* v, const void* e);
// Appends the n elements at src (which may lie in v); returns the last element written.
TEVBASE_API char* varr_cat(varr_t* v, int n, const void* src);
// Replaces the elements by the n elements at src.
TEVBASE_API char* varr_cpy(varr_t* v, int n, const void* src);
// Adopts p (from malloc) as n slots, all of them elements, and returns the last. The old storage is
// not freed: it stays the caller's.
TEVBASE_API char* varr_override(varr_t* v, int n, void* p);
TEVBASE_API char* varr_get(varr_t* v);
// Hands the storage to the caller (free it with free) and continues with a fresh one of incr slots.
TEVBASE_API char* varr_retrieve(varr_t* v);
// Element i, unchecked.
TEVBASE_API char* varr_get_by_index(varr_t* v, int i);
TEVBASE_API int varr_len(const varr_t* v);
// A calloc copy of the elements (free it with free); the array is left empty.
TEVBASE_API char* varr_save(varr_t* v);
// The first element for which fn(element, key) returns 0, or null.
TEVBASE_API char* varr_find(varr_t* v, int (*fn)(const void* elem, const void* key), const void* key);
// Removes the last element and returns it (readable until the next append); null when empty.
TEVBASE_API char* varr_pop(varr_t* v);
// qsort over the elements.
TEVBASE_API void varr_sort(varr_t* v, int (*cmp)(const void*, const void*));
// Collapses each run to its first member: an element is kept when cmp(predecessor, element) is not 0.
TEVBASE_API void varr_uniq(varr_t* v, int (*cmp)(const void*, const void*));

TEVBASE_C_END

#endif
