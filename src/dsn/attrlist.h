/*
 * The data source record and the attribute list: what the setup library
 * hands the dialog, and the one routine that writes a data source to disk.
 *
 * driverDSNName is one flat block that names a driver and a data source.  Its
 * first field is the driver's section name in the driver list, so a pointer
 * to the record serves wherever that section name is wanted.  Every string
 * field is NUL-terminated and every copy into one is bounded by its size
 * (a longer text is cut, never written past the field).
 *
 * nd is one node of the ordered KEY=VALUE list; insertion order is the order
 * in which keys are saved.  Keys hold up to 511 and values up to 1,023
 * characters; longer input is cut to that.
 *
 * Memory: records come from PopulateDriverDSNStruct and nodes from malloc;
 * both are freed with free (FreeDriverDsnStruct, FreeLinkedList).  Whoever
 * holds the head of a list owns all of its nodes; invokeBackend takes over
 * the record and the list it is given.
 *
 * Saving goes through unixODBC's installer library: ".odbc.ini" names the
 * user's data source file, ".odbcinst.ini" the driver list.
 */
#ifndef HNSYB_DSN_ATTRLIST_H
#define HNSYB_DSN_ATTRLIST_H

#include "../platform/export.h"

#define DSN_FIELD_SIZE 1024
#define ND_KEY_SIZE 512
#define ND_VALUE_SIZE 1024

/* request values of driverDSNName (the ODBC installer's). */
#define DSN_REQUEST_ADD 1
#define DSN_REQUEST_CONFIG 2

typedef struct driverDSNName {
    char driverName[DSN_FIELD_SIZE];  /* driver's section in the driver list; first on purpose */
    char previousDSN[DSN_FIELD_SIZE]; /* name when the dialog opened; empty for a new DSN */
    unsigned short request;           /* 1 add, 2 configure; other values save nothing */
    char dsnName[DSN_FIELD_SIZE];     /* name being saved */
    char driverPath[DSN_FIELD_SIZE];  /* the driver section's "Driver": the library's path */
    char fileDSNPath[DSN_FIELD_SIZE]; /* path of the file DSN when isFileDSN is 1 */
    int isFileDSN;
} driverDSNName;

typedef struct nd {
    char key[ND_KEY_SIZE];
    char value[ND_VALUE_SIZE];
    struct nd* next;
} nd;

/* Parses KEY=VALUE pairs, each ended by a NUL, the run ended by a second NUL,
 * into a new list at *head (null for a null or empty string).  The key runs to
 * the first '=' from its second character on; a pair without '=' becomes a
 * node whose key is the whole pair and whose value is empty.  On exhausted
 * memory the list holds the pairs parsed so far and a memory error is added. */
ZU_C_EXPORT void convertAttributeStringToLinkedList(nd** head, const char* attrs);

/* The value field of the first node whose key equals `key` (case-sensitive),
 * or null. */
ZU_C_EXPORT char* getValueOfKey(nd* head, const char* key);

/* A new record: driver and DSN names copied (bounded), driverPath read from
 * the driver's section of the driver list, fileDSNPath copied only when
 * isFileDSN is 1.  Null (with a memory error) when malloc fails.  The two
 * unused arguments are kept for the setup library's call. */
ZU_C_EXPORT driverDSNName* PopulateDriverDSNStruct(const char* driver, char* unused1, unsigned short request,
                                                   char* dsn, const char* unused2, int isFileDSN,
                                                   const char* filePath);

/* Appends `node` at the tail and ends the list there. */
ZU_C_EXPORT void AddNodeToList(nd** head, nd* node);

/* Frees every node; returns null so that callers can write head = Free...(head). */
ZU_C_EXPORT nd* FreeLinkedList(nd* head);

ZU_C_EXPORT void FreeDriverDsnStruct(driverDSNName* dsn);

/* Saves the list as the record's data source: pool keys to the driver's
 * section (those nodes leave the list), the old section removed (and the
 * previous one on a rename, after which previousDSN is the new name), the
 * keys written in list order ("DSN" skipped), then the "ODBC Data Sources"
 * entry and "Driver".  A file DSN clears and fills section "ODBC" of its file
 * instead.  Non-zero on success, 0 when a write failed (the section is then
 * incomplete); a request other than add or configure writes nothing and
 * succeeds. */
ZU_C_EXPORT int applyChanges(nd** list, driverDSNName** dsn);

#endif
