/*
 * ZuCriticalSection: a non-recursive mutex that a static object can hold.
 *
 * Static critical sections guard module data of the library.  They are
 * constant-initialised (the mutex is the platform's static initialiser, which
 * is the default mutex type), so a lock is usable by code that runs during
 * another module's start-up, whatever the order in which modules start.
 *
 * Every user tests the disabled flag first: a disabled section neither locks
 * nor unlocks.  The destructor, run at process exit, disables the section and
 * releases the mutex only when no thread holds it, so code that still runs
 * after that point goes on without a lock instead of touching a destroyed
 * mutex.  The object owns no heap memory.
 */
#ifndef HNSYB_PLATFORM_CRITSEC_H
#define HNSYB_PLATFORM_CRITSEC_H

#include <pthread.h>

#include <atomic>

#include "../core/object.h"

class ZU_EXPORT ZuCriticalSection : public ZuObject {
public:
    constexpr ZuCriticalSection() noexcept = default;
    ~ZuCriticalSection() override;

    ZuCriticalSection(const ZuCriticalSection&) = delete;
    ZuCriticalSection& operator=(const ZuCriticalSection&) = delete;

    void enter();
    void leave();
    int isDisabled() const { return disabled_.load(std::memory_order_acquire); }

private:
    std::atomic<int> disabled_{0};  // 0: active
    std::atomic<int> owned_{0};     // set while some thread holds the mutex
    pthread_mutex_t mutex_ = PTHREAD_MUTEX_INITIALIZER;
    [[maybe_unused]] pthread_mutexattr_t attr_{};  // kept for layout; the static initialiser needs none
};

// RAII guard over a critical section, for the library's own code.
class ZuCriticalSectionGuard {
public:
    explicit ZuCriticalSectionGuard(ZuCriticalSection& cs) : cs_(cs) { cs_.enter(); }
    ~ZuCriticalSectionGuard() { cs_.leave(); }
    ZuCriticalSectionGuard(const ZuCriticalSectionGuard&) = delete;
    ZuCriticalSectionGuard& operator=(const ZuCriticalSectionGuard&) = delete;

private:
    ZuCriticalSection& cs_;
};

// A host's way of saying it wants no locking.  Nothing to do on this platform.
ZU_C_EXPORT void zuDisableStaticCriticalSections(void);

#endif
