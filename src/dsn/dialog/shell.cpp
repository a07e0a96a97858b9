// The data source dialog: template dialog, main form, notebook of nine tabs
// and the button row.  See shell.h.
#include "dsn/dialog/shell.h"

#include <Xm/DialogS.h>
#include <Xm/Form.h>
#include <Xm/MessageB.h>
#include <Xm/Notebook.h>
#include <Xm/PushB.h>
#include <Xm/Xm.h>

#include <initializer_list>

#include "dsn/about_impl.h"
#include "dsn/backend_impl.h"
#include "dsn/dialog/builders.h"
#include "dsn/dialog/bulktab.h"
#include "dsn/dialog/controltable.h"
#include "dsn/dialog/pooltab.h"
#include "dsn/dialog/securitytab.h"
#include "dsn/dialog/tabs_impl.h"
#include "dsn/dialog/widgets_impl.h"

Widget frmSybMain, tmSyb, btnTestConnect, btnOK, btnCancel, btnApply;
Widget frmAbout, btnAbout;

namespace {

// The dialog has one fixed size: minimum, maximum and base are all this.
constexpr int DIALOG_WIDTH = 525;
constexpr int DIALOG_HEIGHT = 505;

// Notebook rectangle and the button row under it.
constexpr int NOTEBOOK_TOP = 5, NOTEBOOK_BOTTOM = 430, NOTEBOOK_LEFT = 5, NOTEBOOK_RIGHT = 515;
constexpr int BUTTON_TOP = 435, BUTTON_BOTTOM = 470;

Widget createShell()
{
    char title[ZU_LABEL_BUFFER];
    getMsgByID(24051, title, sizeof title);
    Arg args[10];
    int n = 0;
    XtSetArg(args[n], XmNtitle, title), n++;
    XtSetArg(args[n], XmNminWidth, DIALOG_WIDTH), n++;
    XtSetArg(args[n], XmNminHeight, DIALOG_HEIGHT), n++;
    XtSetArg(args[n], XmNmaxWidth, DIALOG_WIDTH), n++;
    XtSetArg(args[n], XmNmaxHeight, DIALOG_HEIGHT), n++;
    XtSetArg(args[n], XmNbaseWidth, DIALOG_WIDTH), n++;
    XtSetArg(args[n], XmNbaseHeight, DIALOG_HEIGHT), n++;
    XtSetArg(args[n], XmNdialogStyle, XmDIALOG_FULL_APPLICATION_MODAL), n++;
    XtSetArg(args[n], XmNdialogType, XmDIALOG_TEMPLATE), n++;
    XtSetArg(args[n], XmNnoResize, True), n++;
    return XmCreateTemplateDialog(shODBCAdmin, const_cast<char*>("sybase"), args, n);
}

Widget createNotebook(Widget parent)
{
    Arg args[3];
    int n = 0;
    XtSetArg(args[n], XmNorientation, XmVERTICAL), n++;
    XtSetArg(args[n], XmNbindingType, XmNONE), n++;
    XtSetArg(args[n], XmNbackPageSize, 0), n++;
    Widget notebook = XmCreateNotebook(parent, const_cast<char*>("tmSyb"), args, n);
    setControlRect(notebook, NOTEBOOK_TOP, NOTEBOOK_BOTTOM, NOTEBOOK_LEFT, NOTEBOOK_RIGHT);
    return notebook;
}

void createButtonRow(Widget form)
{
    struct {
        Widget* button;
        const char* name;
        int labelId;
        int left;
        int right;
        XtCallbackProc callback;
    } const buttons[] = {
        {&btnTestConnect, "btnTestConnect", 24050, 115, 210, btnTestConnect_Clicked},
        {&btnOK, "btnOK", 7309, 220, 305, btnOK_Clicked},
        {&btnCancel, "btnCancel", 7310, 315, 400, btnCancel_Clicked},
        {&btnApply, "btnApply", 24088, 410, 495, btnApply_Clicked},
    };
    for (const auto& b : buttons) {
        *b.button = createNamedButton(form, b.name, b.labelId);
        if (!widgetMade(*b.button))
            return;
        setControlRect(*b.button, BUTTON_TOP, BUTTON_BOTTOM, b.left, b.right);
        XtAddCallback(*b.button, XmNactivateCallback, b.callback, nullptr);
        XtManageChild(*b.button);
    }
}

}  // namespace

void create_shell1(unsigned char* driverPath, unsigned char* driverName, unsigned char* securityTopic)
{
    // An earlier dialog of this process may be gone with its widgets: a build
    // that stops early must leave empty controls, never that dialog's.
    forgetListOfWidgets();
    shell1 = createShell();
    if (!widgetMade(shell1))
        return;
    // The size hints do not size a window that no window manager reads:
    // the box itself takes the dialog's size, without margins, and keeps it.
    XtVaSetValues(shell1, XmNwidth, DIALOG_WIDTH, XmNheight, DIALOG_HEIGHT, XmNmarginWidth, 0, XmNmarginHeight, 0,
                  XmNresizePolicy, XmRESIZE_NONE, nullptr);
    frmSybMain = createForm(shell1, "frmSybMain");
    if (!widgetMade(frmSybMain))
        return;
    tmSyb = createNotebook(frmSybMain);
    if (!widgetMade(tmSyb))
        return;
    createButtonRow(frmSybMain);
    XtVaSetValues(frmSybMain, XmNdefaultButton, btnOK, XmNcancelButton, btnCancel, nullptr);

    // Creation order; each builder makes its page right before its tab
    // button, which is how the notebook pairs them.
    createGeneralTab(tmSyb);
    createAdvancedTab(tmSyb);
    createBulkTab(tmSyb, Rfile);
    createConnPoolTab(tmSyb, Rfile);
    frmSecurity = createSecurityTab(tmSyb, 1, driverName, securityTopic);
    btnSecurity = createTabButton(tmSyb, "btnSecurity", 24253);
    createConnectionTab(tmSyb);
    createPerformanceTab(tmSyb);
    createFailoverTab(tmSyb);
    frmAbout = createAbtForm(tmSyb, driverPath);
    btnAbout = createTabButton(tmSyb, "btnAbout", 24092);

    // Pages and tabs are managed last, in this order.
    Widget frmbulk = XtNameToWidget(tmSyb, "frmbulk");
    Widget btnbulk = XtNameToWidget(tmSyb, "btnbulk");
    for (Widget w : {frmSybGen, btnSybGen, frmAdvSybase, btnSybAdvanced, frmSybConnection, btnSybConnection,
                     frmPerformance, btnPerformance, frmFailover, btnFailover, frmbulk, btnbulk, frmPool, btnPool,
                     frmAbout, btnAbout, frmSecurity, btnSecurity})
        if (w != nullptr)
            XtManageChild(w);

    // No page arrows: the tabs are the only way between pages.
    if (Widget scroller = XtNameToWidget(tmSyb, "PageScroller"); scroller != nullptr)
        XtUnmanageChild(scroller);
    XtManageChild(tmSyb);
    XtManageChild(frmSybMain);

    createListOfWidgets();
}
