// The Bulk tab, the load, verify and export dialogs behind its buttons, and
// their Cancel and Help buttons (bulk_impl.h, bulktab.h).
#include <Xm/ComboBox.h>
#include <Xm/Form.h>
#include <Xm/Frame.h>
#include <Xm/Label.h>
#include <Xm/MessageB.h>
#include <Xm/PushB.h>
#include <Xm/RowColumn.h>
#include <Xm/TextF.h>
#include <Xm/ToggleB.h>
#include <Xm/Xm.h>

#include <cstring>
#include <initializer_list>

#include "conversion/convert.h"
#include "dsn/backend_impl.h"
#include "dsn/dialog/builders.h"
#include "dsn/dialog/bulk_impl.h"
#include "dsn/dialog/bulktab.h"
#include "dsn/dialog/tabs_impl.h"

Widget loadTableDialog = nullptr;
Widget verifyDataDialog = nullptr;
Widget exportTableDialog = nullptr;

namespace {

constexpr int MSG_OK_LABEL = 7309;
constexpr int MSG_CANCEL_LABEL = 7310;
constexpr int MSG_HELP_LABEL = 7311;

XmString catalogString(int id)
{
    char text[ZU_LABEL_BUFFER];
    return XmStringCreateLocalized(getMsgByID(id, text, sizeof text));
}

// A widget of `widgetClass` named `name` that shows catalog text `labelId`.
Widget labelled(Widget parent, const char* name, WidgetClass widgetClass, int labelId)
{
    XmString label = catalogString(labelId);
    Widget w = XtVaCreateWidget(name, widgetClass, parent, XmNlabelString, label, nullptr);
    XmStringFree(label);
    return w;
}

// The Form page's fields: margins 0, as the other tabs have them.
Widget pageField(Widget parent, const char* name)
{
    return XtVaCreateWidget(name, xmTextFieldWidgetClass, parent, XmNmarginWidth, 0, XmNmarginHeight, 0, nullptr);
}

// A dialog's global is cleared with its widget.
void forget(Widget, XtPointer global, XtPointer) { *static_cast<Widget*>(global) = nullptr; }

// One row of a dialog's grid: a label and a text field that shows `value`
// and reports changes to `changed` with the shared record as client data.
// The callback is added after the value is shown, so showing it is no edit.
void addRow(Widget grid, int labelId, const char* fieldName, const char* value, XtCallbackProc changed)
{
    Widget label = labelled(grid, "label", xmLabelWidgetClass, labelId);
    Widget field = createTextField(grid, fieldName, value);
    if (label == nullptr || field == nullptr)
        return;
    XtAddCallback(field, XmNvalueChangedCallback, changed, &GlobalBulkInfo);
    XtManageChild(label);
    XtManageChild(field);
}

void addNumberRow(Widget grid, int labelId, const char* fieldName, long long value, XtCallbackProc changed)
{
    unsigned char digits[32];
    convert(digits, value);
    addRow(grid, labelId, fieldName, reinterpret_cast<char*>(digits), changed);
}

// The template dialog with its frame; returns the grid the rows go into.
Widget buildFrame(Widget parent, const char* name, int okId, int titleId, int rows, Widget* dialogOut)
{
    XmString ok = catalogString(okId);
    XmString cancel = catalogString(MSG_CANCEL_LABEL);
    XmString help = catalogString(MSG_HELP_LABEL);
    char title[ZU_LABEL_BUFFER];
    getMsgByID(titleId, title, sizeof title);
    Arg args[5];
    Cardinal n = 0;
    XtSetArg(args[n], XmNdialogStyle, XmDIALOG_FULL_APPLICATION_MODAL); ++n;
    XtSetArg(args[n], XmNokLabelString, ok); ++n;
    XtSetArg(args[n], XmNcancelLabelString, cancel); ++n;
    XtSetArg(args[n], XmNhelpLabelString, help); ++n;
    XtSetArg(args[n], XmNtitle, title); ++n;
    Widget dialog = XmCreateTemplateDialog(parent, const_cast<char*>(name), args, n);
    XmStringFree(ok);
    XmStringFree(cancel);
    XmStringFree(help);
    *dialogOut = dialog;
    if (dialog == nullptr)
        return nullptr;

    Widget form = XtVaCreateManagedWidget("form", xmFormWidgetClass, dialog, nullptr);
    Widget mainGrid = XtVaCreateManagedWidget("maingrid", xmRowColumnWidgetClass, form, XmNorientation, XmVERTICAL,
                                              XmNtopAttachment, XmATTACH_FORM, XmNleftAttachment, XmATTACH_FORM,
                                              XmNrightAttachment, XmATTACH_FORM, XmNbottomAttachment,
                                              XmATTACH_FORM, nullptr);
    Widget frame = XtVaCreateManagedWidget("stdframe", xmFrameWidgetClass, mainGrid, XmNmarginHeight, 10, nullptr);
    XmString frameTitle = catalogString(okId);
    XtVaCreateManagedWidget("title", xmLabelWidgetClass, frame, XmNchildType, XmFRAME_TITLE_CHILD, XmNlabelString,
                            frameTitle, nullptr);
    XmStringFree(frameTitle);
    // Horizontal packed columns: numColumns counts the rows, each row a
    // label and its field.
    return XtVaCreateManagedWidget("stdgrid", xmRowColumnWidgetClass, frame, XmNchildType, XmFRAME_WORKAREA_CHILD,
                                   XmNpacking, XmPACK_COLUMN, XmNorientation, XmHORIZONTAL, XmNnumColumns,
                                   static_cast<short>(rows), nullptr);
}

void finishDialog(Widget dialog, Widget* global, XtCallbackProc ok, XtCallbackProc help)
{
    XtAddCallback(dialog, XmNokCallback, ok, nullptr);
    XtAddCallback(dialog, XmNcancelCallback, cancelCB, nullptr);
    XtAddCallback(dialog, XmNhelpCallback, help, nullptr);
    XtAddCallback(dialog, XmNdestroyCallback, forget, global);
    *global = dialog;
}

// Builds on first use, shows, and joins the running loop (which returns at
// once while the main dialog's loop runs).
void showDialog(Widget* global, Widget (*build)(Widget), Widget button)
{
    if (*global == nullptr) {
        Widget parent = shell1 != nullptr ? shell1 : button;
        if (parent == nullptr || build(parent) == nullptr)
            return;
    }
    XtManageChild(*global);
    dialog_main_loop(*global);
}

}  // namespace

void createBulkTab(Widget notebook, void* /*catalog: the builders read Rfile, which is the same catalog*/)
{
    // A new main dialog gets new bulk dialogs: the old ones belong to the
    // main dialog they were built for.
    loadTableDialog = verifyDataDialog = exportTableDialog = nullptr;

    Widget page = createTabPage(notebook, "frmbulk");
    Widget tab = createTabButton(notebook, "btnbulk", MSG_BULK_TAB);
    if (!widgetMade(page) || !widgetMade(tab))
        return;
    XtManageChild(tab);

    TabChildren children;
    Widget help = children.add(createNamedButton(page, "btnbulkhelp", MSG_HELP_LABEL));
    Widget enable = children.add(labelled(page, "enableBulkLoad", xmToggleButtonWidgetClass, MSG_BULK_ENABLE));
    Widget binary = children.add(labelled(page, "binaryThreshold", xmLabelWidgetClass, MSG_BULK_BINARY_THRESHOLD));
    Widget binaryText = children.add(pageField(page, "binaryThresholdText"));
    Widget character =
        children.add(labelled(page, "characterThreshold", xmLabelWidgetClass, MSG_BULK_CHARACTER_THRESHOLD));
    Widget characterText = children.add(pageField(page, "characterThresholdText"));
    Widget batch = children.add(labelled(page, "batchSize", xmLabelWidgetClass, MSG_BULK_BATCH_SIZE));
    Widget batchText = children.add(pageField(page, "batchSizeText"));
    Widget load = children.add(labelled(page, "loadTable", xmPushButtonWidgetClass, MSG_BULK_LOAD_BUTTON));
    Widget verify = children.add(labelled(page, "verifyData", xmPushButtonWidgetClass, MSG_BULK_VERIFY_BUTTON));
    Widget exportButton =
        children.add(labelled(page, "exportTable", xmPushButtonWidgetClass, MSG_BULK_EXPORT_BUTTON));
    for (Widget w : {help, enable, binary, binaryText, character, characterText, batch, batchText, load, verify,
                     exportButton}) {
        if (!widgetMade(w))
            return;
    }
    XtVaSetValues(enable, XmNalignment, XmALIGNMENT_BEGINNING, nullptr);
    for (Widget w : {binary, character, batch})
        XtVaSetValues(w, XmNalignment, XmALIGNMENT_BEGINNING, nullptr);
    setControlRect(enable, 35, 60, 5, 330);
    setControlRect(help, 5, 30, 330, 410);
    setControlRect(binary, 230, 255, 5, 185);
    setControlRect(binaryText, 230, 255, 190, 245);
    setControlRect(character, 255, 280, 5, 185);
    setControlRect(characterText, 255, 280, 190, 245);
    setControlRect(batch, 230, 255, 255, 320);
    setControlRect(batchText, 230, 255, 335, 395);
    setControlRect(load, 295, 320, 155, 265);
    setControlRect(verify, 320, 345, 155, 265);
    setControlRect(exportButton, 345, 370, 155, 265);
    XtAddCallback(help, XmNactivateCallback, btnBulkHelp_Clicked, nullptr);
    XtAddCallback(load, XmNactivateCallback, btnBulkLoadTable_Clicked, nullptr);
    XtAddCallback(verify, XmNactivateCallback, btnBulkVerifyData_Clicked, nullptr);
    XtAddCallback(exportButton, XmNactivateCallback, btnBulkExportTable_Clicked, nullptr);
    children.manage();

    std::memset(&GlobalBulkInfo, 0, sizeof GlobalBulkInfo);
    GlobalBulkInfo.errorTolerance = -1;
    GlobalBulkInfo.warningTolerance = -1;
    GlobalBulkInfo.loadStart = 1;
    GlobalBulkInfo.loadCount = static_cast<uint32_t>(-1);
    GlobalBulkInfo.readBufferSize = 2048;
    GlobalBulkInfo.codePage = 4;
    CalledFromFileName = 0;
}

Widget buildLoadTableDialog(Widget parent)
{
    Widget dialog = nullptr;
    Widget grid = buildFrame(parent, "loadTable", MSG_BULK_LOAD, MSG_BULK_LOAD_TITLE, 10, &dialog);
    if (grid == nullptr)
        return nullptr;
    const BulkInfo& info = GlobalBulkInfo;
    addRow(grid, MSG_BULK_TABLE, "tableNameText", info.tableName, tableNameCB);
    addRow(grid, MSG_BULK_DATA_FILE, "dataFileText", info.dataFileName, dataFileNameCB);
    addRow(grid, MSG_BULK_CONFIG_FILE, "configFileText", info.configFileName, configFileCB);
    addRow(grid, MSG_BULK_LOG_FILE, "logFileText", info.logFileName, logFileCB);
    addRow(grid, MSG_BULK_DISCARD_FILE, "discardFileText", info.discardFileName, discardFileCB);
    addNumberRow(grid, MSG_BULK_ERROR_TOLERANCE, "errorToleranceText", info.errorTolerance, errorToleranceCB);
    addNumberRow(grid, MSG_BULK_WARNING_TOLERANCE, "warningToleranceText", info.warningTolerance,
                 warningToleranceCB);
    addNumberRow(grid, MSG_BULK_LOAD_START, "loadStartText", info.loadStart, loadStartCB);
    addNumberRow(grid, MSG_BULK_LOAD_COUNT, "loadCountText", info.loadCount, loadCountCB);
    addNumberRow(grid, MSG_BULK_READ_BUFFER, "readBufferSizeText", info.readBufferSize, readBufferSizeCB);
    finishDialog(dialog, &loadTableDialog, loadTableCB, btnBulkLoadTableHelp_Clicked);
    return dialog;
}

Widget buildVerifyDataDialog(Widget parent)
{
    Widget dialog = nullptr;
    Widget grid = buildFrame(parent, "verifyData", MSG_BULK_VERIFY, MSG_BULK_VERIFY_TITLE, 2, &dialog);
    if (grid == nullptr)
        return nullptr;
    addRow(grid, MSG_BULK_TABLE, "tableNameText", GlobalBulkInfo.tableName, tableNameCB);
    addRow(grid, MSG_BULK_CONFIG_FILE, "configFileText", GlobalBulkInfo.configFileName, configFileCB);
    finishDialog(dialog, &verifyDataDialog, verifyDataCB, btnBulkVerifyHelp_Clicked);
    return dialog;
}

Widget buildExportTableDialog(Widget parent)
{
    Widget dialog = nullptr;
    Widget grid = buildFrame(parent, "exportTable", MSG_BULK_EXPORT, MSG_BULK_EXPORT_TITLE, 6, &dialog);
    if (grid == nullptr)
        return nullptr;
    const BulkInfo& info = GlobalBulkInfo;
    addRow(grid, MSG_BULK_TABLE, "tableNameText", info.tableName, tableNameCB);
    addRow(grid, MSG_BULK_EXPORT_DATA_FILE, "dataFileText", info.dataFileName, dataFileNameCB);
    addRow(grid, MSG_BULK_LOG_FILE, "logFileText", info.logFileName, logFileCB);
    addNumberRow(grid, MSG_BULK_ERROR_TOLERANCE, "errorToleranceText", info.errorTolerance, errorToleranceCB);
    addNumberRow(grid, MSG_BULK_WARNING_TOLERANCE, "warningToleranceText", info.warningTolerance,
                 warningToleranceCB);
    Widget label = labelled(grid, "label", xmLabelWidgetClass, MSG_BULK_CODE_PAGE);
    Widget pages = createDropDownList(grid, "codePages", CodePages, ZU_BULK_CODE_PAGE_COUNT, "4 - iso-8859-1");
    if (label != nullptr && pages != nullptr) {
        if (Widget text = XtNameToWidget(pages, "*Text"))
            XtAddCallback(text, XmNvalueChangedCallback, codePagesCB, &GlobalBulkInfo);
        XtManageChild(label);
        XtManageChild(pages);
    }
    finishDialog(dialog, &exportTableDialog, exportTableCB, btnBulkExportTableHelp_Clicked);
    return dialog;
}

void btnBulkLoadTable_Clicked(Widget w, XtPointer, XtPointer)
{
    showDialog(&loadTableDialog, buildLoadTableDialog, w);
}

void btnBulkVerifyData_Clicked(Widget w, XtPointer, XtPointer)
{
    showDialog(&verifyDataDialog, buildVerifyDataDialog, w);
}

void btnBulkExportTable_Clicked(Widget w, XtPointer, XtPointer)
{
    showDialog(&exportTableDialog, buildExportTableDialog, w);
}

// The bulk dialogs have no loop of their own, so Cancel ends the main
// dialog's loop: the whole configuration dialog ends without a save, as its
// own Cancel would.  Both dialogs leave the screen too: a main dialog left
// up after its loop ended would offer buttons whose state (record, list,
// catalog) is already freed.
void cancelCB(Widget w, XtPointer, XtPointer)
{
    if (w != nullptr)
        XtUnmanageChild(w);
    commonCancelFunctionality(shell1);
}

void btnBulkHelp_Clicked(Widget w, XtPointer, XtPointer call) { showTabHelp(w, const_cast<char*>("sybbulk"), call); }

void btnBulkLoadTableHelp_Clicked(Widget w, XtPointer, XtPointer call)
{
    showTabHelp(w, const_cast<char*>("sybbulkloadtable"), call);
}

void btnBulkVerifyHelp_Clicked(Widget w, XtPointer, XtPointer call)
{
    showTabHelp(w, const_cast<char*>("sybbulkverify"), call);
}

void btnBulkExportTableHelp_Clicked(Widget w, XtPointer, XtPointer call)
{
    showTabHelp(w, const_cast<char*>("sybbulkexporttable"), call);
}
