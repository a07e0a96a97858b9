/*
 * MD5 (RFC 1321) of a message given by its length in bits.
 *
 * `data` points at the message's bytes (read as they lie in memory; the
 * pointer is to 32-bit words only by tradition), `bitCount` is its length in
 * bits, so a message need not end on a byte boundary: a final partial byte
 * contributes its top bits, and the padding 1 bit follows them directly.
 * The 16-byte digest is written to `digest` in the standard byte order.
 * Nothing is allocated; the function is reentrant.
 */
#ifndef HNSYB_NET_MD5_H
#define HNSYB_NET_MD5_H

#include <cstdint>

#include "../platform/export.h"

ZU_EXPORT void MD5(const uint32_t* data, unsigned long bitCount, uint32_t* digest);
ZU_EXPORT uint32_t leftRotate(uint32_t value, unsigned char count);

#endif
