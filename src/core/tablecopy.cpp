#include "tablecopy_impl.h"

#include <cstring>
#include <limits>

#include "../platform/ram.h"

unsigned long zuDoubledCapacity(unsigned long capacity) { return capacity == 0 ? 16 : 2 * capacity; }

void* zuCopyTable(const void* old, std::size_t elementSize, unsigned long count, unsigned long capacity)
{
    if (capacity > std::numeric_limits<std::size_t>::max() / elementSize) {
        ramAddMemoryError();
        return nullptr;
    }
    void* table = ramAllocC(elementSize * capacity);
    if (table != nullptr && count > 0)
        std::memcpy(table, old, elementSize * count);
    return table;
}
