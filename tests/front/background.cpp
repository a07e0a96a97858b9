#include "background.h"

#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <time.h>

#include <cstdlib>

#include "support/subprocess.h"

extern char** environ;

Background::Background(const std::vector<std::string>& argv)
{
    std::vector<char*> args;
    for (const std::string& arg : argv)
        args.push_back(const_cast<char*>(arg.c_str()));
    args.push_back(nullptr);
    if (posix_spawnp(&pid_, args[0], nullptr, nullptr, args.data(), environ) != 0)
        pid_ = -1;
}

Background::~Background()
{
    if (pid_ > 0)
        stopChild(pid_, 2000);
}

bool Background::running()
{
    if (pid_ <= 0)
        return false;
    return waitpid(pid_, nullptr, WNOHANG) == 0;
}

int Background::wait(int timeoutMs)
{
    if (pid_ <= 0)
        return -1;
    for (int waited = 0; waited <= timeoutMs; waited += 20) {
        int status = 0;
        if (waitpid(pid_, &status, WNOHANG) == pid_) {
            pid_ = -1;
            return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
        }
        struct timespec pause = {0, 20 * 1000 * 1000};
        nanosleep(&pause, nullptr);
    }
    stopChild(pid_, 2000);
    pid_ = -1;
    return -1;
}

std::string xdotool(const std::vector<std::string>& args, int timeoutMs)
{
    std::vector<std::string> argv = {"timeout", std::to_string(timeoutMs / 1000 + 1), "xdotool"};
    argv.insert(argv.end(), args.begin(), args.end());
    RunResult run = runProgram(argv, timeoutMs + 5000);
    if (run.exitCode != 0)
        return {};
    std::string out = run.output;
    while (!out.empty() && (out.back() == '\n' || out.back() == ' '))
        out.pop_back();
    return out;
}

int windowColours(const std::string& window, const std::string& pngPath)
{
    if (runProgram({"/usr/bin/import", "-window", window, pngPath}, 30000).exitCode != 0)
        return 0;
    RunResult count = runProgram({"/usr/bin/identify", "-format", "%k", pngPath}, 30000);
    return count.exitCode == 0 ? std::atoi(count.output.c_str()) : 0;
}
