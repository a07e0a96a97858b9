// Listings: bosFindFiles gives what ls gives for the same pattern, and
// runs nothing a pattern smuggles in; directory and mount listings against
// find and the kernel's mount table.
#include <algorithm>
#include <sstream>
#include <vector>

#include "bostest.h"
#include "platform/bosfind.h"
#include "platform/bospath.h"

namespace {
class BosFind : public WithErrors {
protected:
    void SetUp() override
    {
        WithErrors::SetUp();
        for (const char* f : {"a1.txt", "a2.txt", "ab.txt", "b.c", "c.c", "Z.c", ".hidden.c", "space name.c"})
            dir.write(f, "");
        runProgram({"mkdir", "-p", dir / "sub", dir / "sub2/deeper", dir / ".hid"});
        dir.write("sub/inner.c", "");
        dir.write("sub/x.txt", "");
    }
    // Every name the listing gives, in order.
    std::vector<std::string> find(const std::string& pattern, int* result = nullptr)
    {
        std::vector<std::string> names;
        ZuBosFileFindDesc* desc = nullptr;
        char name[BOS_MAX_PATH + 1];
        std::snprintf(name, sizeof name, "%s", pattern.c_str());
        for (int guard = 0; guard < 1000; ++guard) {
            int rc = bosFindFiles(&desc, name);
            if (result != nullptr)
                *result = rc;
            if (rc != 0 || name[0] == 0)
                break;
            names.push_back(name);
        }
        EXPECT_EQ(desc, nullptr) << "the descriptor is freed at the end";
        return names;
    }
    // What ls prints for the pattern, each line cut after its last '/'
    // (the shell expands the pattern, as for the listing's callers).
    std::vector<std::string> ls(const std::string& pattern)
    {
        RunResult r = runProgram({"sh", "-c", "cd \"$0\" && LC_ALL=C /bin/ls " + pattern + " 2>/dev/null", dir.path});
        std::vector<std::string> names;
        std::istringstream in(r.output);
        for (std::string line; std::getline(in, line);) {
            if (line.empty() || line.back() == ':')
                continue;  // headings of several directories
            names.push_back(line.substr(line.rfind('/') + 1));
        }
        return names;
    }
    TempDir dir;
};
}  // namespace

TEST_F(BosFind, NamesAreThoseLsGivesForTheSamePattern)
{
    char saved[BOS_MAX_PATH + 2];
    bosgtcwd(saved, 0);
    ASSERT_EQ(bosstcwd(dir.path.c_str()), 0);
    for (const char* pattern : {"*.c", "a?.txt", "[ab]*", "*.txt", "sub", "sub/*.c", ".*.c", "'space name.c'",
                                "space\\ name.c", "b.c c.c", "*"}) {
        EXPECT_EQ(find(pattern), ls(pattern)) << pattern;
        EXPECT_FALSE(find(pattern).empty()) << pattern;
    }
    EXPECT_EQ(find(dir.path + "/a*.txt"), (std::vector<std::string>{"a1.txt", "a2.txt", "ab.txt"}))
        << "an absolute pattern: the part after the last '/'";
    bosstcwd(saved);
}

TEST_F(BosFind, PatternWithoutMatchEndsAtTheFirstCall)
{
    ZuBosFileFindDesc* desc = nullptr;
    char name[BOS_MAX_PATH + 1];
    std::snprintf(name, sizeof name, "%s/*.none", dir.path.c_str());
    EXPECT_EQ(bosFindFiles(&desc, name), 0);
    EXPECT_STREQ(name, "");
    EXPECT_EQ(desc, nullptr);
    EXPECT_TRUE(ls("*.none").empty());
    EXPECT_FALSE(list.isExistingError());
}

TEST_F(BosFind, StoppingEarlyFreesTheDescriptor)
{
    ZuBosFileFindDesc* desc = nullptr;
    char name[BOS_MAX_PATH + 1];
    std::snprintf(name, sizeof name, "%s/*.c", dir.path.c_str());
    ASSERT_EQ(bosFindFiles(&desc, name), 0);
    EXPECT_STREQ(name, "Z.c") << "sorted as ls sorts in the C locale";
    ASSERT_NE(desc, nullptr);
    bosFindClose(&desc);
    EXPECT_EQ(desc, nullptr);
}

TEST_F(BosFind, CommandsInAPatternAreNeverRun)
{
    char saved[BOS_MAX_PATH + 2];
    bosgtcwd(saved, 0);
    ASSERT_EQ(bosstcwd(dir.path.c_str()), 0);
    for (const char* pattern : {"$(touch pwned1)", "`touch pwned2`", "*.c; touch pwned3", "*.c && touch pwned4",
                                "*.c | tee pwned5", "x > pwned6", "*.c\ntouch pwned7"}) {
        int rc = 0;
        std::vector<std::string> names = find(pattern, &rc);
        EXPECT_EQ(rc, 1) << pattern;
        EXPECT_TRUE(names.empty()) << pattern;
        EXPECT_EQ(lastNumber(), 1540u) << pattern;
        EXPECT_NE(lastText().find(pattern), std::string::npos) << lastText();
        clear();
    }
    EXPECT_EQ(runProgram({"sh", "-c", "ls pwned* 2>/dev/null | wc -l"}).output, "0\n") << "no command ran";
    EXPECT_EQ(find("'$(touch q)'"), std::vector<std::string>{}) << "quoted: a plain name that does not exist";
    EXPECT_EQ(bosexist("q"), 0);
    bosstcwd(saved);
}

TEST_F(BosFind, DirectoryNamesSkipHiddenOnesAndFiles)
{
    char saved[BOS_MAX_PATH + 2];
    bosgtcwd(saved, 0);
    ASSERT_EQ(bosstcwd(dir.path.c_str()), 0);
    std::vector<std::string> names;
    ZuBosFileFindDesc* desc = nullptr;
    char name[BOS_MAX_PATH + 1];
    while (bosGetDirectoryNames(&desc, name) == 0 && name[0] != 0)
        names.push_back(name);
    EXPECT_EQ(desc, nullptr);
    std::sort(names.begin(), names.end());
    RunResult r = runProgram({"sh", "-c", "find . -mindepth 1 -maxdepth 1 -type d ! -name '.*' -printf '%f\\n' | LC_ALL=C sort"});
    std::string joined;
    for (auto& n : names)
        joined += n + "\n";
    EXPECT_EQ(joined, r.output);
    EXPECT_EQ(joined, "sub\nsub2\n");
    bosstcwd(saved);
}

TEST_F(BosFind, FileSystemsAreTheMountPoints)
{
    std::vector<std::string> names;
    ZuBosFileFindDesc* desc = nullptr;
    char name[BOS_MAX_PATH + 1];
    while (bosGetFileSystems(&desc, name) == 0 && name[0] != 0)
        names.push_back(name);
    RunResult r = runProgram({"sh", "-c", "cut -d' ' -f2 /proc/self/mounts"});
    std::string joined;
    for (auto& n : names)
        joined += n + "\n";
    if (r.output.find("\\0") == std::string::npos) {  // no escaped blanks to decode
        EXPECT_EQ(joined, r.output);
    }
    EXPECT_NE(std::find(names.begin(), names.end(), "/"), names.end());
}
