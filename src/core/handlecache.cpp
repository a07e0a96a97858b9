#include "handlecache.h"

#include <cstring>
#include <limits>

#include "../platform/ram.h"
#include "tablecopy_impl.h"


// ---------------------------------------------------------------------------
// ZuIntHandleCache

void* ZuIntHandleCache::operator new(std::size_t size) noexcept { return ramAllocC(size); }
void ZuIntHandleCache::operator delete(void* pointer) noexcept { ramFreeC(pointer); }

ZuIntHandleCache::~ZuIntHandleCache()
{
    for (unsigned long i = 0; i < count_; ++i)
        ucnv_close(handles_[i]);
    ramFreeC(keys_);
    ramFreeC(handles_);
}

int ZuIntHandleCache::grow(unsigned long capacity)
{
    auto* keys = static_cast<int32_t*>(zuCopyTable(keys_, sizeof(int32_t), count_, capacity));
    if (keys == nullptr)
        return 1;
    auto* handles = static_cast<UConverter**>(zuCopyTable(handles_, sizeof(UConverter*), count_, capacity));
    if (handles == nullptr) {
        ramFreeC(keys);
        return 1;
    }
    ramFreeC(keys_);
    ramFreeC(handles_);
    keys_ = keys;
    handles_ = handles;
    capacity_ = capacity;
    return 0;
}

int ZuIntHandleCache::initialize(unsigned long capacity)
{
    return capacity <= capacity_ ? 0 : grow(capacity);
}

int ZuIntHandleCache::addAssoc(long codePage, UConverter* converter)
{
    if (count_ == capacity_ && grow(zuDoubledCapacity(capacity_)) != 0)
        return 1;
    keys_[count_] = static_cast<int32_t>(codePage);
    handles_[count_] = converter;
    ++count_;
    return 0;
}

UConverter* ZuIntHandleCache::getHandleForKey(long codePage) const
{
    const auto key = static_cast<int32_t>(codePage);
    for (unsigned long i = 0; i < count_; ++i)
        if (keys_[i] == key)
            return handles_[i];
    return nullptr;
}

void ZuIntHandleCache::setEnableFallbackMapping(unsigned int flag)
{
    for (unsigned long i = 0; i < count_; ++i)
        if (handles_[i] != nullptr)
            ucnv_setFallback(handles_[i], flag != 0);
}

// ---------------------------------------------------------------------------
// ZuStrHandleCache

void* ZuStrHandleCache::operator new(std::size_t size) noexcept { return ramAllocC(size); }
void ZuStrHandleCache::operator delete(void* pointer) noexcept { ramFreeC(pointer); }

ZuStrHandleCache::~ZuStrHandleCache()
{
    for (unsigned long i = 0; i < count_; ++i) {
        ucnv_close(handles_[i]);
        ramFreeC(keys_[i]);
    }
    ramFreeC(keys_);
    ramFreeC(keyLengths_);
    ramFreeC(handles_);
}

int ZuStrHandleCache::grow(unsigned long capacity)
{
    auto* keys = static_cast<unsigned char**>(zuCopyTable(keys_, sizeof(unsigned char*), count_, capacity));
    if (keys == nullptr)
        return 1;
    auto* lengths = static_cast<unsigned long*>(zuCopyTable(keyLengths_, sizeof(unsigned long), count_, capacity));
    if (lengths == nullptr) {
        ramFreeC(keys);
        return 1;
    }
    auto* handles = static_cast<UConverter**>(zuCopyTable(handles_, sizeof(UConverter*), count_, capacity));
    if (handles == nullptr) {
        ramFreeC(keys);
        ramFreeC(lengths);
        return 1;
    }
    ramFreeC(keys_);
    ramFreeC(keyLengths_);
    ramFreeC(handles_);
    keys_ = keys;
    keyLengths_ = lengths;
    handles_ = handles;
    capacity_ = capacity;
    return 0;
}

int ZuStrHandleCache::initialize(unsigned long capacity)
{
    return capacity <= capacity_ ? 0 : grow(capacity);
}

int ZuStrHandleCache::addAssoc(const unsigned char* name, unsigned long length, UConverter* converter)
{
    if (length == std::numeric_limits<unsigned long>::max()) {
        ramAddMemoryError();
        return 1;
    }
    // The copy is made first, so that a failure to make it leaves the tables
    // untouched as well.  It is terminated for callers that hand it to
    // ucnv_open.
    auto* copy = static_cast<unsigned char*>(ramAllocC(length + 1));
    if (copy == nullptr)
        return 1;
    if (length > 0)
        std::memcpy(copy, name, length);
    copy[length] = 0;
    if (count_ == capacity_ && grow(zuDoubledCapacity(capacity_)) != 0) {
        ramFreeC(copy);
        return 1;
    }
    keys_[count_] = copy;
    keyLengths_[count_] = length;
    handles_[count_] = converter;
    ++count_;
    return 0;
}

UConverter* ZuStrHandleCache::getHandleForKey(const unsigned char** name, unsigned long length) const
{
    for (unsigned long i = 0; i < count_; ++i) {
        if (keyLengths_[i] == length && (length == 0 || std::memcmp(keys_[i], *name, length) == 0)) {
            *name = keys_[i];
            return handles_[i];
        }
    }
    return nullptr;
}

void ZuStrHandleCache::setEnableFallbackMapping(unsigned int flag)
{
    for (unsigned long i = 0; i < count_; ++i)
        if (handles_[i] != nullptr)
            ucnv_setFallback(handles_[i], flag != 0);
}
