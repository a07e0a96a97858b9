/*
 * Widget builders of the driver family's dialogs.
 *
 * Low-level builders make one widget each, with texts from the dialog's
 * open catalog (Rfile): the catalog text is used as a label's widget name,
 * so that the label shows it.  setControlRect places a widget by absolute
 * pixel distances from the top and left edge of its Form.
 *
 * High-level builders make a control with its label, register it in the
 * control registry IDNameWgt (at most ZU_CTRL_REGISTRY_SIZE entries; a
 * control beyond that is built but not registered) and store what they make
 * through a cursor into the caller's widget array, advancing it.  This
 * dialog's own tabs work with the low-level builders only.
 *
 * Every XmString made here is freed here; widgets belong to their parents.
 * A failed allocation shows the out-of-memory box (on shell1), sets
 * exit_code to 1 and the builder returns null.
 */
#ifndef HNSYB_DSN_DIALOG_BUILDERS_H
#define HNSYB_DSN_DIALOG_BUILDERS_H

#include <X11/Intrinsic.h>

#include "platform/export.h"

// Size of the buffers that catalog texts are read into.
inline constexpr unsigned int ZU_LABEL_BUFFER = 512;
inline constexpr int ZU_CTRL_REGISTRY_SIZE = 64;

// One registered control: label message number, kind (ZuDsnControlKind),
// key name (not owned: a string of static life), widget.
struct IDNameWgtEntry {
    int labelId;
    int kind;
    const char* key;
    Widget widget;
};
ZU_EXPORT extern IDNameWgtEntry IDNameWgt[ZU_CTRL_REGISTRY_SIZE];
ZU_EXPORT extern int IDNameWgtIndx;

// A rectangle in pixels from the top and left edge of the parent Form.
struct ZuCtrlRect {
    int top;
    int bottom;
    int left;
    int right;
};

ZU_EXPORT Widget createForm(Widget parent, const char* name);
// LoadStringFromOpenFile(Rfile, id, buf, size); returns buf.
ZU_EXPORT char* getMsgByID(int id, char* buf, unsigned int size);
ZU_EXPORT Widget createPushButton(Widget parent, int id);
ZU_EXPORT Widget createLabel(Widget parent, int id);
// Label aligned to the beginning; `state` is set with notification.
ZU_EXPORT Widget createToggleButton(Widget parent, int id, Boolean state);
// Margins 0; `text` is set when not null.
ZU_EXPORT Widget createTextField(Widget parent, const char* name, const char* text);
// Scrolled text: margins 0, word wrap, vertical scroll bar only.  Returns the
// text widget (its parent is the scrolled window).
ZU_EXPORT Widget createMultiLineTextField(Widget parent, const char* name);
// Drop-down list of `count` items with `selected` shown; margins 0 on the
// list and its text part.
ZU_EXPORT Widget createDropDownList(Widget parent, const char* name, const char* const* items, int count,
                                    const char* selected);
// Form attachments: top and left attach to the form, bottom and right to the
// opposite form side, all four as distances from the top or left edge.
ZU_EXPORT void setControlRect(Widget w, int top, int bottom, int left, int right);
// Registers a control; returns the entry, or null when the registry is full.
ZU_EXPORT IDNameWgtEntry* addToCtrlArray(Widget w, int kind, const char* key, int labelId);

// Registry-driven dependencies: `entry` null re-evaluates every group, else
// the group of the entry's label number (security 7320-7327, failover
// 24272-24274, pooling 24275-24281).  Usable as an Xt callback.
ZU_EXPORT void dependedMethodChanged(Widget w, XtPointer entry, XtPointer call);
// Selection callback of cbFailoverMode: granularity and preconnect are
// sensitive unless the mode is "0 - Connection".
ZU_EXPORT void failoverModeChanged(Widget w, XtPointer client, XtPointer call);

// High-level builders.  `cb` may be null; when it is dependedMethodChanged
// and `data` is null, the control's own registry entry becomes the data.
ZU_EXPORT Widget createLabelField(Widget parent, int labelId, const ZuCtrlRect& rect, Widget*& cursor);
ZU_EXPORT Widget createHelpPushButton(Widget parent, int labelId, const ZuCtrlRect& rect, XtCallbackProc cb,
                                      XtPointer data, Widget*& cursor);
ZU_EXPORT Widget createToggleButton(Widget parent, int labelId, Boolean state, const char* key,
                                    const ZuCtrlRect& rect, XtCallbackProc cb, XtPointer data, Widget*& cursor);
// Registers kind 5 (protected) for labels 24169, 24006, 7323, 7326, 7327,
// else kind 1.  Stores the label, then the field.
ZU_EXPORT Widget createLabelAndText(Widget parent, int labelId, const char* name, const char* key, const char* text,
                                    const ZuCtrlRect& labelRect, const ZuCtrlRect& fieldRect, XtCallbackProc cb,
                                    XtPointer data, Widget*& cursor);
ZU_EXPORT Widget createMultiLineBox(Widget parent, int labelId, const char* name, const char* key,
                                    const ZuCtrlRect& labelRect, const ZuCtrlRect& boxRect, Widget*& cursor);
ZU_EXPORT Widget createDropDownList(Widget parent, int labelId, const char* name, const char* key,
                                    const char* const* items, int count, const char* selected,
                                    const ZuCtrlRect& labelRect, const ZuCtrlRect& listRect, XtCallbackProc cb,
                                    XtPointer data, Widget*& cursor);

#endif
