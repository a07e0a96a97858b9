/*
 * The profile file cache: the whole text of one profile file in memory,
 * searched in place for every read and rewritten from that text for every
 * write; and the per-task list that shares one cache per resolved path.
 *
 * What the cache keeps true:
 *  - the text is never parsed into a tree: every search runs over the raw
 *    bytes, which end with one NUL (text[cachedSize] == 0);
 *  - whether the text is stale is decided from the file's modification time
 *    and size only, checked at the head of every read and every write
 *    (proFileSync); a rewrite that would leave both unchanged gains or loses
 *    one end of line, so that other processes see it;
 *  - state 1 means path and text are loaded and usable; anything else reads
 *    as "give the default".  A cache of a missing driver file (.odbcinst.ini)
 *    is in state 0 with its resolved name kept, and loads the file once it
 *    exists;
 *  - a reload that fails keeps the old path and text (and the date and size
 *    that make the next probe try again); reads give defaults meanwhile;
 *  - a failed write leaves no descriptor open, no lock held and the cached
 *    text as it was.
 *
 * Locking: the list's semaphore guards the array and the use counts that can
 * end a cache; each cache's semaphore guards its text, paths, date and size
 * during a probe, a search, a reload and a rewrite.  Order: list, then
 * cache, then the file (a rewrite truncates the file only with the cache's
 * semaphore held, so two threads never truncate under each other's writes).
 * Between processes, writers wait for one another on a lock byte of the
 * file (bounded wait) and re-read a file that changed before rewriting it.
 * Neither semaphore is recursive, and proFileSync is never entered with the
 * cache's semaphore held.
 *
 * Memory: a cache owns its paths and its text (heap, through ram).  The list
 * owns the caches in its array: close() destroys a cache whose use count
 * reaches zero, and the list's destructor destroys every cache left.
 */
#ifndef HNSYB_PROFILE_INICACHE_H
#define HNSYB_PROFILE_INICACHE_H

#include <cstdint>

#include "../core/array.h"
#include "../platform/semaphore.h"

// End of line of the profile format, and the working limits of its buffers.
#define ZU_INI_EOL "\n"
constexpr int ZU_INI_EOL_LEN = 1;
constexpr int ZU_INI_NAME_MAX = 528;    // a bracketed section name, a compared entry name
constexpr int ZU_INI_VALUE_MAX = 2048;  // a value returned by a read, a line built for writing
constexpr int ZU_INI_PATH_MAX = 1024;

// Message number of a ZuIni used without an open cache.
constexpr unsigned short ZU_MSG_INI_NOT_OPEN = 2717;

class ZU_EXPORT ZuIniFileCache : public ZuObject {
public:
    ZuIniFileCache();
    // Runs Close().
    ~ZuIniFileCache() override;
    ZuIniFileCache(const ZuIniFileCache&) = delete;
    ZuIniFileCache& operator=(const ZuIniFileCache&) = delete;

    // Loads the file: 0 on success (state 1), 1 on failure.  `mode` is given
    // to bosFileOpen with 0x202 added; a read-only file is loaded read-only
    // without complaint, and a missing .odbcinst.ini gives 0 with state 0
    // (every read then answers with its default).  The wide form keeps the
    // wide name too, and the staleness probe then uses it.
    int bosZuIniOpen(const char* name, unsigned long mode);
    int bosZuIniOpen(const unsigned short* name, unsigned long mode);
    // 0 when the text is current or has been reloaded; non-zero when it is
    // unusable.  Must not be called with the cache's semaphore held.
    int proFileSync();
    // Loads a cache that is not usable (a driver file that was missing when
    // it was first cached) by `name` with `mode`, under the semaphore, as a
    // new cache would be; 0 when it is usable afterwards.
    int loadIfUnusable(const char* name, unsigned long mode);

    // A value, the list of section names (section null) or of a section's
    // entry names (entry null).  Returns a length; never reports.
    int bosGetProfileString(const char* section, const char* entry, const char* defaultValue, char* buffer,
                            int size);
    int bosGetProfileStringW(const unsigned short* section, const unsigned short* entry,
                             const unsigned short* defaultValue, unsigned short* buffer, int size);
    unsigned int bosGetProfileInt(const char* section, const char* entry, unsigned int defaultValue);
    // The entry names of a section, NUL-separated with a closing NUL; count + 1,
    // or 0 with an empty buffer.
    int bosGetProfileSection(const char* section, char* buffer, int size);
    // 1 on success, 0 on failure.  A null value deletes the entry, a null
    // entry the section.
    int bosPutProfileString(const char* section, const char* entry, const char* value);

    // Searches over the text; 0 found, 1 not found.  getEntry's position comes
    // in at the section's start and leaves at the start of the entry's name.
    // The caller holds the cache's semaphore.
    int getSection(const char* bracketedName, char** start, char** next);
    int getEntry(const char* name, char** position, char** valueStart, char** valueEnd);

    void incrementUseCount();
    // The new count.
    int decrementUseCount();
    // Frees both paths and the text; state 0.
    void Close();

    // 1 when the cache's resolved path is exactly `path` (read under the
    // cache's semaphore, since a reload replaces it).
    int hasPath(const char* path);

    // Read-only views for tests; not synchronised with other threads.
    const char* getPath() const { return path_; }
    const char* getText() const { return text_; }
    unsigned long getCachedSize() const { return cachedSize_; }
    unsigned long getCachedDate() const { return cachedDate_; }
    int getState() const { return state_; }
    int getUseCount() const { return useCount_; }
    unsigned long getOpenMode() const { return openMode_; }

private:
    enum State { StateUnusable = 0, StateLoaded = 1 };

    int load(const char* name, unsigned long mode);
    int adopt(const char* resolved);
    int readAll(int handle, unsigned long size, unsigned long date);
    int stat(unsigned long* date, unsigned long* size) const;
    int syncLocked();
    // Takes the semaphore and brings the text up to date: 0 with the
    // semaphore held and a usable text, 1 with it released.
    int lockUsable();
    bool isHeaderStart(const char* open) const;
    int sectionNames(char* buffer, int size);
    int entryNames(const char* start, const char* next, char* buffer, int size);
    int rewrite(const char* bracketed, const char* entry, const char* value);
    void releaseFile(int locked);

    int32_t handle_ = 0;             // 0 whenever no file is open
    uint32_t cachedSize_ = 0;        // length in bytes when last loaded
    uint32_t openMode_ = 0;          // bosFileOpen flags of the last open
    char* path_ = nullptr;           // resolved path, owned
    unsigned short* widePath_ = nullptr;  // owned; null unless opened by a wide name
    uint32_t cachedDate_ = 0;        // modification time in seconds when last loaded
    int32_t useCount_ = 1;
    char* text_ = nullptr;           // the whole file plus one NUL, owned
    int32_t state_ = StateUnusable;
    ZuSemaphore lock_;
};

class ZU_EXPORT ZuIniFileCacheList : public ZuObject {
public:
    ZuIniFileCacheList();
    // Destroys every cache in the array, whatever its use count.
    ~ZuIniFileCacheList() override;
    ZuIniFileCacheList(const ZuIniFileCacheList&) = delete;
    ZuIniFileCacheList& operator=(const ZuIniFileCacheList&) = delete;

    // The cache of the file, shared by resolved path (its use count raised),
    // or a new one loaded with `mode`; null when the name cannot be resolved
    // or the file cannot be loaded.
    ZuIniFileCache* open(const char* path, unsigned long mode);
    ZuIniFileCache* open(const unsigned short* path, unsigned long mode);
    // Lowers the use count; at zero destroys the cache.  Null is ignored.
    void close(ZuIniFileCache* cache);
    // Takes the pointer out of the array if it is there (destroys nothing).
    void remove(ZuIniFileCache* cache);

    unsigned getCount();

private:
    ZuIniFileCache* openNamed(const char* name, const unsigned short* wideName, unsigned long mode);

    ZuSemaphore lock_;
    ZuArray caches_;
};

// The task's list (per-task slot 12), created on first use; null only when
// it cannot be allocated (memory error reported).
ZU_EXPORT ZuIniFileCacheList* zuGetIniFileCacheList();

#endif
