// The Advanced tab: error position behaviour, long data buffer, the
// initialization string, code page conversion errors, four toggles and the
// two time-outs.  The application code page field is built but neither
// placed nor managed: it carries its value through the control table only.
#include <Xm/Xm.h>

#include <initializer_list>

#include "dsn/dialog/builders.h"
#include "dsn/dialog/tabs_impl.h"
#include "dsn/dialog/widgets_impl.h"

Widget frmAdvSybase, btnSybAdvanced, btnAdvHelp;
Widget lblSybCursPos, cmbSybCursPos, lblSybDefBufSz, txtSybDefBufSz, lblSybIniString, txtInitializationString,
    lblSybCodePConvErrors, cmbSybCodePConvErrors;
Widget tgSybThreads, tgSybQuotedIdentifiers, tgSybDescParameters, tgSybTruncTimeType;
Widget lbLoginTimeout, txtLoginTimeout, lbQueryTimeout, txtQueryTimeout, lbianaapp, txtappcodepage;

namespace {

constexpr int HELP_LEFT = 400, HELP_RIGHT = 480;
constexpr int TOGGLE_LEFT = 5, TOGGLE_RIGHT = 475;
constexpr int TIMEOUT_LABEL_RIGHT = 200, TIMEOUT_FIELD_LEFT = 210, TIMEOUT_FIELD_RIGHT = 260;

const char* const cursorPositionItems[] = {"0 - Default", "1 - MS Compatible"};
const char* const conversionErrorItems[] = {"0 - Ignore Errors", "1 - Return Errors", "2 - Return Warning"};

}  // namespace

Widget createAdvancedTab(Widget notebook)
{
    // The page's widget name is the tab's own text.
    char name[ZU_LABEL_BUFFER];
    frmAdvSybase = createTabPage(notebook, getMsgByID(24056, name, sizeof name));
    btnSybAdvanced = createTabButton(notebook, "btnSybAdvanced", 24056);
    if (!widgetMade(frmAdvSybase) || !widgetMade(btnSybAdvanced))
        return frmAdvSybase;
    Widget form = frmAdvSybase;
    TabChildren children;

    lblSybCursPos = children.add(createLabel(form, 24057));
    cmbSybCursPos = children.add(createDropDownList(form, "cmbSybCursPos", cursorPositionItems, 2, "0 - Default"));
    btnAdvHelp = children.add(createNamedButton(form, "btnAdvHelp", 7311));
    lblSybDefBufSz = children.add(createLabel(form, 24058));
    char defaultBuffer[ZU_LABEL_BUFFER];
    txtSybDefBufSz = children.add(
        createTextField(form, "txtSybDefBufSz", getMsgByID(24059, defaultBuffer, sizeof defaultBuffer)));
    lblSybIniString = children.add(createLabel(form, 24060));
    txtInitializationString = children.add(createTextField(form, "txtInitializationString", nullptr));
    lblSybCodePConvErrors = children.add(createLabel(form, 24061));
    cmbSybCodePConvErrors = children.add(
        createDropDownList(form, "cmbSybCodePConvErrors", conversionErrorItems, 3, "0 - Ignore Errors"));
    for (Widget w : {lblSybCursPos, cmbSybCursPos, btnAdvHelp, lblSybDefBufSz, txtSybDefBufSz, lblSybIniString,
                     txtInitializationString, lblSybCodePConvErrors, cmbSybCodePConvErrors})
        if (!widgetMade(w))
            return form;
    setControlRect(lblSybCursPos, 25, 50, 5, 210);
    setControlRect(cmbSybCursPos, 25, 50, 210, 385);
    setControlRect(btnAdvHelp, 25, 50, HELP_LEFT, HELP_RIGHT);
    XtAddCallback(btnAdvHelp, XmNactivateCallback, showTabHelp, const_cast<char*>("sybadvanced"));
    setControlRect(lblSybDefBufSz, 50, 75, 5, 300);
    setControlRect(txtSybDefBufSz, 50, 75, 305, 385);
    setControlRect(lblSybIniString, 100, 125, 5, 210);
    setControlRect(txtInitializationString, 100, 125, 210, 480);
    setControlRect(lblSybCodePConvErrors, 125, 150, 5, 208);
    setControlRect(cmbSybCodePConvErrors, 125, 150, 210, 385);

    // Rows 150-180 and 255-280 stay empty.
    tgSybThreads = children.add(createToggleButton(form, 24062, True));
    tgSybQuotedIdentifiers = children.add(createToggleButton(form, 24063, False));
    tgSybDescParameters = children.add(createToggleButton(form, 24064, False));
    tgSybTruncTimeType = children.add(createToggleButton(form, 24065, False));
    for (Widget w : {tgSybThreads, tgSybQuotedIdentifiers, tgSybDescParameters, tgSybTruncTimeType})
        if (!widgetMade(w))
            return form;
    setControlRect(tgSybThreads, 180, 205, TOGGLE_LEFT, 200);
    setControlRect(tgSybQuotedIdentifiers, 205, 230, TOGGLE_LEFT, TOGGLE_RIGHT);
    setControlRect(tgSybDescParameters, 230, 255, TOGGLE_LEFT, TOGGLE_RIGHT);
    setControlRect(tgSybTruncTimeType, 280, 305, TOGGLE_LEFT, TOGGLE_RIGHT);

    // Not placed, not managed: the user never sees the code page value.
    lbianaapp = createLabel(form, 24054);
    txtappcodepage = createTextField(form, "txtappcodepage", "4");
    if (!widgetMade(lbianaapp) || !widgetMade(txtappcodepage))
        return form;

    lbLoginTimeout = children.add(createLabel(form, 24270));
    if (!widgetMade(lbLoginTimeout))
        return form;
    txtLoginTimeout = children.add(createTextField(form, "txtLoginTimeout", "15"));
    if (!widgetMade(txtLoginTimeout))
        return form;
    lbQueryTimeout = children.add(createLabel(form, 24271));
    if (!widgetMade(lbQueryTimeout))
        return form;
    txtQueryTimeout = children.add(createTextField(form, "txtQueryTimeout", "0"));
    if (!widgetMade(txtQueryTimeout))
        return form;
    setControlRect(lbLoginTimeout, 305, 330, 5, TIMEOUT_LABEL_RIGHT);
    setControlRect(txtLoginTimeout, 305, 330, TIMEOUT_FIELD_LEFT, TIMEOUT_FIELD_RIGHT);
    setControlRect(lbQueryTimeout, 330, 355, 5, TIMEOUT_LABEL_RIGHT);
    setControlRect(txtQueryTimeout, 330, 355, TIMEOUT_FIELD_LEFT, TIMEOUT_FIELD_RIGHT);

    children.manage();
    return form;
}
