/*
 * ZuString and ZuStringW: growable strings over a buffer that they own or
 * borrow.
 *
 * What a string keeps true:
 *  - the length governs; operations that say so write a terminator at it
 *    (changeBytes, initialize), concat does not;
 *  - capacity is exact: an operation that needs room asks resize for exactly
 *    what it needs, with no growth factor;
 *  - an owned buffer (from the heap) is freed by unInitialize and by the
 *    destructor; a borrowed one (initializeWithBuffer) is never freed or
 *    resized: running out of room in it is error 2716;
 *  - a failed allocation reports the memory error, returns 1 and leaves the
 *    string as it was.
 *
 * Constructors do not allocate.  ZuStringW keeps, besides its units, the
 * narrow copy made by asCStr, which it owns until the next asCStr or its
 * destruction.
 */
#ifndef HNSYB_CORE_ZUSTRING_H
#define HNSYB_CORE_ZUSTRING_H

#include <unicode/ucnv.h>

#include "substring.h"

// Error of a borrowed buffer that would have to grow.
constexpr unsigned short ZU_MSG_STRING_BORROWED = 2716;

class ZU_EXPORT ZuString : public ZuSubString {
public:
    ZuString() = default;
    ~ZuString() override;
    ZuString(const ZuString&) = delete;
    ZuString& operator=(const ZuString&) = delete;

    // A copy of the text in a fresh buffer of length + 1, terminated.
    int initialize(const char* text);
    int initialize(const char* text, unsigned long length);
    int initialize(const char* text, zuCPType type);
    int initialize(const char* text, unsigned long length, zuCPType type);
    // Empty, with a buffer of capacity + 1.
    int initialize(unsigned long capacity);
    int initialize(unsigned long capacity, zuCPType type);
    // Borrow a buffer of `capacity` bytes holding `length` bytes.
    void initializeWithBuffer(char* buffer, unsigned long capacity, unsigned long length);
    void initializeWithBuffer(char* buffer, unsigned long capacity, zuCPType type, unsigned long length);
    // Take over a heap buffer (ramAllocC) of `capacity` bytes.
    void initializeTakeBuffer(char* buffer, unsigned long capacity, zuCPType type, unsigned long length);
    void unInitialize();

    int concat(char byte);
    int concat(const char* text);
    int concat(const char* text, unsigned long length);
    int concat(unsigned long number);
    int concat(long number);

    // Replaces `oldLength` bytes at `position` with `newLength` bytes of
    // `text` (a null text deletes; a non-null text with newLength 0 is
    // measured), and terminates.  0 or 1.
    int changeBytes(unsigned long position, unsigned long oldLength, const char* text, unsigned long newLength);
    // Every occurrence; replacement text is not searched again.
    int replaceSubString(const char* oldText, unsigned long oldLength, const char* newText, unsigned long newLength);
    int replaceSubString(const char* oldText, const char* newText);
    // The stretch of this string that `view` covers.
    int replaceSubString(const ZuSubString& view, const char* text, unsigned long length);
    // Exactly `capacity` bytes; 0 or 1.
    int resize(unsigned long capacity);
    // At least `count` newlines at the end.
    int forceEol(unsigned long count);

    // Quoting: the whole string in quotes (inner quotes doubled); the
    // quotes taken off again when the text is well quoted; a quoted view
    // appended.  0 or 1.
    int addQuotes(char quote);
    int removeQuotes();
    int addQuotedBytes(const ZuSubString& view, char quote);
    // Clean-ups outside quotes (q1 0: no quote tracking; q1, q2, q3 open a
    // quote that the same byte closes).  Runs of the breaking bytes become
    // one blank, a run at the end vanishes.
    int insertLineBreaks(unsigned long width, char q1, char q2, char q3);
    int removeLineBreaks(char q1, char q2, char q3);
    int removeTabs(char q1, char q2, char q3);
    int removeLineFeeds(char q1, char q2, char q3);
    // "--" comments up to the line's end, then /* */ comments, quotes not
    // looked at.  An unclosed /* leaves the text two bytes shorter than its
    // position.
    int removeComments();

    unsigned long getCapacity() const { return capacity_; }
    int isOwner() const { return owner_; }
    // The text, terminated at the length (there is always room: capacity is
    // length + 1 or more after every operation that changes the length).
    const char* c_str() const { return data_ == nullptr ? "" : data_; }
    // Takes over the text of another string (copied).
    int replaceAll(const ZuString& other);

protected:
    int ensure(unsigned long need);

    uint32_t capacity_ = 0;
    int owner_ = 0;
};

class ZU_EXPORT ZuStringW : public ZuSubStringW {
public:
    ZuStringW() = default;
    ~ZuStringW() override;
    ZuStringW(const ZuStringW&) = delete;
    ZuStringW& operator=(const ZuStringW&) = delete;

    int initialize(const unsigned short* text);
    int initialize(const unsigned short* text, unsigned long length);
    int initialize(unsigned long capacity);
    void initializeWithBuffer(unsigned short* buffer, unsigned long capacity, unsigned long length);
    void initializeTakeBuffer(unsigned short* buffer, unsigned long capacity, unsigned long length);
    // From narrow text: by its zuCPType, through a converter, or by a code
    // page number.
    int initialize(const char* text, unsigned long length, zuCPType type);
    int initialize(const char* text, unsigned long length, UConverter* converter);
    int initialize(const char* text, unsigned long length, long codePage);
    void unInitialize();

    int concat(unsigned short unit);
    int concat(const unsigned short* text);
    int concat(const unsigned short* text, unsigned long length);
    // Widens each byte, without conversion.
    int concat(const char* text, unsigned long length);
    int concat(unsigned long number);
    int concat(long number);

    int changeChars(unsigned long position, unsigned long oldLength, const unsigned short* text,
                    unsigned long newLength);
    int replaceSubString(const unsigned short* oldText, unsigned long oldLength, const unsigned short* newText,
                         unsigned long newLength);
    int replaceSubString(const unsigned short* oldText, const unsigned short* newText);
    int resize(unsigned long capacity);
    int forceEol(unsigned long count);

    int addQuotes(unsigned short quote);
    int removeQuotes();
    int addQuotedChars(const ZuSubStringW& view, unsigned short quote);
    int insertLineBreaks(unsigned long width, unsigned short q1, unsigned short q2, unsigned short q3);
    int removeLineBreaks(unsigned short q1, unsigned short q2, unsigned short q3);
    int removeTabs(unsigned short q1, unsigned short q2, unsigned short q3);
    int removeLineFeeds(unsigned short q1, unsigned short q2, unsigned short q3);

    // A narrow copy in the given encoding, owned by the string until the
    // next call or its destruction; "Out Of Memory" when it cannot be made.
    const char* asCStr(zuCPType type);

    unsigned long getCapacity() const { return capacity_; }
    int isOwner() const { return owner_; }
    int replaceAll(const ZuStringW& other);

protected:
    int ensure(unsigned long need);

    uint32_t capacity_ = 0;
    char* narrow_ = nullptr;
    int owner_ = 0;
};

#endif
