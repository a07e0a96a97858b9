/*
 * ZuSubString and ZuSubStringW: views of text, a pointer and a length.
 *
 * A view owns nothing and is copied freely; the text it shows must outlive
 * it.  The length governs: the text need not be terminated, and nothing
 * here reads at or past the length (nor past a NUL where a search stops at
 * one).  A narrow view carries the zuCPType of its bytes (1 unless told
 * otherwise), by which it steps through characters; the wide view steps by
 * 16-bit units.
 *
 * hash() is the hash of the dictionaries: the first 5 bytes (6 units),
 * upper-cased, summed (wide: unit i shifted left by 3 * i).  Texts that
 * differ only in case within that prefix hash alike, and compare() is
 * case-blind, so such views are equal keys.
 */
#ifndef HNSYB_CORE_SUBSTRING_H
#define HNSYB_CORE_SUBSTRING_H

#include <cstdint>

#include "../encoding/cptype.h"
#include "object.h"

class ZuString;
class ZuArray;

class ZU_EXPORT ZuSubString : public ZuObject {
public:
    ZuSubString() = default;
    ZuSubString(const char* text, unsigned long length, zuCPType type = ZU_CP_LOCALE);
    explicit ZuSubString(const char* text, zuCPType type = ZU_CP_LOCALE);
    ~ZuSubString() override;
    ZuSubString(const ZuSubString&) = default;
    ZuSubString& operator=(const ZuSubString&) = default;

    // Only set the fields.
    void initialize(const char* text, unsigned long length);
    void initialize(const char* text, unsigned long length, zuCPType type);

    const char* getData() const { return data_; }
    char* getWritableData() const { return data_; }
    unsigned long getLength() const { return length_; }
    zuCPType getType() const { return type_; }
    void setType(zuCPType type) { type_ = type; }
    void setLength(unsigned long length) { length_ = length2_ = static_cast<uint32_t>(length); }

    // Position of the first character equal to `c` from `start`, stepping by
    // whole characters; the length when there is none (or no data).
    unsigned long findChar(char c, unsigned long start = 0) const;
    // Position of the first match starting on a character boundary; the
    // length when there is none.
    unsigned long findSubString(const char* text, unsigned long start = 0) const;
    // Occurrences of `c` up to a NUL or the end (16 bits).
    unsigned short countChar(char c) const;
    unsigned long hash() const;
    // Case-blind over both lengths, cut to signed 16 bits.
    int compare(const ZuObject* other) const override;
    // Index of the first text of the table equal to the view (exact or
    // case-blind); `count` when none.
    unsigned long indexInSet(const char* const* table, unsigned long count) const;
    unsigned long indexInSetCi(const char* const* table, unsigned long count) const;
    // Shortens the length while the last byte is white space.
    void rightBlankTrim();

    // Unquoted / quoted copies into a caller's buffer (length + 3 bytes
    // suffice); the buffer is returned.
    char* getCopyUnquoted(char* buffer) const;
    char* getCopyQuoted(char* buffer, char quote) const;
    // Appends the unquoted content (the view starts with its quote) to a
    // string; 0 or 1.
    int copyQuotedStr(ZuString* string) const;
    // Splits at newlines into new ZuString objects that the array owns;
    // empty lines are dropped.  0 or 1.
    int getLines(ZuArray* lines);

protected:
    uint32_t length_ = 0;
    uint32_t length2_ = 0;  // set equal to the length by every initialisation
    char* data_ = nullptr;
    zuCPType type_ = ZU_CP_LOCALE;
};

class ZU_EXPORT ZuSubStringW : public ZuObject {
public:
    ZuSubStringW() = default;
    ZuSubStringW(const unsigned short* text, unsigned long length);
    explicit ZuSubStringW(const unsigned short* text);
    ~ZuSubStringW() override;
    ZuSubStringW(const ZuSubStringW&) = default;
    ZuSubStringW& operator=(const ZuSubStringW&) = default;

    void initialize(const unsigned short* text, unsigned long length);

    const unsigned short* getData() const { return data_; }
    unsigned short* getWritableData() const { return data_; }
    unsigned long getLength() const { return length_; }
    void setLength(unsigned long length) { length_ = static_cast<uint32_t>(length); }

    unsigned long findChar(unsigned short c, unsigned long start = 0) const;
    unsigned long findSubString(const unsigned short* text, unsigned long start = 0) const;
    unsigned short countChar(unsigned short c) const;
    unsigned long hash() const;
    int compare(const ZuObject* other) const override;
    unsigned long indexInSet(const unsigned short* const* table, unsigned long count) const;
    unsigned long indexInSetCi(const unsigned short* const* table, unsigned long count) const;
    void rightBlankTrim();

protected:
    uint32_t length_ = 0;
    unsigned short* data_ = nullptr;
};

#endif
