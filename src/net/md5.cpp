#include "md5.h"

#include <cstring>

namespace {
constexpr uint32_t kShift[64] = {7, 12, 17, 22, 7, 12, 17, 22, 7, 12, 17, 22, 7, 12, 17, 22,
                                 5, 9,  14, 20, 5, 9,  14, 20, 5, 9,  14, 20, 5, 9,  14, 20,
                                 4, 11, 16, 23, 4, 11, 16, 23, 4, 11, 16, 23, 4, 11, 16, 23,
                                 6, 10, 15, 21, 6, 10, 15, 21, 6, 10, 15, 21, 6, 10, 15, 21};
// floor(abs(sin(i + 1)) * 2^32)
constexpr uint32_t kSine[64] = {
    0xd76aa478, 0xe8c7b756, 0x242070db, 0xc1bdceee, 0xf57c0faf, 0x4787c62a, 0xa8304613, 0xfd469501,
    0x698098d8, 0x8b44f7af, 0xffff5bb1, 0x895cd7be, 0x6b901122, 0xfd987193, 0xa679438e, 0x49b40821,
    0xf61e2562, 0xc040b340, 0x265e5a51, 0xe9b6c7aa, 0xd62f105d, 0x02441453, 0xd8a1e681, 0xe7d3fbc8,
    0x21e1cde6, 0xc33707d6, 0xf4d50d87, 0x455a14ed, 0xa9e3e905, 0xfcefa3f8, 0x676f02d9, 0x8d2a4c8a,
    0xfffa3942, 0x8771f681, 0x6d9d6122, 0xfde5380c, 0xa4beea44, 0x4bdecfa9, 0xf6bb4b60, 0xbebfbc70,
    0x289b7ec6, 0xeaa127fa, 0xd4ef3085, 0x04881d05, 0xd9d4d039, 0xe6db99e5, 0x1fa27cf8, 0xc4ac5665,
    0xf4292244, 0x432aff97, 0xab9423a7, 0xfc93a039, 0x655b59c3, 0x8f0ccc92, 0xffeff47d, 0x85845dd1,
    0x6fa87e4f, 0xfe2ce6e0, 0xa3014314, 0x4e0811a1, 0xf7537e82, 0xbd3af235, 0x2ad7d2bb, 0xeb86d391};

void compress(uint32_t state[4], const unsigned char block[64])
{
    uint32_t m[16];
    for (int i = 0; i < 16; ++i)
        m[i] = static_cast<uint32_t>(block[4 * i]) | static_cast<uint32_t>(block[4 * i + 1]) << 8 |
               static_cast<uint32_t>(block[4 * i + 2]) << 16 | static_cast<uint32_t>(block[4 * i + 3]) << 24;
    uint32_t a = state[0], b = state[1], c = state[2], d = state[3];
    for (int i = 0; i < 64; ++i) {
        uint32_t f;
        int g;
        if (i < 16) {
            f = (b & c) | (~b & d);
            g = i;
        } else if (i < 32) {
            f = (d & b) | (~d & c);
            g = (5 * i + 1) % 16;
        } else if (i < 48) {
            f = b ^ c ^ d;
            g = (3 * i + 5) % 16;
        } else {
            f = c ^ (b | ~d);
            g = (7 * i) % 16;
        }
        const uint32_t t = d;
        d = c;
        c = b;
        b = b + leftRotate(a + f + kSine[i] + m[g], static_cast<unsigned char>(kShift[i]));
        a = t;
    }
    state[0] += a;
    state[1] += b;
    state[2] += c;
    state[3] += d;
}
}  // namespace

uint32_t leftRotate(uint32_t value, unsigned char count)
{
    count &= 31;
    return count == 0 ? value : (value << count) | (value >> (32 - count));
}

void MD5(const uint32_t* data, unsigned long bitCount, uint32_t* digest)
{
    uint32_t state[4] = {0x67452301, 0xefcdab89, 0x98badcfe, 0x10325476};
    const auto* bytes = reinterpret_cast<const unsigned char*>(data);
    const unsigned long whole = bitCount / 8;
    unsigned long done = 0;
    for (; done + 64 <= whole; done += 64)
        compress(state, bytes + done);

    // The tail: the remaining whole bytes, the partial byte's top bits with
    // the 1 bit right behind them, zeros, and the bit length.
    unsigned char tail[128] = {};
    const unsigned long rest = whole - done;
    if (rest > 0)
        std::memcpy(tail, bytes + done, rest);
    const unsigned bits = static_cast<unsigned>(bitCount % 8);
    const unsigned char partial = bits != 0 ? static_cast<unsigned char>(bytes[whole] & (0xFF00u >> bits)) : 0;
    tail[rest] = static_cast<unsigned char>(partial | (0x80u >> bits));
    const unsigned long tailSize = rest + 1 + 8 <= 64 ? 64 : 128;
    const uint64_t length = bitCount;
    for (int i = 0; i < 8; ++i)
        tail[tailSize - 8 + i] = static_cast<unsigned char>(length >> (8 * i));
    compress(state, tail);
    if (tailSize == 128)
        compress(state, tail + 64);

    auto* out = reinterpret_cast<unsigned char*>(digest);
    for (int i = 0; i < 4; ++i)
        for (int k = 0; k < 4; ++k)
            out[4 * i + k] = static_cast<unsigned char>(state[i] >> (8 * k));
}
