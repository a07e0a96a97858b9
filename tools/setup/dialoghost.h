/*
 * Opens the data source dialog for a setup request, on an X connection of
 * the setup front end's own.
 *
 * Whatever window handle an administrator passes to ConfigDSN belongs to its
 * own toolkit (a GTK widget, a unixODBC structure, nothing at all), so it is
 * never used as an Xt widget.  Instead the front end keeps, for the life of
 * the process, one application context and one display connection opened on
 * $DISPLAY, with a never-mapped application shell on it that is the parent
 * of every dialog.  The dialog runs its own modal loop there until OK or
 * Cancel, and the call returns only then, so it is modal for as long as the
 * call lasts; afterwards everything the dialog built under the parent (its
 * popups) is destroyed and the connection is synchronised, so no window is
 * left behind.
 *
 * The dialog library takes over the record and the attribute list it is
 * given; everything else here is owned by the caller.
 */
#ifndef HNSYB_TOOLS_SETUP_DIALOGHOST_H
#define HNSYB_TOOLS_SETUP_DIALOGHOST_H

#include <X11/Intrinsic.h>

#include <string>

#include "attributes.h"

namespace hnsybs {

struct DialogRequest {
    std::string driver;         // section name in the driver file
    unsigned short request = 1; // 1 add, 2 configure
    std::string dsn;            // name of a registered DSN (may be empty for add)
    bool fileDsn = false;
    std::string filePath;       // the file DSN's path when fileDsn is set
    Attributes initial;         // what the dialog's fields start from
};

// Called for each dialog with the parent shell, before the dialog is built:
// the benchmark and the screenshot mode schedule their work on `app` here.
struct DialogHooks {
    void (*shellReady)(XtAppContext app, Widget shell, void* data) = nullptr;
    void* data = nullptr;
};

// The name the dialog library's name rule turns into its own ("libhnsybr").
inline constexpr const char* kSetupLibraryName = "libhnsybs";

// Runs the dialog to its end.  0 when it ran (saved or cancelled alike); 1
// when it could not run, with the reason in `error` (no display, no dialog
// library, memory).
int runDialog(const DialogRequest& request, std::string& error, const DialogHooks* hooks = nullptr);

}  // namespace hnsybs

#endif
