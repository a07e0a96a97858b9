// Message boxes and the fixed error boxes (see msgbox_impl.h).

#include "msgbox_impl.h"

#include <Xm/AtomMgr.h>
#include <Xm/MessageB.h>
#include <Xm/Protocols.h>
#include <Xm/Text.h>
#include <Xm/Xm.h>

#include <cstdio>

#include "../core/errorlist.h"
#include "../platform/catalog.h"
#include "backend_impl.h"
#include "messages_impl.h"
#include "wmclose_impl.h"

Widget dialog = nullptr;

namespace {

// The out-of-memory box is itself a message box: if that one cannot be made
// either, stop instead of asking for it again and again.
bool gReportingNoMemory = false;

void message(unsigned id, char* buffer, int size) { LoadStringFromOpenFile(Rfile, id, buffer, size); }

// The close button of the window manager presses the box's OK button, so
// that a box whose OK ends a loop cannot be closed around it.
void pressOk(Widget, XtPointer box, XtPointer)
{
    XmAnyCallbackStruct data{};
    data.reason = XmCR_OK;
    XtCallCallbacks(static_cast<Widget>(box), XmNokCallback, &data);
    XtUnmanageChild(static_cast<Widget>(box));
}

// The box is a popup of its parent and dies with it, as when a front end
// destroys the main dialog after the call: the global must not outlive it,
// or the next box would destroy it a second time.  A box replaced while a
// callback runs is destroyed only after the new one is the global, hence
// the comparison.
void forgetBox(Widget box, XtPointer, XtPointer)
{
    if (dialog == box)
        dialog = nullptr;
}

}  // namespace

void closeButtonCalls(Widget box, XtCallbackProc action, XtPointer data)
{
    Widget shell = XtParent(box);
    if (shell == nullptr || !XtIsShell(shell))
        return;
    XtVaSetValues(shell, XmNdeleteResponse, XmDO_NOTHING, nullptr);
    Atom deleteWindow = XmInternAtom(XtDisplay(shell), const_cast<char*>("WM_DELETE_WINDOW"), False);
    XmAddWMProtocolCallback(shell, deleteWindow, action, data);
}

Widget createMessageDialog(Widget parent, unsigned long type, char* text, char* okLabel, char* cancelLabel,
                           char* title)
{
    char empty[] = "";
    XmString messageString = XmStringCreateLocalized(text != nullptr ? text : empty);
    XmString okString = XmStringCreateLocalized(okLabel != nullptr ? okLabel : empty);
    XmString cancelString = XmStringCreateLocalized(cancelLabel != nullptr ? cancelLabel : empty);
    Arg args[7];
    Cardinal n = 0;
    XtSetArg(args[n], XmNmessageString, messageString); ++n;
    XtSetArg(args[n], XmNokLabelString, okString); ++n;
    XtSetArg(args[n], XmNcancelLabelString, cancelString); ++n;
    XtSetArg(args[n], XmNtitle, title != nullptr ? title : empty); ++n;
    XtSetArg(args[n], XmNdialogStyle, XmDIALOG_FULL_APPLICATION_MODAL); ++n;

    if (dialog != nullptr) {
        XtDestroyWidget(dialog);
        dialog = nullptr;
    }
    if (parent != nullptr) {
        char name[] = "dialog";
        switch (type) {
        case DSN_BOX_INFORMATION:
            dialog = XmCreateMessageDialog(parent, name, args, n);
            // The convenience call makes a plain message box: the type is
            // set once the box exists.
            if (dialog != nullptr)
                XtVaSetValues(dialog, XmNdialogType, XmDIALOG_INFORMATION, nullptr);
            break;
        case DSN_BOX_QUESTION:
            XtSetArg(args[n], XmNdialogType, XmDIALOG_QUESTION); ++n;
            dialog = XmCreateQuestionDialog(parent, name, args, n);
            break;
        case DSN_BOX_ERROR:
            XtSetArg(args[n], XmNdialogType, XmDIALOG_ERROR); ++n;
            dialog = XmCreateErrorDialog(parent, name, args, n);
            break;
        default:
            break;
        }
    }
    // Motif keeps copies of the strings it is given.
    XmStringFree(messageString);
    XmStringFree(okString);
    XmStringFree(cancelString);

    if (dialog == nullptr) {
        showOutOfMemoryError(parent);
        return nullptr;
    }
    XtAddCallback(dialog, XmNdestroyCallback, forgetBox, nullptr);
    XtUnmanageChild(XmMessageBoxGetChild(dialog, XmDIALOG_HELP_BUTTON));
    if (type != DSN_BOX_QUESTION)
        XtUnmanageChild(XmMessageBoxGetChild(dialog, XmDIALOG_CANCEL_BUTTON));
    closeButtonCalls(dialog, pressOk, dialog);
    return dialog;
}

void okCB(Widget, XtPointer done, XtPointer)
{
    if (done != nullptr)
        *static_cast<int*>(done) = 1;
}

void motifMessageBox(void* parentPointer, const unsigned char* text, const unsigned char* title, int)
{
    const char* body = text != nullptr ? reinterpret_cast<const char*>(text) : "";
    const char* heading = reinterpret_cast<const char*>(title);
    Widget parent = static_cast<Widget>(parentPointer);

    char label[1024];
    winGetString(label, MSG_OK);
    char okLabel[32];
    LoadStringFromOpenFile(Rfile, MSG_OK, okLabel, sizeof okLabel);
    XmString okString = XmStringCreateLocalized(okLabel);

    Widget box = nullptr;
    Widget field = nullptr;
    if (parent != nullptr) {
        char empty[] = "";
        Arg args[9];
        Cardinal n = 0;
        XtSetArg(args[n], XmNdialogStyle, XmDIALOG_FULL_APPLICATION_MODAL); ++n;
        XtSetArg(args[n], XmNwidth, 450); ++n;
        XtSetArg(args[n], XmNheight, 530); ++n;
        XtSetArg(args[n], XmNbaseWidth, 450); ++n;
        XtSetArg(args[n], XmNbaseHeight, 530); ++n;
        XtSetArg(args[n], XmNtitle, heading != nullptr ? const_cast<char*>(heading) : empty); ++n;
        XtSetArg(args[n], XmNdialogType, XmDIALOG_TEMPLATE); ++n;
        XtSetArg(args[n], XmNokLabelString, okString); ++n;
        XtSetArg(args[n], XmNautoUnmanage, True); ++n;
        char name[] = "dialog";
        box = XmCreateTemplateDialog(parent, name, args, n);
    }
    if (box != nullptr) {
        Arg args[7];
        Cardinal n = 0;
        XtSetArg(args[n], XmNmarginWidth, 0); ++n;
        XtSetArg(args[n], XmNmarginHeight, 0); ++n;
        XtSetArg(args[n], XmNwordWrap, True); ++n;
        XtSetArg(args[n], XmNeditMode, XmMULTI_LINE_EDIT); ++n;
        XtSetArg(args[n], XmNscrollVertical, True); ++n;
        XtSetArg(args[n], XmNscrollHorizontal, False); ++n;
        XtSetArg(args[n], XmNeditable, False); ++n;
        char name[] = "msgText";
        field = XmCreateScrolledText(box, name, args, n);
    }
    XmStringFree(okString);
    if (box == nullptr || field == nullptr) {
        if (box != nullptr)
            XtDestroyWidget(box);
        if (heading != nullptr)
            std::printf("%s:\n%s\n", heading, body);
        else
            std::printf("\n%s\n", body);
        std::fflush(stdout);
        return;
    }
    int done = 0;
    XtAddCallback(box, XmNokCallback, okCB, &done);
    closeButtonCalls(box, pressOk, box);
    XmTextSetString(field, const_cast<char*>(body));
    XtManageChild(field);
    XtManageChild(box);
    // The one nested loop of the library: it serves every event of the
    // application until this box's OK (or close button) sets the flag.
    // XtAppProcessEvent rather than XtAppNextEvent: the latter runs timer
    // and input callbacks inside itself and waits on for an X event, so a
    // flag set by one of those would not be seen until the next X event.
    XtAppContext context = XtWidgetToApplicationContext(box);
    while (!done)
        XtAppProcessEvent(context, XtIMAll);
    XtDestroyWidget(box);
}

void showPermissionError(Widget parent, int isFileDSN)
{
    char text[512], title[512], okLabel[512];
    message(isFileDSN ? MSG_FILE_DSN_NOT_WRITTEN : MSG_DSN_NOT_WRITTEN, text, sizeof text);
    message(MSG_ERROR_TITLE, title, sizeof title);
    message(MSG_OK, okLabel, sizeof okLabel);
    char empty[] = "";
    Widget box = createMessageDialog(parent, DSN_BOX_ERROR, text, okLabel, empty, title);
    if (box != nullptr)
        XtManageChild(box);
}

void showOutOfMemoryError(Widget parent)
{
    if (gReportingNoMemory)
        return;
    gReportingNoMemory = true;
    char text[512], title[512], okLabel[512];
    message(MSG_OUT_OF_MEMORY, text, sizeof text);
    message(MSG_ERROR_TITLE, title, sizeof title);
    message(MSG_OK, okLabel, sizeof okLabel);
    char empty[] = "";
    Widget box = createMessageDialog(parent, DSN_BOX_ERROR, text, okLabel, empty, title);
    if (box != nullptr) {
        XtAddCallback(box, XmNokCallback, exitDriverConfig, parent);
        XtManageChild(box);
    } else {
        // Not even the box could be made: end the dialog all the same, so
        // that the loop does not wait for a button nobody can see.
        exitDriverConfig(nullptr, parent, nullptr);
    }
    gReportingNoMemory = false;
}

void outOfMemoryError(Widget w)
{
    if (w != nullptr)
        XtUnmanageChild(w);
    addError(MSG_OUT_OF_MEMORY);
    exit_dialog_loop();
}

void exitDriverConfig(Widget, XtPointer shell, XtPointer)
{
    if (shell != nullptr)
        XtUnmanageChild(static_cast<Widget>(shell));
    char text[512];
    message(MSG_OUT_OF_MEMORY, text, sizeof text);
    addDatabaseError(0, MSG_OUT_OF_MEMORY, text, 0, static_cast<zuCPType>(1));
    exit_dialog_loop();
}
