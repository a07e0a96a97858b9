#include "set.h"

#include <cstring>

#include "../platform/ram.h"

namespace {
// A zeroed table of `slots` entries, or null (memory error reported).
void** freshTable(unsigned slots)
{
    auto* t = static_cast<void**>(ramAllocC(sizeof(void*) * static_cast<size_t>(slots)));
    if (t != nullptr)
        std::memset(t, 0, sizeof(void*) * static_cast<size_t>(slots));
    return t;
}
}  // namespace

ZuSet::ZuSet()
{
    // Every slot of the table is meaningful, not only those below the
    // array's count (which the set leaves at 0).
    table_.setFlags(ZuArray::WholeCapacity);
}

ZuSet::~ZuSet() = default;

unsigned ZuSet::slotsFor(unsigned capacity) const
{
    if (capacity > MaxCapacity)
        capacity = MaxCapacity;
    return static_cast<unsigned>(static_cast<unsigned long>(capacity) * 100 / fill_ + 1);
}

unsigned ZuSet::getCapacity() const
{
    return static_cast<unsigned>(static_cast<unsigned long>(fill_) * tableSize_ / 100);
}

unsigned ZuSet::grownCapacity() const
{
    const unsigned long c = getCapacity();
    const unsigned long grown = c + c * growth_ / 100 + 1;
    // The capacity is a 16-bit quantity.  Cutting the bits off would give a
    // table smaller than its entries, whose re-adding could never end, so
    // the value is held at the largest capacity instead.
    return grown > MaxCapacity ? MaxCapacity : static_cast<unsigned>(grown);
}

unsigned ZuSet::startIndex(unsigned long hash) const
{
    if (tableSize_ == 0)
        return 0;
    return static_cast<unsigned short>((hash * 0x9E3779B9ul) % tableSize_);
}

unsigned ZuSet::countEntries() const
{
    void* const* slots = table_.getTable();
    unsigned n = 0;
    for (unsigned i = 0; i < tableSize_; ++i)
        n += slots[i] != nullptr ? 1u : 0u;
    return n;
}

void ZuSet::clearSlots()
{
    if (tableSize_ != 0)
        std::memset(table_.getTable(), 0, sizeof(void*) * tableSize_);
    count_ = 0;
}

int ZuSet::initialize(unsigned capacity)
{
    const unsigned slots = slotsFor(capacity);
    void** t = freshTable(slots);
    if (t == nullptr)
        return 1;
    table_.setTable(t, slots, 0);  // frees the table in use before
    table_.setFlags(ZuArray::TableOwned);
    tableSize_ = slots;
    count_ = 0;
    return 0;
}

void ZuSet::reset()
{
    table_.shrink(0);
    tableSize_ = 0;
    count_ = 0;
    highest_ = 0;
    fill_ = DefaultFill;
    growth_ = DefaultGrowth;
}

unsigned ZuSet::findIndexOf(const void* entry) const
{
    return probe(doHash(entry), [this, entry](const void* held) { return areEqual(held, entry) != 0; });
}

int ZuSet::resize(unsigned capacity)
{
    // The new table must hold every entry and keep a free slot; a count that
    // ran ahead through replacements is not trusted for that.
    const unsigned entries = countEntries();
    if (capacity < entries)
        capacity = entries;
    const unsigned slots = slotsFor(capacity);
    void** fresh = freshTable(slots);
    if (fresh == nullptr)
        return 1;

    void* const* old = table_.getTable();
    const unsigned oldSize = tableSize_;
    tableSize_ = slots;  // startIndex works on the new size from here on
    // Held entries have distinct keys already, so each goes to the first
    // free slot of its probe; no comparison is needed.
    for (unsigned k = 0; k < oldSize; ++k) {
        void* e = old[k];
        if (e == nullptr)
            continue;
        unsigned i = startIndex(doHash(e));
        while (fresh[i] != nullptr)
            i = (i == 0 ? slots : i) - 1;
        fresh[i] = e;
    }
    table_.setTable(fresh, slots, 0);
    table_.setFlags(ZuArray::TableOwned);
    count_ = entries;
    return 0;
}

int ZuSet::add(void* entry)
{
    void* displaced = nullptr;
    return store(entry, &displaced);
}

int ZuSet::store(void* entry, void** displaced)
{
    *displaced = nullptr;
    // A set that was never initialized has no slot to probe.
    if (tableSize_ == 0 && resize(grownCapacity()) != 0)
        return 1;
    const unsigned i = findIndexOf(entry);
    if (i >= tableSize_) {
        // Not reached: a free slot always ends the probe.
        ramAddMemoryError();
        return 1;
    }
    void** slots = table_.getTable();
    void* old = slots[i];
    slots[i] = entry;
    ++count_;
    if (count_ > getCapacity()) {
        const unsigned grown = grownCapacity();
        int failed = 0;
        if (grown > getCapacity()) {
            // resize allocates before it moves anything, so on failure the
            // slot can simply be given back.
            failed = resize(grown);
            if (failed != 0)
                --count_;
        } else if (count_ >= tableSize_) {
            // At the largest capacity the table cannot grow: the add is
            // refused when it took the last free slot, which probing needs.
            count_ = countEntries();
            if (count_ >= tableSize_) {
                ramAddMemoryError();
                failed = 1;
                --count_;
            }
        }
        if (failed != 0) {
            // resize failed before touching the table, so `slots` is current.
            slots[i] = old;
            return 1;
        }
    }
    if (count_ > highest_)
        highest_ = count_;
    *displaced = old;
    return 0;
}
