#include "xvfb.h"

#include <X11/Xlib.h>
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <memory>
#include <thread>

#include "subprocess.h"

extern char** environ;

bool XvfbServer::start(int timeoutMs)
{
    int fds[2];
    if (pipe2(fds, O_CLOEXEC) != 0) {
        error_ = "pipe failed";
        return false;
    }
    // The write end goes to the child as descriptor 3, without close-on-exec.
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, fds[1], 3);
    posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
    const char* argv[] = {"Xvfb", "-displayfd", "3", "-screen", "0", "1024x768x24",
                          "-nolisten", "tcp", "-noreset", nullptr};
    int rc = posix_spawnp(&pid_, "Xvfb", &actions, nullptr, const_cast<char**>(argv), environ);
    posix_spawn_file_actions_destroy(&actions);
    close(fds[1]);
    if (rc != 0) {
        close(fds[0]);
        pid_ = -1;
        error_ = "Xvfb could not be started (is it installed?)";
        return false;
    }

    // Xvfb writes the display number and a line feed once it is listening.
    std::string number;
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs);
    while (number.find('\n') == std::string::npos) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
            deadline - std::chrono::steady_clock::now()).count();
        if (left <= 0)
            break;
        pollfd p{fds[0], POLLIN, 0};
        if (poll(&p, 1, static_cast<int>(left)) <= 0)
            break;
        char buf[32];
        ssize_t n = read(fds[0], buf, sizeof buf);
        if (n <= 0)
            break;
        number.append(buf, static_cast<size_t>(n));
    }
    close(fds[0]);
    if (number.find('\n') == std::string::npos) {
        error_ = "Xvfb did not report a display in time";
        stop();
        return false;
    }
    display_ = ":" + number.substr(0, number.find('\n'));

    // Make sure a client can really connect before tests run.
    while (std::chrono::steady_clock::now() < deadline) {
        if (Display* d = XOpenDisplay(display_.c_str())) {
            XCloseDisplay(d);
            return true;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    error_ = "Xvfb on " + display_ + " accepted no connection in time";
    stop();
    return false;
}

void XvfbServer::stop()
{
    if (pid_ > 0) {
        stopChild(pid_, 3000);
        pid_ = -1;
    }
    display_.clear();
}

namespace {
std::unique_ptr<XvfbServer> gSuiteServer;
std::string gSavedDisplay;
bool gHadDisplay = false;
}  // namespace

void GuiTest::SetUpTestSuite()
{
    gSuiteServer = std::make_unique<XvfbServer>();
    if (!gSuiteServer->start())
        return;  // SetUp reports the failure in each test
    const char* old = std::getenv("DISPLAY");
    gHadDisplay = old != nullptr;
    gSavedDisplay = old != nullptr ? old : "";
    setenv("DISPLAY", gSuiteServer->display().c_str(), 1);
}

void GuiTest::TearDownTestSuite()
{
    if (gHadDisplay)
        setenv("DISPLAY", gSavedDisplay.c_str(), 1);
    else
        unsetenv("DISPLAY");
    gSuiteServer.reset();
}

void GuiTest::SetUp()
{
    ASSERT_TRUE(gSuiteServer && !gSuiteServer->display().empty())
        << "no X server: " << (gSuiteServer ? gSuiteServer->error() : std::string("not started"));
}

const std::string& GuiTest::display() { return gSuiteServer->display(); }
