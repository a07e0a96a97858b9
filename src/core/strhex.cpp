#include "strhex.h"

#include "../core/errorlist.h"

namespace {
constexpr char kDigits[] = "0123456789ABCDEF";

inline int nibble(unsigned long c)
{
    if (c >= '0' && c <= '9')
        return static_cast<int>(c - '0');
    if (c >= 'A' && c <= 'F')
        return static_cast<int>(c - 'A' + 10);
    if (c >= 'a' && c <= 'f')
        return static_cast<int>(c - 'a' + 10);
    return -1;
}
inline unsigned long unitOf(char c) { return static_cast<unsigned char>(c); }
inline unsigned long unitOf(unsigned short c) { return c; }

template <typename Unit, typename Count>
Count hexBytes(Unit* target, const unsigned char* source, Count count)
{
    const auto* t = reinterpret_cast<const unsigned char*>(target);
    // A target at or above the source must be written from the end, or the
    // digits of the first bytes would overwrite bytes not yet read.
    if (t >= source && t < source + count) {
        target[2 * count] = 0;
        for (Count i = count; i > 0; --i) {
            const unsigned char byte = source[i - 1];
            target[2 * i - 1] = static_cast<Unit>(kDigits[byte & 15]);
            target[2 * i - 2] = static_cast<Unit>(kDigits[byte >> 4]);
        }
    } else {
        for (Count i = 0; i < count; ++i) {
            const unsigned char byte = source[i];
            target[2 * i] = static_cast<Unit>(kDigits[byte >> 4]);
            target[2 * i + 1] = static_cast<Unit>(kDigits[byte & 15]);
        }
        target[2 * count] = 0;
    }
    return 2 * count;
}

template <typename Unit, typename Count>
int dehex(unsigned char* target, const Unit* source, Count count)
{
    for (Count i = 0; i < count; i += 2) {
        const int high = nibble(unitOf(source[i]));
        const int low = i + 1 < count ? nibble(unitOf(source[i + 1])) : 0;
        if (high < 0 || low < 0) {
            addError(ZU_MSG_BAD_HEX_DIGIT);
            return 1;
        }
        target[i / 2] = static_cast<unsigned char>((high << 4) | low);
    }
    return 0;
}
}  // namespace

int hexify(char* target, unsigned long long value, int minimum)
{
    if (minimum > 64)
        minimum = 64;
    char digits[64];
    int n = 0;
    do {
        digits[n++] = kDigits[value & 15];
        value >>= 4;
    } while (value != 0);
    while (n < minimum)
        digits[n++] = '0';
    for (int i = 0; i < n; ++i)
        target[i] = digits[n - 1 - i];
    target[n] = 0;
    return n;
}

long hexify(char* target, const unsigned char* source, long count) { return count <= 0 ? (*target = 0, 0) : hexBytes(target, source, count); }
unsigned long long hexifyHuge(char* target, const unsigned char* source, unsigned long long count)
{
    return hexBytes(target, source, count);
}
long wideHexify(unsigned short* target, const unsigned char* source, long count)
{
    return count <= 0 ? (*target = 0, 0) : hexBytes(target, source, count);
}

int dehexify(unsigned char* target, const char* source, long count) { return dehex(target, source, count); }
int dehexifyHuge(unsigned char* target, const char* source, unsigned long long count) { return dehex(target, source, count); }
int wideDehexify(unsigned char* target, const unsigned short* source, long count) { return dehex(target, source, count); }

int dehexify(unsigned char* target, const char* source, long count, unsigned char doubleByte, long* length)
{
    long written = 0;
    for (long i = 0; i < count; i += 2) {
        const int high = nibble(unitOf(source[i]));
        const int low = i + 1 < count ? nibble(unitOf(source[i + 1])) : 0;
        if (high < 0 || low < 0) {
            addError(ZU_MSG_BAD_HEX_DIGIT);
            return 1;
        }
        const auto byte = static_cast<unsigned char>((high << 4) | low);
        target[written++] = byte;
        if (byte == doubleByte)
            target[written++] = byte;
    }
    *length = written / 4;
    return 0;
}

int isHexString(const char* text, long count)
{
    for (long i = 0; i < count; ++i)
        if (nibble(unitOf(text[i])) < 0)
            return 0;
    return 1;
}
