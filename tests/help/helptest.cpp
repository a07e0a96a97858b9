#include "helptest.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <thread>

#include "support/subprocess.h"

extern char** environ;

ScratchDir::ScratchDir()
{
    char name[] = "/tmp/hnsyb-help-XXXXXX";
    if (mkdtemp(name) != nullptr)
        path_ = name;
}

ScratchDir::~ScratchDir()
{
    if (!path_.empty()) {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
}

EnvGuard::EnvGuard(const char* name, const char* value) : name_(name)
{
    const char* old = std::getenv(name);
    had_ = old != nullptr;
    if (had_)
        old_ = old;
    if (value != nullptr)
        setenv(name, value, 1);
    else
        unsetenv(name);
}

EnvGuard::~EnvGuard()
{
    if (had_)
        setenv(name_.c_str(), old_.c_str(), 1);
    else
        unsetenv(name_.c_str());
}

void writeFile(const std::string& path, const std::string& text, int mode)
{
    std::ofstream(path, std::ios::binary | std::ios::trunc) << text;
    chmod(path.c_str(), static_cast<mode_t>(mode));
}

void writeLauncher(const std::string& path, const std::string& log, bool rejectRemote)
{
    std::string script = "#!/bin/sh\n"
                         "if [ \"$1\" = \"-remote\" ]; then\n"
                         "  echo remote >> '" + log + "'\n";
    if (rejectRemote)
        script += "  echo \"unknown option -remote\" >&2\n";
    script += "  exit 0\n"
              "fi\n"
              "echo \"$*\" >> '" + log + "'\n";
    writeFile(path, script, 0755);
}

std::vector<std::string> readLines(const std::string& path)
{
    std::vector<std::string> lines;
    std::ifstream in(path);
    for (std::string line; std::getline(in, line);)
        lines.push_back(line);
    return lines;
}

bool waitForLine(const std::string& path, const std::string& text, int timeoutMs)
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs);
    for (;;) {
        for (const std::string& line : readLines(path))
            if (line == text)
                return true;
        if (std::chrono::steady_clock::now() >= end)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
}

bool TestBrowser::start(const std::string& log, const std::vector<std::string>& options)
{
    int fds[2];
    if (pipe2(fds, O_CLOEXEC) != 0)
        return false;
    std::vector<std::string> args{HNSYB_TESTBROWSER, "--log", log};
    args.insert(args.end(), options.begin(), options.end());
    std::vector<char*> argv;
    for (std::string& a : args)
        argv.push_back(a.data());
    argv.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, fds[1], 1);
    const int rc = posix_spawn(&pid_, argv[0], &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    close(fds[1]);
    if (rc != 0) {
        pid_ = -1;
        close(fds[0]);
        return false;
    }
    // "ready <window>" once the window carries its properties.
    std::string line;
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (line.find('\n') == std::string::npos && std::chrono::steady_clock::now() < end) {
        pollfd p{fds[0], POLLIN, 0};
        if (poll(&p, 1, 100) <= 0)
            continue;
        char buf[64];
        const ssize_t n = read(fds[0], buf, sizeof buf);
        if (n <= 0)
            break;
        line.append(buf, static_cast<size_t>(n));
    }
    close(fds[0]);
    if (line.rfind("ready ", 0) != 0) {
        stop();
        return false;
    }
    window_ = std::strtoul(line.c_str() + 6, nullptr, 10);
    return true;
}

void TestBrowser::stop()
{
    if (pid_ > 0)
        stopChild(pid_, 3000);
    pid_ = -1;
}
