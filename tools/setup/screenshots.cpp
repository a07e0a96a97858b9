#include "screenshots.h"

#include <Xm/Xm.h>
#include <Xm/Notebook.h>
#include <X11/IntrinsicP.h>  // popup_list: Xt has no public accessor for popups
#include <X11/Xatom.h>
#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cstdio>

extern char** environ;

namespace hnsybs {

namespace {

constexpr unsigned long kPollMs = 100;
constexpr unsigned long kSettleMs = 400;  // time for a new page to be drawn

struct Tab {
    int page;
    std::string label;
};

// Depth-first search under `w`, popups included (the dialog is a popup of
// the invisible parent shell).
Widget findWidget(Widget w, bool (*match)(Widget))
{
    if (w == nullptr)
        return nullptr;
    if (match(w))
        return w;
    for (Cardinal i = 0; i < w->core.num_popups; ++i)
        if (Widget found = findWidget(w->core.popup_list[i], match))
            return found;
    if (XtIsComposite(w)) {
        WidgetList children = nullptr;
        Cardinal count = 0;
        XtVaGetValues(w, XmNchildren, &children, XmNnumChildren, &count, nullptr);
        for (Cardinal i = 0; i < count; ++i)
            if (Widget found = findWidget(children[i], match))
                return found;
    }
    return nullptr;
}

bool isNotebook(Widget w) { return XmIsNotebook(w); }
bool isShownDialog(Widget w)
{
    if (!XtIsShell(w) || !XtIsRealized(w) || XtParent(w) == nullptr)
        return false;
    XWindowAttributes attributes;
    return XGetWindowAttributes(XtDisplay(w), XtWindow(w), &attributes) && attributes.map_state == IsViewable;
}

std::vector<Tab> majorTabs(Widget notebook)
{
    std::vector<Tab> tabs;
    WidgetList children = nullptr;
    Cardinal count = 0;
    XtVaGetValues(notebook, XmNchildren, &children, XmNnumChildren, &count, nullptr);
    for (Cardinal i = 0; i < count; ++i) {
        unsigned char type = 0;
        int page = 0;
        XtVaGetValues(children[i], XmNnotebookChildType, &type, XmNpageNumber, &page, nullptr);
        if (type != XmMAJOR_TAB || !XtIsManaged(children[i]))
            continue;
        std::string label;
        XmString text = nullptr;
        XtVaGetValues(children[i], XmNlabelString, &text, nullptr);
        if (text != nullptr) {
            char* plain = static_cast<char*>(XmStringUnparse(text, nullptr, XmCHARSET_TEXT, XmCHARSET_TEXT,
                                                             nullptr, 0, XmOUTPUT_ALL));
            if (plain != nullptr) {
                label = plain;
                XtFree(plain);
            }
            XmStringFree(text);
        }
        tabs.push_back({page, label});
    }
    std::sort(tabs.begin(), tabs.end(), [](const Tab& a, const Tab& b) { return a.page < b.page; });
    return tabs;
}

std::string fileName(std::size_t index, const std::string& label)
{
    std::string name;
    for (char c : label)
        if (std::isalnum(static_cast<unsigned char>(c)))
            name += c;
    char prefix[24];
    std::snprintf(prefix, sizeof prefix, "%02zu-", index + 1);
    return prefix + (name.empty() ? std::string("tab") : name) + ".png";
}

// Runs `import -window ID path` without a shell, waiting a bounded time.
bool capture(Window window, const std::string& path, std::string& error)
{
    const char* program = access("/usr/bin/import", X_OK) == 0 ? "/usr/bin/import" : "import";
    char id[32];
    std::snprintf(id, sizeof id, "0x%lx", static_cast<unsigned long>(window));
    char* argv[] = {const_cast<char*>(program), const_cast<char*>("-window"), id,
                    const_cast<char*>(path.c_str()), nullptr};
    pid_t pid = -1;
    if (posix_spawnp(&pid, program, nullptr, nullptr, argv, environ) != 0) {
        error = "cannot run ImageMagick's import";
        return false;
    }
    for (int waited = 0;; waited += 50) {
        int status = 0;
        pid_t done = waitpid(pid, &status, WNOHANG);
        if (done == pid) {
            if (WIFEXITED(status) && WEXITSTATUS(status) == 0)
                return true;
            error = "import failed for " + path;
            return false;
        }
        if (waited >= kCaptureTimeoutMs) {
            kill(pid, SIGKILL);
            waitpid(pid, &status, 0);
            error = "import did not finish for " + path;
            return false;
        }
        struct timespec pause = {0, 50 * 1000 * 1000};
        nanosleep(&pause, nullptr);
    }
}

// Cancel, as the user would press it: the button's own callbacks, or the
// window manager's close message when the button cannot be found.
void cancelDialog(Widget shell, Widget dialog)
{
    if (Widget cancel = XtNameToWidget(shell, "*btnCancel")) {
        XtCallCallbacks(cancel, XmNactivateCallback, nullptr);
        return;
    }
    Display* display = XtDisplay(dialog);
    XEvent event{};
    event.xclient.type = ClientMessage;
    event.xclient.window = XtWindow(dialog);
    event.xclient.message_type = XInternAtom(display, "WM_PROTOCOLS", False);
    event.xclient.format = 32;
    event.xclient.data.l[0] = static_cast<long>(XInternAtom(display, "WM_DELETE_WINDOW", False));
    event.xclient.data.l[1] = CurrentTime;
    XSendEvent(display, XtWindow(dialog), False, NoEventMask, &event);
}

void step(XtPointer data, XtIntervalId*)
{
    auto* job = static_cast<ScreenshotJob*>(data);
    Widget dialog = findWidget(job->shell, isShownDialog);
    Widget notebook = findWidget(job->shell, isNotebook);
    if (dialog == nullptr || notebook == nullptr) {
        job->waitedMs += static_cast<int>(kPollMs);
        if (job->waitedMs < kAppearTimeoutMs) {
            XtAppAddTimeOut(job->app, kPollMs, step, job);
        } else {
            // The dialog never came: nothing to capture, nothing to close.
            job->error = "the dialog did not appear";
        }
        return;
    }
    std::vector<Tab> tabs = majorTabs(notebook);
    // Even steps bring a tab to the front, odd ones capture it once drawn.
    std::size_t tab = job->next / 2;
    if (tab >= tabs.size() || !job->error.empty()) {
        if (tabs.empty())
            job->error = "the dialog's notebook has no tabs";
        cancelDialog(job->shell, dialog);
        return;
    }
    if (job->next % 2 == 0) {
        XtVaSetValues(notebook, XmNcurrentPageNumber, tabs[tab].page, nullptr);
    } else {
        XSync(XtDisplay(dialog), False);
        std::string path = job->folder + "/" + fileName(tab, tabs[tab].label);
        if (capture(XtWindow(dialog), path, job->error))
            job->saved.push_back(path);
    }
    ++job->next;
    XtAppAddTimeOut(job->app, job->next % 2 == 1 ? kSettleMs : 10, step, job);
}

}  // namespace

void startScreenshots(XtAppContext app, Widget shell, void* data)
{
    auto* job = static_cast<ScreenshotJob*>(data);
    job->app = app;
    job->shell = shell;
    job->waitedMs = 0;
    job->next = 0;
    XtAppAddTimeOut(app, kPollMs, step, job);
}

}  // namespace hnsybs
