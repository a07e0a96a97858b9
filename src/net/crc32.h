/*
 * CRC-32 of IEEE 802.3 (reflected polynomial 0xEDB88320).
 *
 * updateCRC32 runs the register over more data; the caller starts it with
 * 0xFFFFFFFF and inverts the final value, so that a message can be fed in
 * pieces.  The table is constant data; nothing is allocated.
 */
#ifndef HNSYB_NET_CRC32_H
#define HNSYB_NET_CRC32_H

#include <cstdint>

#include "../platform/export.h"

ZU_EXPORT extern const uint32_t CRC32Table[256];

ZU_EXPORT unsigned long updateCRC32(unsigned long crc, const unsigned char* data, unsigned long length);

#endif
