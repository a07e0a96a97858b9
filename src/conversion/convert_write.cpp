// Integers to decimal text (convert.h).
//
// The digit count comes first, so that a buffer that is too small is found
// before anything is written.  Values below 2^32 are written with 32-bit
// arithmetic; larger ones are split by 1,000,000,000 into groups of nine
// digits, each written with 32-bit arithmetic as well.
#include "convert.h"

#include <cstdint>

namespace {

constexpr uint64_t kPowers[20] = {
    1ull,
    10ull,
    100ull,
    1000ull,
    10000ull,
    100000ull,
    1000000ull,
    10000000ull,
    100000000ull,
    1000000000ull,
    10000000000ull,
    100000000000ull,
    1000000000000ull,
    10000000000000ull,
    100000000000000ull,
    1000000000000000ull,
    10000000000000000ull,
    100000000000000000ull,
    1000000000000000000ull,
    10000000000000000000ull,
};

unsigned digitCount32(uint32_t value)
{
    unsigned n = 1;
    while (n < 10 && value >= kPowers[n])
        ++n;
    return n;
}

unsigned digitCount(uint64_t value)
{
    if (value <= UINT32_MAX)
        return digitCount32(static_cast<uint32_t>(value));
    // At least 10 digits: compare with 10^10 .. 10^19.
    unsigned n = 10;
    while (n < 20 && value >= kPowers[n])
        ++n;
    return n;
}

unsigned short swapUnit(unsigned short unit) { return static_cast<unsigned short>((unit << 8) | (unit >> 8)); }

template <class Unit>
Unit digitUnit(unsigned digit, bool swap)
{
    const unsigned short unit = static_cast<unsigned short>('0' + digit);
    if constexpr (sizeof(Unit) == 2)
        return swap ? swapUnit(unit) : unit;
    else
        return static_cast<Unit>(unit);
}

// Writes exactly `count` digits of a value below 10^count (leading zeros
// included) backwards from out + count.
template <class Unit>
void writeGroup(Unit* out, unsigned count, uint32_t value, bool swap)
{
    for (unsigned i = count; i > 0; --i) {
        out[i - 1] = digitUnit<Unit>(value % 10, swap);
        value /= 10;
    }
}

// The digits of value into out (not terminated); their count.
template <class Unit>
unsigned writeDigits(Unit* out, uint64_t value, unsigned count, bool swap)
{
    if (value <= UINT32_MAX) {
        writeGroup(out, count, static_cast<uint32_t>(value), swap);
        return count;
    }
    // Groups of nine from the right; the first group takes what is left.
    unsigned end = count;
    while (end > 9) {
        writeGroup(out + end - 9, 9, static_cast<uint32_t>(value % 1000000000u), swap);
        value /= 1000000000u;
        end -= 9;
    }
    writeGroup(out, end, static_cast<uint32_t>(value), swap);
    return count;
}

template <class Unit>
int writeSized(Unit* text, unsigned long size, uint64_t magnitude, bool negative, bool swap)
{
    const unsigned digits = digitCount(magnitude);
    const unsigned long needed = digits + (negative ? 1u : 0u);
    if (text == nullptr || needed > size)
        return 0;
    Unit* out = text;
    if (negative)
        *out++ = static_cast<Unit>(sizeof(Unit) == 2 && swap ? swapUnit('-') : '-');
    writeDigits(out, magnitude, digits, swap);
    return static_cast<int>(needed);
}

// 32 characters always hold 20 digits, a sign and the terminator.
template <class Unit>
int writeTerminated(Unit* text, uint64_t magnitude, bool negative)
{
    const int n = writeSized(text, 31, magnitude, negative, false);
    if (text != nullptr)
        text[n] = 0;
    return n;
}

// The magnitude of a signed value; the lowest value included.
uint64_t magnitudeOf(long long value)
{
    return value < 0 ? 0ull - static_cast<uint64_t>(value) : static_cast<uint64_t>(value);
}

int writeField(unsigned char* text, unsigned short width, uint64_t value, bool tooLarge, unsigned short leftAlign)
{
    if (text == nullptr)
        return 0;
    for (unsigned i = 0; i < width; ++i)
        text[i] = ' ';
    text[width] = 0;
    const unsigned positions = width < 10 ? width : 10;
    if (positions == 0)
        return 0;
    // The digit area: the last positions of the field, or the first.
    unsigned char* area = leftAlign != 0 ? text : text + (width - positions);
    unsigned char* out = area;
    int written = 0;
    bool leading = true;
    for (unsigned p = positions; p > 0; --p) {
        const uint64_t power = kPowers[p - 1];
        const uint64_t digit = tooLarge ? 10 : value / power;
        if (digit > 9) {
            // What is left of the digit area says the value does not fit.
            for (unsigned char* q = out; q < area + positions; ++q)
                *q = '*';
            return 0;
        }
        value -= digit * power;
        if (digit == 0 && leading) {
            if (leftAlign == 0)
                ++out;  // stays a blank
            continue;
        }
        leading = false;
        *out++ = static_cast<unsigned char>('0' + digit);
        ++written;
    }
    return written;
}

}  // namespace

int convert(unsigned char* text, unsigned long long value) { return writeTerminated(text, value, false); }
int convert(unsigned char* text, long long value) { return writeTerminated(text, magnitudeOf(value), value < 0); }
int convert(unsigned short* text, unsigned long long value) { return writeTerminated(text, value, false); }
int convert(unsigned short* text, long long value) { return writeTerminated(text, magnitudeOf(value), value < 0); }
int convert(unsigned short* text, unsigned long value) { return writeTerminated(text, value, false); }
int convert(unsigned short* text, long value) { return writeTerminated(text, magnitudeOf(value), value < 0); }

int convert(unsigned char* text, unsigned long size, unsigned long long value)
{
    return writeSized(text, size, value, false, false);
}

int convert(unsigned char* text, unsigned long size, long long value)
{
    return writeSized(text, size, magnitudeOf(value), value < 0, false);
}

int convert(unsigned short* text, unsigned long size, unsigned long long value)
{
    return writeSized(text, size, value, false, false);
}

int convert(unsigned short* text, unsigned long size, long long value)
{
    return writeSized(text, size, magnitudeOf(value), value < 0, false);
}

int convert(unsigned short* text, unsigned long size, unsigned long value)
{
    return writeSized(text, size, value, false, false);
}

int convert(unsigned short* text, unsigned long size, long value)
{
    return writeSized(text, size, magnitudeOf(value), value < 0, false);
}

int convertUTF16Swap(unsigned short* text, unsigned long size, unsigned long long value)
{
    return writeSized(text, size, value, false, true);
}

int convertUTF16Swap(unsigned short* text, unsigned long size, long long value)
{
    return writeSized(text, size, magnitudeOf(value), value < 0, true);
}

int convertUTF16Swap(unsigned short* text, unsigned long size, unsigned long value)
{
    return writeSized(text, size, value, false, true);
}

int convertUTF16Swap(unsigned short* text, unsigned long size, long value)
{
    return writeSized(text, size, magnitudeOf(value), value < 0, true);
}

int convert(unsigned char* text, unsigned short width, unsigned long long value, unsigned short leftAlign)
{
    return writeField(text, width, value, false, leftAlign);
}

int convert(unsigned char* text, unsigned short width, long long value, unsigned short leftAlign)
{
    return writeField(text, width, value < 0 ? 0 : static_cast<uint64_t>(value), value < 0, leftAlign);
}
