/*
 * Copying text: bounded copies and appends, quoting and unquoting, copies of
 * byte-swapped UTF-16, right trimming, and the truth of a flag text.
 *
 * Every target is the caller's and must have the room its form names:
 * `size` for the bounded forms (they never write at or past it, and a size
 * of 0 or less writes nothing), length + 1 for the exact copies, and twice
 * the length + 3 for a quoted copy.  A length form reads exactly its length
 * of source.  Quoting walks by characters of the given zuCPType, so a trail
 * byte equal to the quote is never doubled or taken for one.  Narrow, 16-bit
 * and mixed overloads exist; narrow to 16-bit widens each byte, 16-bit to
 * narrow keeps the low byte of each unit.  Nothing here allocates.
 */
#ifndef HNSYB_CORE_STRCOPY_H
#define HNSYB_CORE_STRCOPY_H

#include "../encoding/cptype.h"
#include "../platform/export.h"

// A NUL at target[size - 1], then up to size - 1 units, stopping after a
// NUL.  Returns target.
ZU_EXPORT char* strCopy(char* target, long size, const char* source);
ZU_EXPORT unsigned short* strCopy(unsigned short* target, long size, const unsigned short* source);
ZU_EXPORT unsigned short* strCopy(unsigned short* target, long size, const char* source);
ZU_EXPORT char* strCopy(char* target, long size, const unsigned short* source);
// At most `length` and at most size - 1 units, then a NUL.  Returns target.
ZU_EXPORT char* strCopy(char* target, long size, const char* source, long length);
ZU_EXPORT unsigned short* strCopy(unsigned short* target, long size, const unsigned short* source, long length);
ZU_EXPORT unsigned short* strCopy(unsigned short* target, long size, const char* source, long length);
ZU_EXPORT char* strCopy(char* target, long size, const unsigned short* source, long length);
// Exactly `length` units and a NUL; returns the address of the NUL.
ZU_EXPORT char* strCopy(char* target, const char* source, long length);
ZU_EXPORT unsigned short* strCopy(unsigned short* target, const unsigned short* source, long length);
ZU_EXPORT unsigned short* strCopy(unsigned short* target, const char* source, long length);
ZU_EXPORT char* strCopy(char* target, const unsigned short* source, long length);

// Appends to the terminated text in target (of `size` units) as much of the
// source as fits before target[size - 1], then a NUL.  A target without a
// NUL inside its size is left alone.  Returns target.
ZU_EXPORT char* strCat(char* target, long size, const char* source);
ZU_EXPORT char* strCat(char* target, long size, const char* source, long length);
ZU_EXPORT unsigned short* strCat(unsigned short* target, long size, const unsigned short* source);
ZU_EXPORT unsigned short* strCat(unsigned short* target, long size, const unsigned short* source, long length);

// The quote, each character of `length` bytes of source (a single-byte
// character equal to the quote twice), the quote and a NUL.  A character
// that would run past the length ends the copy.  Returns the address of the
// NUL.  strCatQuoted does the same at the end of the text in target.
ZU_EXPORT char* strCopyQuoted(char* target, const char* source, long length, zuCPType type, char quote);
ZU_EXPORT char* strCatQuoted(char* target, const char* source, long length, zuCPType type, char quote);
ZU_EXPORT unsigned short* strCopyQuoted(unsigned short* target, const unsigned short* source, long length,
                                        zuCPType type, unsigned short quote);
ZU_EXPORT unsigned short* strCatQuoted(unsigned short* target, const unsigned short* source, long length,
                                       zuCPType type, unsigned short quote);
// source[0] is the quote and the text ends with its closing quote at
// length - 1; the bytes between are copied, a locale lead byte with its
// trail byte (the copy ends when only the lead is left), and a quote is
// dropped and the byte after it copied, so doubled quotes collapse.  Returns
// the address of the NUL.  Target and source may be the same.
ZU_EXPORT char* strCopyUnquoted(char* target, const char* source, long length);
ZU_EXPORT unsigned short* strCopyUnquoted(unsigned short* target, const unsigned short* source, long length);
// In place, and only when the text is well quoted (at least 2 long, first
// and last character the quote, every inner quote doubled): the quotes
// removed and the doubled ones collapsed.  The new length, or the length
// unchanged.
ZU_EXPORT long strRemoveQuotes(char* text, long length, char quote, zuCPType type);
ZU_EXPORT long strRemoveQuotes(unsigned short* text, long length, unsigned short quote, zuCPType type);

// `count` units with their two bytes swapped, then a zero unit; returns target.
ZU_EXPORT unsigned short* strCopyUTF16Swap(unsigned short* target, const unsigned short* source, long count);
// Length of the text without its trailing white space, each unit read with
// its bytes swapped.
ZU_EXPORT long strRightTrimUTF16Swap(const unsigned short* text, long length);

// strRightTrim removes trailing zuIsWhiteSpace characters, strRightTrimBlanks
// trailing blanks.  The terminated forms cut in place and return text; the
// length forms return the new length.
ZU_EXPORT char* strRightTrim(char* text, zuCPType type = ZU_CP_LOCALE);
ZU_EXPORT long strRightTrim(const char* text, long length, zuCPType type = ZU_CP_LOCALE);
ZU_EXPORT unsigned short* strRightTrim(unsigned short* text, zuCPType type = ZU_CP_UTF16);
ZU_EXPORT long strRightTrim(const unsigned short* text, long length, zuCPType type = ZU_CP_UTF16);
ZU_EXPORT char* strRightTrimBlanks(char* text);
ZU_EXPORT long strRightTrimBlanks(const char* text, long length);
ZU_EXPORT unsigned short* strRightTrimBlanks(unsigned short* text);
ZU_EXPORT long strRightTrimBlanks(const unsigned short* text, long length);

// 1 when the text starts with 1, T or t, or with O and N in either case.
ZU_EXPORT int isTrueStr(const char* text);
ZU_EXPORT int isTrueStr(const unsigned short* text);

#endif
