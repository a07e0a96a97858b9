// Allocation failures, driven with the fault-injection facility: every
// failure is a null (or 1) plus exactly one memory error, and nothing that
// existed before is lost.
#include <gtest/gtest.h>

#include <pthread.h>

#include <cstring>
#include <thread>

#include "core/array.h"
#include "core/errorlist.h"
#include "platform/mds.h"
#include "platform/ram.h"
#include "platform/ramfault.h"
#include "platform/semaphore.h"

namespace {
struct Probe : ZuObject {
    static int constructed;
    Probe() { ++constructed; }
};
int Probe::constructed = 0;

class WithErrorList : public ::testing::Test {
protected:
    void SetUp() override { ZuErrorKeeper::setErrorList(&list); }
    void TearDown() override
    {
        ramFaultFailNth(0);
        ZuErrorKeeper::giveUpErrorList();
    }
    ZuErrorList list{nullptr, 1};
};
}  // namespace

TEST_F(WithErrorList, FailingNthAllocationReportsOnceAndOnlyThatOne)
{
    ramFaultFailNth(2);
    void* first = ramAllocC(10);
    void* second = ramAllocC(10);
    void* third = ramAllocC(10);
    EXPECT_NE(first, nullptr);
    EXPECT_EQ(second, nullptr);
    EXPECT_NE(third, nullptr);
    EXPECT_EQ(ZuErrorKeeper::getLastErrorNumber(), ZU_MEMORY_ERROR_NUMBER);
    EXPECT_EQ(list.getErrorCount(), 1);
    EXPECT_EQ(ramFaultAllocations(), 3u);
    ramFreeC(first);
    ramFreeC(third);
}

TEST_F(WithErrorList, FailedResizeLeavesTheOldBlock)
{
    void* p = ramAllocC(8);
    std::memcpy(p, "12345678", 8);
    ramFaultFailNth(1);
    EXPECT_EQ(ramResizeZ(&p, 4096), 1);
    EXPECT_EQ(std::memcmp(p, "12345678", 8), 0);
    EXPECT_TRUE(list.isMemoryErrorPending());
    ramFreeC(p);
}

TEST_F(WithErrorList, NewOfAnObjectYieldsNullWithoutConstructing)
{
    Probe::constructed = 0;
    ramFaultFailNth(1);
    Probe* p = new Probe;
    EXPECT_EQ(p, nullptr);
    EXPECT_EQ(Probe::constructed, 0);
    EXPECT_EQ(ZuErrorKeeper::getLastErrorNumber(), ZU_MEMORY_ERROR_NUMBER);
}

TEST_F(WithErrorList, EveryAllocationOfAGrowingArrayCanFailWithoutLoss)
{
    // Count the allocations 100 appends make, then fail each in turn.
    ramFaultFailNth(0);
    {
        ZuArrayS32 a;
        for (int i = 0; i < 100; ++i)
            a.add(i);
    }
    const unsigned long total = ramFaultAllocations();
    ASSERT_GE(total, 5u);
    for (unsigned long n = 1; n <= total; ++n) {
        ZuErrorList local(nullptr, 1);
        ZuErrorKeeper::setErrorList(&local);
        ZuArrayS32 a;
        ramFaultFailNth(n);
        int failures = 0;
        for (int i = 0; i < 100; ++i) {
            const unsigned before = a.getCount();
            if (a.add(i) != 0) {
                ++failures;
                EXPECT_EQ(a.getCount(), before);
            }
        }
        ramFaultFailNth(0);
        EXPECT_EQ(failures, 1) << "allocation " << n;
        EXPECT_EQ(local.getErrorCount(), 1);
        // What was added is all there, in order, around the one refused value.
        for (unsigned i = 1; i < a.getCount(); ++i)
            EXPECT_LT(a.at(i - 1), a.at(i));
        EXPECT_EQ(a.getCount(), 99u);
        ZuErrorKeeper::giveUpErrorList();
    }
}

namespace {
bool chainHasFreeRow()
{
    for (auto* row = static_cast<ZuThreadInfo*>(mdsGetPerTaskData(PTD_THREAD_INFO)); row != nullptr;
         row = row->next.load())
        if (row->useCount.load() == 0)
            return true;
    return false;
}
}  // namespace

TEST(FaultWithoutList, AThreadWithoutAListSurvivesExhaustion)
{
    mdsPerThreadInit();  // hold this thread's row so that it cannot be reused
    std::thread t([] {
        EXPECT_EQ(mdsGetPerThreadData(PTHD_ERROR_LIST), nullptr);
        ramFaultFailNth(1);
        EXPECT_EQ(ramAllocC(1), nullptr);  // nowhere to report: just null
        if (!chainHasFreeRow()) {
            // A new row is needed and cannot be made.
            ramFaultFailNth(1);
            EXPECT_EQ(mdsPerThreadInit(), 0);
            EXPECT_EQ(mdsGetPerThreadData(PTHD_ERROR_LIST), nullptr);
            ramFaultFailNth(0);
        }
    });
    t.join();
    mdsPerThreadTerm();
}

TEST_F(WithErrorList, LazySemaphoreThatCannotBeMadeLeavesTheSlotUntouched)
{
    ZuSemaphore* slot = nullptr;
    ramFaultFailNth(1);
    zuSemaphoreEnter(&slot);  // no semaphore: goes on unguarded
    EXPECT_EQ(slot, nullptr);
    zuSemaphoreExit(&slot);   // and the exit does nothing
    EXPECT_EQ(slot, nullptr);
    zuSemaphoreEnter(&slot);  // the next use creates it
    ASSERT_NE(slot, nullptr);
    zuSemaphoreExit(&slot);
    delete slot;
}
