/*
 * Internals shared by the files of the profile cache: trace bits, the guard
 * over a cache's semaphore, and small bounded text helpers.  Nothing here
 * owns memory except what dupText hands out (the caller frees it with
 * ramFreeC).
 */
#ifndef HNSYB_PROFILE_INICACHE_IMPL_H
#define HNSYB_PROFILE_INICACHE_IMPL_H

#include <cstddef>

#include "../platform/semaphore.h"

// Trace bits of BOS_RUNTIME_DEBUG used by the profile layer.
constexpr unsigned long ZU_TRACE_PROFILE_WRITE = 16;  // writes and section-wide reads
constexpr unsigned long ZU_TRACE_PROFILE_READ = 32;
constexpr unsigned long ZU_TRACE_PROFILE_LOAD = 128;

// Last error numbers that the load treats as "no write access".
constexpr unsigned short ZU_MSG_ACCESS = 1508;
constexpr unsigned short ZU_MSG_NO_FILE = 1509;
constexpr unsigned short ZU_MSG_PERMISSION = 1519;
constexpr unsigned short ZU_MSG_LOCKED = 1522;
constexpr unsigned short ZU_MSG_SHARING = 30040;
constexpr unsigned short ZU_MSG_READ_ONLY_FS = 30049;

class ZuSemaphoreGuard {
public:
    explicit ZuSemaphoreGuard(ZuSemaphore& s) : s_(s) { s_.wait(); }
    ~ZuSemaphoreGuard() { s_.post(); }
    ZuSemaphoreGuard(const ZuSemaphoreGuard&) = delete;
    ZuSemaphoreGuard& operator=(const ZuSemaphoreGuard&) = delete;

private:
    ZuSemaphore& s_;
};

// A heap copy of `length` bytes and a NUL; null (memory error reported).
char* iniDupText(const char* text, std::size_t length);
char* iniDupText(const char* text);

// The thread's error count (0 without a list), and the removal of the
// errors added since a count was taken: for steps whose failures are
// expected and handled, so that they leave nothing behind.
unsigned iniErrorCount();
void iniDropErrorsSince(unsigned before);

// 1 for a blank of the profile format (space or tab).
inline int iniIsBlank(char c) { return c == ' ' || c == '\t'; }

// "[" + section + "]" into `out` (ZU_INI_NAME_MAX bytes); its length, or -1
// when it does not fit.
int iniBracket(const char* section, char* out);

#endif
