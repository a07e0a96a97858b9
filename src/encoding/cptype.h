/*
 * zuCPType: how a narrow string handed to a character primitive is encoded,
 * and the reserved code page numbers.  Constants only; nothing to own.
 */
#ifndef HNSYB_ENCODING_CPTYPE_H
#define HNSYB_ENCODING_CPTYPE_H

enum zuCPType {
    ZU_CP_LOCALE = 1,  // the process locale's multi-byte encoding (mblen, mbtowc, wctomb)
    ZU_CP_UTF16 = 2,   // the bytes are UTF-16 already
    ZU_CP_UTF8 = 3,
    ZU_CP_SBCS = 4     // single byte: every byte is a character
};

// Code page numbers: IANA MIB numbers, private ones from 2,000,000,000 up.
constexpr long ZU_CP_ISO_8859_1 = 4;              // the application code page when nothing is configured
constexpr long ZU_CP_UTF8_ID = 106;
constexpr long ZU_CP_UTF16BE = 1013;
constexpr long ZU_CP_UTF16LE = 1014;
constexpr long ZU_CP_UTF16_ANY = 1015;            // UTF-16, byte order unstated (uses the name UTF-16BE)
constexpr long ZU_CP_ICU_DEFAULT = 2000000000;    // ICU's default converter (a null name)
constexpr long ZU_CP_NONE = -2147483647L - 1;     // 0x80000000: no code page
constexpr long ZU_CP_PROFILE_MISSING = -666666;   // marker of a missing profile entry

#endif
