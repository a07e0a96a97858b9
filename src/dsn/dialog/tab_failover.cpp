// The Failover tab: load balancing, retry count and delay, the alternate
// servers list, and the failover mode, granularity and preconnect controls.
// Mode, granularity and preconnect are not in the control table: they work
// on the screen and are never saved.
#include <Xm/ComboBox.h>
#include <Xm/Text.h>
#include <Xm/ToggleB.h>
#include <Xm/Xm.h>

#include <initializer_list>

#include "core/strcmp.h"
#include "dsn/dialog/builders.h"
#include "dsn/dialog/combo_impl.h"
#include "dsn/dialog/tabs_impl.h"
#include "dsn/dialog/widgets_impl.h"

Widget frmFailover, btnFailover, btnfailHelp, tgloadbal;
Widget lbconretcnt, txtconretcnt, lbconretdel, txtconretdel, lbaltserv, txtaltserv;
Widget lbFailoverMode, cbFailoverMode, lbFailoverGranularity, cbFailoverGranularity, tgFailoverPreconnect;

namespace {

constexpr int MODE_LABEL_LEFT = 10, MODE_LABEL_RIGHT = 155;
constexpr int MODE_LIST_LEFT = 170, MODE_LIST_RIGHT = 400;

const char* const failoverModeItems[] = {"0 - Connection", "1 - Extended Connection", "2 - Select"};
const char* const granularityItems[] = {"0 - Non-Atomic", "1 - Atomic", "2 - Atomic Including Repositioning",
                                        "3 - Disable Integrity Check"};

// Modify-verify of the alternate servers list: a lone line feed (the
// Return key) is refused, so the list stays one logical line; longer pasted
// text passes as it is.
void discardNewLine(Widget, XtPointer, XtPointer call)
{
    auto* cbs = static_cast<XmTextVerifyCallbackStruct*>(call);
    if (cbs != nullptr && cbs->text != nullptr && cbs->text->length == 1 && cbs->text->ptr != nullptr &&
        cbs->text->ptr[0] == '\n')
        cbs->doit = False;
}

}  // namespace

void failoverModeChanged(Widget, XtPointer, XtPointer)
{
    char mode[ZU_LABEL_BUFFER];
    const bool connectionOnly = strCompareCi(comboSelectedText(cbFailoverMode, mode, sizeof mode), "0 - Connection") == 0;
    for (Widget w : {cbFailoverGranularity, tgFailoverPreconnect})
        if (w != nullptr)
            XtSetSensitive(w, !connectionOnly);
}

Widget createFailoverTab(Widget notebook)
{
    frmFailover = createTabPage(notebook, "frmFailover");
    btnFailover = createTabButton(notebook, "btnFailover", 24087);
    if (!widgetMade(frmFailover) || !widgetMade(btnFailover))
        return frmFailover;
    Widget form = frmFailover;
    TabChildren children;

    tgloadbal = children.add(createToggleButton(form, 24083, False));
    btnfailHelp = children.add(createNamedButton(form, "btnfailHelp", 7311));
    lbconretcnt = children.add(createLabel(form, 24085));
    txtconretcnt = children.add(createTextField(form, "txtconretcnt", "0"));
    lbconretdel = children.add(createLabel(form, 24086));
    txtconretdel = children.add(createTextField(form, "txtconretdel", "3"));
    lbaltserv = children.add(createLabel(form, 24084));
    txtaltserv = createMultiLineTextField(form, "txtaltserv");
    for (Widget w : {tgloadbal, btnfailHelp, lbconretcnt, txtconretcnt, lbconretdel, txtconretdel, lbaltserv, txtaltserv})
        if (!widgetMade(w))
            return form;
    setControlRect(tgloadbal, 5, 35, 5, 240);
    setControlRect(btnfailHelp, 5, 30, 390, 480);
    XtAddCallback(btnfailHelp, XmNactivateCallback, showTabHelp, const_cast<char*>("sybfail"));
    setControlRect(lbconretcnt, 35, 60, 5, 175);
    setControlRect(txtconretcnt, 35, 60, 175, 230);
    setControlRect(lbconretdel, 35, 60, 240, 410);
    setControlRect(txtconretdel, 35, 60, 410, 480);
    setControlRect(lbaltserv, 65, 90, 5, 480);
    // The scrolled window carries the rectangle; the text is managed within.
    setControlRect(XtParent(txtaltserv), 95, 290, 5, 480);
    XtAddCallback(txtaltserv, XmNmodifyVerifyCallback, discardNewLine, nullptr);
    XtManageChild(txtaltserv);
    children.add(XtParent(txtaltserv));

    lbFailoverMode = children.add(createLabel(form, 24272));
    if (!widgetMade(lbFailoverMode))
        return form;
    cbFailoverMode = children.add(createDropDownList(form, "cbFailoverMode", failoverModeItems, 3, failoverModeItems[0]));
    if (!widgetMade(cbFailoverMode))
        return form;
    lbFailoverGranularity = children.add(createLabel(form, 24273));
    if (!widgetMade(lbFailoverGranularity))
        return form;
    // The granularity list bears the mode list's widget name too.
    cbFailoverGranularity =
        children.add(createDropDownList(form, "cbFailoverMode", granularityItems, 4, granularityItems[0]));
    if (!widgetMade(cbFailoverGranularity))
        return form;
    tgFailoverPreconnect = children.add(createToggleButton(form, 24274, False));
    if (!widgetMade(tgFailoverPreconnect))
        return form;
    XmToggleButtonSetState(tgFailoverPreconnect, True, False);  // set, without notification
    setControlRect(lbFailoverMode, 300, 325, MODE_LABEL_LEFT, MODE_LABEL_RIGHT);
    setControlRect(cbFailoverMode, 300, 325, MODE_LIST_LEFT, MODE_LIST_RIGHT);
    setControlRect(lbFailoverGranularity, 330, 355, MODE_LABEL_LEFT, MODE_LABEL_RIGHT);
    setControlRect(cbFailoverGranularity, 330, 355, MODE_LIST_LEFT, MODE_LIST_RIGHT);
    setControlRect(tgFailoverPreconnect, 360, 385, 5, 275);
    XtAddCallback(cbFailoverMode, XmNselectionCallback, failoverModeChanged, nullptr);
    // The default mode is "0 - Connection": its dependants start greyed.
    XtSetSensitive(cbFailoverGranularity, False);
    XtSetSensitive(tgFailoverPreconnect, False);

    children.manage();
    return form;
}
