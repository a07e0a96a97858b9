// UTF-8 <-> UTF-16 with position reporting, and the small Unicode helpers.
#include <unicode/uchar.h>
#include <unicode/ustring.h>
#include <unicode/utf16.h>
#include <unicode/utf8.h>

#include <cstring>

#include "../platform/ram.h"
#include "codepage.h"
#include "ux.h"

namespace {

enum class Decode { Ok, Truncated, Invalid };

// One well-formed UTF-8 character at s (s < end): its code point and size.
// Truncated: the bytes up to `end` are a valid beginning of a character.
Decode decodeUtf8(const unsigned char* s, const unsigned char* end, UChar32& code, int& size)
{
    const unsigned char b = s[0];
    if (b < 0x80) {
        code = b;
        size = 1;
        return Decode::Ok;
    }
    int trail;
    unsigned char lo = 0x80, hi = 0xBF;  // range of the first trail byte
    if (b >= 0xC2 && b <= 0xDF) {
        trail = 1;
        code = b & 0x1F;
    } else if (b >= 0xE0 && b <= 0xEF) {
        trail = 2;
        code = b & 0x0F;
        if (b == 0xE0)
            lo = 0xA0;
        else if (b == 0xED)
            hi = 0x9F;  // no surrogates
    } else if (b >= 0xF0 && b <= 0xF4) {
        trail = 3;
        code = b & 0x07;
        if (b == 0xF0)
            lo = 0x90;
        else if (b == 0xF4)
            hi = 0x8F;
    } else {
        return Decode::Invalid;
    }
    for (int i = 1; i <= trail; ++i) {
        if (s + i >= end)
            return Decode::Truncated;
        const unsigned char t = s[i];
        const unsigned char tlo = i == 1 ? lo : 0x80;
        const unsigned char thi = i == 1 ? hi : 0xBF;
        if (t < tlo || t > thi)
            return Decode::Invalid;
        code = (code << 6) | (t & 0x3F);
    }
    size = trail + 1;
    return Decode::Ok;
}

// What ICU's own terminate step does: a terminator when there is room, a
// warning when the output just fills the buffer, overflow past it.
template <class Unit>
void terminate(Unit* dest, int32_t capacity, int32_t length, UErrorCode* status)
{
    if (U_FAILURE(*status))
        return;
    if (length < capacity) {
        dest[length] = 0;
        if (*status == U_STRING_NOT_TERMINATED_WARNING)
            *status = U_ZERO_ERROR;
    } else if (length == capacity) {
        *status = U_STRING_NOT_TERMINATED_WARNING;
    } else {
        *status = U_BUFFER_OVERFLOW_ERROR;
    }
}

bool argumentsBad(const void* target, int32_t capacity, const void* source, int32_t sourceLength)
{
    return capacity < 0 || (capacity > 0 && target == nullptr) || sourceLength < -1 ||
           (source == nullptr && sourceLength != 0);
}

}  // namespace

UChar* ConvUTF8ToUTF16(UChar** target, int32_t targetCapacity, int32_t* length, const char** source,
                       int32_t sourceLength, UErrorCode* status)
{
    if (status == nullptr || U_FAILURE(*status))
        return nullptr;
    if (target == nullptr || source == nullptr ||
        argumentsBad(*target, targetCapacity, *source, sourceLength)) {
        *status = U_ILLEGAL_ARGUMENT_ERROR;
        return nullptr;
    }
    UChar* const dest = *target;
    UChar* t = dest;
    UChar* const tEnd = dest + targetCapacity;
    const auto* s = reinterpret_cast<const unsigned char*>(*source);
    const unsigned char* const end = s + (sourceLength == -1 ? std::strlen(*source) : static_cast<size_t>(sourceLength));
    int32_t needed = 0;
    bool full = false;
    UErrorCode found = U_ZERO_ERROR;
    const unsigned char* reached = s;
    while (s < end) {
        UChar32 c = 0;
        int size = 0;
        const Decode d = decodeUtf8(s, end, c, size);
        if (d != Decode::Ok) {
            found = d == Decode::Truncated ? U_TRUNCATED_CHAR_FOUND : U_INVALID_CHAR_FOUND;
            break;
        }
        const int units = U16_LENGTH(c);
        if (!full && t + units <= tEnd) {
            if (units == 1) {
                *t++ = static_cast<UChar>(c);
            } else {
                *t++ = U16_LEAD(c);
                *t++ = U16_TRAIL(c);
            }
            s += size;
            reached = s;
        } else {
            full = true;  // from here on only counted
            s += size;
        }
        needed += units;
    }
    if (!full)
        reached = s;
    *source = reinterpret_cast<const char*>(reached);
    *target = t;
    if (length != nullptr)
        *length = needed;
    if (found != U_ZERO_ERROR)
        *status = found;
    else
        terminate(dest, targetCapacity, needed, status);
    return dest;
}

char* ConvUTF16ToUTF8(char** target, int32_t targetCapacity, int32_t* length, const UChar** source,
                      int32_t sourceLength, UErrorCode* status)
{
    if (status == nullptr || U_FAILURE(*status))
        return nullptr;
    if (target == nullptr || source == nullptr ||
        argumentsBad(*target, targetCapacity, *source, sourceLength)) {
        *status = U_ILLEGAL_ARGUMENT_ERROR;
        return nullptr;
    }
    char* const dest = *target;
    auto* t = reinterpret_cast<unsigned char*>(dest);
    auto* const tEnd = t + targetCapacity;
    const UChar* s = *source;
    const UChar* const end = s + (sourceLength == -1 ? u_strlen(s) : sourceLength);
    int32_t needed = 0;
    bool full = false;
    UErrorCode found = U_ZERO_ERROR;
    const UChar* reached = s;
    while (s < end) {
        UChar32 c = *s;
        int units = 1;
        if (U16_IS_LEAD(c)) {
            if (s + 1 >= end || !U16_IS_TRAIL(s[1])) {
                found = U_INVALID_CHAR_FOUND;  // a high surrogate needs its low one
                break;
            }
            c = U16_GET_SUPPLEMENTARY(c, s[1]);
            units = 2;
        } else if (U16_IS_TRAIL(c)) {
            found = U_INVALID_CHAR_FOUND;
            break;
        }
        const int bytes = c < 0x80 ? 1 : c < 0x800 ? 2 : c < 0x10000 ? 3 : 4;
        if (!full && t + bytes <= tEnd) {
            t = uxAppendUTF8(t, c);
            s += units;
            reached = s;
        } else {
            full = true;
            s += units;
        }
        needed += bytes;
    }
    if (!full)
        reached = s;
    *source = reached;
    *target = reinterpret_cast<char*>(t);
    if (length != nullptr)
        *length = needed;
    if (found != U_ZERO_ERROR)
        *status = found;
    else
        terminate(dest, targetCapacity, needed, status);
    return dest;
}

// ---- Helpers ---------------------------------------------------------------

namespace {
UConverter* openCodePage(long codePage)
{
    UErrorCode status = U_ZERO_ERROR;
    UConverter* c = ucnv_open(codePage == 0 ? nullptr : ucnvIANAidToICUname(codePage), &status);
    if (U_FAILURE(status)) {
        ucnv_close(c);
        return nullptr;
    }
    return c;
}
}  // namespace

int uxMaxCharSize(long codePage)
{
    UConverter* c = openCodePage(codePage);
    if (c == nullptr)
        return 0;
    const int size = ucnv_getMaxCharSize(c);
    ucnv_close(c);
    return size;
}

int VerifyCodePage(long codePage)
{
    UConverter* c = openCodePage(codePage);
    ucnv_close(c);
    return c != nullptr ? 1 : 0;
}

long uxUnicodeLen(const unsigned short* text)
{
    if (text == nullptr)
        return 0;
    long n = 0;
    while (text[n] != 0)
        ++n;
    return n;
}

long uxUCS2Len(const unsigned short* text) { return uxUnicodeLen(text); }

unsigned short* uxUnicodeDup(const unsigned short* text)
{
    const long n = uxUnicodeLen(text);
    auto* copy = static_cast<unsigned short*>(ramAllocC(static_cast<size_t>(n + 1) * 2));
    if (copy != nullptr) {
        if (n > 0)
            std::memcpy(copy, text, static_cast<size_t>(n) * 2);
        copy[n] = 0;
    }
    return copy;
}

unsigned short* uxUnicodeCopy(unsigned short* target, const unsigned short* source)
{
    const long n = uxUnicodeLen(source);
    std::memmove(target, source, static_cast<size_t>(n) * 2);
    target[n] = 0;
    return target;
}

unsigned short* uxUnicodeCopy(unsigned short* target, const unsigned short* source, long units)
{
    long n = 0;
    while (n < units && source[n] != 0)
        ++n;
    std::memmove(target, source, static_cast<size_t>(n) * 2);
    target[n] = 0;
    return target;
}

long uxAsciiLenOfUnicodeStr(UChar32 code)
{
    return code < 0x80 ? 1 : code < 0x800 ? 2 : code < 0x10000 ? 3 : 4;
}

long uxAsciiLenOfUnicodeStr(const unsigned short* text, long units)
{
    long bytes = 0;
    for (long i = 0; i < units; ++i) {
        const unsigned short u = text[i];
        if (U16_IS_LEAD(u) && i + 1 < units && U16_IS_TRAIL(text[i + 1])) {
            bytes += 4;
            ++i;
        } else {
            bytes += uxAsciiLenOfUnicodeStr(static_cast<UChar32>(u));
        }
    }
    return bytes;
}

long uxAsciiLenOfUnicodeStr(const unsigned short* text)
{
    return uxAsciiLenOfUnicodeStr(text, uxUnicodeLen(text));
}

long uxAsciiLenOfUnicodeStr(const UChar32* codes, long count)
{
    long bytes = 0;
    for (long i = 0; i < count; ++i)
        bytes += uxAsciiLenOfUnicodeStr(codes[i]);
    return bytes;
}

void uxUCS2Swap(unsigned short* target, const unsigned short* source, long count)
{
    if (count <= 0)
        return;
    if ((reinterpret_cast<uintptr_t>(target) | reinterpret_cast<uintptr_t>(source)) % alignof(unsigned short) == 0) {
        for (long i = 0; i < count; ++i)
            target[i] = static_cast<unsigned short>(__builtin_bswap16(source[i]));
        return;
    }
    // Odd addresses: byte by byte (in place works too: each pair is read
    // before it is written).
    auto* t = reinterpret_cast<unsigned char*>(target);
    const auto* s = reinterpret_cast<const unsigned char*>(source);
    for (long i = 0; i < count; ++i) {
        const unsigned char a = s[2 * i], b = s[2 * i + 1];
        t[2 * i] = b;
        t[2 * i + 1] = a;
    }
}

unsigned char* uxAppendUTF8(unsigned char* target, UChar32 code)
{
    if (code < 0x80) {
        *target++ = static_cast<unsigned char>(code);
    } else if (code < 0x800) {
        *target++ = static_cast<unsigned char>(0xC0 | (code >> 6));
        *target++ = static_cast<unsigned char>(0x80 | (code & 0x3F));
    } else if (code < 0x10000) {
        *target++ = static_cast<unsigned char>(0xE0 | (code >> 12));
        *target++ = static_cast<unsigned char>(0x80 | ((code >> 6) & 0x3F));
        *target++ = static_cast<unsigned char>(0x80 | (code & 0x3F));
    } else {
        *target++ = static_cast<unsigned char>(0xF0 | (code >> 18));
        *target++ = static_cast<unsigned char>(0x80 | ((code >> 12) & 0x3F));
        *target++ = static_cast<unsigned char>(0x80 | ((code >> 6) & 0x3F));
        *target++ = static_cast<unsigned char>(0x80 | (code & 0x3F));
    }
    return target;
}

uint32_t UTF16CharFromUTF8Char(UChar32 code)
{
    if (code < 0)
        return 0;
    if (code < 0x10000)
        return static_cast<uint32_t>(code) << 16;
    if (code < 0x110000)
        return (static_cast<uint32_t>(U16_LEAD(code)) << 16) | U16_TRAIL(code);
    return 0;
}

uint32_t UTF8CharFromUTF16Char(UChar32 code)
{
    if (code < 0x80)
        return static_cast<uint32_t>(code);
    unsigned char bytes[4] = {};
    const long n = uxAppendUTF8(bytes, code) - bytes;
    uint32_t packed = 0;
    for (long i = 0; i < n; ++i)
        packed |= static_cast<uint32_t>(bytes[i]) << (24 - 8 * i);
    return packed;
}

long uxUTF8Upper(unsigned char* text, long length)
{
    if (text == nullptr || length <= 0)
        return 0;
    // Upper case can be longer than lower case (U+0250 takes 2 bytes, its
    // capital 3): rewriting in place from the start could overwrite text not
    // read yet and run past `length`.  The text is decoded from a copy
    // instead, and the result is cut at the last whole character that fits.
    auto* copy = static_cast<unsigned char*>(ramAllocC(static_cast<size_t>(length)));
    if (copy == nullptr)
        return length;
    std::memcpy(copy, text, static_cast<size_t>(length));
    long in = 0, out = 0;
    while (in < length) {
        const unsigned char b = copy[in];
        const int trail = U8_COUNT_TRAIL_BYTES(b);
        UChar32 code = trail == 0 ? b : (b & (0x3F >> trail));
        int used = 1;
        for (; used <= trail && in + used < length; ++used)
            code = (code << 6) | (copy[in + used] & 0x3F);
        if (used <= trail || code > 0x10FFFF) {
            code = b;  // a cut or impossible sequence: the byte stays as it is
            used = 1;
        }
        unsigned char buf[4];
        long n = 1;
        if (used == 1 && b >= 0x80)
            buf[0] = b;
        else
            n = uxAppendUTF8(buf, u_toupper(code)) - buf;
        if (out + n > length)
            break;
        std::memcpy(text + out, buf, static_cast<size_t>(n));
        out += n;
        in += used;
    }
    ramFreeC(copy);
    if (out < length)
        text[out] = 0;
    return out;
}
