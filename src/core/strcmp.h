/*
 * Equality and order of texts: by bytes, by characters with case folded,
 * with SQL blank padding, by the locale's collation, and of stored doubles.
 *
 * Comparisons give -1, 0 or 1 and the Equal forms 1 or 0.  Terminated forms
 * read up to the first terminator; length forms read exactly their lengths
 * and treat a NUL as an ordinary byte.  The Ci forms walk by characters of
 * the given zuCPType: the bytes of a multi-byte character must match
 * exactly, a single byte is compared after strUpper.  Only the length forms
 * of the Intl pair allocate (ramAllocC, freed before they return), for texts
 * beyond their 512-byte stack buffers; the caller owns everything else.
 */
#ifndef HNSYB_CORE_STRCMP_H
#define HNSYB_CORE_STRCMP_H

#include "../encoding/cptype.h"
#include "../platform/export.h"

ZU_EXPORT int strEqual(const char* a, const char* b);
ZU_EXPORT int strEqual(const char* a, long lengthA, const char* b, long lengthB);
ZU_EXPORT int strEqual(const unsigned short* a, const unsigned short* b);
ZU_EXPORT int strEqual(const unsigned short* a, long lengthA, const unsigned short* b, long lengthB);
// Both texts known to be `length` long.
ZU_EXPORT int strEqualSameLens(const char* a, const char* b, long length);
ZU_EXPORT int strEqualSameLens(const unsigned short* a, const unsigned short* b, long length);
ZU_EXPORT int strEqualCi(const char* a, const char* b, zuCPType type = ZU_CP_LOCALE);
ZU_EXPORT int strEqualCi(const char* a, long lengthA, const char* b, long lengthB, zuCPType type = ZU_CP_LOCALE);
ZU_EXPORT int strEqualCi(const unsigned short* a, const unsigned short* b, zuCPType type = ZU_CP_UTF16);
ZU_EXPORT int strEqualCi(const unsigned short* a, long lengthA, const unsigned short* b, long lengthB,
                         zuCPType type = ZU_CP_UTF16);

// By unsigned bytes (units); for lengths, the common part first, then the
// shorter text orders first.
ZU_EXPORT int strCompare(const char* a, const char* b);
ZU_EXPORT int strCompare(const char* a, long lengthA, const char* b, long lengthB);
ZU_EXPORT int strCompare(const unsigned short* a, const unsigned short* b);
ZU_EXPORT int strCompare(const unsigned short* a, long lengthA, const unsigned short* b, long lengthB);
ZU_EXPORT int strCompareCi(const char* a, const char* b, zuCPType type = ZU_CP_LOCALE);
ZU_EXPORT int strCompareCi(const char* a, long lengthA, const char* b, long lengthB, zuCPType type = ZU_CP_LOCALE);
ZU_EXPORT int strCompareCi(const unsigned short* a, const unsigned short* b, zuCPType type = ZU_CP_UTF16);
ZU_EXPORT int strCompareCi(const unsigned short* a, long lengthA, const unsigned short* b, long lengthB,
                           zuCPType type = ZU_CP_UTF16);
// UTF-8 by code point, which is the order of its unsigned bytes.
ZU_EXPORT int strCompareUTF8(const char* a, const char* b);
ZU_EXPORT int strCompareUTF8(const char* a, long lengthA, const char* b, long lengthB);

// SQL CHAR comparison: the common length by bytes, then the rest of the
// longer text against blanks (a byte above the blank orders that text later).
ZU_EXPORT int strComparePad(const char* a, const char* b);
ZU_EXPORT int strComparePad(const char* a, long lengthA, const char* b, long lengthB);
ZU_EXPORT int strComparePad(const unsigned short* a, long lengthA, const unsigned short* b, long lengthB);

// strcoll.  The length forms copy each text to a terminated buffer, on the
// stack up to 512 bytes, else on the heap; when the heap fails (memory error
// reported) they compare by bytes.  strCompareCiIntl does not fold case.
ZU_EXPORT int strCompareIntl(const char* a, const char* b);
ZU_EXPORT int strCompareIntl(const char* a, long lengthA, const char* b, long lengthB);
ZU_EXPORT int strCompareCiIntl(const char* a, const char* b);
ZU_EXPORT int strCompareCiIntl(const char* a, long lengthA, const char* b, long lengthB);

// strncmp.
ZU_EXPORT int strCompareWithMaxLength(const char* a, const char* b, long length);
ZU_EXPORT int strCompareWithMaxLength(const unsigned short* a, const unsigned short* b, long length);

// Two doubles stored as 8 big-endian bytes: differing sign bits decide;
// otherwise the first differing byte, its order reversed for negatives.
ZU_EXPORT int floatCompare(const unsigned char* a, const unsigned char* b);

#endif
