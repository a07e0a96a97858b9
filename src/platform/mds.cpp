#include "mds.h"

#include "critsec.h"
#include "semaphore.h"

namespace {

void* gTaskSlots[PTD_SLOT_COUNT];

constinit ZuCriticalSection gThreadRowLock;     // changes to the thread chain
constinit ZuCriticalSection gDBLibInitLock;     // countDBLibInits
constinit ZuCriticalSection gThreadExchangeLock;  // atomicThreadExchange
ZuSemaphore* gTaskExchangeSemaphore = nullptr;  // atomicTaskExchange, made on first use

// Per-task slots are read without a lock by other threads (the thread chain
// head among them), so every access is atomic.
std::atomic_ref<void*> taskSlot(int slot) { return std::atomic_ref<void*>(gTaskSlots[slot]); }
bool validTaskSlot(int slot) { return slot >= 0 && slot < PTD_SLOT_COUNT; }

ZuThreadInfo* chainHead()
{
    return static_cast<ZuThreadInfo*>(taskSlot(PTD_THREAD_INFO).load(std::memory_order_acquire));
}

// Frees the row of a thread that ends, whatever its count.  Without this a
// new thread given the same id by the system would find the dead thread's row
// still counted as in use and inherit slots that point into freed memory.
struct ThreadExitRelease {
    ZuThreadInfo* row = nullptr;
    ~ThreadExitRelease()
    {
        if (row == nullptr)
            return;
        ZuCriticalSectionGuard guard(gThreadRowLock);
        if (row->useCount.load(std::memory_order_relaxed) > 0 &&
            pthread_equal(row->threadId.load(std::memory_order_relaxed), pthread_self()))
            row->useCount.store(0, std::memory_order_release);
    }
};
thread_local ThreadExitRelease tExitRelease;

void claimRow(ZuThreadInfo* row, pthread_t self)
{
    for (void*& slot : row->slots)
        slot = nullptr;
    row->threadId.store(self, std::memory_order_relaxed);
    row->useCount.store(1, std::memory_order_release);
    tExitRelease.row = row;
}

}  // namespace

ZuThreadInfo::ZuThreadInfo() = default;
ZuThreadInfo::~ZuThreadInfo() = default;

void ZuThreadInfo::lockedDecrementCount()
{
    ZuCriticalSectionGuard guard(gThreadRowLock);
    unsigned int n = useCount.load(std::memory_order_relaxed);
    if (n > 0)
        useCount.store(n - 1, std::memory_order_release);
}

int mdsPerTaskInit() { return 1; }
int mdsIsTaskInit() { return 1; }
void mdsPerTaskTerm() {}

void* mdsGetPerTaskData(int slot)
{
    return validTaskSlot(slot) ? taskSlot(slot).load(std::memory_order_acquire) : nullptr;
}

void** mdsGetPerTaskDataAddress(int slot) { return validTaskSlot(slot) ? &gTaskSlots[slot] : nullptr; }

void mdsSetPerTaskData(int slot, void* value)
{
    if (validTaskSlot(slot))
        taskSlot(slot).store(value, std::memory_order_release);
}

ZuThreadInfo* findThreadInfo(pthread_t threadId)
{
    for (ZuThreadInfo* row = chainHead(); row != nullptr; row = row->next.load(std::memory_order_acquire)) {
        if (row->useCount.load(std::memory_order_acquire) > 0 &&
            pthread_equal(row->threadId.load(std::memory_order_relaxed), threadId))
            return row;
    }
    return nullptr;
}

int mdsPerThreadInit()
{
    const pthread_t self = pthread_self();
    ZuCriticalSectionGuard guard(gThreadRowLock);

    if (ZuThreadInfo* own = findThreadInfo(self)) {
        own->useCount.fetch_add(1, std::memory_order_acq_rel);
        return 1;
    }
    ZuThreadInfo* row = chainHead();
    if (row == nullptr) {
        row = new ZuThreadInfo;
        if (row == nullptr)
            return 0;
        claimRow(row, self);
        taskSlot(PTD_THREAD_INFO).store(row, std::memory_order_release);
        return 1;
    }
    for (;;) {
        if (row->useCount.load(std::memory_order_relaxed) == 0) {
            claimRow(row, self);
            return 1;
        }
        ZuThreadInfo* next = row->next.load(std::memory_order_relaxed);
        if (next == nullptr)
            break;
        row = next;
    }
    auto* added = new ZuThreadInfo;
    if (added == nullptr)
        return 0;
    claimRow(added, self);
    row->next.store(added, std::memory_order_release);
    return 1;
}

void mdsPerThreadTerm()
{
    ZuCriticalSectionGuard guard(gThreadRowLock);
    if (ZuThreadInfo* own = findThreadInfo(pthread_self())) {
        unsigned int n = own->useCount.load(std::memory_order_relaxed);
        if (n > 0)
            own->useCount.store(n - 1, std::memory_order_release);
    }
}

void* mdsGetPerThreadData(int slot)
{
    if (slot < 0 || slot >= PTHD_SLOT_COUNT)
        return nullptr;
    ZuThreadInfo* own = findThreadInfo(pthread_self());
    return own == nullptr ? nullptr : own->slots[slot];
}

void** mdsGetPerThreadDataAddress(int slot)
{
    if (slot < 0 || slot >= PTHD_SLOT_COUNT)
        return nullptr;
    ZuThreadInfo* own = findThreadInfo(pthread_self());
    return own == nullptr ? nullptr : &own->slots[slot];
}

int mdsSetPerThreadData(int slot, void* value)
{
    void** address = mdsGetPerThreadDataAddress(slot);
    if (address == nullptr)
        return 1;
    *address = value;
    return 0;
}

unsigned short countDBLibInits(int increase)
{
    ZuCriticalSectionGuard guard(gDBLibInitLock);
    auto count = reinterpret_cast<unsigned long>(mdsGetPerTaskData(PTD_DBLIB_INIT_COUNT));
    if (increase != 0)
        ++count;
    else if (count > 0)
        --count;
    mdsSetPerTaskData(PTD_DBLIB_INIT_COUNT, reinterpret_cast<void*>(count));
    return static_cast<unsigned short>(count);
}

int BosLibMain() { return 0; }

long atomicTaskExchange(long* word, long value)
{
    zuSemaphoreEnter(&gTaskExchangeSemaphore);
    long old = *word;
    *word = value;
    zuSemaphoreExit(&gTaskExchangeSemaphore);
    return old;
}

long atomicThreadExchange(long* word, long value)
{
    ZuCriticalSectionGuard guard(gThreadExchangeLock);
    long old = *word;
    *word = value;
    return old;
}
