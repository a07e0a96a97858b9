#include "strcopy.h"

#include <cstring>
#include <cwchar>

#include "but.h"
#include "strchar_impl.h"

using zu_str::charSize;

namespace {
template <typename T, typename S>
inline T convert(S unit)
{
    if constexpr (sizeof(T) == 1)
        return static_cast<T>(static_cast<unsigned char>(unit));  // low byte
    else
        return static_cast<T>(static_cast<std::make_unsigned_t<S>>(unit));  // widened
}

template <typename T, typename S>
T* copyBounded(T* target, long size, const S* source)
{
    if (size <= 0)
        return target;
    target[size - 1] = 0;
    for (long i = 0; i < size - 1; ++i) {
        target[i] = convert<T>(source[i]);
        if (source[i] == 0)
            break;
    }
    return target;
}

template <typename T, typename S>
T* copyBounded(T* target, long size, const S* source, long length)
{
    if (size <= 0)
        return target;
    long n = length < size - 1 ? length : size - 1;
    if (n < 0)
        n = 0;
    for (long i = 0; i < n; ++i)
        target[i] = convert<T>(source[i]);
    target[n] = 0;
    return target;
}

template <typename T, typename S>
T* copyExact(T* target, const S* source, long length)
{
    long i = 0;
    for (; i < length; ++i)
        target[i] = convert<T>(source[i]);
    target[i] = 0;
    return target + i;
}

template <typename Unit>
Unit* appendBounded(Unit* target, long size, const Unit* source, long length, bool terminated)
{
    long used = 0;
    while (used < size && target[used] != 0)
        ++used;
    if (used >= size)
        return target;  // no terminator inside the target: nothing is safe to write
    long i = 0;
    for (; used + i < size - 1 && (terminated || i < length); ++i) {
        if (terminated && source[i] == 0)
            break;
        target[used + i] = source[i];
    }
    target[used + i] = 0;
    return target;
}

// Bytes of the whole character at p, even when it runs past `remaining`:
// the quoting copy must know that a character is cut in order to stop.
int fullSize(const char* p, long remaining, zuCPType type)
{
    const auto lead = static_cast<unsigned char>(*p);
    if (type == ZU_CP_SBCS || lead < 0x80)
        return 1;
    if (type == ZU_CP_UTF8)
        return zu_str::utf8Size(lead);
    if (MB_CUR_MAX == 1)
        return 1;
    std::mbstate_t state{};
    const std::size_t r = std::mbrlen(p, remaining < 2 ? 1 : 2, &state);
    return r == 2 || r == static_cast<std::size_t>(-2) ? 2 : 1;
}
inline int fullSize(const unsigned short*, long, zuCPType) { return 1; }

template <typename Unit>
Unit* copyQuoted(Unit* target, const Unit* source, long length, zuCPType type, Unit quote)
{
    Unit* out = target;
    *out++ = quote;
    for (long i = 0; i < length;) {
        const int size = fullSize(source + i, length - i, type);
        if (size > length - i)
            break;
        if (size == 1 && source[i] == quote)
            *out++ = quote;
        for (int k = 0; k < size; ++k)
            *out++ = source[i + k];
        i += size;
    }
    *out++ = quote;
    *out = 0;
    return out;
}

// Locale lead byte with both bytes inside the text.
inline bool leadInside(const char* p, long remaining)
{
    if (static_cast<unsigned char>(*p) < 0x80 || MB_CUR_MAX == 1)
        return false;
    std::mbstate_t state{};
    const std::size_t r = std::mbrlen(p, remaining < 2 ? 1 : 2, &state);
    return r == 2 || r == static_cast<std::size_t>(-2);
}
inline bool leadInside(const unsigned short*, long) { return false; }

template <typename Unit>
Unit* copyUnquoted(Unit* target, const Unit* source, long length)
{
    Unit* out = target;
    if (length >= 2) {
        const Unit quote = source[0];
        const long end = length - 1;  // the closing quote
        long i = 1;
        while (i < end) {
            if (leadInside(source + i, end - i)) {
                if (i + 1 >= end)
                    break;  // a lead byte without its trail byte
                *out++ = source[i];
                *out++ = source[i + 1];
                i += 2;
            } else if (source[i] == quote) {
                // A quote at the last inner place has nothing after it but
                // the closing quote, which is not part of the text.
                if (i + 1 >= end)
                    break;
                *out++ = source[i + 1];
                i += 2;
            } else {
                *out++ = source[i++];
            }
        }
    }
    *out = 0;
    return out;
}

int boundedSize(const char* p, long remaining, zuCPType type) { return charSize(p, remaining, type); }
inline int boundedSize(const unsigned short*, long, zuCPType) { return 1; }

template <typename Unit>
long removeQuotes(Unit* text, long length, Unit quote, zuCPType type)
{
    if (length < 2 || text[0] != quote)
        return length;
    // The last character must be a single-unit quote of its own, not the
    // trail byte of a double-byte character.
    long last = 0;
    for (long i = 0; i < length;) {
        last = i;
        i += boundedSize(text + i, length - i, type);
    }
    if (last != length - 1 || last == 0 || text[last] != quote)
        return length;
    const long end = length - 1;
    for (long i = 1; i < end;) {
        const int size = boundedSize(text + i, end - i, type);
        if (size == 1 && text[i] == quote) {
            if (i + 1 >= end || text[i + 1] != quote)
                return length;
            i += 2;
        } else {
            i += size;
        }
    }
    long out = 0;
    for (long i = 1; i < end;) {
        const int size = boundedSize(text + i, end - i, type);
        if (size == 1 && text[i] == quote) {
            text[out++] = quote;
            i += 2;
        } else {
            for (int k = 0; k < size; ++k)
                text[out++] = text[i + k];
            i += size;
        }
    }
    if (out < length)
        text[out] = 0;
    return out;
}

inline unsigned short swapped(unsigned short unit) { return static_cast<unsigned short>((unit >> 8) | (unit << 8)); }

// White space of one character of a length-governed text, tested on a
// terminated copy, as zuIsWhiteSpace would otherwise read on past the length.
bool whiteAt(const char* p, int size)
{
    if (size == 1) {
        const auto byte = static_cast<unsigned char>(*p);
        if (byte < 0x80)
            return byte == ' ' || (byte >= '\t' && byte <= '\r');
    }
    char one[8] = {};
    std::memcpy(one, p, static_cast<std::size_t>(size < 7 ? size : 7));
    return zuIsWhiteSpace(one) != 0;
}

long trimLength(const char* text, long length, zuCPType type)
{
    long keep = 0;
    for (long i = 0; i < length;) {
        const int size = charSize(text + i, length - i, type);
        if (!whiteAt(text + i, size))
            keep = i + size;
        i += size;
    }
    return keep;
}

long trimLength(const unsigned short* text, long length)
{
    while (length > 0) {
        const unsigned short one[2] = {text[length - 1], 0};
        if (zuIsWhiteSpace(one) == 0)
            break;
        --length;
    }
    return length;
}

template <typename Unit>
long trimBlanks(const Unit* text, long length)
{
    while (length > 0 && text[length - 1] == ' ')
        --length;
    return length < 0 ? 0 : length;
}

template <typename Unit>
int isTrue(const Unit* text)
{
    const Unit c = text[0];
    if (c == '1' || c == 'T' || c == 't')
        return 1;
    return (c == 'O' || c == 'o') && (text[1] == 'N' || text[1] == 'n');
}
}  // namespace

char* strCopy(char* t, long size, const char* s) { return copyBounded(t, size, s); }
unsigned short* strCopy(unsigned short* t, long size, const unsigned short* s) { return copyBounded(t, size, s); }
unsigned short* strCopy(unsigned short* t, long size, const char* s) { return copyBounded(t, size, s); }
char* strCopy(char* t, long size, const unsigned short* s) { return copyBounded(t, size, s); }
char* strCopy(char* t, long size, const char* s, long n) { return copyBounded(t, size, s, n); }
unsigned short* strCopy(unsigned short* t, long size, const unsigned short* s, long n) { return copyBounded(t, size, s, n); }
unsigned short* strCopy(unsigned short* t, long size, const char* s, long n) { return copyBounded(t, size, s, n); }
char* strCopy(char* t, long size, const unsigned short* s, long n) { return copyBounded(t, size, s, n); }
char* strCopy(char* t, const char* s, long n) { return copyExact(t, s, n); }
unsigned short* strCopy(unsigned short* t, const unsigned short* s, long n) { return copyExact(t, s, n); }
unsigned short* strCopy(unsigned short* t, const char* s, long n) { return copyExact(t, s, n); }
char* strCopy(char* t, const unsigned short* s, long n) { return copyExact(t, s, n); }

char* strCat(char* t, long size, const char* s) { return appendBounded(t, size, s, 0, true); }
char* strCat(char* t, long size, const char* s, long n) { return appendBounded(t, size, s, n, false); }
unsigned short* strCat(unsigned short* t, long size, const unsigned short* s) { return appendBounded(t, size, s, 0, true); }
unsigned short* strCat(unsigned short* t, long size, const unsigned short* s, long n)
{
    return appendBounded(t, size, s, n, false);
}

char* strCopyQuoted(char* target, const char* source, long length, zuCPType type, char quote)
{
    return copyQuoted(target, source, length, type, quote);
}
char* strCatQuoted(char* target, const char* source, long length, zuCPType type, char quote)
{
    return copyQuoted(target + BUTSTLEN(target), source, length, type, quote);
}
unsigned short* strCopyQuoted(unsigned short* target, const unsigned short* source, long length, zuCPType type,
                              unsigned short quote)
{
    return copyQuoted(target, source, length, type, quote);
}
unsigned short* strCatQuoted(unsigned short* target, const unsigned short* source, long length, zuCPType type,
                             unsigned short quote)
{
    return copyQuoted(target + BUTSTLEN(target), source, length, type, quote);
}
char* strCopyUnquoted(char* target, const char* source, long length) { return copyUnquoted(target, source, length); }
unsigned short* strCopyUnquoted(unsigned short* target, const unsigned short* source, long length)
{
    return copyUnquoted(target, source, length);
}
long strRemoveQuotes(char* text, long length, char quote, zuCPType type) { return removeQuotes(text, length, quote, type); }
long strRemoveQuotes(unsigned short* text, long length, unsigned short quote, zuCPType type)
{
    return removeQuotes(text, length, quote, type);
}

unsigned short* strCopyUTF16Swap(unsigned short* target, const unsigned short* source, long count)
{
    long i = 0;
    for (; i < count; ++i)
        target[i] = swapped(source[i]);
    target[i] = 0;
    return target;
}

long strRightTrimUTF16Swap(const unsigned short* text, long length)
{
    while (length > 0 && zuIsWhiteSpaceUTF16Swap(text + length - 1) != 0)
        --length;
    return length < 0 ? 0 : length;
}

char* strRightTrim(char* text, zuCPType type)
{
    text[trimLength(text, static_cast<long>(BUTSTLEN(text)), type)] = 0;
    return text;
}
long strRightTrim(const char* text, long length, zuCPType type) { return length <= 0 ? 0 : trimLength(text, length, type); }
unsigned short* strRightTrim(unsigned short* text, zuCPType)
{
    text[trimLength(text, static_cast<long>(BUTSTLEN(text)))] = 0;
    return text;
}
long strRightTrim(const unsigned short* text, long length, zuCPType) { return length <= 0 ? 0 : trimLength(text, length); }
char* strRightTrimBlanks(char* text)
{
    text[trimBlanks(text, static_cast<long>(BUTSTLEN(text)))] = 0;
    return text;
}
long strRightTrimBlanks(const char* text, long length) { return trimBlanks(text, length); }
unsigned short* strRightTrimBlanks(unsigned short* text)
{
    text[trimBlanks(text, static_cast<long>(BUTSTLEN(text)))] = 0;
    return text;
}
long strRightTrimBlanks(const unsigned short* text, long length) { return trimBlanks(text, length); }

int isTrueStr(const char* text) { return isTrue(text); }
int isTrueStr(const unsigned short* text) { return isTrue(text); }
