// Finding a browser, running it as a child, and the URL each display call
// hands to a newly started browser.
#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>

#include "core/errorlist.h"
#include "help/wwhcomm.h"
#include "help/wwhelp.h"
#include "help/wwhplatform.h"
#include "helptest.h"

namespace {

// No child of ours is left: neither running nor a zombie.
bool noChildrenLeft()
{
    return waitpid(-1, nullptr, WNOHANG) == -1 && errno == ECHILD;
}

class HelpLaunch : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_FALSE(dir.path().empty()); }
    void TearDown() override { private_WWHelp_Platform_SetWaitLimit(10000); }
    ScratchDir dir;
};

}  // namespace

TEST_F(HelpLaunch, PathOrderWinsOverNameOrderAndOnlyTheNetscapeFamilyIsRemote)
{
    const std::string first = dir.file("a"), second = dir.file("b");
    std::filesystem::create_directory(first);
    std::filesystem::create_directory(second);
    const std::string log = dir.file("log");
    writeLauncher(first + "/firefox", log);
    writeLauncher(second + "/netscape", log);
    writeLauncher(second + "/mozilla", log);
    WWHelp_BrowserInfo info;
    {
        // An empty field in PATH is skipped.
        EnvGuard path("PATH", (first + "::" + second).c_str());
        ASSERT_EQ(WWHelp_Platform_SetDefaultBrowserInfo(&info), 0);
    }
    EXPECT_EQ(std::string(info.browserPath), first + "/firefox") << "the earlier directory wins";
    EXPECT_EQ(info.remoteControl, 0) << "firefox gets no remote control";
    EXPECT_EQ(info.smartURL, 0);
    EXPECT_EQ(info.remoteFlagAccepted, 1) << "the launcher took -remote quietly";
    EXPECT_EQ(WWHelp_Platform_CheckBrowserRunning(&info), -1) << "no property protocol for firefox";

    {
        EnvGuard path("PATH", second.c_str());
        ASSERT_EQ(WWHelp_Platform_SetDefaultBrowserInfo(&info), 0);
    }
    EXPECT_EQ(std::string(info.browserPath), second + "/netscape") << "netscape comes before mozilla";
    EXPECT_EQ(info.remoteControl, 1);
    const std::string signature = "pid" + std::to_string(getpid()) + "@";
    char host[256] = {};
    gethostname(host, sizeof host - 1);
    EXPECT_EQ(std::string(info.processSignature), signature + host);

    // The family is told by "/mozilla" anywhere in the path: a firefox in a
    // directory named so counts as remote-capable.
    const std::string mozillaDir = dir.file("mozilla-apps");
    std::filesystem::create_directory(mozillaDir);
    writeLauncher(mozillaDir + "/firefox", log);
    {
        EnvGuard path("PATH", mozillaDir.c_str());
        ASSERT_EQ(WWHelp_Platform_SetDefaultBrowserInfo(&info), 0);
    }
    EXPECT_EQ(info.remoteControl, 1);
    EXPECT_EQ(readLines(log).size(), 3u) << "each discovery asked its browser about -remote once";
}

TEST_F(HelpLaunch, WithoutPathTheFixedPlacesAreTried)
{
    WWHelp_BrowserInfo info;
    std::memset(&info, 0x55, sizeof info);
    {
        EnvGuard path("PATH", nullptr);
        ASSERT_EQ(WWHelp_Platform_SetDefaultBrowserInfo(&info), 0);
    }
    // The first of the fixed places that exists on this machine, if any.
    std::string expected;
    for (const char* p : {"/opt/netscape/netscape", "/usr/local/bin/netscape", "/usr/local/netscape/netscape",
                          "/usr/bin/netscape", "/usr/dt/bin/netscape", "/opt/mozilla/mozilla", "/usr/local/bin/mozilla",
                          "/usr/local/mozilla/mozilla", "/usr/bin/mozilla", "/usr/dt/bin/mozilla",
                          "/usr/local/microsoft/bin/iexplorer", "/usr/bin/firefox", "/usr/local/bin/firefox"})
        if (expected.empty() && access(p, F_OK) == 0)
            expected = p;
    EXPECT_EQ(std::string(info.browserPath), expected);
    if (expected.empty()) {
        EXPECT_EQ(info.remoteControl, 0) << "the record was cleared";
        EXPECT_EQ(info.remoteFlagAccepted, 0);
        EXPECT_EQ(WWHelp_Platform_LaunchWithURL(&info, "File:///x", 9), -1) << "nothing to start";
    }
}

TEST_F(HelpLaunch, ABrowserThatComplainsAboutRemoteIsNotTakenForRemoteCapable)
{
    const std::string log = dir.file("log");
    writeLauncher(dir.file("netscape"), log, /*rejectRemote=*/true);
    EnvGuard path("PATH", dir.path().c_str());
    WWHelp_BrowserInfo info;
    ASSERT_EQ(WWHelp_Platform_SetDefaultBrowserInfo(&info), 0);
    EXPECT_EQ(info.remoteControl, 1);
    EXPECT_EQ(info.remoteFlagAccepted, 0) << "it exited 0 but wrote on standard error";
}

TEST_F(HelpLaunch, CommandJudgesExitStatusAndStandardErrorAndLeavesNoChildOrFile)
{
    EXPECT_EQ(private_WWHelp_Platform_Command(1, "/bin/sh", "-c", "exit 0", nullptr), 0);
    EXPECT_EQ(private_WWHelp_Platform_Command(1, "/bin/sh", "-c", "exit 3", nullptr), -1);
    EXPECT_EQ(private_WWHelp_Platform_Command(1, "/bin/sh", "-c", "echo oops >&2", nullptr), -1);
    EXPECT_EQ(private_WWHelp_Platform_Command(1, "/bin/sh", "-c", "echo fine", nullptr), 0)
        << "standard output goes to /dev/null and does not count";
    EXPECT_EQ(private_WWHelp_Platform_Command(1, "sh", "-c", "exit 0", nullptr), 0) << "a bare name goes by PATH";
    EXPECT_EQ(private_WWHelp_Platform_Command(1, dir.file("absent").c_str(), nullptr), -1);
    EXPECT_EQ(private_WWHelp_Platform_Command(1, "", nullptr), -1);
    EXPECT_TRUE(noChildrenLeft());

    // The child's standard error is the temporary file that was made, and it
    // is gone once the command has been judged.
    const std::string where = dir.file("stderr-name");
    EXPECT_EQ(private_WWHelp_Platform_Command(1, "/bin/sh", "-c", ("readlink /proc/$$/fd/2 > " + where).c_str(),
                                              nullptr),
              0);
    const auto lines = readLines(where);
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(lines[0].rfind("/tmp/wwhapi", 0), 0u) << lines[0];
    EXPECT_EQ(lines[0].size(), std::strlen("/tmp/wwhapiXXXXXX")) << lines[0];
    EXPECT_FALSE(std::filesystem::exists(lines[0])) << "the temporary file was removed";
}

TEST_F(HelpLaunch, ACommandThatOutlivesTheWaitLimitIsKilledAndReaped)
{
    private_WWHelp_Platform_SetWaitLimit(300);
    const std::string marker = dir.file("finished");
    EXPECT_EQ(private_WWHelp_Platform_Command(1, "/bin/sh", "-c", ("sleep 30; touch " + marker).c_str(), nullptr), -1);
    EXPECT_TRUE(noChildrenLeft()) << "the child was killed and reaped";
    EXPECT_FALSE(std::filesystem::exists(marker));
}

TEST_F(HelpLaunch, ALaunchReturnsAtOnceAndLeavesNoZombie)
{
    const std::string log = dir.file("log");
    const std::string release = dir.file("release");
    // The browser runs until the test lets it go, so it is surely still up
    // when the launch returns.
    const std::string script = "while [ ! -e '" + release + "' ]; do sleep 0.05; done; readlink /proc/$$/fd/2 >> '" + log +
                               "'; echo \"$0 done\" >> '" + log + "'";
    ASSERT_EQ(private_WWHelp_Platform_Command(0, "/bin/sh", "-c", script.c_str(), "browser", nullptr), 0);
    EXPECT_TRUE(noChildrenLeft()) << "the browser is not our child, and the go-between was reaped";
    writeFile(release, "");
    ASSERT_TRUE(waitForLine(log, "browser done"));
    const auto lines = readLines(log);
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_EQ(lines[0].rfind("/tmp/wwhapi", 0), 0u) << lines[0];
    EXPECT_NE(lines[0].find("(deleted)"), std::string::npos) << "nobody reads it, so it is already unlinked";
}

namespace {
std::string gExitMarker;
pid_t gTestPid = 0;
void markExit()
{
    if (getpid() != gTestPid)
        writeFile(gExitMarker, "exit handler ran in a child\n");
}
}  // namespace

TEST_F(HelpLaunch, AChildThatCannotStartRunsNoExitHandlerAndFlushesNoBuffer)
{
    gExitMarker = dir.file("exit-handler");
    gTestPid = getpid();
    std::atexit(markExit);
    // Unflushed output in the parent would be written twice by a child that
    // went through exit().
    const std::string out = dir.file("buffered");
    FILE* f = std::fopen(out.c_str(), "w");
    ASSERT_NE(f, nullptr);
    std::fputs("once\n", f);
    EXPECT_EQ(private_WWHelp_Platform_Command(1, dir.file("no-such-browser").c_str(), nullptr), -1);
    EXPECT_EQ(private_WWHelp_Platform_Command(0, dir.file("no-such-browser").c_str(), "x", nullptr), 0)
        << "without waiting, a failed start shows in the child alone";
    std::fclose(f);
    EXPECT_EQ(readLines(out), std::vector<std::string>{"once"});
    EXPECT_FALSE(std::filesystem::exists(gExitMarker));
    EXPECT_TRUE(noChildrenLeft());
}

TEST_F(HelpLaunch, EveryDisplayCallStartsTheBrowserWithTheUrlOfItsRule)
{
    const std::string log = dir.file("log");
    writeLauncher(dir.file("firefox"), log);
    EnvGuard path("PATH", dir.path().c_str());
    const std::string api = "File:////opt/help/wwhelp/wwhimpl/api.htm";
    struct Case {
        int (*call)();
        std::string url;
    };
    // Each call in its own start-up, as a help button makes it.
    const Case cases[] = {
        {[] { return WWHelp_DisplayHelp("ODBC", "sybgeneral"); }, api + "?context=ODBC&topic=sybgeneral&single=true"},
        {[] { return WWHelp_DisplayHelpWithNavigation("ODBC", "t1"); }, api + "?context=ODBC&topic=t1"},
        {[] { return WWHelp_DisplayHelpWithContents("C", "t2"); }, api + "?context=C&topic=t2&tab=contents"},
        {[] { return WWHelp_DisplayHelpWithIndex("C", "t3"); }, api + "?context=C&topic=t3&tab=index"},
        {[] { return WWHelp_DisplayHelpWithSearch("C", "t4"); }, api + "?context=C&topic=t4&tab=search"},
        {[] { return WWHelp_DisplayHelpWithFavorites("C", "t5"); }, api + "?context=C&topic=t5&tab=favorites"},
        {[] { return WWHelp_DisplayHelpNavigation(); }, api},
        {[] { return WWHelp_DisplayHelpContents(); }, api + "?tab=contents"},
        {[] { return WWHelp_DisplayHelpIndex(); }, api + "?tab=index"},
        {[] { return WWHelp_DisplayHelpSearch(); }, api + "?tab=search"},
        {[] { return WWHelp_DisplayHelpFavorites(); }, api + "?tab=favorites"},
        // Context without topic counts as neither.
        {[] { return private_WWHelp_DisplayHelp("ODBC", "", 1, WWHelp_TabIndex); }, api + "?single=true&tab=index"},
    };
    char root[] = "File:////opt/help";
    for (const Case& c : cases) {
        ASSERT_EQ(WWHelp_Startup(root), 0);
        EXPECT_EQ(c.call(), 0) << c.url;
        EXPECT_EQ(WWHelp_Shutdown(), 0);
        EXPECT_TRUE(waitForLine(log, c.url)) << "not launched with " << c.url;
    }
    EXPECT_EQ(readLines(log).size(), 2 * std::size(cases)) << "one -remote probe and one launch per call";
}

TEST_F(HelpLaunch, AUrlLongerThanTheLaunchBufferIsRefused)
{
    const std::string log = dir.file("log");
    writeLauncher(dir.file("firefox"), log);
    WWHelp_BrowserInfo info;
    {
        EnvGuard path("PATH", dir.path().c_str());
        ASSERT_EQ(WWHelp_Platform_SetDefaultBrowserInfo(&info), 0);
    }
    const std::string longest(WWHelp_MaxURL, 'u');
    const std::string tooLong(WWHelp_MaxURL + 1, 'u');
    ZuErrorList errors(nullptr, 1);
    ZuErrorKeeper::setErrorList(&errors);
    EXPECT_EQ(WWHelp_Platform_LaunchWithURL(&info, tooLong.data(), static_cast<long>(tooLong.size())), -1);
    EXPECT_EQ(ZuErrorKeeper::getLastErrorNumber(), 1527) << "the refusal is reported";
    ZuErrorKeeper::giveUpErrorList();
    EXPECT_EQ(WWHelp_Platform_LaunchWithURL(&info, longest.data(), static_cast<long>(longest.size())), 0);
    EXPECT_TRUE(waitForLine(log, longest));
}
