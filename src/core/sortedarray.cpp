#include "sortedarray.h"

namespace {

// The search shared by both sorted forms.  `cmp(i)` compares the key with
// element i.  Empty: 0 at index 0.  A key below element 0 also misses at 0.
// Otherwise a binary search with mid = (low + high) / 2; a miss reports mid,
// or mid + 1 when the last comparison said the key is greater.
template <class Compare>
int binarySearch(unsigned count, Compare cmp, unsigned* index)
{
    if (count == 0 || cmp(0u) < 0) {
        *index = 0;
        return 0;
    }
    long low = 0;
    long high = static_cast<long>(count) - 1;
    long mid = 0;
    int last = 0;
    while (low <= high) {
        mid = (low + high) / 2;
        last = cmp(static_cast<unsigned>(mid));
        if (last == 0) {
            *index = static_cast<unsigned>(mid);
            return 1;
        }
        if (last < 0)
            high = mid - 1;
        else
            low = mid + 1;
    }
    *index = static_cast<unsigned>(last > 0 ? mid + 1 : mid);
    return 0;
}

template <class Compare>
unsigned lastKey(unsigned count, Compare cmp, unsigned index)
{
    while (index + 1 < count && cmp(index + 1) == 0)
        ++index;
    return index;
}

int compareSizes(size_t a, size_t b) { return a < b ? -1 : (a > b ? 1 : 0); }

}  // namespace

ZuSortedArray::~ZuSortedArray() = default;

int ZuSortedArray::findIndexOf(const ZuObject* object, unsigned* index) const
{
    return binarySearch(getCount(), [&](unsigned i) { return object->compare(at(i)); }, index);
}

unsigned ZuSortedArray::findIndexOfLastKey(const ZuObject* object, unsigned index) const
{
    return lastKey(getCount(), [&](unsigned i) { return object->compare(at(i)); }, index);
}

int ZuSortedArray::seqFindIndexOf(const ZuObject* object, unsigned* index) const
{
    for (unsigned i = 0; i < getCount(); ++i) {
        if (at(i)->compare(object) == 0) {
            *index = i;
            return 1;
        }
    }
    return 0;
}

int ZuSortedArray::add(ZuObject* object)
{
    if (getCount() == 0 || isLazySort())
        return addAtIndex(object, getCount());
    unsigned index = 0;
    if (findIndexOf(object, &index) != 0)
        index = findIndexOfLastKey(object, index) + 1;
    return addAtIndex(object, index);
}

void ZuSortedArray::dropDuplicates(bool destroy)
{
    unsigned i = 1;
    while (i < getCount()) {
        if (at(i - 1)->compare(at(i)) == 0) {
            if (destroy)
                deleteAtIndex(i);
            else
                removeAtIndex(i);
        } else {
            ++i;
        }
    }
}

void ZuSortedArray::deleteDuplicates() { dropDuplicates(true); }
void ZuSortedArray::removeDuplicates() { dropDuplicates(false); }

ZuSortedArrayZUSIZE_T::~ZuSortedArrayZUSIZE_T() = default;

int ZuSortedArrayZUSIZE_T::findIndexOf(size_t value, unsigned* index) const
{
    return binarySearch(getCount(), [&](unsigned i) { return compareSizes(value, at(i)); }, index);
}

unsigned ZuSortedArrayZUSIZE_T::findIndexOfLastKey(size_t value, unsigned index) const
{
    return lastKey(getCount(), [&](unsigned i) { return compareSizes(value, at(i)); }, index);
}

int ZuSortedArrayZUSIZE_T::add(size_t value)
{
    if (getCount() == 0)
        return addAtIndex(value, 0);
    unsigned index = 0;
    if (findIndexOf(value, &index) != 0)
        index = findIndexOfLastKey(value, index) + 1;
    return addAtIndex(value, index);
}
