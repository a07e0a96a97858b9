/*
 * The dialog's entry and lifecycle: loading the back end by name, the modal
 * loop, and OK / Apply / Cancel.
 *
 * The dialog's state is process-wide, plain globals, which is why only one
 * dialog runs in a process; everything runs on the caller's thread inside
 * the Xt event loop and takes no lock.
 *
 * The modal loop is a tiny state machine over current_shell and loop_done:
 *   idle    (current_shell null)      --dialog_main_loop-->  looping
 *   looping (current_shell set, loop_done 0) --exit_dialog_loop--> ending
 *   ending  (loop_done 1)             --dialog_main_loop returns--> idle
 * There is one flag for the whole process: a secondary dialog that calls
 * dialog_main_loop while the main one loops gets no loop of its own, and its
 * exit_dialog_loop ends the main loop.
 *
 * Ownership: invokeBackend owns driDsnNameL and keyValNodeHeadL from
 * initialize on and frees both before it returns; truststorePasssword is an
 * XtMalloc block of the Security tab's password field, freed there too.
 * Rfile is the open catalog "HNmback.mo" while the dialog runs, and
 * ZU_NO_CATALOG before and after.
 *
 * The functions and the globals named by the family are exported for the
 * setup front ends and the tests; this header itself is not installed.
 */
#ifndef HNSYB_DSN_BACKEND_IMPL_H
#define HNSYB_DSN_BACKEND_IMPL_H

#include <X11/Intrinsic.h>
#include <nl_types.h>

#include "../dsn.h"

// Library and entry of the back end; both are set once per process and kept.
ZU_EXPORT extern void* BACKEND_HANDLE_CFG;
typedef int (*BackendEntry)(void* parent, driverDSNName* dsn, nd* list);
ZU_EXPORT extern BackendEntry CONNECT_BACK_DLG;
ZU_EXPORT extern const char* const BACK_DLG_FUNC;  // "invokeBackend"
ZU_EXPORT extern const char* HINSTFRONTEND;        // "uxmfront": catalog handle of the failure path

// The driver's pool keys, in the order they are read and written.
constexpr int DSN_POOL_KEY_COUNT = 7;
ZU_EXPORT extern const char* const CPoolAttrName[DSN_POOL_KEY_COUNT];

ZU_EXPORT extern nl_catd Rfile;                  // the catalog "HNmback.mo", or ZU_NO_CATALOG
ZU_EXPORT extern Widget shODBCAdmin;             // parent given by the caller
ZU_EXPORT extern Widget shell1;                  // the template dialog (set by create_shell1)
extern Display* display;               // display of the parent
ZU_EXPORT extern driverDSNName* driDsnNameL;     // the record, owned from initialize on
ZU_EXPORT extern nd* keyValNodeHeadL;            // head of the attribute list
ZU_EXPORT extern int exit_code;                  // 0 normal end (OK or Cancel), 1 could not run to its end
ZU_EXPORT extern Widget current_shell;           // shell of the running modal loop, or null
ZU_EXPORT extern unsigned char loop_done;        // end flag of the modal loop
ZU_EXPORT extern char* truststorePasssword;      // clear text of the trust store password (XtMalloc)

// bosLoadLibrary(name, 0) into BACKEND_HANDLE_CFG; 1 when it did not load.
ZU_EXPORT int loadResourceLib(unsigned char* name);
// Resolves invokeBackend once, adds the driver's non-empty pool keys to
// `list`, and calls it; 0 on success, 1 on failure (error 7453 when the entry
// is missing).
ZU_EXPORT int callBackendFunc(void* parent, driverDSNName* dsn, nd* list);

// File DSN: shows its path in the name field and locks both widgets.  Takes
// over `dsn` and `list` and fills the controls (which frees the list).
ZU_EXPORT void initialize(driverDSNName* dsn, nd* list, Widget dsnLabel, Widget dsnText);

// The modal loop and its single end flag (see the state machine above).
ZU_EXPORT void dialog_main_loop(Widget shell);
ZU_EXPORT void exit_dialog_loop();

// Checks the name, rebuilds the list from the controls and saves it;
// 1 when saved, 0 when not (a box tells the user why).
ZU_EXPORT int applyAction(Widget dsnText, Widget shell);
ZU_EXPORT void commonOkFunctionality(Widget shell, Widget dsnText);
ZU_EXPORT void commonCancelFunctionality(Widget shell);

// Xt callbacks of the four buttons; they ignore their arguments.
ZU_EXPORT void btnOK_Clicked(Widget, XtPointer, XtPointer);
ZU_EXPORT void btnCancel_Clicked(Widget, XtPointer, XtPointer);
ZU_EXPORT void btnApply_Clicked(Widget, XtPointer, XtPointer);
ZU_EXPORT void btnTestConnect_Clicked(Widget, XtPointer, XtPointer);

// Frees the record and the list and clears both globals.
ZU_EXPORT void freeAllocatedMemory();

#endif
