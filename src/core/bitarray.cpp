#include "bitarray.h"

#include <cstring>

#include "../platform/ram.h"

ZuBitArray::ZuBitArray(unsigned bits)
{
    const size_t size = (static_cast<size_t>(bits) + 7) / 8;
    bytes_ = static_cast<unsigned char*>(ramAllocC(size));
    if (bytes_ != nullptr) {
        std::memset(bytes_, 0, size);
        bits_ = bits;
    }
}

ZuBitArray::~ZuBitArray() { ramFreeC(bytes_); }
