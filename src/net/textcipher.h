/*
 * encrypt / decrypt: the protection of stored text values.
 *
 * method 1 complements every unit; method 2 does the same but leaves the
 * end-of-line character alone, so that line structure survives (a unit
 * 0xF5 (0xFFF5) therefore does not come back: its complement is the end of
 * line); method 3 is a keyed transformation, 32 rounds of the Tiny
 * Encryption Algorithm narrowed to 8-bit arithmetic on pairs of units; any
 * other method changes nothing.  decrypt is the exact inverse.
 *
 * The key of method 3 is a built-in 16-byte default, whose start the
 * caller's key (up to 15 characters) may replace.  Everything works in
 * place; nothing is allocated or reported.
 */
#ifndef HNSYB_NET_TEXTCIPHER_H
#define HNSYB_NET_TEXTCIPHER_H

#include "../platform/export.h"

ZU_EXPORT void encrypt(unsigned char* text, unsigned long count, unsigned short method, const unsigned char* key);
ZU_EXPORT void encrypt(unsigned short* text, unsigned long count, unsigned short method, const unsigned char* key);
ZU_EXPORT void decrypt(unsigned char* text, unsigned long count, unsigned short method, const unsigned char* key);
ZU_EXPORT void decrypt(unsigned short* text, unsigned long count, unsigned short method, const unsigned char* key);

#endif
