/*
 * Message catalogs and the installation directory.
 *
 * Every message of the library is looked up by number in an X/Open message
 * catalog (catopen / catgets / catclose; all messages in set 1, the message
 * number as id), installed as
 *     <InstallDirLocation>/locale/<locale>/LC_MESSAGES/<name>.mo
 * with en_US as the fallback locale.  A lookup never fails: without a
 * catalog, or for a number the catalog lacks, the text is the number's
 * decimal digits.
 *
 * InstallDirLocation is process-wide and written only by bosSetInstallDir.
 * The process-wide catalog CatFD is opened by bosLoadResourceDLL and closed
 * when its use count falls to 0.  Catalogs from OpenStrings belong to the
 * caller, who closes them with CloseStrings.  Lookups are serialised, as
 * catgets shares a result buffer.
 */
#ifndef HNSYB_PLATFORM_CATALOG_H
#define HNSYB_PLATFORM_CATALOG_H

#include <nl_types.h>

#include "export.h"

inline const nl_catd ZU_NO_CATALOG = reinterpret_cast<nl_catd>(-1);

ZU_EXPORT extern char InstallDirLocation[1025];
ZU_EXPORT extern nl_catd CatFD;
ZU_EXPORT extern const char* BZUHINST;

// Sets the installation directory: `dir`, or when null the variable
// PF_INSTALLDIR; white space and one trailing '/' are cut.  0 when a
// directory is set, 1 when it stayed empty.
ZU_EXPORT int bosSetInstallDir(const char* dir);

// The locale whose catalogs are read: LC_MESSAGES of the process unless it
// is "C", else the variables LC_MESSAGES and LANG (when set and not "C"),
// else "en_US".
ZU_EXPORT const char* bosMessageLocale(char* buffer, unsigned long size);

// Opens <stem>.mo (or `fileName` when given) of the chosen locale, falling
// back to en_US; ZU_NO_CATALOG when neither opens.
ZU_EXPORT nl_catd OpenStrings(const char* stem, const char* fileName);
ZU_EXPORT void CloseStrings(nl_catd catalog);
// The process-wide catalog: opened on first use, counted by `counter`.
ZU_EXPORT int bosLoadResourceDLL(const char* stem, int unused, void* unusedPointer, int* counter);
ZU_EXPORT int bosFreeResourceDLL(long unused, int* counter);

// Text of message `id` into `buffer` of `size` bytes (always terminated; a
// size of 0 means the whole text, which the caller must have room for); the
// length of what is in the buffer.
ZU_EXPORT int LoadString(void* module, unsigned int id, char* buffer, int size);
ZU_EXPORT int LoadStringFromOpenFile(nl_catd catalog, unsigned int id, char* buffer, int size);
// The same in 16-bit units (size clamped to 4,096), converted with the
// default converter; "Failed!" when that fails.
ZU_EXPORT int LoadStringW(void* module, unsigned int id, unsigned short* buffer, int size);

// The text of message `id` from the process-wide catalog.  The two-argument
// forms write up to 1,024 bytes (units); the bounded form writes at most
// `size`.  An empty text when nothing is found.
ZU_EXPORT int winGetString(char* buffer, unsigned int id);
ZU_EXPORT void winGetString(unsigned short* buffer, unsigned int id);
ZU_EXPORT int winGetString(unsigned int id, char* buffer, int size);

#endif
