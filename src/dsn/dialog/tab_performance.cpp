// The Performance tab: select and prepare methods, fetch array size, packet
// size and cursor cache size, and the help button.
#include <Xm/Xm.h>

#include <initializer_list>

#include "dsn/dialog/builders.h"
#include "dsn/dialog/tabs_impl.h"
#include "dsn/dialog/widgets_impl.h"

Widget frmPerformance, btnPerformance, btnperfhelp;
Widget lbselmethod, cbselmethod, lbprepmethod, cbprepmethod, lbfetcharray, txtfetcharray, lbpacsize, txtpacsize,
    lbconcachesize, txtconcachesize;

namespace {

constexpr int LABEL_LEFT = 5, LABEL_RIGHT = 160;
constexpr int CONTROL_LEFT = 160, CONTROL_RIGHT = 355;
constexpr int HELP_LEFT = 395, HELP_RIGHT = 480;

const char* const selectMethodItems[] = {"0 - Cursor", "1 - Direct"};
const char* const prepareMethodItems[] = {"0 - None", "1 - Partial", "2 - Full", "3 - Full at Prepare"};

}  // namespace

Widget createPerformanceTab(Widget notebook)
{
    frmPerformance = createTabPage(notebook, "frmPerformance");
    btnPerformance = createTabButton(notebook, "btnPerformance", 24082);
    if (!widgetMade(frmPerformance) || !widgetMade(btnPerformance))
        return frmPerformance;
    Widget form = frmPerformance;
    TabChildren children;

    lbselmethod = children.add(createLabel(form, 24077));
    cbselmethod = children.add(createDropDownList(form, "cbselmethod", selectMethodItems, 2, "0 - Cursor"));
    lbprepmethod = children.add(createLabel(form, 24078));
    cbprepmethod = children.add(createDropDownList(form, "cbprepmethod", prepareMethodItems, 4, "1 - Partial"));
    lbfetcharray = children.add(createLabel(form, 24080));
    txtfetcharray = children.add(createTextField(form, "txtfetcharray", "50"));
    lbpacsize = children.add(createLabel(form, 24079));
    txtpacsize = children.add(createTextField(form, "txtpacsize", "0"));
    lbconcachesize = children.add(createLabel(form, 24081));
    txtconcachesize = children.add(createTextField(form, "txtconcachesize", "1"));
    btnperfhelp = children.add(createNamedButton(form, "btnperfhelp", 7311));
    for (Widget w : {lbselmethod, cbselmethod, lbprepmethod, cbprepmethod, lbfetcharray, txtfetcharray, lbpacsize,
                     txtpacsize, lbconcachesize, txtconcachesize, btnperfhelp})
        if (!widgetMade(w))
            return form;

    struct {
        Widget label, control;
        int top, bottom;
    } const rows[] = {
        {lbselmethod, cbselmethod, 5, 35},   {lbprepmethod, cbprepmethod, 40, 70}, {lbfetcharray, txtfetcharray, 75, 100},
        {lbpacsize, txtpacsize, 105, 130},   {lbconcachesize, txtconcachesize, 135, 160},
    };
    for (const auto& row : rows) {
        setControlRect(row.label, row.top, row.bottom, LABEL_LEFT, LABEL_RIGHT);
        setControlRect(row.control, row.top, row.bottom, CONTROL_LEFT, CONTROL_RIGHT);
    }
    setControlRect(btnperfhelp, 5, 35, HELP_LEFT, HELP_RIGHT);
    XtAddCallback(btnperfhelp, XmNactivateCallback, showTabHelp, const_cast<char*>("sybperform"));

    children.manage();
    return form;
}
