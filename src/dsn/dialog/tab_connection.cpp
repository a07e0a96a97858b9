// The Connection tab: database list, workstation, character set,
// application name and language, one labelled row each, and the help button.
#include <Xm/Xm.h>

#include <initializer_list>

#include "dsn/dialog/builders.h"
#include "dsn/dialog/tabs_impl.h"
#include "dsn/dialog/widgets_impl.h"

Widget frmSybConnection, btnSybConnection, btnSybConHelp;
Widget lblSybDBList, txtSybDBList, lblSybWorkstationID, txtSybWorkstationID, lblSybCharset, txtSybCharset,
    lblSybAppName, txtSybAppName, lblSybLang, txtSybLang;

namespace {

constexpr int LABEL_LEFT = 5, LABEL_RIGHT = 190;
constexpr int FIELD_LEFT = 190, FIELD_RIGHT = 390;
constexpr int HELP_LEFT = 400, HELP_RIGHT = 480;

struct Row {
    int labelId;
    const char* fieldName;
    Widget* label;
    Widget* field;
    int top;
    int bottom;
};

}  // namespace

Widget createConnectionTab(Widget notebook)
{
    frmSybConnection = createTabPage(notebook, "frmSybConnection");
    btnSybConnection = createTabButton(notebook, "btnSybConnection", 24076);
    if (!widgetMade(frmSybConnection) || !widgetMade(btnSybConnection))
        return frmSybConnection;
    TabChildren children;

    const Row rows[] = {
        {24066, "txtSybDBList", &lblSybDBList, &txtSybDBList, 5, 30},
        {24068, "txtSybWorkstationID", &lblSybWorkstationID, &txtSybWorkstationID, 35, 60},
        {24069, "txtSybCharset", &lblSybCharset, &txtSybCharset, 65, 90},
        {24070, "txtSybAppName", &lblSybAppName, &txtSybAppName, 95, 120},
        {24071, "txtSybLang", &lblSybLang, &txtSybLang, 125, 150},
    };
    for (const Row& row : rows) {
        *row.label = children.add(createLabel(frmSybConnection, row.labelId));
        *row.field = children.add(createTextField(frmSybConnection, row.fieldName, nullptr));
        if (!widgetMade(*row.label) || !widgetMade(*row.field))
            return frmSybConnection;
        setControlRect(*row.label, row.top, row.bottom, LABEL_LEFT, LABEL_RIGHT);
        setControlRect(*row.field, row.top, row.bottom, FIELD_LEFT, FIELD_RIGHT);
    }

    btnSybConHelp = children.add(createNamedButton(frmSybConnection, "btnSybConHelp", 7311));
    if (!widgetMade(btnSybConHelp))
        return frmSybConnection;
    setControlRect(btnSybConHelp, 5, 30, HELP_LEFT, HELP_RIGHT);
    XtAddCallback(btnSybConHelp, XmNactivateCallback, showTabHelp, const_cast<char*>("sybconnection"));

    children.manage();
    return frmSybConnection;
}
