/*
 * Screenshot mode of hnsyb-setup, for a display that nobody looks at (the
 * demo under Xvfb): once the dialog is on the screen, every tab of its
 * notebook is brought to the front in turn and the dialog's window is saved
 * as DIR/NN-<tab label>.png with ImageMagick's "import"; then the dialog is
 * cancelled, so nothing is saved.
 *
 * It runs as timers on the dialog's own application context, inside the
 * dialog's modal loop; every wait is bounded (the dialog must appear within
 * kAppearTimeoutMs, each capture within kCaptureTimeoutMs).  The state lives
 * in a ScreenshotJob owned by the caller for the length of the dialog.
 */
#ifndef HNSYB_TOOLS_SETUP_SCREENSHOTS_H
#define HNSYB_TOOLS_SETUP_SCREENSHOTS_H

#include <X11/Intrinsic.h>

#include <string>
#include <vector>

namespace hnsybs {

inline constexpr int kAppearTimeoutMs = 20000;
inline constexpr int kCaptureTimeoutMs = 20000;

struct ScreenshotJob {
    std::string folder;              // where the pictures go (must exist)
    std::vector<std::string> saved;  // paths written, in tab order
    std::string error;               // why the job stopped early, if it did
    // Internal state of the timers.
    XtAppContext app = nullptr;
    Widget shell = nullptr;
    int waitedMs = 0;
    std::size_t next = 0;
};

// The DialogHooks callback that starts the job (data is the ScreenshotJob).
void startScreenshots(XtAppContext app, Widget shell, void* job);

}  // namespace hnsybs

#endif
