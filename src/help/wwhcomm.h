/*
 * The help layer's link to the browser layer.
 *
 * A thin check in front of wwhplatform.h: every call fails with -1 until
 * WWHelp_Comm_Startup has brought the platform layer up, and for a null
 * record, URL or zero length.  The URL goes to the running browser when
 * there is one and it answers; otherwise a new browser is started with it.
 *
 * Results are 0 or -1.  Copies of a URL made for sending are freed before
 * the call returns; the record is the caller's.
 */
#ifndef HNSYB_HELP_WWHCOMM_H
#define HNSYB_HELP_WWHCOMM_H

#include "wwhplatform.h"

ZU_C_EXPORT int WWHelp_Comm_Startup(void);
ZU_C_EXPORT int WWHelp_Comm_Shutdown(void);

// Clears the flags and the path (the first 9 bytes) and the "-remote" flag.
ZU_C_EXPORT int WWHelp_Comm_ClearBrowserInfo(WWHelp_BrowserInfo* record);
ZU_C_EXPORT int WWHelp_Comm_NewBrowserInfo(WWHelp_BrowserInfo* record);
ZU_C_EXPORT int WWHelp_Comm_DeleteBrowserInfo(WWHelp_BrowserInfo* record);
ZU_C_EXPORT int WWHelp_Comm_SetDefaultBrowserInfo(WWHelp_BrowserInfo* record);

// Mode 0: the URL as it is; mode 1: a help URL (a "smart" one when the
// record asks for it).
ZU_C_EXPORT int WWHelp_Comm_DisplayURL(WWHelp_BrowserInfo* record, const char* url, long length);
ZU_C_EXPORT int WWHelp_Comm_DisplayHelpURL(WWHelp_BrowserInfo* record, const char* url, long length);
ZU_C_EXPORT int private_WWHelp_Comm_SendURLOrLaunchWithURL(WWHelp_BrowserInfo* record, int mode, const char* url,
                                                           long length);
// A malloc'ed copy of exactly `length` bytes, not NUL-ended; null on failure.
ZU_C_EXPORT char* private_WWHelp_Comm_CopyURL(const char* url, long length);

#endif
