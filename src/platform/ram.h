/*
 * ram: the library's C heap.
 *
 * Every allocation of the library goes through these calls so that running
 * out of memory always lands in the calling thread's error list: a failed
 * allocation is a null result (or 1 from ramResizeZ) together with one call of
 * ramAddMemoryError.  Blocks come from malloc and are released with
 * ramFreeC (or free); the caller that receives a block owns it.
 */
#ifndef HNSYB_PLATFORM_RAM_H
#define HNSYB_PLATFORM_RAM_H

#include <cstddef>

#include "export.h"

// malloc; a size of 0 is taken as 1, so the result is always a usable block.
ZU_EXPORT void* ramAllocC(std::size_t size);
ZU_EXPORT void ramFreeC(void* pointer);

// realloc of *pointer to `size` bytes.  0 on success, 1 on failure (memory
// error reported, the old block left in place).  On success with a size of 5
// or more every byte from offset 4 to the end is cleared: the first 4-byte
// word belongs to the caller and survives, the rest of the old contents do
// not, whatever the old size was.
ZU_EXPORT int ramResizeZ(void** pointer, std::size_t size);

// Usable size of a block from ramAllocC or ramResizeZ (at least the size asked).
ZU_EXPORT std::size_t ramSize(const void* pointer);

// A new NUL-terminated string of the other width: ramAllocStrW widens `count`
// bytes into 16-bit units, ramAllocStr narrows `count` units to their low
// byte.  The signed forms take a negative count as 0.  Null on failure.
ZU_EXPORT unsigned short* ramAllocStrW(const char* text, long count);
ZU_EXPORT unsigned short* ramAllocStrW(const char* text, unsigned long count);
ZU_EXPORT char* ramAllocStr(const unsigned short* text, long count);
ZU_EXPORT char* ramAllocStr(const unsigned short* text, unsigned long count);
inline unsigned short* ramAllocStrW(const char* t, int n) { return ramAllocStrW(t, static_cast<long>(n)); }
inline unsigned short* ramAllocStrW(const char* t, unsigned int n) { return ramAllocStrW(t, static_cast<unsigned long>(n)); }
inline char* ramAllocStr(const unsigned short* t, int n) { return ramAllocStr(t, static_cast<long>(n)); }
inline char* ramAllocStr(const unsigned short* t, unsigned int n) { return ramAllocStr(t, static_cast<unsigned long>(n)); }

// Records that memory ran out in the calling thread's error list (at most one
// memory error per list; see core/errorkeeper.h).  A thread without a list
// records nothing.
ZU_EXPORT void ramAddMemoryError();

#endif
