/*
 * The control table of the data source dialog: which widget holds which
 * persistent key of a data source, and the two directions of binding between
 * the attribute list (keyValNodeHeadL) and the widgets.
 *
 * Three parallel tables share one index: iddlgname (the widgets, filled by
 * createListOfWidgets as the last step of create_shell1), iniids (the keys,
 * fixed 50-byte slots) and idtype (the kind of each control).  The index
 * order is the order of the keys in a saved section, not the order of the
 * tabs.
 *
 * Memory: populateUIFromLinkedList consumes the attribute list and frees it;
 * populateLinkedListFromUI builds a fresh list owned by keyValNodeHeadL (the
 * lifecycle frees it).  The tables themselves are static.
 */
#ifndef HNSYB_DSN_DIALOG_CONTROLTABLE_H
#define HNSYB_DSN_DIALOG_CONTROLTABLE_H

#include <X11/Intrinsic.h>

#include "platform/export.h"

// Number of persistent controls.
inline constexpr int ZU_DSN_CONTROL_COUNT = 38;
// Size of one key slot of iniids.
inline constexpr int ZU_DSN_KEY_SLOT = 50;

// Kinds of controls (idtype, and the registry of builders.h).
enum ZuDsnControlKind {
    ZU_CTRL_TEXT = 1,       // single-line text (also the scrolled alternate servers)
    ZU_CTRL_DROPDOWN = 2,   // drop-down list whose items begin with the stored digit
    ZU_CTRL_TOGGLE = 3,     // toggle button, stored as "1" / "0"
    ZU_CTRL_MULTILINE = 4,  // multi-line text: registry only, never in the table
    ZU_CTRL_PROTECTED = 5   // masked password, stored as a protected value
};

// Index of a few rows that other modules name.
enum ZuDsnControlIndex {
    ZU_IDX_DSN = 0,
    ZU_IDX_DESCRIPTION = 1,
    ZU_IDX_AUTH_METHOD = 19,
    ZU_IDX_ENCRYPT_METHOD = 31,
    ZU_IDX_TRUSTSTORE_PASSWORD = 34
};

ZU_EXPORT extern Widget iddlgname[ZU_DSN_CONTROL_COUNT];
ZU_EXPORT extern const char iniids[ZU_DSN_CONTROL_COUNT][ZU_DSN_KEY_SLOT];
ZU_EXPORT extern const int idtype[ZU_DSN_CONTROL_COUNT];

// Fills iddlgname from the global widget variables, in table order.
ZU_EXPORT void createListOfWidgets();
// Forgets every control (and the table), before a dialog is built again.
ZU_EXPORT void forgetListOfWidgets();

// Sets the controls from keyValNodeHeadL (keys matched case-insensitively; a
// key without a row is ignored), then frees the list and nulls the head.  On
// a failure to reveal the TrustStore password it shows the out-of-memory box,
// sets exit_code to 1 and returns with the list not freed.
ZU_EXPORT void populateUIFromLinkedList();

// Frees any list, then builds keyValNodeHeadL anew from the controls, one
// node per row in table order.  1 when done; 0 on memory failure, after the
// out-of-memory box and exit_code 1, with the list as far as it got.
ZU_EXPORT int populateLinkedListFromUI();

// Makes the Kerberos controls of the Security tab sensitive.
ZU_EXPORT void ungrayAuthOptions();

#endif
