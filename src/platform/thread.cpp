#include "thread.h"

#include <unistd.h>

#include <cstdlib>

int UtlThreadCreate(UtlThreadStart start, void* argument, pthread_t* thread)
{
    return pthread_create(thread, nullptr, start, argument);
}

int UtlThreadCreateFail(int result) { return result > 0 ? 1 : 0; }
void UtlThreadExit(void* value) { pthread_exit(value); }
pthread_t UtlThreadGetId() { return pthread_self(); }
pthread_t bosGetThreadID() { return pthread_self(); }
int bosCreateThread(UtlThreadStart, void*, pthread_t*) { return 1; }
int boscreth(UtlThreadStart, void*, pthread_t*) { return 1; }
void bosYieldThread() {}

int bosGetLogicalProcessorCount()
{
    long n = sysconf(_SC_NPROCESSORS_ONLN);
    return n < 1 ? 1 : static_cast<int>(n);
}

void bosabort() { std::abort(); }
