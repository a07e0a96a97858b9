/*
 * Builders of the tabs that create_shell1 makes itself, one per file, each
 * top to bottom: a Form page in the notebook, its tab button, and its
 * controls, stored in the globals of widgets_impl.h.  Each returns the page
 * form (null when it could not be made).  The widgets belong to the notebook.
 */
#ifndef HNSYB_DSN_DIALOG_TABS_IMPL_H
#define HNSYB_DSN_DIALOG_TABS_IMPL_H

#include <X11/Intrinsic.h>

Widget createGeneralTab(Widget notebook);
Widget createAdvancedTab(Widget notebook);
Widget createConnectionTab(Widget notebook);
Widget createPerformanceTab(Widget notebook);
Widget createFailoverTab(Widget notebook);

// Calls zuDisplayHelp(driDsnNameL, topic) when the record is there; the
// client data is the topic, a string of static life.
void showTabHelp(Widget w, XtPointer topic, XtPointer call);

#endif
