/*
 * The data source dialog itself: create_shell1 builds the template dialog
 * (525 x 505, not resizable, full application modal) with its notebook of
 * nine tabs and the row of Test Connect, OK, Cancel and Apply buttons, and
 * stores it in the global shell1.
 *
 * Widgets are built once per dialog and never destroyed here: the lifecycle
 * unmanages shell1 and leaves it to the toolkit.  The three strings are the
 * caller's; driverName and securityTopic are kept by the Security tab's help
 * button for the life of the dialog, so they must outlive it.
 */
#ifndef HNSYB_DSN_DIALOG_SHELL_H
#define HNSYB_DSN_DIALOG_SHELL_H

#include <X11/Intrinsic.h>

#include "platform/export.h"

// Builds every widget under shODBCAdmin; labels come from Rfile.  The last
// step fills the control table (createListOfWidgets).  A widget or memory
// failure shows the out-of-memory box and sets exit_code to 1; the build
// goes on where it can.
ZU_EXPORT void create_shell1(unsigned char* driverPath, unsigned char* driverName, unsigned char* securityTopic);

#endif
