/*
 * A private ODBC configuration for the front end's tests: a temporary folder
 * with unixODBC's driver file (our driver registered, its Setup the setup
 * library under test) and empty user and system data source files, with
 * unixODBC's variables (ODBCSYSINI, ODBCINSTINI, ODBCINI) pointing there
 * while the object lives; ODBCINST is unset, for the front end to fill.  The folder and the previous
 * environment are restored on destruction.
 *
 * readIni reads a profile file back as the tests see it: sections in file
 * order, each with its keys in file order.
 */
#ifndef HNSYB_TESTS_FRONT_ODBCCONFIG_H
#define HNSYB_TESTS_FRONT_ODBCCONFIG_H

#include <map>
#include <string>
#include <utility>
#include <vector>

// The driver's section name in the private driver file.
inline constexpr const char* kTestDriver = "HNSYB Test";
// The library registered as the driver itself (any loadable ODBC driver does:
// ConfigDSN never loads it).
inline constexpr const char* kDriverLibrary = "/usr/lib/x86_64-linux-gnu/odbc/libsqlite3odbc.so";

struct IniSection {
    std::string name;
    std::vector<std::pair<std::string, std::string>> keys;
    const std::string* find(const std::string& key) const;
};
using IniFile = std::vector<IniSection>;

IniFile readIni(const std::string& path);
const IniSection* findSection(const IniFile& file, const std::string& name);
std::string readText(const std::string& path);

class PrivateOdbc {
public:
    PrivateOdbc();
    ~PrivateOdbc();
    PrivateOdbc(const PrivateOdbc&) = delete;
    PrivateOdbc& operator=(const PrivateOdbc&) = delete;

    const std::string& folder() const { return folder_; }
    // The user's data source file (ODBCINI) and the system one.
    std::string dataSourceFile() const { return folder_ + "/user-odbc.ini"; }
    std::string systemDataSourceFile() const { return folder_ + "/odbc.ini"; }
    std::string driverFile() const { return folder_ + "/odbcinst.ini"; }
    // Writes the data source file as given (for a starting state).
    void writeDataSources(const std::string& text) const;

private:
    void setVariable(const char* name, const std::string& value);
    std::string folder_;
    std::map<std::string, std::pair<bool, std::string>> saved_;
};

#endif
