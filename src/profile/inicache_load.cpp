// Loading a profile file into its cache, the staleness probe, and the
// cache's life: construction, use counts, Close.
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>

#include "../core/errorlist.h"
#include "../core/strcmp.h"
#include "../platform/bosfile.h"
#include "../platform/ram.h"
#include "../platform/trace.h"
#include "inicache.h"
#include "inicache_impl.h"
#include "profile.h"

char* iniDupText(const char* text, std::size_t length)
{
    char* copy = static_cast<char*>(ramAllocC(length + 1));
    if (copy == nullptr)
        return nullptr;
    std::memcpy(copy, text, length);
    copy[length] = 0;
    return copy;
}

char* iniDupText(const char* text) { return iniDupText(text, std::strlen(text)); }

int iniBracket(const char* section, char* out)
{
    const std::size_t length = std::strlen(section);
    if (length + 3 > static_cast<std::size_t>(ZU_INI_NAME_MAX))
        return -1;
    out[0] = '[';
    std::memcpy(out + 1, section, length);
    out[length + 1] = ']';
    out[length + 2] = 0;
    return static_cast<int>(length + 2);
}

unsigned iniErrorCount()
{
    ZuErrorList* list = ZuErrorKeeper::getErrorList();
    return list == nullptr ? 0 : list->getCount();
}

void iniDropErrorsSince(unsigned before)
{
    ZuErrorList* list = ZuErrorKeeper::getErrorList();
    while (list != nullptr && list->getCount() > before)
        ZuErrorKeeper::clearLastError();
}

namespace {
// Errors added to the thread's list since it held `before` entries.  The
// load looks at and clears only what its own opens reported, never an error
// its caller had already collected.
ZuError* newError(unsigned before)
{
    ZuErrorList* list = ZuErrorKeeper::getErrorList();
    if (list == nullptr || list->getCount() <= before)
        return nullptr;
    return list->getLastError();
}

void clearNewError(unsigned before)
{
    if (newError(before) != nullptr)
        ZuErrorKeeper::clearLastError();
}

// The driver file may be missing: its cache then answers with defaults.
bool mayBeMissing(const char* name)
{
    if (strEqualCi(name, "ODBCINST.INI") || strEqualCi(name, ".odbcinst.ini"))
        return true;
    const char* variable = std::getenv("ODBCINST");
    return variable != nullptr && std::strcmp(variable, name) == 0;
}
}  // namespace

ZuIniFileCache::ZuIniFileCache() = default;

ZuIniFileCache::~ZuIniFileCache() { Close(); }

int ZuIniFileCache::bosZuIniOpen(const char* name, unsigned long mode)
{
    if (name == nullptr)
        return 1;
    return load(name, mode);
}

int ZuIniFileCache::bosZuIniOpen(const unsigned short* name, unsigned long mode)
{
    if (name == nullptr)
        return 1;
    char narrow[ZU_INI_PATH_MAX + 1];
    if (zuGetANSIStrFromUTF16Str(name, narrow, sizeof narrow) < 0)
        return 1;
    const int result = load(narrow, mode);
    if (result == 0) {
        std::size_t units = 0;
        while (name[units] != 0)
            ++units;
        ramFreeC(widePath_);
        widePath_ = static_cast<unsigned short*>(ramAllocC((units + 1) * sizeof(unsigned short)));
        // Without the wide copy the narrow path serves the probe just as well.
        if (widePath_ != nullptr)
            std::memcpy(widePath_, name, (units + 1) * sizeof(unsigned short));
    }
    return result;
}

// The load.  The caller holds the semaphore, or is the only user of a cache
// that nobody else can see yet.  Tries the file read-write first (mode |
// 0x202), then falls back as the name and the error allow:
//   - the driver file may be missing: 0 with state 0 (every read defaults);
//   - no write access: read-only, without complaint;
//   - anything else: the error becomes a warning and the result is 1.
int ZuIniFileCache::load(const char* name, unsigned long mode)
{
    bosTrace(ZU_TRACE_PROFILE_LOAD, "ZuIniOpen: File:%s \n", name);
    // What was loaded before stays until the new text is complete: a reload
    // that fails (the file gone, memory short) leaves path and text as they
    // were, with the date and size that make the next probe try again.

    if (std::strlen(name) > static_cast<std::size_t>(BOS_MAX_PATH)) {
        // A cut name could name another file, which a create mode would make.
        bosMapError(ENAMETOOLONG, name);
        return 1;
    }
    char copy[BOS_MAX_PATH + 1];
    std::strcpy(copy, name);
    unsigned long openMode = mode | BOS_OPEN_WRITE | BOS_OPEN_PROFILE;
    for (;;) {
        const unsigned before = iniErrorCount();
        int handle = 0;
        if (bosFileOpen(copy, openMode, &handle) == 0) {
            openMode_ = static_cast<uint32_t>(openMode);
            handle_ = handle;
            return adopt(copy);
        }
        ZuErrorList* list = ZuErrorKeeper::getErrorList();
        if (mayBeMissing(name)) {
            if (openMode & BOS_OPEN_WRITE) {
                clearNewError(before);
                openMode &= ~(BOS_OPEN_WRITE | BOS_OPEN_CREATE_IF_MISSING);
                continue;
            }
            // Keep the resolved name, so that the task's list finds this
            // cache again instead of adding one more for every call, and so
            // that the file is loaded once it appears.
            if (path_ == nullptr || std::strcmp(path_, copy) != 0) {
                if (char* kept = iniDupText(copy)) {
                    ramFreeC(path_);
                    path_ = kept;
                }
            }
            if (list == nullptr)
                return 0;
            ZuError* error = newError(before);
            if (error == nullptr)
                return 0;
            if (error->getErrorNumber() == ZU_MSG_NO_FILE) {
                ZuErrorKeeper::clearLastError();
                return 0;
            }
            return 1;
        }
        if (list == nullptr) {
            if ((openMode & BOS_OPEN_WRITE) == 0)
                return 1;
            openMode &= ~(BOS_OPEN_WRITE | BOS_OPEN_CREATE_IF_MISSING);
            continue;
        }
        ZuError* error = newError(before);
        const unsigned short number = error != nullptr ? error->getErrorNumber() : 0;
        if ((openMode & BOS_OPEN_WRITE) &&
            (number == ZU_MSG_ACCESS || number == ZU_MSG_PERMISSION || number == ZU_MSG_SHARING ||
             number == ZU_MSG_READ_ONLY_FS)) {
            openMode &= ~static_cast<unsigned long>(BOS_OPEN_WRITE);
            clearNewError(before);
            continue;
        }
        if (error != nullptr && !error->isStatic())
            error->setWarning();
        return 1;
    }
}

// Takes over the open file handle_: path, date and size, the text.  Closes
// the file whatever happens; on failure the cache keeps what it had.
int ZuIniFileCache::adopt(const char* resolved)
{
    char* path = iniDupText(resolved);
    unsigned long date = 0;
    unsigned long size = 0;
    const int failed = path == nullptr || bosFileDateSize(path, &date, &size) != 0 || readAll(handle_, size, date) != 0;
    bosFileClose(handle_);
    handle_ = 0;
    if (failed) {
        ramFreeC(path);
        return 1;
    }
    ramFreeC(path_);
    path_ = path;
    state_ = StateLoaded;
    bosTrace(ZU_TRACE_PROFILE_LOAD, "ZuIniOpen: File:%s FileSize %d\n", path_, static_cast<int>(cachedSize_));
    return 0;
}

// Reads `size` bytes from offset 0 of `handle` into a new text and makes it
// the cached one, with `date`; 0, or 1 (the old text kept) when memory runs
// out.  The read never goes past the size taken from the file: a file that
// grew since then is seen as changed by the next probe; one that shrank is
// cached at the length read, which the next probe sees as a change as well.
int ZuIniFileCache::readAll(int handle, unsigned long size, unsigned long date)
{
    char* text = static_cast<char*>(ramAllocC(size + 1));
    if (text == nullptr)
        return 1;
    unsigned long got = 0;
    bosFileRead(handle, 0, text, size, &got);
    text[got] = 0;
    ramFreeC(text_);
    text_ = text;
    cachedSize_ = static_cast<uint32_t>(got);
    cachedDate_ = static_cast<uint32_t>(date);
    return 0;
}

int ZuIniFileCache::stat(unsigned long* date, unsigned long* size) const
{
    if (widePath_ != nullptr) {
        char narrow[ZU_INI_PATH_MAX + 1];
        if (zuGetANSIStrFromUTF16Str(widePath_, narrow, sizeof narrow) >= 0)
            return bosFileDateSize(narrow, date, size);
    }
    if (path_ == nullptr)
        return 1;
    return bosFileDateSize(path_, date, size);
}

// The staleness check with the semaphore held.  Decided from the date and
// the size alone; a changed file is loaded again by its resolved path.  A
// cache of a missing driver file (state 0 with its name kept) loads the file
// once it exists.
int ZuIniFileCache::syncLocked()
{
    unsigned long date = 0;
    unsigned long size = 0;
    if (stat(&date, &size) != 0)
        return 1;
    if (state_ == StateLoaded && text_ != nullptr && date == cachedDate_ && size == cachedSize_)
        return 0;
    char copy[BOS_MAX_PATH + 1];
    if (path_ == nullptr || std::strlen(path_) > static_cast<std::size_t>(BOS_MAX_PATH))
        return 1;
    std::strcpy(copy, path_);
    bosTrace(ZU_TRACE_PROFILE_LOAD, "ZuIniOpen: File:%s changed, loading it again\n", copy);
    return load(copy, 0);
}

// The stat is made under the cache's semaphore: a reload by another thread
// frees and replaces the path, which an unlocked probe could be reading.
int ZuIniFileCache::proFileSync()
{
    ZuSemaphoreGuard guard(lock_);
    return syncLocked();
}

int ZuIniFileCache::lockUsable()
{
    lock_.wait();
    if (state_ != StateLoaded && path_ == nullptr) {
        lock_.post();
        return 1;
    }
    if (syncLocked() != 0 || state_ != StateLoaded || text_ == nullptr) {
        lock_.post();
        return 1;
    }
    return 0;
}

int ZuIniFileCache::loadIfUnusable(const char* name, unsigned long mode)
{
    if (name == nullptr)
        return 1;
    ZuSemaphoreGuard guard(lock_);
    if (state_ == StateLoaded)
        return 0;
    return load(name, mode) != 0 || state_ != StateLoaded ? 1 : 0;
}

int ZuIniFileCache::hasPath(const char* path)
{
    ZuSemaphoreGuard guard(lock_);
    return path_ != nullptr && std::strcmp(path_, path) == 0;
}

void ZuIniFileCache::incrementUseCount()
{
    ZuSemaphoreGuard guard(lock_);
    // A count that cannot go higher only means the cache lives for the task;
    // the keeping family raises it at every call.
    if (useCount_ < INT32_MAX)
        ++useCount_;
}

int ZuIniFileCache::decrementUseCount()
{
    ZuSemaphoreGuard guard(lock_);
    return --useCount_;
}

void ZuIniFileCache::Close()
{
    ZuSemaphoreGuard guard(lock_);
    if (handle_ > 0)
        bosFileClose(handle_);
    handle_ = 0;
    ramFreeC(path_);
    path_ = nullptr;
    ramFreeC(widePath_);
    widePath_ = nullptr;
    ramFreeC(text_);
    text_ = nullptr;
    state_ = StateUnusable;
}
