// bosFileOpen and the descriptor calls: every flag of the open, the names
// the profile rules and the environment give, 64-bit positions, the marker
// lock as another process sees it (python3's fcntl.lockf), temporary
// names, and the errno-to-message table with its catalog texts.
#include <sys/stat.h>
#include <sys/wait.h>

#include <cerrno>
#include <cstring>
#include <set>

#include "bostest.h"
#include "platform/bosfile.h"
#include "platform/bospath.h"

namespace {
class BosFile : public WithErrors {};

std::string openPath(const std::string& name, unsigned long flags, int* handle, int* result)
{
    char path[BOS_MAX_PATH + 1];
    std::snprintf(path, sizeof path, "%s", name.c_str());
    *result = bosFileOpen(path, flags, handle);
    return path;
}

}  // namespace

TEST_F(BosFile, CreateWriteReadAtSixtyFourBitPositions)
{
    TempDir dir;
    int h = 0, rc = 0;
    std::string path = openPath(dir / "big", BOS_OPEN_CREATE, &h, &rc);
    ASSERT_EQ(rc, 0);
    ASSERT_GT(h, 0);
    const long long far = 5000000000LL;  // past 4 GiB: needs 64-bit offsets
    ASSERT_EQ(bosFileWrite(h, far, "tail", 4), 0);
    EXPECT_EQ(bosFileSeek(h, 0, SEEK_END), far + 4);
    char back[8] = {};
    unsigned long got = 0;
    EXPECT_EQ(bosFileRead(h, far, back, sizeof back, &got), 0);
    EXPECT_EQ(got, 4u) << "a short read at the end is no failure";
    EXPECT_STREQ(back, "tail");
    ASSERT_EQ(bosFileWrite(h, -1, "!", 1), 0) << "-1 writes at the current position";
    unsigned long date = 0, size = 0;
    ASSERT_EQ(bosFileDateSize(path.c_str(), &date, &size), 0);
    EXPECT_EQ(size, static_cast<unsigned long>((far + 5) & 0xFFFFFFFF)) << "the low 32 bits of the size";
    struct stat info;
    ASSERT_EQ(stat(path.c_str(), &info), 0);
    EXPECT_EQ(date, static_cast<unsigned long>(info.st_mtime));
    EXPECT_EQ(bosFileSize(h, 3), 0);
    EXPECT_EQ(bosFileSeek(h, 0, SEEK_END), 3);
    EXPECT_EQ(bosFileClose(h), 0);
    EXPECT_EQ(bosFileTruncate(path.c_str(), 1), 0);
    EXPECT_EQ(bosFileDateSize(path.c_str(), &date, &size), 0);
    EXPECT_EQ(size, 1u);
    EXPECT_EQ(bosFileDateSize((dir / "none").c_str(), &date, &size), 1);
    EXPECT_FALSE(list.isExistingError()) << "the staleness probe reports nothing";
}

TEST_F(BosFile, OpenModesFollowTheFlagWord)
{
    TempDir dir;
    dir.write("data", "0123456789");
    int h = 0, rc = 0;

    openPath(dir / "data", 0, &h, &rc);
    ASSERT_EQ(rc, 0);
    EXPECT_EQ(bosFileWrite(h, 0, "x", 1), 1) << "no write bit: read-only";
    EXPECT_EQ(lastNumber(), 1507u);
    bosFileClose(h);
    clear();

    openPath(dir / "missing", BOS_OPEN_WRITE, &h, &rc);
    EXPECT_EQ(rc, 1);
    EXPECT_EQ(lastNumber(), 1509u);
    EXPECT_NE(lastText().find(dir / "missing"), std::string::npos) << lastText();
    clear();

    openPath(dir / "made", BOS_OPEN_WRITE | BOS_OPEN_CREATE_IF_MISSING, &h, &rc);
    ASSERT_EQ(rc, 0);
    bosFileClose(h);
    EXPECT_EQ(bosexist((dir / "made").c_str()), 1);

    openPath(dir / "data", BOS_OPEN_CREATE | BOS_OPEN_EXCLUSIVE, &h, &rc);
    EXPECT_EQ(rc, 1) << "exclusive creation of an existing file";
    EXPECT_EQ(lastNumber(), 1520u);
    clear();

    openPath(dir / "data", BOS_OPEN_WRITE | BOS_OPEN_APPEND, &h, &rc);
    ASSERT_EQ(rc, 0);
    EXPECT_EQ(bosFileWrite(h, 0, "AB", 2), 0);
    EXPECT_EQ(bosFileSeek(h, 0, SEEK_END), 12) << "append writes at the end whatever the position";
    bosFileClose(h);

    openPath(dir / "data", BOS_OPEN_CREATE | BOS_OPEN_TRUNCATE, &h, &rc);
    ASSERT_EQ(rc, 0);
    EXPECT_EQ(bosFileSeek(h, 0, SEEK_END), 0);
    bosFileClose(h);

    h = 77;
    openPath(dir / "never", BOS_OPEN_WRITE | BOS_OPEN_CREATE_IF_MISSING | BOS_OPEN_NAME_ONLY, &h, &rc);
    EXPECT_EQ(rc, 0);
    EXPECT_EQ(h, 0) << "name only: handle 0";
    EXPECT_EQ(bosfattr((dir / "never").c_str()), BOS_ATTR_NOT_FOUND) << "and nothing created";

    EXPECT_EQ(bosFileClose(0), 0);
    EXPECT_EQ(bosFileClose(-1), 0);
    EXPECT_FALSE(list.isExistingError()) << "handles below 1 are ignored";
    EXPECT_EQ(bosFileClose(987654), 1);
    EXPECT_EQ(lastNumber(), 1507u);
}

TEST_F(BosFile, SearchFlagFindsTheNameAlongPath)
{
    TempDir dir;
    dir.write("tool.cfg", "x");
    ScopedEnv path("PATH", (dir.path + ":/usr/bin").c_str());
    int h = 0, rc = 0;
    std::string found = openPath("tool.cfg", BOS_OPEN_SEARCH, &h, &rc);
    ASSERT_EQ(rc, 0);
    EXPECT_EQ(found, dir / "tool.cfg") << "the buffer holds the name found";
    bosFileClose(h);
    openPath("no-such.cfg", BOS_OPEN_SEARCH, &h, &rc);
    EXPECT_EQ(rc, 1);
    EXPECT_EQ(lastNumber(), 1509u);
}

TEST_F(BosFile, ProfileNamesComeFromHomeOrTheEnvironment)
{
    TempDir home;
    ScopedEnv h("HOME", (home.path + "/").c_str());
    ScopedEnv a("ODBCINI", nullptr), b("ODBC_INI", nullptr), c("ODBCINST", nullptr), d("ODBCINSTINI", nullptr),
        e("ZULIB_INI", nullptr), f("ZU_SYSTEM_INI", nullptr);
    const unsigned long resolve = BOS_OPEN_PROFILE | BOS_OPEN_NAME_ONLY;
    int hd = 0, rc = 0;

    EXPECT_EQ(openPath(".odbc.ini", resolve, &hd, &rc), home / ".odbc.ini") << "HOME's slash is not doubled";
    EXPECT_EQ(openPath("ODBC.INI", resolve, &hd, &rc), home / "ODBC.INI") << "case is ignored";
    EXPECT_EQ(openPath("Odbc.ini", resolve, &hd, &rc), home / "Odbc.ini");
    EXPECT_EQ(openPath("other.ini", resolve, &hd, &rc), "other.ini") << "not a profile name: as given";
    EXPECT_EQ(openPath(".ZULIB.INI", resolve, &hd, &rc), ".ZULIB.INI") << "the library file's name is exact";
    EXPECT_EQ(openPath("x.ini", BOS_OPEN_HOME | BOS_OPEN_NAME_ONLY, &hd, &rc), home / "x.ini");

    {
        ScopedEnv dsn("ODBCINI", (home / "absent.ini").c_str());
        std::string got = openPath(".odbc.ini", resolve, &hd, &rc);
        EXPECT_EQ(rc, 1) << "a DSN file named by ODBCINI must exist";
        EXPECT_EQ(lastNumber(), 1509u);
        EXPECT_EQ(got, home / "absent.ini") << "the buffer keeps the path tried";
        clear();
    }
    home.write("dsn.ini", "[x]\n");
    home.write("drv.ini", "[y]\n");
    {
        ScopedEnv dsn("ODBC_INI", (home / "dsn.ini").c_str());
        EXPECT_EQ(openPath(".odbc.ini", resolve, &hd, &rc), home / "dsn.ini");
        EXPECT_EQ(rc, 0);
        ScopedEnv inst("ODBCINSTINI", (home / "drv.ini").c_str());
        EXPECT_EQ(openPath("odbcinst.ini", resolve, &hd, &rc), home / "drv.ini");
        ScopedEnv first("ODBCINST", (home / "absent").c_str());
        openPath(".odbcinst.ini", resolve, &hd, &rc);
        EXPECT_EQ(rc, 1) << "ODBCINST comes before ODBCINSTINI";
        clear();
    }

    EXPECT_EQ(openPath(".zulib.ini", resolve, &hd, &rc), home / ".zulib.ini");
    EXPECT_EQ(rc, 0) << "a missing library file is no error here";
    ScopedEnv lib("ZULIB_INI", "/etc/zulib.ini"), def("ZU_SYSTEM_INI", "/etc/sys.defaults");
    EXPECT_EQ(openPath(".zulib.ini", resolve, &hd, &rc), "/etc/zulib.ini") << "missing in HOME: ZULIB_INI";
    EXPECT_EQ(openPath(".system.defaults", resolve, &hd, &rc), "/etc/sys.defaults");
    home.write(".zulib.ini", "");
    EXPECT_EQ(openPath(".zulib.ini", resolve, &hd, &rc), home / ".zulib.ini") << "HOME's file wins when it exists";
    EXPECT_FALSE(list.isExistingError());
}

TEST_F(BosFile, TemporaryNamesAreNewFilesCreatedInZuTmpdir)
{
    TempDir dir;
    ScopedEnv tmp("ZU_TMPDIR", dir.path.c_str());
    std::set<std::string> names;
    for (int i = 0; i < 20; ++i) {
        int h = 0, rc = 0;
        std::string name = openPath("ignored", i % 2 ? BOS_OPEN_TEMP : BOS_OPEN_TEMP_LOOP, &h, &rc);
        ASSERT_EQ(rc, 0);
        EXPECT_EQ(name.rfind(dir.path + "/zu", 0), 0u) << name;
        ASSERT_EQ(bosFileWrite(h, 0, "x", 1), 0) << "created read-write";
        bosFileClose(h);
        names.insert(name);
    }
    EXPECT_EQ(names.size(), 20u) << "every call a new file";
    RunResult ls = runProgram({"sh", "-c", "ls \"$0\" | wc -l", dir.path});
    EXPECT_EQ(std::stoi(ls.output), 20);

    // A variable naming no directory is passed over, as tempnam does.
    {
        ScopedEnv missing("ZU_TMPDIR", (dir / "no/such/dir").c_str());
        TempDir other;
        ScopedEnv fallback("TMPDIR", other.path.c_str());
        int h = 0, rc = 0;
        std::string name = openPath("x", BOS_OPEN_TEMP, &h, &rc);
        ASSERT_EQ(rc, 0);
        EXPECT_EQ(name.rfind(other.path + "/zu", 0), 0u) << name;
        bosFileClose(h);
    }

    // A directory that cannot take files, even for root: the loop flag
    // gives up with the reason.
    ScopedEnv bad("ZU_TMPDIR", "/proc");
    int h = 0, rc = 0;
    openPath("x", BOS_OPEN_TEMP_LOOP, &h, &rc);
    EXPECT_EQ(rc, 1);
    EXPECT_NE(lastNumber(), 0u);
}

TEST_F(BosFile, MarkerLockIsSeenByAnotherProcess)
{
    TempDir dir;
    dir.write("locked", "0123456789");
    const std::string path = dir / "locked";
    int h = 0, rc = 0;
    openPath(path, BOS_OPEN_WRITE | BOS_OPEN_LOCK, &h, &rc);
    ASSERT_EQ(rc, 0);
    using V = std::vector<std::string>;
    EXPECT_EQ(lockProbes(path, {{1, 1, false}, {0, 1, true}, {2, 8, true}}), (V{"busy", "ok", "ok"}))
        << "the exclusive marker is byte 1 alone";
    bosFileClose(h);
    EXPECT_EQ(lockProbes(path, {{1, 1, true}}), V{"ok"}) << "closing releases it";

    openPath(path, BOS_OPEN_SHARED_LOCK, &h, &rc);
    ASSERT_EQ(rc, 0);
    EXPECT_EQ(lockProbes(path, {{1, 1, false}, {1, 1, true}}), (V{"ok", "busy"}))
        << "the shared marker admits readers and keeps writers out";
    bosFileClose(h);
    openPath(path, BOS_OPEN_SHARED_LOCK | BOS_OPEN_NO_SHARED, &h, &rc);
    ASSERT_EQ(rc, 0);
    EXPECT_EQ(lockProbes(path, {{1, 1, true}}), V{"ok"}) << "0x400 cancels the shared marker";
    bosFileClose(h);

    // A child holds the marker: our exclusive open is refused, not waited for.
    LockingChild holder(path, 1, 1);
    ASSERT_TRUE(holder.holding());
    openPath(path, BOS_OPEN_WRITE | BOS_OPEN_LOCK, &h, &rc);
    EXPECT_EQ(rc, 1);
    EXPECT_EQ(lastNumber(), 1512u);
    holder.release();
    openPath(path, BOS_OPEN_WRITE | BOS_OPEN_LOCK, &h, &rc);
    EXPECT_EQ(rc, 0) << "the holder is gone";
    bosFileClose(h);
}

TEST_F(BosFile, WritesThatFailReportTheirMessage)
{
    int h = 0, rc = 0;
    openPath("/dev/full", BOS_OPEN_WRITE, &h, &rc);
    ASSERT_EQ(rc, 0);
    EXPECT_EQ(bosFileWrite(h, -2, "abc", 3), 1);
    EXPECT_EQ(lastNumber(), 1506u) << "no space left";
    EXPECT_EQ(bosFileWrite(h, -2, "", 0), 0) << "nothing asked, nothing to fail";
    bosFileClose(h);
}

TEST_F(BosFile, ErrnoMapsToMessagesWithCatalogTexts)
{
    struct Row {
        int error;
        unsigned number;
        bool named;
    } rows[] = {{EPERM, 1519, true},    {ENOENT, 1509, true}, {EBADF, 1507, false},   {EAGAIN, 1512, false},
                {ENOMEM, 1503, false},  {EACCES, 1508, true}, {EEXIST, 1520, true},   {EMFILE, 30045, false},
                {ENOSPC, 1506, true},   {EROFS, 30049, true}, {EDEADLK, 1521, true},  {ENOLCK, 1514, false}};
    for (const Row& row : rows) {
        EXPECT_EQ(bosMapError(row.error, "/p/q"), static_cast<int>(row.number)) << row.error;
        EXPECT_EQ(lastNumber(), row.number);
        std::string text = lastText();
        EXPECT_EQ(text.find("/p/q") != std::string::npos, row.named) << text;
        EXPECT_EQ(text.find_first_not_of("0123456789"), 0u) << "a catalog text, not digits: " << text;
    }
    clear();
    EXPECT_EQ(bosMapError(EIO, nullptr), 30041);
    EXPECT_EQ(lastText().find(std::to_string(EIO)) != std::string::npos, true) << lastText();
    EXPECT_EQ(lastText().find(strerror(EIO)), std::string::npos) << "EIO without a name: the value only";
    bosMapError(EIO, "/dev/sdz");
    EXPECT_NE(lastText().find(strerror(EIO)), std::string::npos) << lastText();
    EXPECT_NE(lastText().find("/dev/sdz"), std::string::npos);
    bosMapError(EXDEV, "");
    EXPECT_NE(lastText().find(strerror(EXDEV)), std::string::npos) << "others: the value and strerror";

    // Every number the file layer uses has its text in the installed catalog.
    for (unsigned n : {1503u, 1504u, 1506u, 1507u, 1508u, 1509u, 1512u, 1514u, 1519u, 1520u, 1521u, 1523u, 1524u,
                       1540u, 30041u, 30045u, 30049u, 30050u}) {
        char text[1024];
        winGetString(n, text, sizeof text);
        EXPECT_NE(std::string(text), std::to_string(n)) << "message " << n << " lacks its text";
    }

    // Outside a list the same calls change nothing and do not fail.
    ZuErrorKeeper::giveUpErrorList();
    EXPECT_EQ(bosMapError(ENOENT, "x"), 1509);
    ZuErrorKeeper::setErrorList(&list);
}

TEST(BosCatalogs, InstalledCatalogAnswersInTheFallbackLocale)
{
    ASSERT_EQ(bosSetInstallDir(HNSYB_BINARY_DIR), 0);
    ScopedEnv lc("LC_MESSAGES", nullptr), lang("LANG", "de_DE.UTF-8");
    nl_catd cat = OpenStrings("uxutl24", nullptr);
    ASSERT_NE(cat, ZU_NO_CATALOG) << "no German catalog is built: en_US answers";
    char text[256];
    LoadStringFromOpenFile(cat, 1509, text, sizeof text);
    EXPECT_STREQ(text, "File not found: %s1");
    CloseStrings(cat);
}
