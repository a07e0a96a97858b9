/*
 * Character steps shared by the str families: the size of one character of
 * a narrow text, bounded by a length or by the terminator, and the upper
 * case of one byte or unit as strUpper gives it.  Type 4 is one byte a
 * character; type 3 follows UTF-8's first byte; the other types ask the
 * locale whether two bytes form one character (so in a single-byte locale
 * every byte is one).  No size returned ever passes the bound.  Internal to
 * the library; nothing here allocates or keeps state.
 */
#ifndef HNSYB_CORE_STRCHAR_IMPL_H
#define HNSYB_CORE_STRCHAR_IMPL_H

#include <climits>
#include <cstdlib>
#include <cwchar>

#include "../encoding/cptype.h"
#include "../encoding/mbchar.h"

namespace zu_str {

// 1 when every byte of a text of this type is a character of its own, so
// that a walk may go byte by byte.
inline bool byteWalk(zuCPType type) { return type == ZU_CP_SBCS || (type != ZU_CP_UTF8 && MB_CUR_MAX == 1); }

inline int utf8Size(unsigned char lead) { return lead < 192 ? 1 : lead < 224 ? 2 : lead < 240 ? 3 : 4; }

// Bytes of the character at p with `remaining` (at least 1) bytes left.
inline int charSize(const char* p, long remaining, zuCPType type)
{
    if (type == ZU_CP_SBCS || remaining < 2)
        return 1;
    if (type == ZU_CP_UTF8) {
        const int size = utf8Size(static_cast<unsigned char>(*p));
        return size < remaining ? size : static_cast<int>(remaining);
    }
    if (MB_CUR_MAX == 1 || static_cast<unsigned char>(*p) < 0x80)
        return 1;
    std::mbstate_t state{};
    return std::mbrlen(p, 2, &state) == 2 ? 2 : 1;
}

// The same in a terminated text: a character never runs over the NUL.
inline int charSizeZ(const char* p, zuCPType type)
{
    if (type == ZU_CP_SBCS || static_cast<unsigned char>(*p) < 0x80)
        return 1;
    if (type == ZU_CP_UTF8) {
        const int size = utf8Size(static_cast<unsigned char>(*p));
        int n = 1;
        while (n < size && p[n] != 0)
            ++n;
        return n;
    }
    if (MB_CUR_MAX == 1 || p[1] == 0)
        return 1;
    std::mbstate_t state{};
    return std::mbrlen(p, 2, &state) == 2 ? 2 : 1;
}

// One byte through strUpper (the locale's mapping by javaToUpper).
inline unsigned char upperByte(unsigned char byte)
{
    if (byte < 0x80)
        return (byte >= 'a' && byte <= 'z') ? static_cast<unsigned char>(byte - 32) : byte;
    char one[2] = {static_cast<char>(byte), 0};
    strUpper(one, 1);
    return static_cast<unsigned char>(one[0]);
}

inline unsigned short upperUnit(unsigned short unit)
{
    if (unit < 0x80)
        return (unit >= 'a' && unit <= 'z') ? static_cast<unsigned short>(unit - 32) : unit;
    unsigned short one[2] = {unit, 0};
    strUpper(one, 1);
    return one[0];
}

}  // namespace zu_str

#endif
