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

constexpr FieldColumns COLUMNS = {5, 190, 190, 390};
constexpr int HELP_LEFT = 400, HELP_RIGHT = 480;

}  // namespace

Widget createConnectionTab(Widget notebook)
{
    frmSybConnection = createTabPage(notebook, "frmSybConnection");
    btnSybConnection = createTabButton(notebook, "btnSybConnection", 24076);
    if (!widgetMade(frmSybConnection) || !widgetMade(btnSybConnection))
        return frmSybConnection;
    TabChildren children;

    const LabelledField rows[] = {
        {24066, "txtSybDBList", &lblSybDBList, &txtSybDBList, 5, 30},
        {24068, "txtSybWorkstationID", &lblSybWorkstationID, &txtSybWorkstationID, 35, 60},
        {24069, "txtSybCharset", &lblSybCharset, &txtSybCharset, 65, 90},
        {24070, "txtSybAppName", &lblSybAppName, &txtSybAppName, 95, 120},
        {24071, "txtSybLang", &lblSybLang, &txtSybLang, 125, 150},
    };
    if (!buildLabelledFields(frmSybConnection, children, rows, COLUMNS))
        return frmSybConnection;
    btnSybConHelp = addHelpButton(frmSybConnection, children, "btnSybConHelp", "sybconnection", 5, 30, HELP_LEFT, HELP_RIGHT);
    if (btnSybConHelp == nullptr)
        return frmSybConnection;

    children.manage();
    return frmSybConnection;
}
