/*
 * The window manager's close button (WM_DELETE_WINDOW) of a dialog's shell.
 *
 * Left to the toolkit, the close button only hides a dialog, and a loop that
 * waits for the dialog's own buttons would run on with nothing on the
 * screen.  closeButtonCalls makes the button call `action` instead (and
 * nothing else): the main dialog's acts as Cancel, a box's as its OK.
 */
#ifndef HNSYB_DSN_WMCLOSE_IMPL_H
#define HNSYB_DSN_WMCLOSE_IMPL_H

#include <X11/Intrinsic.h>

#include "../platform/export.h"

// `widget` is the dialog whose parent is the shell; nothing happens when the
// parent is not a shell.
ZU_EXPORT void closeButtonCalls(Widget widget, XtCallbackProc action, XtPointer data);

#endif
