/*
 * ZuReplaceString(W): rewriting a ZuString in place through a gap.
 *
 * The target's text is split in three: what has been written (from 0 to the
 * output position), the gap (from there to the gap end), and what has not
 * been read yet (from the gap end on), which is this object's view.  A
 * caller reads ahead through the view, consuming input (the gap grows), and
 * writes output with concat, which fills the gap and, when the gap is too
 * small, moves the unread text up to make room (by the text's size plus
 * 512).  Text to be written may lie in the target itself: it is re-based
 * when the buffer moves.  The destructor closes the gap and leaves the
 * target holding the written text followed by the unread rest.
 *
 * The target stays the caller's; it must outlive this object and not be
 * changed by anyone else meanwhile.
 */
#ifndef HNSYB_CORE_REPLACESTRING_H
#define HNSYB_CORE_REPLACESTRING_H

#include "zustring.h"

class ZU_EXPORT ZuReplaceString : public ZuSubString {
public:
    ZuReplaceString() = default;
    explicit ZuReplaceString(zuCPType type);
    explicit ZuReplaceString(ZuString* target);
    ~ZuReplaceString() override;
    ZuReplaceString(const ZuReplaceString&) = delete;
    ZuReplaceString& operator=(const ZuReplaceString&) = delete;

    // Consumes `count` bytes of the unread text (they join the gap).
    void consume(unsigned long count);
    // Writes at the output position.  0 or 1.
    int concat(const char* text, unsigned long length);
    // Writes `length` bytes in quotes, quotes inside doubled; 0 or 1.
    int addQuotedBytes(const char* text, unsigned long length, char quote);

    unsigned long getOutputPosition() const { return out_; }
    unsigned long getGapEnd() const { return gapEnd_; }

private:
    void syncView();

    ZuString* target_ = nullptr;
    unsigned long out_ = 0;
    unsigned long gapEnd_ = 0;
};

class ZU_EXPORT ZuReplaceStringW : public ZuSubStringW {
public:
    ZuReplaceStringW() = default;
    explicit ZuReplaceStringW(ZuStringW* target);
    ~ZuReplaceStringW() override;
    ZuReplaceStringW(const ZuReplaceStringW&) = delete;
    ZuReplaceStringW& operator=(const ZuReplaceStringW&) = delete;

    void consume(unsigned long count);
    int concat(const unsigned short* text, unsigned long length);
    int addQuotedChars(const unsigned short* text, unsigned long length, unsigned short quote);

    unsigned long getOutputPosition() const { return out_; }
    unsigned long getGapEnd() const { return gapEnd_; }

private:
    void syncView();

    ZuStringW* target_ = nullptr;
    unsigned long out_ = 0;
    unsigned long gapEnd_ = 0;
};

#endif
