// The window property protocol against the test browser on a private Xvfb:
// finding the window, the lock, commands and their answers, and the fall
// back to starting a browser when the running one does not take the URL.
#include <gtest/gtest.h>

#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <unistd.h>

#include <cstring>
#include <future>
#include <string>

#include "help/wwhcomm.h"
#include "help/wwhelp.h"
#include "help/wwhplatform.h"
#include "helptest.h"
#include "support/xvfb.h"

namespace {

class HelpRemote : public GuiTest {
protected:
    void SetUp() override
    {
        GuiTest::SetUp();
        ASSERT_FALSE(dir.path().empty());
        display = XOpenDisplay(GuiTest::display().c_str());
        ASSERT_NE(display, nullptr);
        lockAtom = XInternAtom(display, "_MOZILLA_LOCK", False);
        versionAtom = XInternAtom(display, "_MOZILLA_VERSION", False);
        log = dir.file("browser.log");
        launched = dir.file("launched.log");
        // A netscape on PATH: remote-capable, and what a launch starts.
        writeLauncher(dir.file("netscape"), launched);
    }
    void TearDown() override
    {
        browser.stop();
        if (display != nullptr)
            XCloseDisplay(display);
        private_WWHelp_Platform_SetWaitLimit(10000);
    }

    _XDisplay* opaque() { return reinterpret_cast<_XDisplay*>(display); }

    WWHelp_BrowserInfo remoteRecord()
    {
        EnvGuard path("PATH", dir.path().c_str());
        WWHelp_BrowserInfo info;
        EXPECT_EQ(WWHelp_Platform_SetDefaultBrowserInfo(&info), 0);
        EXPECT_EQ(info.remoteControl, 1);
        return info;
    }

    bool lockPresent(unsigned long window)
    {
        return private_WWHelp_Platform_WindowPropertyExists(opaque(), window, lockAtom) == 0;
    }

    ScratchDir dir;
    Display* display = nullptr;
    Atom lockAtom = 0;
    Atom versionAtom = 0;
    std::string log;
    std::string launched;
    TestBrowser browser;
};

}  // namespace

TEST_F(HelpRemote, PropertiesAreReadCreatedOnlyWhenAbsentAndDestroyed)
{
    const Window w = XCreateSimpleWindow(display, DefaultRootWindow(display), 0, 0, 10, 10, 0, 0, 0);
    const Atom atom = XInternAtom(display, "_HNSYB_TEST_PROPERTY", False);
    EXPECT_EQ(private_WWHelp_Platform_WindowPropertyExists(opaque(), w, atom), -1);
    EXPECT_EQ(private_WWHelp_Platform_WindowPropertyCreate(opaque(), w, atom, "first"), 0);
    EXPECT_EQ(private_WWHelp_Platform_WindowPropertyExists(opaque(), w, atom), 0);
    EXPECT_EQ(private_WWHelp_Platform_WindowPropertyCreate(opaque(), w, atom, "second"), -1) << "already there";
    char buffer[16];
    std::memset(buffer, 'z', sizeof buffer);
    ASSERT_EQ(private_WWHelp_Platform_WindowPropertyGet(opaque(), w, atom, buffer, 4), 0);
    EXPECT_EQ(std::string(buffer, 4), "firz") << "size - 1 bytes, no terminator written";
    EXPECT_EQ(private_WWHelp_Platform_WindowPropertyDestroy(opaque(), w, atom), 0);
    EXPECT_EQ(private_WWHelp_Platform_WindowPropertyExists(opaque(), w, atom), -1);
    EXPECT_EQ(private_WWHelp_Platform_WindowPropertyGet(opaque(), w, atom, buffer, sizeof buffer), -1);

    // A window that is gone is an error to report, not the end of the process.
    XDestroyWindow(display, w);
    XSync(display, False);
    EXPECT_EQ(private_WWHelp_Platform_WindowPropertyExists(opaque(), w, atom), -1);
    EXPECT_EQ(private_WWHelp_Platform_WindowPropertyCreate(opaque(), w, atom, "late"), -1);
    EXPECT_EQ(private_WWHelp_Platform_LockMozillaWindow(opaque(), w, lockAtom, "pid1@here"), -1);
}

TEST_F(HelpRemote, TheBrowserWindowIsFoundDirectlyOrInsideAFrame)
{
    EXPECT_EQ(private_WWHelp_Platform_FindMozillaWindow(opaque(), versionAtom), 0ul) << "no browser yet";
    ASSERT_TRUE(browser.start(log, {"--frame"}));
    const unsigned long found = private_WWHelp_Platform_FindMozillaWindow(opaque(), versionAtom);
    EXPECT_EQ(found, browser.window()) << "the client window inside the frame, not the frame";
    browser.stop();
    XSync(display, False);
    EXPECT_EQ(private_WWHelp_Platform_FindMozillaWindow(opaque(), versionAtom), 0ul);
    ASSERT_TRUE(browser.start(log));
    EXPECT_EQ(private_WWHelp_Platform_FindMozillaWindow(opaque(), versionAtom), browser.window());
}

TEST_F(HelpRemote, AUrlIsSentUnderOurLockWhichIsReleasedAfterwards)
{
    ASSERT_TRUE(browser.start(log));
    WWHelp_BrowserInfo info = remoteRecord();
    EXPECT_EQ(info.remoteFlagAccepted, 1);
    EXPECT_EQ(WWHelp_Platform_CheckBrowserRunning(&info), 0);
    const std::string url = "File:////opt/help/wwhelp/wwhimpl/api.htm?context=ODBC&topic=x";
    ASSERT_EQ(WWHelp_Platform_SendURL(&info, url.data(), static_cast<long>(url.size())), 0);
    ASSERT_TRUE(waitForLine(log, "unlocked"));
    const std::string signature = info.processSignature;
    EXPECT_EQ(readLines(log), (std::vector<std::string>{"locked " + signature, "command openURL(" + url + ")",
                                                         "holder " + signature, "unlocked"}));
    EXPECT_FALSE(lockPresent(browser.window()));
    EXPECT_TRUE(readLines(launched) == std::vector<std::string>{"remote"}) << "nothing was launched";

    // Without remote control the window is not looked for.
    info.remoteControl = 0;
    EXPECT_EQ(WWHelp_Platform_CheckBrowserRunning(&info), -1);
    EXPECT_EQ(WWHelp_Platform_SendURL(&info, url.data(), static_cast<long>(url.size())), -1);
}

TEST_F(HelpRemote, InterimAnswersAreWaitedOutAndOnly200Succeeds)
{
    WWHelp_BrowserInfo info = remoteRecord();
    const char url[] = "File:///a";
    struct Case {
        const char* answers;
        int expected;
    } cases[] = {{"100,200", 0}, {"150,199,200 OK", 0}, {"100,404", -1}, {"500", -1}, {"20", -1}, {"2000", 0}};
    for (const Case& c : cases) {
        ASSERT_TRUE(browser.start(log, {"--respond", c.answers}));
        EXPECT_EQ(WWHelp_Platform_SendURL(&info, url, 9), c.expected) << c.answers;
        EXPECT_FALSE(lockPresent(browser.window())) << "unlocked whatever the outcome: " << c.answers;
        browser.stop();
    }
}

TEST_F(HelpRemote, ARefusedUrlIsLaunchedInANewBrowser)
{
    ASSERT_TRUE(browser.start(log, {"--respond", "500 no"}));
    EnvGuard path("PATH", dir.path().c_str());
    char root[] = "File:////opt/help";
    ASSERT_EQ(WWHelp_Startup(root), 0);
    EXPECT_EQ(WWHelp_DisplayHelp("ODBC", "sybgeneral"), 0);
    EXPECT_EQ(WWHelp_Shutdown(), 0);
    const std::string url = "File:////opt/help/wwhelp/wwhimpl/api.htm?context=ODBC&topic=sybgeneral&single=true";
    EXPECT_TRUE(waitForLine(log, "command openURL(" + url + ")")) << "the running browser was asked first";
    EXPECT_TRUE(waitForLine(launched, url)) << "then a new one was started";
}

TEST_F(HelpRemote, ASilentBrowserCostsOneWaitLimitAndTheUrlIsLaunched)
{
    private_WWHelp_Platform_SetWaitLimit(500);
    ASSERT_TRUE(browser.start(log, {"--silent"}));
    EnvGuard path("PATH", dir.path().c_str());
    char root[] = "File:////h";
    ASSERT_EQ(WWHelp_Startup(root), 0);
    EXPECT_EQ(WWHelp_DisplayHelpIndex(), 0);
    EXPECT_EQ(WWHelp_Shutdown(), 0);
    EXPECT_TRUE(waitForLine(log, "command openURL(File:////h/wwhelp/wwhimpl/api.htm?tab=index)"));
    EXPECT_TRUE(waitForLine(launched, "File:////h/wwhelp/wwhimpl/api.htm?tab=index"));
    EXPECT_FALSE(lockPresent(browser.window()));
}

TEST_F(HelpRemote, AForeignLockIsWaitedForAndNeverTakenOver)
{
    ASSERT_TRUE(browser.start(log, {"--hold-lock", "400"}));
    WWHelp_BrowserInfo info = remoteRecord();
    ASSERT_EQ(WWHelp_Platform_SendURL(&info, "File:///b", 9), 0);
    ASSERT_TRUE(waitForLine(log, "unlocked"));
    const std::string signature = info.processSignature;
    // The foreign holder let go before we took the lock, and the command ran
    // under our lock.
    EXPECT_EQ(readLines(log), (std::vector<std::string>{"locked pid0@elsewhere", "released", "unlocked", "locked " + signature,
                                                         "command openURL(File:///b)", "holder " + signature,
                                                         "unlocked"}));

    // Unlock leaves another client's lock alone.
    ASSERT_EQ(private_WWHelp_Platform_WindowPropertyCreate(opaque(), browser.window(), lockAtom, "pid1@other"), 0);
    EXPECT_NE(private_WWHelp_Platform_UnlockMozillaWindow(opaque(), browser.window(), lockAtom, signature.c_str()),
              0);
    EXPECT_TRUE(lockPresent(browser.window()));
    EXPECT_EQ(private_WWHelp_Platform_UnlockMozillaWindow(opaque(), browser.window(), lockAtom, "pid1@other"), 0);
    EXPECT_FALSE(lockPresent(browser.window()));
}

TEST_F(HelpRemote, ALockHeldForeverEndsAtTheWaitLimit)
{
    private_WWHelp_Platform_SetWaitLimit(400);
    ASSERT_TRUE(browser.start(log, {"--hold-lock", "60000"}));
    WWHelp_BrowserInfo info = remoteRecord();
    EXPECT_EQ(WWHelp_Platform_SendURL(&info, "File:///c", 9), -1);
    EXPECT_TRUE(lockPresent(browser.window())) << "the holder keeps its lock";
    for (const std::string& line : readLines(log))
        EXPECT_EQ(line.rfind("command", 0), std::string::npos) << "no command without the lock: " << line;
}

TEST_F(HelpRemote, AWindowThatDiesWhileWeWaitForTheLockEndsTheWait)
{
    // The wait limit is far beyond the harness's patience: only the
    // window's DestroyNotify can end this wait in time.
    private_WWHelp_Platform_SetWaitLimit(120000);
    ASSERT_TRUE(browser.start(log, {"--hold-lock", "60000", "--die", "300"}));
    WWHelp_BrowserInfo info = remoteRecord();
    auto send = std::async(std::launch::async, [&info] { return WWHelp_Platform_SendURL(&info, "File:///d", 9); });
    ASSERT_EQ(send.wait_for(std::chrono::seconds(30)), std::future_status::ready)
        << "the wait did not end with the window";
    EXPECT_EQ(send.get(), -1);
    EXPECT_TRUE(waitForLine(log, "destroyed"));
}
