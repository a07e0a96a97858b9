/*
 * ZuIntHandleCache and ZuStrHandleCache: open ICU converters kept for the
 * life of their owner, found by code page number or by converter name.
 *
 * Unlike ZuICUHandleCache (encoding/icucache.h), which lends a converter out
 * and takes it back, these hand out the same converter at every lookup: the
 * converter stays the cache's, and the caller must not close it.
 *
 * What a cache keeps true:
 *  - rows [0, count) are filled, in the order they were added; lookup is a
 *    linear search from row 0 (the tables are short: a few code pages per
 *    connection), and the first equal key wins;
 *  - a key is stored as given: addAssoc does not look for a duplicate, since
 *    its caller has just missed in getHandleForKey;
 *  - names are compared by length, then byte for byte, case-sensitively; the
 *    string cache keeps its own NUL-terminated copy of every name;
 *  - growth doubles the capacity (a cache without tables starts at 16),
 *    allocating the new tables before freeing the old ones: a failed
 *    allocation gives 1 with the memory error reported, and leaves the cache
 *    exactly as it was.
 *
 * Ownership: every converter handed to addAssoc, and every name copy,
 * belongs to the cache from then on.  The destructor closes the converters
 * with ucnv_close and frees the copies and the tables.  Objects are plain
 * (no virtual table); `new` of one goes through ramAllocC and yields null on
 * failure instead of throwing.  No lock: a cache belongs to one owner.
 */
#ifndef HNSYB_CORE_HANDLECACHE_H
#define HNSYB_CORE_HANDLECACHE_H

#include <unicode/ucnv.h>

#include <cstddef>
#include <cstdint>

#include "../platform/export.h"

class ZU_EXPORT ZuIntHandleCache {
public:
    ZuIntHandleCache() = default;
    ~ZuIntHandleCache();
    ZuIntHandleCache(const ZuIntHandleCache&) = delete;
    ZuIntHandleCache& operator=(const ZuIntHandleCache&) = delete;

    // Tables for `capacity` rows, the rows already present kept.  A capacity
    // not above the current one changes nothing.  0 or 1.
    int initialize(unsigned long capacity);
    // Appends a row, doubling the tables when full; the converter becomes the
    // cache's.  0 or 1 (the converter then stays the caller's).
    int addAssoc(long codePage, UConverter* converter);
    // The converter of the first row with this code page, or null.
    UConverter* getHandleForKey(long codePage) const;
    // ucnv_setFallback(handle, flag != 0) on every converter held.
    void setEnableFallbackMapping(unsigned int flag);

    unsigned long getCount() const { return count_; }
    unsigned long getCapacity() const { return capacity_; }

    static void* operator new(std::size_t size) noexcept;
    static void operator delete(void* pointer) noexcept;

private:
    int grow(unsigned long capacity);

    unsigned long count_ = 0;
    unsigned long capacity_ = 0;
    int32_t* keys_ = nullptr;
    UConverter** handles_ = nullptr;
};

class ZU_EXPORT ZuStrHandleCache {
public:
    ZuStrHandleCache() = default;
    ~ZuStrHandleCache();
    ZuStrHandleCache(const ZuStrHandleCache&) = delete;
    ZuStrHandleCache& operator=(const ZuStrHandleCache&) = delete;

    // As ZuIntHandleCache::initialize, over the three tables.
    int initialize(unsigned long capacity);
    // Appends a row with a copy of the `length` bytes of `name`.  0 or 1;
    // on failure nothing is kept and the converter stays the caller's.
    int addAssoc(const unsigned char* name, unsigned long length, UConverter* converter);
    // The converter whose name has this length and these bytes, or null.  On
    // a hit *name is replaced by the cache's copy, which lives as long as
    // the cache, so the caller may keep it as its "last name".
    UConverter* getHandleForKey(const unsigned char** name, unsigned long length) const;
    void setEnableFallbackMapping(unsigned int flag);

    unsigned long getCount() const { return count_; }
    unsigned long getCapacity() const { return capacity_; }

    static void* operator new(std::size_t size) noexcept;
    static void operator delete(void* pointer) noexcept;

private:
    int grow(unsigned long capacity);

    unsigned long count_ = 0;
    unsigned long capacity_ = 0;
    unsigned char** keys_ = nullptr;
    unsigned long* keyLengths_ = nullptr;
    UConverter** handles_ = nullptr;
};

#endif
