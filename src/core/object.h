/*
 * ZuObject: the root of every class of the support library.
 *
 * Its virtual table holds the destructor (so containers that own objects
 * delete them through it) and compare(), which orders two objects (< 0, 0,
 * > 0); the root compare calls everything equal.  Derived classes add their
 * own virtual operations after these.
 *
 * Objects come from the C heap through the ram layer: `new` of a ZuObject
 * never throws, it yields null after recording the memory error in the
 * calling thread's error list, and callers test the result.  Whoever holds
 * the pointer owns the object unless a container has been told to own it.
 */
#ifndef HNSYB_CORE_OBJECT_H
#define HNSYB_CORE_OBJECT_H

#include <cstddef>
#include <new>

#include "../platform/export.h"

class ZU_EXPORT ZuObject {
public:
    ZuObject() = default;
    virtual ~ZuObject();

    // Less than 0, 0 or more than 0 as this object sorts before, with or
    // after `other`.  The root implementation says 0.
    virtual int compare(const ZuObject* other) const;

    // Allocation through ramAllocC/ramFreeC: a failure is a null result plus
    // ramAddMemoryError, never an exception.
    static void* operator new(std::size_t size) noexcept;
    static void* operator new[](std::size_t size) noexcept;
    static void operator delete(void* p) noexcept;
    static void operator delete[](void* p) noexcept;
    // Placement forms stay available for objects built in caller storage.
    static void* operator new(std::size_t, void* where) noexcept { return where; }
    static void operator delete(void*, void*) noexcept {}
};

#endif
