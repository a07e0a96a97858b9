// hnsyb-setup's command line: what it accepts, what it refuses, and how it
// picks the driver and the request before it opens the dialog.  Runs the
// installed program as a person would, with a private ODBC configuration.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "odbcconfig.h"
#include "support/subprocess.h"

namespace {

// The program without a display, so that every run ends before a dialog.
RunResult setup(std::vector<std::string> args)
{
    std::vector<std::string> argv = {"env", "-u", "DISPLAY", HNSYB_SETUP_PROGRAM};
    argv.insert(argv.end(), args.begin(), args.end());
    return runProgram(argv, 20000);
}

bool says(const RunResult& run, const std::string& text)
{
    return run.output.find(text) != std::string::npos;
}

}  // namespace

// --help prints the usage and succeeds; malformed command lines print the
// usage with the reason and exit 2, before anything is read or opened.
TEST(SetupCommand, UsageAndMalformedCommandLines)
{
    RunResult help = setup({"--help"});
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_TRUE(says(help, "usage: hnsyb-setup --dsn NAME")) << help.output;

    const std::vector<std::pair<std::vector<std::string>, std::string>> bad = {
        {{}, "name either a data source (--dsn) or a file (--file)"},
        {{"--dsn", "a", "--file", "b.dsn"}, "name either a data source"},
        {{"--dsn"}, "--dsn needs a name"},
        {{"--dsn", "a", "--add", "--edit"}, "--add and --edit exclude each other"},
        {{"--dsn", "a", "--colour"}, "unknown argument --colour"},
        {{"--file", "x.dsn", "--driver"}, "--driver needs a name"},
    };
    for (const auto& [args, reason] : bad) {
        RunResult run = setup(args);
        EXPECT_EQ(run.exitCode, 2) << run.output;
        EXPECT_TRUE(says(run, "hnsyb-setup: " + reason)) << run.output;
        EXPECT_TRUE(says(run, "usage:")) << run.output;
    }
}

// Requests that cannot be met are refused with the reason and exit 1; a
// request that can goes as far as the display, with the driver found from
// the driver file (the one whose Setup is our library).
TEST(SetupCommand, ChecksTheRequestBeforeOpeningTheDialog)
{
    PrivateOdbc odbc;
    odbc.writeDataSources("[ODBC Data Sources]\nthere = HNSYB Test\n\n[there]\nServer = s\n");

    RunResult run = setup({"--edit", "--dsn", "missing"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_TRUE(says(run, "hnsyb-setup: there is no data source missing")) << run.output;

    run = setup({"--dsn", "bad[name]"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_TRUE(says(run, "\"bad[name]\" is not a valid data source name")) << run.output;

    run = setup({"--dsn", "new", "--driver", "Nope"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_TRUE(says(run, "driver Nope is not registered in " + odbc.driverFile())) << run.output;

    run = setup({"--edit", "--file", odbc.folder() + "/none.dsn"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_TRUE(says(run, "there is no data source " + odbc.folder() + "/none.dsn")) << run.output;

    // Add, edit and file requests that pass every check reach the display.
    for (const std::vector<std::string>& args :
         {std::vector<std::string>{"--dsn", "new"}, {"--dsn", "there"}, {"--edit", "--dsn", "there"},
          {"--file", odbc.folder() + "/new.dsn"}}) {
        run = setup(args);
        EXPECT_EQ(run.exitCode, 1) << run.output;
        EXPECT_TRUE(says(run, "no X display: DISPLAY is not set")) << run.output;
    }

    // Without our driver in the driver file there is nothing to pick.
    std::string emptyDrivers = "[ODBC Drivers]\n";
    RunResult rewrite = runProgram({"sh", "-c", "printf '[ODBC Drivers]\\n' > \"$1\"", "sh", odbc.driverFile()});
    ASSERT_EQ(rewrite.exitCode, 0);
    run = setup({"--dsn", "new"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_TRUE(says(run, "no driver: give --driver")) << run.output;
}
