// ZuArray and its element-type variants: growth, borrowed tables, null slots
// past the count, element ownership, allocation failure, and a random model.
#include <gtest/gtest.h>
#include <sys/types.h>

#include <cstdint>
#include <cstdlib>
#include <limits>
#include <random>
#include <vector>

#include "core/array.h"
#include "core/errorlist.h"
#include "platform/ramfault.h"

namespace {
// Counts live instances: a missed delete leaves it high, a double delete low.
struct Tracked : ZuObject {
    static inline int live = 0;
    Tracked() { ++live; }
    ~Tracked() override { --live; }
};

// Makes an error list current so memory errors are recorded; always undone.
struct CurrentErrorList {
    ZuErrorList list{nullptr, 1};
    CurrentErrorList() { ZuErrorKeeper::setErrorList(&list); }
    ~CurrentErrorList()
    {
        ramFaultFailNth(0);
        ZuErrorKeeper::giveUpErrorList();
    }
};

void expectNullFrom(const ZuArray& a, unsigned from)
{
    for (unsigned i = from; i < a.getCapacity(); ++i)
        EXPECT_EQ(a.getTable()[i], nullptr) << "slot " << i;
}
}  // namespace

TEST(ZuArrayGrowth, SeventeenthElementAfterInitialSize16GrowsByStepTo32KeepingElements)
{
    ZuObject o[17];
    ZuArray a;
    ASSERT_EQ(a.setInitialSize(16), 0);
    for (unsigned i = 0; i < 16; ++i)
        ASSERT_EQ(a.add(&o[i]), 0);
    EXPECT_EQ(a.getCapacity(), 16u);  // no growth while the table has room
    ASSERT_EQ(a.add(&o[16]), 0);
    EXPECT_EQ(a.getCapacity(), 32u);
    EXPECT_EQ(a.getGrowthStep(), 16u);
    for (unsigned i = 0; i < 17; ++i)
        EXPECT_EQ(a[i], &o[i]);
    expectNullFrom(a, 17);
}

TEST(ZuArrayGrowth, StepZeroDoublesFromOne)
{
    ZuObject o;
    ZuArray a(0);
    std::vector<unsigned> capacities;
    for (int i = 0; i < 9; ++i) {
        ASSERT_EQ(a.add(&o), 0);
        capacities.push_back(a.getCapacity());
    }
    EXPECT_EQ(capacities, (std::vector<unsigned>{1, 2, 4, 4, 8, 8, 8, 8, 16}));
}

TEST(ZuArrayTable, BorrowedTableIsNeverFreedNorWrittenPastTheCallersStorage)
{
    ZuObject x, y, z;
    void* table[2] = {&x, &y};
    {
        // shrink(0) lets the caller's table go without freeing it (ASan
        // would report a free of stack memory) and leaves it intact.
        ZuArray a;
        a.setTable(table, 2, 2);
        EXPECT_EQ(a.getFlags() & ZuArray::TableOwned, 0u);
        a.shrink(0);
        EXPECT_EQ(a.getTable(), nullptr);
        EXPECT_EQ(a.getCount(), 0u);
        EXPECT_EQ(a.getCapacity(), 0u);
    }
    EXPECT_EQ(table[0], &x);
    EXPECT_EQ(table[1], &y);
    {
        // Growing a full borrowed table moves to an owned copy.
        ZuArray a;
        a.setTable(table, 2, 2);
        ASSERT_EQ(a.add(&z), 0);
        EXPECT_NE(a.getTable(), table);
        EXPECT_NE(a.getFlags() & ZuArray::TableOwned, 0u);
        EXPECT_EQ(a[0], &x);
        EXPECT_EQ(a[2], &z);
    }  // the destructor frees the owned copy only
    EXPECT_EQ(table[0], &x);
    EXPECT_EQ(table[1], &y);
}

TEST(ZuArrayTable, ShrinkPastTheCountExposesOnlyNullSlots)
{
    ZuObject o[3];
    ZuArray a;
    for (auto& e : o)
        ASSERT_EQ(a.add(&e), 0);
    a.removeAtIndex(2);  // slot 2 held &o[2]: it must not come back
    a.shrink(10);
    EXPECT_EQ(a.getCount(), 10u);
    EXPECT_EQ(a.getCapacity(), 10u);
    EXPECT_EQ(a[0], &o[0]);
    EXPECT_EQ(a[1], &o[1]);
    expectNullFrom(a, 2);
    a.shrink(1);  // below the count: the prefix is kept
    ASSERT_EQ(a[0], &o[0]);
    a.shrink(4);  // and growing again does not resurrect &o[1]
    expectNullFrom(a, 1);
}

TEST(ZuArrayOwnership, DeleteContentsWithWholeCapacityDeletesSparseEntriesOnce)
{
    Tracked::live = 0;
    ZuArray a;
    ASSERT_EQ(a.setInitialSize(32), 0);
    a.setFlags(ZuArray::WholeCapacity);
    for (unsigned i : {0u, 5u, 17u, 31u})
        a.setAt(i, new Tracked);
    ASSERT_EQ(a.getCount(), 0u);
    a.deleteContents();
    EXPECT_EQ(Tracked::live, 0);
    expectNullFrom(a, 0);
    a.deleteContents();  // the slots were nulled: nothing is deleted twice
    EXPECT_EQ(Tracked::live, 0);
}

TEST(ZuArrayOwnership, RemoveAtIndexKeepsTheElementDeleteAtIndexDeletesIt)
{
    Tracked::live = 0;
    auto* t0 = new Tracked;
    auto* t1 = new Tracked;
    auto* t2 = new Tracked;
    {
        ZuArray a;
        a.add(t0), a.add(t1), a.add(t2);
        a.removeAtIndex(0);
        EXPECT_EQ(Tracked::live, 3);
        EXPECT_EQ(a.getCount(), 2u);
        EXPECT_EQ(a[0], t1);
        EXPECT_EQ(a[1], t2);
        expectNullFrom(a, 2);
        a.deleteAtIndex(1);
        EXPECT_EQ(Tracked::live, 2);
        ASSERT_EQ(a.getCount(), 1u);
        EXPECT_EQ(a[0], t1);
        a.addAtIndex(nullptr, 0);
        a.deleteAtIndex(0);  // a null element is only removed
        EXPECT_EQ(a.getCount(), 1u);
    }  // the destructor frees the table, not the elements
    EXPECT_EQ(Tracked::live, 2);
    delete t0;
    delete t1;
    EXPECT_EQ(Tracked::live, 0);
}

TEST(ZuArrayVariants, PVoidFreesItsBlocksAndOnlyWhenAsked)
{
    void* kept = std::malloc(8);
    {
        ZuArrayPVoid a;
        for (unsigned i = 1; i <= 5; ++i)
            ASSERT_EQ(a.add(std::malloc(16 * i)), 0);
        a.deleteAtIndex(2);
        a.deleteContents();  // a block left unfreed is an ASan leak
        EXPECT_EQ(a.getCount(), 0u);
        ASSERT_EQ(a.add(kept), 0);
    }  // not freed by the destructor: the free below would be a double free
    std::free(kept);
}

namespace {
template <class Array, class T>
void expectRoundTrip(std::vector<T> values)
{
    Array a;
    for (T v : values)
        ASSERT_EQ(a.add(v), 0);
    a.addAtIndex(values.back(), 0);
    a.setAt(1, values.back());
    values.insert(values.begin(), values.back());
    values[1] = values.back();
    ASSERT_EQ(a.getCount(), values.size());
    for (unsigned i = 0; i < values.size(); ++i)
        EXPECT_EQ(a[i], values[i]) << "index " << i;
    a.deleteAtIndex(0);  // values are not pointers: nothing is released
    a.deleteContents();
    EXPECT_EQ(a.getCount(), 0u);
}
}  // namespace

TEST(ZuArrayVariants, IntegerArraysRoundTripNegativeAndExtremeValues)
{
    using S = std::numeric_limits<ssize_t>;
    expectRoundTrip<ZuArrayS32, int32_t>({INT32_MIN, -1, 0, 1, INT32_MAX});
    expectRoundTrip<ZuArrayU32, uint32_t>({0, 1, 0x80000000u, UINT32_MAX});
    expectRoundTrip<ZuArrayZUSIZE_T, size_t>({0, size_t{1} << 63, SIZE_MAX - 1, SIZE_MAX});
    expectRoundTrip<ZuArrayZUSSIZE_T, ssize_t>({S::min(), -1, 0, S::max()});
}

TEST(ZuArrayFaults, FailedGrowthReturnsOneLeavesTheArrayAndRecordsTheMemoryError)
{
    for (unsigned step : {16u, 0u}) {
        for (bool atFront : {false, true}) {
            CurrentErrorList errors;
            ZuObject o[17];
            ZuArray a(step);
            ASSERT_EQ(a.setInitialSize(16), 0);
            for (unsigned i = 0; i < 16; ++i)
                ASSERT_EQ(a.add(&o[i]), 0);
            void** before = a.getTable();
            ramFaultFailNth(1);
            EXPECT_EQ(atFront ? a.addAtIndex(&o[16], 0) : a.add(&o[16]), 1);
            EXPECT_EQ(ramFaultPending(), 0);  // the growth did try to allocate
            EXPECT_EQ(ZuErrorKeeper::getLastErrorNumber(), 30190);
            EXPECT_EQ(a.getCount(), 16u);
            EXPECT_EQ(a.getCapacity(), 16u);
            EXPECT_EQ(a.getTable(), before);
            for (unsigned i = 0; i < 16; ++i)
                EXPECT_EQ(a[i], &o[i]);
            EXPECT_EQ(a.add(&o[16]), 0);  // and it still works afterwards
            EXPECT_EQ(a.getCapacity(), 32u);
        }
    }
}

TEST(ZuArrayModel, RandomOperationsMatchAVectorModel)
{
    Tracked::live = 0;
    std::mt19937 rng(12345);
    ZuArray a;
    std::vector<Tracked*> model;
    unsigned capacity = 0;
    auto pick = [&](unsigned n) { return static_cast<unsigned>(rng() % n); };
    for (int step = 0; step < 4000; ++step) {
        const unsigned growth = pick(4) == 0 ? 0 : pick(6);
        a.setGrowthStep(growth);
        const unsigned count = static_cast<unsigned>(model.size());
        const unsigned op = pick(20);
        if (op < 11) {  // add or addAtIndex, sometimes a null element
            Tracked* t = pick(10) == 0 ? nullptr : new Tracked;
            const unsigned at = op < 5 ? count : pick(count + 1);
            if (count == capacity)
                capacity = growth != 0 ? capacity + growth : (capacity == 0 ? 1 : 2 * capacity);
            ASSERT_EQ(op < 5 ? a.add(t) : a.addAtIndex(t, at), 0);
            model.insert(model.begin() + at, t);
        } else if (op < 19 && count > 0) {  // removeAtIndex or deleteAtIndex
            const unsigned at = pick(count);
            if (op < 15) {
                a.removeAtIndex(at);
                delete model[at];  // still ours: must not have been deleted
            } else {
                a.deleteAtIndex(at);
            }
            model.erase(model.begin() + at);
        } else if (op == 19) {
            const unsigned n = pick(count + 4);
            a.shrink(n);
            for (unsigned i = n; i < count; ++i)
                delete model[i];
            model.resize(n, nullptr);
            capacity = n;
        }
        ASSERT_EQ(a.getCount(), model.size()) << "step " << step;
        ASSERT_EQ(a.getCapacity(), capacity) << "step " << step;
        int live = 0;
        for (unsigned i = 0; i < model.size(); ++i) {
            ASSERT_EQ(a[i], model[i]) << "step " << step << " index " << i;
            live += model[i] != nullptr;
        }
        ASSERT_EQ(Tracked::live, live) << "step " << step;
        for (unsigned i = a.getCount(); i < a.getCapacity(); ++i)
            ASSERT_EQ(a.getTable()[i], nullptr) << "step " << step << " slot " << i;
    }
    a.deleteContents();
    EXPECT_EQ(Tracked::live, 0);
}
