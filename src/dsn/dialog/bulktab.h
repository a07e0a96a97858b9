/*
 * The Bulk tab: its page in the notebook and the load, verify and export
 * dialogs behind its buttons.  createBulkTab adds the form "frmbulk" and the
 * tab button "btnbulk" to the notebook and manages the tab button itself.
 * The widgets belong to the notebook.
 */
#ifndef HNSYB_DSN_DIALOG_BULKTAB_H
#define HNSYB_DSN_DIALOG_BULKTAB_H

#include <X11/Intrinsic.h>

#include "platform/export.h"

// `catalog` is the open message catalog (an nl_catd) to read labels from.
ZU_EXPORT void createBulkTab(Widget notebook, void* catalog);

#endif
