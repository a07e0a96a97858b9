/*
 * Single DES (FIPS 46) in CBC mode.
 *
 * A DESwCBCEncryptor holds the initial value, the 16-round key schedule (two
 * 32-bit words a round, in the layout of the combined S-box and P tables)
 * and the running CBC value, `chain`, which carries over from one call to
 * the next.  The object owns no heap memory and belongs to one thread at a
 * time; the tables are shared read-only data.
 *
 * Lengths that are not a multiple of 8 are processed as if the last block
 * were padded with zero bytes; only the bytes that fit the given length are
 * written back.
 */
#ifndef HNSYB_NET_DES_H
#define HNSYB_NET_DES_H

#include <cstdint>

#include "../platform/export.h"

enum CipherDir { CipherEncrypt = 0, CipherDecrypt = 1 };

ZU_EXPORT void InitialPermutation(uint32_t& left, uint32_t& right);
ZU_EXPORT void FinalPermutation(uint32_t& left, uint32_t& right);
ZU_EXPORT void xorbuf(unsigned char* target, const unsigned char* mask, unsigned long count);

class ZU_EXPORT DESwCBCEncryptor {
public:
    DESwCBCEncryptor() = default;
    // The initial value is 8 bytes (zero when null); it also starts the chain.
    explicit DESwCBCEncryptor(const unsigned char* iv);

    // The key schedule from 8 key bytes (a shorter key is padded with zero
    // bytes); CipherDecrypt reverses it.
    void SetKeySchedule(const unsigned char* key, unsigned long length, CipherDir direction);
    void SetIV(const unsigned char* iv);

    // CBC over `length` bytes.  With `in` and `out` the same buffer each
    // block is chained from the initial value; otherwise from `chain`, which
    // stays set for the next call.
    void EncryptData(unsigned char* in, unsigned char* out, unsigned long length);
    void DecryptData(unsigned char* in, unsigned char* out, unsigned long length);
    void DecryptMoreData(unsigned char* in, unsigned char* out, unsigned long length);
    // One 8-byte block through the cipher, in place.
    void ProcessBlock(unsigned char* block) const;

    // CBC over the input from the initial value, every block written to
    // `out` (at most outLength bytes of it), so that `out` ends holding the
    // last block: a DES-CBC checksum of the input.
    void ProcessString(const unsigned char* in, unsigned long length, unsigned char* out, unsigned long outLength);
    void ProcessString(const unsigned char* in, unsigned char* out, unsigned long outLength);

private:
    unsigned char iv_[8] = {};
    uint32_t keySchedule_[32] = {};
    unsigned char chain_[8] = {};
};

#endif
