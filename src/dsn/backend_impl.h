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
 */
#ifndef HNSYB_DSN_BACKEND_IMPL_H
#define HNSYB_DSN_BACKEND_IMPL_H

#include <X11/Intrinsic.h>
#include <nl_types.h>

#include "../dsn.h"

// Library and entry of the back end; both are set once per process and kept.
extern void* BACKEND_HANDLE_CFG;
typedef int (*BackendEntry)(void* parent, driverDSNName* dsn, nd* list);
extern BackendEntry CONNECT_BACK_DLG;
extern const char* const BACK_DLG_FUNC;  // "invokeBackend"
extern const char* HINSTFRONTEND;        // "uxmfront": catalog handle of the failure path

// The driver's pool keys, in the order they are read and written.
constexpr int DSN_POOL_KEY_COUNT = 7;
extern const char* const CPoolAttrName[DSN_POOL_KEY_COUNT];

extern nl_catd Rfile;                  // the catalog "HNmback.mo", or ZU_NO_CATALOG
extern Widget shODBCAdmin;             // parent given by the caller
extern Widget shell1;                  // the template dialog (set by create_shell1)
extern Display* display;               // display of the parent
extern driverDSNName* driDsnNameL;     // the record, owned from initialize on
extern nd* keyValNodeHeadL;            // head of the attribute list
extern int exit_code;                  // 0 normal end (OK or Cancel), 1 could not run to its end
extern Widget current_shell;           // shell of the running modal loop, or null
extern unsigned char loop_done;        // end flag of the modal loop
extern char* truststorePasssword;      // clear text of the trust store password (XtMalloc)

// bosLoadLibrary(name, 0) into BACKEND_HANDLE_CFG; 1 when it did not load.
int loadResourceLib(unsigned char* name);
// Resolves invokeBackend once, adds the driver's non-empty pool keys to
// `list`, and calls it; 0 on success, 1 on failure (error 7453 when the entry
// is missing).
int callBackendFunc(void* parent, driverDSNName* dsn, nd* list);

// File DSN: shows its path in the name field and locks both widgets.  Takes
// over `dsn` and `list` and fills the controls (which frees the list).
void initialize(driverDSNName* dsn, nd* list, Widget dsnLabel, Widget dsnText);

// The modal loop and its single end flag (see the state machine above).
void dialog_main_loop(Widget shell);
void exit_dialog_loop();

// Checks the name, rebuilds the list from the controls and saves it;
// 1 when saved, 0 when not (a box tells the user why).
int applyAction(Widget dsnText, Widget shell);
void commonOkFunctionality(Widget shell, Widget dsnText);
void commonCancelFunctionality(Widget shell);

// Xt callbacks of the four buttons; they ignore their arguments.
void btnOK_Clicked(Widget, XtPointer, XtPointer);
void btnCancel_Clicked(Widget, XtPointer, XtPointer);
void btnApply_Clicked(Widget, XtPointer, XtPointer);
void btnTestConnect_Clicked(Widget, XtPointer, XtPointer);

// Frees the record and the list and clears both globals.
void freeAllocatedMemory();

#endif
