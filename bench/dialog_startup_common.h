/*
 * What the dialog start-up benchmark and its fresh-process helper share: the
 * bare Motif notebook dialog that is the peer (a template dialog of
 * 525 x 505 with a notebook of nine empty Form pages and their tab buttons,
 * on an application shell), and the probe that notes the data source
 * dialog's first Expose and then cancels it as a user's click would.
 *
 * The probe is process state (one dialog at a time, as the dialog itself);
 * the bare dialog is destroyed before its function returns.  Nothing here
 * owns the display connections it is given.
 */
#ifndef HNSYB_BENCH_DIALOG_STARTUP_COMMON_H
#define HNSYB_BENCH_DIALOG_STARTUP_COMMON_H

#include <Xm/Xm.h>
#include <Xm/Form.h>
#include <Xm/MessageB.h>
#include <Xm/Notebook.h>
#include <Xm/PushB.h>
#include <X11/Shell.h>

#include <chrono>

namespace hnsyb_bench {

using Clock = std::chrono::steady_clock;

// --- The bare notebook dialog ---------------------------------------------

inline bool bareExposed = false;

inline void noteBareExpose(Widget, XtPointer, XEvent*, Boolean*) { bareExposed = true; }

// Builds, manages and runs the bare dialog until its first Expose has been
// handled; returns the moment it was, and destroys the dialog afterwards.
inline Clock::time_point showBareDialog(XtAppContext app, Display* display)
{
    Arg args[8];
    Cardinal n = 0;
    XtSetArg(args[n], XmNmappedWhenManaged, False); ++n;
    XtSetArg(args[n], XmNwidth, 1); ++n;
    XtSetArg(args[n], XmNheight, 1); ++n;
    Widget shell = XtAppCreateShell("bare", "HnsybBare", applicationShellWidgetClass, display, args, n);
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
    XtAddEventHandler(form, ExposureMask, False, noteBareExpose, nullptr);
    XtManageChild(dialog);
    Clock::time_point exposed{};
    for (;;) {
        XEvent event;
        XtAppNextEvent(app, &event);
        bool first = !bareExposed && event.type == Expose;
        XtDispatchEvent(&event);
        if (first) {
            exposed = Clock::now();
            break;
        }
    }
    XtDestroyWidget(shell);
    XSync(display, False);
    return exposed;
}

// --- The data source dialog's first Expose ---------------------------------

struct ExposeProbe {
    XtAppContext app = nullptr;
    Widget shell = nullptr;
    Clock::time_point shellReady{};
    Clock::time_point exposed{};
    bool seen = false;
    XtEventDispatchProc defaultDispatcher = nullptr;
};
inline ExposeProbe probe;

inline void cancelDialog(XtPointer, XtIntervalId*)
{
    if (Widget cancel = XtNameToWidget(probe.shell, "*btnCancel"))
        XtCallCallbacks(cancel, XmNactivateCallback, nullptr);
}

inline Boolean probeDispatcher(XEvent* event)
{
    if (!probe.seen) {
        probe.exposed = Clock::now();
        probe.seen = true;
        // Cancel once this event has been handled, as a user's click would.
        XtAppAddTimeOut(probe.app, 0, cancelDialog, nullptr);
    }
    return probe.defaultDispatcher(event);
}

// The front end's shellReady hook: watch the parent's display for Expose.
inline void watchExposes(XtAppContext app, Widget shell, void*)
{
    probe.app = app;
    probe.shell = shell;
    probe.seen = false;
    probe.shellReady = Clock::now();
    XtEventDispatchProc previous = XtSetEventDispatcher(XtDisplay(shell), Expose, probeDispatcher);
    if (previous != probeDispatcher)
        probe.defaultDispatcher = previous;
}

}  // namespace hnsyb_bench

#endif
