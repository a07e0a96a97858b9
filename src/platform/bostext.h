/*
 * Text helpers of the operating-system layer: the logical-line reader of
 * profile-like texts, and byte-wise case changes.
 *
 * Everything works in the caller's buffers; nothing is allocated.
 */
#ifndef HNSYB_PLATFORM_BOSTEXT_H
#define HNSYB_PLATFORM_BOSTEXT_H

#include "export.h"

// Lengths bosgetbl gives instead of a line length.
enum : unsigned short {
  BOS_LINE_END_OF_TEXT = 65535,  // NUL or byte 26 at the position
  BOS_LINE_TOO_LONG = 65534,     // the line was cut to size - 1 bytes
};

// Reads one logical line of `text` from `*position` (a 16-bit index) into
// `line` of `size` bytes, always terminated, and moves `*position` past
// its line feed.  A line feed inside single or double quotes (an outer
// quote and one inner quote of the other kind are tracked) does not end
// the line; a line that starts with ';' is kept as that ';' alone, the
// rest skipped; a carriage return before the line feed is dropped.
// `*length` gets the line's length or one of the values above, which is
// also the result.
ZU_EXPORT unsigned short bosgetbl(const char* text, unsigned short* position, char* line, unsigned short size,
                                  unsigned short* length);

// In place, byte by byte, by islower/toupper and isupper/tolower.
ZU_EXPORT void UpperText(char* text, unsigned long length);
ZU_EXPORT void LowerText(char* text, unsigned long length);

#endif
