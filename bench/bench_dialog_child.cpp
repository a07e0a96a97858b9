// One dialog in a fresh process, for the start-up benchmark's fresh variant.
//
//   bench_dialog_bare_child bare START
//   bench_dialog_child dialog START DRIVER DSN
//
// The same source makes both programs: the bare one (HNSYB_BENCH_BARE) is a
// plain Motif program, linked with the toolkit alone, as a bare dialog's
// program would be; the other is linked like hnsyb-setup.
// START is the parent's steady clock (nanoseconds) just before it spawned
// this process; the same clock here is CLOCK_MONOTONIC, shared by all
// processes, so the figures printed are from process start.  "bare" opens
// the display and shows the bare notebook dialog; "dialog" does what the
// setup front end does for a configure request (keys read, display opened
// on first use, the dialog built and shown) and cancels at the first
// Expose.  The display and the ODBC configuration come from the environment.
//
// Prints one line: nanoseconds from START to main, to the entry call (the
// toolkit's start for "bare") and to the first Expose, then the number of
// round trips to the X server the process made.  Exit status 0 when the
// dialog was exposed; a process still running after 20 s is ended by its
// alarm, so the parent's wait is bounded.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include <unistd.h>

#include "dialog_startup_common.h"
#include "xreply_counter.h"
#ifndef HNSYB_BENCH_BARE
#include "dialoghost.h"
#include "installer.h"
#endif

using hnsyb_bench::Clock;

namespace {

long long since(long long start, Clock::time_point when)
{
    return static_cast<long long>(
               std::chrono::duration_cast<std::chrono::nanoseconds>(when.time_since_epoch()).count()) -
           start;
}

}  // namespace

int main(int argc, char** argv)
{
    const Clock::time_point mainReached = Clock::now();
    alarm(20);
    if (argc < 3)
        return 2;
    const long long start = std::atoll(argv[2]);
#ifdef HNSYB_BENCH_BARE
    if (std::strcmp(argv[1], "bare") == 0) {
        const Clock::time_point entry = Clock::now();
        XtToolkitInitialize();
        XtAppContext app = XtCreateApplicationContext();
        int noArgs = 0;
        char* noArgv[] = {const_cast<char*>("bare"), nullptr};
        Display* display = XtOpenDisplay(app, nullptr, "bare", "HnsybBare", nullptr, 0, &noArgs, noArgv);
        if (display == nullptr)
            return 1;
        const Clock::time_point exposed = hnsyb_bench::showBareDialog(app, display);
        std::printf("%lld %lld %lld %lu\n", since(start, mainReached), since(start, entry), since(start, exposed),
                    hnsyb_bench::roundTrips());
        return 0;
    }
#else
    if (std::strcmp(argv[1], "dialog") == 0 && argc >= 5) {
        const Clock::time_point entry = Clock::now();
        hnsybs::DialogRequest request;
        request.driver = argv[3];
        request.request = 2;
        request.dsn = argv[4];
        request.initial = hnsybs::currentDataSource(request.dsn);
        hnsybs::DialogHooks hooks;
        hooks.shellReady = hnsyb_bench::watchExposes;
        std::string error;
        if (hnsybs::runDialog(request, error, &hooks) != 0 || !hnsyb_bench::probe.seen) {
            std::fprintf(stderr, "bench_dialog_child: %s\n", error.empty() ? "not exposed" : error.c_str());
            return 1;
        }
        std::printf("%lld %lld %lld %lu\n", since(start, mainReached), since(start, entry),
                    since(start, hnsyb_bench::probe.exposed), hnsyb_bench::roundTrips());
        return 0;
    }
#endif
    return 2;
}
