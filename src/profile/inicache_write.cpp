// Writing through a profile cache: the file is truncated and written again
// from the cached text as head, change and tail.
//
// How a rewrite keeps the file and the cache whole:
//  1. the cache's semaphore is taken before the file is opened.  Two
//     threads of one process that truncated the file in turn, each before
//     waiting for the semaphore, would leave holes of NUL bytes where the
//     other's writes landed; the order cache, then file prevents that and
//     cannot deadlock, as nothing waits for the file while holding it;
//  2. writers of all processes that use this cache wait for one another on
//     a lock of one byte far past any profile's end (a time-out bounds the
//     wait), and the file is read again through the open descriptor if it
//     changed since the probe, so that a second process's rewrite is not
//     lost by one that began from an older text;
//  3. the new content is assembled in one heap block before the file is
//     touched: running out of memory changes nothing;
//  4. the file is truncated and written in one call; if that fails, the
//     old text is written back (as far as the disk lets it);
//  5. when date and size would both look unchanged to a reader, the size
//     is made to differ by one end of line;
//  6. the lock and the descriptor are released on every path, and the
//     cached text is never written into, so a failure leaves it as it was.
#include <errno.h>
#include <fcntl.h>
#include <time.h>

#include <cstring>

#include "../platform/bosfile.h"
#include "../platform/ram.h"
#include "../platform/trace.h"
#include "inicache.h"
#include "inicache_impl.h"

namespace {
inline bool atEol(const char* p) { return std::memcmp(p, ZU_INI_EOL, ZU_INI_EOL_LEN) == 0; }

// The writers' lock: a byte no profile reaches, so that it never meets the
// marker lock at offset 1 that opens put on the file.
constexpr long long kWriterLockOffset = 0x7FFF0000LL;
constexpr int kWriterLockWaitMs = 10000;

// The writers' lock is an open-file-description lock rather than a POSIX
// record lock: a record lock belongs to the process and vanishes when any of
// its descriptors of the file is closed (another cache, a shim, a load), which
// would let a second process's writer in halfway through a rewrite.  A
// description lock lives as long as the rewrite's own descriptor and also
// keeps apart two descriptors of one process.
int setWriterLock(int handle, short type)
{
    struct flock lock = {};
    lock.l_type = type;
    lock.l_whence = SEEK_SET;
    lock.l_start = kWriterLockOffset;
    lock.l_len = 1;
    return fcntl(handle, F_OFD_SETLK, &lock);
}

int lockWriters(int handle, const char* path)
{
    for (int waited = 0;; ++waited) {
        if (setWriterLock(handle, F_WRLCK) == 0)
            return 0;
        const int error = errno;
        if ((error != EAGAIN && error != EACCES) || waited >= kWriterLockWaitMs) {
            bosMapError(error == EACCES ? EAGAIN : error, path);
            return 1;
        }
        struct timespec pause = {0, 1000000};
        nanosleep(&pause, nullptr);
    }
}

struct Piece {
    const char* at = nullptr;
    std::size_t length = 0;
};

char* append(char* to, const char* from, std::size_t length)
{
    std::memcpy(to, from, length);
    return to + length;
}
}  // namespace

// Frees the writers' lock and closes the descriptor of a rewrite.
void ZuIniFileCache::releaseFile(int locked)
{
    if (handle_ <= 0)
        return;
    const unsigned before = iniErrorCount();
    if (locked)
        setWriterLock(handle_, F_UNLCK);
    bosFileClose(handle_);
    handle_ = 0;
    iniDropErrorsSince(before);
}

int ZuIniFileCache::bosPutProfileString(const char* section, const char* entry, const char* value)
{
    char bracketed[ZU_INI_NAME_MAX];
    if (section == nullptr || iniBracket(section, bracketed) < 0)
        return 0;
    if (lockUsable() != 0)
        return 0;
    if (rewrite(bracketed, entry, value) != 0) {
        lock_.post();
        return 0;
    }
    // The next probe loads the file again: it is what other processes see.
    cachedDate_ = 0;
    cachedSize_ = 0;
    lock_.post();
    proFileSync();
    return 1;
}

// The rewrite proper, with the semaphore held.  0 on success, 1 on failure
// (reported by the file layer or the memory layer).
int ZuIniFileCache::rewrite(const char* bracketed, const char* entry, const char* value)
{
    char path[BOS_MAX_PATH + 1];
    if (path_ == nullptr || std::strlen(path_) > static_cast<std::size_t>(BOS_MAX_PATH))
        return 1;
    std::strcpy(path, path_);
    int handle = 0;
    if (bosFileOpen(path, BOS_OPEN_WRITE | BOS_OPEN_CREATE_IF_MISSING, &handle) != 0)
        return 1;
    handle_ = handle;
    if (lockWriters(handle_, path) != 0) {
        releaseFile(0);
        return 1;
    }
    unsigned long date = 0;
    unsigned long size = 0;
    if (bosFileDateSize(path, &date, &size) != 0 ||
        ((date != cachedDate_ || size != cachedSize_) && readAll(handle_, size, date) != 0)) {
        releaseFile(1);
        return 1;
    }

    // Head, change and tail over the text.
    const std::size_t bracketLength = std::strlen(bracketed);
    const char* end = text_ + cachedSize_;
    enum Outcome { Found = 0, SectionMissing = 1, EntryMissing = 2 } outcome = SectionMissing;
    Piece head{text_, cachedSize_};
    Piece tail{end, 0};
    char* start = nullptr;
    char* next = nullptr;
    if (getSection(bracketed, &start, &next) == 0) {
        head.length = static_cast<std::size_t>(start - text_);
        const char* tailAt = next;
        outcome = Found;
        if (entry != nullptr) {
            char* position = start;
            char* valueStart = nullptr;
            char* valueEnd = nullptr;
            if (getEntry(entry, &position, &valueStart, &valueEnd) == 0) {
                head.length = static_cast<std::size_t>(position - text_);
                tailAt = valueEnd;
                if (*valueEnd != 0 && atEol(valueEnd))
                    tailAt += ZU_INI_EOL_LEN;
                bosTrace(ZU_TRACE_PROFILE_WRITE, "%s %s %s\n", "bosPutProfileString:",
                         value == nullptr ? "Deleting Entry:" : "Updating Entry Value with:",
                         value == nullptr ? entry : value);
            } else {
                // The header is written again as the caller spelt it, with
                // the new entry as the first line under it.
                outcome = EntryMissing;
                tailAt = start + bracketLength;
                if (*tailAt != 0 && atEol(tailAt))
                    tailAt += ZU_INI_EOL_LEN;
                bosTrace(ZU_TRACE_PROFILE_WRITE, "%s Entry missing adding it.\n|->%s\n", "bosPutProfileString:",
                         entry);
            }
        } else {
            bosTrace(ZU_TRACE_PROFILE_WRITE, "%s Deleting section %s\n", "bosPutProfileString:", bracketed);
        }
        if (tailAt > end)
            tailAt = end;
        tail.at = tailAt;
        tail.length = static_cast<std::size_t>(end - tailAt);
    } else {
        bosTrace(ZU_TRACE_PROFILE_WRITE, "%s Section missing adding it.\n|->%s\n", "bosPutProfileString:",
                 bracketed);
    }

    const bool line = entry != nullptr && value != nullptr;
    const bool header = line ? outcome != Found : value == nullptr && outcome == EntryMissing;
    // A new section behind a last line without its end of line gets one
    // first, or the header would be glued onto that line's value.
    const bool endOfLineFirst = line && outcome == SectionMissing && head.length > 0 &&
                                (head.length < static_cast<std::size_t>(ZU_INI_EOL_LEN) ||
                                 !atEol(head.at + head.length - ZU_INI_EOL_LEN));
    const std::size_t entryLength = line ? std::strlen(entry) : 0;
    const std::size_t valueLength = line ? std::strlen(value) : 0;
    std::size_t total = head.length + tail.length;
    if (endOfLineFirst)
        total += ZU_INI_EOL_LEN;
    if (header)
        total += bracketLength + ZU_INI_EOL_LEN;
    if (line)
        total += entryLength + 1 + valueLength + ZU_INI_EOL_LEN;

    char* content = static_cast<char*>(ramAllocC(total));
    if (content == nullptr) {
        releaseFile(1);
        return 1;
    }
    char* out = append(content, head.at, head.length);
    if (endOfLineFirst)
        out = append(out, ZU_INI_EOL, ZU_INI_EOL_LEN);
    if (header) {
        out = append(out, bracketed, bracketLength);
        out = append(out, ZU_INI_EOL, ZU_INI_EOL_LEN);
    }
    if (line) {
        out = append(out, entry, entryLength);
        out = append(out, "=", 1);
        out = append(out, value, valueLength);
        out = append(out, ZU_INI_EOL, ZU_INI_EOL_LEN);
    }
    append(out, tail.at, tail.length);

    if (bosFileSize(handle_, 0) != 0) {
        ramFreeC(content);
        releaseFile(1);
        return 1;
    }
    if (total > 0 && bosFileWrite(handle_, 0, content, total) != 0) {
        // Put back what the file held; the failure already reported is the
        // one that counts.
        const unsigned before = iniErrorCount();
        if (bosFileSize(handle_, 0) == 0 && cachedSize_ > 0)
            bosFileWrite(handle_, 0, text_, cachedSize_);
        iniDropErrorsSince(before);
        ramFreeC(content);
        releaseFile(1);
        return 1;
    }
    ramFreeC(content);

    // Same second and same size: nobody would see the change.  One end of
    // line more, or one less where the tail ends with two.
    unsigned long newDate = 0;
    unsigned long newSize = 0;
    if (bosFileDateSize(path, &newDate, &newSize) == 0 && newDate == cachedDate_ && newSize == cachedSize_) {
        const std::size_t twoEols = 2 * static_cast<std::size_t>(ZU_INI_EOL_LEN);
        const unsigned before = iniErrorCount();
        if (tail.length > twoEols && std::memcmp(tail.at + tail.length - twoEols, ZU_INI_EOL ZU_INI_EOL, twoEols) == 0)
            bosFileSize(handle_, static_cast<long long>(newSize) - ZU_INI_EOL_LEN);
        else
            bosFileWrite(handle_, static_cast<long long>(newSize), ZU_INI_EOL, ZU_INI_EOL_LEN);
        iniDropErrorsSince(before);
    }
    releaseFile(1);
    bosTrace(ZU_TRACE_PROFILE_WRITE, "%s Updated FileCache: Len=%d\n", "bosPutProfileString:", static_cast<int>(total));
    return 0;
}
