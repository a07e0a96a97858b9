#include "odbcenv.h"

#include <odbcinst.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace {

const char* const kUnset = "\x01";

std::string trim(const std::string& text)
{
    const auto begin = text.find_first_not_of(" \t\r");
    if (begin == std::string::npos)
        return "";
    const auto end = text.find_last_not_of(" \t\r");
    return text.substr(begin, end - begin + 1);
}

}  // namespace

PrivateOdbc::PrivateOdbc(const std::string& driverExtra)
{
    char pattern[] = "/tmp/hnsyb-dsn-XXXXXX";
    if (mkdtemp(pattern) == nullptr)
        throw std::runtime_error("mkdtemp failed");
    dir_ = pattern;
    writeWholeFile(driverFile(), std::string("[") + kTestDriver + "]\nDriver=" + kSqliteDriverPath + "\n" +
                                     driverExtra + "\n");
    writeWholeFile(userFile(), "");
    writeWholeFile(systemFile(), "");
    for (const char* name : {"ODBCINI", "ODBCSYSINI", "ODBCINST", "ODBCINSTINI", "PF_INSTALLDIR"}) {
        const char* old = std::getenv(name);
        saved_.emplace_back(name, old != nullptr ? old : kUnset);
    }
    setenv("ODBCINI", userFile().c_str(), 1);
    setenv("ODBCSYSINI", dir_.c_str(), 1);
    setenv("ODBCINST", driverFile().c_str(), 1);
    unsetenv("ODBCINSTINI");
    setenv("PF_INSTALLDIR", HNSYB_BINARY_DIR, 1);
    clearInstallerCache();
}

PrivateOdbc::~PrivateOdbc()
{
    for (const auto& [name, value] : saved_) {
        if (value == kUnset)
            unsetenv(name.c_str());
        else
            setenv(name.c_str(), value.c_str(), 1);
    }
    std::error_code ignored;
    std::filesystem::remove_all(dir_, ignored);
    clearInstallerCache();
}

void PrivateOdbc::clearInstallerCache() const
{
    const std::string scratch = dir_ + "/scratch.ini";
    SQLWritePrivateProfileString("scratch", "k", "v", scratch.c_str());
}

std::string readWholeFile(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

void writeWholeFile(const std::string& path, const std::string& text)
{
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out << text;
}

IniEntries readSection(const std::string& path, const std::string& section)
{
    IniEntries entries;
    std::istringstream in(readWholeFile(path));
    std::string line;
    bool inside = false;
    while (std::getline(in, line)) {
        const std::string t = trim(line);
        if (!t.empty() && t.front() == '[') {
            inside = t == "[" + section + "]";
            continue;
        }
        if (!inside || t.empty() || t.front() == '#' || t.front() == ';')
            continue;
        const auto equals = t.find('=');
        if (equals == std::string::npos)
            entries.emplace_back(t, "");
        else
            entries.emplace_back(trim(t.substr(0, equals)), trim(t.substr(equals + 1)));
    }
    return entries;
}

bool hasSection(const std::string& path, const std::string& section)
{
    std::istringstream in(readWholeFile(path));
    std::string line;
    while (std::getline(in, line))
        if (trim(line) == "[" + section + "]")
            return true;
    return false;
}

std::string iniValue(const std::string& path, const std::string& section, const std::string& key)
{
    for (const auto& [k, v] : readSection(path, section))
        if (k == key)
            return v;
    return kUnset;
}
