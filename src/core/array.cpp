#include "array.h"

#include <cstring>

#include "../platform/ram.h"

namespace {
void** allocTable(unsigned capacity)
{
    auto* t = static_cast<void**>(ramAllocC(sizeof(void*) * static_cast<size_t>(capacity)));
    if (t != nullptr)
        std::memset(t, 0, sizeof(void*) * static_cast<size_t>(capacity));
    return t;
}
}  // namespace

ZuArray::~ZuArray() { releaseTable(); }

void ZuArray::releaseTable()
{
    if ((flags_ & TableOwned) != 0)
        ramFreeC(table_);
    table_ = nullptr;
    flags_ &= ~TableOwned;
}

void ZuArray::deleteElement(void* element) { delete static_cast<ZuObject*>(element); }

int ZuArray::setInitialSize(unsigned n)
{
    if (n < count_)
        n = count_;
    void** t = allocTable(n);
    if (t == nullptr)
        return 1;
    if (count_ > 0)
        std::memcpy(t, table_, sizeof(void*) * count_);
    releaseTable();
    table_ = t;
    capacity_ = n;
    flags_ |= TableOwned;
    return 0;
}

int ZuArray::increaseSize(unsigned step, int keep, int /*zero*/)
{
    // New slots are always cleared, whatever `zero` says: the array relies on
    // null slots past the count.
    unsigned long wanted = step != 0 ? static_cast<unsigned long>(capacity_) + step
                                     : (capacity_ == 0 ? 1ul : 2ul * capacity_);
    if (wanted > 0xFFFFFFFFul / sizeof(void*)) {
        ramAddMemoryError();
        return 1;
    }
    const auto newCapacity = static_cast<unsigned>(wanted);
    if (keep != 0) {
        void** t = allocTable(newCapacity);
        if (t == nullptr)
            return 1;
        if (table_ != nullptr && capacity_ > 0)
            std::memcpy(t, table_, sizeof(void*) * capacity_);
        releaseTable();
        table_ = t;
    } else {
        // Allocate before letting the old table go, so a failure changes nothing.
        void** t = allocTable(newCapacity);
        if (t == nullptr)
            return 1;
        releaseTable();
        table_ = t;
        count_ = 0;
    }
    capacity_ = newCapacity;
    flags_ |= TableOwned;
    return 0;
}

int ZuArray::addRawAtIndex(void* element, unsigned index)
{
    if (count_ == capacity_ && increaseSize(step_, 1, 1) != 0)
        return 1;
    if (index < count_)
        std::memmove(table_ + index + 1, table_ + index, sizeof(void*) * (count_ - index));
    table_[index] = element;
    ++count_;
    return 0;
}

void ZuArray::removeAtIndex(unsigned index)
{
    if (index + 1 < count_)
        std::memmove(table_ + index, table_ + index + 1, sizeof(void*) * (count_ - index - 1));
    --count_;
    table_[count_] = nullptr;
}

void ZuArray::deleteAtIndex(unsigned index)
{
    if (void* e = table_[index])
        deleteElement(e);
    removeAtIndex(index);
}

void ZuArray::deleteContents()
{
    const unsigned range = (flags_ & WholeCapacity) != 0 ? capacity_ : count_;
    for (unsigned i = 0; i < range; ++i) {
        if (void* e = table_[i]) {
            table_[i] = nullptr;
            deleteElement(e);
        }
    }
    count_ = 0;
}

void ZuArray::shrink(unsigned n)
{
    if (n == 0) {
        releaseTable();
        capacity_ = 0;
        count_ = 0;
        return;
    }
    if ((flags_ & TableOwned) != 0) {
        void* t = table_;
        // ramResizeZ would clear all but the first word; a table needs its
        // elements kept, so the copy is made by hand.
        void** grown = allocTable(n);
        if (grown == nullptr)
            return;
        std::memcpy(grown, t, sizeof(void*) * (n < capacity_ ? n : capacity_));
        ramFreeC(t);
        table_ = grown;
    } else if (n > capacity_) {
        // A borrowed table cannot be reallocated: growing it means taking an
        // owned copy, else the count would run past the caller's storage.
        void** grown = allocTable(n);
        if (grown == nullptr)
            return;
        if (table_ != nullptr)
            std::memcpy(grown, table_, sizeof(void*) * capacity_);
        table_ = grown;
        flags_ |= TableOwned;
    }
    capacity_ = n;
    count_ = n;
}

int ZuArray::doesExist(const void* object) const
{
    for (unsigned i = 0; i < count_; ++i)
        if (table_[i] == object)
            return 1;
    return 0;
}

void ZuArray::setTable(void** table, unsigned capacity, unsigned count)
{
    releaseTable();
    table_ = table;
    capacity_ = capacity;
    count_ = count;
}

ZuArrayPVoid::~ZuArrayPVoid() = default;
void ZuArrayPVoid::deleteElement(void* element) { ramFreeC(element); }

ZuPlainArray::~ZuPlainArray() = default;
void ZuPlainArray::deleteElement(void*) {}

ZuArrayS32::~ZuArrayS32() = default;
ZuArrayU32::~ZuArrayU32() = default;
ZuArrayZUSIZE_T::~ZuArrayZUSIZE_T() = default;
ZuArrayZUSSIZE_T::~ZuArrayZUSSIZE_T() = default;
