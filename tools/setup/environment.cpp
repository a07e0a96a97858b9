#include "environment.h"

#include <dlfcn.h>
#include <odbcinst.h>

#include <cstdlib>
#include <cstring>

#include "dsn/attrlist.h"

// unixODBC's own answer for its system folder (odbcinstext.h, which cannot
// be included after odbcinst.h).
extern "C" char* odbcinst_system_file_path(char* buffer);

namespace hnsybs {

std::string unixOdbcDriverFile()
{
    // ODBCINSTINI names the file: unixODBC reads it relative to the system
    // folder, iODBC as a path of its own.  An absolute name is taken as it
    // stands, so that both readings meet on the same file.
    const char* name = std::getenv("ODBCINSTINI");
    if (name != nullptr && name[0] == '/')
        return name;
    // The folder is $ODBCSYSINI, else the installer's built-in one.  The
    // installer copies the variable into the buffer without a bound, so it
    // is asked only when the variable is unset and its answer is the short
    // built-in folder.
    const char* variable = std::getenv("ODBCSYSINI");
    char builtIn[4096 + 1] = "";
    const char* folder = variable;
    if (folder == nullptr || folder[0] == '\0')
        folder = odbcinst_system_file_path(builtIn);
    std::string file = name != nullptr && name[0] != '\0' ? name : "odbcinst.ini";
    std::string path = folder;
    if (path.empty() || path.back() != '/')
        path += '/';
    return path + file;
}

std::string dialogLibraryPath()
{
    Dl_info info{};
    // Any function of the dialog library names the file it was loaded from.
    if (dladdr(reinterpret_cast<void*>(&PopulateDriverDSNStruct), &info) == 0 || info.dli_fname == nullptr)
        return {};
    return info.dli_fname;
}

static std::string parentFolder(const std::string& path)
{
    std::string::size_type slash = path.find_last_of('/');
    if (slash == std::string::npos)
        return ".";
    if (slash == 0)
        return "/";
    return path.substr(0, slash);
}

static void setIfUnset(const char* name, const std::string& value)
{
    const char* current = std::getenv(name);
    if ((current == nullptr || current[0] == '\0') && !value.empty())
        setenv(name, value.c_str(), 1);
}

void prepareEnvironment()
{
    setIfUnset("ODBCINST", unixOdbcDriverFile());
    std::string library = dialogLibraryPath();
    if (!library.empty() && library.find('/') != std::string::npos) {
        std::string folder = parentFolder(library);
        setIfUnset("ZULIB", folder);
        setIfUnset("PF_INSTALLDIR", parentFolder(folder));
    }
}

}  // namespace hnsybs
