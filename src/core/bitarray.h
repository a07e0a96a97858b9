/*
 * ZuBitArray: a fixed number of bits in bytes owned by the object.
 * A failed allocation leaves an array of 0 bits (memory error reported).
 */
#ifndef HNSYB_CORE_BITARRAY_H
#define HNSYB_CORE_BITARRAY_H

#include "object.h"

class ZU_EXPORT ZuBitArray : public ZuObject {
public:
    explicit ZuBitArray(unsigned bits);
    ~ZuBitArray() override;
    ZuBitArray(const ZuBitArray&) = delete;
    ZuBitArray& operator=(const ZuBitArray&) = delete;

    unsigned size() const { return bits_; }
    // Bits outside the array read as 0 and ignore writes.
    int test(unsigned bit) const { return bit < bits_ ? (bytes_[bit >> 3] >> (bit & 7)) & 1 : 0; }
    void set(unsigned bit) { if (bit < bits_) bytes_[bit >> 3] |= static_cast<unsigned char>(1u << (bit & 7)); }
    void clear(unsigned bit) { if (bit < bits_) bytes_[bit >> 3] &= static_cast<unsigned char>(~(1u << (bit & 7))); }

private:
    unsigned bits_ = 0;
    unsigned char* bytes_ = nullptr;
};

#endif
