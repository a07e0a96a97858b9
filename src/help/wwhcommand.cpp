// Running a browser as a child process.
//
// The child gets standard output on /dev/null and standard error on a
// temporary file made by mkstemp; it is that very file (its descriptor),
// never a name opened again, that the child writes and the parent measures.
// Everything the child needs is prepared before fork, so that between fork
// and exec it only calls dup2, sigprocmask, signal, execvp and _exit: the
// process may have other threads, and the child must never run the caller's
// exit handlers or flush the caller's stdio buffers.
//
// With wait set, the parent reaps the child within the wait limit (killing
// it after that).  Without, the child forks the browser and ends at once, so
// that the browser belongs to init and no zombie stays behind.
#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstring>
#include <thread>

#include "wwhplatform.h"
#include "wwhwait_impl.h"

namespace {

constexpr int kMaxArguments = 32;

[[noreturn]] void runInChild(const char* program, char* const* argv, int nullFd, int errorFd)
{
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    // A host that ignores SIGPIPE should not pass that on to the browser.
    signal(SIGPIPE, SIG_DFL);
    if (dup2(nullFd, STDOUT_FILENO) < 0 || dup2(errorFd, STDERR_FILENO) < 0)
        _exit(255);
    execvp(program, argv);
    _exit(255);
}

// Reaps `pid` within the wait limit; its wait status, or -1 when it did not
// end in time (it is killed and reaped then) or cannot be waited for.
int reap(pid_t pid)
{
    const auto end = wwhelp::deadline();
    int pause = 1;
    for (;;) {
        int status = 0;
        const pid_t r = waitpid(pid, &status, WNOHANG);
        if (r == pid)
            return status;
        if (r < 0 && errno != EINTR)
            return -1;
        if (wwhelp::millisecondsLeft(end) == 0) {
            kill(pid, SIGKILL);
            while (waitpid(pid, &status, 0) < 0 && errno == EINTR) {
            }
            return -1;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(pause));
        if (pause < 50)
            pause *= 2;
    }
}

}  // namespace

int private_WWHelp_Platform_Command(int wait, const char* program, ...)
{
    if (program == nullptr)
        return -1;
    char* argv[kMaxArguments + 2];
    int argc = 0;
    argv[argc++] = const_cast<char*>(program);
    va_list args;
    va_start(args, program);
    for (const char* arg = va_arg(args, const char*); arg != nullptr; arg = va_arg(args, const char*)) {
        if (argc > kMaxArguments) {
            va_end(args);
            return -1;
        }
        argv[argc++] = const_cast<char*>(arg);
    }
    va_end(args);
    argv[argc] = nullptr;

    char tempName[] = "/tmp/wwhapiXXXXXX";
    const int errorFd = mkostemp(tempName, O_CLOEXEC);
    if (errorFd < 0)
        return -1;
    const int nullFd = open("/dev/null", O_WRONLY | O_CLOEXEC);
    if (nullFd < 0) {
        close(errorFd);
        unlink(tempName);
        return -1;
    }
    // Without wait nobody reads the file: it goes from the directory now and
    // from the disk when the browser ends.
    if (!wait)
        unlink(tempName);

    const pid_t pid = fork();
    if (pid == 0) {
        if (!wait) {
            const pid_t browser = fork();
            if (browser == 0)
                runInChild(program, argv, nullFd, errorFd);
            _exit(browser < 0 ? 255 : 0);
        }
        runInChild(program, argv, nullFd, errorFd);
    }
    close(nullFd);
    int result = -1;
    if (pid > 0) {
        const int status = reap(pid);
        const bool exitedWell = status != -1 && WIFEXITED(status) && WEXITSTATUS(status) == 0;
        if (!wait) {
            result = exitedWell ? 0 : -1;
        } else {
            // A browser that complains on standard error has failed, even
            // with exit status 0.
            struct stat written {};
            if (exitedWell && fstat(errorFd, &written) == 0 && written.st_size == 0)
                result = 0;
        }
    }
    close(errorFd);
    if (wait)
        unlink(tempName);
    return result;
}
