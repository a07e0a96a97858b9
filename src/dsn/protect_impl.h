/*
 * Protected values: how a password is kept in a profile file.
 *
 * A protected value is the byte 0xFF, then the ciphertext (method 3 of
 * net/textcipher.h with its built-in key) in upper-case hexadecimal, two
 * digits a byte.  Text that does not begin with 0xFF is plain and passes as
 * it is, which keeps old plain values working.  The clear length is taken
 * with strlen after deciphering, so a ciphertext byte of 0 cuts the value:
 * that is part of the format.
 *
 * Results: 0 success, 1 failure (memory error or bad hex digit 2708 on the
 * thread's list).  Strings handed out through `out` are malloc'ed and the
 * caller's.
 */
#ifndef HNSYB_DSN_PROTECT_IMPL_H
#define HNSYB_DSN_PROTECT_IMPL_H

#include <Xm/Xm.h>

#include "../platform/export.h"

constexpr unsigned char DSN_PROTECTED_MARKER = 0xFF;
// A stored value is revealed from its first DSN_REVEAL_MAX characters.
constexpr int DSN_REVEAL_BUFFER = 144;
constexpr int DSN_REVEAL_MAX = DSN_REVEAL_BUFFER - 1;

// Protects `clear` into *out.  A null or already protected `clear` succeeds
// with *out unchanged; an empty one gives an empty *out.
ZU_EXPORT int getEncryptedHexifiedValue(unsigned char* clear, unsigned char** out);
// Reveals `stored` into *out (null for a null `stored`); plain text is copied.
ZU_EXPORT int getDehexifiedDecryptedValue(unsigned char* stored, unsigned char** out);
// Reveals `stored` (its first 143 characters) into the password field
// `field`, whose modify callback keeps the clear text; empty is a no-op.
ZU_EXPORT int setDehexifiedDecryptedValue(char* stored, char* unused, Widget field);
// Protects `clear` into a node's value field (ND_VALUE_SIZE bytes, cut to
// fit); empty when `clear` is null or gives no result.
ZU_EXPORT int setEncryptedHexifiedValue(char* clear, char* nodeValue);

// Shown string of an encryption method value ("1" -> "1 - SSL Auto", ...);
// the caller frees it with XmStringFree.
ZU_EXPORT XmString decodeEncryption(const unsigned char* value);

#endif
