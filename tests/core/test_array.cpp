// ZuArray and its element-type variants: growth, borrowed tables, null slots
// past the count, element ownership, allocation failure, and a random model.
#include <gtest/gtest.h>
#include <sys/types.h>

#include <algorithm>
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
    ~CurrentErrorList() { ramFaultFailNth(0), ZuErrorKeeper::giveUpErrorList(); }
};

// Every slot of the table, count and beyond.
using P = std::vector<void*>;
P slots(const ZuArray& a) { return P(a.getTable(), a.getTable() + a.getCapacity()); }
}  // namespace

TEST(ZuArrayGrowth, SeventeenthAddAfterInitialSize16GivesCapacity32AndStepZeroDoubles)
{
    ZuObject o[17];
    ZuArray a;
    ASSERT_EQ(a.setInitialSize(16), 0);
    P expected(32, nullptr);
    for (unsigned i = 0; i < 17; ++i) {
        EXPECT_EQ(a.getCapacity(), 16u);  // no growth while there is room
        ASSERT_EQ(a.add(&o[i]), 0);
        expected[i] = &o[i];
    }
    EXPECT_EQ(slots(a), expected);  // capacity 32, elements kept, new slots null
    EXPECT_EQ(a.getGrowthStep(), 16u);

    ZuArray d(0);
    std::vector<unsigned> capacities;
    for (int i = 0; i < 9; ++i)
        d.add(&o[0]), capacities.push_back(d.getCapacity());
    EXPECT_EQ(capacities, (std::vector<unsigned>{1, 2, 4, 4, 8, 8, 8, 8, 16}));
}

TEST(ZuArrayTable, ShrinkZeroLetsABorrowedTableGoUnfreedAndUntouched)
{
    ZuObject x, y, z;
    void* table[2] = {&x, &y};
    {
        ZuArray a;
        a.setTable(table, 2, 2);
        EXPECT_EQ(a.getFlags() & ZuArray::TableOwned, 0u);
        a.shrink(0);  // freeing stack memory would trip ASan
        EXPECT_EQ(a.getTable(), nullptr);
        EXPECT_EQ(a.getCount() + a.getCapacity(), 0u);
        ASSERT_EQ(a.add(&z), 0);  // later use goes to a table of its own
    }
    EXPECT_EQ(P(table, table + 2), (P{&x, &y}));
}

TEST(ZuArrayTable, ShrinkPastTheCountExposesOnlyNullSlots)
{
    ZuObject o[3];
    ZuArray a;
    for (auto& e : o)
        a.add(&e);
    a.removeAtIndex(2);  // slot 2 held &o[2]: it must not come back
    a.shrink(6);
    EXPECT_EQ(a.getCount(), 6u);
    EXPECT_EQ(slots(a), (P{&o[0], &o[1], nullptr, nullptr, nullptr, nullptr}));
    a.shrink(1);  // below the count the prefix is kept...
    a.shrink(3);  // ...and growing again does not bring &o[1] back
    EXPECT_EQ(slots(a), (P{&o[0], nullptr, nullptr}));
}

TEST(ZuArrayOwnership, DeleteContentsWithWholeCapacityDeletesSparseEntriesExactlyOnce)
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
    EXPECT_EQ(slots(a), P(32, nullptr));
    a.deleteContents();  // nulled slots: nothing is deleted twice
    EXPECT_EQ(Tracked::live, 0);
}

TEST(ZuArrayOwnership, RemoveAtIndexDeletesNothingDeleteAtIndexDeletesDestructorOnlyFreesTable)
{
    Tracked::live = 0;
    Tracked *t0 = new Tracked, *t1 = new Tracked, *t2 = new Tracked;
    {
        ZuArray a(4);
        a.add(t0), a.add(t1), a.add(t2);
        a.removeAtIndex(0);
        EXPECT_EQ(Tracked::live, 3);
        EXPECT_EQ(slots(a), (P{t1, t2, nullptr, nullptr}));
        a.deleteAtIndex(1);
        EXPECT_EQ(Tracked::live, 2);
        a.addAtIndex(nullptr, 0);
        a.deleteAtIndex(0);  // a null element is only removed
        EXPECT_EQ(slots(a), (P{t1, nullptr, nullptr, nullptr}));
    }
    EXPECT_EQ(Tracked::live, 2);
    delete t0;
    delete t1;
}

TEST(ZuArrayVariants, PVoidFreesItsBlocksOnlyWhenAsked)
{
    void* kept = std::malloc(8);
    {
        ZuArrayPVoid a;
        for (unsigned i = 1; i <= 5; ++i)
            ASSERT_EQ(a.add(std::malloc(16 * i)), 0);
        a.deleteAtIndex(2);
        a.deleteContents();  // a block left unfreed is an ASan leak
        EXPECT_EQ(a.getCount(), 0u);
        a.add(kept);
    }
    std::free(kept);  // a double free had the destructor released it
}

namespace {
template <class Array, class T>
void expectRoundTrip(std::vector<T> values)
{
    Array a;
    for (T v : values)
        a.add(v);
    a.addAtIndex(values[0], 2), values.insert(values.begin() + 2, values[0]);
    a.setAt(0, values.back()), values[0] = values.back();
    std::vector<T> got;
    for (unsigned i = 0; i < a.getCount(); ++i)
        got.push_back(a[i]);
    EXPECT_EQ(got, values);
    a.deleteAtIndex(0);  // values are not pointers: nothing is released
    a.deleteContents();
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

TEST(ZuArrayFaults, FailedGrowthReturnsOneLeavesTheArrayAndRecordsError30190)
{
    for (unsigned step : {16u, 0u}) {
        for (bool atFront : {false, true}) {
            CurrentErrorList errors;
            ZuObject o[17];
            ZuArray a(step);
            ASSERT_EQ(a.setInitialSize(16), 0);
            for (unsigned i = 0; i < 16; ++i)
                a.add(&o[i]);
            const P before = slots(a);
            ramFaultFailNth(1);
            EXPECT_EQ(atFront ? a.addAtIndex(&o[16], 0) : a.add(&o[16]), 1);
            EXPECT_EQ(ramFaultPending(), 0);  // the growth did try to allocate
            EXPECT_EQ(ZuErrorKeeper::getLastErrorNumber(), 30190);
            EXPECT_EQ(a.getCount(), 16u);
            EXPECT_EQ(slots(a), before);  // same capacity, same elements
            EXPECT_EQ(a.add(&o[16]), 0);  // and it still works afterwards
        }
    }
}

TEST(ZuArrayFaults, FailedSetInitialSizeOrIncreaseSizeWithoutKeepChangesNothing)
{
    CurrentErrorList errors;
    ZuObject o[2];
    ZuArray a(2);
    a.add(&o[0]), a.add(&o[1]);
    ramFaultFailNth(1);
    EXPECT_EQ(a.setInitialSize(40), 1);
    ramFaultFailNth(1);
    EXPECT_EQ(a.increaseSize(4, 0, 1), 1);
    EXPECT_EQ(errors.list.isMemoryErrorPending(), 1);
    EXPECT_EQ(a.getCount(), 2u);
    EXPECT_EQ(slots(a), (P{&o[0], &o[1]}));
    ASSERT_EQ(a.increaseSize(4, 0, 1), 0);  // succeeding, it starts empty
    EXPECT_EQ(a.getCount(), 0u);
    EXPECT_EQ(slots(a), P(6, nullptr));
}

TEST(ZuArrayModel, RandomOperationsMatchAVectorModel)
{
    Tracked::live = 0;
    std::mt19937 rng(12345);
    auto pick = [&](unsigned n) { return static_cast<unsigned>(rng() % n); };
    ZuArray a;
    std::vector<Tracked*> model;
    unsigned capacity = 0;
    for (int step = 0; step < 4000; ++step) {
        const unsigned growth = pick(4) == 0 ? 0 : pick(6), count = static_cast<unsigned>(model.size());
        const unsigned op = pick(20);
        a.setGrowthStep(growth);
        if (op < 11) {  // add (op < 5) or addAtIndex, sometimes of a null element
            Tracked* t = pick(10) == 0 ? nullptr : new Tracked;
            const unsigned at = op < 5 ? count : pick(count + 1);
            if (count == capacity)
                capacity = growth != 0 ? capacity + growth : (capacity == 0 ? 1 : 2 * capacity);
            ASSERT_EQ(op < 5 ? a.add(t) : a.addAtIndex(t, at), 0);
            model.insert(model.begin() + at, t);
        } else if (op < 19 && count > 0) {  // removeAtIndex (op < 15) or deleteAtIndex
            const unsigned at = pick(count);
            if (op < 15)
                a.removeAtIndex(at), delete model[at];  // still alive: ours to delete
            else
                a.deleteAtIndex(at);
            model.erase(model.begin() + at);
        } else if (op == 19) {
            const unsigned n = pick(count + 4);
            a.shrink(n);
            for (unsigned i = n; i < count; ++i)
                delete model[i];
            model.resize(n, nullptr);
            capacity = n;
        }
        P expected(model.begin(), model.end());
        expected.resize(capacity, nullptr);
        ASSERT_EQ(a.getCount(), model.size()) << "step " << step;
        ASSERT_EQ(slots(a), expected) << "step " << step;
        ASSERT_EQ(Tracked::live, static_cast<int>(model.size() - std::count(model.begin(), model.end(), nullptr)));
    }
    a.deleteContents();
    EXPECT_EQ(Tracked::live, 0);
}
