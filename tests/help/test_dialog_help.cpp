// The dialog's help buttons reach the browser: the data source dialog is
// built on a private X server for a driver whose section names a help root,
// and each help button has to make the test browser open its topic.
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <optional>
#include <string>

#include "dsn/attrlist.h"
#include "dsn/backend_impl.h"
#include "dsn/dialog/shell.h"
#include "helptest.h"
#include "platform/catalog.h"
#include "support/subprocess.h"
#include "support/xvfb.h"

#include <X11/Intrinsic.h>
#include <X11/Shell.h>
#include <Xm/Xm.h>

namespace {

char kDriver[] = "HNSYB Dialog Help Driver";
char kDriverPath[] = "/nowhere/libdriver.so";
char kSecurityTopic[] = "sybsecurity";

std::string urlFor(const std::string& topic)
{
    return "File:////opt/dialog-help/wwhelp/wwhimpl/api.htm?context=ODBC&topic=" + topic + "&single=true";
}

class HelpButtons : public GuiTest {
protected:
    void SetUp() override
    {
        GuiTest::SetUp();
        ASSERT_FALSE(dir.path().empty());
        writeFile(dir.file("odbcinst.ini"), std::string("[") + kDriver + "]\nDriver=" + kDriverPath +
                                                "\nHelpRootDirectory=/opt/dialog-help\n");
        odbcinst.emplace("ODBCINST", dir.file("odbcinst.ini").c_str());
        writeLauncher(dir.file("netscape"), dir.file("launched.log"));
        const char* systemPath = std::getenv("PATH");
        path.emplace("PATH", (dir.path() + ":" + (systemPath != nullptr ? systemPath : "/usr/bin:/bin")).c_str());

        int argc = 1;
        char name[] = "helpbuttons";
        char* argv[] = {name, nullptr};
        top = XtOpenApplication(&app, "HelpButtons", nullptr, 0, &argc, argv, nullptr, applicationShellWidgetClass,
                                nullptr, 0);
        ASSERT_NE(top, nullptr);
        XtVaSetValues(top, XmNwidth, 1, XmNheight, 1, XmNmappedWhenManaged, False, nullptr);
        XtRealizeWidget(top);
        bosSetInstallDir(HNSYB_BINARY_DIR);
        Rfile = OpenStrings(nullptr, "HNmback.mo");
        shODBCAdmin = top;
        driDsnNameL = static_cast<driverDSNName*>(std::calloc(1, sizeof(driverDSNName)));
        std::strcpy(driDsnNameL->driverName, kDriver);
        std::strcpy(driDsnNameL->driverPath, kDriverPath);
        driDsnNameL->request = 1;
    }
    void TearDown() override
    {
        browser.stop();
        std::free(driDsnNameL);
        driDsnNameL = nullptr;
        if (Rfile != ZU_NO_CATALOG)
            CloseStrings(Rfile);
        Rfile = ZU_NO_CATALOG;
        // Motif keeps caches by display: the connection stays open until the
        // process ends, as the dialog's own tests do.
    }

    // Dispatches events until `done` holds, at most `ms` milliseconds.
    template <class Done>
    bool pumpUntil(Done done, int ms = 10000)
    {
        const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(ms);
        while (!done()) {
            if (std::chrono::steady_clock::now() >= end)
                return done();
            XSync(XtDisplay(top), False);
            if (XtAppPending(app) == 0) {
                struct timespec nap = {0, 5 * 1000 * 1000};
                nanosleep(&nap, nullptr);
                continue;
            }
            XtAppProcessEvent(app, XtIMAll);
        }
        return true;
    }

    ScratchDir dir;
    std::optional<EnvGuard> odbcinst;
    std::optional<EnvGuard> path;
    TestBrowser browser;
    XtAppContext app = nullptr;
    Widget top = nullptr;
};

}  // namespace

TEST_F(HelpButtons, EachHelpButtonOpensItsTopicInTheRunningBrowser)
{
    const std::string log = dir.file("browser.log");
    ASSERT_TRUE(browser.start(log));
    create_shell1(reinterpret_cast<unsigned char*>(kDriverPath), reinterpret_cast<unsigned char*>(kDriver),
                  reinterpret_cast<unsigned char*>(kSecurityTopic));
    ASSERT_NE(shell1, nullptr);
    XtManageChild(shell1);
    Widget dialogShell = XtParent(shell1);
    ASSERT_TRUE(pumpUntil([&] {
        XWindowAttributes attrs;
        return XtIsRealized(dialogShell) && XtWindow(dialogShell) != 0 &&
               XGetWindowAttributes(XtDisplay(dialogShell), XtWindow(dialogShell), &attrs) != 0 &&
               attrs.map_state == IsViewable;
    }));

    // The General tab is in front: its help button gets a real click.
    Widget general = XtNameToWidget(shell1, "*btnSybgenHelp");
    ASSERT_NE(general, nullptr);
    ASSERT_TRUE(pumpUntil([&] { return XtIsRealized(general) && XtIsManaged(general); }));
    pumpUntil([] { return false; }, 300);
    Dimension width = 0, height = 0;
    XtVaGetValues(general, XmNwidth, &width, XmNheight, &height, nullptr);
    int x = 0, y = 0;
    Window child;
    XTranslateCoordinates(XtDisplay(general), XtWindow(general), DefaultRootWindow(XtDisplay(general)), width / 2,
                          height / 2, &x, &y, &child);
    const RunResult click = runProgram(
        {"xdotool", "mousemove", "--sync", std::to_string(x), std::to_string(y), "click", "1"}, 15000);
    ASSERT_EQ(click.exitCode, 0) << click.output;
    EXPECT_TRUE(pumpUntil([&] { return waitForLine(log, "command openURL(" + urlFor("sybgeneral") + ")", 0); }))
        << "the click on the General tab's help button";

    // The other tabs' buttons, pressed through their activate callbacks.
    const struct {
        const char* button;
        const char* topic;
    } buttons[] = {{"*btnSybConHelp", "sybconnection"}, {"*btnAdvHelp", "sybadvanced"},
                   {"*btnperfhelp", "sybperform"},      {"*btnfailHelp", "sybfail"},
                   {"*btnPoolhelp", "sybcpool"},        {"*btnSectabHelp", "sybsecurity"}};
    for (const auto& b : buttons) {
        Widget w = XtNameToWidget(shell1, b.button);
        ASSERT_NE(w, nullptr) << b.button;
        XtCallCallbacks(w, XmNactivateCallback, nullptr);
        EXPECT_TRUE(waitForLine(log, "command openURL(" + urlFor(b.topic) + ")")) << b.button;
    }
    EXPECT_EQ(readLines(dir.file("launched.log")).size(), 7u) << "only the seven -remote probes ran; nothing launched";
    XtDestroyWidget(dialogShell);
    pumpUntil([] { return false; }, 100);
    shell1 = nullptr;
}
