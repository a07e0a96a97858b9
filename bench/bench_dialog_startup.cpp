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
#include <poll.h>
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

bool startXvfb()
{
    int fds[2];
    if (pipe(fds) != 0)
        return false;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, fds[1], 3);
    posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
    char* argv[] = {const_cast<char*>("Xvfb"), const_cast<char*>("-displayfd"), const_cast<char*>("3"),
                    const_cast<char*>("-screen"), const_cast<char*>("0"), const_cast<char*>("1024x768x24"),
                    const_cast<char*>("-nolisten"), const_cast<char*>("tcp"), const_cast<char*>("-noreset"),
                    nullptr};
    int rc = posix_spawnp(&xvfbPid, "Xvfb", &actions, nullptr, argv, environ);
    posix_spawn_file_actions_destroy(&actions);
    close(fds[1]);
    if (rc != 0) {
        close(fds[0]);
        return false;
    }
    // The server writes its display number once it accepts connections.
    char number[16] = "";
    struct pollfd wait = {fds[0], POLLIN, 0};
    ssize_t got = poll(&wait, 1, 15000) == 1 ? read(fds[0], number, sizeof number - 1) : -1;
    close(fds[0]);
    if (got <= 0)
        return false;
    number[got] = '\0';
    std::string display = ":" + std::to_string(std::atoi(number));
    setenv("DISPLAY", display.c_str(), 1);
    return true;
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
    Clock::time_point exposed{};
    bool seen = false;
};
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
    return std::chrono::duration<double>(probe.exposed - start).count();
}

void BM_DataSourceDialog(benchmark::State& state)
{
    for (auto _ : state) {
        std::string error;
        double seconds = showDataSourceDialog(error);
        if (seconds < 0) {
            state.SkipWithError(error.empty() ? "the dialog was not exposed" : error.c_str());
            return;
        }
        state.SetIterationTime(seconds);
    }
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
    for (auto _ : state)
        state.SetIterationTime(showBareDialog());
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
        // Connections opened and warmed before timing on both sides.
        XtToolkitInitialize();
        bareApp = XtCreateApplicationContext();
        int noArgs = 0;
        char* noArgv[] = {const_cast<char*>("bare"), nullptr};
        bareDisplay = XtOpenDisplay(bareApp, nullptr, "bare", "HnsybBare", nullptr, 0, &noArgs, noArgv);
        std::string error;
        if (bareDisplay == nullptr) {
            std::fprintf(stderr, "bench_dialog_startup: no display\n");
        } else if (showBareDialog(), showDataSourceDialog(error) < 0) {
            std::fprintf(stderr, "bench_dialog_startup: the dialog did not open: %s\n", error.c_str());
        } else {
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
