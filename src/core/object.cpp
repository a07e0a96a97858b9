#include "object.h"

#include "../platform/ram.h"

ZuObject::~ZuObject() = default;

int ZuObject::compare(const ZuObject*) const { return 0; }

void* ZuObject::operator new(std::size_t size) noexcept { return ramAllocC(size); }
void* ZuObject::operator new[](std::size_t size) noexcept { return ramAllocC(size); }
void ZuObject::operator delete(void* p) noexcept { ramFreeC(p); }
void ZuObject::operator delete[](void* p) noexcept { ramFreeC(p); }
