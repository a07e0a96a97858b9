/*
 * A private profile folder for each test: both families of variables point
 * into it (ODBCINI and ODBCINST for the library's profile layer; ODBCINI and
 * ODBCSYSINI for unixODBC), and HOME too, so nothing touches the user's real
 * files.  The previous values come back when the fixture ends.
 */
#ifndef HNSYB_TESTS_PROFILE_DIR_H
#define HNSYB_TESTS_PROFILE_DIR_H

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "core/errorlist.h"
#include "support/subprocess.h"

class SavedEnv {
public:
    void set(const char* name, const std::string& value)
    {
        remember(name);
        setenv(name, value.c_str(), 1);
    }
    void unset(const char* name)
    {
        remember(name);
        unsetenv(name);
    }
    ~SavedEnv()
    {
        for (auto it = saved_.rbegin(); it != saved_.rend(); ++it) {
            if (it->had)
                setenv(it->name.c_str(), it->value.c_str(), 1);
            else
                unsetenv(it->name.c_str());
        }
    }

private:
    struct Saved {
        std::string name;
        std::string value;
        bool had;
    };
    void remember(const char* name)
    {
        const char* old = std::getenv(name);
        saved_.push_back({name, old != nullptr ? old : "", old != nullptr});
    }
    std::vector<Saved> saved_;
};

inline void writeText(const std::string& path, const std::string& text)
{
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out << text;
}

inline std::string readText(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    std::stringstream s;
    s << in.rdbuf();
    return s.str();
}

inline long fileSize(const std::string& path)
{
    struct stat info;
    return stat(path.c_str(), &info) == 0 ? static_cast<long>(info.st_size) : -1;
}

// Open descriptors of this process.
inline int openDescriptors()
{
    int count = 0;
    for ([[maybe_unused]] const auto& e : std::filesystem::directory_iterator("/proc/self/fd"))
        ++count;
    return count;
}

class ProfileDir : public ::testing::Test {
protected:
    void SetUp() override
    {
        char pattern[] = "/tmp/hnsyb-profile-XXXXXX";
        ASSERT_NE(mkdtemp(pattern), nullptr);
        dir = pattern;
        mkdir((dir + "/sys").c_str(), 0755);
        chmod(dir.c_str(), 0755);
        dsnFile = dir + "/odbc.ini";
        driverFile = dir + "/odbcinst.ini";
        writeText(dsnFile, "");
        writeText(driverFile, "");
        env.set("HOME", dir);
        env.set("ODBCINI", dsnFile);
        env.set("ODBCINST", driverFile);
        env.unset("ODBC_INI");
        env.unset("ODBCINSTINI");
        env.set("ODBCSYSINI", dir + "/sys");
        env.unset("PF_INSTALLDIR");
        ZuErrorKeeper::setErrorList(&errors);
    }
    void TearDown() override
    {
        ZuErrorKeeper::giveUpErrorList();
        runProgram({"rm", "-rf", dir});
    }
    std::string file(const std::string& name) const { return dir + "/" + name; }

    std::string dir;
    std::string dsnFile;
    std::string driverFile;
    SavedEnv env;
    ZuErrorList errors{nullptr, 1};
};

#endif
