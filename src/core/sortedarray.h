/*
 * ZuSortedArray: a ZuArray kept in the order of its elements' compare().
 *
 * add() inserts after the last element that compares equal, so equal
 * elements keep their order of arrival.  With the lazy-sort flags set, add()
 * appends whatever the values (ZuErrorList relies on this to keep errors in
 * arrival order); such an array is put in order again by a full resort.
 * findIndexOf() is a binary search: a hit gives some equal element, not
 * necessarily the first; a miss gives the insertion point.
 *
 * ZuSortedArrayZUSIZE_T is the same over plain integers compared as numbers.
 * Ownership is that of ZuArray.
 */
#ifndef HNSYB_CORE_SORTEDARRAY_H
#define HNSYB_CORE_SORTEDARRAY_H

#include "array.h"

class ZU_EXPORT ZuSortedArray : public ZuArray {
public:
    using ZuArray::ZuArray;
    ~ZuSortedArray() override;

    int add(ZuObject* object);
    // 1 and the index of an equal element, or 0 and the insertion point.
    int findIndexOf(const ZuObject* object, unsigned* index) const;
    // Linear from 0 with element->compare(object): 1 and the first equal.
    int seqFindIndexOf(const ZuObject* object, unsigned* index) const;
    // The last index from `index` upwards whose element compares equal.
    unsigned findIndexOfLastKey(const ZuObject* object, unsigned index) const;
    // Drop each element equal to its predecessor: deleted, or only removed.
    void deleteDuplicates();
    void removeDuplicates();

    void setLazySort(int on) { on ? setFlags(LazySortLow | LazySortHigh) : clearFlags(LazySortLow | LazySortHigh); }
    int isLazySort() const { return (getFlags() & (LazySortLow | LazySortHigh)) != 0; }

private:
    void dropDuplicates(bool destroy);
};

class ZU_EXPORT ZuSortedArrayZUSIZE_T : public ZuArrayZUSIZE_T {
public:
    using ZuArrayZUSIZE_T::ZuArrayZUSIZE_T;
    ~ZuSortedArrayZUSIZE_T() override;

    int add(size_t value);
    int findIndexOf(size_t value, unsigned* index) const;
    unsigned findIndexOfLastKey(size_t value, unsigned index) const;
};

#endif
