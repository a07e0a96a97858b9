/*
 * Threads: a thin layer over pthreads.  The library starts no thread of its
 * own; these calls are for its clients.  Nothing here allocates.
 */
#ifndef HNSYB_PLATFORM_THREAD_H
#define HNSYB_PLATFORM_THREAD_H

#include <pthread.h>

#include "export.h"

typedef void* (*UtlThreadStart)(void*);

// pthread_create with default attributes; its result (0 on success).
ZU_EXPORT int UtlThreadCreate(UtlThreadStart start, void* argument, pthread_t* thread);
// 1 when a UtlThreadCreate result means failure (above 0).
ZU_EXPORT int UtlThreadCreateFail(int result);
[[noreturn]] ZU_EXPORT void UtlThreadExit(void* value);
ZU_EXPORT pthread_t UtlThreadGetId();
ZU_EXPORT pthread_t bosGetThreadID();
// Not supported on this platform: does nothing and returns 1.
ZU_EXPORT int bosCreateThread(UtlThreadStart start, void* argument, pthread_t* thread);
ZU_EXPORT int boscreth(UtlThreadStart start, void* argument, pthread_t* thread);
ZU_EXPORT void bosYieldThread();
ZU_EXPORT int bosGetLogicalProcessorCount();
[[noreturn]] ZU_EXPORT void bosabort();

#endif
