/*
 * Builders of the tabs that create_shell1 makes itself, one per file, each
 * top to bottom: a Form page in the notebook, its tab button, and its
 * controls, stored in the globals of widgets_impl.h.  Each returns the page
 * form (null when it could not be made).  The widgets belong to the notebook.
 *
 * Helpers shared by the tab files live here too: pages and tab buttons of
 * the notebook, push buttons named by role with a catalog label, the help
 * callback, and a list of children that a tab manages together.
 */
#ifndef HNSYB_DSN_DIALOG_TABS_IMPL_H
#define HNSYB_DSN_DIALOG_TABS_IMPL_H

#include <X11/Intrinsic.h>

#include <span>

Widget createGeneralTab(Widget notebook);
Widget createAdvancedTab(Widget notebook);
Widget createConnectionTab(Widget notebook);
Widget createPerformanceTab(Widget notebook);
Widget createFailoverTab(Widget notebook);

// A page of the notebook (a Form) and a major tab button whose label is
// catalog text `labelId`.  The notebook pairs a tab with the page created
// just before it, so each page is made right before its tab.
Widget createTabPage(Widget notebook, const char* name);
Widget createTabButton(Widget notebook, const char* name, int labelId);
// A push button named `name` that shows catalog text `labelId`.
Widget createNamedButton(Widget parent, const char* name, int labelId);

// Every help button of the dialog ends here: zuDisplayHelp(book, topic).
void requestHelp(const unsigned char* book, const unsigned char* topic);

// Help callback: zuDisplayHelp(driDsnNameL, topic) when the record is
// there; the client data is the topic, a string of static life.
void showTabHelp(Widget w, XtPointer topic, XtPointer call);

// Shows the out-of-memory box on shell1 and sets exit_code to 1 when `w` is
// null; true when `w` exists.  Builders return early on false.
bool widgetMade(Widget w);

// Children of one tab, managed together at the end of its builder.
class TabChildren {
public:
    Widget add(Widget w)
    {
        if (w != nullptr && count_ < CAPACITY)
            widgets_[count_++] = w;
        return w;
    }
    void manage() { XtManageChildren(widgets_, count_); }

private:
    static constexpr Cardinal CAPACITY = 48;
    Widget widgets_[CAPACITY] = {};
    Cardinal count_ = 0;
};

// One row of a tab: catalog label `labelId` beside a text field `fieldName`,
// both stored through the pointers, between `top` and `bottom`.
struct LabelledField {
    int labelId;
    const char* fieldName;
    Widget* label;
    Widget* field;
    int top;
    int bottom;
};
// Columns of a tab made of labelled fields.
struct FieldColumns {
    int labelLeft, labelRight, fieldLeft, fieldRight;
};

// Makes the rows on `form`, placed in `columns`, and adds them to
// `children`; false (the out-of-memory box shown) when a widget could not be
// made.
bool buildLabelledFields(Widget form, TabChildren& children, std::span<const LabelledField> rows,
                         const FieldColumns& columns);
// A help button named `name` in the given rectangle that opens `topic`, a
// string of static life; null (the box shown) when it could not be made.
Widget addHelpButton(Widget form, TabChildren& children, const char* name, const char* topic, int top, int bottom,
                     int left, int right);

#endif
