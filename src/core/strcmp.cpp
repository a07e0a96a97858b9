#include "strcmp.h"

#include <cstring>

#include "../platform/ram.h"
#include "but.h"
#include "strchar_impl.h"

using zu_str::charSize;
using zu_str::charSizeZ;
using zu_str::upperByte;
using zu_str::upperUnit;

namespace {
inline int sign(int value) { return (value > 0) - (value < 0); }
inline long len(const char* text) { return static_cast<long>(BUTSTLEN(text)); }
inline long len(const unsigned short* text) { return static_cast<long>(BUTSTLEN(text)); }

template <typename Unit>
int compareUnits(const Unit* a, long lengthA, const Unit* b, long lengthB)
{
    const long common = lengthA < lengthB ? lengthA : lengthB;
    for (long i = 0; i < common; ++i)
        if (a[i] != b[i])
            return a[i] < b[i] ? -1 : 1;
    return (lengthA > lengthB) - (lengthA < lengthB);
}

int compareBytes(const char* a, long lengthA, const char* b, long lengthB)
{
    const long common = lengthA < lengthB ? lengthA : lengthB;
    const int r = common > 0 ? BUTMMCMP(a, b, static_cast<std::size_t>(common)) : 0;
    return r != 0 ? r : (lengthA > lengthB) - (lengthA < lengthB);
}

// The character walk of the Ci forms over two length-governed texts.
int compareCi(const char* a, long lengthA, const char* b, long lengthB, zuCPType type)
{
    long i = 0;
    long j = 0;
    while (i < lengthA && j < lengthB) {
        const int sa = charSize(a + i, lengthA - i, type);
        const int sb = charSize(b + j, lengthB - j, type);
        if (sa > 1 || sb > 1) {
            const int common = sa < sb ? sa : sb;
            const int r = BUTMMCMP(a + i, b + j, static_cast<std::size_t>(common));
            if (r != 0)
                return r;
            if (sa != sb)
                return sa < sb ? -1 : 1;
        } else {
            const unsigned char ua = upperByte(static_cast<unsigned char>(a[i]));
            const unsigned char ub = upperByte(static_cast<unsigned char>(b[j]));
            if (ua != ub)
                return ua < ub ? -1 : 1;
        }
        i += sa;
        j += sb;
    }
    return (i < lengthA) - (j < lengthB);
}

int compareCiZ(const char* a, const char* b, zuCPType type)
{
    while (*a != 0 && *b != 0) {
        const int sa = charSizeZ(a, type);
        const int sb = charSizeZ(b, type);
        if (sa > 1 || sb > 1) {
            const int common = sa < sb ? sa : sb;
            const int r = BUTMMCMP(a, b, static_cast<std::size_t>(common));
            if (r != 0)
                return r;
            if (sa != sb)
                return sa < sb ? -1 : 1;
        } else {
            const unsigned char ua = upperByte(static_cast<unsigned char>(*a));
            const unsigned char ub = upperByte(static_cast<unsigned char>(*b));
            if (ua != ub)
                return ua < ub ? -1 : 1;
        }
        a += sa;
        b += sb;
    }
    return (*a != 0) - (*b != 0);
}

int compareCiUnits(const unsigned short* a, long lengthA, const unsigned short* b, long lengthB)
{
    const long common = lengthA < lengthB ? lengthA : lengthB;
    for (long i = 0; i < common; ++i) {
        const unsigned short ua = upperUnit(a[i]);
        const unsigned short ub = upperUnit(b[i]);
        if (ua != ub)
            return ua < ub ? -1 : 1;
    }
    return (lengthA > lengthB) - (lengthA < lengthB);
}

template <typename Unit>
int comparePad(const Unit* a, long lengthA, const Unit* b, long lengthB)
{
    const long common = lengthA < lengthB ? lengthA : lengthB;
    for (long i = 0; i < common; ++i)
        if (a[i] != b[i])
            return a[i] < b[i] ? -1 : 1;
    // The longer text goes on against the blanks the shorter is taken to
    // have; `flip` turns the result round when b is the longer.
    const Unit* rest = lengthA > lengthB ? a : b;
    const long restLength = lengthA > lengthB ? lengthA : lengthB;
    const int flip = lengthA > lengthB ? 1 : -1;
    for (long i = common; i < restLength; ++i) {
        const auto unit = static_cast<unsigned long>(rest[i]);
        if (unit != ' ')
            return unit > ' ' ? flip : -flip;
    }
    return 0;
}

// A terminated copy of `length` bytes: in `stack` when it fits, else on the
// heap (null when that fails).
char* terminatedCopy(const char* text, long length, char* stack, std::size_t room)
{
    const auto size = static_cast<std::size_t>(length < 0 ? 0 : length);
    char* copy = size < room ? stack : static_cast<char*>(ramAllocC(size + 1));
    if (copy != nullptr) {
        std::memcpy(copy, text, size);
        copy[size] = 0;
    }
    return copy;
}

int collate(const char* a, long lengthA, const char* b, long lengthB)
{
    char stackA[512];
    char stackB[512];
    char* ca = terminatedCopy(a, lengthA, stackA, sizeof stackA);
    char* cb = terminatedCopy(b, lengthB, stackB, sizeof stackB);
    const int r = (ca == nullptr || cb == nullptr) ? compareBytes(a, lengthA, b, lengthB) : sign(std::strcoll(ca, cb));
    if (ca != stackA)
        ramFreeC(ca);
    if (cb != stackB)
        ramFreeC(cb);
    return r;
}
}  // namespace

int strEqual(const char* a, const char* b) { return BUTSTCMP(a, b) == 0; }
int strEqual(const char* a, long lengthA, const char* b, long lengthB)
{
    return lengthA == lengthB && (lengthA <= 0 || memEqual(a, b, static_cast<std::size_t>(lengthA)));
}
int strEqual(const unsigned short* a, const unsigned short* b) { return BUTSTCMP(a, b) == 0; }
int strEqual(const unsigned short* a, long lengthA, const unsigned short* b, long lengthB)
{
    return lengthA == lengthB && (lengthA <= 0 || memEqual(a, b, static_cast<std::size_t>(lengthA) * 2));
}
int strEqualSameLens(const char* a, const char* b, long length) { return strEqual(a, length, b, length); }
int strEqualSameLens(const unsigned short* a, const unsigned short* b, long length) { return strEqual(a, length, b, length); }

int strEqualCi(const char* a, const char* b, zuCPType type) { return compareCiZ(a, b, type) == 0; }
int strEqualCi(const char* a, long lengthA, const char* b, long lengthB, zuCPType type)
{
    return compareCi(a, lengthA, b, lengthB, type) == 0;
}
int strEqualCi(const unsigned short* a, const unsigned short* b, zuCPType)
{
    return compareCiUnits(a, len(a), b, len(b)) == 0;
}
int strEqualCi(const unsigned short* a, long lengthA, const unsigned short* b, long lengthB, zuCPType)
{
    return compareCiUnits(a, lengthA, b, lengthB) == 0;
}

int strCompare(const char* a, const char* b) { return BUTSTCMP(a, b); }
int strCompare(const char* a, long lengthA, const char* b, long lengthB) { return compareBytes(a, lengthA, b, lengthB); }
int strCompare(const unsigned short* a, const unsigned short* b) { return BUTSTCMP(a, b); }
int strCompare(const unsigned short* a, long lengthA, const unsigned short* b, long lengthB)
{
    return compareUnits(a, lengthA, b, lengthB);
}

int strCompareCi(const char* a, const char* b, zuCPType type) { return compareCiZ(a, b, type); }
int strCompareCi(const char* a, long lengthA, const char* b, long lengthB, zuCPType type)
{
    return compareCi(a, lengthA, b, lengthB, type);
}
int strCompareCi(const unsigned short* a, const unsigned short* b, zuCPType) { return compareCiUnits(a, len(a), b, len(b)); }
int strCompareCi(const unsigned short* a, long lengthA, const unsigned short* b, long lengthB, zuCPType)
{
    return compareCiUnits(a, lengthA, b, lengthB);
}

int strCompareUTF8(const char* a, const char* b) { return BUTSTCMP(a, b); }
int strCompareUTF8(const char* a, long lengthA, const char* b, long lengthB) { return compareBytes(a, lengthA, b, lengthB); }

int strComparePad(const char* a, const char* b)
{
    return comparePad(reinterpret_cast<const unsigned char*>(a), len(a), reinterpret_cast<const unsigned char*>(b), len(b));
}
int strComparePad(const char* a, long lengthA, const char* b, long lengthB)
{
    return comparePad(reinterpret_cast<const unsigned char*>(a), lengthA, reinterpret_cast<const unsigned char*>(b), lengthB);
}
int strComparePad(const unsigned short* a, long lengthA, const unsigned short* b, long lengthB)
{
    return comparePad(a, lengthA, b, lengthB);
}

int strCompareIntl(const char* a, const char* b) { return sign(std::strcoll(a, b)); }
int strCompareIntl(const char* a, long lengthA, const char* b, long lengthB) { return collate(a, lengthA, b, lengthB); }
int strCompareCiIntl(const char* a, const char* b) { return sign(std::strcoll(a, b)); }
int strCompareCiIntl(const char* a, long lengthA, const char* b, long lengthB) { return collate(a, lengthA, b, lengthB); }

int strCompareWithMaxLength(const char* a, const char* b, long length)
{
    return length <= 0 ? 0 : sign(std::strncmp(a, b, static_cast<std::size_t>(length)));
}
int strCompareWithMaxLength(const unsigned short* a, const unsigned short* b, long length)
{
    for (long i = 0; i < length; ++i) {
        if (a[i] != b[i])
            return a[i] < b[i] ? -1 : 1;
        if (a[i] == 0)
            return 0;
    }
    return 0;
}

int floatCompare(const unsigned char* a, const unsigned char* b)
{
    const int negativeA = a[0] >> 7;
    const int negativeB = b[0] >> 7;
    if (negativeA != negativeB)
        return negativeA ? -1 : 1;
    for (int i = 0; i < 8; ++i) {
        if (a[i] != b[i]) {
            const int r = a[i] < b[i] ? -1 : 1;
            return negativeA ? -r : r;
        }
    }
    return 0;
}
