// DES after FIPS 46.  The round function works from eight combined tables,
// each an S-box with the P permutation folded in, indexed by the 6-bit
// windows of the half block.  The halves are kept rotated left by one bit
// during the rounds, so that each window is a byte-aligned 6-bit field:
// rotated right by 4 for S-boxes 1, 3, 5, 7, as they are for 2, 4, 6, 8.
#include "des.h"

#include <array>
#include <cstring>

namespace {

constexpr uint8_t kSBox[8][64] = {
    {14, 4, 13, 1, 2, 15, 11, 8, 3, 10, 6, 12, 5, 9, 0, 7, 0, 15, 7, 4, 14, 2, 13, 1, 10, 6, 12, 11, 9, 5, 3, 8,
     4, 1, 14, 8, 13, 6, 2, 11, 15, 12, 9, 7, 3, 10, 5, 0, 15, 12, 8, 2, 4, 9, 1, 7, 5, 11, 3, 14, 10, 0, 6, 13},
    {15, 1, 8, 14, 6, 11, 3, 4, 9, 7, 2, 13, 12, 0, 5, 10, 3, 13, 4, 7, 15, 2, 8, 14, 12, 0, 1, 10, 6, 9, 11, 5,
     0, 14, 7, 11, 10, 4, 13, 1, 5, 8, 12, 6, 9, 3, 2, 15, 13, 8, 10, 1, 3, 15, 4, 2, 11, 6, 7, 12, 0, 5, 14, 9},
    {10, 0, 9, 14, 6, 3, 15, 5, 1, 13, 12, 7, 11, 4, 2, 8, 13, 7, 0, 9, 3, 4, 6, 10, 2, 8, 5, 14, 12, 11, 15, 1,
     13, 6, 4, 9, 8, 15, 3, 0, 11, 1, 2, 12, 5, 10, 14, 7, 1, 10, 13, 0, 6, 9, 8, 7, 4, 15, 14, 3, 11, 5, 2, 12},
    {7, 13, 14, 3, 0, 6, 9, 10, 1, 2, 8, 5, 11, 12, 4, 15, 13, 8, 11, 5, 6, 15, 0, 3, 4, 7, 2, 12, 1, 10, 14, 9,
     10, 6, 9, 0, 12, 11, 7, 13, 15, 1, 3, 14, 5, 2, 8, 4, 3, 15, 0, 6, 10, 1, 13, 8, 9, 4, 5, 11, 12, 7, 2, 14},
    {2, 12, 4, 1, 7, 10, 11, 6, 8, 5, 3, 15, 13, 0, 14, 9, 14, 11, 2, 12, 4, 7, 13, 1, 5, 0, 15, 10, 3, 9, 8, 6,
     4, 2, 1, 11, 10, 13, 7, 8, 15, 9, 12, 5, 6, 3, 0, 14, 11, 8, 12, 7, 1, 14, 2, 13, 6, 15, 0, 9, 10, 4, 5, 3},
    {12, 1, 10, 15, 9, 2, 6, 8, 0, 13, 3, 4, 14, 7, 5, 11, 10, 15, 4, 2, 7, 12, 9, 5, 6, 1, 13, 14, 0, 11, 3, 8,
     9, 14, 15, 5, 2, 8, 12, 3, 7, 0, 4, 10, 1, 13, 11, 6, 4, 3, 2, 12, 9, 5, 15, 10, 11, 14, 1, 7, 6, 0, 8, 13},
    {4, 11, 2, 14, 15, 0, 8, 13, 3, 12, 9, 7, 5, 10, 6, 1, 13, 0, 11, 7, 4, 9, 1, 10, 14, 3, 5, 12, 2, 15, 8, 6,
     1, 4, 11, 13, 12, 3, 7, 14, 10, 15, 6, 8, 0, 5, 9, 2, 6, 11, 13, 8, 1, 4, 10, 7, 9, 5, 0, 15, 14, 2, 3, 12},
    {13, 2, 8, 4, 6, 15, 11, 1, 10, 9, 3, 14, 5, 0, 12, 7, 1, 15, 13, 8, 10, 3, 7, 4, 12, 5, 6, 11, 0, 14, 9, 2,
     7, 11, 4, 1, 9, 12, 14, 2, 0, 6, 10, 13, 15, 3, 5, 8, 2, 1, 14, 7, 4, 10, 8, 13, 15, 12, 9, 0, 3, 5, 6, 11}};

constexpr uint8_t kP[32] = {16, 7, 20, 21, 29, 12, 28, 17, 1,  15, 23, 26, 5,  18, 31, 10,
                            2,  8, 24, 14, 32, 27, 3,  9,  19, 13, 30, 6,  22, 11, 4,  25};
constexpr uint8_t kPC1[56] = {57, 49, 41, 33, 25, 17, 9,  1,  58, 50, 42, 34, 26, 18, 10, 2,  59, 51, 43,
                              35, 27, 19, 11, 3,  60, 52, 44, 36, 63, 55, 47, 39, 31, 23, 15, 7,  62, 54,
                              46, 38, 30, 22, 14, 6,  61, 53, 45, 37, 29, 21, 13, 5,  28, 20, 12, 4};
constexpr uint8_t kPC2[48] = {14, 17, 11, 24, 1,  5,  3,  28, 15, 6,  21, 10, 23, 19, 12, 4,
                              26, 8,  16, 7,  27, 20, 13, 2,  41, 52, 31, 37, 47, 55, 30, 40,
                              51, 45, 33, 48, 44, 49, 39, 56, 34, 53, 46, 42, 50, 36, 29, 32};
constexpr uint8_t kShifts[16] = {1, 1, 2, 2, 2, 2, 2, 2, 1, 2, 2, 2, 2, 2, 2, 1};

constexpr uint32_t rotl(uint32_t v, int n) { return (v << n) | (v >> (32 - n)); }
constexpr uint32_t rotr(uint32_t v, int n) { return (v >> n) | (v << (32 - n)); }

// table[n][window]: S-box n + 1 on a 6-bit window (bits in E order, the
// first the most significant), placed, permuted by P, rotated left by one.
constexpr std::array<std::array<uint32_t, 64>, 8> makeSP()
{
    std::array<std::array<uint32_t, 64>, 8> sp{};
    for (int n = 0; n < 8; ++n) {
        for (int w = 0; w < 64; ++w) {
            const int row = ((w >> 4) & 2) | (w & 1);
            const int col = (w >> 1) & 15;
            const uint32_t s = static_cast<uint32_t>(kSBox[n][row * 16 + col]) << (28 - 4 * n);
            uint32_t p = 0;
            for (int i = 0; i < 32; ++i)  // bit i + 1 of the result is bit kP[i] of s (1 = most significant)
                if ((s >> (32 - kP[i])) & 1)
                    p |= 1u << (31 - i);
            sp[n][w] = rotl(p, 1);
        }
    }
    return sp;
}
constexpr auto kSP = makeSP();

}  // namespace

void InitialPermutation(uint32_t& left, uint32_t& right)
{
    uint32_t work = ((left >> 4) ^ right) & 0x0F0F0F0Fu;
    right ^= work;
    left ^= work << 4;
    work = ((left >> 16) ^ right) & 0x0000FFFFu;
    right ^= work;
    left ^= work << 16;
    work = ((right >> 2) ^ left) & 0x33333333u;
    left ^= work;
    right ^= work << 2;
    work = ((right >> 8) ^ left) & 0x00FF00FFu;
    left ^= work;
    right ^= work << 8;
    right = rotl(right, 1);
    work = (left ^ right) & 0xAAAAAAAAu;
    left ^= work;
    right ^= work;
    left = rotl(left, 1);
}

void FinalPermutation(uint32_t& left, uint32_t& right)
{
    right = rotr(right, 1);
    uint32_t work = (left ^ right) & 0xAAAAAAAAu;
    left ^= work;
    right ^= work;
    left = rotr(left, 1);
    work = ((left >> 8) ^ right) & 0x00FF00FFu;
    right ^= work;
    left ^= work << 8;
    work = ((left >> 2) ^ right) & 0x33333333u;
    right ^= work;
    left ^= work << 2;
    work = ((right >> 16) ^ left) & 0x0000FFFFu;
    left ^= work;
    right ^= work << 16;
    work = ((right >> 4) ^ left) & 0x0F0F0F0Fu;
    left ^= work;
    right ^= work << 4;
}

void xorbuf(unsigned char* target, const unsigned char* mask, unsigned long count)
{
    for (unsigned long i = 0; i < count; ++i)
        target[i] ^= mask[i];
}

DESwCBCEncryptor::DESwCBCEncryptor(const unsigned char* iv) { SetIV(iv); }

void DESwCBCEncryptor::SetIV(const unsigned char* iv)
{
    if (iv != nullptr)
        std::memcpy(iv_, iv, 8);
    else
        std::memset(iv_, 0, 8);
    std::memcpy(chain_, iv_, 8);
}

void DESwCBCEncryptor::SetKeySchedule(const unsigned char* key, unsigned long length, CipherDir direction)
{
    unsigned char k[8] = {};
    std::memcpy(k, key, length < 8 ? length : 8);
    auto keyBit = [&](int n) { return (k[(n - 1) / 8] >> (7 - (n - 1) % 8)) & 1; };  // n: 1 = first, most significant
    uint8_t cd[56];
    for (int i = 0; i < 56; ++i)
        cd[i] = static_cast<uint8_t>(keyBit(kPC1[i]));
    uint32_t rounds[16][2];
    for (int r = 0; r < 16; ++r) {
        for (int s = 0; s < kShifts[r]; ++s) {  // rotate C (0..27) and D (28..55) left
            const uint8_t c0 = cd[0], d0 = cd[28];
            std::memmove(cd, cd + 1, 27);
            cd[27] = c0;
            std::memmove(cd + 28, cd + 29, 27);
            cd[55] = d0;
        }
        uint32_t six[8] = {};
        for (int i = 0; i < 48; ++i)
            six[i / 6] = (six[i / 6] << 1) | cd[kPC2[i] - 1];
        rounds[r][0] = six[0] << 24 | six[2] << 16 | six[4] << 8 | six[6];
        rounds[r][1] = six[1] << 24 | six[3] << 16 | six[5] << 8 | six[7];
    }
    for (int r = 0; r < 16; ++r) {
        const int from = direction == CipherDecrypt ? 15 - r : r;
        keySchedule_[2 * r] = rounds[from][0];
        keySchedule_[2 * r + 1] = rounds[from][1];
    }
}

void DESwCBCEncryptor::ProcessBlock(unsigned char* block) const
{
    uint32_t left = static_cast<uint32_t>(block[0]) << 24 | static_cast<uint32_t>(block[1]) << 16 |
                    static_cast<uint32_t>(block[2]) << 8 | block[3];
    uint32_t right = static_cast<uint32_t>(block[4]) << 24 | static_cast<uint32_t>(block[5]) << 16 |
                     static_cast<uint32_t>(block[6]) << 8 | block[7];
    InitialPermutation(left, right);
    const uint32_t* k = keySchedule_;
    auto f = [&](uint32_t half, const uint32_t* key) {
        uint32_t w = rotr(half, 4) ^ key[0];
        uint32_t v = kSP[6][w & 63] | kSP[4][(w >> 8) & 63] | kSP[2][(w >> 16) & 63] | kSP[0][(w >> 24) & 63];
        w = half ^ key[1];
        v |= kSP[7][w & 63] | kSP[5][(w >> 8) & 63] | kSP[3][(w >> 16) & 63] | kSP[1][(w >> 24) & 63];
        return v;
    };
    for (int round = 0; round < 8; ++round, k += 4) {
        left ^= f(right, k);
        right ^= f(left, k + 2);
    }
    // The halves come out swapped.
    FinalPermutation(left, right);
    const uint32_t out[2] = {right, left};
    for (int i = 0; i < 2; ++i)
        for (int b = 0; b < 4; ++b)
            block[4 * i + b] = static_cast<unsigned char>(out[i] >> (24 - 8 * b));
}

namespace {
// The block at `offset` of a buffer of `length`, padded with zero bytes.
void loadBlock(unsigned char block[8], const unsigned char* data, unsigned long offset, unsigned long length)
{
    const unsigned long n = length - offset < 8 ? length - offset : 8;
    std::memset(block, 0, 8);
    std::memcpy(block, data + offset, n);
}
void storeBlock(unsigned char* data, unsigned long offset, unsigned long length, const unsigned char block[8])
{
    const unsigned long n = length - offset < 8 ? length - offset : 8;
    std::memcpy(data + offset, block, n);
}
}  // namespace

void DESwCBCEncryptor::EncryptData(unsigned char* in, unsigned char* out, unsigned long length)
{
    if (length == 0)
        return;
    const unsigned long blocks = (length - 1) / 8 + 1;
    unsigned char running[8];
    unsigned char* value = in == out ? running : chain_;
    if (in == out)
        std::memcpy(running, iv_, 8);
    for (unsigned long b = 0; b < blocks; ++b) {
        unsigned char block[8];
        loadBlock(block, in, 8 * b, length);
        xorbuf(block, value, 8);
        ProcessBlock(block);
        std::memcpy(value, block, 8);
        storeBlock(out, 8 * b, length, block);
    }
}

void DESwCBCEncryptor::DecryptData(unsigned char* in, unsigned char* out, unsigned long length)
{
    if (length == 0)
        return;
    const unsigned long blocks = (length - 1) / 8 + 1;
    for (unsigned long b = 0; b < blocks; ++b) {
        unsigned char cipher[8], block[8];
        loadBlock(cipher, in, 8 * b, length);
        std::memcpy(block, cipher, 8);
        ProcessBlock(block);
        xorbuf(block, chain_, 8);
        std::memcpy(chain_, cipher, 8);
        storeBlock(out, 8 * b, length, block);
    }
}

void DESwCBCEncryptor::DecryptMoreData(unsigned char* in, unsigned char* out, unsigned long length)
{
    DecryptData(in, out, length);
}

void DESwCBCEncryptor::ProcessString(const unsigned char* in, unsigned long length, unsigned char* out,
                                     unsigned long outLength)
{
    unsigned char value[8];
    std::memcpy(value, iv_, 8);
    const unsigned long blocks = length == 0 ? 0 : (length - 1) / 8 + 1;
    for (unsigned long b = 0; b < blocks; ++b) {
        unsigned char block[8];
        loadBlock(block, in, 8 * b, length);
        xorbuf(block, value, 8);
        ProcessBlock(block);
        std::memcpy(value, block, 8);
        std::memcpy(out, block, outLength < 8 ? outLength : 8);
    }
}

void DESwCBCEncryptor::ProcessString(const unsigned char* in, unsigned char* out, unsigned long outLength)
{
    ProcessString(in, std::strlen(reinterpret_cast<const char*>(in)), out, outLength);
}
