// Time from the entry call to the data source dialog's first Expose, under a
// private Xvfb, against a bare Motif notebook dialog of the same size
// (525 x 505, nine empty tabs, the same template dialog kind) built in the
// same run and the same process.
//
//   BM_DataSourceDialog: what ConfigDSN does for a configure request with a
//     window: the data source's keys read through unixODBC's installer, the
//     dialog library reached by its name rule, every tab built, filled and
//     shown, until the first Expose reaches the client; then Cancel.
//   BM_BareNotebookDialog: a template dialog with a notebook of nine empty
//     Form pages on an application shell, managed, until its first Expose.
//
// Warm (BM_BareNotebookDialog, BM_DataSourceDialog): both run in this
// process on an already open display connection (one per side, opened once
// before timing), so connection set-up and font loading are not counted.
//
// Fresh (the same names ending in Fresh): every dialog in a new process,
// spawned from here (bench_dialog_bare_child, a program linked with the
// toolkit alone, and bench_dialog_child, linked like hnsyb-setup), timed from just before the spawn
// to the first Expose: for the bare dialog process start, display opened,
// dialog shown; for ours process start, the entry call (keys read, display
// opened by the front end), dialog shown.  This is what a user waits for
// when an administrator or hnsyb-setup starts.
//
// Manual time per iteration; the dialog's Cancel and the bare dialog's
// destruction fall outside it.  round_trips counts the requests that waited
// for the X server's answer (xreply_counter.h).  The medians and the ratios
// of the medians are printed at the end.
#include <benchmark/benchmark.h>

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <vector>

#include "dialog_startup_common.h"
#include "dialoghost.h"
#include "installer.h"
#include "xreply_counter.h"

extern char** environ;

namespace {

using hnsyb_bench::Clock;

// --- A private X server for the run -------------------------------------

pid_t xvfbPid = -1;

// Picks a display number that no lock file or socket claims, starts Xvfb
// there and waits (bounded) until it accepts a connection; a server that
// dies (another one won the number) makes the next number be tried.
bool startXvfb()
{
    for (int number = 140; number < 200; ++number) {
        char lock[64], socket[64], display[16];
        std::snprintf(lock, sizeof lock, "/tmp/.X%d-lock", number);
        std::snprintf(socket, sizeof socket, "/tmp/.X11-unix/X%d", number);
        if (access(lock, F_OK) == 0 || access(socket, F_OK) == 0)
            continue;
        std::snprintf(display, sizeof display, ":%d", number);
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
        char* argv[] = {const_cast<char*>("Xvfb"), display,
                        const_cast<char*>("-screen"), const_cast<char*>("0"), const_cast<char*>("1024x768x24"),
                        const_cast<char*>("-nolisten"), const_cast<char*>("tcp"), const_cast<char*>("-noreset"),
                        nullptr};
        int rc = posix_spawnp(&xvfbPid, "Xvfb", &actions, nullptr, argv, environ);
        posix_spawn_file_actions_destroy(&actions);
        if (rc != 0)
            return false;
        for (int waited = 0; waited < 15000; waited += 50) {
            if (Display* probe = XOpenDisplay(display)) {
                XCloseDisplay(probe);
                setenv("DISPLAY", display, 1);
                return true;
            }
            if (waitpid(xvfbPid, nullptr, WNOHANG) == xvfbPid)
                break;
            usleep(50 * 1000);
        }
        kill(xvfbPid, SIGTERM);
        waitpid(xvfbPid, nullptr, 0);
        xvfbPid = -1;
    }
    return false;
}

// CPU time the X server has used so far, in seconds (its share of the work
// is reported beside each benchmark, since the wall time includes it).
double serverCpuSeconds()
{
    std::ifstream stat("/proc/" + std::to_string(xvfbPid) + "/stat");
    std::string field;
    double ticks = 0;
    // Fields 14 and 15 are user and system time in clock ticks.
    for (int i = 1; i <= 15 && stat >> field; ++i)
        if (i == 14 || i == 15)
            ticks += std::atof(field.c_str());
    return ticks / static_cast<double>(sysconf(_SC_CLK_TCK));
}

void stopXvfb()
{
    if (xvfbPid > 0) {
        kill(xvfbPid, SIGTERM);
        waitpid(xvfbPid, nullptr, 0);
    }
}

// --- A private ODBC configuration with one data source --------------------

std::string configFolder;
constexpr const char* kDriver = "HNSYB Bench";

bool writeConfiguration()
{
    char pattern[] = "/tmp/hnsyb-bench-XXXXXX";
    if (mkdtemp(pattern) == nullptr)
        return false;
    configFolder = pattern;
    std::ofstream(configFolder + "/odbcinst.ini")
        << "[ODBC Drivers]\n" << kDriver << " = Installed\n\n[" << kDriver << "]\n"
        << "Driver = /usr/lib/x86_64-linux-gnu/odbc/libsqlite3odbc.so\n";
    std::ofstream(configFolder + "/odbc.ini")
        << "[ODBC Data Sources]\nBench = " << kDriver << "\n\n[Bench]\nDescription = timed\n"
        << "NetworkAddress = localhost,5000\nDatabase = " << configFolder << "/bench.db\n";
    setenv("ODBCSYSINI", configFolder.c_str(), 1);
    setenv("ODBCINSTINI", "odbcinst.ini", 1);
    setenv("ODBCINI", (configFolder + "/odbc.ini").c_str(), 1);
    return true;
}

// --- Samples, for the medians and ratios printed at the end ---------------

std::map<std::string, std::vector<double>> samples;  // milliseconds by benchmark

double median(std::vector<double> values)
{
    if (values.empty())
        return 0;
    std::sort(values.begin(), values.end());
    const std::size_t middle = values.size() / 2;
    return values.size() % 2 != 0 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

// --- Warm: in this process, display connections already open --------------

// Share of the front end (environment, connection, parent shell) in the
// last dialog, in seconds: the time from the call to the parent's creation.
double frontShare = 0;

// One dialog, as ConfigDSN opens it for a configure request; the time from
// the call to the first Expose, or a negative value when it failed.
double showDataSourceDialog(std::string& error)
{
    Clock::time_point start = Clock::now();
    hnsybs::DialogRequest request;
    request.driver = kDriver;
    request.request = 2;
    request.dsn = "Bench";
    request.initial = hnsybs::currentDataSource("Bench");
    hnsybs::DialogHooks hooks;
    hooks.shellReady = hnsyb_bench::watchExposes;
    if (hnsybs::runDialog(request, error, &hooks) != 0 || !hnsyb_bench::probe.seen)
        return -1;
    frontShare = std::chrono::duration<double>(hnsyb_bench::probe.shellReady - start).count();
    return std::chrono::duration<double>(hnsyb_bench::probe.exposed - start).count();
}

void BM_DataSourceDialog(benchmark::State& state)
{
    double serverStart = serverCpuSeconds();
    double front = 0;
    unsigned long trips = 0;
    for (auto _ : state) {
        std::string error;
        const unsigned long tripsBefore = hnsyb_bench::roundTrips();
        double seconds = showDataSourceDialog(error);
        if (seconds < 0) {
            state.SkipWithError(error.empty() ? "the dialog was not exposed" : error.c_str());
            return;
        }
        trips += hnsyb_bench::roundTrips() - tripsBefore;
        state.SetIterationTime(seconds);
        samples["BM_DataSourceDialog"].push_back(seconds * 1000);
        front += frontShare;
    }
    state.counters["front_end_ms"] = benchmark::Counter(front * 1000, benchmark::Counter::kAvgIterations);
    state.counters["round_trips"] = benchmark::Counter(static_cast<double>(trips), benchmark::Counter::kAvgIterations);
    state.counters["server_cpu_ms"] =
        benchmark::Counter((serverCpuSeconds() - serverStart) * 1000, benchmark::Counter::kAvgIterations);
}

XtAppContext bareApp = nullptr;
Display* bareDisplay = nullptr;

double showBareDialog()
{
    Clock::time_point start = Clock::now();
    Clock::time_point exposed = hnsyb_bench::showBareDialog(bareApp, bareDisplay);
    return std::chrono::duration<double>(exposed - start).count();
}

void BM_BareNotebookDialog(benchmark::State& state)
{
    double serverStart = serverCpuSeconds();
    unsigned long trips = 0;
    for (auto _ : state) {
        const unsigned long tripsBefore = hnsyb_bench::roundTrips();
        const double seconds = showBareDialog();
        trips += hnsyb_bench::roundTrips() - tripsBefore;
        state.SetIterationTime(seconds);
        samples["BM_BareNotebookDialog"].push_back(seconds * 1000);
    }
    state.counters["round_trips"] = benchmark::Counter(static_cast<double>(trips), benchmark::Counter::kAvgIterations);
    state.counters["server_cpu_ms"] =
        benchmark::Counter((serverCpuSeconds() - serverStart) * 1000, benchmark::Counter::kAvgIterations);
}

// --- Fresh: a new process for every dialog ---------------------------------

struct ChildFigures {
    double mainMs = 0;     // process start to main (exec, dynamic loading)
    double entryMs = 0;    // process start to the entry call
    double exposedMs = 0;  // process start to the first Expose
    double trips = 0;      // round trips the child made in all
};

// Spawns the helper for one dialog and reads its figures; false (with the
// reason in `error`) when it failed.  The helper ends itself after 20 s.
bool runChild(const char* mode, ChildFigures& figures, std::string& error)
{
    int pipeEnds[2];
    if (pipe(pipeEnds) != 0) {
        error = "no pipe";
        return false;
    }
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, pipeEnds[1], 1);
    posix_spawn_file_actions_addclose(&actions, pipeEnds[0]);
    posix_spawn_file_actions_addclose(&actions, pipeEnds[1]);
    const long long start =
        std::chrono::duration_cast<std::chrono::nanoseconds>(Clock::now().time_since_epoch()).count();
    std::string startText = std::to_string(start);
    const char* program = std::strcmp(mode, "bare") == 0 ? HNSYB_BENCH_BARE_CHILD : HNSYB_BENCH_CHILD;
    char* argv[] = {const_cast<char*>(program), const_cast<char*>(mode), startText.data(),
                    const_cast<char*>(kDriver), const_cast<char*>("Bench"), nullptr};
    pid_t child = -1;
    const int rc = posix_spawn(&child, program, &actions, nullptr, argv, environ);
    posix_spawn_file_actions_destroy(&actions);
    close(pipeEnds[1]);
    std::string output;
    if (rc == 0) {
        char buffer[256];
        ssize_t got;
        while ((got = read(pipeEnds[0], buffer, sizeof buffer)) > 0)
            output.append(buffer, static_cast<std::size_t>(got));
    }
    close(pipeEnds[0]);
    int status = 0;
    if (rc != 0 || waitpid(child, &status, 0) != child || !WIFEXITED(status) || WEXITSTATUS(status) != 0) {
        error = std::string("the helper failed for ") + mode;
        return false;
    }
    long long mainNs = 0, entryNs = 0, exposedNs = 0;
    unsigned long trips = 0;
    if (std::sscanf(output.c_str(), "%lld %lld %lld %lu", &mainNs, &entryNs, &exposedNs, &trips) != 4) {
        error = "the helper printed no figures";
        return false;
    }
    figures = {mainNs / 1e6, entryNs / 1e6, exposedNs / 1e6, static_cast<double>(trips)};
    return true;
}

void freshDialogs(benchmark::State& state, const char* mode, const char* key)
{
    double serverStart = serverCpuSeconds();
    ChildFigures sum;
    for (auto _ : state) {
        ChildFigures figures;
        std::string error;
        if (!runChild(mode, figures, error)) {
            state.SkipWithError(error.c_str());
            return;
        }
        state.SetIterationTime(figures.exposedMs / 1000);
        samples[key].push_back(figures.exposedMs);
        sum.mainMs += figures.mainMs;
        sum.entryMs += figures.entryMs;
        sum.trips += figures.trips;
    }
    state.counters["to_main_ms"] = benchmark::Counter(sum.mainMs, benchmark::Counter::kAvgIterations);
    state.counters["to_entry_ms"] = benchmark::Counter(sum.entryMs, benchmark::Counter::kAvgIterations);
    state.counters["round_trips"] = benchmark::Counter(sum.trips, benchmark::Counter::kAvgIterations);
    state.counters["server_cpu_ms"] =
        benchmark::Counter((serverCpuSeconds() - serverStart) * 1000, benchmark::Counter::kAvgIterations);
}

void BM_BareNotebookDialogFresh(benchmark::State& state) { freshDialogs(state, "bare", "BM_BareNotebookDialogFresh"); }
void BM_DataSourceDialogFresh(benchmark::State& state) { freshDialogs(state, "dialog", "BM_DataSourceDialogFresh"); }

BENCHMARK(BM_BareNotebookDialog)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(30);
BENCHMARK(BM_DataSourceDialog)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(30);
BENCHMARK(BM_BareNotebookDialogFresh)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(30);
BENCHMARK(BM_DataSourceDialogFresh)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(30);

void printRatio(const char* what, const char* bare, const char* ours)
{
    const auto b = samples.find(bare);
    const auto o = samples.find(ours);
    if (b == samples.end() || o == samples.end() || b->second.empty() || o->second.empty())
        return;
    const double bareMedian = median(b->second);
    const double oursMedian = median(o->second);
    std::printf("  %-44s bare %6.2f ms, data source dialog %6.2f ms: %.2fx\n", what, bareMedian, oursMedian,
                oursMedian / bareMedian);
}

}  // namespace

int main(int argc, char** argv)
{
    if (!startXvfb()) {
        std::fprintf(stderr, "bench_dialog_startup: Xvfb did not start\n");
        return 1;
    }
    int status = 1;
    if (writeConfiguration()) {
        // Connections opened and warmed before timing on both sides; the
        // first dialog of each side, connection included, is reported too.
        Clock::time_point coldStart = Clock::now();
        XtToolkitInitialize();
        bareApp = XtCreateApplicationContext();
        int noArgs = 0;
        char* noArgv[] = {const_cast<char*>("bare"), nullptr};
        bareDisplay = XtOpenDisplay(bareApp, nullptr, "bare", "HnsybBare", nullptr, 0, &noArgs, noArgv);
        std::string error;
        double bareCold = 0, dialogCold = 0;
        if (bareDisplay != nullptr) {
            showBareDialog();
            bareCold = std::chrono::duration<double>(Clock::now() - coldStart).count();
        }
        if (bareDisplay == nullptr) {
            std::fprintf(stderr, "bench_dialog_startup: no display\n");
        } else if ((dialogCold = showDataSourceDialog(error)) < 0) {
            std::fprintf(stderr, "bench_dialog_startup: the dialog did not open: %s\n", error.c_str());
        } else {
            std::printf("first dialog in the process, display connection included: bare %.1f ms, "
                        "data source dialog %.1f ms\n", bareCold * 1000, dialogCold * 1000);
            benchmark::Initialize(&argc, argv);
            benchmark::RunSpecifiedBenchmarks();
            std::printf("\nMedians, and the data source dialog's time over the bare dialog's:\n");
            printRatio("warm (display open, in process)", "BM_BareNotebookDialog", "BM_DataSourceDialog");
            printRatio("fresh (process start to first Expose)", "BM_BareNotebookDialogFresh",
                       "BM_DataSourceDialogFresh");
            benchmark::Shutdown();
            status = 0;
        }
    }
    std::error_code ignored;
    if (!configFolder.empty())
        std::filesystem::remove_all(configFolder, ignored);
    stopXvfb();
    return status;
}
