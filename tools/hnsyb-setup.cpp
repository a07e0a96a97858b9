/*
 * hnsyb-setup: opens the data source dialog on the user's display to add or
 * edit a data source of the driver, named or in a file.
 *
 *   hnsyb-setup --dsn NAME [--driver NAME] [--add | --edit]
 *   hnsyb-setup --file PATH [--driver NAME] [--add | --edit]
 *
 * Without --add or --edit, an existing data source is edited and a missing
 * one added.  The driver is the one the data source already uses, else the
 * one given, else the first driver in the driver file whose setup library is
 * ours.  --screenshots DIR is for displays that nobody watches: each tab is
 * saved as a picture in DIR and the dialog is cancelled.
 *
 * Exit status: 0 when the dialog ran, 1 when it could not, 2 for bad usage.
 */
#include <limits.h>
#include <odbcinst.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <string>

#include "attributes.h"
#include "dialoghost.h"
#include "environment.h"
#include "installer.h"
#include "screenshots.h"

#ifdef __SANITIZE_ADDRESS__
// Sanitizer builds only: memory that the X libraries keep for the life of the
// process (the display connection stays open until exit) is not reported,
// as in the test programs.
extern "C" __attribute__((visibility("default"))) const char* __lsan_default_suppressions()
{
    return "leak:libXt.so\nleak:libXm.so\nleak:libX11.so\nleak:libXext.so\n"
           "leak:libXft.so\nleak:libfontconfig.so\n";
}
#endif

namespace {

using namespace hnsybs;

const char kUsage[] =
    "usage: hnsyb-setup --dsn NAME [--driver NAME] [--add | --edit]\n"
    "       hnsyb-setup --file PATH [--driver NAME] [--add | --edit]\n"
    "\n"
    "Opens the data source dialog on $DISPLAY to add or edit a data source.\n"
    "  --dsn NAME          a data source of the ODBC data source file (ODBCINI)\n"
    "  --file PATH         a file data source (PATH ending in .dsn)\n"
    "  --driver NAME       the driver's section in the driver file; by default the\n"
    "                      data source's own driver, else the first driver set up\n"
    "                      with libhnsybs.so\n"
    "  --add, --edit       create a new data source or change an existing one\n"
    "                      (default: edit if it exists, else add)\n"
    "  --screenshots DIR   save a picture of every tab in DIR, then cancel\n"
    "  --help              this text\n";

struct Options {
    std::string dsn, file, driver, screenshots;
    enum class Mode { Automatic, Add, Edit } mode = Mode::Automatic;
};

int usageError(const char* message)
{
    std::fprintf(stderr, "hnsyb-setup: %s\n%s", message, kUsage);
    return 2;
}

// 0 to go on, else the exit status.
int parseOptions(int argc, char** argv, Options& options)
{
    for (int i = 1; i < argc; ++i) {
        std::string arg = argv[i];
        auto value = [&](std::string& into) {
            if (i + 1 >= argc || argv[i + 1][0] == '\0')
                return false;
            into = argv[++i];
            return true;
        };
        if (arg == "--help" || arg == "-h") {
            std::fputs(kUsage, stdout);
            return -1;
        } else if (arg == "--dsn") {
            if (!value(options.dsn))
                return usageError("--dsn needs a name");
        } else if (arg == "--file") {
            if (!value(options.file))
                return usageError("--file needs a path");
        } else if (arg == "--driver") {
            if (!value(options.driver))
                return usageError("--driver needs a name");
        } else if (arg == "--screenshots") {
            if (!value(options.screenshots))
                return usageError("--screenshots needs a folder");
        } else if (arg == "--add" || arg == "--edit") {
            Options::Mode mode = arg == "--add" ? Options::Mode::Add : Options::Mode::Edit;
            if (options.mode != Options::Mode::Automatic && options.mode != mode)
                return usageError("--add and --edit exclude each other");
            options.mode = mode;
        } else {
            return usageError(("unknown argument " + arg).c_str());
        }
    }
    if (options.dsn.empty() == options.file.empty())
        return usageError("name either a data source (--dsn) or a file (--file)");
    return 0;
}

std::string absolutePath(const std::string& path)
{
    if (!path.empty() && path[0] == '/')
        return path;
    char folder[PATH_MAX];
    if (getcwd(folder, sizeof folder) == nullptr)
        return path;
    return std::string(folder) + "/" + path;
}

// The first registered driver whose setup library is libhnsybs.
std::string ourDriver()
{
    for (const std::string& driver : readSectionKeys("ODBC Drivers", kDriverFile)) {
        std::string setup = readProfileValue(driver, "Setup", kDriverFile);
        if (setup.find("libhnsybs") != std::string::npos)
            return driver;
    }
    return {};
}

int fail(const std::string& message)
{
    std::fprintf(stderr, "hnsyb-setup: %s\n", message.c_str());
    return 1;
}

}  // namespace

int main(int argc, char** argv)
{
    Options options;
    if (int status = parseOptions(argc, argv, options))
        return status < 0 ? 0 : status;
    prepareEnvironment();

    DialogRequest request;
    bool exists = false;
    std::string storedDriver;
    if (!options.dsn.empty()) {
        if (!SQLValidDSN(options.dsn.c_str()))
            return fail("\"" + options.dsn + "\" is not a valid data source name");
        exists = dataSourceExists(options.dsn);
        storedDriver = readProfileValue("ODBC Data Sources", options.dsn, kDataSourceFile);
        request.dsn = options.dsn;
    } else {
        request.fileDsn = true;
        request.filePath = absolutePath(options.file);
        struct stat info{};
        exists = stat(request.filePath.c_str(), &info) == 0;
        if (exists)
            storedDriver = readProfileValue("ODBC", "Driver", request.filePath.c_str());
    }
    if (options.mode == Options::Mode::Edit && !exists)
        return fail("there is no data source " + (options.dsn.empty() ? request.filePath : options.dsn));
    bool add = options.mode == Options::Mode::Add || (options.mode == Options::Mode::Automatic && !exists);
    request.request = add ? 1 : 2;

    request.driver = !options.driver.empty() ? options.driver : !storedDriver.empty() ? storedDriver : ourDriver();
    if (request.driver.empty())
        return fail("no driver: give --driver, or register one whose Setup is libhnsybs.so");
    if (driverLibraryPath(request.driver).empty())
        return fail("driver " + request.driver + " is not registered in " + unixOdbcDriverFile());

    // The dialog opens on what is saved; a new one starts from its name only.
    if (!options.dsn.empty()) {
        if (!add)
            request.initial = currentDataSource(options.dsn);
        else
            request.initial.add("DSN", options.dsn);
    } else if (!add) {
        for (const std::string& key : readSectionKeys("ODBC", request.filePath.c_str()))
            request.initial.add(key, readProfileValue("ODBC", key, request.filePath.c_str()));
    }

    ScreenshotJob job;
    DialogHooks hooks;
    if (!options.screenshots.empty()) {
        job.folder = absolutePath(options.screenshots);
        struct stat info{};
        if (stat(job.folder.c_str(), &info) != 0 || !S_ISDIR(info.st_mode))
            return fail("no folder " + job.folder);
        hooks.shellReady = startScreenshots;
        hooks.data = &job;
    }
    std::string error;
    if (runDialog(request, error, &hooks) != 0)
        return fail(error);
    if (!options.screenshots.empty()) {
        for (const std::string& path : job.saved)
            std::printf("%s\n", path.c_str());
        if (!job.error.empty())
            return fail(job.error);
    }
    return 0;
}
