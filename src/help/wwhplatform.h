/*
 * Browser control on Unix: find a web browser and make it show a URL.
 *
 * A browser of the remote-control family marks its top-level window with
 * the property _MOZILLA_VERSION; a client shows a URL in it by
 *   1. taking the lock: creating _MOZILLA_LOCK on that window with its own
 *      signature ("pid<N>@<host>") under a server grab, or waiting for the
 *      holder to delete it;
 *   2. setting _MOZILLA_COMMAND to "openURL(<url>)" and waiting for
 *      _MOZILLA_RESPONSE: "200..." done, "1..." interim (wait on), anything
 *      else failed;
 *   3. deleting the lock, but only if it still carries its own signature.
 * All four properties are XA_STRING, format 8.  Without such a window the
 * browser is started as a new process with the URL as its argument.
 *
 * Every wait here is bounded: a wait for the lock, for a response and for a
 * child started with wait set ends with -1 after the wait limit.  X errors
 * met on the way (a window that went away) are failures, not the end of the
 * process.  Children never return into the caller's code: they end by
 * execvp or _exit, and none is left as a zombie.
 *
 * Results are 0 for success and -1 for failure.  The browser record is the
 * caller's; nothing here hands out memory.  One request at a time.
 */
#ifndef HNSYB_HELP_WWHPLATFORM_H
#define HNSYB_HELP_WWHPLATFORM_H

#include <cstdint>

#include "../platform/export.h"

// Xlib's types, without Xlib's macros in every includer: a Display is a
// struct _XDisplay, and a Window or an Atom an XID (unsigned long).
struct _XDisplay;

struct WWHelp_BrowserInfo {
    int32_t smartURL;            // send a "javascript:" URL; always clear here
    int32_t remoteControl;       // the browser speaks the property protocol
    char browserPath[4096];      // the browser found, as a path; empty: none
    int32_t remoteFlagAccepted;  // the browser took "-remote"
    char processSignature[256];  // lock value: "pid%d@" and the host name
};

// Longest URL the browser layer passes on; longer ones are refused.
constexpr long WWHelp_MaxURL = 4090;

ZU_C_EXPORT int WWHelp_Platform_Startup(void);
ZU_C_EXPORT int WWHelp_Platform_Shutdown(void);

// Finds the browser: the candidate names "netscape6", "netscape", "mozilla",
// "iexplorer", "firefox" in each directory of PATH (directory order first),
// else a list of fixed paths.  Sets remoteControl for the netscape and
// mozilla names, with the process signature, and asks the browser whether it
// takes "-remote".  0, or -1 when the record is null.
ZU_C_EXPORT int WWHelp_Platform_SetDefaultBrowserInfo(WWHelp_BrowserInfo* record);
// 0 when the browser is of the remote family and one of its windows is on
// the display named by DISPLAY.
ZU_C_EXPORT int WWHelp_Platform_CheckBrowserRunning(WWHelp_BrowserInfo* record);
// Shows `url` in the running browser through the property protocol.
ZU_C_EXPORT int WWHelp_Platform_SendURL(WWHelp_BrowserInfo* record, const char* url, long length);
// Starts the browser with `url` as its argument, not waiting for it.
ZU_C_EXPORT int WWHelp_Platform_LaunchWithURL(WWHelp_BrowserInfo* record, const char* url, long length);

// Runs `program` with the null-ended argument list, standard output to
// /dev/null and standard error to a fresh temporary file.  With wait 0: 0
// once started.  Otherwise 0 only if the program exited with status 0
// within the wait limit and wrote nothing on standard error.
ZU_C_EXPORT int private_WWHelp_Platform_Command(int wait, const char* program, ...);
// 0 when `path` exists (existence alone, in spite of the name), else -1.
ZU_C_EXPORT int private_WWHelp_Platform_FileIsExecutable(const char* path);
// "pid<N>@<host>" into a buffer of 256 bytes, NUL-ended.
ZU_C_EXPORT int private_WWHelp_Platform_SetProcessSignature(char* buffer);

// Properties of type XA_STRING on a window.  Exists: 0 when set.  Get:
// at most size - 1 bytes copied, not NUL-ended by this call.  Create: -1
// when the property is already there (or the window is gone).  Destroy:
// reads it with delete.
ZU_C_EXPORT int private_WWHelp_Platform_WindowPropertyExists(_XDisplay* display, unsigned long window,
                                                             unsigned long atom);
ZU_C_EXPORT int private_WWHelp_Platform_WindowPropertyGet(_XDisplay* display, unsigned long window,
                                                          unsigned long atom, char* buffer, long size);
ZU_C_EXPORT int private_WWHelp_Platform_WindowPropertyCreate(_XDisplay* display, unsigned long window,
                                                             unsigned long atom, const char* value);
ZU_C_EXPORT int private_WWHelp_Platform_WindowPropertyDestroy(_XDisplay* display, unsigned long window,
                                                              unsigned long atom);
// Waits until the property is deleted (0) or the window destroyed (-1),
// at most the wait limit (-1).
ZU_C_EXPORT int private_WWHelp_Platform_WaitForPropertyDelete(_XDisplay* display, unsigned long window,
                                                              unsigned long atom);
// The first client window among the root's children that carries the
// version property; 0 when none.
ZU_C_EXPORT unsigned long private_WWHelp_Platform_FindMozillaWindow(_XDisplay* display, unsigned long versionAtom);
ZU_C_EXPORT int private_WWHelp_Platform_LockMozillaWindow(_XDisplay* display, unsigned long window,
                                                          unsigned long lockAtom, const char* signature);
// -1 when the lock cannot be read; non-zero when it is another's (left in
// place); 0 when it was ours and is deleted.
ZU_C_EXPORT int private_WWHelp_Platform_UnlockMozillaWindow(_XDisplay* display, unsigned long window,
                                                            unsigned long lockAtom, const char* signature);
ZU_C_EXPORT int private_WWHelp_Platform_SendMozillaRemoteCommand(_XDisplay* display, unsigned long window,
                                                                 unsigned long commandAtom,
                                                                 unsigned long responseAtom,
                                                                 const char* signature, const char* command);

// The bound of every wait of this layer, in milliseconds (at least 1); the
// previous bound.  10,000 unless changed.
ZU_C_EXPORT long private_WWHelp_Platform_SetWaitLimit(long milliseconds);

#endif
