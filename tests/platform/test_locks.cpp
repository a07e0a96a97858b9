// Critical sections, lazily created semaphores and the thread layer.
#include <gtest/gtest.h>

#include <atomic>
#include <barrier>
#include <cstdint>
#include <thread>
#include <vector>

#include "platform/critsec.h"
#include "platform/semaphore.h"
#include "platform/thread.h"

namespace {
// A static section needs no start-up code: usable from any other module's
// start-up, whatever the order.
constinit ZuCriticalSection gStaticSection;

// Runs `body` on kThreads threads released together, each `rounds` times,
// and checks that no two were ever inside at once.
template <class Enter, class Leave>
void expectMutualExclusion(Enter enter, Leave leave, int threads = 6, int rounds = 3000)
{
    std::barrier start(threads);
    std::atomic<int> inside{0};
    std::atomic<int> overlaps{0};
    long counter = 0;  // deliberately not atomic: only the lock protects it
    std::vector<std::thread> pool;
    for (int t = 0; t < threads; ++t)
        pool.emplace_back([&] {
            start.arrive_and_wait();
            for (int i = 0; i < rounds; ++i) {
                enter();
                if (inside.fetch_add(1) != 0)
                    ++overlaps;
                ++counter;
                inside.fetch_sub(1);
                leave();
            }
        });
    for (auto& th : pool)
        th.join();
    EXPECT_EQ(overlaps.load(), 0);
    EXPECT_EQ(counter, long{threads} * rounds);
}
}  // namespace

TEST(CriticalSection, ExcludesConcurrentThreads)
{
    expectMutualExclusion([] { gStaticSection.enter(); }, [] { gStaticSection.leave(); });
    EXPECT_EQ(gStaticSection.isDisabled(), 0);
    zuDisableStaticCriticalSections();  // no effect on this platform
    EXPECT_EQ(gStaticSection.isDisabled(), 0);
}

TEST(CriticalSection, SectionHeldAtDestructionIsLeftAlone)
{
    // Exit-time destruction while another thread still holds the section must
    // neither unlock that thread's mutex nor block.
    alignas(ZuCriticalSection) unsigned char storage[sizeof(ZuCriticalSection)];
    auto* cs = new (storage) ZuCriticalSection;
    std::atomic<bool> held{false}, done{false};
    std::thread holder([&] {
        cs->enter();
        held = true;
        while (!done)
            std::this_thread::yield();
    });
    while (!held)
        std::this_thread::yield();
    cs->~ZuCriticalSection();  // returns at once
    done = true;
    holder.join();
}

TEST(LazySemaphore, FirstUsesUnderContentionCreateExactlyOne)
{
    for (int round = 0; round < 20; ++round) {
        ZuSemaphore* slot = nullptr;
        expectMutualExclusion([&] { zuSemaphoreEnter(&slot); }, [&] { zuSemaphoreExit(&slot); }, 6, 200);
        ASSERT_GT(reinterpret_cast<uintptr_t>(slot), 2u);
        delete slot;
    }
}

TEST(LazySemaphore, ExitOnAnUncreatedSlotDoesNothing)
{
    ZuSemaphore* slot = nullptr;
    zuSemaphoreExit(&slot);
    EXPECT_EQ(slot, nullptr);
}

TEST(LazySemaphore, RecreatedAfterDestructionRecordsItsSlot)
{
    // Made at 0: its destruction leaves the slot alone.
    ZuSemaphore* slot = nullptr;
    zuSemaphoreEnter(&slot);
    zuSemaphoreExit(&slot);
    ZuSemaphore* first = slot;
    delete first;
    EXPECT_EQ(slot, first);

    // Made at 2 (destroyed at exit): recreated on use, and its destruction
    // marks the slot destroyed again.
    slot = reinterpret_cast<ZuSemaphore*>(uintptr_t{2});
    zuSemaphoreEnter(&slot);
    ASSERT_GT(reinterpret_cast<uintptr_t>(slot), 2u);
    zuSemaphoreExit(&slot);
    delete slot;
    EXPECT_EQ(reinterpret_cast<uintptr_t>(slot), 2u);
}

TEST(SemaphoreInfo, RegisterOfSetsAndSemaphores)
{
    ZuSemaphoreInfo info;
    EXPECT_EQ(info.availableSemaphore(), 0);
    info.sets[3] = {2, 4, -1};
    EXPECT_EQ(info.availableSemaphore(), 1);
    info.sets[3].inUse = 4;
    EXPECT_EQ(info.availableSemaphore(), 0);

    auto* a = new ZuSemaphore;
    auto* b = new ZuSemaphore;
    info.semaphores.add(a);
    info.semaphores.add(b);
    info.remove(a);
    EXPECT_EQ(info.semaphores.getCount(), 1u);
    EXPECT_EQ(info.semaphores.at(0), b);
    delete a;
    // b is deleted by the register's destructor (ASan reports it otherwise).
}

TEST(Threads, ThinLayerOverPthreads)
{
    pthread_t thread;
    int value = 0;
    const int rc = UtlThreadCreate([](void* arg) -> void* {
        *static_cast<int*>(arg) = 42;
        UtlThreadExit(arg);
    }, &value, &thread);
    ASSERT_EQ(UtlThreadCreateFail(rc), 0);
    void* result = nullptr;
    pthread_join(thread, &result);
    EXPECT_EQ(value, 42);
    EXPECT_EQ(result, &value);

    EXPECT_EQ(UtlThreadCreateFail(11), 1);
    EXPECT_TRUE(pthread_equal(UtlThreadGetId(), pthread_self()));
    EXPECT_TRUE(pthread_equal(bosGetThreadID(), pthread_self()));

    int untouched = 0;
    EXPECT_EQ(bosCreateThread([](void* arg) -> void* { *static_cast<int*>(arg) = 1; return nullptr; },
                              &untouched, &thread), 1);
    EXPECT_EQ(boscreth(nullptr, nullptr, &thread), 1);
    bosYieldThread();
    EXPECT_EQ(untouched, 0);
    EXPECT_GE(bosGetLogicalProcessorCount(), 1);
}
