/*
 * buttoken: the general tokenizer of the library's small languages (SQL
 * dialects, attribute lists, dotted names).
 *
 * One call skips white space and moves the next token of *text into the
 * caller's `token` buffer of `size` units (bytes), terminated, and leaves
 * *text behind it; at the end of the text the token is empty.  The low 12
 * bits of `flags` choose the dialect mode (1 to 6), which decides what a
 * word may hold.  The narrow form walks by characters of the given zuCPType,
 * so a trail byte is never taken for a delimiter.  Nothing is written at or
 * past token[size - 1] but the terminator, and nothing is read past the
 * text's terminator.  With ZU_TOKEN_GROW a token too long moves to a new
 * block (ramAllocC) that then belongs to the caller.  Results 0 or 1; the
 * failures add error 2700 (too long) or 2703 (open quote or brace).
 */
#ifndef HNSYB_CORE_STRTOKEN_H
#define HNSYB_CORE_STRTOKEN_H

#include "../encoding/cptype.h"
#include "../platform/export.h"

constexpr int ZU_TOKEN_MODE_MASK = 0x0FFF;
// A token too long ends silently where the buffer ends (the rest stays in
// the text for the next call).
constexpr int ZU_TOKEN_CUT = 0x8000;
// A token too long moves to a new heap block of (rest of the text) + size
// + 1 units: token[0] keeps the first unit, token[1] is 0, and the block's
// address is stored (unaligned, as its bytes) from token + 2, which needs a
// size of at least 2 + the bytes of a pointer.
constexpr int ZU_TOKEN_GROW = 0x4000;
// Keeps the case; without it a word token is upper-cased by strUpper.
constexpr int ZU_TOKEN_KEEP_CASE = 0x2000;

constexpr unsigned short ZU_MSG_TOKEN_TOO_LONG = 2700;
constexpr unsigned short ZU_MSG_TOKEN_UNCLOSED = 2703;

ZU_EXPORT int buttoken(char* token, const char** text, int flags, long size, zuCPType type);
ZU_EXPORT int buttoken(char* token, char** text, int flags, long size, zuCPType type);
ZU_EXPORT int buttoken(unsigned short* token, const unsigned short** text, int flags, long size,
                       zuCPType type = ZU_CP_UTF16);
ZU_EXPORT int buttoken(unsigned short* token, unsigned short** text, int flags, long size, zuCPType type = ZU_CP_UTF16);

#endif
