// The per-thread error list: who wins in a one-error list, the memory error
// that allocates nothing, counters, removal order and the stack of lists.
#include <gtest/gtest.h>

#include <atomic>
#include <barrier>
#include <thread>
#include <vector>

#include "core/errorlist.h"
#include "platform/mds.h"
#include "platform/ram.h"

namespace {
struct CurrentList {
    explicit CurrentList(int keepAll) : list(nullptr, keepAll) { ZuErrorKeeper::setErrorList(&list); }
    ~CurrentList() { ZuErrorKeeper::giveUpErrorList(); }
    ZuErrorList list;
};
ZuError* error(unsigned short n) { return new ZuError(n, ErrTypeError); }
ZuError* warning(unsigned short n) { return new ZuError(n, ErrTypeWarning); }
}  // namespace

TEST(OneErrorList, FirstErrorWinsAndLaterOnesAreAbsorbed)
{
    CurrentList c(0);
    ZuError* first = ZuErrorKeeper::addError(error(100));
    EXPECT_EQ(first->getErrorNumber(), 100);
    EXPECT_EQ(ZuErrorKeeper::addError(error(200)), &DummyError);
    // A warning after an error is refused too: the test is whether an error exists.
    EXPECT_EQ(ZuErrorKeeper::addError(warning(300)), &DummyError);
    DummyError.setRowColumn(5, 6);  // changes on the dummy are no-ops
    DummyError.setWarning();
    EXPECT_EQ(DummyError.getRow(), -1);
    EXPECT_FALSE(DummyError.isWarning());
    EXPECT_EQ(c.list.getCount(), 1u);
    EXPECT_EQ(ZuErrorKeeper::getLastErrorNumber(), 100);
    EXPECT_EQ(ZuErrorKeeper::addError(nullptr), &DummyError);
}

TEST(OneErrorList, WarningThenErrorBothStay)
{
    CurrentList c(0);
    ZuErrorKeeper::addError(warning(1));
    ZuErrorKeeper::addError(error(2));
    EXPECT_EQ(c.list.getCount(), 2u);
    EXPECT_EQ(c.list.getErrorsMix(), 1);
}

TEST(KeepAllList, KeepsArrivalOrderAndCounts)
{
    CurrentList c(1);
    for (unsigned short n : {30, 10, 20})
        ZuErrorKeeper::addError(error(n));
    ZuErrorKeeper::addError(warning(5));
    EXPECT_EQ(c.list.getErrorCount(), 3);
    EXPECT_EQ(c.list.getWarningCount(), 1);
    EXPECT_EQ(ZuErrorKeeper::getLastErrorNumber(), 5);

    // Iteration walks arrival order; any removal resets the position.
    std::vector<int> seen;
    for (ZuError* e = c.list.getFirstNode(); e != nullptr; e = c.list.getNextNode())
        seen.push_back(e->getErrorNumber());
    EXPECT_EQ(seen, (std::vector<int>{30, 10, 20, 5}));
    EXPECT_EQ(c.list.getNodeAtPos(2)->getErrorNumber(), 20);
    EXPECT_EQ(c.list.getNextNode()->getErrorNumber(), 5);

    ZuError* a = c.list.removeFirstError();
    ZuError* b = c.list.removeFirstError();
    EXPECT_EQ(a->getErrorNumber(), 30);
    EXPECT_EQ(b->getErrorNumber(), 10);
    EXPECT_EQ(a->getOwner(), nullptr);
    EXPECT_EQ(c.list.getErrorCount(), 1);
    EXPECT_EQ(c.list.getNextNode()->getErrorNumber(), 20) << "removal resets the position to 0";
    delete a;
    delete b;
}

TEST(ErrorsMix, AllCombinations)
{
    ZuErrorList list(nullptr, 1);
    EXPECT_EQ(list.getErrorsMix(), 0);
    list.add(warning(1));
    EXPECT_EQ(list.getErrorsMix(), 3);
    EXPECT_TRUE(list.isWarningOnly());
    list.add(error(2));
    EXPECT_EQ(list.getErrorsMix(), 1);
    EXPECT_FALSE(list.isWarningOnly());
    delete list.removeFirstError();
    EXPECT_EQ(list.getErrorsMix(), 2);

    // setWarning / resetWarning move one count between the counters.
    ZuError* e = list.getLastError();
    e->setWarning();
    EXPECT_EQ(list.getErrorCount(), 0);
    EXPECT_EQ(list.getWarningCount(), 1);
    e->setWarning();  // already a warning: no double move
    EXPECT_EQ(list.getWarningCount(), 1);
    e->resetWarning();
    EXPECT_EQ(list.getErrorCount(), 1);
    EXPECT_EQ(list.getWarningCount(), 0);
}

TEST(MemoryError, ReadsAsLastErrorOnceAndIsNeverFreed)
{
    CurrentList c(1);
    ZuErrorKeeper::addError(error(7));
    ramAddMemoryError();
    ramAddMemoryError();  // at most one per list
    EXPECT_EQ(ZuErrorKeeper::getLastErrorNumber(), ZU_MEMORY_ERROR_NUMBER);
    EXPECT_EQ(ZuErrorKeeper::getLastError(), &MemoryError);
    EXPECT_EQ(c.list.getErrorCount(), 2);
    EXPECT_EQ(c.list.getCount(), 1u) << "the memory error allocates nothing";
    EXPECT_TRUE(c.list.isExistingError());

    ZuErrorKeeper::clearLastError();  // takes it away; the static is not freed
    EXPECT_FALSE(c.list.isMemoryErrorPending());
    EXPECT_EQ(ZuErrorKeeper::getLastErrorNumber(), 7);
    EXPECT_EQ(MemoryError.getErrorNumber(), ZU_MEMORY_ERROR_NUMBER);
    EXPECT_TRUE(MemoryError.isStatic());
}

TEST(MemoryError, ReplacesTheErrorOfAOneErrorList)
{
    CurrentList c(0);
    ZuErrorKeeper::addError(error(7));
    ramAddMemoryError();
    EXPECT_EQ(c.list.getCount(), 0u);
    EXPECT_EQ(c.list.getErrorCount(), 1);
    EXPECT_EQ(ZuErrorKeeper::getLastErrorNumber(), ZU_MEMORY_ERROR_NUMBER);
    // A list holding only the memory error has an empty array: mix 0.
    EXPECT_EQ(c.list.getErrorsMix(), 0);
    EXPECT_EQ(c.list.removeLastError(), &MemoryError);
    EXPECT_EQ(c.list.getErrorCount(), 0);
    EXPECT_EQ(c.list.removeLastError(), nullptr);
}

TEST(ListStack, NestedListsCollectApartAndUnwind)
{
    ZuErrorList outer(nullptr, 1), inner(&outer, 1);
    ZuErrorKeeper::setErrorList(&outer);
    ZuErrorKeeper::addError(error(1));
    ZuErrorKeeper::setErrorList(&inner);
    EXPECT_EQ(ZuErrorKeeper::getOwnerOfList(), &outer);
    ZuErrorKeeper::addError(error(2));
    EXPECT_EQ(ZuErrorKeeper::getLastErrorNumber(), 2);
    EXPECT_EQ(ZuErrorKeeper::giveUpErrorList(), &inner);
    EXPECT_EQ(ZuErrorKeeper::getErrorList(), &outer);
    EXPECT_EQ(ZuErrorKeeper::getLastErrorNumber(), 1);

    // Moving carries a pending memory error and lowers the source twice per error.
    inner.addMemoryError();
    outer.moveErrorsFromList(&inner);
    EXPECT_EQ(outer.getCount(), 2u);
    EXPECT_TRUE(outer.isMemoryErrorPending());
    EXPECT_EQ(outer.getErrorCount(), 3);
    EXPECT_EQ(inner.getCount(), 0u);
    EXPECT_EQ(inner.getErrorCount(), 0) << "2 (error + memory) less 2 for the one error moved";
    EXPECT_EQ(ZuErrorKeeper::giveUpErrorList(), &outer);
    EXPECT_EQ(ZuErrorKeeper::getErrorList(), nullptr);
}

TEST(ListStack, ThreadsKeepTheirListsApart)
{
    constexpr int kThreads = 6;
    std::barrier start(kThreads);
    std::atomic<int> wrong{0};
    std::vector<std::thread> pool;
    for (int t = 0; t < kThreads; ++t)
        pool.emplace_back([&, t] {
            start.arrive_and_wait();
            for (int round = 0; round < 300; ++round) {
                ZuErrorList list(nullptr, 1);
                ZuErrorKeeper::setErrorList(&list);
                for (int i = 0; i < 5; ++i)
                    ZuErrorKeeper::addError(error(static_cast<unsigned short>(t * 100 + i)));
                if (ZuErrorKeeper::getLastErrorNumber() != t * 100 + 4 || list.getErrorCount() != 5)
                    ++wrong;
                if (ZuErrorKeeper::giveUpErrorList() != &list)
                    ++wrong;
                if (ZuErrorKeeper::getErrorList() != nullptr)
                    ++wrong;
            }
        });
    for (auto& th : pool)
        th.join();
    EXPECT_EQ(wrong.load(), 0);
}
