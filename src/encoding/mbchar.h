/*
 * Multi-byte character primitives: what one character of a narrow text is,
 * and walking through text by characters.
 *
 * The narrow functions take the text's zuCPType (cptype.h).  Type 3 follows
 * UTF-8's rule, by the first byte.  Every other type asks the process locale
 * (setlocale): a character is 2 bytes when the locale's mblen says the first
 * two bytes form one, otherwise 1.  So multi-byte characters longer than 2
 * bytes are not characters in this sense: in a UTF-8 locale type 1 walks a
 * 3-byte character byte by byte, and UTF-8 text must be passed as type 3.
 * Type 2 changes only the character count, which is then a count of 16-bit
 * units.  The 16-bit overloads (unsigned short) work by unit, whatever the
 * type, and keep the argument only to mirror their narrow twins.
 *
 * Bounds: a pointer form reads a NUL-terminated text and never steps over
 * its terminator from inside a character; a form with a length reads no byte
 * at or past the length, and counts a character cut by the length as one.
 * An index form is the pointer form at text + index.  Nothing here allocates
 * except the lead-byte maps.
 *
 * The second half works on code page numbers: a lead-byte map has one byte
 * for each byte value, 1 when that byte alone does not form a character of
 * the code page (the first byte of a double-byte character, or a byte the
 * page does not assign), else 0.  generateLeadByteMap makes one from an ICU
 * converter; ZuPCU8Cache keeps them per code page and owns the maps it holds
 * (its destructor frees them).  The counting functions use a cached map and
 * give 1, leaving their out-arguments alone, when the code page has none yet.
 *
 * The locale functions use the process's locale; a cache belongs to one
 * owner and takes no lock.
 */
#ifndef HNSYB_ENCODING_MBCHAR_H
#define HNSYB_ENCODING_MBCHAR_H

#include <unicode/ucnv.h>

#include <cstddef>
#include <cstdint>

#include "../platform/export.h"
#include "cptype.h"

class ZuICUHandleCache;

// ---------------------------------------------------------------------------
// Characters of a narrow text

// Bytes of the character at text: type 3 by the first byte (below 192: 1,
// to 223: 2, to 239: 3, else 4); other types 2 for a lead byte, else 1.
ZU_EXPORT int zuCharSize(const char* text, zuCPType type);
// The UTF-8 size of the character at text, at most `length`; 0 when the
// length is not above 0.
ZU_EXPORT int zuUTF8CharLen(const char* text, long length);
// 1 when the locale's mblen(text, 2) is 2, else 0.
ZU_EXPORT int zuIsLeadByte(const char* text);
ZU_EXPORT int zuIsLeadByte(const char* text, long index);

// The next character.  A type 3 character cut by the terminator ends at it.
ZU_EXPORT const char* zuCharNext(const char* text, zuCPType type);
ZU_EXPORT long zuCharNext(const char* text, long index, zuCPType type);
inline char* zuCharNext(char* text, zuCPType type)
{
    return const_cast<char*>(zuCharNext(static_cast<const char*>(text), type));
}

// The previous character, never before start (an index form never below 0).
// Type 3 backs over the continuation bytes to their lead.  Other types test
// the character at `text` itself, not the one before: back 2 when it is a
// lead byte, else back 1.
ZU_EXPORT const char* zuCharPrev(const char* start, const char* text, zuCPType type);
ZU_EXPORT long zuCharPrev(const char* text, long index, zuCPType type);
inline char* zuCharPrev(char* start, char* text, zuCPType type)
{
    return const_cast<char*>(zuCharPrev(static_cast<const char*>(start), static_cast<const char*>(text), type));
}
// Exact matches for the other index types, so that a literal 0 or an
// unsigned index does not stand between the pointer and the index forms.
inline long zuCharPrev(const char* text, int index, zuCPType type) { return zuCharPrev(text, static_cast<long>(index), type); }
inline long zuCharPrev(const char* text, unsigned index, zuCPType type) { return zuCharPrev(text, static_cast<long>(index), type); }
inline long zuCharPrev(const char* text, unsigned long index, zuCPType type) { return zuCharPrev(text, static_cast<long>(index), type); }

// The start of the last character, found by walking from the first; for an
// empty text the text itself (index 0).
ZU_EXPORT const char* zuCharLast(const char* text, zuCPType type);
ZU_EXPORT long zuCharLast(const char* text, long length, zuCPType type);
inline char* zuCharLast(char* text, zuCPType type)
{
    return const_cast<char*>(zuCharLast(static_cast<const char*>(text), type));
}

// 1 when both characters have the same size and the same bytes, else 0.
ZU_EXPORT int zuCharEqual(const char* a, const char* b, zuCPType type);
ZU_EXPORT int zuCharEqual(const char* a, long indexA, const char* b, long indexB, zuCPType type);

// Number of characters: of a terminated text, or of `length` bytes.  Type 2
// counts 16-bit units (up to a zero unit; length / 2 bytes).
ZU_EXPORT long zuCharLen(const char* text, zuCPType type);
ZU_EXPORT long zuCharLen(const char* text, long length, zuCPType type);

// The locale's class of the character at text (mbtowc, then iswspace,
// iswalpha, iswalnum): 1 or 0; a byte sequence that is not a character is 0.
ZU_EXPORT int zuIsWhiteSpace(const char* text);
ZU_EXPORT int zuIsAlpha(const char* text);
ZU_EXPORT int zuIsAlphaNumeric(const char* text);

// 1 when `position` is a trail byte: walking from start by lead bytes
// passes it.  A position before start gives 1.
ZU_EXPORT int zuIs2ndByte(const char* start, const char* position);
// The first character that is not white space.
ZU_EXPORT const char* zuSkipBlanks(const char* text);
inline char* zuSkipBlanks(char* text) { return const_cast<char*>(zuSkipBlanks(static_cast<const char*>(text))); }
// 1 when the byte at position is `byte` and is not a trail byte.
ZU_EXPORT int zuStrSBCSChar(const char* start, const char* position, char byte);

// Case of a narrow text in place, by the locale: each character is decoded
// (mbtowc), mapped with javaToUpper or javaToLower, encoded back in place
// (wctomb), and the walk steps by type 1 from what was written.  A mapping of
// a different length therefore moves the text out of step; a mapping longer
// than the room left before the end, or one the locale cannot encode, is not
// written.  The length forms stop at a character that would pass `length`.
// Each returns text.
ZU_EXPORT char* strUpper(char* text);
ZU_EXPORT char* strUpper(char* text, long length);
ZU_EXPORT char* strLower(char* text);
ZU_EXPORT char* strLower(char* text, long length);

// One character: codes 97-122 and 224-254 lose 32 (so 247 becomes 215);
// other codes below 255 stay; 255 and above go to u_toupper.  javaToLower:
// 65-90 and 192-222 gain 32, the rest likewise, with u_tolower.
ZU_EXPORT int javaToUpper(int code);
ZU_EXPORT int javaToLower(int code);

// ---------------------------------------------------------------------------
// 16-bit twins, by unit

ZU_EXPORT const unsigned short* zuCharNext(const unsigned short* text, zuCPType type);
ZU_EXPORT long zuCharNext(const unsigned short* text, long index, zuCPType type);
ZU_EXPORT const unsigned short* zuCharPrev(const unsigned short* start, const unsigned short* text, zuCPType type);
ZU_EXPORT long zuCharPrev(const unsigned short* text, long index, zuCPType type);
inline long zuCharPrev(const unsigned short* text, int index, zuCPType type) { return zuCharPrev(text, static_cast<long>(index), type); }
inline long zuCharPrev(const unsigned short* text, unsigned index, zuCPType type) { return zuCharPrev(text, static_cast<long>(index), type); }
inline long zuCharPrev(const unsigned short* text, unsigned long index, zuCPType type) { return zuCharPrev(text, static_cast<long>(index), type); }
ZU_EXPORT const unsigned short* zuCharLast(const unsigned short* text, zuCPType type);
ZU_EXPORT long zuCharLast(const unsigned short* text, long length, zuCPType type);
ZU_EXPORT long zuCharLen(const unsigned short* text, zuCPType type);
ZU_EXPORT long zuCharLen(const unsigned short* text, long length, zuCPType type);
ZU_EXPORT int zuIsWhiteSpace(const unsigned short* text);
ZU_EXPORT int zuIsAlpha(const unsigned short* text);
ZU_EXPORT int zuIsAlphaNumeric(const unsigned short* text);
// zuIsWhiteSpace of the unit at text with its two bytes swapped.
ZU_EXPORT int zuIsWhiteSpaceUTF16Swap(const unsigned short* text);
ZU_EXPORT const unsigned short* zuSkipBlanks(const unsigned short* text);
ZU_EXPORT unsigned short* strUpper(unsigned short* text);
ZU_EXPORT unsigned short* strUpper(unsigned short* text, long length);
ZU_EXPORT unsigned short* strLower(unsigned short* text);
ZU_EXPORT unsigned short* strLower(unsigned short* text, long length);

// ---------------------------------------------------------------------------
// Lead-byte maps by code page

// Code page -> 256-byte lead-byte map.  Linear search in insertion order;
// a full table doubles (from 0 it starts at 16), allocating before freeing,
// so a failure (1, memory error reported) leaves it as it was.  The maps
// handed to addAssoc become the cache's.
class ZU_EXPORT ZuPCU8Cache {
public:
    ZuPCU8Cache() = default;
    ~ZuPCU8Cache();
    ZuPCU8Cache(const ZuPCU8Cache&) = delete;
    ZuPCU8Cache& operator=(const ZuPCU8Cache&) = delete;

    // Tables for `capacity` rows, the rows present kept; 0 or 1.
    int initialize(unsigned long capacity);
    int addAssoc(long codePage, unsigned char* map);
    // The map of the code page, or null.
    const unsigned char* getHandleForKey(long codePage) const;

    unsigned long getCount() const { return count_; }
    unsigned long getCapacity() const { return capacity_; }

    static void* operator new(std::size_t size) noexcept;
    static void operator delete(void* pointer) noexcept;

private:
    int grow(unsigned long capacity);

    unsigned long count_ = 0;
    unsigned long capacity_ = 0;
    int32_t* keys_ = nullptr;
    unsigned char** maps_ = nullptr;
};

// A new map (ramAllocC, 256 bytes, the caller's) in *map: each byte value is
// converted alone, flushing, and an ICU failure marks it 1.  The converter's
// to-Unicode state and callback are as before afterwards.  0, or 1 on a
// failed allocation (*map untouched).
ZU_EXPORT int generateLeadByteMap(UConverter* converter, unsigned char** map);
// The cached map of the code page; on a miss a converter is borrowed from
// `pool`, the map made and stored in `cache`, the converter given back.
// 0, or 1 (reported) when no converter opens or memory runs out.
ZU_EXPORT int getPossibleLeadByteMap(ZuPCU8Cache* cache, ZuICUHandleCache* pool, long codePage,
                                     const unsigned char** map);
// *result = the map entry of `byte`; 1 when the code page has no map yet.
ZU_EXPORT int isPossibleLeadByte(ZuPCU8Cache* cache, long codePage, unsigned char byte, int* result);

// Characters in `length` bytes, stepping map entry + 1; a character cut by
// the length counts.
ZU_EXPORT int getCountOfChars(ZuPCU8Cache* cache, long codePage, const unsigned char* text,
                              unsigned long length, unsigned long* count);
// Where the text may be cut: the length, or one less when its last byte is a
// possible lead byte (0 or 1 for a length of 1, 0 for 0).  Only the last
// byte is looked at.
ZU_EXPORT int getCountOfBytes(ZuPCU8Cache* cache, long codePage, const unsigned char* text,
                              unsigned long length, unsigned long* count);
// The same for converters with characters of more than 2 bytes: the text is
// decoded with ucnv_getNextUChar, and the count ends before a character that
// the end cuts.  A single-byte converter gives the length.  0, or 1 for a
// null converter.
ZU_EXPORT int getCountOfBytes(UConverter* converter, const unsigned char* text, unsigned long length,
                              unsigned long* count);
// Bytes of a UTF-8 text that are whole characters: the length when the last
// character is complete, else the position of its first byte.
ZU_EXPORT unsigned long getCountOfUTF8Bytes(const unsigned char* text, unsigned long length);
// Both at once, by walking with the map: *bytes the bytes of whole
// characters, *chars their number.
ZU_EXPORT int getCounts(ZuPCU8Cache* cache, long codePage, const unsigned char* text, unsigned long length,
                        unsigned long* bytes, unsigned long* chars);

#endif
