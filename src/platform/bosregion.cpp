// Region locks (bosRegionLock).
//
// fcntl record locks belong to the process: two threads of one process
// never see each other's locks in the kernel.  So every region a thread
// holds is also kept in a process-wide list, and a lock asked for by one
// thread over a region another thread of the process holds is refused
// from that list.
//
// Invariants of the list, all under gRegionLock:
//  1. Each row is a region one thread locked and has not yet unlocked as
//     often as it locked it (useCount >= 1).
//  2. Rows of different threads never overlap on the same file.
//  3. The list is doubly linked from gRegions; rows are malloc'd and freed
//     only here.
//
// The kernel lock is taken (or released) first and the list consulted
// after; a refusal from the list leaves the kernel's state as it is, which
// within one process only merges with the holder's own lock.
#include <fcntl.h>
#include <pthread.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstdlib>

#include "../core/errorlist.h"
#include "bosfile.h"
#include "critsec.h"
#include "ram.h"

namespace {
struct Region {
    pthread_t thread;
    uint64_t device;
    uint64_t inode;
    int64_t offset;
    int64_t length;  // 0: to the end of the file
    long useCount;
    Region* next;
    Region* previous;
};

constinit ZuCriticalSection gRegionLock;
Region* gRegions = nullptr;

int64_t regionEnd(int64_t offset, int64_t length)
{
    return length == 0 ? INT64_MAX : offset + length - 1;
}

// Two regions overlap when the start or end of either lies inside the other.
bool overlaps(const Region& row, int64_t offset, int64_t length)
{
    int64_t rowEnd = regionEnd(row.offset, row.length);
    int64_t end = regionEnd(offset, length);
    auto inside = [](int64_t point, int64_t start, int64_t stop) { return point >= start && point <= stop; };
    return inside(offset, row.offset, rowEnd) || inside(end, row.offset, rowEnd) ||
           inside(row.offset, offset, end) || inside(rowEnd, offset, end);
}

int kernelLock(int handle, int unlock, long long offset, long long length)
{
    struct flock lock {};
    lock.l_type = unlock ? F_UNLCK : F_WRLCK;
    lock.l_whence = SEEK_SET;
    lock.l_start = static_cast<off_t>(offset);
    lock.l_len = static_cast<off_t>(length);
    return fcntl(handle, F_SETLK, &lock);
}
}  // namespace

int bosRegionLock(int handle, int unlock, long long offset, long long length)
{
    if (handle == 0)
        return 0;
    if (kernelLock(handle, unlock, offset, length) != 0) {
        int error = errno;
        // A region another process holds reads as "locked", not "denied".
        if (error == EACCES)
            error = EAGAIN;
        bosMapError(error, "");
        return 1;
    }
    struct stat info;
    if (fstat(handle, &info) != 0) {
        bosMapError(errno, "");
        return 1;
    }
    const uint64_t device = static_cast<uint64_t>(info.st_dev);
    const uint64_t inode = static_cast<uint64_t>(info.st_ino);
    const pthread_t self = pthread_self();

    ZuCriticalSectionGuard guard(gRegionLock);
    if (unlock) {
        for (Region* row = gRegions; row != nullptr; row = row->next) {
            if (pthread_equal(row->thread, self) && row->device == device && row->inode == inode &&
                row->offset == offset && row->length == length) {
                if (--row->useCount == 0) {
                    (row->previous != nullptr ? row->previous->next : gRegions) = row->next;
                    if (row->next != nullptr)
                        row->next->previous = row->previous;
                    ramFreeC(row);
                }
                break;
            }
        }
        return 0;
    }
    for (Region* row = gRegions; row != nullptr; row = row->next) {
        if (row->device != device || row->inode != inode || !overlaps(*row, offset, length))
            continue;
        if (!pthread_equal(row->thread, self)) {
            addError(1512);
            return 1;
        }
        if (row->offset == offset && row->length == length) {
            ++row->useCount;
            return 0;
        }
    }
    auto* row = static_cast<Region*>(ramAllocC(sizeof(Region)));
    if (row == nullptr) {
        addError(1503);
        return 1;
    }
    *row = Region{self, device, inode, offset, length, 1, gRegions, nullptr};
    if (gRegions != nullptr)
        gRegions->previous = row;
    gRegions = row;
    return 0;
}
