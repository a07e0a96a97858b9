/*
 * A private X server for GUI tests.
 *
 * XvfbServer starts Xvfb on a display number that the server itself picks
 * free (-displayfd), listening on the local socket only, and stops it (TERM,
 * then KILL after a grace period) when destroyed.  Every wait has a time-out.
 *
 * GuiTest is the fixture for tests that need a display: one server per test
 * suite, with DISPLAY pointing at it while the suite runs.
 */
#ifndef HNSYB_TESTS_XVFB_H
#define HNSYB_TESTS_XVFB_H

#include <gtest/gtest.h>
#include <sys/types.h>

#include <string>

class XvfbServer {
public:
    XvfbServer() = default;
    ~XvfbServer() { stop(); }
    XvfbServer(const XvfbServer&) = delete;
    XvfbServer& operator=(const XvfbServer&) = delete;

    // Starts the server and waits until it accepts a connection; false with a
    // reason in error() when it did not come up within the time-out.
    bool start(int timeoutMs = 15000);
    void stop();
    const std::string& display() const { return display_; }
    const std::string& error() const { return error_; }

private:
    pid_t pid_ = -1;
    std::string display_;
    std::string error_;
};

class GuiTest : public ::testing::Test {
protected:
    static void SetUpTestSuite();
    static void TearDownTestSuite();
    void SetUp() override;
    static const std::string& display();
};

#endif
