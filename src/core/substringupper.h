/*
 * ZuSubStringUpper(W): a view compared against upper-case keywords.
 *
 * The view is upper-cased once, lazily, into a small buffer of the object
 * (24 bytes, 48 units), so that matching a token against a list of keywords
 * does not upper-case it again for every keyword.  A view longer than the
 * buffer is compared case-blind without one.  The view's text must outlive
 * the object; nothing is allocated.
 */
#ifndef HNSYB_CORE_SUBSTRINGUPPER_H
#define HNSYB_CORE_SUBSTRINGUPPER_H

#include "substring.h"

class ZU_EXPORT ZuSubStringUpper {
public:
    explicit ZuSubStringUpper(const ZuSubString* view);
    // `text` is upper case already.  1 when the view equals it but for case.
    int isEqualUpper(const char* text, unsigned long length);

private:
    const ZuSubString* view_;
    char buffer_[24];
    unsigned long length_;
    int valid_ = 0;
};

class ZU_EXPORT ZuSubStringUpperW {
public:
    explicit ZuSubStringUpperW(const ZuSubStringW* view);
    int isEqualUpper(const unsigned short* text, unsigned long length);
    // Ordering of the upper-cased view against `text` (< 0, 0, > 0).
    int compareUpper(const unsigned short* text, unsigned long length);
    // The first unit upper-cased; 0 for an empty view.
    unsigned short getFirstChar();

private:
    bool fill();

    const ZuSubStringW* view_;
    unsigned short buffer_[48];
    unsigned long length_;
    int valid_ = 0;
};

#endif
