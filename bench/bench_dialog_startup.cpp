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
// Both run on an already open display connection (one per side, opened once
// before timing), so connection set-up and font loading are not counted.
// Manual time per iteration; the dialog's Cancel and the bare dialog's
// destruction fall outside it.
#include <benchmark/benchmark.h>

#include <Xm/Xm.h>
#include <Xm/Form.h>
#include <Xm/MessageB.h>
#include <Xm/Notebook.h>
#include <Xm/PushB.h>
#include <X11/Shell.h>
#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

#include "dialoghost.h"
#include "installer.h"

extern char** environ;

namespace {

using Clock = std::chrono::steady_clock;

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

// --- The data source dialog ------------------------------------------------

struct ExposeProbe {
    XtAppContext app = nullptr;
    Widget shell = nullptr;
    Clock::time_point shellReady{};
    Clock::time_point exposed{};
    bool seen = false;
};
// Share of the front end (environment, connection, parent shell) in the
// last dialog, in seconds: the time from the call to the parent's creation.
double frontShare = 0;
ExposeProbe probe;
XtEventDispatchProc defaultExposeDispatcher = nullptr;

void cancelDialog(XtPointer, XtIntervalId*)
{
    if (Widget cancel = XtNameToWidget(probe.shell, "*btnCancel"))
        XtCallCallbacks(cancel, XmNactivateCallback, nullptr);
}

Boolean exposeDispatcher(XEvent* event)
{
    if (!probe.seen) {
        probe.exposed = Clock::now();
        probe.seen = true;
        // Cancel once this event has been handled, as a user's click would.
        XtAppAddTimeOut(probe.app, 0, cancelDialog, nullptr);
    }
    return defaultExposeDispatcher(event);
}

void watchExposes(XtAppContext app, Widget shell, void*)
{
    probe.app = app;
    probe.shell = shell;
    probe.seen = false;
    probe.shellReady = Clock::now();
    XtEventDispatchProc previous = XtSetEventDispatcher(XtDisplay(shell), Expose, exposeDispatcher);
    if (previous != exposeDispatcher)
        defaultExposeDispatcher = previous;
}

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
    hooks.shellReady = watchExposes;
    if (hnsybs::runDialog(request, error, &hooks) != 0 || !probe.seen)
        return -1;
    frontShare = std::chrono::duration<double>(probe.shellReady - start).count();
    return std::chrono::duration<double>(probe.exposed - start).count();
}

void BM_DataSourceDialog(benchmark::State& state)
{
    double serverStart = serverCpuSeconds();
    double front = 0;
    for (auto _ : state) {
        std::string error;
        double seconds = showDataSourceDialog(error);
        if (seconds < 0) {
            state.SkipWithError(error.empty() ? "the dialog was not exposed" : error.c_str());
            return;
        }
        state.SetIterationTime(seconds);
        front += frontShare;
    }
    state.counters["front_end_ms"] = benchmark::Counter(front * 1000, benchmark::Counter::kAvgIterations);
    state.counters["server_cpu_ms"] =
        benchmark::Counter((serverCpuSeconds() - serverStart) * 1000, benchmark::Counter::kAvgIterations);
}

// --- The bare notebook dialog ---------------------------------------------

XtAppContext bareApp = nullptr;
Display* bareDisplay = nullptr;
bool bareExposed = false;

void noteExpose(Widget, XtPointer, XEvent*, Boolean*) { bareExposed = true; }

double showBareDialog()
{
    Clock::time_point start = Clock::now();
    Arg args[8];
    Cardinal n = 0;
    XtSetArg(args[n], XmNmappedWhenManaged, False); ++n;
    XtSetArg(args[n], XmNwidth, 1); ++n;
    XtSetArg(args[n], XmNheight, 1); ++n;
    Widget shell = XtAppCreateShell("bare", "HnsybBare", applicationShellWidgetClass, bareDisplay, args, n);
    XtRealizeWidget(shell);
    n = 0;
    XtSetArg(args[n], XmNwidth, 525); ++n;
    XtSetArg(args[n], XmNheight, 505); ++n;
    XtSetArg(args[n], XmNdialogStyle, XmDIALOG_FULL_APPLICATION_MODAL); ++n;
    XtSetArg(args[n], XmNresizePolicy, XmRESIZE_NONE); ++n;
    Widget dialog = XmCreateTemplateDialog(shell, const_cast<char*>("bare"), args, n);
    Widget form = XmCreateForm(dialog, const_cast<char*>("form"), nullptr, 0);
    n = 0;
    XtSetArg(args[n], XmNtopAttachment, XmATTACH_FORM); ++n;
    XtSetArg(args[n], XmNbottomAttachment, XmATTACH_FORM); ++n;
    XtSetArg(args[n], XmNleftAttachment, XmATTACH_FORM); ++n;
    XtSetArg(args[n], XmNrightAttachment, XmATTACH_FORM); ++n;
    XtSetArg(args[n], XmNorientation, XmVERTICAL); ++n;
    XtSetArg(args[n], XmNbindingType, XmNONE); ++n;
    Widget notebook = XmCreateNotebook(form, const_cast<char*>("notebook"), args, n);
    static const char* const names[] = {"General", "Advanced", "Bulk", "Pooling", "Security",
                                        "Connection", "Performance", "Failover", "About"};
    for (const char* name : names) {
        XtManageChild(XmCreateForm(notebook, const_cast<char*>(name), nullptr, 0));
        XtManageChild(XmCreatePushButton(notebook, const_cast<char*>(name), nullptr, 0));
    }
    XtManageChild(notebook);
    XtManageChild(form);
    bareExposed = false;
    XtAddEventHandler(form, ExposureMask, False, noteExpose, nullptr);
    XtManageChild(dialog);
    Clock::time_point exposed{};
    for (;;) {
        XEvent event;
        XtAppNextEvent(bareApp, &event);
        bool first = !bareExposed && event.type == Expose;
        XtDispatchEvent(&event);
        if (first) {
            exposed = Clock::now();
            break;
        }
    }
    XtDestroyWidget(shell);
    XSync(bareDisplay, False);
    return std::chrono::duration<double>(exposed - start).count();
}

void BM_BareNotebookDialog(benchmark::State& state)
{
    double serverStart = serverCpuSeconds();
    for (auto _ : state)
        state.SetIterationTime(showBareDialog());
    state.counters["server_cpu_ms"] =
        benchmark::Counter((serverCpuSeconds() - serverStart) * 1000, benchmark::Counter::kAvgIterations);
}

BENCHMARK(BM_BareNotebookDialog)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(30);
BENCHMARK(BM_DataSourceDialog)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(30);

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
