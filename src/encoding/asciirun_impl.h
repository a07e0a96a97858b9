/*
 * Word- and vector-wide runs of 7-bit text: copy, widen to UTF-16, narrow
 * from UTF-16.  Each returns how many characters it moved, stopping at the
 * first one that is not 7-bit or at the end of the shorter side; what it
 * moved is identical to what a converter would have produced.
 * Internal to the library.
 */
#ifndef HNSYB_ENCODING_ASCIIRUN_IMPL_H
#define HNSYB_ENCODING_ASCIIRUN_IMPL_H

#include <unicode/ucnv.h>

#include <cstddef>

namespace zu_ascii {

size_t copyRun(unsigned char* target, const unsigned char* source, size_t count);
size_t widenRun(unsigned short* target, const unsigned char* source, size_t count);
// Widens every byte (ISO-8859-1 is the first 256 code points).
void widenLatin1(unsigned short* target, const unsigned char* source, size_t count);
size_t narrowRun(unsigned char* target, const unsigned short* source, size_t count);

// 1 when the converter maps 0x00-0x7F to U+0000-U+007F both ways and keeps
// no shift state, so that 7-bit runs may bypass it.  Cached per converter
// kind for the life of the process.
bool transparent(UConverter* converter);

}  // namespace zu_ascii

#endif
