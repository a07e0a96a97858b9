// Profile reads and writes: the library's cache against unixODBC's installer
// library, in the same run, over a 60 KB file of 50 sections.
//
// unixODBC keeps each value it looked up for about 20 seconds, keyed by file,
// section, entry and default.  Its warm figure is that result cache; its cold
// figure is a full parse of the file, as after a change.  For the cold runs
// this program moves unixODBC's clock on: `time` is defined here and exported
// from the executable, so the installer library's calls bind to it, and while
// gClockJumps is set every call returns a time 30 seconds later than the last,
// which expires each kept value before it can be used again.
//
// The library's cached read checks the file's date and size at every call
// (one stat) and searches the raw text; it is measured as every caller sees
// it, and once more with the file's date changed before each read, which
// makes it load the file again.
//
// Before the benchmarks a freshness check runs: another process rewrites a
// value (same length, same second) and both readers are asked again.
#include <benchmark/benchmark.h>
#include <odbcinst.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>

#include "profile/profile.h"

namespace {
std::atomic<bool> gClockJumps{false};
std::atomic<long> gClockOffset{0};

std::string gDir;
std::string gReadFile;   // read by both, never written
std::string gOursWrite;  // written by the library
std::string gTheirsWrite;  // written by unixODBC

std::string makeProfile()
{
    std::string text;
    char line[128];
    for (int s = 0; s < 50; ++s) {
        std::snprintf(line, sizeof line, "[Section%02d]\n", s);
        text += line;
        for (int k = 0; k < 25; ++k) {
            std::snprintf(line, sizeof line, "Key%02d=value of key %02d in section %02d, padding\n", k, k, s);
            text += line;
        }
    }
    return text;
}

void writeFile(const std::string& path, const std::string& text)
{
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out << text;
}

void setUp()
{
    char pattern[] = "/tmp/hnsyb-bench-profile-XXXXXX";
    if (mkdtemp(pattern) == nullptr)
        std::abort();
    gDir = pattern;
    // Both families of variables point into the private folder.
    setenv("HOME", gDir.c_str(), 1);
    setenv("ODBCSYSINI", gDir.c_str(), 1);
    setenv("ODBCINI", (gDir + "/odbc.ini").c_str(), 1);
    setenv("ODBCINST", (gDir + "/odbcinst.ini").c_str(), 1);
    writeFile(gDir + "/odbc.ini", "");
    writeFile(gDir + "/odbcinst.ini", "");
    const std::string text = makeProfile();
    gReadFile = gDir + "/read.ini";
    gOursWrite = gDir + "/ours.ini";
    gTheirsWrite = gDir + "/theirs.ini";
    writeFile(gReadFile, text);
    writeFile(gOursWrite, text);
    writeFile(gTheirsWrite, text);
}

struct Lookup {
    const char* section;
    const char* entry;
};
const Lookup kFirst{"Section00", "Key12"};
const Lookup kLast{"Section49", "Key12"};
const Lookup kMissing{"Section49", "NoSuchKey"};

void BM_Ours(benchmark::State& state, Lookup lookup)
{
    char value[256];
    for (auto _ : state) {
        benchmark::DoNotOptimize(
            zuGetProfileString(lookup.section, lookup.entry, "", value, sizeof value, gReadFile.c_str()));
    }
}

// The library again, with the file's date moved before each read: a reload
// of the whole file every time.
void BM_OursReload(benchmark::State& state, Lookup lookup)
{
    char value[256];
    long second = 1000000;
    for (auto _ : state) {
        state.PauseTiming();
        struct timeval times[2] = {{++second, 0}, {second, 0}};
        utimes(gReadFile.c_str(), times);
        state.ResumeTiming();
        benchmark::DoNotOptimize(
            zuGetProfileString(lookup.section, lookup.entry, "", value, sizeof value, gReadFile.c_str()));
    }
}

void BM_UnixOdbcWarm(benchmark::State& state, Lookup lookup)
{
    char value[256];
    for (auto _ : state) {
        benchmark::DoNotOptimize(
            SQLGetPrivateProfileString(lookup.section, lookup.entry, "", value, sizeof value, gReadFile.c_str()));
    }
}

void BM_UnixOdbcCold(benchmark::State& state, Lookup lookup)
{
    char value[256];
    gClockJumps = true;
    for (auto _ : state) {
        benchmark::DoNotOptimize(
            SQLGetPrivateProfileString(lookup.section, lookup.entry, "", value, sizeof value, gReadFile.c_str()));
    }
    gClockJumps = false;
}

void BM_OursWrite(benchmark::State& state)
{
    long n = 0;
    for (auto _ : state) {
        const char* value = (++n & 1) != 0 ? "first value" : "other value";
        if (zuWriteProfileString("Section25", "Key12", value, gOursWrite.c_str()) != 1)
            state.SkipWithError("write failed");
    }
}

void BM_UnixOdbcWrite(benchmark::State& state)
{
    long n = 0;
    for (auto _ : state) {
        const char* value = (++n & 1) != 0 ? "first value" : "other value";
        if (!SQLWritePrivateProfileString("Section25", "Key12", value, gTheirsWrite.c_str()))
            state.SkipWithError("write failed");
    }
}

BENCHMARK_CAPTURE(BM_Ours, first_section, kFirst);
BENCHMARK_CAPTURE(BM_Ours, last_section, kLast);
BENCHMARK_CAPTURE(BM_Ours, missing_key, kMissing);
BENCHMARK_CAPTURE(BM_UnixOdbcWarm, first_section, kFirst);
BENCHMARK_CAPTURE(BM_UnixOdbcWarm, last_section, kLast);
BENCHMARK_CAPTURE(BM_UnixOdbcWarm, missing_key, kMissing);
BENCHMARK_CAPTURE(BM_UnixOdbcCold, first_section, kFirst);
BENCHMARK_CAPTURE(BM_UnixOdbcCold, last_section, kLast);
BENCHMARK_CAPTURE(BM_UnixOdbcCold, missing_key, kMissing);
BENCHMARK_CAPTURE(BM_OursReload, first_section, kFirst);
BENCHMARK_CAPTURE(BM_OursReload, last_section, kLast);
BENCHMARK(BM_OursWrite);
BENCHMARK(BM_UnixOdbcWrite);

// Another process rewrites a value at equal length within the same second;
// each reader is asked before and after.
bool freshness()
{
    const std::string path = gDir + "/fresh.ini";
    writeFile(path, makeProfile());
    char ours[256];
    char theirs[256];
    zuGetProfileString("Section30", "Key05", "", ours, sizeof ours, path.c_str());
    SQLGetPrivateProfileString("Section30", "Key05", "", theirs, sizeof theirs, path.c_str());
    const std::string before = ours;
    const pid_t pid = fork();
    if (pid == 0)
        _exit(zuWritePrivateProfileString("Section30", "Key05", "VALUE OF KEY 05 IN SECTION 30, PADDING",
                                          path.c_str()) == 1 ? 0 : 1);
    int status = 0;
    waitpid(pid, &status, 0);
    zuGetProfileString("Section30", "Key05", "", ours, sizeof ours, path.c_str());
    SQLGetPrivateProfileString("Section30", "Key05", "", theirs, sizeof theirs, path.c_str());
    const bool oursFresh = std::strcmp(ours, "VALUE OF KEY 05 IN SECTION 30, PADDING") == 0;
    const bool theirsFresh = std::strcmp(theirs, "VALUE OF KEY 05 IN SECTION 30, PADDING") == 0;
    std::printf("Freshness after another process's equal-length change: library %s (\"%s\"), unixODBC %s (\"%s\")\n",
                oursFresh ? "sees it" : "MISSES IT", ours, theirsFresh ? "sees it" : "answers the old value",
                theirs);
    return oursFresh && before != ours;
}

// Keeps each benchmark's real time per iteration, for the ratios.
class RatioReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override
    {
        for (const Run& run : runs)
            if (run.run_type == Run::RT_Iteration && run.iterations > 0)
                times[run.benchmark_name()] = {run.GetAdjustedRealTime(), run.GetAdjustedCPUTime()};
        ConsoleReporter::ReportRuns(runs);
    }
    struct Times {
        double real;
        double cpu;
    };
    std::map<std::string, Times> times;
};
}  // namespace

// unixODBC's clock (see the head of this file).
extern "C" __attribute__((visibility("default"))) time_t time(time_t* out)
{
    struct timespec now;
    clock_gettime(CLOCK_REALTIME, &now);
    time_t t = now.tv_sec;
    if (gClockJumps.load(std::memory_order_relaxed))
        t += gClockOffset.fetch_add(30, std::memory_order_relaxed) + 30;
    if (out != nullptr)
        *out = t;
    return t;
}

int main(int argc, char** argv)
{
    setUp();
    const bool fresh = freshness();
    benchmark::Initialize(&argc, argv);
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    std::printf("\nRatios (unixODBC time / library cached read time), by real and by CPU time:\n");
    for (const char* which : {"first_section", "last_section", "missing_key"}) {
        const auto ours = reporter.times.find(std::string("BM_Ours/") + which);
        const auto cold = reporter.times.find(std::string("BM_UnixOdbcCold/") + which);
        const auto warm = reporter.times.find(std::string("BM_UnixOdbcWarm/") + which);
        if (ours == reporter.times.end() || cold == reporter.times.end() || warm == reporter.times.end())
            continue;
        std::printf("  %-14s cold %8.1fx (cpu %8.1fx)   warm %6.3fx (cpu %6.3fx)\n", which,
                    cold->second.real / ours->second.real, cold->second.cpu / ours->second.cpu,
                    warm->second.real / ours->second.real, warm->second.cpu / ours->second.cpu);
    }
    benchmark::Shutdown();
    std::error_code ignored;
    std::filesystem::remove_all(gDir, ignored);
    return fresh ? 0 : 1;
}
