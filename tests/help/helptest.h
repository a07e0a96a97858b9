/*
 * Helpers of the help tests: a scratch directory, browser stand-ins on a
 * private PATH, the X test browser as a child process, and waiting for a
 * log to fill.  Every wait has a time-out; every child is stopped and reaped.
 */
#ifndef HNSYB_TESTS_HELP_HELPTEST_H
#define HNSYB_TESTS_HELP_HELPTEST_H

#include <sys/types.h>

#include <string>
#include <vector>

// A fresh directory under /tmp, removed with its contents at the end.
class ScratchDir {
public:
    ScratchDir();
    ~ScratchDir();
    ScratchDir(const ScratchDir&) = delete;
    ScratchDir& operator=(const ScratchDir&) = delete;
    const std::string& path() const { return path_; }
    std::string file(const std::string& name) const { return path_ + "/" + name; }

private:
    std::string path_;
};

// Sets (or, with a null value, removes) a variable, and puts it back.
class EnvGuard {
public:
    EnvGuard(const char* name, const char* value);
    ~EnvGuard();
    EnvGuard(const EnvGuard&) = delete;
    EnvGuard& operator=(const EnvGuard&) = delete;

private:
    std::string name_;
    std::string old_;
    bool had_;
};

void writeFile(const std::string& path, const std::string& text, int mode = 0644);

// A browser program for PATH: it appends "remote" to `log` when asked with
// "-remote" (and, when rejectRemote, complains on standard error), else its
// arguments on one line.
void writeLauncher(const std::string& path, const std::string& log, bool rejectRemote = false);

std::vector<std::string> readLines(const std::string& path);
// Waits until `path` holds the line `text`; false after the time-out.
bool waitForLine(const std::string& path, const std::string& text, int timeoutMs = 10000);

// The X test browser (testbrowser.cpp) on the display of DISPLAY.
class TestBrowser {
public:
    TestBrowser() = default;
    ~TestBrowser() { stop(); }
    TestBrowser(const TestBrowser&) = delete;
    TestBrowser& operator=(const TestBrowser&) = delete;
    // Starts it with --log `log` and the options; true once its window is up.
    bool start(const std::string& log, const std::vector<std::string>& options = {});
    void stop();
    unsigned long window() const { return window_; }

private:
    pid_t pid_ = -1;
    unsigned long window_ = 0;
};

#endif
