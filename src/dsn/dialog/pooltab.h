/*
 * The Pooling tab: shows the driver's connection pool settings on the screen
 * only.  Its controls are not in the control table, so they neither show nor
 * reach what the driver's section holds (saving them would change what the
 * dialog writes).  createConnPoolTab sets frmPool and btnPool and manages
 * the tab button first, then the other controls together.
 */
#ifndef HNSYB_DSN_DIALOG_POOLTAB_H
#define HNSYB_DSN_DIALOG_POOLTAB_H

#include <X11/Intrinsic.h>

#include "platform/export.h"

// `catalog` is the open message catalog (an nl_catd).  A widget that cannot
// be made shows the out-of-memory box on the notebook; the tab stays
// incomplete.
ZU_EXPORT void createConnPoolTab(Widget notebook, void* catalog);
// Value-changed callback of tgEnableConnPool: the reset toggle and the three
// fields follow its state; their labels stay sensitive.
ZU_EXPORT void enablePooling(Widget w, XtPointer client, XtPointer call);

#endif
