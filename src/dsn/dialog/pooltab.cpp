// The Pooling tab: the driver's pool settings on the screen only.  See
// pooltab.h.
#include "dsn/dialog/pooltab.h"

#include <Xm/Label.h>
#include <Xm/PushB.h>
#include <Xm/Text.h>
#include <Xm/TextF.h>
#include <Xm/ToggleB.h>
#include <Xm/Xm.h>

#include <initializer_list>
#include <nl_types.h>

#include "dsn/backend_impl.h"
#include "dsn/dialog/builders.h"
#include "dsn/dialog/tabs_impl.h"
#include "dsn/dialog/widgets_impl.h"
#include "dsn/msgbox_impl.h"
#include "platform/catalog.h"

Widget frmPool, btnPool, btnPoolhelp, tgEnableConnPool, tgConnReset;
Widget lbMaxPoolSize, txtMaxPoolSize, lbMinPoolSize, txtMinPoolSize, lbLoadBalanceTimeout, txtLoadBalanceTimeout;

namespace {

constexpr int LABEL_BUFFER = 513;
constexpr int LEFT = 15, LABEL_RIGHT = 200, FIELD_LEFT = 205, FIELD_RIGHT = 300;

// Labels of this tab come from the catalog the caller hands in.
XmString catalogText(void* catalog, int id)
{
    char text[LABEL_BUFFER];
    LoadStringFromOpenFile(static_cast<nl_catd>(catalog), static_cast<unsigned int>(id), text, LABEL_BUFFER);
    return XmStringCreateLocalized(text);
}

Widget labelled(WidgetClass cls, Widget parent, const char* name, void* catalog, int id)
{
    XmString text = catalogText(catalog, id);
    Widget w = XtVaCreateWidget(name, cls, parent, XmNlabelString, text, XmNalignment, XmALIGNMENT_BEGINNING, nullptr);
    XmStringFree(text);
    return w;
}

Widget field(Widget parent, const char* name, const char* value)
{
    Widget w = XtVaCreateWidget(name, xmTextFieldWidgetClass, parent, XmNmarginHeight, 0, XmNmarginWidth, 0,
                                XmNvalue, value, XmNsensitive, False, nullptr);
    return w;
}

void btnPoolingHelp_Clicked(Widget, XtPointer, XtPointer)
{
    if (driDsnNameL != nullptr)
        requestHelp(reinterpret_cast<const unsigned char*>(driDsnNameL->driverName),
                      reinterpret_cast<const unsigned char*>("sybcpool"));
}

bool made(Widget notebook, Widget w)
{
    if (w != nullptr)
        return true;
    showOutOfMemoryError(notebook);
    return false;
}

}  // namespace

void enablePooling(Widget, XtPointer, XtPointer)
{
    const Boolean on = tgEnableConnPool != nullptr && XmToggleButtonGetState(tgEnableConnPool);
    for (Widget w : {tgConnReset, txtMaxPoolSize, txtMinPoolSize, txtLoadBalanceTimeout})
        if (w != nullptr)
            XtSetSensitive(w, on);
}

void createConnPoolTab(Widget notebook, void* catalog)
{
    frmPool = createTabPage(notebook, "frmPool");
    if (!made(notebook, frmPool))
        return;
    {
        XmString text = catalogText(catalog, 24275);
        btnPool = XtVaCreateWidget("btnPool", xmPushButtonWidgetClass, notebook, XmNnotebookChildType, XmMAJOR_TAB,
                                   XmNlabelString, text, nullptr);
        XmStringFree(text);
    }
    if (!made(notebook, btnPool))
        return;
    XtManageChild(btnPool);

    TabChildren children;
    {
        XmString text = catalogText(catalog, 7311);
        btnPoolhelp = children.add(
            XtVaCreateWidget("btnPoolhelp", xmPushButtonWidgetClass, frmPool, XmNlabelString, text, nullptr));
        XmStringFree(text);
    }
    if (!made(notebook, btnPoolhelp))
        return;
    XtAddCallback(btnPoolhelp, XmNactivateCallback, btnPoolingHelp_Clicked, nullptr);
    setControlRect(btnPoolhelp, 20, 45, 300, 360);

    tgEnableConnPool = children.add(labelled(xmToggleButtonWidgetClass, frmPool, "tgEnableConnPool", catalog, 24275));
    tgConnReset = children.add(labelled(xmToggleButtonWidgetClass, frmPool, "tgConnReset", catalog, 24276));
    if (!made(notebook, tgEnableConnPool) || !made(notebook, tgConnReset))
        return;
    XtSetSensitive(tgConnReset, False);
    XtAddCallback(tgEnableConnPool, XmNvalueChangedCallback, enablePooling, nullptr);
    setControlRect(tgEnableConnPool, 20, 45, LEFT, 100);
    setControlRect(tgConnReset, 50, 75, LEFT, LABEL_RIGHT);

    struct {
        Widget* label;
        Widget* text;
        const char* labelName;
        const char* fieldName;
        int labelId;
        const char* start;
        int top;
    } const rows[] = {
        {&lbMaxPoolSize, &txtMaxPoolSize, "lbMaxPoolSize", "MaxPoolSize", 24277, "100", 80},
        {&lbMinPoolSize, &txtMinPoolSize, "lbMinPoolSize", "MinPoolSize", 24278, "0", 110},
        {&lbLoadBalanceTimeout, &txtLoadBalanceTimeout, "lbLoadBalanceTimeout", "LBTimeout", 24280, "0", 140},
    };
    for (const auto& row : rows) {
        *row.label = children.add(labelled(xmLabelWidgetClass, frmPool, row.labelName, catalog, row.labelId));
        if (!made(notebook, *row.label))
            return;
        *row.text = children.add(field(frmPool, row.fieldName, row.start));
        if (!made(notebook, *row.text))
            return;
        setControlRect(*row.label, row.top, row.top + 25, LEFT, LABEL_RIGHT);
        setControlRect(*row.text, row.top, row.top + 25, FIELD_LEFT, FIELD_RIGHT);
    }
    children.manage();
}
