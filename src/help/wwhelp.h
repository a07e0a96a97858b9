/*
 * The help system's API: one help request from start-up to shut-down.
 *
 * WWHelp_Startup keeps the help root and the URL of the API page,
 *     <root>/wwhelp/wwhimpl/api.htm
 * and prepares the browser layer; each display call forms
 *     <api page>[?context=C&topic=T][&single=true][&tab=NAME]
 * (the first parameter joined by "?", the rest by "&"; context and topic
 * both or neither; the values are not escaped) and hands it to the browser
 * layer (wwhcomm.h), which finds the browser anew on every request.
 *
 * State: not started (sgpWWHelp_Base and sgpWWHelp_BaseURL null) -> started
 * by WWHelp_Startup -> not started by WWHelp_Shutdown.  A second start-up
 * while started fails.  The state is process-wide: one request at a time,
 * on one thread.
 *
 * Results are 0 for success and -1 for failure.  The URL helpers hand out
 * malloc'ed text that the caller frees.
 */
#ifndef HNSYB_HELP_WWHELP_H
#define HNSYB_HELP_WWHELP_H

#include "../platform/export.h"

// Tabs of the navigation pane, in the order of the tab argument.
enum WWHelp_Tab { WWHelp_TabNone = 0, WWHelp_TabContents = 1, WWHelp_TabIndex = 2, WWHelp_TabSearch = 3,
                  WWHelp_TabFavorites = 4 };

ZU_C_EXPORT int WWHelp_Startup(char* rootUrl);
ZU_C_EXPORT int WWHelp_Shutdown(void);

// Context and topic, shown alone ("single=true").
ZU_C_EXPORT int WWHelp_DisplayHelp(const char* context, const char* topic);
// Context and topic with the navigation pane, optionally on a tab.
ZU_C_EXPORT int WWHelp_DisplayHelpWithNavigation(const char* context, const char* topic);
ZU_C_EXPORT int WWHelp_DisplayHelpWithContents(const char* context, const char* topic);
ZU_C_EXPORT int WWHelp_DisplayHelpWithIndex(const char* context, const char* topic);
ZU_C_EXPORT int WWHelp_DisplayHelpWithSearch(const char* context, const char* topic);
ZU_C_EXPORT int WWHelp_DisplayHelpWithFavorites(const char* context, const char* topic);
// The navigation pane without a topic.
ZU_C_EXPORT int WWHelp_DisplayHelpNavigation(void);
ZU_C_EXPORT int WWHelp_DisplayHelpContents(void);
ZU_C_EXPORT int WWHelp_DisplayHelpIndex(void);
ZU_C_EXPORT int WWHelp_DisplayHelpSearch(void);
ZU_C_EXPORT int WWHelp_DisplayHelpFavorites(void);

// What every display call comes to.  Context and topic count only when both
// are non-empty; single adds "single=true"; tab is a WWHelp_Tab.
ZU_C_EXPORT int private_WWHelp_DisplayHelp(const char* context, const char* topic, int single, int tab);

// A "javascript:" URL that shows `url` in an open help window, or resets
// the window to a link to it.  *out is malloc'ed and NUL-ended, *outLength
// its length.  0 or -1.
ZU_C_EXPORT int WWHelp_URL_BuildSmartURL(const char* url, long length, char** out, long* outLength);
// Byte by byte: '"' "%22", '%' "%25", '&' "%26", '\'' "%27", '?' "%3f",
// '\\' "%5c"; other bytes pass.  An empty result is -1.
ZU_C_EXPORT int WWHelp_URL_EscapeForJavaScript(const char* text, long length, char** out, long* outLength);
// Each "%hh" becomes one byte; a '%' without two characters behind it is
// dropped.  An empty result is -1.
ZU_C_EXPORT int WWHelp_URL_Unescape(const char* text, long length, char** out, long* outLength);

#endif
