/*
 * SQL LIKE matching over length-governed texts, with the wildcard, the
 * single-character mark and the escape passed in as bytes.
 *
 * The narrow matcher walks the text by characters of the given zuCPType, so
 * that the single-character mark consumes a whole multi-byte character and a
 * trail byte never matches a pattern byte on its own.  It reads nothing at
 * or past either length, keeps one backtrack point (the most recent
 * wildcard), and allocates nothing.  The 16-bit twin walks by units.
 */
#ifndef HNSYB_CORE_STRLIKE_H
#define HNSYB_CORE_STRLIKE_H

#include "../encoding/cptype.h"
#include "../platform/export.h"

// 1 when the character at a (of lengthA bytes left) equals the one at b:
// a multi-byte character needs the same bytes; with caseFlag 0 a single
// byte is compared through strUpper, otherwise exactly.
ZU_EXPORT int isCharEqual(const char* a, long lengthA, const char* b, long lengthB, int caseFlag, zuCPType type);
ZU_EXPORT int isCharEqual(const char* a, const char* b, int caseFlag, zuCPType type = ZU_CP_LOCALE);
ZU_EXPORT int isCharEqual(const unsigned short* a, const unsigned short* b, int caseFlag);

// 1 when the text matches the pattern, else 0.  `many` matches any run of
// characters, `one` any one character; `escape` (0 for none) makes the
// pattern character after it literal, and an escape that ends the pattern
// matches nothing.  caseFlag 0 folds case.  padFlag 0 right-trims blanks from
// both before matching.
ZU_EXPORT int strLike(const char* text, long textLength, const char* pattern, long patternLength, char many, char one,
                      char escape, int caseFlag, int padFlag, zuCPType type);
ZU_EXPORT int strLike(const unsigned short* text, long textLength, const unsigned short* pattern, long patternLength,
                      unsigned short many, unsigned short one, unsigned short escape, int caseFlag, int padFlag,
                      zuCPType type);

#endif
