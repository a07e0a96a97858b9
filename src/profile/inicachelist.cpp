// The task's table of open profile caches, shared by resolved path and
// counted by use.
#include <cstring>

#include "../platform/bosfile.h"
#include "../platform/mds.h"
#include "inicache.h"
#include "inicache_impl.h"
#include "profile.h"

ZuIniFileCacheList::ZuIniFileCacheList() = default;

ZuIniFileCacheList::~ZuIniFileCacheList()
{
    ZuSemaphoreGuard guard(lock_);
    caches_.deleteContents();
}

ZuIniFileCache* ZuIniFileCacheList::open(const char* path, unsigned long mode)
{
    if (path == nullptr || std::strlen(path) > static_cast<std::size_t>(BOS_MAX_PATH))
        return nullptr;
    return openNamed(path, nullptr, mode);
}

ZuIniFileCache* ZuIniFileCacheList::open(const unsigned short* path, unsigned long mode)
{
    if (path == nullptr)
        return nullptr;
    char narrow[ZU_INI_PATH_MAX + 1];
    if (zuGetANSIStrFromUTF16Str(path, narrow, sizeof narrow) < 0)
        return nullptr;
    return openNamed(narrow, path, mode);
}

// The name is resolved by the profile rules alone (nothing is opened), and
// the resolved path is what caches are shared by.
ZuIniFileCache* ZuIniFileCacheList::openNamed(const char* name, const unsigned short* wideName, unsigned long mode)
{
    char resolved[BOS_MAX_PATH + 1];
    std::strcpy(resolved, name);
    int handle = 0;
    if (bosFileOpen(resolved, BOS_OPEN_NAME_ONLY | BOS_OPEN_PROFILE, &handle) != 0)
        return nullptr;
    if (handle > 0)
        bosFileClose(handle);

    ZuSemaphoreGuard guard(lock_);
    for (unsigned i = 0; i < caches_.getCount(); ++i) {
        auto* cache = static_cast<ZuIniFileCache*>(caches_.at(i));
        if (cache->hasPath(resolved)) {
            cache->incrementUseCount();
            // A missing driver file stays cached (unusable) after a read; a
            // later open that may create the file (a write) loads it as a
            // fresh cache would, or the file could never be written.
            if (mode & (BOS_OPEN_CREATE | BOS_OPEN_CREATE_IF_MISSING))
                cache->loadIfUnusable(name, mode);
            return cache;
        }
    }
    auto* cache = new ZuIniFileCache();
    if (cache == nullptr)
        return nullptr;
    const int failed = wideName != nullptr ? cache->bosZuIniOpen(wideName, mode) : cache->bosZuIniOpen(name, mode);
    if (failed != 0 || caches_.add(cache) != 0) {
        delete cache;
        return nullptr;
    }
    return cache;
}

void ZuIniFileCacheList::close(ZuIniFileCache* cache)
{
    if (cache == nullptr)
        return;
    ZuSemaphoreGuard guard(lock_);
    if (cache->decrementUseCount() > 0)
        return;
    for (unsigned i = 0; i < caches_.getCount(); ++i) {
        if (caches_.at(i) == cache) {
            caches_.removeAtIndex(i);
            break;
        }
    }
    delete cache;
}

void ZuIniFileCacheList::remove(ZuIniFileCache* cache)
{
    ZuSemaphoreGuard guard(lock_);
    for (unsigned i = 0; i < caches_.getCount(); ++i) {
        if (caches_.at(i) == cache) {
            caches_.removeAtIndex(i);
            return;
        }
    }
}

unsigned ZuIniFileCacheList::getCount()
{
    ZuSemaphoreGuard guard(lock_);
    return caches_.getCount();
}

// The list is made by whoever needs it first; a thread that loses the race
// to store it destroys its own.  It lives as long as the task.
ZuIniFileCacheList* zuGetIniFileCacheList()
{
    void** slot = mdsGetPerTaskDataAddress(PTD_INI_CACHE_LIST);
    if (slot == nullptr)
        return nullptr;
    void* current = __atomic_load_n(slot, __ATOMIC_ACQUIRE);
    if (current != nullptr)
        return static_cast<ZuIniFileCacheList*>(current);
    auto* list = new ZuIniFileCacheList();
    if (list == nullptr)
        return nullptr;
    void* expected = nullptr;
    if (__atomic_compare_exchange_n(slot, &expected, static_cast<void*>(list), false, __ATOMIC_ACQ_REL,
                                    __ATOMIC_ACQUIRE))
        return list;
    delete list;
    return static_cast<ZuIniFileCacheList*>(expected);
}
