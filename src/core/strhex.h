/*
 * Hexadecimal text: numbers and byte blocks to upper-case digits and back.
 *
 * Targets are the caller's and need room for what the form writes: two
 * digits a byte and a terminator when hexifying, (count + 1) / 2 bytes when
 * dehexifying.  Sources are read for exactly their counts.  Nothing here
 * allocates.  A bad digit adds error 2708 to the thread's list and gives 1.
 */
#ifndef HNSYB_CORE_STRHEX_H
#define HNSYB_CORE_STRHEX_H

#include <cstddef>

#include "../platform/export.h"

constexpr unsigned short ZU_MSG_BAD_HEX_DIGIT = 2708;

// The value in upper-case digits without prefix, left-padded with 0 to
// `minimum` digits (at most 64), then a NUL; 0 with minimum 0 gives "0".
// Returns the digit count.
ZU_EXPORT int hexify(char* target, unsigned long long value, int minimum);
inline int hexify(char* target, int value, int minimum) { return hexify(target, static_cast<unsigned long long>(static_cast<unsigned>(value)), minimum); }
inline int hexify(char* target, unsigned value, int minimum) { return hexify(target, static_cast<unsigned long long>(value), minimum); }
inline int hexify(char* target, long value, int minimum) { return hexify(target, static_cast<unsigned long long>(static_cast<unsigned long>(value)), minimum); }
inline int hexify(char* target, unsigned long value, int minimum) { return hexify(target, static_cast<unsigned long long>(value), minimum); }
// Two digits a byte, then a NUL (2 * count + 1 bytes).  Target and source
// may be the same block (it then works from the end).  Returns the digit
// count.
ZU_EXPORT long hexify(char* target, const unsigned char* source, long count);
ZU_EXPORT unsigned long long hexifyHuge(char* target, const unsigned char* source, unsigned long long count);
ZU_EXPORT long wideHexify(unsigned short* target, const unsigned char* source, long count);

// `count` digits of either case, high nibble first; with an odd count the
// last digit fills the high half of a final byte.  0, or 1 at a bad digit.
ZU_EXPORT int dehexify(unsigned char* target, const char* source, long count);
ZU_EXPORT int dehexifyHuge(unsigned char* target, const char* source, unsigned long long count);
ZU_EXPORT int wideDehexify(unsigned char* target, const unsigned short* source, long count);
// The same, with every byte equal to doubleByte written twice; *length is
// the number of bytes written divided by 4 (its callers count that way).
ZU_EXPORT int dehexify(unsigned char* target, const char* source, long count, unsigned char doubleByte, long* length);

// 1 when all `count` bytes are digits of either case (count 0 too).
ZU_EXPORT int isHexString(const char* text, long count);

#endif
