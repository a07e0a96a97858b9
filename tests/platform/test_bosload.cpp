// bosLocateFile's search order and bosLoadLibrary over real shared objects
// (copies of a small module) placed in ZU, ZULIB and LD_LIBRARY_PATH
// directories and their "../" siblings, opened with the real dlopen.
#include <dlfcn.h>
#include <link.h>

#include <cstring>

#include "bostest.h"
#include "platform/boslocate.h"
#include "platform/bospath.h"
#include "platform/trace.h"

namespace {
class BosLoad : public WithErrors {
protected:
    void SetUp() override
    {
        WithErrors::SetUp();
        runProgram({"/bin/mkdir", "-p", root / "zu/lib", root / "zulib/lib", root / "ld/lib", root / "cwd"});
        bosgtcwd(saved_, 0);
        ASSERT_EQ(bosstcwd((root / "cwd").c_str()), 0);
    }
    void TearDown() override
    {
        bosstcwd(saved_);
        WithErrors::TearDown();
    }
    void place(const std::string& where)
    {
        ASSERT_EQ(runProgram({"/bin/cp", HNSYB_PROBE_MODULE, root / where}).exitCode, 0);
    }
    void remove(const std::string& where) { runProgram({"/bin/rm", "-f", root / where}); }
    // The path the loader opened for `handle`, and that the library works.
    std::string loadedFrom(void* handle)
    {
        link_map* map = nullptr;
        EXPECT_EQ(dlinfo(handle, RTLD_DI_LINKMAP, &map), 0);
        auto probe = reinterpret_cast<int (*)()>(dlsym(handle, "hnsybProbe"));
        EXPECT_NE(probe, nullptr);
        if (probe != nullptr) {
            EXPECT_EQ(probe(), 42);
        }
        return map != nullptr ? map->l_name : "";
    }
    std::string located(const char* name, unsigned short mode)
    {
        char found[BOS_MAX_PATH + 1] = "junk";
        int rc = bosLocateFile(found, name, mode);
        EXPECT_EQ(rc == 0, found[0] != 0) << "cleared when not found";
        return found;
    }
    TempDir root;

private:
    char saved_[BOS_MAX_PATH + 2];
};
}  // namespace

TEST_F(BosLoad, LocateSearchesTheSourcesInTheirFixedOrder)
{
    ScopedEnv home("HOME", (root / "zu").c_str()), zu("ZU", (root / "zulib").c_str()), zulib("ZULIB", nullptr);
    ScopedEnv path("PATH", (root / "ld").c_str()), ld("LD_LIBRARY_PATH", nullptr), run("LD_RUN_PATH", nullptr);
    root.write("zu/f.cfg", "");
    root.write("zulib/f.cfg", "");
    root.write("ld/f.cfg", "");
    root.write("cwd/f.cfg", "");
    EXPECT_EQ(located("f.cfg", 0), "f.cfg") << "the name as it stands comes first, whatever the mode";
    remove("cwd/f.cfg");
    EXPECT_EQ(located("f.cfg", 0), "") << "an empty search list";
    EXPECT_EQ(located("f.cfg", BOS_LOCATE_PATH | BOS_LOCATE_ZU | BOS_LOCATE_HOME), root / "zu/f.cfg");
    EXPECT_EQ(located("f.cfg", BOS_LOCATE_PATH | BOS_LOCATE_ZU), root / "zulib/f.cfg");
    EXPECT_EQ(located("f.cfg", BOS_LOCATE_PATH), root / "ld/f.cfg");
    EXPECT_EQ(located("f.cfg", BOS_LOCATE_CURRENT), "");
    root.write("cwd/g.cfg", "");
    ScopedEnv path2("PATH", ("::" + root.path + "/nowhere:" + root.path + "/ld/").c_str());
    EXPECT_EQ(located("f.cfg", BOS_LOCATE_PATH), root / "ld/f.cfg") << "empty pieces skipped, no doubled slash";
    EXPECT_EQ(located("sub", BOS_LOCATE_PATH), "") << "a directory is not a file";
    EXPECT_EQ(bosLocateFile(nullptr, "f.cfg", BOS_LOCATE_PATH), 0) << "a null buffer only asks";

    testing::internal::CaptureStdout();
    unsigned long saved = BOS_RUNTIME_DEBUG;
    BOS_RUNTIME_DEBUG = 2;
    located("none.cfg", BOS_LOCATE_PATH);
    BOS_RUNTIME_DEBUG = saved;
    std::string trace = testing::internal::GetCapturedStdout();
    EXPECT_NE(trace.find("LocateFile: " + root.path + "/nowhere/none.cfg\n"), std::string::npos) << trace;
}

TEST_F(BosLoad, LibrariesComeFromZuZulibTheLoaderPathsAndTheirSiblings)
{
    ScopedEnv zu("ZU", (root / "zu/lib").c_str()), zulib("ZULIB", (root / "zulib/lib").c_str());
    ScopedEnv ld("LD_LIBRARY_PATH", (root / "ld/lib").c_str()), run("LD_RUN_PATH", nullptr);
    ScopedEnv home("HOME", (root / "cwd").c_str());
    // Each copy in turn is the first one the search reaches.
    const char* order[] = {"zu/lib/libprobe24.so", "zu/libprobe24.so",    "zulib/lib/libprobe24.so",
                           "zulib/libprobe24.so",  "ld/lib/libprobe24.so", "ld/libprobe24.so"};
    for (const char* where : order)
        place(where);
    for (const char* where : order) {
        void* handle = bosLoadLibrary("libprobe  ", 1);
        ASSERT_NE(handle, nullptr) << where;
        std::string from = loadedFrom(handle);
        char real[BOS_MAX_PATH + 1];
        ASSERT_NE(realpath(from.c_str(), real), nullptr);
        EXPECT_EQ(std::string(real), root / where);
        EXPECT_TRUE(from.find("/../") != std::string::npos ||
                    std::string(where).find("/lib/") != std::string::npos)
            << "a sibling is reached through ../: " << from;
        dlclose(handle);
        remove(where);
    }
    EXPECT_EQ(bosLoadLibrary("libprobe", 1), nullptr) << "none left";
    EXPECT_FALSE(list.isExistingError()) << "not found is no error";
}

TEST_F(BosLoad, NamesTagsAndLoaderFailures)
{
    ScopedEnv zu("ZU", (root / "zu/lib").c_str()), zulib("ZULIB", nullptr), ld("LD_LIBRARY_PATH", nullptr);
    place("zu/lib/libx.so.1");
    void* handle = bosLoadLibrary("libx.so.1", 0);
    ASSERT_NE(handle, nullptr) << "a name holding .so gets no second one";
    EXPECT_EQ(loadedFrom(handle), root / "zu/lib/libx.so.1");
    dlclose(handle);
    EXPECT_EQ(bosLoadLibrary("libx.so.1", 1), nullptr) << "the tag goes behind the whole name: libx.so.124";

    place("zu/lib/libwide.so");
    const unsigned short wide[] = {'l', 'i', 'b', 'w', 'i', 'd', 'e', 0};
    handle = bosLoadLibrary(wide, 0);
    ASSERT_NE(handle, nullptr);
    dlclose(handle);

    char name[BOS_MAX_PATH + 1] = "libhn";
    bosdllname(name);
    EXPECT_STREQ(name, "libhn24");

    root.write("zu/lib/libbroken24.so", "not an ELF file\n");
    testing::internal::CaptureStdout();
    unsigned long saved = BOS_RUNTIME_DEBUG;
    BOS_RUNTIME_DEBUG = 4;
    EXPECT_EQ(bosLoadLibrary("libbroken", 1), nullptr);
    BOS_RUNTIME_DEBUG = saved;
    std::string trace = testing::internal::GetCapturedStdout();
    EXPECT_EQ(lastNumber(), 1523u);
    const std::string path = root / "zu/lib/libbroken24.so";
    EXPECT_NE(lastText().find(path), std::string::npos) << lastText();
    EXPECT_NE(lastText().find("file too short"), std::string::npos) << "the loader's reason: " << lastText();
    EXPECT_NE(trace.find("LoadLibrary: Searching for libbroken24.so.\n"), std::string::npos) << trace;
    EXPECT_NE(trace.find("LoadLibrary: Found library " + path + ".\n"), std::string::npos) << trace;
    EXPECT_NE(trace.find("Unable to open Shared Library:" + path + "\n"), std::string::npos) << trace;
    EXPECT_NE(trace.find("Loader Error: "), std::string::npos) << trace;
}
