/*
 * ZuICUHandleCache: a pool of ICU converters that lends them out.
 *
 * Up to 8 code pages have a row; a row keeps up to 3 idle converters of its
 * code page.  getHandleForKey hands out an idle one (last in, first out) or
 * opens a new one; addAssoc takes it back, closing it when the row is full.
 * A converter lent out belongs to the borrower until it is given back; one
 * opened for a code page that found no row is simply closed on return.
 *
 * With a substitution mode other than 0 each converter carries an
 * ICUSubstitutionErrorInfo, installed as its from-Unicode callback context,
 * and lent out and taken back with it.  The pool has no lock: its owner
 * serialises its use.
 */
#ifndef HNSYB_ENCODING_ICUCACHE_H
#define HNSYB_ENCODING_ICUCACHE_H

#include <unicode/ucnv.h>

#include "../platform/export.h"

struct ICUSubstitutionErrorInfo;

class ZU_EXPORT ZuICUHandleCache {
public:
    static constexpr int kRows = 8;
    static constexpr int kIdlePerRow = 3;

    explicit ZuICUHandleCache(int substitutionMode = 0);
    ~ZuICUHandleCache();
    ZuICUHandleCache(const ZuICUHandleCache&) = delete;
    ZuICUHandleCache& operator=(const ZuICUHandleCache&) = delete;

    // A converter for the code page, or null (error reported).  *info gets
    // its substitution context (null with mode 0).
    UConverter* getHandleForKey(long codePage, ICUSubstitutionErrorInfo** info);
    // Gives a converter back.
    void addAssoc(long codePage, UConverter* converter, ICUSubstitutionErrorInfo* info);
    // Largest and smallest bytes per character of the code page.
    void getCharSizes(long codePage, int* maxSize, int* minSize);
    // Closes every idle converter.
    void clearCache();

    int getRowCount() const { return used_; }
    int getIdleCount(long codePage) const;

private:
    struct Row {
        long codePage;
        const char* name;
        int maxBytes;
        int minBytes;
        int idle;
        UConverter* converters[kIdlePerRow];
    };
    int findRow(long codePage) const;
    int takeRow(long codePage);
    UConverter* openFor(long codePage, const char* name, ICUSubstitutionErrorInfo** info);

    int used_ = 0;
    int capacity_ = kRows;
    Row rows_[kRows] = {};
    ICUSubstitutionErrorInfo* contexts_[kRows][kIdlePerRow + 1] = {};
    int substitutionMode_ = 0;
};

#endif
