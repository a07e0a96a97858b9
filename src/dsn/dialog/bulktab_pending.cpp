// TEMPORARY Bulk tab: an empty page with the tab's name, so that the
// notebook has all nine tabs while the real Bulk tab (its fields, buttons and
// the load, verify and export dialogs) is being written.  That work replaces
// this whole file with its own createBulkTab.
#include <Xm/Form.h>
#include <Xm/Notebook.h>
#include <Xm/PushB.h>
#include <Xm/Xm.h>
#include <nl_types.h>

#include "dsn/dialog/bulktab.h"
#include "platform/catalog.h"

void createBulkTab(Widget notebook, void* catalog)
{
    Widget page = XtVaCreateWidget("frmbulk", xmFormWidgetClass, notebook, XmNnotebookChildType, XmPAGE, nullptr);
    char text[513];
    LoadStringFromOpenFile(static_cast<nl_catd>(catalog), 24300, text, sizeof text);
    XmString label = XmStringCreateLocalized(text);
    Widget tab = XtVaCreateWidget("btnbulk", xmPushButtonWidgetClass, notebook, XmNnotebookChildType, XmMAJOR_TAB,
                                  XmNlabelString, label, nullptr);
    XmStringFree(label);
    XtManageChild(tab);
    (void)page;  // managed with the other pages by create_shell1 (found by name)
}
