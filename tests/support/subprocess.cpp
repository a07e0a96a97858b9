#include "subprocess.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <thread>

extern char** environ;

namespace {
bool waitFor(pid_t pid, int* status, int timeoutMs)
{
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs);
    for (;;) {
        pid_t r = waitpid(pid, status, WNOHANG);
        if (r == pid || r < 0)
            return true;
        if (std::chrono::steady_clock::now() >= deadline)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
}
}  // namespace

void stopChild(pid_t pid, int graceMs)
{
    int status = 0;
    kill(pid, SIGTERM);
    if (!waitFor(pid, &status, graceMs)) {
        kill(pid, SIGKILL);
        waitpid(pid, &status, 0);
    }
}

RunResult runProgram(const std::vector<std::string>& args, int timeoutMs)
{
    RunResult result;
    int fds[2];
    if (args.empty() || pipe2(fds, O_CLOEXEC) != 0)
        return result;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, fds[1], 1);
    posix_spawn_file_actions_adddup2(&actions, fds[1], 2);
    posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
    std::vector<char*> argv;
    for (const std::string& a : args)
        argv.push_back(const_cast<char*>(a.c_str()));
    argv.push_back(nullptr);
    pid_t pid = -1;
    int rc = posix_spawnp(&pid, argv[0], &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    close(fds[1]);
    if (rc != 0) {
        close(fds[0]);
        result.output = "cannot start " + args[0];
        return result;
    }
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs);
    for (;;) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
            deadline - std::chrono::steady_clock::now()).count();
        if (left <= 0) {
            result.timedOut = true;
            break;
        }
        pollfd p{fds[0], POLLIN, 0};
        if (poll(&p, 1, static_cast<int>(left)) <= 0) {
            result.timedOut = true;
            break;
        }
        char buf[4096];
        ssize_t n = read(fds[0], buf, sizeof buf);
        if (n <= 0)
            break;
        result.output.append(buf, static_cast<size_t>(n));
    }
    close(fds[0]);
    if (result.timedOut) {
        stopChild(pid, 1000);
        return result;
    }
    int status = 0;
    waitpid(pid, &status, 0);
    if (WIFEXITED(status))
        result.exitCode = WEXITSTATUS(status);
    return result;
}
