#include "semaphore.h"

#include <sched.h>
#include <sys/sem.h>

#include <atomic>
#include <cerrno>
#include <cstdint>

namespace {
ZuSemaphore* const kUnderCreation = reinterpret_cast<ZuSemaphore*>(uintptr_t{1});
ZuSemaphore* const kDestroyed = reinterpret_cast<ZuSemaphore*>(uintptr_t{2});

bool isRealSemaphore(ZuSemaphore* value) { return reinterpret_cast<uintptr_t>(value) > 2; }

// Slots this thread entered without a semaphore (creation failed for lack
// of memory).  If another thread creates the semaphore meanwhile, the exit
// of such an entry must not post it: that would raise its count to 2 and
// end mutual exclusion for good.
constexpr int kUnguarded = 8;
thread_local ZuSemaphore** tUnguarded[kUnguarded];

void rememberUnguarded(ZuSemaphore** slot)
{
    for (ZuSemaphore**& entry : tUnguarded)
        if (entry == nullptr) {
            entry = slot;
            return;
        }
}

bool forgetUnguarded(ZuSemaphore** slot)
{
    for (ZuSemaphore**& entry : tUnguarded)
        if (entry == slot) {
            entry = nullptr;
            return true;
        }
    return false;
}
}  // namespace

ZuPosixSemaphore::~ZuPosixSemaphore() = default;

ZuSemaphore::ZuSemaphore(ZuSemaphore** ownerSlot, int kind)
{
    if (ownerSlot != nullptr && kind == 2)
        slot_ = ownerSlot;
    sem_init(&sem_, 0, 1);
}

ZuSemaphore::~ZuSemaphore()
{
    sem_destroy(&sem_);
    if (slot_ != nullptr)
        std::atomic_ref<ZuSemaphore*>(*slot_).store(kDestroyed, std::memory_order_release);
}

void ZuSemaphore::wait()
{
    while (sem_wait(&sem_) != 0 && errno == EINTR) {
    }
}

void ZuSemaphore::post() { sem_post(&sem_); }

void zuSemaphoreEnter(ZuSemaphore** slot)
{
    std::atomic_ref<ZuSemaphore*> ref(*slot);
    for (;;) {
        ZuSemaphore* value = ref.load(std::memory_order_acquire);
        if (isRealSemaphore(value)) {
            value->wait();
            return;
        }
        if (value == kUnderCreation) {
            sched_yield();
            continue;
        }
        // 0 or 2: this thread creates it, if no other thread got there first.
        if (!ref.compare_exchange_strong(value, kUnderCreation, std::memory_order_acq_rel))
            continue;
        const int kind = static_cast<int>(reinterpret_cast<uintptr_t>(value));
        auto* created = new ZuSemaphore(slot, kind);
        if (created == nullptr) {
            ref.store(value, std::memory_order_release);
            rememberUnguarded(slot);
            return;
        }
        ref.store(created, std::memory_order_release);
        created->wait();
        return;
    }
}

void zuSemaphoreExit(ZuSemaphore** slot)
{
    if (forgetUnguarded(slot))
        return;
    ZuSemaphore* value = std::atomic_ref<ZuSemaphore*>(*slot).load(std::memory_order_acquire);
    if (isRealSemaphore(value))
        value->post();
}

// ---- SemArray --------------------------------------------------------------

SemArray::~SemArray() = default;

int SemArray::add(ZuSemaphore* semaphore)
{
    GetSemaphore();
    int rc = ZuArray::add(semaphore);
    FreeSemaphore();
    return rc;
}

int SemArray::addAtIndex(ZuSemaphore* semaphore, unsigned index)
{
    GetSemaphore();
    int rc = ZuArray::addAtIndex(semaphore, index);
    FreeSemaphore();
    return rc;
}

void SemArray::deleteAtIndex(unsigned index)
{
    GetSemaphore();
    ZuArray::deleteAtIndex(index);
    FreeSemaphore();
}

void SemArray::removeAtIndex(unsigned index)
{
    GetSemaphore();
    ZuArray::removeAtIndex(index);
    FreeSemaphore();
}

void SemArray::deleteContents()
{
    GetSemaphore();
    ZuArray::deleteContents();
    FreeSemaphore();
}

unsigned SemArray::getCount()
{
    GetSemaphore();
    unsigned n = ZuArray::getCount();
    FreeSemaphore();
    return n;
}

ZuSemaphore* SemArray::at(unsigned index)
{
    GetSemaphore();
    auto* s = static_cast<ZuSemaphore*>(ZuArray::at(index));
    FreeSemaphore();
    return s;
}

// ---- ZuSemaphoreInfo -------------------------------------------------------

ZuSemaphoreInfo BOS_ZUSEMAPHORE_INFO;

ZuSemaphoreInfo::~ZuSemaphoreInfo()
{
    for (unsigned i = 0; i < setCount && i < 5; ++i)
        semctl(sets[i].handle, 0, IPC_RMID);
    setCount = 0;
    for (unsigned i = semaphores.getCount(); i > 0; --i)
        semaphores.deleteAtIndex(i - 1);
}

int ZuSemaphoreInfo::availableSemaphore() const
{
    for (const SetRecord& r : sets)
        if (r.inUse < r.capacity)
            return 1;
    return 0;
}

void ZuSemaphoreInfo::remove(ZuSemaphore* semaphore)
{
    for (unsigned i = 0; i < semaphores.getCount(); ++i) {
        if (semaphores.at(i) == semaphore) {
            semaphores.removeAtIndex(i);
            return;
        }
    }
}
