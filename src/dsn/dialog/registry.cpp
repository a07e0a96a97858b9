// The control registry of the family's dialogs and the high-level builders
// that fill it; dependencies between registered controls.  See builders.h.
#include <Xm/ComboBox.h>
#include <Xm/Form.h>
#include <Xm/PushB.h>
#include <Xm/Text.h>
#include <Xm/ToggleB.h>
#include <Xm/Xm.h>

#include "dsn/dialog/builders.h"
#include "dsn/dialog/combo_impl.h"
#include "dsn/dialog/controltable.h"

IDNameWgtEntry IDNameWgt[ZU_CTRL_REGISTRY_SIZE];
int IDNameWgtIndx = 0;

namespace {

// Label numbers that lead each group of dependent controls.
constexpr int SEC_METHOD = 7320;       // encryption drop-down: on when "1 ..."
constexpr int SEC_VALIDATE = 7321;     // validate toggle
constexpr int SEC_LAST_TRUST = 7324;   // 7322-7324 need method and toggle
constexpr int SEC_LAST = 7327;         // 7325-7327 need the method only
constexpr int FAIL_MODE = 24272;       // failover mode: on unless "0 ..."
constexpr int FAIL_LAST = 24274;
constexpr int POOL_ENABLE = 24275;     // pooling toggle
constexpr int POOL_LAST = 24281;

enum Group { GROUP_NONE, GROUP_ALL, GROUP_SECURITY, GROUP_FAILOVER, GROUP_POOLING };

Group groupOf(const IDNameWgtEntry* entry)
{
    if (entry == nullptr)
        return GROUP_ALL;
    switch (entry->labelId) {
    case SEC_METHOD:
    case SEC_VALIDATE:
        return GROUP_SECURITY;
    case FAIL_MODE:
        return GROUP_FAILOVER;
    case POOL_ENABLE:
        return GROUP_POOLING;
    default:
        return GROUP_NONE;  // only a group's trigger moves its members
    }
}

// On/off state of a trigger control: a toggle's state, or a test on the
// first character of a drop-down's shown text.
bool toggleOn(Widget w)
{
    return w != nullptr && XmIsToggleButton(w) && XmToggleButtonGetState(w);
}

char firstShownChar(Widget w)
{
    char text[ZU_LABEL_BUFFER];
    return comboSelectedText(w, text, sizeof text)[0];
}

// The data a builder's callback receives: its own registry entry when the
// callback is dependedMethodChanged and the caller gave none.
XtPointer callbackData(XtCallbackProc cb, XtPointer data)
{
    if (cb == dependedMethodChanged && data == nullptr && IDNameWgtIndx < ZU_CTRL_REGISTRY_SIZE)
        return &IDNameWgt[IDNameWgtIndx];
    return data;
}

void store(Widget*& cursor, Widget w)
{
    if (cursor != nullptr)
        *cursor++ = w;
}

void place(Widget w, const ZuCtrlRect& r)
{
    setControlRect(w, r.top, r.bottom, r.left, r.right);
}

}  // namespace

IDNameWgtEntry* addToCtrlArray(Widget w, int kind, const char* key, int labelId)
{
    // The registry is a fixed table; a control past its end is still built,
    // it just takes part in no dependency (writing past the table would
    // corrupt whatever follows it).
    if (IDNameWgtIndx < 0 || IDNameWgtIndx >= ZU_CTRL_REGISTRY_SIZE)
        return nullptr;
    IDNameWgtEntry* entry = &IDNameWgt[IDNameWgtIndx++];
    entry->labelId = labelId;
    entry->kind = kind;
    entry->key = key;
    entry->widget = w;
    return entry;
}

void dependedMethodChanged(Widget, XtPointer client, XtPointer)
{
    const auto* entry = static_cast<const IDNameWgtEntry*>(client);
    const Group group = groupOf(entry);
    if (group == GROUP_NONE)
        return;
    const bool all = group == GROUP_ALL;
    bool methodOn = false, validateOn = false, failoverOn = false, poolOn = false;

    // One walk in registration order: a trigger is met before the members
    // that follow it.
    for (int i = 0; i < ZU_CTRL_REGISTRY_SIZE && IDNameWgt[i].widget != nullptr; i++) {
        const int id = IDNameWgt[i].labelId;
        Widget w = IDNameWgt[i].widget;
        if (id >= SEC_METHOD && id <= SEC_LAST && (all || group == GROUP_SECURITY)) {
            if (id == SEC_METHOD) {
                methodOn = firstShownChar(w) == '1';
            } else if (id == SEC_VALIDATE) {
                validateOn = toggleOn(w);
                XtSetSensitive(w, methodOn);
            } else if (id <= SEC_LAST_TRUST) {
                XtSetSensitive(w, methodOn && validateOn);
                if (!all && id == SEC_LAST_TRUST)
                    return;
            } else {
                XtSetSensitive(w, methodOn);
            }
        } else if (id >= FAIL_MODE && id <= FAIL_LAST && (all || group == GROUP_FAILOVER)) {
            if (id == FAIL_MODE) {
                failoverOn = firstShownChar(w) != '0';
            } else {
                XtSetSensitive(w, failoverOn);
                if (!all && id == FAIL_LAST)
                    return;
            }
        } else if (id >= POOL_ENABLE && id <= POOL_LAST && (all || group == GROUP_POOLING)) {
            if (id == POOL_ENABLE) {
                poolOn = toggleOn(w);
            } else {
                XtSetSensitive(w, poolOn);
                if (!all && id == POOL_LAST)
                    return;
            }
        }
    }
}

Widget createLabelField(Widget parent, int labelId, const ZuCtrlRect& rect, Widget*& cursor)
{
    Widget label = createLabel(parent, labelId);
    place(label, rect);
    store(cursor, label);
    return label;
}

Widget createHelpPushButton(Widget parent, int labelId, const ZuCtrlRect& rect, XtCallbackProc cb, XtPointer data,
                            Widget*& cursor)
{
    Widget button = createPushButton(parent, labelId);
    if (button != nullptr && cb != nullptr)
        XtAddCallback(button, XmNactivateCallback, cb, data);
    place(button, rect);
    store(cursor, button);
    return button;
}

Widget createToggleButton(Widget parent, int labelId, Boolean state, const char* key, const ZuCtrlRect& rect,
                          XtCallbackProc cb, XtPointer data, Widget*& cursor)
{
    Widget toggle = createToggleButton(parent, labelId, state);
    if (toggle == nullptr)
        return nullptr;
    if (cb != nullptr)
        XtAddCallback(toggle, XmNvalueChangedCallback, cb, callbackData(cb, data));
    addToCtrlArray(toggle, ZU_CTRL_TOGGLE, key, labelId);
    place(toggle, rect);
    store(cursor, toggle);
    return toggle;
}

Widget createLabelAndText(Widget parent, int labelId, const char* name, const char* key, const char* text,
                          const ZuCtrlRect& labelRect, const ZuCtrlRect& fieldRect, XtCallbackProc cb,
                          XtPointer data, Widget*& cursor)
{
    Widget label = createLabelField(parent, labelId, labelRect, cursor);
    Widget field = createTextField(parent, name, text);
    if (label == nullptr || field == nullptr)
        return nullptr;
    // Password labels register their field as a protected value.
    const bool protectedValue =
        labelId == 24169 || labelId == 24006 || labelId == 7323 || labelId == 7326 || labelId == 7327;
    if (cb != nullptr)
        XtAddCallback(field, protectedValue ? XmNmodifyVerifyCallback : XmNvalueChangedCallback, cb,
                      callbackData(cb, data));
    addToCtrlArray(field, protectedValue ? ZU_CTRL_PROTECTED : ZU_CTRL_TEXT, key, labelId);
    place(field, fieldRect);
    store(cursor, field);
    return field;
}

Widget createMultiLineBox(Widget parent, int labelId, const char* name, const char* key, const ZuCtrlRect& labelRect,
                          const ZuCtrlRect& boxRect, Widget*& cursor)
{
    Widget label = createLabelField(parent, labelId, labelRect, cursor);
    Widget text = createMultiLineTextField(parent, name);
    if (label == nullptr || text == nullptr)
        return nullptr;
    addToCtrlArray(text, ZU_CTRL_MULTILINE, key, labelId);
    place(XtParent(text), boxRect);  // the scrolled window carries the rectangle
    store(cursor, text);
    return text;
}

Widget createDropDownList(Widget parent, int labelId, const char* name, const char* key, const char* const* items,
                          int count, const char* selected, const ZuCtrlRect& labelRect, const ZuCtrlRect& listRect,
                          XtCallbackProc cb, XtPointer data, Widget*& cursor)
{
    Widget label = createLabelField(parent, labelId, labelRect, cursor);
    Widget combo = createDropDownList(parent, name, items, count, selected);
    if (label == nullptr || combo == nullptr)
        return nullptr;
    if (cb != nullptr)
        XtAddCallback(combo, XmNselectionCallback, cb, callbackData(cb, data));
    addToCtrlArray(combo, ZU_CTRL_DROPDOWN, key, labelId);
    place(combo, listRect);
    store(cursor, combo);
    return combo;
}
