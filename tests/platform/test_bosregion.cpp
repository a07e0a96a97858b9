// Region locks between processes (python3's fcntl.lockf, a forked child)
// and between threads of one process, which the kernel alone cannot tell
// apart.
#include <sys/wait.h>

#include <atomic>
#include <thread>

#include "bostest.h"
#include "platform/bosfile.h"

namespace {
class RegionLocks : public WithErrors {
protected:
    void SetUp() override
    {
        WithErrors::SetUp();
        dir.write("r", std::string(100, '.'));
        char path[BOS_MAX_PATH + 1];
        std::snprintf(path, sizeof path, "%s", (dir / "r").c_str());
        ASSERT_EQ(bosFileOpen(path, BOS_OPEN_WRITE, &fd), 0);
    }
    void TearDown() override
    {
        bosFileClose(fd);
        WithErrors::TearDown();
    }
    // Runs `body` on a thread of its own with its own error list; the
    // last error number it saw, or 0.
    template <class Body>
    unsigned onOtherThread(Body body)
    {
        unsigned seen = 0;
        std::thread t([&] {
            ZuErrorList mine(nullptr, 1);
            ZuErrorKeeper::setErrorList(&mine);
            body();
            seen = ZuErrorKeeper::getLastErrorNumber();
            ZuErrorKeeper::giveUpErrorList();
        });
        t.join();
        return seen;
    }
    TempDir dir;
    int fd = 0;
};
}  // namespace

TEST_F(RegionLocks, AnotherProcessSeesTheRegionsOnly)
{
    ASSERT_EQ(bosRegionLock(fd, 0, 10, 5), 0);
    ASSERT_EQ(bosRegionLock(fd, 0, 50, 0), 0) << "length 0: to the end of the file, and beyond";
    using V = std::vector<std::string>;
    // Inside, over the end, just past, just before; far behind the open region.
    EXPECT_EQ(lockProbes(dir / "r", {{12, 1, true}, {14, 3, true}, {15, 10, true}, {0, 10, true}, {5000, 1, false}}),
              (V{"busy", "busy", "ok", "ok", "busy"}));
    ASSERT_EQ(bosRegionLock(fd, 1, 10, 5), 0);
    bosRegionLock(fd, 1, 50, 0);
    EXPECT_EQ(lockProbes(dir / "r", {{10, 5, true}, {50, 0, true}}), (V{"ok", "ok"})) << "unlocked";
    EXPECT_EQ(bosRegionLock(0, 0, 0, 1), 0) << "a null handle succeeds";
}

TEST_F(RegionLocks, RegionHeldByAnotherProcessIsRefusedAtOnce)
{
    const std::string path = dir / "r";
    LockingChild holder(path, 20, 10);
    ASSERT_TRUE(holder.holding());
    EXPECT_EQ(bosRegionLock(fd, 0, 25, 1), 1);
    EXPECT_EQ(lastNumber(), 1512u) << "locked, reported as such";
    EXPECT_EQ(bosRegionLock(fd, 0, 30, 5), 0) << "next to the child's region";
    bosRegionLock(fd, 1, 30, 5);
    holder.release();
    EXPECT_EQ(bosRegionLock(fd, 0, 25, 1), 0) << "the child is gone";
    bosRegionLock(fd, 1, 25, 1);
}

TEST_F(RegionLocks, ThreadsOfOneProcessExcludeEachOther)
{
    ASSERT_EQ(bosRegionLock(fd, 0, 0, 10), 0);
    EXPECT_EQ(onOtherThread([&] { EXPECT_EQ(bosRegionLock(fd, 0, 5, 10), 1); }), 1512u)
        << "overlap with this thread's region";
    EXPECT_EQ(onOtherThread([&] { EXPECT_EQ(bosRegionLock(fd, 0, 9, 1), 1); }), 1512u) << "its last byte";
    EXPECT_EQ(onOtherThread([&] {
                  EXPECT_EQ(bosRegionLock(fd, 0, 10, 5), 0);
                  EXPECT_EQ(bosRegionLock(fd, 1, 10, 5), 0);
              }),
              0u)
        << "an adjacent region is free";

    // The same region again counts; it stays held until unlocked as often.
    ASSERT_EQ(bosRegionLock(fd, 0, 0, 10), 0);
    ASSERT_EQ(bosRegionLock(fd, 1, 0, 10), 0);
    EXPECT_EQ(onOtherThread([&] { bosRegionLock(fd, 0, 0, 1); }), 1512u) << "one use left";
    EXPECT_EQ(onOtherThread([&] { EXPECT_EQ(bosRegionLock(fd, 1, 0, 10), 0); }), 0u)
        << "unlocking what the thread does not hold is no error";
    ASSERT_EQ(bosRegionLock(fd, 1, 0, 10), 0);
    EXPECT_EQ(onOtherThread([&] {
                  EXPECT_EQ(bosRegionLock(fd, 0, 0, 100), 0);
                  bosRegionLock(fd, 1, 0, 100);
              }),
              0u)
        << "free after the last unlock";

    // A region to the end of the file covers everything behind it.
    ASSERT_EQ(bosRegionLock(fd, 0, 60, 0), 0);
    EXPECT_EQ(onOtherThread([&] { bosRegionLock(fd, 0, 1000000, 1); }), 1512u);
    bosRegionLock(fd, 1, 60, 0);
}

TEST_F(RegionLocks, ManyThreadsTakingTurnsNeverShareARegion)
{
    // Each thread locks the shared region, checks nobody else is inside,
    // and leaves; refusals are retried.  Holding it twice would show as
    // more than one thread inside at once.
    std::atomic<int> inside{0}, overlaps{0}, entries{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&] {
            ZuErrorList mine(nullptr, 1);
            ZuErrorKeeper::setErrorList(&mine);
            for (int done = 0; done < 50;) {
                if (bosRegionLock(fd, 0, 40, 8) != 0) {
                    while (ZuError* e = mine.removeFirstError())
                        if (!e->isStatic())
                            delete e;
                    std::this_thread::yield();
                    continue;
                }
                if (inside.fetch_add(1) != 0)
                    overlaps.fetch_add(1);
                entries.fetch_add(1);
                inside.fetch_sub(1);
                bosRegionLock(fd, 1, 40, 8);
                ++done;
            }
            ZuErrorKeeper::giveUpErrorList();
        });
    }
    for (auto& t : threads)
        t.join();
    EXPECT_EQ(entries.load(), 200);
    EXPECT_EQ(overlaps.load(), 0);
}
