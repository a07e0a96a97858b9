// Per-task and per-thread data under real threads.
#include <gtest/gtest.h>

#include <pthread.h>

#include <atomic>
#include <barrier>
#include <set>
#include <thread>
#include <vector>

#include "platform/mds.h"

namespace {
int chainLength()
{
    int n = 0;
    for (auto* row = static_cast<ZuThreadInfo*>(mdsGetPerTaskData(PTD_THREAD_INFO)); row != nullptr;
         row = row->next.load())
        ++n;
    return n;
}
int sentinel;
}  // namespace

TEST(PerTaskData, SlotsReadBackAndOutOfRangeSlotsAreInert)
{
    void* old = mdsGetPerTaskData(4);
    mdsSetPerTaskData(4, &sentinel);
    EXPECT_EQ(mdsGetPerTaskData(4), &sentinel);
    EXPECT_EQ(*mdsGetPerTaskDataAddress(4), &sentinel);
    mdsSetPerTaskData(4, old);

    mdsSetPerTaskData(-1, &sentinel);
    mdsSetPerTaskData(PTD_SLOT_COUNT, &sentinel);
    EXPECT_EQ(mdsGetPerTaskData(-1), nullptr);
    EXPECT_EQ(mdsGetPerTaskData(PTD_SLOT_COUNT), nullptr);
    EXPECT_EQ(mdsGetPerTaskDataAddress(PTD_SLOT_COUNT), nullptr);
    EXPECT_EQ(mdsPerTaskInit(), 1);
    EXPECT_EQ(mdsIsTaskInit(), 1);
}

TEST(PerThreadData, ThreadWithoutRowReadsNullAndCannotWrite)
{
    std::thread([] {
        EXPECT_EQ(mdsGetPerThreadData(0), nullptr);
        EXPECT_EQ(mdsGetPerThreadDataAddress(0), nullptr);
        EXPECT_EQ(mdsSetPerThreadData(0, &sentinel), 1);
        EXPECT_EQ(findThreadInfo(pthread_self()), nullptr);
    }).join();
}

TEST(PerThreadData, RowStaysUntilEveryInitIsMatchedByATerm)
{
    std::thread([] {
        ASSERT_EQ(mdsPerThreadInit(), 1);
        ASSERT_EQ(mdsPerThreadInit(), 1);
        ASSERT_EQ(mdsSetPerThreadData(2, &sentinel), 0);
        mdsPerThreadTerm();
        EXPECT_EQ(mdsGetPerThreadData(2), &sentinel) << "one term left the row in use";
        mdsPerThreadTerm();
        EXPECT_EQ(mdsGetPerThreadData(2), nullptr) << "row no longer the thread's";
        mdsPerThreadTerm();  // one too many: harmless
        EXPECT_EQ(findThreadInfo(pthread_self()), nullptr);
    }).join();
}

TEST(PerThreadData, FreedRowIsReusedWithItsSlotsZeroed)
{
    // Keep the main thread's row busy so only the worker's row can be free.
    mdsPerThreadInit();
    std::thread([] {
        mdsPerThreadInit();
        mdsSetPerThreadData(1, &sentinel);
        mdsPerThreadTerm();
    }).join();
    const int before = chainLength();
    std::thread([] {
        ASSERT_EQ(mdsPerThreadInit(), 1);
        EXPECT_EQ(mdsGetPerThreadData(1), nullptr) << "slots of the old owner leaked through";
        mdsPerThreadTerm();
    }).join();
    EXPECT_EQ(chainLength(), before) << "a free row should have been reused";
    mdsPerThreadTerm();
}

TEST(PerThreadData, ThreadThatEndsWithoutTermDoesNotPassItsSlotsOn)
{
    // The system reuses ids of ended threads; whoever gets the id (or the
    // row) next must start with empty slots, not a dead thread's pointers.
    for (int round = 0; round < 20; ++round) {
        std::thread([] {
            mdsPerThreadInit();
            mdsSetPerThreadData(PTHD_ERROR_LIST, &sentinel);
        }).join();
        std::thread([] {
            mdsPerThreadInit();
            EXPECT_EQ(mdsGetPerThreadData(PTHD_ERROR_LIST), nullptr);
            mdsPerThreadTerm();
        }).join();
    }
}

TEST(PerThreadData, ConcurrentThreadsEachSeeOnlyTheirOwnSlots)
{
    constexpr int kThreads = 8;
    constexpr int kRounds = 2000;
    std::barrier start(kThreads);
    std::atomic<int> wrong{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&, t] {
            int mine[PTHD_SLOT_COUNT];
            start.arrive_and_wait();
            for (int r = 0; r < kRounds; ++r) {
                mdsPerThreadInit();
                for (int s = 0; s < PTHD_SLOT_COUNT; ++s)
                    mdsSetPerThreadData(s, &mine[s]);
                for (int s = 0; s < PTHD_SLOT_COUNT; ++s)
                    if (mdsGetPerThreadData(s) != &mine[s])
                        ++wrong;
                mdsPerThreadTerm();
            }
            (void)t;
        });
    }
    for (auto& th : threads)
        th.join();
    EXPECT_EQ(wrong.load(), 0);
    EXPECT_LE(chainLength(), kThreads + 8) << "rows must be reused, not added per round";
}

TEST(TaskCounters, DBLibInitCountRisesAndFallsUnderContention)
{
    const unsigned short base = countDBLibInits(1);
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([] {
            for (int i = 0; i < 1000; ++i) {
                countDBLibInits(1);
                countDBLibInits(0);
            }
        });
    for (auto& th : threads)
        th.join();
    EXPECT_EQ(countDBLibInits(0), base - 1);
}

TEST(TaskCounters, ExchangesAreAtomicUnderContention)
{
    // Every value swapped in comes out exactly once: either as some swap's
    // old value or as the final content.
    for (auto exchange : {&atomicTaskExchange, &atomicThreadExchange}) {
        long word = 0;
        constexpr int kThreads = 4, kEach = 2000;
        std::vector<std::vector<long>> olds(kThreads);
        std::vector<std::thread> threads;
        for (int t = 0; t < kThreads; ++t)
            threads.emplace_back([&, t] {
                for (int i = 1; i <= kEach; ++i)
                    olds[t].push_back(exchange(&word, t * kEach + i));
            });
        for (auto& th : threads)
            th.join();
        std::multiset<long> seen{word};
        for (auto& v : olds)
            seen.insert(v.begin(), v.end());
        EXPECT_EQ(seen.size(), size_t{kThreads * kEach + 1});
        EXPECT_EQ(seen.count(0), 1u);
        for (long v = 1; v <= kThreads * kEach; ++v)
            ASSERT_EQ(seen.count(v), 1u) << v;
    }
}
