// The help request of a help button, end to end: the driver's help root
// from the driver file, the URL, and the browser, reached through the
// property protocol when one runs and started otherwise.
#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "help/help.h"
#include "helptest.h"
#include "platform/catalog.h"
#include "support/xvfb.h"

namespace {

const char kDriver[] = "HNSYB Help Test Driver";
const char kUrl[] = "File:////opt/help/wwhelp/wwhimpl/api.htm?context=ODBC&topic=sybgeneral&single=true";

class HelpRequest : public GuiTest {
protected:
    void SetUp() override
    {
        GuiTest::SetUp();
        ASSERT_FALSE(dir.path().empty());
        writeFile(dir.file("odbcinst.ini"), std::string("[") + kDriver +
                                                "]\nDriver=/nowhere/lib.so\nHelpRootDirectory=/opt/help\n\n"
                                                "[Helpless Driver]\nDriver=/nowhere/other.so\n");
        odbcinst.emplace("ODBCINST", dir.file("odbcinst.ini").c_str());
        log = dir.file("browser.log");
        launched = dir.file("launched.log");
        writeLauncher(dir.file("netscape"), launched);
        bosSetInstallDir(HNSYB_BINARY_DIR);
        bosLoadResourceDLL("uxutl24", 0, nullptr, &catalogUses);
    }
    void TearDown() override
    {
        browser.stop();
        bosFreeResourceDLL(0, &catalogUses);
    }

    std::optional<EnvGuard> odbcinst;  // the driver file, set in SetUp
    ScratchDir dir;
    std::string log;
    std::string launched;
    TestBrowser browser;
    int catalogUses = 0;
};

const unsigned char* u(const char* text) { return reinterpret_cast<const unsigned char*>(text); }

}  // namespace

TEST_F(HelpRequest, TheHelpRootIsTheDriversEntryAsAFileUrl)
{
    unsigned char buffer[64];
    unsigned char* url = buffer;
    ASSERT_EQ(zuFindHelpRoot(u(kDriver), &url, sizeof buffer), 0);
    EXPECT_STREQ(reinterpret_cast<char*>(buffer), "File:////opt/help");
    ASSERT_EQ(zuFindHelpRoot(u(kDriver), &url, 12), 0);
    EXPECT_STREQ(reinterpret_cast<char*>(buffer), "File:////op") << "bounded by the size given";
    EXPECT_EQ(zuFindHelpRoot(u(kDriver), nullptr, sizeof buffer), 1);
    EXPECT_EQ(zuFindHelpRoot(u(kDriver), &url, 0), 1);
}

TEST_F(HelpRequest, ADriverWithoutHelpRootGetsTheMessageAndNothingStarts)
{
    ASSERT_TRUE(browser.start(log));
    EnvGuard path("PATH", dir.path().c_str());
    char text[1024];
    winGetString(text, 1526);
    ASSERT_NE(std::string(text), "1526") << "the catalog text is there";
    for (const char* driver : {"Helpless Driver", "No Such Driver"}) {
        testing::internal::CaptureStdout();
        zuDisplayHelp(u(driver), u("sybgeneral"));
        const std::string shown = testing::internal::GetCapturedStdout();
        EXPECT_EQ(shown, "\n" + std::string(text) + "\n") << driver;
    }
    EXPECT_TRUE(readLines(launched).empty()) << "no browser was asked about -remote or started";
    EXPECT_TRUE(readLines(log).empty()) << "the running browser got nothing";
}

TEST_F(HelpRequest, TheTopicOpensInTheRunningBrowser)
{
    ASSERT_TRUE(browser.start(log));
    EnvGuard path("PATH", dir.path().c_str());
    testing::internal::CaptureStdout();
    zuDisplayHelp(u(kDriver), u("sybgeneral"));
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "") << "no message box";
    EXPECT_TRUE(waitForLine(log, std::string("command openURL(") + kUrl + ")"));
    EXPECT_TRUE(waitForLine(log, "unlocked"));
    EXPECT_EQ(readLines(launched), std::vector<std::string>{"remote"}) << "only the -remote probe ran";
}

TEST_F(HelpRequest, WithoutARunningBrowserTheTopicOpensInANewOne)
{
    EnvGuard path("PATH", dir.path().c_str());
    zuDisplayHelp(u(kDriver), u("sybgeneral"));
    EXPECT_TRUE(waitForLine(launched, kUrl));

    unsigned char directory[] = "/srv/help";
    unsigned char context[] = "Admin";
    unsigned char topic[] = "pools";
    EXPECT_EQ(zuDisplayHelp2(directory, context, topic), 0);
    EXPECT_TRUE(waitForLine(launched, "File:////srv/help/wwhelp/wwhimpl/api.htm?context=Admin&topic=pools&single=true"));
    // The help layer is shut down after each request: a new start-up works.
    EXPECT_EQ(zuDisplayHelp2(directory, context, topic), 0);
}
