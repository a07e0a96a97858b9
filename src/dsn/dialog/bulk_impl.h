/*
 * Bulk operations of the dialog: the record the three dialogs share, their
 * fields' callbacks, the dialogs themselves and the calls into the driver.
 *
 * GlobalBulkInfo holds what the user typed in any of the load, verify and
 * export dialogs, so that a value typed in one shows in the others when they
 * are built.  createBulkTab sets its start values.  The configuration and
 * log file names follow the data file name until the user edits them
 * (configFileEdited, logFileEdited); CalledFromFileName is 1 only while
 * dataFileNameCB writes them itself, so that their callbacks do not count
 * that as an edit.
 *
 * The three dialogs are built on first use and kept in loadTableDialog,
 * verifyDataDialog and exportTableDialog for as long as the main dialog they
 * were built for lives (a destroy callback clears a global with its widget).
 * OK runs the operation over a connection of its own, made from the current
 * controls; Cancel ends the whole configuration dialog like its own Cancel.
 *
 * The driver's entries are found by name in the driver's library (see
 * bulkrun.cpp for how the library is found); a missing entry is reported in
 * a box and never called.  Everything runs on the dialog's thread.
 */
#ifndef HNSYB_DSN_DIALOG_BULK_IMPL_H
#define HNSYB_DSN_DIALOG_BULK_IMPL_H

#include <X11/Intrinsic.h>

#include <cstdint>

#include "platform/export.h"

struct BulkInfo {
    char tableName[256];
    char dataFileName[1025];
    char configFileName[1025];
    char logFileName[1025];
    char discardFileName[1025];
    int32_t errorTolerance;
    int32_t warningTolerance;
    uint32_t loadStart;
    uint32_t loadCount;
    uint32_t readBufferSize;
    int32_t codePage;
    int32_t configFileEdited;
    int32_t logFileEdited;
};

ZU_EXPORT extern BulkInfo GlobalBulkInfo;
ZU_EXPORT extern int CalledFromFileName;

// The export dialog's code pages: "number - name", by name.
inline constexpr int ZU_BULK_CODE_PAGE_COUNT = 81;
ZU_EXPORT extern const char* const CodePages[ZU_BULK_CODE_PAGE_COUNT];

// The dialogs, null until built.
ZU_EXPORT extern Widget loadTableDialog;
ZU_EXPORT extern Widget verifyDataDialog;
ZU_EXPORT extern Widget exportTableDialog;

// Catalog numbers of the tab and the dialogs.
enum BulkMessage : int {
    MSG_BULK_TAB = 24300,
    MSG_BULK_ENABLE = 24301,
    MSG_BULK_BINARY_THRESHOLD = 24311,
    MSG_BULK_CHARACTER_THRESHOLD = 24312,
    MSG_BULK_BATCH_SIZE = 24313,
    MSG_BULK_LOAD_BUTTON = 24314,
    MSG_BULK_VERIFY_BUTTON = 24315,
    MSG_BULK_EXPORT_BUTTON = 24316,
    MSG_BULK_LOAD = 24317,  // OK label and frame title, and the result box title
    MSG_BULK_VERIFY = 24318,
    MSG_BULK_EXPORT = 24319,
    MSG_BULK_TABLE = 24320,
    MSG_BULK_DATA_FILE = 24321,
    MSG_BULK_CONFIG_FILE = 24322,
    MSG_BULK_LOG_FILE = 24323,
    MSG_BULK_DISCARD_FILE = 24324,
    MSG_BULK_ERROR_TOLERANCE = 24325,
    MSG_BULK_WARNING_TOLERANCE = 24326,
    MSG_BULK_LOAD_START = 24327,
    MSG_BULK_LOAD_COUNT = 24328,
    MSG_BULK_READ_BUFFER = 24329,
    MSG_BULK_LOAD_TITLE = 24332,
    MSG_BULK_VERIFY_TITLE = 24335,
    MSG_BULK_EXPORT_TITLE = 24338,
    MSG_BULK_EXPORT_DATA_FILE = 24339,
    MSG_BULK_CODE_PAGE = 24340,
    MSG_BULK_LOADED = 24341,
    MSG_BULK_EXPORTED = 24342,
    MSG_BULK_VERIFIED = 24343,
};

// Field callbacks; the client data is &GlobalBulkInfo.
ZU_EXPORT void tableNameCB(Widget w, XtPointer info, XtPointer call);
ZU_EXPORT void dataFileNameCB(Widget w, XtPointer info, XtPointer call);
ZU_EXPORT void configFileCB(Widget w, XtPointer info, XtPointer call);
ZU_EXPORT void logFileCB(Widget w, XtPointer info, XtPointer call);
ZU_EXPORT void discardFileCB(Widget w, XtPointer info, XtPointer call);
ZU_EXPORT void errorToleranceCB(Widget w, XtPointer info, XtPointer call);
ZU_EXPORT void warningToleranceCB(Widget w, XtPointer info, XtPointer call);
ZU_EXPORT void loadStartCB(Widget w, XtPointer info, XtPointer call);
ZU_EXPORT void loadCountCB(Widget w, XtPointer info, XtPointer call);
ZU_EXPORT void readBufferSizeCB(Widget w, XtPointer info, XtPointer call);
ZU_EXPORT void codePagesCB(Widget w, XtPointer info, XtPointer call);

// The part of dataFileNameCB that does not need a widget: takes `name` as
// the data file and derives the unedited configuration and log file names;
// the fields that show them (either may be null) are updated.
ZU_EXPORT void bulkDataFileChanged(BulkInfo* info, const char* name, Widget configField, Widget logField);

// Dialogs and buttons.
ZU_EXPORT Widget buildLoadTableDialog(Widget parent);
ZU_EXPORT Widget buildVerifyDataDialog(Widget parent);
ZU_EXPORT Widget buildExportTableDialog(Widget parent);
ZU_EXPORT void btnBulkLoadTable_Clicked(Widget w, XtPointer client, XtPointer call);
ZU_EXPORT void btnBulkVerifyData_Clicked(Widget w, XtPointer client, XtPointer call);
ZU_EXPORT void btnBulkExportTable_Clicked(Widget w, XtPointer client, XtPointer call);
ZU_EXPORT void loadTableCB(Widget w, XtPointer client, XtPointer call);
ZU_EXPORT void verifyDataCB(Widget w, XtPointer client, XtPointer call);
ZU_EXPORT void exportTableCB(Widget w, XtPointer client, XtPointer call);
ZU_EXPORT void cancelCB(Widget w, XtPointer client, XtPointer call);
ZU_EXPORT void btnBulkHelp_Clicked(Widget w, XtPointer client, XtPointer call);
ZU_EXPORT void btnBulkLoadTableHelp_Clicked(Widget w, XtPointer client, XtPointer call);
ZU_EXPORT void btnBulkVerifyHelp_Clicked(Widget w, XtPointer client, XtPointer call);
ZU_EXPORT void btnBulkExportTableHelp_Clicked(Widget w, XtPointer client, XtPointer call);

#endif
