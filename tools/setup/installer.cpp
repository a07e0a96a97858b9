#include "installer.h"

#include <odbcinst.h>

#include <vector>

namespace hnsybs {

namespace {

// Installer reads report into a caller's buffer and give no way to learn
// the size needed: a read that fills the buffer is repeated with a larger one.
std::vector<char> readProfile(const char* section, const char* key, const char* file)
{
    for (int size = 4096; size <= (1 << 22); size *= 4) {
        std::vector<char> buffer(static_cast<std::size_t>(size), '\0');
        int got = SQLGetPrivateProfileString(section, key, "", buffer.data(), size, file);
        if (got < 0)
            return {};
        if (got < size - 2) {
            buffer.resize(static_cast<std::size_t>(got) + 2, '\0');
            return buffer;
        }
    }
    return {};
}

// A list read with a null section or key: names each ended by a NUL.
std::vector<std::string> splitList(const std::vector<char>& buffer)
{
    std::vector<std::string> names;
    std::size_t i = 0;
    while (i < buffer.size() && buffer[i] != '\0') {
        std::string name(&buffer[i]);
        i += name.size() + 1;
        names.push_back(std::move(name));
    }
    return names;
}

bool isKeyword(const std::string& key, const char* keyword)
{
    return sameKeyword(key, keyword);
}

bool writeValue(const std::string& section, const std::string& key, const char* value)
{
    return SQLWritePrivateProfileString(section.c_str(), key.c_str(), value, kDataSourceFile) != 0;
}

// The keys of a section and the data source entry, then "Driver" last,
// in the layout that the dialog itself saves.
bool writeSection(const std::string& dsn, const std::string& driver, const std::string& driverPath,
                  const Attributes& attributes)
{
    for (const auto& [key, value] : attributes.items()) {
        // "DSN" names the section; "Driver" is written last from the
        // driver's registration, whatever the caller put in the string.
        if (isKeyword(key, "DSN") || isKeyword(key, "Driver"))
            continue;
        if (!writeValue(dsn, key, value.c_str()))
            return postError(ODBC_ERROR_REQUEST_FAILED, "could not write key " + key + " of data source " + dsn);
    }
    if (!writeValue("ODBC Data Sources", dsn, driver.c_str()))
        return postError(ODBC_ERROR_REQUEST_FAILED, "could not list data source " + dsn);
    if (!writeValue(dsn, "Driver", driverPath.c_str()))
        return postError(ODBC_ERROR_REQUEST_FAILED, "could not write the driver of data source " + dsn);
    return true;
}

// The section and its entry under "ODBC Data Sources" (which unixODBC's
// SQLRemoveDSNFromIni leaves behind in the user's file).
bool removeSection(const std::string& dsn)
{
    if (!SQLRemoveDSNFromIni(dsn.c_str()))
        return false;
    if (!readProfileValue("ODBC Data Sources", dsn, kDataSourceFile).empty())
        return SQLWritePrivateProfileString("ODBC Data Sources", dsn.c_str(), nullptr, kDataSourceFile) != 0;
    return true;
}

bool registeredDriver(const std::string& driver, std::string& path)
{
    path = driverLibraryPath(driver);
    if (path.empty())
        return postError(ODBC_ERROR_INVALID_NAME, "driver " + driver + " is not registered");
    return true;
}

}  // namespace

std::string readProfileValue(const std::string& section, const std::string& key, const char* file)
{
    std::vector<char> buffer = readProfile(section.c_str(), key.c_str(), file);
    return buffer.empty() ? std::string() : std::string(buffer.data());
}

std::vector<std::string> readSectionKeys(const std::string& section, const char* file)
{
    return splitList(readProfile(section.c_str(), nullptr, file));
}

bool dataSourceExists(const std::string& dsn)
{
    for (const std::string& name : splitList(readProfile(nullptr, nullptr, kDataSourceFile)))
        if (sameKeyword(name, dsn))
            return true;
    return false;
}

std::string driverLibraryPath(const std::string& driver)
{
    return readProfileValue(driver, "Driver", kDriverFile);
}

Attributes currentDataSource(const std::string& dsn)
{
    Attributes current;
    current.add("DSN", dsn);
    for (const std::string& key : readSectionKeys(dsn, kDataSourceFile))
        current.add(key, readProfileValue(dsn, key, kDataSourceFile));
    return current;
}

bool postError(int code, const std::string& message)
{
    SQLPostInstallerError(static_cast<DWORD>(code), message.c_str());
    return false;
}

bool dataSourceName(const Attributes& attributes, std::string& dsn)
{
    const std::string* name = attributes.find("DSN");
    if (name == nullptr || name->empty())
        return postError(ODBC_ERROR_INVALID_KEYWORD_VALUE, "the attributes name no data source (DSN=...)");
    if (!SQLValidDSN(name->c_str()))
        return postError(ODBC_ERROR_INVALID_DSN, "\"" + *name + "\" is not a valid data source name");
    dsn = *name;
    return true;
}

bool addDataSource(const std::string& driver, const Attributes& attributes)
{
    std::string dsn, path;
    if (!dataSourceName(attributes, dsn) || !registeredDriver(driver, path))
        return false;
    // An existing data source of that name is replaced, as the contract
    // asks when no window is given: its old keys do not survive.
    if (dataSourceExists(dsn) && !removeSection(dsn))
        return postError(ODBC_ERROR_REQUEST_FAILED, "could not replace data source " + dsn);
    return writeSection(dsn, driver, path, attributes);
}

bool configureDataSource(const std::string& driver, const Attributes& attributes)
{
    std::string dsn, path;
    if (!dataSourceName(attributes, dsn) || !registeredDriver(driver, path))
        return false;
    if (!dataSourceExists(dsn))
        return postError(ODBC_ERROR_INVALID_DSN, "there is no data source " + dsn);
    // The given keys are changed in place or added, and every other key is
    // kept; the section is never removed first, so a failed write loses
    // nothing that was there.
    return writeSection(dsn, driver, path, attributes);
}

bool removeDataSource(const Attributes& attributes)
{
    std::string dsn;
    if (!dataSourceName(attributes, dsn))
        return false;
    if (!dataSourceExists(dsn))
        return postError(ODBC_ERROR_INVALID_DSN, "there is no data source " + dsn);
    if (!removeSection(dsn))
        return postError(ODBC_ERROR_REMOVE_DSN_FAILED, "could not remove data source " + dsn);
    return true;
}

}  // namespace hnsybs
