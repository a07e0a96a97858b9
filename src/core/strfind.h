/*
 * Searching text: a byte, a byte outside quotes, a pattern (exact or with
 * case folded), any of a set, and tests of a text against character classes.
 *
 * Each narrow form walks by characters of the given zuCPType, so a trail
 * byte is never found: a byte is found only as a character of its own, and
 * a pattern only where a character starts.  Terminated forms never return
 * the terminator; length forms read nothing at or past their length.
 * Results point into the caller's text (null when nothing is found); only
 * the first strFindCi allocates, two copies that it frees before returning
 * (null, with a memory error reported, when that fails).  The 16-bit
 * overloads walk by units.
 */
#ifndef HNSYB_CORE_STRFIND_H
#define HNSYB_CORE_STRFIND_H

#include "../encoding/cptype.h"
#include "../platform/export.h"

ZU_EXPORT char* strFind(const char* text, char byte, zuCPType type);
ZU_EXPORT char* strFindAnsi(const char* text, char byte);
ZU_EXPORT char* strFind(const char* text, const char* substring, zuCPType type);
// The first place where the pattern starts; null when it is empty or longer
// than the text.
ZU_EXPORT char* strFind(const char* text, long length, const char* pattern, long patternLength, zuCPType type);
ZU_EXPORT char* strFindReverse(const char* text, char byte, zuCPType type);
// The first `byte` outside quotes: each of q1, q2, q3 (0 for none) opens a
// quote that the same byte closes.
ZU_EXPORT char* strFind(const char* text, char byte, char q1, char q2, char q3, zuCPType type);
// Upper-cased copies of both (strUpper) searched, the place mapped back.
ZU_EXPORT char* strFindCi(const char* text, long length, const char* pattern, long patternLength, zuCPType type);
// Each byte equal to the byte of `upper` or of `lower` at its place; only a
// single-byte character starts a candidate.
ZU_EXPORT char* strFindCi(const char* text, long length, const char* upper, const char* lower, long patternLength,
                          zuCPType type);
// The first single-byte character that is one of `characters`.
ZU_EXPORT char* strFindAnyChar(const char* text, const char* characters, zuCPType type);

// Class bits for strContains and strDoesNotContain (the locale's islower,
// isupper, isdigit of a character's first byte).
constexpr int ZU_CLASS_LOWER = 1;
constexpr int ZU_CLASS_UPPER = 2;
constexpr int ZU_CLASS_DIGIT = 4;
// 1 when every character's first byte is one of `characters` (when not
// null) or of a class in `classes`; strDoesNotContain 1 when none is.  An
// empty text gives 1 to both.
ZU_EXPORT int strContains(const char* text, long length, const char* characters, int classes, zuCPType type);
ZU_EXPORT int strDoesNotContain(const char* text, long length, const char* characters, int classes, zuCPType type);

ZU_EXPORT unsigned short* strFind(const unsigned short* text, unsigned short unit, zuCPType type);
ZU_EXPORT unsigned short* strFind(const unsigned short* text, const unsigned short* substring, zuCPType type);
ZU_EXPORT unsigned short* strFind(const unsigned short* text, long length, const unsigned short* pattern,
                                  long patternLength, zuCPType type);
ZU_EXPORT unsigned short* strFindReverse(const unsigned short* text, unsigned short unit, zuCPType type);
ZU_EXPORT unsigned short* strFind(const unsigned short* text, unsigned short unit, unsigned short q1,
                                  unsigned short q2, unsigned short q3, zuCPType type);
ZU_EXPORT unsigned short* strFindCi(const unsigned short* text, long length, const unsigned short* pattern,
                                    long patternLength, zuCPType type);
ZU_EXPORT unsigned short* strFindCi(const unsigned short* text, long length, const unsigned short* upper,
                                    const unsigned short* lower, long patternLength, zuCPType type);
ZU_EXPORT unsigned short* strFindAnyChar(const unsigned short* text, const unsigned short* units, zuCPType type);
ZU_EXPORT int strContains(const unsigned short* text, long length, const unsigned short* units, int classes,
                          zuCPType type);
ZU_EXPORT int strDoesNotContain(const unsigned short* text, long length, const unsigned short* units, int classes,
                                zuCPType type);

#endif
