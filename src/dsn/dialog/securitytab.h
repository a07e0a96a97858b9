/*
 * The Security tab, shared by the driver family through a variant argument
 * (this dialog passes 1): authentication and encryption frames, and the
 * masking of password fields.
 *
 * A password field shows asterisks only; its clear text lives in a global
 * char pointer (truststorePasssword of the lifecycle, keystorePasssword and
 * keyPasssword here), allocated with XtMalloc and kept up to date by
 * checkPassword on every modification.  The lifecycle frees
 * truststorePasssword at the end of the dialog; the two others are kept.
 */
#ifndef HNSYB_DSN_DIALOG_SECURITYTAB_H
#define HNSYB_DSN_DIALOG_SECURITYTAB_H

#include <X11/Intrinsic.h>

#include "platform/export.h"

// Clear texts of the key store password fields (variants 0, 2 and 3 only).
ZU_EXPORT extern char* keystorePasssword;
ZU_EXPORT extern char* keyPasssword;

// Builds the tab form "formSecurityTab" in `parent` (the notebook) and
// returns it, or null when it cannot be made.  helpBook and helpTopic are
// kept for the help button's whole life.
ZU_EXPORT Widget createSecurityTab(Widget parent, short variant, unsigned char* helpBook, unsigned char* helpTopic);

// Selection callbacks of the two drop-downs, also called directly.
ZU_EXPORT void authMethodChanged(Widget w, XtPointer client, XtPointer call);
ZU_EXPORT void encryptMethodChanged(Widget w, XtPointer client, XtPointer call);

// Modify-verify callback of a password field: `clearTextSlot` is the address
// of the char* that holds the clear text; the inserted text is copied there
// and replaced by asterisks in the widget.
ZU_EXPORT void checkPassword(Widget w, XtPointer clearTextSlot, XtPointer verify);

#endif
