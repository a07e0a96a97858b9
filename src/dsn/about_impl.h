/*
 * The About tab: facts of the driver library on disk (name, version, date,
 * size, maker) beside four 32 x 32 icons, and the version of a library of
 * the family read through its exported getFileVersionString.
 *
 * The fixed buffers below are filled by setAboutInfo with bounded copies.
 * Pixmaps made for the icons belong to the display.
 */
#ifndef HNSYB_DSN_ABOUT_IMPL_H
#define HNSYB_DSN_ABOUT_IMPL_H

#include <X11/Intrinsic.h>

#include "../platform/export.h"

extern char fileName[1024];
extern char fileSize[20];
extern char fileDate[50];
extern char compAddr1[50];
extern char compAddr2[50];
extern char CompanyName[1024];
extern char FileVersion[1024];

// The tab's form "AboutForm" under `notebook`, or null (after the
// out-of-memory box) when a widget could not be made.
ZU_EXPORT Widget createAbtForm(Widget notebook, unsigned char* driverPath);
ZU_EXPORT void setAboutInfo(unsigned char* driverPath);
// Company name and version of the library at `libPath` (empty when it does
// not load or does not say); leaves no error behind.
ZU_EXPORT void getCompNameAndVersion(char* libPath, char* company, char* version, int flags);
// The library's getFileVersionString(), or null.
ZU_EXPORT const char* getVersion(void* handle);
// The icon XPM data into *pixmap on the About form's display; 0 or an Xpm error.
ZU_EXPORT int getPFIconIPixmap(unsigned long* pixmap, char** xpmData);

#endif
