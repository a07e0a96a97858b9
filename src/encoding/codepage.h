/*
 * Code page identifiers and the application code page.
 *
 * Every character set is named by one integer (see cptype.h).  The tables
 * here map numbers to ICU converter names and back, and older numberings
 * (the previous library's, Windows') to those numbers.  They are constant
 * data sorted by key and searched without allocating; every name returned
 * lives for the life of the process.
 *
 * The application code page is decided from a connection string, a DSN, or
 * the profiles, before the library's own profile layer can run: this module
 * keeps its own read-only copy of .odbc.ini and .odbcinst.ini, read once
 * when the library is loaded, and never refreshed.  A DSN name handed out by
 * the connection-string functions belongs to the caller, who frees it with
 * ucnv_free.
 */
#ifndef HNSYB_ENCODING_CODEPAGE_H
#define HNSYB_ENCODING_CODEPAGE_H

#include <cstdint>

#include "../platform/export.h"
#include "cptype.h"

struct ZuCodePageName {   // number -> name
    int32_t id;
    const char* name;
};
struct ZuNameCodePage {   // name -> number
    const char* name;
    int32_t id;
};
struct ZuCodePageMap {    // older number -> number
    int32_t from;
    int32_t to;
};

ZU_EXPORT extern const ZuCodePageName IANAtoICUTable[341];
ZU_EXPORT extern const ZuCodePageName IANAtoICUTableExport[78];
ZU_EXPORT extern const ZuNameCodePage DocumentedICUtoIANATable[81];
ZU_EXPORT extern const ZuNameCodePage ICUtoIANATable[338];
ZU_EXPORT extern const ZuCodePageMap UnilibToIANATable[78];
ZU_EXPORT extern const ZuCodePageMap WindowsToIANATable[73];

// Binary searches over one table.
ZU_EXPORT const char* ucnvMapToName(long number, const ZuCodePageName* table, int rows);  // or null
ZU_EXPORT long ucnvMapToID(const char* name, const ZuNameCodePage* table, int rows);      // or ZU_CP_ICU_DEFAULT
ZU_EXPORT long ucnvMapToIANAID(long number, const ZuCodePageMap* table, int rows);        // or ZU_CP_NONE

ZU_EXPORT const char* ucnvIANAidToICUname(long number);        // or null (= ICU's default converter)
ZU_EXPORT const char* ucnvIANAidToICUnameExport(long number);  // documented name, else ICU name, else null
ZU_EXPORT long ucnvICUnameToIANAid(const char* name);          // or ZU_CP_ICU_DEFAULT
ZU_EXPORT long ucnvUnilibToIANA(long number);                  // or ZU_CP_NONE
ZU_EXPORT long ucnvWindowsToIANA(long number);                 // or ZU_CP_NONE

// The module's own read-only profile copies, and the same reader over a given
// text (which ends at textSize or at its first NUL).  A value shorter than `size` comes back whole with
// its length; a longer one, or one of exactly `size` bytes, is cut to
// size - 1.  A null section, a missing section or entry and an empty value
// give the default, cut the same way.  A null entry lists the section's entry
// names, each closed by a NUL, then a closing NUL; the result is the bytes
// stored + 1.  A null buffer or a size below 1 takes nothing and gives 0.
ZU_EXPORT int ucnvGetProfileString(const char* section, const char* entry, const char* defaultValue,
                                   char* buffer, int size);
ZU_EXPORT int ucnvGetProfileStringInst(const char* section, const char* entry, const char* defaultValue,
                                       char* buffer, int size);
ZU_EXPORT long ucnvGetProfileInt(const char* section, const char* entry, long defaultValue);
ZU_EXPORT long ucnvGetProfileIntInst(const char* section, const char* entry, long defaultValue);
// The reader over a given text.
ZU_EXPORT int ucnvNWGetProfileString(const char* text, long textSize, const char* section, const char* entry,
                                     const char* defaultValue, char* buffer, int size);

ZU_EXPORT long ucnvGetAppCodePageFromDSN(const char* dsn);
// Connection strings: a negative `length` or `units` reads up to the
// terminator.  A non-null `dsn` is set to null first, then to the first DSN
// value met, a new string that the caller frees with ucnv_free.
ZU_EXPORT long ucnvGetAppCodePage(const char* connection, long length, char** dsn);
ZU_EXPORT long ucnvGetAppCodePageW(const unsigned short* connection, long units, unsigned short** dsn);
ZU_EXPORT long ucnvAnsiIANAAppCodePage(const char* connection, long length, char** dsn);
ZU_EXPORT long ucnvUnicodeIANAAppCodePage(const unsigned short* connection, long units, unsigned short** dsn);
ZU_EXPORT int ucnvEquals(const unsigned short* text, const unsigned short* end, const char* upper, const char* lower);
ZU_EXPORT long ucnvGetNumericValue(const unsigned short** position, const unsigned short* end);
ZU_EXPORT void ucnv_free(void* dsn);

#endif
