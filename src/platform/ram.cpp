#include "ram.h"

#include <malloc.h>

#include <cstdlib>
#include <cstring>

#include "ramfault.h"

#ifdef HNSYB_FAULT_INJECTION
namespace {
thread_local unsigned long tFailAt = 0;  // 0: disarmed
thread_local unsigned long tAllocations = 0;

// Counts the allocation and tells whether it is the one armed to fail.
bool injectedFailure()
{
    ++tAllocations;
    if (tFailAt != 0 && tAllocations == tFailAt) {
        tFailAt = 0;
        return true;
    }
    return false;
}
}  // namespace

void ramFaultFailNth(unsigned long n)
{
    tFailAt = n;
    tAllocations = 0;
}
unsigned long ramFaultAllocations() { return tAllocations; }
int ramFaultPending() { return tFailAt != 0; }
#define RAM_INJECTED_FAILURE() injectedFailure()
#else
#define RAM_INJECTED_FAILURE() false
#endif

void* ramAllocC(std::size_t size)
{
    void* p = RAM_INJECTED_FAILURE() ? nullptr : std::malloc(size == 0 ? 1 : size);
    if (p == nullptr)
        ramAddMemoryError();
    return p;
}

void ramFreeC(void* pointer) { std::free(pointer); }

int ramResizeZ(void** pointer, std::size_t size)
{
    void* p = RAM_INJECTED_FAILURE() ? nullptr : std::realloc(*pointer, size == 0 ? 1 : size);
    if (p == nullptr) {
        ramAddMemoryError();
        return 1;
    }
    *pointer = p;
    if (size >= 5)
        std::memset(static_cast<char*>(p) + 4, 0, size - 4);
    return 0;
}

std::size_t ramSize(const void* pointer)
{
    return pointer == nullptr ? 0 : malloc_usable_size(const_cast<void*>(pointer));
}

unsigned short* ramAllocStrW(const char* text, unsigned long count)
{
    if (text == nullptr)
        count = 0;
    // A count whose byte size would wrap cannot be satisfied: report it as
    // exhaustion instead of allocating a short block and writing past it.
    if (count > (static_cast<unsigned long>(-1) - 2) / 2) {
        ramAddMemoryError();
        return nullptr;
    }
    auto* w = static_cast<unsigned short*>(ramAllocC(2 * count + 2));
    if (w == nullptr)
        return nullptr;
    for (unsigned long i = 0; i < count; ++i)
        w[i] = static_cast<unsigned char>(text[i]);
    w[count] = 0;
    return w;
}

unsigned short* ramAllocStrW(const char* text, long count)
{
    return ramAllocStrW(text, static_cast<unsigned long>(count < 0 ? 0 : count));
}

char* ramAllocStr(const unsigned short* text, unsigned long count)
{
    if (text == nullptr)
        count = 0;
    if (count == static_cast<unsigned long>(-1)) {
        ramAddMemoryError();
        return nullptr;
    }
    auto* s = static_cast<char*>(ramAllocC(count + 1));
    if (s == nullptr)
        return nullptr;
    for (unsigned long i = 0; i < count; ++i)
        s[i] = static_cast<char>(text[i] & 0xFF);
    s[count] = 0;
    return s;
}

char* ramAllocStr(const unsigned short* text, long count)
{
    return ramAllocStr(text, static_cast<unsigned long>(count < 0 ? 0 : count));
}
