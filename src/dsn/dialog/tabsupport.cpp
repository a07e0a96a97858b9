// Pages, tab buttons, role-named buttons and the help callback shared by the
// tab builders.  See tabs_impl.h.
#include <Xm/Form.h>
#include <Xm/Notebook.h>
#include <Xm/PushB.h>
#include <Xm/Xm.h>

#include "dsn/backend_impl.h"
#include "dsn/dialog/builders.h"
#include "dsn/dialog/tabs_impl.h"
#include "dsn/msgbox_impl.h"
#include "help/help.h"

Widget createTabPage(Widget notebook, const char* name)
{
    Arg args[1];
    XtSetArg(args[0], XmNnotebookChildType, XmPAGE);
    return XmCreateForm(notebook, const_cast<char*>(name), args, 1);
}

Widget createTabButton(Widget notebook, const char* name, int labelId)
{
    char text[ZU_LABEL_BUFFER];
    XmString label = XmStringCreateLocalized(getMsgByID(labelId, text, sizeof text));
    Arg args[2];
    XtSetArg(args[0], XmNnotebookChildType, XmMAJOR_TAB);
    XtSetArg(args[1], XmNlabelString, label);
    Widget button = XmCreatePushButton(notebook, const_cast<char*>(name), args, 2);
    XmStringFree(label);
    return button;
}

Widget createNamedButton(Widget parent, const char* name, int labelId)
{
    char text[ZU_LABEL_BUFFER];
    XmString label = XmStringCreateLocalized(getMsgByID(labelId, text, sizeof text));
    Arg args[1];
    XtSetArg(args[0], XmNlabelString, label);
    Widget button = XmCreatePushButton(parent, const_cast<char*>(name), args, 1);
    XmStringFree(label);
    return button;
}

void requestHelp(const unsigned char* book, const unsigned char* topic)
{
    zuDisplayHelp(book, topic);
}

void showTabHelp(Widget, XtPointer topic, XtPointer)
{
    // The record begins with the driver's name, which is what the help
    // layer looks the help root up by.
    if (driDsnNameL != nullptr && topic != nullptr)
        requestHelp(reinterpret_cast<const unsigned char*>(driDsnNameL->driverName),
                    static_cast<const unsigned char*>(topic));
}

bool widgetMade(Widget w)
{
    if (w != nullptr)
        return true;
    showOutOfMemoryError(shell1);
    exit_code = 1;
    return false;
}

bool buildLabelledFields(Widget form, TabChildren& children, std::span<const LabelledField> rows,
                         const FieldColumns& columns)
{
    for (const LabelledField& row : rows) {
        *row.label = children.add(createLabel(form, row.labelId));
        *row.field = children.add(createTextField(form, row.fieldName, nullptr));
        if (!widgetMade(*row.label) || !widgetMade(*row.field))
            return false;
        setControlRect(*row.label, row.top, row.bottom, columns.labelLeft, columns.labelRight);
        setControlRect(*row.field, row.top, row.bottom, columns.fieldLeft, columns.fieldRight);
    }
    return true;
}

Widget addHelpButton(Widget form, TabChildren& children, const char* name, const char* topic, int top, int bottom,
                     int left, int right)
{
    Widget button = children.add(createNamedButton(form, name, 7311));
    if (!widgetMade(button))
        return nullptr;
    setControlRect(button, top, bottom, left, right);
    XtAddCallback(button, XmNactivateCallback, showTabHelp, const_cast<char*>(topic));
    return button;
}
