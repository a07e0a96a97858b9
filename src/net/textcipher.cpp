#include "textcipher.h"

#include <cstring>

namespace {

// The built-in key of method 3.
constexpr unsigned char kDefaultKey[16] = {0x5A, 0x3C, 0x96, 0xE1, 0x27, 0xB8, 0x4D, 0x72,
                                           0xC9, 0x1F, 0x83, 0x6E, 0xD5, 0x08, 0xA4, 0x3B};
constexpr unsigned kDelta = 158;  // the top byte of the published constant
constexpr int kRounds = 32;
constexpr unsigned kEndOfLine = '\n';

void makeKey(unsigned char out[16], const unsigned char* key)
{
    std::memcpy(out, kDefaultKey, 16);
    if (key != nullptr) {
        size_t n = 0;
        while (n < 15 && key[n] != 0)
            ++n;
        std::memcpy(out, key, n);
        out[n] = 0;
    }
}

// One pair of units, `mask` the width of a unit; the round sum runs
// modulo 256 whatever the width.
template <class Unit>
void encipherPair(Unit& a, Unit& b, const unsigned char k[16])
{
    constexpr unsigned mask = static_cast<Unit>(~Unit{0});
    unsigned x = a, y = b, sum = 0;
    for (int i = 0; i < kRounds; ++i) {
        sum = (sum + kDelta) & 0xFF;
        x = (x + ((((y << 4) + k[0]) ^ (y + sum) ^ ((y >> 5) + k[1])) & mask)) & mask;
        y = (y + ((((x << 4) + k[2]) ^ (sum + x) ^ ((x >> 5) + k[3])) & mask)) & mask;
    }
    a = static_cast<Unit>(x);
    b = static_cast<Unit>(y);
}

template <class Unit>
void decipherPair(Unit& a, Unit& b, const unsigned char k[16])
{
    constexpr unsigned mask = static_cast<Unit>(~Unit{0});
    unsigned x = a, y = b, sum = (kDelta * kRounds) & 0xFF;
    for (int i = 0; i < kRounds; ++i) {
        y = (y - ((((x << 4) + k[2]) ^ (sum + x) ^ ((x >> 5) + k[3])) & mask)) & mask;
        x = (x - ((((y << 4) + k[0]) ^ (y + sum) ^ ((y >> 5) + k[1])) & mask)) & mask;
        sum = (sum - kDelta) & 0xFF;
    }
    a = static_cast<Unit>(x);
    b = static_cast<Unit>(y);
}

template <class Unit>
void complement(Unit* text, unsigned long count, bool keepEndOfLine)
{
    for (unsigned long i = 0; i < count; ++i)
        if (!keepEndOfLine || text[i] != kEndOfLine)
            text[i] = static_cast<Unit>(~text[i]);
}

template <class Unit>
void transform(Unit* text, unsigned long count, unsigned short method, const unsigned char* key, bool forward)
{
    if (text == nullptr || count == 0)
        return;
    if (method == 1 || method == 2) {
        complement(text, count, method == 2);
        return;
    }
    if (method != 3)
        return;
    unsigned char k[16];
    makeKey(k, key);
    if (count == 1) {
        text[0] = static_cast<Unit>(text[0] ^ k[0]);
        return;
    }
    // Pairs from index 0; with an odd count the last unit pairs with the
    // first, which is thus touched twice.  Deciphering walks back.
    const unsigned long pairs = (count + 1) / 2;
    for (unsigned long p = 0; p < pairs; ++p) {
        const unsigned long i = 2 * (forward ? p : pairs - 1 - p);
        Unit& a = text[i];
        Unit& b = i + 1 < count ? text[i + 1] : text[0];
        if (forward)
            encipherPair(a, b, k);
        else
            decipherPair(a, b, k);
    }
}

}  // namespace

void encrypt(unsigned char* text, unsigned long count, unsigned short method, const unsigned char* key)
{
    transform(text, count, method, key, true);
}
void encrypt(unsigned short* text, unsigned long count, unsigned short method, const unsigned char* key)
{
    transform(text, count, method, key, true);
}
void decrypt(unsigned char* text, unsigned long count, unsigned short method, const unsigned char* key)
{
    transform(text, count, method, key, false);
}
void decrypt(unsigned short* text, unsigned long count, unsigned short method, const unsigned char* key)
{
    transform(text, count, method, key, false);
}
