#include "uxreport_impl.h"
#include "icucache.h"

#include <cstdio>

#include "../core/errorlist.h"
#include "../platform/ram.h"
#include "codepage.h"
#include "cptype.h"
#include "ux.h"

ZuICUHandleCache::ZuICUHandleCache(int substitutionMode) : substitutionMode_(substitutionMode) {}

ZuICUHandleCache::~ZuICUHandleCache() { clearCache(); }

int ZuICUHandleCache::findRow(long codePage) const
{
    for (int i = 0; i < used_; ++i)
        if (rows_[i].codePage == codePage)
            return i;
    return -1;
}

// Prepares the next free row for the code page; it counts (used_) only
// once a converter of its code page has opened, so that code pages this ICU
// cannot open do not use up the rows.
int ZuICUHandleCache::takeRow(long codePage)
{
    if (used_ >= capacity_)
        return -1;
    Row& r = rows_[used_];
    r = Row{};
    r.codePage = codePage;
    r.name = ucnvIANAidToICUname(codePage);
    return used_;
}

int ZuICUHandleCache::getIdleCount(long codePage) const
{
    const int row = findRow(codePage);
    return row < 0 ? 0 : rows_[row].idle;
}

UConverter* ZuICUHandleCache::openFor(long codePage, const char* name, ICUSubstitutionErrorInfo** info)
{
    UErrorCode status = U_ZERO_ERROR;
    UConverter* c = ucnv_open(name, &status);
    if (U_FAILURE(status)) {
        ucnv_close(c);
        reportOpenFailure(status, codePage);
        return nullptr;
    }
    ICUSubstitutionErrorInfo* context = nullptr;
    if (substitutionMode_ != 0) {
        context = static_cast<ICUSubstitutionErrorInfo*>(ramAllocC(sizeof(ICUSubstitutionErrorInfo)));
        if (context == nullptr) {
            ucnv_close(c);
            return nullptr;
        }
        *context = ICUSubstitutionErrorInfo{substitutionMode_, 0, nullptr, nullptr};
        installSubstitutionCallback(c, context);
    }
    if (info != nullptr)
        *info = context;
    else
        ramFreeC(context);
    return c;
}

UConverter* ZuICUHandleCache::getHandleForKey(long codePage, ICUSubstitutionErrorInfo** info)
{
    if (info != nullptr)
        *info = nullptr;
    int row = findRow(codePage);
    if (row < 0) {
        row = takeRow(codePage);
        if (row < 0)  // no room: a converter outside the pool
            return openFor(codePage, ucnvIANAidToICUname(codePage), info);
    }
    Row& r = rows_[row];
    if (r.idle > 0) {
        --r.idle;
        UConverter* c = r.converters[r.idle];
        r.converters[r.idle] = nullptr;
        if (info != nullptr)
            *info = contexts_[row][r.idle];
        contexts_[row][r.idle] = nullptr;
        return c;
    }
    UConverter* c = openFor(codePage, r.name, info);
    if (c != nullptr && r.maxBytes == 0) {
        r.maxBytes = ucnv_getMaxCharSize(c);
        r.minBytes = ucnv_getMinCharSize(c);
        if (row == used_)
            ++used_;  // the first open of a row makes it count
    }
    return c;
}

void ZuICUHandleCache::addAssoc(long codePage, UConverter* converter, ICUSubstitutionErrorInfo* info)
{
    if (converter == nullptr)
        return;
    const int row = findRow(codePage);
    if (row >= 0 && rows_[row].idle < kIdlePerRow) {
        Row& r = rows_[row];
        ucnv_reset(converter);
        if (info != nullptr)
            info->substituted = 0;
        contexts_[row][r.idle] = info;
        r.converters[r.idle++] = converter;
        return;
    }
    ucnv_close(converter);
    ramFreeC(info);
}

void ZuICUHandleCache::getCharSizes(long codePage, int* maxSize, int* minSize)
{
    int mx = 2, mn = 1;
    if (codePage == ZU_CP_UTF16BE || codePage == ZU_CP_UTF16LE || codePage == ZU_CP_UTF16_ANY) {
        mx = mn = 2;
    } else if (int row = findRow(codePage); row >= 0 && rows_[row].maxBytes != 0) {
        mx = rows_[row].maxBytes;
        mn = rows_[row].minBytes;
    } else if (used_ < capacity_ || row >= 0) {
        // A code page that does not open gives the defaults quietly: asking
        // for sizes reports nothing.
        UErrorCode status = U_ZERO_ERROR;
        UConverter* probe = ucnv_open(ucnvIANAidToICUname(codePage), &status);
        const bool opens = U_SUCCESS(status);
        ucnv_close(probe);
        ICUSubstitutionErrorInfo* info = nullptr;
        if (opens) {
            if (UConverter* c = getHandleForKey(codePage, &info)) {
                mx = ucnv_getMaxCharSize(c);
                mn = ucnv_getMinCharSize(c);
                addAssoc(codePage, c, info);  // kept idle for the next user
            }
        }
    } else {
        UErrorCode status = U_ZERO_ERROR;
        UConverter* c = ucnv_open(ucnvIANAidToICUname(codePage), &status);
        if (U_SUCCESS(status)) {
            mx = mn = ucnv_getMaxCharSize(c);  // rows full: the largest size for both
        }
        ucnv_close(c);
    }
    if (maxSize != nullptr)
        *maxSize = mx;
    if (minSize != nullptr)
        *minSize = mn;
}

void ZuICUHandleCache::clearCache()
{
    for (int row = 0; row < used_; ++row) {
        Row& r = rows_[row];
        for (int i = 0; i < r.idle; ++i) {
            ucnv_close(r.converters[i]);
            r.converters[i] = nullptr;
            ramFreeC(contexts_[row][i]);
            contexts_[row][i] = nullptr;
        }
        r.idle = 0;
    }
}
