/*
 * Growth of the parallel tables of the small caches (handle caches, lead-byte
 * map cache).  Internal to the library; not installed.
 */
#ifndef HNSYB_CORE_TABLECOPY_IMPL_H
#define HNSYB_CORE_TABLECOPY_IMPL_H

#include <cstddef>

// Capacity after growing: 16 for a cache without tables, else double.
unsigned long zuDoubledCapacity(unsigned long capacity);

// A new table of `capacity` elements holding a copy of the first `count`
// of `old`; null (memory error reported) on failure or on a size that does
// not fit in memory at all.  The caller frees `old` once all its tables
// have grown, so that a failure leaves the cache as it was.
void* zuCopyTable(const void* old, std::size_t elementSize, unsigned long count, unsigned long capacity);

#endif
