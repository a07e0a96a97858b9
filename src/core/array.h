/*
 * ZuArray and its element-type variants: a growable table of pointer-sized
 * slots, with no allocation per element.
 *
 * What the array keeps true:
 *  - slots [0, count) are the elements; for an array without WholeCapacity
 *    every slot in [count, capacity) is null, so shrinking past the count or
 *    growing never exposes a stale or uninitialised entry;
 *  - the table is freed by the array only when TableOwned is set (a table
 *    handed in with setTable stays the caller's until the array replaces it);
 *  - growth adds `growth step` slots (16 unless set; 0 doubles).
 *
 * Ownership of elements: the array deletes elements only when asked
 * (deleteAtIndex, deleteContents), through the element type's own release
 * (the virtual destructor for ZuObject elements, free() for ZuArrayPVoid,
 * nothing for the integer variants).  The destructor frees the table only.
 *
 * Index errors are the caller's: positions are not checked, as everywhere in
 * the containers.  Allocation failures give 1 with ramAddMemoryError and
 * leave the array as it was.
 */
#ifndef HNSYB_CORE_ARRAY_H
#define HNSYB_CORE_ARRAY_H

#include <sys/types.h>

#include <cstddef>
#include <cstdint>

#include "object.h"

class ZU_EXPORT ZuArray : public ZuObject {
public:
    // Flag bits.
    static constexpr unsigned LazySortLow = 1u << 27;   // the two lazy-sort flags of ZuSortedArray
    static constexpr unsigned LazySortHigh = 1u << 28;
    static constexpr unsigned TableOwned = 1u << 29;    // the table is heap-owned
    static constexpr unsigned WholeCapacity = 1u << 30; // deleteContents covers the whole capacity

    ZuArray() = default;
    explicit ZuArray(unsigned growthStep) : step_(growthStep) {}
    ~ZuArray() override;

    ZuArray(const ZuArray&) = delete;
    ZuArray& operator=(const ZuArray&) = delete;

    // A table of n null entries (keeping any elements already present); 0 or 1.
    int setInitialSize(unsigned n);
    // Grows if full, shifts up from index, stores; 0 or 1.
    int addAtIndex(ZuObject* object, unsigned index) { return addRawAtIndex(object, index); }
    int add(ZuObject* object) { return addRawAtIndex(object, count_); }
    // Shifts down and lowers the count; returns nothing and deletes nothing.
    void removeAtIndex(unsigned index);
    // Deletes the element, if not null, then removes it.
    void deleteAtIndex(unsigned index);
    // Deletes every element of the range (the count, or the whole capacity
    // with WholeCapacity), nulls it, and sets the count to 0.
    void deleteContents();
    // Capacity + step, or double the capacity (at least 1) for step 0.  With
    // keep the elements are copied over; without it the table starts empty.
    // New slots are always null.  0 or 1.
    int increaseSize(unsigned step, int keep, int zero);
    // Capacity and count become n; 0 frees an owned table (a borrowed table
    // is only let go).  Growing this way never exposes garbage: new slots are
    // null.
    void shrink(unsigned n);
    int doesExist(const void* object) const;

    unsigned getCount() const { return count_; }
    unsigned getCapacity() const { return capacity_; }
    unsigned getGrowthStep() const { return step_; }
    void setGrowthStep(unsigned step) { step_ = step; }
    unsigned getFlags() const { return flags_; }
    void setFlags(unsigned bits) { flags_ |= bits; }
    void clearFlags(unsigned bits) { flags_ &= ~bits; }

    ZuObject* at(unsigned index) const { return static_cast<ZuObject*>(table_[index]); }
    void setAt(unsigned index, ZuObject* object) { table_[index] = object; }
    ZuObject* operator[](unsigned index) const { return at(index); }

    // Uses a caller's table of `capacity` slots holding `count` elements.  The
    // array does not own it (TableOwned cleared); an owned table in use before
    // is freed.  Slots from count on must be null.
    void setTable(void** table, unsigned capacity, unsigned count);
    void** getTable() const { return table_; }

protected:
    // How an element is released by deleteAtIndex and deleteContents.
    virtual void deleteElement(void* element);

    int addRawAtIndex(void* element, unsigned index);
    void* rawAt(unsigned index) const { return table_[index]; }

private:
    void releaseTable();

    void** table_ = nullptr;
    unsigned capacity_ = 0;
    unsigned count_ = 0;
    unsigned step_ = 16;
    unsigned flags_ = 0;
};

// Elements are malloc'd blocks, released with free().
class ZU_EXPORT ZuArrayPVoid : public ZuArray {
public:
    using ZuArray::ZuArray;
    ~ZuArrayPVoid() override;
    int add(void* block) { return addRawAtIndex(block, getCount()); }
    int addAtIndex(void* block, unsigned index) { return addRawAtIndex(block, index); }
    void* at(unsigned index) const { return rawAt(index); }
    void* operator[](unsigned index) const { return rawAt(index); }

protected:
    void deleteElement(void* element) override;
};

// Base of the integer variants: the values live in the slots themselves and
// nothing is ever released.
class ZU_EXPORT ZuPlainArray : public ZuArray {
public:
    using ZuArray::ZuArray;
    ~ZuPlainArray() override;

protected:
    void deleteElement(void* element) override;
};

#define ZU_DECLARE_VALUE_ARRAY(Name, Type)                                                    \
    class ZU_EXPORT Name : public ZuPlainArray {                                              \
    public:                                                                                   \
        using ZuPlainArray::ZuPlainArray;                                                     \
        ~Name() override;                                                                     \
        int add(Type value) { return addRawAtIndex(toSlot(value), getCount()); }              \
        int addAtIndex(Type value, unsigned index) { return addRawAtIndex(toSlot(value), index); } \
        Type at(unsigned index) const { return fromSlot(rawAt(index)); }                      \
        Type operator[](unsigned index) const { return at(index); }                           \
        void setAt(unsigned index, Type value) { getTable()[index] = toSlot(value); }         \
        static void* toSlot(Type v) { return reinterpret_cast<void*>(static_cast<intptr_t>(v)); } \
        static Type fromSlot(void* p) { return static_cast<Type>(reinterpret_cast<intptr_t>(p)); } \
    }

ZU_DECLARE_VALUE_ARRAY(ZuArrayS32, int32_t);
ZU_DECLARE_VALUE_ARRAY(ZuArrayU32, uint32_t);
ZU_DECLARE_VALUE_ARRAY(ZuArrayZUSIZE_T, size_t);
ZU_DECLARE_VALUE_ARRAY(ZuArrayZUSSIZE_T, ssize_t);

#undef ZU_DECLARE_VALUE_ARRAY

#endif
