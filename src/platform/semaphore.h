/*
 * ZuSemaphore: a POSIX unnamed semaphore (initial value 1, shared among the
 * threads of the process) used as a mutex, and the lazily created semaphores
 * that guard the library's caches.
 *
 * A lazy semaphore lives in a pointer-sized slot owned by its module:
 *
 *   value  meaning
 *   0      not created yet
 *   1      being created by some thread
 *   2      destroyed, at process exit
 *   other  the ZuSemaphore*
 *
 * Transitions, all made by zuSemaphoreEnter with compare-and-swap:
 *   0 -> 1 -> pointer   first use creates the semaphore;
 *   2 -> 1 -> pointer   use after exit-time destruction creates it again,
 *                       this time recording the slot, so that its own
 *                       destruction writes 2 back;
 *   1 -> 0 or 2         creation failed for lack of memory: the old value is
 *                       restored and that caller goes on without the lock
 *                       (as a caller does at 1 or 2 when a semaphore cannot
 *                       exist), and zuSemaphoreExit then does nothing.
 * A thread that finds 1 waits until the creator has stored the pointer and
 * then takes the semaphore like everybody else, so two threads are never
 * inside together during creation.
 *
 * Semaphores created in slots are never freed by the library; the process's
 * end reclaims them, which keeps a slot from pointing to a freed object.
 */
#ifndef HNSYB_PLATFORM_SEMAPHORE_H
#define HNSYB_PLATFORM_SEMAPHORE_H

#include <semaphore.h>

#include "../core/array.h"

class ZU_EXPORT ZuPosixSemaphore : public ZuObject {
public:
    ZuPosixSemaphore() = default;
    ~ZuPosixSemaphore() override;
};

class ZU_EXPORT ZuSemaphore : public ZuObject {
public:
    // Remembers the slot only when kind is 2 (recreated after destruction).
    ZuSemaphore(ZuSemaphore** ownerSlot = nullptr, int kind = 0);
    // Destroys the semaphore; with a remembered slot, writes 2 into it.
    ~ZuSemaphore() override;
    ZuSemaphore(const ZuSemaphore&) = delete;
    ZuSemaphore& operator=(const ZuSemaphore&) = delete;

    void wait();
    void post();

private:
    ZuPosixSemaphore posix_;
    sem_t sem_;
    ZuSemaphore** slot_ = nullptr;
};

ZU_EXPORT void zuSemaphoreEnter(ZuSemaphore** slot);
ZU_EXPORT void zuSemaphoreExit(ZuSemaphore** slot);

// SemArray: a ZuArray of ZuSemaphore objects whose operations are wrapped in
// GetSemaphore / FreeSemaphore; both are empty on this platform.
class ZU_EXPORT SemArray : public ZuArray {
public:
    SemArray() = default;
    ~SemArray() override;

    int add(ZuSemaphore* semaphore);
    int addAtIndex(ZuSemaphore* semaphore, unsigned index);
    void deleteAtIndex(unsigned index);
    void removeAtIndex(unsigned index);
    void deleteContents();
    unsigned getCount();
    ZuSemaphore* at(unsigned index);

    void GetSemaphore() {}
    void FreeSemaphore() {}
};

// Register of system semaphore sets: five records of (in use, capacity,
// handle), the number of sets, and the semaphores.  Nothing on this platform
// allocates system sets, so the register stays empty unless a caller fills it.
class ZU_EXPORT ZuSemaphoreInfo : public ZuObject {
public:
    struct SetRecord {
        unsigned short inUse;
        unsigned short capacity;
        int handle;
    };

    ZuSemaphoreInfo() = default;
    // Removes the system sets it counts and deletes its semaphores, last first.
    ~ZuSemaphoreInfo() override;

    int availableSemaphore() const;
    void allocateSemaphore(ZuSemaphore*) {}
    void remove(ZuSemaphore* semaphore);

    SetRecord sets[5] = {};
    unsigned setCount = 0;
    SemArray semaphores;
};

ZU_EXPORT extern ZuSemaphoreInfo BOS_ZUSEMAPHORE_INFO;

#endif
