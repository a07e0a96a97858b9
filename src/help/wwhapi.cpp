// The help request: start-up, the display family and shut-down.
#include <cstdlib>
#include <cstring>

#include "../platform/ram.h"
#include "wwhcomm.h"
#include "wwhelp.h"

// The help root and the API page's URL while started (both malloc'ed), and
// the browser record the requests use.  Process-wide: one request at a time.
char* sgpWWHelp_Base = nullptr;
char* sgpWWHelp_BaseURL = nullptr;
WWHelp_BrowserInfo sgWWHelp_DefaultBrowserInfo;

namespace {

const char kApiPage[] = "/wwhelp/wwhimpl/api.htm";

void freeBase()
{
    std::free(sgpWWHelp_Base);
    std::free(sgpWWHelp_BaseURL);
    sgpWWHelp_Base = nullptr;
    sgpWWHelp_BaseURL = nullptr;
}

bool hasText(const char* text) { return text != nullptr && text[0] != 0; }

const char* tabName(int tab)
{
    switch (tab) {
    case WWHelp_TabContents: return "contents";
    case WWHelp_TabIndex: return "index";
    case WWHelp_TabSearch: return "search";
    case WWHelp_TabFavorites: return "favorites";
    default: return nullptr;
    }
}

// Appends `text` and moves the end; the buffer was sized for it.
void append(char*& end, const char* text)
{
    const size_t n = std::strlen(text);
    std::memcpy(end, text, n);
    end += n;
    *end = 0;
}

}  // namespace

int WWHelp_Startup(char* rootUrl)
{
    if (sgpWWHelp_Base != nullptr || sgpWWHelp_BaseURL != nullptr || !hasText(rootUrl))
        return -1;
    const size_t rootLength = std::strlen(rootUrl);
    sgpWWHelp_Base = static_cast<char*>(ramAllocC(rootLength + 1));
    sgpWWHelp_BaseURL = static_cast<char*>(ramAllocC(rootLength + sizeof kApiPage));
    if (sgpWWHelp_Base == nullptr || sgpWWHelp_BaseURL == nullptr) {
        freeBase();
        return -1;
    }
    std::memcpy(sgpWWHelp_Base, rootUrl, rootLength + 1);
    std::memcpy(sgpWWHelp_BaseURL, rootUrl, rootLength);
    std::memcpy(sgpWWHelp_BaseURL + rootLength, kApiPage, sizeof kApiPage);

    if (WWHelp_Comm_Startup() == 0) {
        if (WWHelp_Comm_NewBrowserInfo(&sgWWHelp_DefaultBrowserInfo) == 0)
            return 0;
        WWHelp_Comm_Shutdown();
    }
    freeBase();
    return -1;
}

int WWHelp_Shutdown()
{
    if (sgpWWHelp_Base == nullptr && sgpWWHelp_BaseURL == nullptr)
        return -1;
    freeBase();
    const int deleted = WWHelp_Comm_DeleteBrowserInfo(&sgWWHelp_DefaultBrowserInfo);
    const int shut = WWHelp_Comm_Shutdown();
    return deleted == 0 && shut == 0 ? 0 : -1;
}

int private_WWHelp_DisplayHelp(const char* context, const char* topic, int single, int tab)
{
    if (sgpWWHelp_BaseURL == nullptr)
        return -1;
    // Context and topic go together or not at all.
    size_t contextLength = 0;
    size_t topicLength = 0;
    const bool withTopic = hasText(context) && hasText(topic);
    if (withTopic) {
        contextLength = std::strlen(context);
        topicLength = std::strlen(topic);
    }
    // The fixed parts: "?context=" "&topic=" "&single=true" "&tab=favorites"
    // come to 46 bytes; 54 leaves room for the terminator.
    char* url = static_cast<char*>(ramAllocC(std::strlen(sgpWWHelp_BaseURL) + contextLength + topicLength + 54));
    if (url == nullptr)
        return -1;
    char* end = url;
    append(end, sgpWWHelp_BaseURL);
    const char* joint = "?";
    if (withTopic) {
        append(end, joint);
        append(end, "context=");
        append(end, context);
        append(end, "&topic=");
        append(end, topic);
        joint = "&";
    }
    if (single) {
        append(end, joint);
        append(end, "single=true");
        joint = "&";
    }
    if (const char* name = tabName(tab)) {
        append(end, joint);
        append(end, "tab=");
        append(end, name);
    }

    int result = -1;
    if (WWHelp_Comm_SetDefaultBrowserInfo(&sgWWHelp_DefaultBrowserInfo) == 0)
        result = WWHelp_Comm_DisplayHelpURL(&sgWWHelp_DefaultBrowserInfo, url, end - url) == 0 ? 0 : -1;
    std::free(url);
    return result;
}

namespace {
int withTopic(const char* context, const char* topic, int single, int tab)
{
    if (!hasText(context) || !hasText(topic))
        return -1;
    return private_WWHelp_DisplayHelp(context, topic, single, tab);
}
}  // namespace

int WWHelp_DisplayHelp(const char* c, const char* t) { return withTopic(c, t, 1, WWHelp_TabNone); }
int WWHelp_DisplayHelpWithNavigation(const char* c, const char* t) { return withTopic(c, t, 0, WWHelp_TabNone); }
int WWHelp_DisplayHelpWithContents(const char* c, const char* t) { return withTopic(c, t, 0, WWHelp_TabContents); }
int WWHelp_DisplayHelpWithIndex(const char* c, const char* t) { return withTopic(c, t, 0, WWHelp_TabIndex); }
int WWHelp_DisplayHelpWithSearch(const char* c, const char* t) { return withTopic(c, t, 0, WWHelp_TabSearch); }
int WWHelp_DisplayHelpWithFavorites(const char* c, const char* t)
{
    return withTopic(c, t, 0, WWHelp_TabFavorites);
}
int WWHelp_DisplayHelpNavigation() { return private_WWHelp_DisplayHelp(nullptr, nullptr, 0, WWHelp_TabNone); }
int WWHelp_DisplayHelpContents() { return private_WWHelp_DisplayHelp(nullptr, nullptr, 0, WWHelp_TabContents); }
int WWHelp_DisplayHelpIndex() { return private_WWHelp_DisplayHelp(nullptr, nullptr, 0, WWHelp_TabIndex); }
int WWHelp_DisplayHelpSearch() { return private_WWHelp_DisplayHelp(nullptr, nullptr, 0, WWHelp_TabSearch); }
int WWHelp_DisplayHelpFavorites() { return private_WWHelp_DisplayHelp(nullptr, nullptr, 0, WWHelp_TabFavorites); }
