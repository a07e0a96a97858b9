/*
 * Data sources written and read through unixODBC's installer library
 * (libodbcinst), the way the ODBC installer contract asks of a driver's
 * setup library when no window is given.
 *
 *   addDataSource     a new section from the attributes (an existing one of
 *                     that name is replaced), its entry under
 *                     "ODBC Data Sources", and "Driver" last: the same
 *                     layout that the dialog saves;
 *   configureDataSource  the given keys changed or added in an existing
 *                     section, the others kept;
 *   removeDataSource  an existing section and its entry removed.
 *
 * Each returns true on success; on failure it has posted an installer error
 * (SQLPostInstallerError) that says why, and returns false.  Which file is
 * meant (user or system) is the installer's configuration mode, which the
 * caller (SQLConfigDataSource) has set.  Results are plain strings owned by
 * the caller.
 */
#ifndef HNSYB_TOOLS_SETUP_INSTALLER_H
#define HNSYB_TOOLS_SETUP_INSTALLER_H

#include <string>
#include <vector>

#include "attributes.h"

namespace hnsybs {

// The installer's file names for the data source file and the driver file.
inline constexpr const char* kDataSourceFile = ".odbc.ini";
inline constexpr const char* kDriverFile = ".odbcinst.ini";

// The value of `key` in `section` of `file`; empty when it is missing.
std::string readProfileValue(const std::string& section, const std::string& key, const char* file);
// The key names of `section`, in file order (empty for a missing section).
std::vector<std::string> readSectionKeys(const std::string& section, const char* file);
// Whether a section of that name exists in the data source file.
bool dataSourceExists(const std::string& dsn);
// The driver library's path registered for `driver` ("Driver" key of its
// section in the driver file); empty when the driver is not registered.
std::string driverLibraryPath(const std::string& driver);
// The DSN's current keys and values, "DSN" first: what the dialog opens with.
Attributes currentDataSource(const std::string& dsn);

// Posts an installer error and returns false, for one-line failure paths.
bool postError(int code, const std::string& message);

// The DSN named by the attributes: present, and valid for the installer;
// otherwise an error is posted and false returned.
bool dataSourceName(const Attributes& attributes, std::string& dsn);

bool addDataSource(const std::string& driver, const Attributes& attributes);
bool configureDataSource(const std::string& driver, const Attributes& attributes);
bool removeDataSource(const Attributes& attributes);

}  // namespace hnsybs

#endif
