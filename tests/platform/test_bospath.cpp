// Attributes, path builders, logical lines and the host's names, checked
// against the shell's own tools where one exists (pwd, hostname, id, ps).
#include <sys/stat.h>

#include <cstring>
#include <ctime>

#include "bostest.h"
#include "platform/bospath.h"
#include "platform/bossys.h"
#include "platform/bostext.h"

namespace {
class BosPath : public WithErrors {};

std::string firstLine(const RunResult& r)
{
    return r.output.substr(0, r.output.find('\n'));
}

// Runs the body with `dir` as the current directory, restoring it after.
struct InDirectory {
    char saved[BOS_MAX_PATH + 2];
    explicit InDirectory(const std::string& dir)
    {
        bosgtcwd(saved, 0);
        EXPECT_EQ(bosstcwd(dir.c_str()), 0);
    }
    ~InDirectory() { bosstcwd(saved); }
};

std::string built(const char* dir, const char* name, const char* ext)
{
    char r[BOS_MAX_PATH + 1];
    EXPECT_EQ(bospath(r, dir, name, ext), 0);
    return r;
}
}  // namespace

TEST_F(BosPath, AttributesOfFilesDirectoriesAndDevices)
{
    TempDir dir;
    dir.write("rw", "x");
    dir.write("ro", "x");
    chmod((dir / "ro").c_str(), 0444);
    EXPECT_EQ(bosfattr((dir / "rw").c_str()), BOS_ATTR_EXISTS);
    EXPECT_EQ(bosfattr((dir / "ro").c_str()), BOS_ATTR_EXISTS | BOS_ATTR_READONLY)
        << "the caller owns it: the owner's write bit decides";
    EXPECT_EQ(bosfattr(dir.path.c_str()), BOS_ATTR_DIRECTORY);
    EXPECT_EQ(bosfattr(".."), BOS_ATTR_DIRECTORY);
    EXPECT_EQ(bosexist(".."), 0) << "a directory has no exists bit";
    EXPECT_EQ(bosfattr((dir / "none").c_str()), BOS_ATTR_NOT_FOUND);
    EXPECT_EQ(bosfattr((dir / "rw/below").c_str()), BOS_ATTR_ERROR) << "ENOTDIR is not 'not found'";
    EXPECT_EQ(bosfattr("/dev/null"), BOS_ATTR_SPECIAL);
    EXPECT_EQ(bosexist((dir / "ro").c_str()), 1);
}

TEST_F(BosPath, WritableDirectoryProbeLeavesNothingAndClosesOnlyItsOwn)
{
    TempDir dir;
    int before = fcntl(0, F_GETFD);
    EXPECT_EQ(bosftest((dir / "any-name").c_str()), 1);
    EXPECT_EQ(fcntl(0, F_GETFD), before) << "descriptor 0 is untouched";
    RunResult ls = runProgram({"ls", "-A", dir.path});
    EXPECT_EQ(ls.output, "") << "the probe file is gone";
    EXPECT_EQ(bosftest("/proc/any-name"), 0) << "no file can be made under /proc";
    EXPECT_EQ(bosftest((dir / "no/such/x").c_str()), 0);
}

TEST_F(BosPath, BuildersMakeAbsoluteNames)
{
    EXPECT_EQ(built("/d", "name.", "ini"), "/d/name.ini");
    EXPECT_EQ(built("/d", "name.txt", "ini"), "/d/name.txt");
    EXPECT_EQ(built("/d/", "name  \t", nullptr), "/d/name") << "white space cut, no doubled slash";
    EXPECT_EQ(built("/d", "/abs/f", "ini"), "/abs/f.ini") << "a name with '/' ignores the directory";
    EXPECT_EQ(built("/d", "..", "ini"), "/d/..") << "the dots of '..' stay, and count as the file part's dot";
    EXPECT_EQ(built("/d", "/x.y/f", "c"), "/x.y/f.c") << "only the file part's dot counts";

    TempDir dir;
    InDirectory in(dir.path);
    char cwd[BOS_MAX_PATH + 2];
    ASSERT_GT(bosgtcwd(cwd, 0), 0);
    EXPECT_EQ(firstLine(runProgram({"sh", "-c", "cd \"$0\" && pwd -P", dir.path})), cwd) << "as pwd sees it";
    const int withSlash = bosgtcwd(cwd, 1);
    EXPECT_EQ(withSlash, static_cast<int>(std::strlen(cwd)));
    EXPECT_EQ(cwd[std::strlen(cwd) - 1], '/');
    EXPECT_EQ(built(nullptr, "rel", "x"), std::string(cwd) + "rel.x");

    char p[BOS_MAX_PATH + 1] = "sub/f";
    EXPECT_EQ(bosfpath(p, 0), 0);
    EXPECT_EQ(std::string(p), std::string(cwd) + "sub/f");
    EXPECT_EQ(bosmpath(p), 0);
    EXPECT_STREQ(p, "sub/f") << "the current directory comes off again";

    {
        ScopedEnv home("HOME", "/home/h"), zu("ZU", "/opt/zu");
        std::strcpy(p, "f");
        boshpath(p);
        EXPECT_STREQ(p, "/home/h/f");
        ScopedEnv nohome("HOME", nullptr);
        std::strcpy(p, "f");
        boshpath(p);
        EXPECT_STREQ(p, "/opt/zu/f") << "without HOME: ZU";
        ScopedEnv nozu("ZU", nullptr);
        std::strcpy(p, "f");
        boshpath(p);
        EXPECT_EQ(std::string(p), std::string(cwd) + "f") << "neither: the current directory";
    }

    std::string longName(BOS_MAX_PATH, 'n');
    std::strcpy(p, "x");
    char r[BOS_MAX_PATH + 1];
    EXPECT_EQ(bospath(r, "/d", longName.c_str(), nullptr), 1) << "too long for the buffer";
    EXPECT_TRUE(list.isExistingError());
    EXPECT_EQ(bosstcwd("/no/such/dir"), 1);
    EXPECT_EQ(lastNumber(), 1504u);
    EXPECT_NE(lastText().find("/no/such/dir"), std::string::npos);
}

TEST_F(BosPath, ParseNameSplitsDirectoryNameAndExtension)
{
    char path[BOS_MAX_PATH + 1] = "/a/b.c.d";
    char name[129], ext[4];
    EXPECT_EQ(bosParseName(path, name, ext, 1), 0);
    EXPECT_STREQ(name, "b");
    EXPECT_STREQ(ext, "c.d");
    EXPECT_STREQ(path, "/a/");
    std::strcpy(path, "plain");
    bosParseName(path, name, ext, 1);
    EXPECT_STREQ(name, "plain");
    EXPECT_STREQ(ext, "");
    EXPECT_STREQ(path, "");
    std::string longName = "/d/" + std::string(140, 'x') + ".txt";
    std::strcpy(path, longName.c_str());
    EXPECT_EQ(bosParseName(path, name, ext, 0), 0) << "no report asked";
    EXPECT_EQ(std::strlen(name), 128u);
    std::strcpy(path, longName.c_str());
    EXPECT_EQ(bosParseName(path, name, ext, 1), 1);
    EXPECT_EQ(lastNumber(), 1524u);
    EXPECT_STREQ(ext, "txt");
}

TEST(BosText, LogicalLinesHonourQuotesCommentsAndSizes)
{
    const char* text = "a=1\r\nb=\"x\ny 'q\n\"\n;c=\"open\nd='it''s'\n\nlast";
    unsigned short pos = 0, length = 0;
    char line[64];
    auto next = [&](unsigned short size = sizeof line) {
        bosgetbl(text, &pos, line, size, &length);
        return std::string(line);
    };
    EXPECT_EQ(next(), "a=1") << "carriage return dropped";
    EXPECT_EQ(length, 3);
    EXPECT_EQ(next(), "b=\"x\ny 'q\n\"") << "line feeds inside quotes, with an inner quote";
    EXPECT_EQ(next(), ";") << "a comment keeps its ';' and skips the rest, quotes and all";
    EXPECT_EQ(next(), "d='it''s'");
    EXPECT_EQ(next(), "");
    EXPECT_EQ(length, 0);
    EXPECT_EQ(next(4), "las") << "cut to the size";
    EXPECT_EQ(length, BOS_LINE_TOO_LONG);
    next();
    EXPECT_EQ(length, BOS_LINE_END_OF_TEXT);
    const char eof[] = "x\n\x1ay";
    pos = 0;
    bosgetbl(eof, &pos, line, 64, &length);
    bosgetbl(eof, &pos, line, 64, &length);
    EXPECT_EQ(length, BOS_LINE_END_OF_TEXT) << "byte 26 ends the text";
}

TEST(BosText, CaseChangesAreBytewiseAndBounded)
{
    char text[] = "abC-\xe9z";
    UpperText(text, 3);
    EXPECT_STREQ(text, "ABC-\xe9z") << "only the given length";
    LowerText(text, sizeof text - 1);
    EXPECT_STREQ(text, "abc-\xe9z") << "bytes outside ASCII unchanged in the C locale";
}

TEST_F(BosPath, HostUserCommandAndTimeMatchTheSystemTools)
{
    char buffer[300];
    ASSERT_EQ(bosGetMachineName(buffer, sizeof buffer), 0);
    EXPECT_EQ(buffer, firstLine(runProgram({"hostname"})));
    ASSERT_EQ(bosGetHostUser(buffer, sizeof buffer), 0);
    std::string user = firstLine(runProgram({"id", "-un"}));
    EXPECT_EQ(buffer, user);
    char small[3];
    ASSERT_EQ(bosGetHostUser(small, sizeof small), 0);
    EXPECT_EQ(std::string(small), user.substr(0, 2)) << "cut and terminated inside the buffer";
    EXPECT_EQ(bosGetHostUser(nullptr, 10), 0);
    EXPECT_EQ(bosGetMachineName(buffer, 0), 0);

    ASSERT_NE(bosGetCommand(0, buffer, sizeof buffer), nullptr);
    RunResult ps = runProgram({"ps", "-p", std::to_string(getpid()), "-ocomm="});
    if (ps.exitCode == 0)
        EXPECT_EQ(buffer, firstLine(ps));
    else
        EXPECT_EQ(std::string(buffer), std::string(program_invocation_short_name).substr(0, 15));

    os_time now {};
    std::time_t before = std::time(nullptr);
    bosdate(&now);
    std::tm local {};
    localtime_r(&before, &local);
    EXPECT_EQ(now.year, local.tm_year + 1900);
    EXPECT_GE(now.month, 1);
    EXPECT_LE(now.month, 12);
    EXPECT_EQ(bosGetEnv("HOME"), std::getenv("HOME"));
    EXPECT_EQ(bosGetEnv("HNSYB_SURELY_UNSET_VARIABLE"), nullptr);
    bossleep(0);
    bossleep(1);
}
