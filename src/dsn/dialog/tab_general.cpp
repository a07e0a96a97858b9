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

constexpr int LABEL_LEFT = 5, LABEL_RIGHT = 160;
constexpr int FIELD_LEFT = 160, FIELD_RIGHT = 370;
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

Widget createGeneralTab(Widget notebook)
{
    frmSybGen = createTabPage(notebook, "frmSybGen");
    btnSybGen = createTabButton(notebook, "btnSybGen", 24055);
    if (!widgetMade(frmSybGen) || !widgetMade(btnSybGen))
        return frmSybGen;
    TabChildren children;

    const Row rows[] = {
        {24052, "txtSybDSNAme", &lblSybDSName, &txtSybDSNAme, 5, 30},
        {24091, "txtSybDesc", &lblSybDesc, &txtSybDesc, 35, 60},
        {24093, "txtSybNetAddr", &lblSybNetAddr, &txtSybNetAddr, 65, 90},
        {24053, "txtSybDBName", &lblSybDBName, &txtSybDBName, 95, 120},
    };
    for (const Row& row : rows) {
        *row.label = children.add(createLabel(frmSybGen, row.labelId));
        *row.field = children.add(createTextField(frmSybGen, row.fieldName, nullptr));
        if (!widgetMade(*row.label) || !widgetMade(*row.field))
            return frmSybGen;
        setControlRect(*row.label, row.top, row.bottom, LABEL_LEFT, LABEL_RIGHT);
        setControlRect(*row.field, row.top, row.bottom, FIELD_LEFT, FIELD_RIGHT);
    }

    btnSybgenHelp = children.add(createNamedButton(frmSybGen, "btnSybgenHelp", 7311));
    if (!widgetMade(btnSybgenHelp))
        return frmSybGen;
    setControlRect(btnSybgenHelp, 5, 30, HELP_LEFT, HELP_RIGHT);
    XtAddCallback(btnSybgenHelp, XmNactivateCallback, showTabHelp, const_cast<char*>("sybgeneral"));

    children.manage();
    return frmSybGen;
}
