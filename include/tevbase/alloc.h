// Checked allocation: functions that never return null.
#ifndef TEVBASE_ALLOC_H
#define TEVBASE_ALLOC_H

#include <stdint.h>

#include <tevbase/config.h>

TEVBASE_C_BEGIN

// Each of these writes "out of memory" to standard error and aborts when the system has no memory
// left or a size overflows 32 bits; none returns null, none throws. Free the result with free().

TEVBASE_API void* SMalloc(uint32_t size);
TEVBASE_API void* SCalloc(uint32_t count, uint32_t size);
// malloc(size) when ptr is null, else realloc(ptr, size).
TEVBASE_API void* SRealloc(void* ptr, uint32_t size);
// Reallocates ptr to count elements of size bytes. count * size must fit 32 bits; a size of 0 with a
// non-zero count is a caller error and fails like an overflow.
TEVBASE_API void* SArealloc(void* ptr, uint32_t count, uint32_t size);
// Grows ptr so that it holds at least `needed` elements of elemsize bytes. *capacity is the current
// capacity in elements; when it is too small, it becomes the next multiple of 256 strictly above
// `needed` and the block is reallocated. Returns the (possibly moved) block.
TEVBASE_API void* SBalloc(uint32_t* capacity, void* ptr, uint32_t needed, uint32_t elemsize);

// Aborts the process.
TEVBASE_API void halt(void);

TEVBASE_C_END

#endif
