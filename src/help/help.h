/*
 * Online help: the request a help button makes.
 *
 * A help button names a driver and a topic.  zuDisplayHelp looks up the
 * driver's help root (the entry "HelpRootDirectory" of the driver's own
 * section in .odbcinst.ini), forms the URL of the help system's API page
 * with the topic, and has a web browser show it: in a running browser of the
 * remote-control family when there is one, else in a new browser process.
 * Each request starts and stops the help layer (wwhelp.h); only one request
 * runs at a time, and the calling thread blocks while it runs (every wait in
 * it is bounded).  Nothing here hands out memory.
 */
#ifndef HNSYB_HELP_HELP_H
#define HNSYB_HELP_HELP_H

#include "../platform/export.h"

// Shows `topic` of the driver's help in the context "ODBC".  A driver whose
// section names no help root gets a message box (messages 1526 and 1525)
// and nothing is started.  A browser that cannot be reached is not reported.
ZU_C_EXPORT void zuDisplayHelp(const unsigned char* driver, const unsigned char* topic);

// The same for a help root given as a directory and a context of the
// caller's; 0 when the help layer took the request, -1 otherwise.
ZU_C_EXPORT int zuDisplayHelp2(unsigned char* directory, unsigned char* context, unsigned char* topic);

// The driver's help root as a URL, "File:///" and the directory, copied
// into *url (at most size - 1 bytes and a NUL).  0 when found; 1 when the
// arguments are unusable or the entry is empty (the box is shown then).
ZU_C_EXPORT int zuFindHelpRoot(const unsigned char* driver, unsigned char** url, unsigned long size);

#endif
