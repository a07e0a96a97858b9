// The modal loop and the OK / Apply / Cancel paths (see backend_impl.h).

#include <Xm/Text.h>
#include <Xm/Xm.h>
#include <odbcinst.h>

#include "../platform/catalog.h"
#include "backend_impl.h"
#include "dialog/controltable.h"
#include "messages_impl.h"
#include "msgbox_impl.h"
#include "testconnect_impl.h"

namespace {

Widget dsnTextField() { return iddlgname[ZU_IDX_DSN]; }

}  // namespace

void initialize(driverDSNName* dsn, nd* list, Widget dsnLabel, Widget dsnText)
{
    if (dsn != nullptr && dsn->isFileDSN != 0) {
        // A file DSN is named by its path, which the dialog does not let the
        // user change.
        if (dsnText != nullptr) {
            XmTextSetString(dsnText, dsn->fileDSNPath);
            XtSetSensitive(dsnText, False);
        }
        if (dsnLabel != nullptr)
            XtSetSensitive(dsnLabel, False);
    }
    driDsnNameL = dsn;
    keyValNodeHeadL = list;
    populateUIFromLinkedList();
}

void dialog_main_loop(Widget shell)
{
    if (current_shell != nullptr || shell == nullptr)
        return;  // loops do not nest: the running one serves every dialog
    loop_done = 0;
    current_shell = shell;
    // One event, timer or input at a time, so that an end requested from a
    // timer or input callback is seen at once (XtAppNextEvent would run such
    // callbacks inside itself and wait on for the next X event).
    XtAppContext context = XtWidgetToApplicationContext(shell);
    while (!loop_done)
        XtAppProcessEvent(context, XtIMAll);
    loop_done = 1;
    current_shell = nullptr;
}

void exit_dialog_loop()
{
    if (current_shell != nullptr)
        loop_done = 1;
}

int applyAction(Widget dsnText, Widget shell)
{
    char* name = dsnText != nullptr ? XmTextGetString(dsnText) : nullptr;
    const int fileDSN = driDsnNameL != nullptr ? driDsnNameL->isFileDSN : 0;
    // A file DSN is named by its path: the data source name rules do not
    // apply to it.
    if (!fileDSN && (name == nullptr || name[0] == 0 || !SQLValidDSN(name))) {
        char text[512], title[512], okLabel[512];
        LoadStringFromOpenFile(Rfile, MSG_INVALID_DSN_NAME, text, sizeof text);
        LoadStringFromOpenFile(Rfile, MSG_ERROR_TITLE, title, sizeof title);
        LoadStringFromOpenFile(Rfile, MSG_OK, okLabel, sizeof okLabel);
        char empty[] = "";
        Widget box = createMessageDialog(shell, DSN_BOX_ERROR, text, okLabel, empty, title);
        if (box != nullptr)
            XtManageChild(box);
        XtFree(name);
        return 0;
    }
    int result = 0;
    if (populateLinkedListFromUI() != 0) {
        result = applyChanges(&keyValNodeHeadL, &driDsnNameL) != 0 ? 1 : 0;
        if (!result)
            showPermissionError(shell, fileDSN);
    }
    XtFree(name);
    return result;
}

void commonOkFunctionality(Widget shell, Widget dsnText)
{
    if (applyAction(dsnText, shell)) {
        if (shell != nullptr)
            XtUnmanageChild(shell);
        exit_dialog_loop();
        FreeDriverDsnStruct(driDsnNameL);
        driDsnNameL = nullptr;
        exit_code = 0;
    }
    // A failed OK leaves the dialog up; the next press rebuilds the list.
    keyValNodeHeadL = FreeLinkedList(keyValNodeHeadL);
}

void commonCancelFunctionality(Widget shell)
{
    if (shell != nullptr)
        XtUnmanageChild(shell);
    exit_dialog_loop();
    freeAllocatedMemory();
    exit_code = 0;
}

void btnOK_Clicked(Widget, XtPointer, XtPointer) { commonOkFunctionality(shell1, dsnTextField()); }
void btnCancel_Clicked(Widget, XtPointer, XtPointer) { commonCancelFunctionality(shell1); }
void btnApply_Clicked(Widget, XtPointer, XtPointer) { applyAction(dsnTextField(), shell1); }
void btnTestConnect_Clicked(Widget, XtPointer, XtPointer) { testConnectClicked(shell1, dsnTextField()); }

void freeAllocatedMemory()
{
    FreeDriverDsnStruct(driDsnNameL);
    driDsnNameL = nullptr;
    keyValNodeHeadL = FreeLinkedList(keyValNodeHeadL);
}
