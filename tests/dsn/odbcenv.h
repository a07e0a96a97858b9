/*
 * A private ODBC configuration for the dialog's tests: a temporary folder
 * with unixODBC's driver file (odbcinst.ini, registering the SQLite ODBC
 * driver as "HNTest"), an empty system data source file (odbc.ini) and an
 * empty user file (user-odbc.ini), with ODBCINI,
 * ODBCSYSINI and ODBCINST pointing there while the object lives.  The
 * user's own files are never read or written.  The folder is removed and
 * the variables restored on destruction.
 *
 * Readers of the saved files are deliberately independent of unixODBC and
 * of the library: they split lines on the first '=' and keep the order.
 */
#ifndef HNSYB_TESTS_DSN_ODBCENV_H
#define HNSYB_TESTS_DSN_ODBCENV_H

#include <string>
#include <utility>
#include <vector>

inline constexpr const char* kSqliteDriverPath = "/usr/lib/x86_64-linux-gnu/odbc/libsqlite3odbc.so";
inline constexpr const char* kTestDriver = "HNTest";

class PrivateOdbc {
public:
    // `driverExtra` lines go to the driver's section after its Driver line.
    explicit PrivateOdbc(const std::string& driverExtra = "");
    ~PrivateOdbc();
    PrivateOdbc(const PrivateOdbc&) = delete;
    PrivateOdbc& operator=(const PrivateOdbc&) = delete;

    const std::string& dir() const { return dir_; }
    std::string userFile() const { return dir_ + "/user-odbc.ini"; }
    // unixODBC's system data source file, kept apart from the user's.
    std::string systemFile() const { return dir_ + "/odbc.ini"; }
    std::string driverFile() const { return dir_ + "/odbcinst.ini"; }
    // Forgets what unixODBC's read cache holds (a write of this process
    // clears it), after a test changed a file behind its back.
    void clearInstallerCache() const;

private:
    std::string dir_;
    std::vector<std::pair<std::string, std::string>> saved_;  // variable, old value ("\x01" unset)
};

using IniEntries = std::vector<std::pair<std::string, std::string>>;

std::string readWholeFile(const std::string& path);
void writeWholeFile(const std::string& path, const std::string& text);
// Entries of `section` in file order; empty when the section is missing.
IniEntries readSection(const std::string& path, const std::string& section);
bool hasSection(const std::string& path, const std::string& section);
// The value of `key` in `section`, or "\x01" when absent.
std::string iniValue(const std::string& path, const std::string& section, const std::string& key);

#endif
