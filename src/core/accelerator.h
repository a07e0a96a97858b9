/*
 * Menu and dialog accelerators.
 *
 * A label marks its accelerator key with a marker character placed before
 * the key (for example "&Save").  The marker characters are the text of
 * message 21800 of the library's catalog; the first of them found in a
 * label is its marker.  A bitmap of 256 bits (32 bytes, one bit per
 * lower-cased character) records the keys already taken in one dialog, so
 * that makeDialogText gives each label a key of its own.  Nothing here
 * allocates; buffers are the caller's.
 */
#ifndef HNSYB_CORE_ACCELERATOR_H
#define HNSYB_CORE_ACCELERATOR_H

#include "../platform/export.h"

constexpr unsigned short ZU_MSG_ACCELERATOR_MARKERS = 21800;

// The first occurrence of the first marker that occurs in `text`, or null.
ZU_EXPORT const char* findMenuAccelerator(const char* text);
// Sets the bit of the lower-cased character after the marker of `text`.
ZU_EXPORT void setAcceleratorKey(unsigned char* bitmap, const char* text);
// Formats `format` in place (of `size` bytes) with the parameters when
// `parameter` is given; gives the text a marker before the first non-blank
// character whose key is still free (or at the start when all are taken)
// unless it has one; records the key.  Returns `format`.
ZU_EXPORT char* makeDialogText(unsigned char* bitmap, char* format, const char* parameter, const char* second,
                               unsigned long size);
// Copies the marker characters into `buffer` (at least 64 bytes).
ZU_EXPORT char* getMenuAccelerator(char* buffer);

#endif
