/*
 * The environment that the setup front end prepares before it talks to the
 * dialog library.
 *
 * Three variables are filled in, each only when the caller left it unset,
 * so that a person's or an administrator's own settings always win:
 *   ODBCINST      unixODBC's driver file ($ODBCSYSINI/$ODBCINSTINI, else the
 *                 installer's own default), so that the dialog library's own
 *                 profile layer reads a driver's settings from the file in
 *                 which the driver is registered;
 *   PF_INSTALLDIR the folder above the dialog library's folder, where the
 *                 message catalogs are installed (locale/...);
 *   ZULIB         the dialog library's folder, where the library's name rule
 *                 ("libhnsybs" -> "libhnsybr") looks for it.
 * Nothing here owns memory beyond the returned strings.
 */
#ifndef HNSYB_TOOLS_SETUP_ENVIRONMENT_H
#define HNSYB_TOOLS_SETUP_ENVIRONMENT_H

#include <string>

namespace hnsybs {

// Full path of unixODBC's driver file as its installer library finds it.
std::string unixOdbcDriverFile();

// Path of the loaded dialog library (libhnsybr.so...), empty if unknown.
std::string dialogLibraryPath();

// Sets ODBCINST, PF_INSTALLDIR and ZULIB where they are unset.
void prepareEnvironment();

}  // namespace hnsybs

#endif
