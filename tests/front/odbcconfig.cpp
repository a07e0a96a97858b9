#include "odbcconfig.h"

#include <stdlib.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

const std::string* IniSection::find(const std::string& key) const
{
    for (const auto& [k, v] : keys)
        if (k == key)
            return &v;
    return nullptr;
}

static std::string trim(const std::string& text)
{
    std::string::size_type begin = text.find_first_not_of(" \t\r");
    if (begin == std::string::npos)
        return {};
    std::string::size_type end = text.find_last_not_of(" \t\r");
    return text.substr(begin, end - begin + 1);
}

IniFile readIni(const std::string& path)
{
    IniFile file;
    std::ifstream in(path);
    std::string line;
    while (std::getline(in, line)) {
        std::string text = trim(line);
        if (text.empty() || text[0] == '#' || text[0] == ';')
            continue;
        if (text[0] == '[' && text.back() == ']') {
            file.push_back({text.substr(1, text.size() - 2), {}});
            continue;
        }
        std::string::size_type equals = text.find('=');
        if (equals == std::string::npos || file.empty())
            continue;
        file.back().keys.emplace_back(trim(text.substr(0, equals)), trim(text.substr(equals + 1)));
    }
    return file;
}

const IniSection* findSection(const IniFile& file, const std::string& name)
{
    for (const IniSection& section : file)
        if (section.name == name)
            return &section;
    return nullptr;
}

std::string readText(const std::string& path)
{
    std::ifstream in(path);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

PrivateOdbc::PrivateOdbc()
{
    char pattern[] = "/tmp/hnsyb-front-XXXXXX";
    if (mkdtemp(pattern) == nullptr)
        throw std::runtime_error("mkdtemp failed");
    folder_ = pattern;
    std::ofstream(driverFile()) << "[ODBC Drivers]\n"
                                << kTestDriver << " = Installed\n\n"
                                << "[" << kTestDriver << "]\n"
                                << "Driver = " << kDriverLibrary << "\n"
                                << "Setup = " << HNSYBS_LIBRARY << "\n";
    std::ofstream(dataSourceFile()) << "";
    // The system data source file must exist for system requests to work.
    std::ofstream(systemDataSourceFile()) << "";
    setVariable("ODBCSYSINI", folder_);
    setVariable("ODBCINSTINI", "odbcinst.ini");
    setVariable("ODBCINI", dataSourceFile());
    // Filled in by the front end when unset: tests look at what it chose.
    setVariable("ODBCINST", "");
}

PrivateOdbc::~PrivateOdbc()
{
    for (const auto& [name, old] : saved_) {
        if (old.first)
            setenv(name.c_str(), old.second.c_str(), 1);
        else
            unsetenv(name.c_str());
    }
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
}

void PrivateOdbc::setVariable(const char* name, const std::string& value)
{
    if (saved_.find(name) == saved_.end()) {
        const char* old = getenv(name);
        saved_[name] = {old != nullptr, old != nullptr ? old : ""};
    }
    if (value.empty())
        unsetenv(name);
    else
        setenv(name, value.c_str(), 1);
}

void PrivateOdbc::writeDataSources(const std::string& text) const
{
    std::ofstream(dataSourceFile()) << text;
}
