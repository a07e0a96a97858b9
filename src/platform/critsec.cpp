#include "critsec.h"

ZuCriticalSection::~ZuCriticalSection()
{
    if (disabled_.exchange(1, std::memory_order_acq_rel) != 0)
        return;
    // A section still held at exit belongs to a thread that is still running:
    // unlocking another thread's mutex is undefined, so it is left as it is.
    if (owned_.load(std::memory_order_acquire) == 0)
        pthread_mutex_destroy(&mutex_);
}

void ZuCriticalSection::enter()
{
    if (isDisabled())
        return;
    pthread_mutex_lock(&mutex_);
    owned_.store(1, std::memory_order_release);
}

void ZuCriticalSection::leave()
{
    if (isDisabled())
        return;
    owned_.store(0, std::memory_order_release);
    pthread_mutex_unlock(&mutex_);
}

void zuDisableStaticCriticalSections(void) {}
