// Profiles written through the cache are read back by real peers (unixODBC's
// installer library and Python's configparser), and profiles written by
// unixODBC (its installer calls and the odbcinst tool) are read by the cache,
// value for value.  The corpus avoids what the format documents as quirks:
// empty values, blanks around values, comment marks, brackets and "=" in
// values, and names differing only in case.
#include <gtest/gtest.h>
#include <odbcinst.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <random>
#include <string>

#include "profile/profile.h"
#include "profile_dir.h"

namespace {
using Model = std::map<std::string, std::map<std::string, std::string>>;

// "section\tentry\tvalue" lines in sorted order.
std::string render(const Model& model)
{
    std::string out;
    for (const auto& [section, entries] : model)
        for (const auto& [entry, value] : entries)
            out += section + "\t" + entry + "\t" + value + "\n";
    return out;
}

// What configparser makes of the file, in the same form.
std::string pythonView(const std::string& path)
{
    const char* script =
        "import configparser, sys\n"
        "p = configparser.ConfigParser(interpolation=None, strict=True, delimiters=('=',),\n"
        "                              comment_prefixes=(';', '#'), empty_lines_in_values=False)\n"
        "p.optionxform = str\n"
        "p.read(sys.argv[1], encoding='latin-1')\n"
        "rows = sorted((s, k, v) for s in p.sections() for k, v in p.items(s))\n"
        "sys.stdout.write(''.join('%s\\t%s\\t%s\\n' % r for r in rows))\n";
    RunResult r = runProgram({"python3", "-c", script, path});
    EXPECT_EQ(r.exitCode, 0) << r.output;
    return r.output;
}

std::string randomWord(std::mt19937& rng, int minLength, int maxLength, bool inner)
{
    static const char first[] = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789";
    static const char rest[] = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-_./: ";
    std::uniform_int_distribution<int> length(minLength, maxLength);
    const int n = length(rng);
    std::string s;
    for (int i = 0; i < n; ++i) {
        const bool edge = i == 0 || i == n - 1 || !inner;
        const char* set = edge ? first : rest;
        const int size = static_cast<int>(edge ? sizeof first : sizeof rest) - 1;
        s += set[std::uniform_int_distribution<int>(0, size - 1)(rng)];
    }
    return s;
}

class ProfileInterop : public ProfileDir {};
}  // namespace

TEST_F(ProfileInterop, WritesThroughTheCacheAreReadByUnixOdbcAndConfigparser)
{
    const std::string path = file("ours.ini");
    std::mt19937 rng(20240611);
    Model model;
    std::vector<std::string> sections;
    for (int i = 0; i < 8; ++i)
        sections.push_back("Sect" + std::to_string(i) + randomWord(rng, 1, 6, false));
    // Updates, inserts and deletes, through a held handle and by file name.
    ZuIniFileCache* held = zuPrivateProfileInit(path.c_str());
    ASSERT_NE(held, nullptr);
    for (int op = 0; op < 300; ++op) {
        const std::string& section = sections[std::uniform_int_distribution<size_t>(0, sections.size() - 1)(rng)];
        const std::string entry = "key" + std::to_string(std::uniform_int_distribution<int>(0, 24)(rng));
        const int kind = std::uniform_int_distribution<int>(0, 19)(rng);
        const bool byName = op % 2 == 0;
        if (kind == 0) {
            ASSERT_EQ(byName ? zuWritePrivateProfileString(section.c_str(), nullptr, nullptr, path.c_str())
                             : zuWritePrivateProfileString(section.c_str(), nullptr, nullptr, held),
                      1);
            model.erase(section);
        } else if (kind < 4) {
            ASSERT_EQ(byName ? zuWritePrivateProfileString(section.c_str(), entry.c_str(), nullptr, path.c_str())
                             : zuWritePrivateProfileString(section.c_str(), entry.c_str(), nullptr, held),
                      1);
            if (model.count(section) != 0)
                model[section].erase(entry);
        } else {
            const std::string value = randomWord(rng, 1, 40, true);
            ASSERT_EQ(byName ? zuWritePrivateProfileString(section.c_str(), entry.c_str(), value.c_str(), path.c_str())
                             : zuWritePrivateProfileString(section.c_str(), entry.c_str(), value.c_str(), held),
                      1);
            model[section][entry] = value;
        }
    }
    zuPrivateProfileTerm(held);
    // A deleted entry leaves its section behind, empty; configparser lists
    // no rows for it either.
    for (auto it = model.begin(); it != model.end();)
        it = it->second.empty() ? model.erase(it) : std::next(it);

    EXPECT_EQ(pythonView(path), render(model));

    int checked = 0;
    for (const auto& section : sections) {
        for (int k = 0; k < 25; ++k) {
            const std::string entry = "key" + std::to_string(k);
            char value[256];
            SQLGetPrivateProfileString(section.c_str(), entry.c_str(), "<none>", value, sizeof value, path.c_str());
            const auto s = model.find(section);
            const bool present = s != model.end() && s->second.count(entry) != 0;
            EXPECT_EQ(std::string(value), present ? s->second.at(entry) : "<none>") << section << "/" << entry;
            ++checked;
        }
    }
    EXPECT_EQ(checked, 200);
}

TEST_F(ProfileInterop, FilesWrittenByUnixOdbcAreReadValueForValue)
{
    const std::string path = file("theirs.ini");
    std::mt19937 rng(777);
    Model model;
    for (int op = 0; op < 120; ++op) {
        const std::string section = "S" + std::to_string(std::uniform_int_distribution<int>(0, 5)(rng));
        const std::string entry = "Entry" + std::to_string(std::uniform_int_distribution<int>(0, 15)(rng));
        const std::string value = randomWord(rng, 1, 30, true);
        ASSERT_TRUE(SQLWritePrivateProfileString(section.c_str(), entry.c_str(), value.c_str(), path.c_str()));
        model[section][entry] = value;
    }
    for (const auto& [section, entries] : model) {
        for (const auto& [entry, value] : entries) {
            char got[256];
            const int n = zuGetPrivateProfileString(section.c_str(), entry.c_str(), "<none>", got, sizeof got,
                                                    path.c_str());
            EXPECT_EQ(std::string(got), value) << section << "/" << entry;
            EXPECT_EQ(n, static_cast<int>(value.size()));
        }
        // The entry list names exactly the model's entries.
        char list[4096];
        const int n = zuGetPrivateProfileSection(section.c_str(), list, sizeof list, path.c_str());
        std::vector<std::string> names;
        for (const char* p = list; p < list + n - 1 && *p != 0; p += std::strlen(p) + 1)
            names.push_back(p);
        std::vector<std::string> expected;
        for (const auto& [entry, value] : entries)
            expected.push_back(entry);
        std::sort(names.begin(), names.end());
        EXPECT_EQ(names, expected) << section;
    }
}

TEST_F(ProfileInterop, DriverAndDsnInstalledByTheOdbcinstToolAreRead)
{
    writeText(file("driver.tmpl"),
              "[HnDriver]\nDescription = A driver for the test\nDriver = /opt/hn/lib/libdrv.so\n"
              "Setup = /opt/hn/lib/libdrvS.so\nFileUsage = 1\n");
    writeText(file("dsn.tmpl"), "[HnDsn]\nDriver = HnDriver\nServer = db.example\nPort = 5000\n");
    RunResult r = runProgram({"odbcinst", "-i", "-d", "-f", file("driver.tmpl")});
    ASSERT_EQ(r.exitCode, 0) << r.output;
    r = runProgram({"odbcinst", "-i", "-s", "-h", "-f", file("dsn.tmpl")});
    ASSERT_EQ(r.exitCode, 0) << r.output;

    // unixODBC's driver file lies in ODBCSYSINI; the library reads it by path.
    const std::string driverPath = dir + "/sys/odbcinst.ini";
    char value[256];
    const int n = zuGetPrivateProfileString("HnDriver", "Driver", "", value, sizeof value, driverPath.c_str());
    EXPECT_STREQ(value, "/opt/hn/lib/libdrv.so");
    EXPECT_EQ(n, static_cast<int>(std::strlen(value)));
    EXPECT_EQ(zuGetPrivateProfileInt("HnDriver", "UsageCount", 0, driverPath.c_str()), 1u);
    zuGetPrivateProfileString("HnDriver", "Description", "", value, sizeof value, driverPath.c_str());
    EXPECT_STREQ(value, "A driver for the test");
    // The user's DSN file is $ODBCINI for both; the library finds it by name.
    zuGetProfileString("HnDsn", "Server", "", value, sizeof value, ".odbc.ini");
    EXPECT_STREQ(value, "db.example");
    EXPECT_EQ(zuGetProfileInt("HnDsn", "Port", 0, ".odbc.ini"), 5000u);
    // And what the library writes there, unixODBC reads as a DSN attribute.
    ASSERT_EQ(zuWriteProfileString("HnDsn", "Database", "pubs2", ".odbc.ini"), 1);
    SQLGetPrivateProfileString("HnDsn", "Database", "", value, sizeof value, "odbc.ini");
    EXPECT_STREQ(value, "pubs2");
    SQLGetPrivateProfileString("HnDsn", "Server", "", value, sizeof value, "odbc.ini");
    EXPECT_STREQ(value, "db.example");
}
