/*
 * mds: per-task and per-thread data.
 *
 * A task is the process on this platform.  Per-task data is one static array
 * of pointer slots (PerTaskData); what a slot points to belongs to the module
 * that set it.  Per-thread data lives in ZuThreadInfo rows, one per thread
 * that called mdsPerThreadInit, chained from per-task slot 13:
 *
 *  - a row is in use while its use count is above 0; mdsPerThreadInit raises
 *    the count of the caller's row (making or reusing a row if it has none),
 *    mdsPerThreadTerm lowers it;
 *  - a row with count 0 is free: the next thread that needs a row takes it
 *    over with its slots zeroed;
 *  - rows are only ever added at the end of the chain and stay allocated
 *    until the process ends, so a reader may walk the chain without a lock;
 *  - when a thread ends, its row becomes free whatever its count, so a later
 *    thread that the system gives the same id never inherits a dead thread's
 *    slots (they may point into that thread's stack).
 *
 * Per-thread slot 0 holds the thread's current ZuErrorList.
 */
#ifndef HNSYB_PLATFORM_MDS_H
#define HNSYB_PLATFORM_MDS_H

#include <pthread.h>

#include <atomic>

#include "../core/object.h"

// Per-task slots in use.
enum PerTaskData {
    PTD_DBLIB_INIT_COUNT = 1,   // count of countDBLibInits
    PTD_RUNTIME_STATE = 4,      // the library's run-time state, owned by its user
    PTD_INI_CACHE_LIST = 12,    // the task's ZuIniFileCacheList
    PTD_THREAD_INFO = 13,       // head of the ZuThreadInfo chain
    PTD_SLOT_COUNT = 16
};

// Per-thread slots.
enum PerThreadData {
    PTHD_ERROR_LIST = 0,
    PTHD_SLOT_COUNT = 6
};

class ZU_EXPORT ZuThreadInfo : public ZuObject {
public:
    ZuThreadInfo();
    ~ZuThreadInfo() override;

    // Lowers the use count under the chain's lock.
    void lockedDecrementCount();

    std::atomic<ZuThreadInfo*> next{nullptr};
    std::atomic<pthread_t> threadId{};
    void* slots[PTHD_SLOT_COUNT] = {};
    std::atomic<unsigned int> useCount{0};
};

ZU_EXPORT int mdsPerTaskInit();
ZU_EXPORT int mdsIsTaskInit();
ZU_EXPORT void mdsPerTaskTerm();
// Slot numbers outside 0..PTD_SLOT_COUNT-1 read as null and ignore writes.
ZU_EXPORT void* mdsGetPerTaskData(int slot);
ZU_EXPORT void** mdsGetPerTaskDataAddress(int slot);
ZU_EXPORT void mdsSetPerTaskData(int slot, void* value);

// 1 when the caller has a row with its count raised; 0 only when no row could
// be allocated (memory error reported if the thread has an error list).
ZU_EXPORT int mdsPerThreadInit();
ZU_EXPORT void mdsPerThreadTerm();
// The caller's row, or null when it has none in use.  Takes no lock.
ZU_EXPORT ZuThreadInfo* findThreadInfo(pthread_t threadId);
// Slot value, or null when the thread has no row.  Takes no lock.
ZU_EXPORT void* mdsGetPerThreadData(int slot);
// The slot's address, or null when the thread has no row.
ZU_EXPORT void** mdsGetPerThreadDataAddress(int slot);
// Writes the slot; a thread without a row writes nothing and gets 1.
ZU_EXPORT int mdsSetPerThreadData(int slot, void* value);

// Raises (increase non-zero) or lowers the count in per-task slot 1; the new
// value, in 16 bits.
ZU_EXPORT unsigned short countDBLibInits(int increase);

// Library start entry; nothing to do on this platform.
ZU_EXPORT int BosLibMain();

// Swap *word and value, returning the old value: under a process-wide lock
// (task) or a static critical section (thread).
ZU_EXPORT long atomicTaskExchange(long* word, long value);
ZU_EXPORT long atomicThreadExchange(long* word, long value);

#endif
