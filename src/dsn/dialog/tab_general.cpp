// The General tab: name, description, network address and database of the
// data source, one labelled row each, and the tab's help button.
#include <Xm/Xm.h>

#include <initializer_list>

#include "dsn/dialog/builders.h"
#include "dsn/dialog/tabs_impl.h"
#include "dsn/dialog/widgets_impl.h"

Widget frmSybGen, btnSybGen, btnSybgenHelp;
Widget lblSybDSName, txtSybDSNAme, lblSybDesc, txtSybDesc, lblSybNetAddr, txtSybNetAddr, lblSybDBName, txtSybDBName;

namespace {

constexpr FieldColumns COLUMNS = {5, 160, 160, 370};
constexpr int HELP_LEFT = 400, HELP_RIGHT = 480;

}  // namespace

Widget createGeneralTab(Widget notebook)
{
    frmSybGen = createTabPage(notebook, "frmSybGen");
    btnSybGen = createTabButton(notebook, "btnSybGen", 24055);
    if (!widgetMade(frmSybGen) || !widgetMade(btnSybGen))
        return frmSybGen;
    TabChildren children;

    const LabelledField rows[] = {
        {24052, "txtSybDSNAme", &lblSybDSName, &txtSybDSNAme, 5, 30},
        {24091, "txtSybDesc", &lblSybDesc, &txtSybDesc, 35, 60},
        {24093, "txtSybNetAddr", &lblSybNetAddr, &txtSybNetAddr, 65, 90},
        {24053, "txtSybDBName", &lblSybDBName, &txtSybDBName, 95, 120},
    };
    if (!buildLabelledFields(frmSybGen, children, rows, COLUMNS))
        return frmSybGen;
    btnSybgenHelp = addHelpButton(frmSybGen, children, "btnSybgenHelp", "sybgeneral", 5, 30, HELP_LEFT, HELP_RIGHT);
    if (btnSybgenHelp == nullptr)
        return frmSybGen;

    children.manage();
    return frmSybGen;
}
