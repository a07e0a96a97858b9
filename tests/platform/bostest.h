/*
 * Helpers shared by the file-layer tests: a variable set for one scope, a
 * private temporary directory removed afterwards, and a fixture that gives
 * the thread an error list and the library's English catalog.
 */
#ifndef HNSYB_TESTS_PLATFORM_BOSTEST_H
#define HNSYB_TESTS_PLATFORM_BOSTEST_H

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include "core/errorlist.h"
#include "platform/catalog.h"
#include "support/subprocess.h"

// Sets (or, with null, removes) a variable until the end of the scope.
struct ScopedEnv {
    std::string name;
    std::string old;
    bool had;
    ScopedEnv(const char* n, const char* value) : name(n)
    {
        const char* o = std::getenv(n);
        had = o != nullptr;
        old = had ? o : "";
        if (value != nullptr)
            setenv(n, value, 1);
        else
            unsetenv(n);
    }
    ~ScopedEnv()
    {
        if (had)
            setenv(name.c_str(), old.c_str(), 1);
        else
            unsetenv(name.c_str());
    }
    ScopedEnv(const ScopedEnv&) = delete;
    ScopedEnv& operator=(const ScopedEnv&) = delete;
};

struct TempDir {
    std::string path;
    TempDir()
    {
        char tmpl[] = "/tmp/hnsyb-files-XXXXXX";
        path = mkdtemp(tmpl);
    }
    ~TempDir() { runProgram({"/bin/rm", "-rf", path}); }
    std::string operator/(const std::string& name) const { return path + "/" + name; }
    void write(const std::string& name, const std::string& text) const
    {
        std::ofstream(path + "/" + name) << text;
    }
};

// What another process (python3 with fcntl.lockf) gets when it asks,
// without waiting, for each lock of `probes` on `path`, one after another
// and each released before the next: "ok" or "busy" per probe.
struct LockProbe {
    long long offset;
    long long length;
    bool exclusive;
};
inline std::vector<std::string> lockProbes(const std::string& path, const std::vector<LockProbe>& probes)
{
    const char* script =
        "import fcntl,sys\n"
        "f=open(sys.argv[1],'r+')\n"
        "for p in sys.argv[2:]:\n"
        "    o,l,x=p.split(':')\n"
        "    op=(fcntl.LOCK_EX if x=='x' else fcntl.LOCK_SH)|fcntl.LOCK_NB\n"
        "    try:\n"
        "        fcntl.lockf(f,op,int(l),int(o),0); print('ok')\n"
        "        fcntl.lockf(f,fcntl.LOCK_UN,int(l),int(o),0)\n"
        "    except OSError: print('busy')\n";
    std::vector<std::string> argv{"python3", "-c", script, path};
    for (const LockProbe& p : probes)
        argv.push_back(std::to_string(p.offset) + ":" + std::to_string(p.length) + ":" + (p.exclusive ? "x" : "s"));
    RunResult r = runProgram(argv);
    std::vector<std::string> answers;
    size_t start = 0;
    for (size_t end; (end = r.output.find('\n', start)) != std::string::npos; start = end + 1)
        answers.push_back(r.output.substr(start, end - start));
    return answers;
}

// The thread's error list, and the library's catalog so that error texts
// can be read.
class WithErrors : public ::testing::Test {
protected:
    void SetUp() override
    {
        bosSetInstallDir(HNSYB_BINARY_DIR);
        bosLoadResourceDLL("uxutl24", 0, nullptr, &uses_);
        ZuErrorKeeper::setErrorList(&list);
    }
    void TearDown() override
    {
        ZuErrorKeeper::giveUpErrorList();
        bosFreeResourceDLL(0, &uses_);
    }
    // Number and text of the last error; 0 and "" when there is none.
    unsigned lastNumber() { return list.getLastError() != nullptr ? list.getLastError()->getErrorNumber() : 0; }
    std::string lastText()
    {
        ZuError* e = list.getLastError();
        return e != nullptr && e->getErrorText() != nullptr ? e->getErrorText() : "";
    }
    void clear()
    {
        while (ZuError* e = list.removeFirstError())
            if (!e->isStatic())
                delete e;
    }
    ZuErrorList list{nullptr, 1};

private:
    int uses_ = 0;
};

// A forked child that holds a write lock on [start, start + length) of the
// file until release() or destruction; holding() says whether it got it.
class LockingChild {
public:
    LockingChild(const std::string& path, off_t start, off_t length)
    {
        if (pipe(ready_) != 0 || pipe(done_) != 0)
            return;
        child_ = fork();
        if (child_ == 0) {
            int fd = open(path.c_str(), O_RDWR);
            struct flock lk {};
            lk.l_type = F_WRLCK;
            lk.l_whence = SEEK_SET;
            lk.l_start = start;
            lk.l_len = length;
            char c = fcntl(fd, F_SETLK, &lk) == 0 ? 'y' : 'n';
            (void)!write(ready_[1], &c, 1);
            (void)!read(done_[0], &c, 1);
            _exit(0);
        }
        char c = 0;
        holding_ = child_ > 0 && read(ready_[0], &c, 1) == 1 && c == 'y';
    }
    ~LockingChild() { release(); }
    LockingChild(const LockingChild&) = delete;
    LockingChild& operator=(const LockingChild&) = delete;

    bool holding() const { return holding_; }
    // Ends the child, and with it its lock.
    void release()
    {
        if (child_ > 0) {
            (void)!write(done_[1], "x", 1);
            int status = 0;
            waitpid(child_, &status, 0);
            child_ = -1;
        }
        for (int& fd : {std::ref(ready_[0]), std::ref(ready_[1]), std::ref(done_[0]), std::ref(done_[1])})
            if (fd >= 0) {
                close(fd);
                fd = -1;
            }
    }

private:
    int ready_[2] = {-1, -1};
    int done_[2] = {-1, -1};
    pid_t child_ = -1;
    bool holding_ = false;
};

#endif
