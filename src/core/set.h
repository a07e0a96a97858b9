/*
 * ZuSet: an open-addressing hash table of pointers, the engine under
 * ZuDictionary.
 *
 * What the set keeps true:
 *  - the table is a ZuArrayPVoid whose capacity is the table size; a slot
 *    holds an entry or null, and at least one slot is always null, so a
 *    probe always ends (a set that cannot keep that free slot refuses the
 *    add instead);
 *  - sizing follows the fill percentage (75): a capacity of c entries takes
 *    c * 100 / fill + 1 slots, and getCapacity() is fill * slots / 100;
 *    capacities are 16-bit, larger requests are held at 65,535;
 *  - probing is linear and downward from startIndex(hash), wrapping from 0
 *    to the last slot; there is no removal of single entries, so no
 *    tombstones.
 *
 * The entry count is raised by every add, also by one that replaces an equal
 * entry, so it can run ahead of the entries held until the next growth
 * renews the table and counts them again.  The highest count is kept.
 *
 * Ownership: entries are the caller's.  The set never frees or deletes an
 * entry, also not one it replaces; its destructor frees the table only.
 * Allocation failures give 1 with ramAddMemoryError and leave the set as it
 * was.  Not thread-safe; the owner locks.
 */
#ifndef HNSYB_CORE_SET_H
#define HNSYB_CORE_SET_H

#include "array.h"

class ZU_EXPORT ZuSet : public ZuObject {
public:
    static constexpr unsigned MaxCapacity = 0xFFFF;
    static constexpr unsigned short DefaultFill = 75;
    static constexpr unsigned short DefaultGrowth = 25;

    ZuSet();
    ~ZuSet() override;
    ZuSet(const ZuSet&) = delete;
    ZuSet& operator=(const ZuSet&) = delete;

    // A fresh empty table for `capacity` entries; entries present before are
    // dropped (not freed).  Meant for use before the first add.  0 or 1.
    int initialize(unsigned capacity);
    // Fill and growth back to 75 and 25 percent, the table freed, counts 0.
    void reset();
    // Entries the table takes before it grows: fill * table size / 100.
    unsigned getCapacity() const;
    // Stores `entry` in the slot findIndexOf gives, replacing an equal entry
    // (which stays the caller's).  When the count passes getCapacity() the
    // table grows to capacity + capacity * growth / 100 + 1.  A set without a
    // table gets one first.  0, or 1 with the set unchanged.
    int add(void* entry);
    // A table for `capacity` entries holding the same entries, placed anew.
    // Never fewer than the entries held: a smaller request is raised to
    // their number.  0 or 1 (set unchanged).
    int resize(unsigned capacity);
    // The slot holding an entry equal to `entry`, else the empty slot that
    // ended the probe; the table size when there is no table.
    unsigned findIndexOf(const void* entry) const;
    // (hash * 0x9E3779B9) mod table size, cut to 16 bits; 0 without a table.
    unsigned startIndex(unsigned long hash) const;
    // Same as resize: the table size cannot be set apart from the table,
    // since probing trusts it as the table's bound.
    int setCapacity(unsigned capacity) { return resize(capacity); }

    unsigned getTableSize() const { return tableSize_; }
    unsigned getCount() const { return count_; }
    unsigned getHighestCount() const { return highest_; }
    unsigned short getFillPercent() const { return fill_; }
    unsigned short getGrowthPercent() const { return growth_; }
    void setGrowthPercent(unsigned short percent) { growth_ = percent; }
    // The entry in a slot (null when empty); index below getTableSize().
    void* getEntry(unsigned index) const { return table_.at(index); }

protected:
    virtual unsigned long doHash(const void* entry) const = 0;
    // 1 when `entry` (held in the table) and `other` have equal keys.
    virtual int areEqual(const void* entry, const void* other) const = 0;

    // add, handing back the entry it replaced (null when the slot was empty).
    int store(void* entry, void** displaced);
    // Nulls every slot and sets the count to 0, keeping the table.
    void clearSlots();

    // The probe of findIndexOf with the caller's test of a held entry.
    template <class Match>
    unsigned probe(unsigned long hash, Match match) const
    {
        if (tableSize_ == 0)
            return 0;
        void* const* slots = table_.getTable();
        unsigned i = startIndex(hash);
        // Bounded by the table size although a free slot always ends it.
        for (unsigned n = tableSize_; n != 0; --n) {
            void* e = slots[i];
            if (e == nullptr || match(e))
                return i;
            i = (i == 0 ? tableSize_ : i) - 1;
        }
        return tableSize_;
    }

private:
    unsigned slotsFor(unsigned capacity) const;
    unsigned grownCapacity() const;
    unsigned countEntries() const;

    ZuArrayPVoid table_;
    unsigned tableSize_ = 0;
    unsigned count_ = 0;
    unsigned short fill_ = DefaultFill;
    unsigned short growth_ = DefaultGrowth;
    unsigned highest_ = 0;
};

#endif
