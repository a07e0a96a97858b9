/*
 * <hnsyb/dsn.h>: the C entry points of the data source dialog, for the setup
 * library that opens it.
 *
 * The setup library builds a record with PopulateDriverDSNStruct and a list
 * with convertAttributeStringToLinkedList (both in dsn/attrlist.h) and hands
 * them to motifbackend_invoke_dialog, which from then on owns them: they are
 * freed before it returns (except when the parent has no display).  Only the
 * exit code comes back: 0 when the dialog ended normally (OK and Cancel
 * alike), 1 when it could not run to its end.  One dialog runs at a time in
 * a process.
 */
#ifndef HNSYB_DSN_H
#define HNSYB_DSN_H

#include "platform/export.h"
#include "dsn/attrlist.h"

/* Loads the back end named after the setup library (a final lower-case "s"
 * becomes "r", any other name gains "r"; the first library loaded in a
 * process serves every later call), adds the driver's pool keys to `list`
 * and runs the dialog on `parent` (a Widget).  0 or 1. */
ZU_C_EXPORT int motifbackend_invoke_dialog(void* parent, driverDSNName* dsn, nd* list, unsigned char* setupLibName);

/* Runs the dialog modally on the parent Widget's display and saves what the
 * user confirms.  The exit code, or 1 when the parent has no display (then
 * `dsn` and `list` stay the caller's). */
ZU_C_EXPORT int invokeBackend(void* parent, driverDSNName* dsn, nd* list);

/* Version and maker of this library, as every library of the family tells
 * them; static strings. */
ZU_C_EXPORT const char* getFileVersionString(void);
ZU_C_EXPORT const char* getCompanyNameString(void);

#endif
