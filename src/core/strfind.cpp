#include "strfind.h"

#include <cctype>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include "../encoding/mbchar.h"
#include "../platform/ram.h"
#include "but.h"
#include "strchar_impl.h"

namespace {
using zu_str::byteWalk;

inline int stepZ(const char* p, zuCPType type) { return zu_str::charSizeZ(p, type); }
inline int stepZ(const unsigned short*, zuCPType) { return 1; }
inline int step(const char* p, long remaining, zuCPType type) { return zu_str::charSize(p, remaining, type); }
inline int step(const unsigned short*, long, zuCPType) { return 1; }
inline unsigned long unitValue(char c) { return static_cast<unsigned char>(c); }
inline unsigned long unitValue(unsigned short c) { return c; }

template <typename Unit>
Unit* mutableOf(const Unit* p) { return const_cast<Unit*>(p); }

template <typename Unit>
Unit* findUnit(const Unit* text, Unit unit, zuCPType type)
{
    if (unit == 0)
        return nullptr;
    for (const Unit* p = text; *p != 0;) {
        const int size = stepZ(p, type);
        if (size == 1 && *p == unit)
            return mutableOf(p);
        p += size;
    }
    return nullptr;
}

template <typename Unit>
Unit* findUnitReverse(const Unit* text, Unit unit, zuCPType type)
{
    const Unit* found = nullptr;
    if (unit == 0)
        return nullptr;
    for (const Unit* p = text; *p != 0;) {
        const int size = stepZ(p, type);
        if (size == 1 && *p == unit)
            found = p;
        p += size;
    }
    return mutableOf(found);
}

template <typename Unit>
Unit* findOutsideQuotes(const Unit* text, Unit unit, Unit q1, Unit q2, Unit q3, zuCPType type)
{
    Unit open = 0;
    for (const Unit* p = text; *p != 0;) {
        const int size = stepZ(p, type);
        if (size == 1) {
            const Unit c = *p;
            if (open != 0) {
                if (c == open)
                    open = 0;
            } else if (c == unit) {
                return mutableOf(p);
            } else if ((q1 != 0 && c == q1) || (q2 != 0 && c == q2) || (q3 != 0 && c == q3)) {
                open = c;
            }
        }
        p += size;
    }
    return nullptr;
}

#if defined(__SSE2__)
// Byte-wise search, 16 candidate places at a time: a place is tried only
// when its first and its last byte both match.  Both loads of a round lie
// inside the text (the round's last place is at most length - pattern
// length), so nothing past the length is read.
const char* findBytes(const char* text, long length, const char* pattern, long m)
{
    const long last = length - m;
    long i = 0;
    if (m >= 2) {
        const __m128i first = _mm_set1_epi8(pattern[0]);
        const __m128i final = _mm_set1_epi8(pattern[m - 1]);
        for (; i + 15 <= last; i += 16) {
            const __m128i a = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text + i));
            const __m128i b = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text + i + m - 1));
            auto mask = static_cast<unsigned>(_mm_movemask_epi8(_mm_and_si128(_mm_cmpeq_epi8(a, first), _mm_cmpeq_epi8(b, final))));
            while (mask != 0) {
                const long at = i + __builtin_ctz(mask);
                if (m == 2 || memEqual(text + at + 1, pattern + 1, static_cast<std::size_t>(m - 2)))
                    return text + at;
                mask &= mask - 1;
            }
        }
    } else {
        const void* hit = std::memchr(text, pattern[0], static_cast<std::size_t>(length));
        return static_cast<const char*>(hit);
    }
    for (; i <= last; ++i)
        if (text[i] == pattern[0] && BUTMMCMP(text + i + 1, pattern + 1, static_cast<std::size_t>(m - 1)) == 0)
            return text + i;
    return nullptr;
}
#else
const char* findBytes(const char* text, long length, const char* pattern, long m)
{
    const long last = length - m;
    for (long i = 0; i <= last; ++i) {
        const void* hit = std::memchr(text + i, pattern[0], static_cast<std::size_t>(last - i + 1));
        if (hit == nullptr)
            return nullptr;
        i = static_cast<const char*>(hit) - text;
        if (BUTMMCMP(text + i + 1, pattern + 1, static_cast<std::size_t>(m - 1)) == 0)
            return text + i;
    }
    return nullptr;
}
#endif

char* findPattern(const char* text, long length, const char* pattern, long m, zuCPType type)
{
    if (m <= 0 || m > length)
        return nullptr;
    if (byteWalk(type))
        return const_cast<char*>(findBytes(text, length, pattern, m));
    const long last = length - m;
    for (long i = 0; i <= last; i += step(text + i, length - i, type))
        if (text[i] == pattern[0] && BUTMMCMP(text + i + 1, pattern + 1, static_cast<std::size_t>(m - 1)) == 0)
            return const_cast<char*>(text + i);
    return nullptr;
}

unsigned short* findPattern(const unsigned short* text, long length, const unsigned short* pattern, long m, zuCPType)
{
    if (m <= 0 || m > length)
        return nullptr;
    const long last = length - m;
    for (long i = 0; i <= last; ++i)
        if (text[i] == pattern[0] && memEqual(text + i + 1, pattern + 1, static_cast<std::size_t>(m - 1) * 2))
            return const_cast<unsigned short*>(text + i);
    return nullptr;
}

template <typename Unit>
Unit* findCiCopies(const Unit* text, long length, const Unit* pattern, long m, zuCPType type)
{
    if (m <= 0 || m > length)
        return nullptr;
    auto* t = static_cast<Unit*>(ramAllocC(static_cast<std::size_t>(length + 1) * sizeof(Unit)));
    auto* p = static_cast<Unit*>(ramAllocC(static_cast<std::size_t>(m + 1) * sizeof(Unit)));
    Unit* result = nullptr;
    if (t != nullptr && p != nullptr) {
        std::memcpy(t, text, static_cast<std::size_t>(length) * sizeof(Unit));
        std::memcpy(p, pattern, static_cast<std::size_t>(m) * sizeof(Unit));
        t[length] = 0;
        p[m] = 0;
        strUpper(t, length);
        strUpper(p, m);
        const Unit* hit = findPattern(t, length, p, m, type);
        if (hit != nullptr)
            result = const_cast<Unit*>(text + (hit - t));
    }
    ramFreeC(t);
    ramFreeC(p);
    return result;
}

template <typename Unit>
Unit* findCiPair(const Unit* text, long length, const Unit* upper, const Unit* lower, long m, zuCPType type)
{
    if (m <= 0 || m > length)
        return nullptr;
    const long last = length - m;
    for (long i = 0; i <= last;) {
        const int size = type == ZU_CP_SBCS ? 1 : step(text + i, length - i, type);
        if (size == 1 && memEqualCi(text + i, upper, lower, static_cast<std::size_t>(m) * sizeof(Unit)) != 0)
            return const_cast<Unit*>(text + i);
        i += size;
    }
    return nullptr;
}

template <typename Unit>
Unit* findAny(const Unit* text, const Unit* set, zuCPType type)
{
    for (const Unit* p = text; *p != 0;) {
        const int size = stepZ(p, type);
        if (size == 1)
            for (const Unit* s = set; *s != 0; ++s)
                if (*s == *p)
                    return const_cast<Unit*>(p);
        p += size;
    }
    return nullptr;
}

template <typename Unit>
bool inClass(const Unit* set, int classes, Unit c)
{
    if (set != nullptr)
        for (const Unit* s = set; *s != 0; ++s)
            if (*s == c)
                return true;
    const unsigned long v = unitValue(c);
    if (v > 255)
        return false;
    const int byte = static_cast<int>(v);
    return ((classes & ZU_CLASS_LOWER) != 0 && std::islower(byte)) || ((classes & ZU_CLASS_UPPER) != 0 && std::isupper(byte)) ||
           ((classes & ZU_CLASS_DIGIT) != 0 && std::isdigit(byte));
}

// 1 when every character is (wanted true) or none is (wanted false) in the set.
template <typename Unit>
int allOrNone(const Unit* text, long length, const Unit* set, int classes, zuCPType type, bool wanted)
{
    for (long i = 0; i < length; i += step(text + i, length - i, type))
        if (inClass(set, classes, text[i]) != wanted)
            return 0;
    return 1;
}
}  // namespace

char* strFind(const char* text, char byte, zuCPType type)
{
    if (byteWalk(type))
        return byte == 0 ? nullptr : const_cast<char*>(std::strchr(text, byte));
    return findUnit(text, byte, type);
}
char* strFindAnsi(const char* text, char byte) { return strFind(text, byte, ZU_CP_LOCALE); }
char* strFind(const char* text, const char* substring, zuCPType type)
{
    return findPattern(text, static_cast<long>(BUTSTLEN(text)), substring, static_cast<long>(BUTSTLEN(substring)), type);
}
char* strFind(const char* text, long length, const char* pattern, long patternLength, zuCPType type)
{
    return findPattern(text, length, pattern, patternLength, type);
}
char* strFindReverse(const char* text, char byte, zuCPType type)
{
    if (byteWalk(type))
        return byte == 0 ? nullptr : const_cast<char*>(std::strrchr(text, byte));
    return findUnitReverse(text, byte, type);
}
char* strFind(const char* text, char byte, char q1, char q2, char q3, zuCPType type)
{
    return findOutsideQuotes(text, byte, q1, q2, q3, type);
}
char* strFindCi(const char* text, long length, const char* pattern, long patternLength, zuCPType type)
{
    return findCiCopies(text, length, pattern, patternLength, type);
}
char* strFindCi(const char* text, long length, const char* upper, const char* lower, long patternLength, zuCPType type)
{
    return findCiPair(text, length, upper, lower, patternLength, type);
}
char* strFindAnyChar(const char* text, const char* characters, zuCPType type) { return findAny(text, characters, type); }
int strContains(const char* text, long length, const char* characters, int classes, zuCPType type)
{
    return allOrNone(text, length, characters, classes, type, true);
}
int strDoesNotContain(const char* text, long length, const char* characters, int classes, zuCPType type)
{
    return allOrNone(text, length, characters, classes, type, false);
}

unsigned short* strFind(const unsigned short* text, unsigned short unit, zuCPType type) { return findUnit(text, unit, type); }
unsigned short* strFind(const unsigned short* text, const unsigned short* substring, zuCPType type)
{
    return findPattern(text, static_cast<long>(BUTSTLEN(text)), substring, static_cast<long>(BUTSTLEN(substring)), type);
}
unsigned short* strFind(const unsigned short* text, long length, const unsigned short* pattern, long patternLength,
                        zuCPType type)
{
    return findPattern(text, length, pattern, patternLength, type);
}
unsigned short* strFindReverse(const unsigned short* text, unsigned short unit, zuCPType type)
{
    return findUnitReverse(text, unit, type);
}
unsigned short* strFind(const unsigned short* text, unsigned short unit, unsigned short q1, unsigned short q2,
                        unsigned short q3, zuCPType type)
{
    return findOutsideQuotes(text, unit, q1, q2, q3, type);
}
unsigned short* strFindCi(const unsigned short* text, long length, const unsigned short* pattern, long patternLength,
                          zuCPType type)
{
    return findCiCopies(text, length, pattern, patternLength, type);
}
unsigned short* strFindCi(const unsigned short* text, long length, const unsigned short* upper,
                          const unsigned short* lower, long patternLength, zuCPType type)
{
    return findCiPair(text, length, upper, lower, patternLength, type);
}
unsigned short* strFindAnyChar(const unsigned short* text, const unsigned short* units, zuCPType type)
{
    return findAny(text, units, type);
}
int strContains(const unsigned short* text, long length, const unsigned short* units, int classes, zuCPType type)
{
    return allOrNone(text, length, units, classes, type, true);
}
int strDoesNotContain(const unsigned short* text, long length, const unsigned short* units, int classes, zuCPType type)
{
    return allOrNone(text, length, units, classes, type, false);
}
