/*
 * Byte operations: terminated strings, blocks, fills, element swaps and
 * buffer growth (the BUT and but families), and the mem block helpers.
 *
 * Nothing here looks at characters: every routine works on bytes (or on
 * 16-bit units in the unsigned short twins).  A routine that takes a size
 * reads and writes inside it and nowhere else; the terminated forms read up
 * to and including the terminator, and BUTSTLEN may also read the rest of
 * the aligned 16-byte word that holds it, which can never cross a page.
 * Comparisons give -1, 0 or 1; the Equal forms 1 for equal, else 0.
 * Nothing allocates except butxpand (ramAllocC, the block is the caller's)
 * and butswap for elements too large for its stack block.
 */
#ifndef HNSYB_CORE_BUT_H
#define HNSYB_CORE_BUT_H

#include <cstddef>

#include "../platform/export.h"

// Length of a terminated text, in bytes or units.
ZU_EXPORT unsigned long BUTSTLEN(const char* text);
ZU_EXPORT unsigned long BUTSTLEN(const unsigned short* text);
// strcpy and strcat; each returns target.
ZU_EXPORT char* BUTSTCPY(char* target, const char* source);
ZU_EXPORT unsigned short* BUTSTCPY(unsigned short* target, const unsigned short* source);
ZU_EXPORT char* BUTSTCAT(char* target, const char* source);
ZU_EXPORT unsigned short* BUTSTCAT(unsigned short* target, const unsigned short* source);
// strcmp of unsigned bytes (units), cut to -1, 0, 1.
ZU_EXPORT int BUTSTCMP(const char* a, const char* b);
ZU_EXPORT int BUTSTCMP(const unsigned short* a, const unsigned short* b);

// Copies `count` bytes.  BUTMEMCP walks upward (lowest address first), so it
// is right for an overlap with the target below the source; BUTMMCPD walks
// downward (highest address first), right for the target above the source.
// Each returns target.
ZU_EXPORT void* BUTMEMCP(void* target, const void* source, std::size_t count);
ZU_EXPORT void* BUTMMCPD(void* target, const void* source, std::size_t count);
// memcmp of `count` unsigned bytes, cut to -1, 0, 1.
ZU_EXPORT int BUTMMCMP(const void* a, const void* b, std::size_t count);
// `count` bytes of `byte`.
ZU_EXPORT void BUTU8FIL(void* target, std::size_t count, unsigned char byte);
// Swaps elements i and j of the array at base, each `size` bytes, through a
// temporary block.
ZU_EXPORT void butswap(void* base, unsigned long i, unsigned long j, std::size_t size);

// Growth of a byte buffer in 512-byte steps.  *position points into
// *buffer (the used part ends there).  With no buffer one of
// (needed & ~511) + 512 bytes is allocated and *position set to its start;
// otherwise, when the room left (capacity less used) is below `needed`,
// (needed & ~511) + 512 bytes are added and the contents moved to a new
// block, *position re-based.  The capacity is 16-bit: growth that would pass
// 65,535 fails.  0, or 1 (memory error reported on a failed allocation; the
// buffer is left as it was).
ZU_EXPORT int butxpand(char** buffer, char** position, unsigned short* capacity, unsigned short needed);

// 1 when the `count` bytes are equal, else 0.
ZU_EXPORT int memEqual(const void* a, const void* b, std::size_t count);
// 1 when every byte of text equals the same byte of `upper` or of `lower`.
ZU_EXPORT int memEqualCi(const void* text, const void* upper, const void* lower, std::size_t count);
ZU_EXPORT void memZero(void* target, std::size_t count);
// Clears `words` 4-byte words.
ZU_EXPORT void memZero4Byte(void* target, std::size_t words);
// Copies of `count` bytes without overlap.
ZU_EXPORT void memCopyAligned(void* target, const void* source, std::size_t count);
ZU_EXPORT void fastMemCopy(void* target, const void* source, std::size_t count);
// BUTMMCMP for counts beyond 32 bits.
ZU_EXPORT int memCompareHuge(const void* a, const void* b, unsigned long long count);

#endif
