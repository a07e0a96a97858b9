/*
 * Message boxes of the dialog: one-line boxes (createMessageDialog), a long
 * text box with a loop of its own (motifMessageBox), and the fixed error
 * boxes for permissions and exhausted memory.
 *
 * At most one createMessageDialog box exists: the next call destroys the
 * previous one (`dialog`).  The caller manages the box it gets.  Texts come
 * from the catalog Rfile.  The window manager's close button of any box
 * acts as its OK button.
 */
#ifndef HNSYB_DSN_MSGBOX_IMPL_H
#define HNSYB_DSN_MSGBOX_IMPL_H

#include <X11/Intrinsic.h>

#include "../platform/export.h"

// Box types of createMessageDialog.
enum : unsigned long { DSN_BOX_QUESTION = 0, DSN_BOX_INFORMATION = 1, DSN_BOX_ERROR = 2 };

extern Widget dialog;  // the one live message box, or null

// A full application modal box named "dialog" of the given type (question:
// OK and Cancel; information and error: OK only).  Null for an unknown type
// or when it cannot be made (then the out-of-memory box shows).
ZU_EXPORT Widget createMessageDialog(Widget parent, unsigned long type, char* message, char* okLabel, char* cancelLabel,
                           char* title);
// A 450 x 530 box with the text in a scrolled field; returns when its OK is
// pressed.  Without widgets the text goes to standard output.  `style` is
// not read.
ZU_EXPORT void motifMessageBox(void* parent, const unsigned char* text, const unsigned char* title, int style);
// Sets *(int*)done to 1.
ZU_EXPORT void okCB(Widget, XtPointer done, XtPointer);

// Error box 7315 (file DSN) or 7316: the data source could not be written.
ZU_EXPORT void showPermissionError(Widget parent, int isFileDSN);
// Error box 7312; its OK ends the dialog through exitDriverConfig.
ZU_EXPORT void showOutOfMemoryError(Widget parent);
// Unmanages `w`, adds error 7312, ends the loop.
ZU_EXPORT void outOfMemoryError(Widget w);
// OK of the out-of-memory box: unmanages the widget in `shell`, adds error
// 7312 and ends the loop.
ZU_EXPORT void exitDriverConfig(Widget, XtPointer shell, XtPointer);

#endif
