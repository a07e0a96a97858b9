/*
 * Value conversions: integers to decimal text and decimal text to integers,
 * in 8-bit text (unsigned char) and 16-bit text (unsigned short), with
 * convertUTF16Swap for 16-bit text of the other byte order.
 *
 * Writing.  The forms without a size write into a buffer taken to hold 32
 * characters (a 64-bit value needs at most 20 digits, a sign and the
 * terminator), terminate it and return the length.  The forms with a size
 * write no terminator and return the count of characters written, sign
 * included; 0 means the buffer was too small, and then nothing at all was
 * written.  The fixed-width form is described at its declaration.
 *
 * Parsing.  Every parse returns 0 and stores the value, or returns 1, leaves
 * the out-argument alone and adds error 2701 (value out of range) or 2702
 * (invalid character) with the text to the thread's error list.  The text
 * is: blanks and '+' signs in any mix, decimal digits, blanks, the end.  An
 * empty text, or one of blanks only, is 0.  The signed forms accept blanks
 * and one '-' before that.  A text with a length ends at the length or at a
 * NUL before it, whichever comes first.
 *
 * Nothing here depends on the locale, allocates, or keeps state: the blanks
 * are the six ASCII ones (space, tab, line feed, vertical tab, form feed,
 * carriage return).  Widths are this platform's: long and unsigned long
 * have 64 bits here, so their forms accept the full 64-bit range.
 */
#ifndef HNSYB_CONVERSION_CONVERT_H
#define HNSYB_CONVERSION_CONVERT_H

#include "../platform/export.h"

// Message numbers of the parse errors.
constexpr unsigned short ZU_MSG_VALUE_OUT_OF_RANGE = 2701;
constexpr unsigned short ZU_MSG_INVALID_CHARACTER = 2702;

// ---------------------------------------------------------------------------
// Integer to text

// Into a buffer of 32 characters, terminated; the length.
ZU_EXPORT int convert(unsigned char* text, unsigned long long value);
ZU_EXPORT int convert(unsigned char* text, long long value);
ZU_EXPORT int convert(unsigned short* text, unsigned long long value);
ZU_EXPORT int convert(unsigned short* text, long long value);
ZU_EXPORT int convert(unsigned short* text, unsigned long value);
ZU_EXPORT int convert(unsigned short* text, long value);

// Into `size` characters, not terminated; the count written, or 0 (nothing
// written) when it does not fit.  A negative value needs room for its '-'.
ZU_EXPORT int convert(unsigned char* text, unsigned long size, unsigned long long value);
ZU_EXPORT int convert(unsigned char* text, unsigned long size, long long value);
ZU_EXPORT int convert(unsigned short* text, unsigned long size, unsigned long long value);
ZU_EXPORT int convert(unsigned short* text, unsigned long size, long long value);
ZU_EXPORT int convert(unsigned short* text, unsigned long size, unsigned long value);
ZU_EXPORT int convert(unsigned short* text, unsigned long size, long value);
// The same, each 16-bit character with its two bytes swapped.
ZU_EXPORT int convertUTF16Swap(unsigned short* text, unsigned long size, unsigned long long value);
ZU_EXPORT int convertUTF16Swap(unsigned short* text, unsigned long size, long long value);
ZU_EXPORT int convertUTF16Swap(unsigned short* text, unsigned long size, unsigned long value);
ZU_EXPORT int convertUTF16Swap(unsigned short* text, unsigned long size, long value);

// Fixed-width field: `width` blanks and a terminator behind them (the buffer
// holds width + 1 characters).  At most 10 positions take digits: the last
// 10 of a wider field, or the first 10 with leftAlign set.  Digits go from
// the highest power of ten the digit positions allow down to 1; a leading
// zero is a blank (leftAlign 0) or takes no position (leftAlign set), so 0
// leaves the field blank.  The digit count, or 0 when the value has more
// digits than the positions: the positions not yet written are then '*'.
// A negative value has no digits that a field of digit positions can show,
// and is treated as too large.
ZU_EXPORT int convert(unsigned char* text, unsigned short width, unsigned long long value,
                      unsigned short leftAlign);
ZU_EXPORT int convert(unsigned char* text, unsigned short width, long long value, unsigned short leftAlign);

// ---------------------------------------------------------------------------
// Text to integer: 0, or 1 with error 2701 or 2702

ZU_EXPORT int convert(const unsigned char* text, unsigned long long* value);
ZU_EXPORT int convert(const unsigned char* text, long long* value);
ZU_EXPORT int convert(const unsigned char* text, unsigned long* value);
ZU_EXPORT int convert(const unsigned char* text, long* value);
ZU_EXPORT int convert(const unsigned char* text, unsigned short* value);
ZU_EXPORT int convert(const unsigned char* text, short* value);
ZU_EXPORT int convert(const unsigned char* text, unsigned char* value);
ZU_EXPORT int convert(const unsigned char* text, char* value);

ZU_EXPORT int convert(const unsigned char* text, unsigned short length, unsigned long long* value);
ZU_EXPORT int convert(const unsigned char* text, unsigned short length, long long* value);
ZU_EXPORT int convert(const unsigned char* text, unsigned short length, unsigned long* value);
ZU_EXPORT int convert(const unsigned char* text, unsigned short length, long* value);
ZU_EXPORT int convert(const unsigned char* text, unsigned short length, unsigned short* value);
ZU_EXPORT int convert(const unsigned char* text, unsigned short length, short* value);

ZU_EXPORT int convert(const unsigned short* text, unsigned long long* value);
ZU_EXPORT int convert(const unsigned short* text, long long* value);
ZU_EXPORT int convert(const unsigned short* text, unsigned long* value);
ZU_EXPORT int convert(const unsigned short* text, long* value);
ZU_EXPORT int convert(const unsigned short* text, unsigned short* value);

ZU_EXPORT int convert(const unsigned short* text, unsigned long length, unsigned long long* value);
ZU_EXPORT int convert(const unsigned short* text, unsigned long length, long long* value);
ZU_EXPORT int convert(const unsigned short* text, unsigned long length, unsigned long* value);
ZU_EXPORT int convert(const unsigned short* text, unsigned long length, long* value);
ZU_EXPORT int convert(const unsigned short* text, unsigned long length, unsigned short* value);

#endif
