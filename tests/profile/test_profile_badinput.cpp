// Bad input and failing writes: random bytes as a profile, read-only files
// and folders, a missing driver file, allocation failures and a disk that
// refuses to grow.  Reads give defaults; a failed write leaves no descriptor
// open, no lock held and the cached text as it was.
#include <gtest/gtest.h>

#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <functional>
#include <future>
#include <random>
#include <string>
#include <thread>

#include "platform/ramfault.h"
#include "profile/profile.h"
#include "profile_dir.h"

namespace {
class ProfileBadInput : public ProfileDir {};

// A read through another thread, with a time-out: false when the cache's
// semaphore was left held (the read would never come back).
bool readsWithin(ZuIniFileCache* cache, const char* section, const char* entry, std::string* value)
{
    auto result = std::async(std::launch::async, [=] {
        char buffer[256];
        cache->bosGetProfileString(section, entry, "<none>", buffer, sizeof buffer);
        return std::string(buffer);
    });
    if (result.wait_for(std::chrono::seconds(10)) != std::future_status::ready) {
        // The thread cannot be joined; this test fails and the process ends.
        std::_Exit(3);
    }
    *value = result.get();
    return true;
}

// Runs `body` in a child process as an unprivileged user when the tests run
// as root (for whom no permission bit is a barrier).  The child's exit code
// is the number of failed checks.
int runUnprivileged(const std::function<int()>& body)
{
    const pid_t pid = fork();
    if (pid < 0)
        return -1;
    if (pid == 0) {
        if (geteuid() == 0 && (setgid(65534) != 0 || setuid(65534) != 0))
            _exit(100);
        _exit(body());
    }
    int status = 0;
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (waitpid(pid, &status, WNOHANG) == 0) {
        if (std::chrono::steady_clock::now() > deadline) {
            stopChild(pid, 1000);
            return -1;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}
}  // namespace

TEST_F(ProfileBadInput, RandomBytesAsContentGiveDefaultsAndWritesStayReadable)
{
    std::mt19937 rng(4242);
    const char alphabet[] = "[]=;#\n\t a\r\0b\xff";
    for (int round = 0; round < 60; ++round) {
        std::string text;
        const int length = std::uniform_int_distribution<int>(0, 600)(rng);
        const bool withNul = round % 3 == 0;
        for (int i = 0; i < length; ++i) {
            char c = round % 2 == 0 ? alphabet[std::uniform_int_distribution<int>(0, 12)(rng)]
                                    : static_cast<char>(std::uniform_int_distribution<int>(0, 255)(rng));
            if (!withNul && c == 0)
                c = 'z';
            text += c;
        }
        const std::string path = file("random" + std::to_string(round) + ".ini");
        writeText(path, text);
        ZuIniFileCache cache;
        ASSERT_EQ(cache.bosZuIniOpen(path.c_str(), 0), 0);
        char buffer[64];
        for (const char* section : {"a", "", "b", "]", "zz"}) {
            for (const char* entry : {"a", "b", " ", "q"}) {
                const int n = cache.bosGetProfileString(section, entry, "d", buffer, sizeof buffer);
                EXPECT_GE(n, 0);
                EXPECT_LE(n, 64);
            }
            EXPECT_LE(cache.bosGetProfileString(section, nullptr, "d", buffer, sizeof buffer), 64);
            EXPECT_LE(cache.bosGetProfileSection(section, buffer, sizeof buffer), 64);
        }
        EXPECT_LE(cache.bosGetProfileString(nullptr, nullptr, "d", buffer, sizeof buffer), 64);
        ASSERT_EQ(cache.bosPutProfileString("fresh-section", "key", "value"), 1);
        if (!withNul || text.find('\0') == std::string::npos) {
            // Without a NUL in the way, what was written is read back, and the
            // old bytes are still in front of it.
            EXPECT_EQ(cache.bosGetProfileString("fresh-section", "key", "d", buffer, sizeof buffer), 5) << round;
            EXPECT_EQ(readText(path).compare(0, text.size(), text), 0);
        }
    }
}

TEST_F(ProfileBadInput, AMissingDriverFileGivesDefaultsAndLeavesNoError)
{
    env.unset("ODBCINST");
    char value[32];
    EXPECT_EQ(zuGetProfileString("ODBC", "InstallDir", "dflt", value, sizeof value, ".odbcinst.ini"), 4);
    EXPECT_STREQ(value, "dflt");
    EXPECT_EQ(zuGetPrivateProfileString("ODBC", "x", "d2", value, sizeof value, ".odbcinst.ini"), 2);
    EXPECT_EQ(errors.getCount(), 0u) << "no error stays behind";
    // The same name by the variable: the cache exists and answers defaults.
    env.set("ODBCINST", file("missing-odbcinst.ini"));
    ZuIniFileCache cache;
    EXPECT_EQ(cache.bosZuIniOpen(".odbcinst.ini", 0), 0);
    EXPECT_EQ(cache.getState(), 0);
    EXPECT_EQ(cache.bosGetProfileString("a", "b", "d3", value, sizeof value), 2);
    EXPECT_EQ(cache.bosPutProfileString("a", "b", "c"), 0);
    EXPECT_EQ(errors.getCount(), 0u);
    // Once the file exists, it is read.
    writeText(file("missing-odbcinst.ini"), "[a]\nb=found\n");
    EXPECT_EQ(cache.bosGetProfileString("a", "b", "d3", value, sizeof value), 5);
    EXPECT_STREQ(value, "found");
    // Any other missing file is a failure, reported as a warning.
    ZuIniFileCache other;
    EXPECT_EQ(other.bosZuIniOpen(file("nothing.ini").c_str(), 0), 1);
    EXPECT_EQ(errors.getErrorCount(), 0);
    EXPECT_EQ(errors.getWarningCount(), 1);
}

// The task's list keeps the cache of a missing driver file; a later write by
// name must still create the file, as it does when no read came first.
TEST_F(ProfileBadInput, AWriteCreatesADriverFileThatAnEarlierReadFoundMissing)
{
    env.unset("ODBCINST");
    const std::string home = file(".odbcinst.ini");
    char value[32];
    EXPECT_EQ(zuGetProfileString("ODBC", "InstallDir", "dflt", value, sizeof value, ".odbcinst.ini"), 4);
    ASSERT_EQ(fileSize(home), -1) << "a read creates nothing";
    EXPECT_EQ(zuWriteProfileString("ODBC", "InstallDir", "/opt/x", ".odbcinst.ini"), 1);
    EXPECT_EQ(readText(home), "[ODBC]\nInstallDir=/opt/x\n");
    EXPECT_EQ(zuGetProfileString("ODBC", "InstallDir", "dflt", value, sizeof value, ".odbcinst.ini"), 6);
    EXPECT_STREQ(value, "/opt/x");
    // ZuIni (the private family's open), after a read of another missing
    // driver file name by the keeping family.
    ZuIniFileCacheList* list = zuGetIniFileCacheList();
    ASSERT_NE(list, nullptr);
    const unsigned before = list->getCount();
    EXPECT_EQ(zuGetProfileString("s", "k", "d", value, sizeof value, "ODBCINST.INI"), 1);
    ZuIni ini;
    ASSERT_EQ(ini.open("ODBCINST.INI"), 0);
    ini.writeEntry("s", "k", "v");
    EXPECT_EQ(readText(file("ODBCINST.INI")), "[s]\nk=v\n");
    EXPECT_EQ(list->getCount(), before + 1) << "one cache for the name, shared";
    EXPECT_EQ(errors.getCount(), 0u) << "no error stays behind";
}

TEST_F(ProfileBadInput, ReadOnlyFileAndFolderAreReadButNotWritten)
{
    const std::string path = file("ro/locked.ini");
    mkdir(file("ro").c_str(), 0755);
    writeText(path, "[s]\nk=v\n");
    chmod(path.c_str(), 0444);
    chmod(file("ro").c_str(), 0555);
    const int failures = runUnprivileged([&] {
        int failed = 0;
        ZuErrorList list(nullptr, 1);
        ZuErrorKeeper::setErrorList(&list);
        ZuIniFileCache cache;
        failed += cache.bosZuIniOpen(path.c_str(), 0) != 0;                      // read-only, without complaint
        failed += list.getCount() != 0;
        failed += (cache.getOpenMode() & 2) != 0;
        const int descriptors = openDescriptors();
        failed += cache.bosPutProfileString("s", "k", "changed") != 0;          // the write fails
        failed += list.getErrorCount() == 0;                                      // and says why
        failed += openDescriptors() != descriptors;                               // no descriptor left open
        failed += std::string(cache.getText()) != "[s]\nk=v\n";                  // the text as it was
        std::string value;
        readsWithin(&cache, "s", "k", &value);                                    // the semaphore is free
        failed += value != "v";
        // A file that cannot be created in the read-only folder.
        failed += zuWritePrivateProfileString("s", "k", "v", file("ro/new.ini").c_str()) != 0;
        failed += access(file("ro/new.ini").c_str(), F_OK) == 0;
        ZuErrorKeeper::giveUpErrorList();
        return failed;
    });
    EXPECT_EQ(failures, 0);
    EXPECT_EQ(readText(path), "[s]\nk=v\n");
    chmod(file("ro").c_str(), 0755);
}

TEST_F(ProfileBadInput, AllocationFailuresInAWriteLeaveFileAndCacheIntact)
{
    const std::string path = file("fault.ini");
    const std::string original = "[a]\nx=1\n[b]\ny=2\n";
    writeText(path, original);
    ZuIniFileCache cache;
    ASSERT_EQ(cache.bosZuIniOpen(path.c_str(), 0), 0);
    ramFaultFailNth(0);
    ASSERT_EQ(cache.bosPutProfileString("b", "new", "entry-value"), 1);
    const unsigned long allocations = ramFaultAllocations();
    ASSERT_GT(allocations, 0u);
    const std::string written = readText(path);
    for (unsigned long n = 1; n <= allocations; ++n) {
        writeText(path, original);
        ASSERT_EQ(cache.bosZuIniOpen(path.c_str(), 0), 0);
        errors.deleteContents();
        const int descriptors = openDescriptors();
        ramFaultFailNth(n);
        const int result = cache.bosPutProfileString("b", "new", "entry-value");
        ramFaultFailNth(0);
        EXPECT_EQ(openDescriptors(), descriptors) << "allocation " << n;
        // A failure either ends the write (reported) or comes after the file
        // was written (a reload the next read makes again).
        EXPECT_TRUE(result == 1 || errors.isMemoryErrorPending()) << "allocation " << n;
        std::string value;
        readsWithin(&cache, "b", "y", &value);
        EXPECT_EQ(value, "2") << "allocation " << n;
        if (result == 0) {
            EXPECT_EQ(readText(path), original) << "a failed write leaves the file";
            EXPECT_STREQ(cache.getText(), original.c_str()) << "and the cached text";
        } else {
            EXPECT_EQ(readText(path), written) << "a write that succeeded before the failure stands";
            readsWithin(&cache, "b", "new", &value);
            EXPECT_EQ(value, "entry-value") << "the next read loads it";
        }
    }
}

TEST_F(ProfileBadInput, AWriteTheDiskRefusesPutsTheOldTextBack)
{
    const std::string path = file("full.ini");
    const std::string original = "[a]\nx=1\n";
    writeText(path, original);
    const pid_t pid = fork();
    ASSERT_GE(pid, 0);
    if (pid == 0) {
        int failed = 0;
        ZuErrorList list(nullptr, 1);
        ZuErrorKeeper::setErrorList(&list);
        ZuIniFileCache cache;
        failed += cache.bosZuIniOpen(path.c_str(), 0) != 0;
        // The file may not grow past 64 bytes; the write would make it longer.
        signal(SIGXFSZ, SIG_IGN);
        struct rlimit limit = {64, 64};
        setrlimit(RLIMIT_FSIZE, &limit);
        const int descriptors = openDescriptors();
        failed += cache.bosPutProfileString("a", "long", std::string(200, 'v').c_str()) != 0;
        failed += list.getErrorCount() == 0;
        failed += openDescriptors() != descriptors;
        failed += std::string(cache.getText()) != original;
        std::string value;
        readsWithin(&cache, "a", "x", &value);
        failed += value != "1";
        // A write that fits still works afterwards: nothing was left locked.
        failed += cache.bosPutProfileString("a", "y", "2") != 1;
        ZuErrorKeeper::giveUpErrorList();
        _exit(failed);
    }
    int status = 0;
    ASSERT_EQ(waitpid(pid, &status, 0), pid);
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 0);
    EXPECT_EQ(readText(path), "[a]\ny=2\nx=1\n") << "the old text was put back before the second write";
}
