// Low-level widget builders: one widget each, texts from the open catalog,
// rectangles by Form attachments.  See builders.h.
#include "dsn/dialog/builders.h"
#include "dsn/dialog/combo_impl.h"

#include <Xm/ComboBox.h>
#include <Xm/Form.h>
#include <Xm/Label.h>
#include <Xm/PushB.h>
#include <Xm/Text.h>
#include <Xm/TextF.h>
#include <Xm/ToggleB.h>
#include <Xm/Xm.h>

#include "dsn/backend_impl.h"
#include "dsn/msgbox_impl.h"
#include "platform/catalog.h"

char* getMsgByID(int id, char* buf, unsigned int size)
{
    if (buf == nullptr || size == 0)
        return buf;
    LoadStringFromOpenFile(Rfile, static_cast<unsigned int>(id), buf, static_cast<int>(size));
    return buf;
}

Widget createForm(Widget parent, const char* name)
{
    return XmCreateForm(parent, const_cast<char*>(name), nullptr, 0);
}

Widget createPushButton(Widget parent, int id)
{
    char text[ZU_LABEL_BUFFER];
    getMsgByID(id, text, sizeof text);
    return XmCreatePushButton(parent, text, nullptr, 0);
}

Widget createLabel(Widget parent, int id)
{
    char text[ZU_LABEL_BUFFER];
    getMsgByID(id, text, sizeof text);
    Arg args[1];
    XtSetArg(args[0], XmNalignment, XmALIGNMENT_BEGINNING);
    return XmCreateLabel(parent, text, args, 1);
}

Widget createToggleButton(Widget parent, int id, Boolean state)
{
    char text[ZU_LABEL_BUFFER];
    getMsgByID(id, text, sizeof text);
    Arg args[1];
    XtSetArg(args[0], XmNalignment, XmALIGNMENT_BEGINNING);
    Widget toggle = XmCreateToggleButton(parent, text, args, 1);
    if (toggle != nullptr)
        XmToggleButtonSetState(toggle, state, True);
    return toggle;
}

Widget createTextField(Widget parent, const char* name, const char* text)
{
    Arg args[2];
    XtSetArg(args[0], XmNmarginHeight, 0);
    XtSetArg(args[1], XmNmarginWidth, 0);
    Widget field = XmCreateTextField(parent, const_cast<char*>(name), args, 2);
    if (field != nullptr && text != nullptr)
        XmTextFieldSetString(field, const_cast<char*>(text));
    return field;
}

Widget createMultiLineTextField(Widget parent, const char* name)
{
    Arg args[7];
    int n = 0;
    XtSetArg(args[n], XmNmarginHeight, 0), n++;
    XtSetArg(args[n], XmNmarginWidth, 0), n++;
    XtSetArg(args[n], XmNeditMode, XmMULTI_LINE_EDIT), n++;
    XtSetArg(args[n], XmNwordWrap, True), n++;
    XtSetArg(args[n], XmNscrollVertical, True), n++;
    XtSetArg(args[n], XmNscrollHorizontal, False), n++;
    XtSetArg(args[n], XmNscrollingPolicy, XmAPPLICATION_DEFINED), n++;
    return XmCreateScrolledText(parent, const_cast<char*>(name), args, n);
}

Widget createDropDownList(Widget parent, const char* name, const char* const* items, int count, const char* selected)
{
    // A null-ended array of compound strings, made and freed here: the
    // combo box copies what it is given.
    XmString* strings = reinterpret_cast<XmString*>(XtMalloc(sizeof(XmString) * static_cast<unsigned>(count + 1)));
    if (strings == nullptr) {
        showOutOfMemoryError(shell1);
        exit_code = 1;
        return nullptr;
    }
    for (int i = 0; i < count; i++)
        strings[i] = XmStringCreateLocalized(const_cast<char*>(items[i]));
    strings[count] = nullptr;
    XmString chosen = XmStringCreateLocalized(const_cast<char*>(selected != nullptr ? selected : items[0]));

    Arg args[5];
    int n = 0;
    XtSetArg(args[n], XmNmarginHeight, 0), n++;
    XtSetArg(args[n], XmNmarginWidth, 0), n++;
    XtSetArg(args[n], XmNitemCount, count), n++;
    XtSetArg(args[n], XmNitems, strings), n++;
    XtSetArg(args[n], XmNselectedItem, chosen), n++;
    Widget combo = XmCreateDropDownList(parent, const_cast<char*>(name), args, n);

    XmStringFree(chosen);
    for (int i = 0; i < count; i++)
        XmStringFree(strings[i]);
    XtFree(reinterpret_cast<char*>(strings));
    if (combo == nullptr)
        return nullptr;

    // The text part sits flush with the box like every other field.
    if (Widget text = XtNameToWidget(combo, "*Text"); text != nullptr)
        XtVaSetValues(text, XmNmarginHeight, 0, XmNmarginWidth, 0, nullptr);
    if (Widget list = XtNameToWidget(combo, "*List"); list != nullptr) {
        Widget scrollBar = nullptr;
        XtVaGetValues(XtParent(list), XmNverticalScrollBar, &scrollBar, nullptr);
        (void)scrollBar;
    }
    return combo;
}

void setControlRect(Widget w, int top, int bottom, int left, int right)
{
    if (w == nullptr)
        return;
    // Bottom and right hang on the opposite (top, left) side of the form, so
    // all four numbers are distances from the form's top-left corner.
    XtVaSetValues(w, XmNtopAttachment, XmATTACH_FORM, XmNtopOffset, top, XmNbottomAttachment, XmATTACH_OPPOSITE_FORM,
                  XmNbottomOffset, -bottom, XmNleftAttachment, XmATTACH_FORM, XmNleftOffset, left,
                  XmNrightAttachment, XmATTACH_OPPOSITE_FORM, XmNrightOffset, -right, nullptr);
}

char* comboSelectedText(Widget combo, char* buf, std::size_t size)
{
    if (buf == nullptr || size == 0)
        return buf;
    buf[0] = '\0';
    if (combo == nullptr)
        return buf;
    XmString item = nullptr;
    XtVaGetValues(combo, XmNselectedItem, &item, nullptr);
    if (item == nullptr)
        return buf;
    // XmNselectedItem hands out a copy, which is freed here.
    char* text = static_cast<char*>(XmStringUnparse(item, nullptr, XmCHARSET_TEXT, XmCHARSET_TEXT, nullptr, 0,
                                                    XmOUTPUT_ALL));
    if (text != nullptr) {
        std::size_t n = 0;
        while (text[n] != '\0' && n + 1 < size) {
            buf[n] = text[n];
            n++;
        }
        buf[n] = '\0';
        XtFree(text);
    }
    XmStringFree(item);
    return buf;
}

void comboShowText(Widget combo, const char* text)
{
    if (combo == nullptr || text == nullptr)
        return;
    XmString item = XmStringCreateLocalized(const_cast<char*>(text));
    XmComboBoxAddItem(combo, item, 1, True);
    XmComboBoxSetItem(combo, item);
    XmStringFree(item);
}
