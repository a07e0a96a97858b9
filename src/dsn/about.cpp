// The About tab and the version functions of the family (see about_impl.h).

#include "about_impl.h"

#include <X11/xpm.h>
#include <Xm/Form.h>
#include <Xm/Label.h>
#include <Xm/Xm.h>
#include <dlfcn.h>

#include <cstdio>
#include <cstring>
#include <ctime>

#include "../core/errorlist.h"
#include "../core/strcopy.h"
#include "../dsn.h"
#include "../platform/bosfile.h"
#include "../platform/boslocate.h"
#include "../platform/catalog.h"
#include "abouticons_impl.h"
#include "backend_impl.h"
#include "dialog/builders.h"
#include "messages_impl.h"
#include "msgbox_impl.h"

char fileName[1024];
char fileSize[20];
char fileDate[50];
char compAddr1[50];
char compAddr2[50];
char CompanyName[1024];
char FileVersion[1024];

namespace {

constexpr std::size_t kNameRoom = sizeof CompanyName;  // room of getCompNameAndVersion's outputs

Widget AboutForm = nullptr;
Widget lbFileName, lbVersion, lbDate, lbFileSize, lbCompName, lbAddress1, lbAddress2;

typedef const char* (*TextFunction)();

// The company and version read from a library by the last About tab, kept
// for the process with the file's date and size.  Reading them loads and
// unloads the driver's library (relocations, its dependencies, their
// constructors), which is most of the tab's cost; a dialog opened again for
// the same file, unchanged, reuses what was read.
struct LibraryTexts {
    bool valid = false;
    char path[sizeof fileName];
    unsigned long date;
    unsigned long size;
    char company[sizeof CompanyName];
    char version[sizeof FileVersion];
};
LibraryTexts lastLibrary;

// A label showing `text`, aligned to the beginning; null when not made.
Widget valueLabel(Widget parent, const char* name, const char* text, int top, int bottom, int left, int right)
{
    XmString string = XmStringCreateLocalized(const_cast<char*>(text));
    Arg args[2];
    XtSetArg(args[0], XmNlabelString, string);
    XtSetArg(args[1], XmNalignment, XmALIGNMENT_BEGINNING);
    Widget label = XmCreateLabel(parent, const_cast<char*>(name), args, 2);
    XmStringFree(string);
    if (label != nullptr) {
        setControlRect(label, top, bottom, left, right);
        XtManageChild(label);
    }
    return label;
}

Widget textLabel(Widget parent, int id, int top, int bottom, int left, int right)
{
    Widget label = createLabel(parent, id);
    if (label != nullptr) {
        setControlRect(label, top, bottom, left, right);
        XtManageChild(label);
    }
    return label;
}

Widget iconLabel(Widget parent, const char* name, const char** data, int top)
{
    Arg args[3];
    XtSetArg(args[0], XmNmarginWidth, 0);
    XtSetArg(args[1], XmNmarginHeight, 0);
    XtSetArg(args[2], XmNlabelType, XmPIXMAP);
    Widget label = XmCreateLabel(parent, const_cast<char*>(name), args, 3);
    if (label == nullptr)
        return nullptr;
    unsigned long pixmap = 0;
    if (getPFIconIPixmap(&pixmap, const_cast<char**>(data)) == XpmSuccess)
        XtVaSetValues(label, XmNlabelPixmap, static_cast<Pixmap>(pixmap), nullptr);
    setControlRect(label, top, top + 32, 8, 40);
    XtManageChild(label);
    return label;
}

// The shift of a channel whose mask holds exactly eight adjacent bits, or
// -1 for any other mask.
int byteChannelShift(unsigned long mask)
{
    for (int shift = 0; shift + 8 <= static_cast<int>(sizeof mask * 8); ++shift)
        if (mask == 0xFFUL << shift)
            return shift;
    return -1;
}

// True when a colour's pixel on `visual` can be computed here exactly as the
// server would allocate it: TrueColor with eight bits a channel (depth 24
// and 32), where the server takes each component's top byte.  Shallower
// channels are rounded by the server's own rule, so they are asked of it.
bool computedPixels(const Visual* visual)
{
    return visual != nullptr && visual->c_class == TrueColor && byteChannelShift(visual->red_mask) >= 0 &&
           byteChannelShift(visual->green_mask) >= 0 && byteChannelShift(visual->blue_mask) >= 0;
}

// The icons' colour allocator.  libXpm's own allocator makes one blocking
// round trip to the server per colour (about two dozen for the four icons);
// on a visual where the pixel follows from the colour alone the same pixel
// is computed here instead.  Other visuals allocate from the colormap as
// libXpm would.  The icons give colours as "#RRGGBB", which XParseColor
// reads without the server.  Returns 1 when allocated, 0 when not, -1 when
// the name is bad (libXpm's contract).
int allocIconColor(Display* display, Colormap colormap, char* name, XColor* color, void* closure)
{
    if (name != nullptr && XParseColor(display, colormap, name, color) == 0)
        return -1;
    const Visual* visual = static_cast<const Visual*>(closure);
    if (!computedPixels(visual))
        return XAllocColor(display, colormap, color) != 0 ? 1 : 0;
    // The component's top byte, and the value the server reports back for
    // it (that byte repeated).
    const auto channel = [](unsigned short& component, unsigned long mask) {
        const unsigned long top = component >> 8;
        component = static_cast<unsigned short>(top * 257);
        return top << byteChannelShift(mask);
    };
    color->pixel = channel(color->red, visual->red_mask) | channel(color->green, visual->green_mask) |
                   channel(color->blue, visual->blue_mask);
    color->flags = DoRed | DoGreen | DoBlue;
    return 1;
}

// Frees what allocIconColor allocated: nothing where the pixels were
// computed, since no colormap cell was taken.
int freeIconColors(Display* display, Colormap colormap, Pixel* pixels, int count, void* closure)
{
    if (!computedPixels(static_cast<const Visual*>(closure)))
        XFreeColors(display, colormap, pixels, count, 0);
    return 1;
}

}  // namespace

const char* getFileVersionString(void) { return "06.00.0119 (b0053, U0050)"; }
const char* getCompanyNameString(void) { return "Halden Systems Corporation"; }

const char* getVersion(void* handle)
{
    if (handle == nullptr)
        return nullptr;
    auto function = reinterpret_cast<TextFunction>(dlsym(handle, "getFileVersionString"));
    return function != nullptr ? function() : nullptr;
}

void getCompNameAndVersion(char* libPath, char* company, char* version, int flags)
{
    // A library that does not load is not the user's problem here: its
    // error goes to a list of our own and dies with it.
    ZuErrorList errors(nullptr, 1);
    ZuErrorKeeper::setErrorList(&errors);
    void* handle = libPath != nullptr && libPath[0] != 0 ? bosLoadLibrary(libPath, flags & 255) : nullptr;
    if (company != nullptr || version != nullptr) {
        const char* companyText = nullptr;
        const char* versionText = nullptr;
        if (handle != nullptr) {
            auto function = reinterpret_cast<TextFunction>(dlsym(handle, "getCompanyNameString"));
            companyText = function != nullptr ? function() : nullptr;
            versionText = getVersion(handle);
        }
        // Outputs have room for kNameRoom bytes (the About buffers).
        if (company != nullptr)
            strCopy(company, static_cast<long>(kNameRoom), companyText != nullptr ? companyText : "");
        if (version != nullptr)
            strCopy(version, static_cast<long>(kNameRoom), versionText != nullptr ? versionText : "");
    }
    if (handle != nullptr)
        dlclose(handle);
    ZuErrorKeeper::giveUpErrorList();
}

void setAboutInfo(unsigned char* driverPath)
{
    const char* path = driverPath != nullptr ? reinterpret_cast<const char*>(driverPath) : "";
    strCopy(fileName, sizeof fileName, path);
    unsigned long date = 0;
    unsigned long size = 0;
    const bool dated = bosFileDateSize(fileName, &date, &size) == 0;
    if (dated) {
        const std::time_t when = static_cast<std::time_t>(date);
        std::tm local{};
        localtime_r(&when, &local);
        // The locale's own date form, as the user reads dates.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-y2k"
        if (std::strftime(fileDate, sizeof fileDate, "%x", &local) == 0)
            fileDate[0] = 0;
#pragma GCC diagnostic pop
        // Whole units of 1,024 bytes, rounded down.
        std::snprintf(fileSize, sizeof fileSize, "%u kb", static_cast<unsigned>(size >> 10));
    } else {
        fileDate[0] = 0;
    }
    if (dated && lastLibrary.valid && lastLibrary.date == date && lastLibrary.size == size &&
        std::strcmp(lastLibrary.path, fileName) == 0) {
        strCopy(CompanyName, sizeof CompanyName, lastLibrary.company);
        strCopy(FileVersion, sizeof FileVersion, lastLibrary.version);
    } else {
        getCompNameAndVersion(fileName, CompanyName, FileVersion, 0);
        lastLibrary.valid = dated;
        if (dated) {
            strCopy(lastLibrary.path, sizeof lastLibrary.path, fileName);
            lastLibrary.date = date;
            lastLibrary.size = size;
            strCopy(lastLibrary.company, sizeof lastLibrary.company, CompanyName);
            strCopy(lastLibrary.version, sizeof lastLibrary.version, FileVersion);
        }
    }
    LoadStringFromOpenFile(Rfile, MSG_ABOUT_ADDRESS1, compAddr1, sizeof compAddr1);
    LoadStringFromOpenFile(Rfile, MSG_ABOUT_ADDRESS2, compAddr2, sizeof compAddr2);
}

int getPFIconIPixmap(unsigned long* pixmap, char** xpmData)
{
    if (pixmap == nullptr || xpmData == nullptr || AboutForm == nullptr)
        return XpmOpenFailed;
    Display* shown = XtDisplay(AboutForm);
    int depth = 0;
    Colormap colormap = 0;
    Pixel background = 0;
    XtVaGetValues(AboutForm, XmNdepth, &depth, XmNcolormap, &colormap, XmNbackground, &background, nullptr);
    XpmAttributes attributes{};
    attributes.visual = DefaultVisualOfScreen(XtScreen(AboutForm));
    attributes.colormap = colormap;
    attributes.depth = static_cast<unsigned>(depth);
    // Transparent pixels take the form's background, since a label shows
    // no shape mask.
    XpmColorSymbol transparent{nullptr, const_cast<char*>("None"), background};
    attributes.colorsymbols = &transparent;
    attributes.numsymbols = 1;
    attributes.alloc_color = allocIconColor;
    attributes.free_colors = freeIconColors;
    attributes.color_closure = attributes.visual;
    attributes.valuemask = XpmVisual | XpmColormap | XpmDepth | XpmColorSymbols | XpmAllocColor | XpmFreeColors |
                           XpmColorClosure;
    Pixmap image = 0;
    const int rc = XpmCreatePixmapFromData(shown, RootWindowOfScreen(XtScreen(AboutForm)), xpmData, &image,
                                           nullptr, &attributes);
    if (rc == XpmSuccess)
        *pixmap = image;
    XpmFreeAttributes(&attributes);
    return rc;
}

Widget createAbtForm(Widget notebook, unsigned char* driverPath)
{
    setAboutInfo(driverPath);
    AboutForm = createForm(notebook, "AboutForm");
    if (AboutForm == nullptr) {
        showOutOfMemoryError(shell1);
        return nullptr;
    }
    char copyright[512];
    char tail[512];
    LoadStringFromOpenFile(Rfile, MSG_ABOUT_COPYRIGHT, copyright, sizeof copyright);
    LoadStringFromOpenFile(Rfile, MSG_ABOUT_COMPANY_TAIL, tail, sizeof tail);
    char company[2 * 512 + sizeof CompanyName + 8];
    std::snprintf(company, sizeof company, "%c %s%s%s", 169, copyright, CompanyName, tail);

    const bool made =
        textLabel(AboutForm, MSG_ABOUT_FILE, 5, 26, 70, 133) != nullptr &&
        (lbFileName = valueLabel(AboutForm, "lbFileName", fileName, 5, 25, 135, 535)) != nullptr &&
        textLabel(AboutForm, MSG_ABOUT_VERSION, 25, 46, 70, 133) != nullptr &&
        (lbVersion = valueLabel(AboutForm, "lbVersion", "", 25, 47, 135, 534)) != nullptr &&
        textLabel(AboutForm, MSG_ABOUT_DATE, 45, 66, 70, 133) != nullptr &&
        (lbDate = valueLabel(AboutForm, "lbDate", fileDate, 45, 66, 135, 534)) != nullptr &&
        textLabel(AboutForm, MSG_ABOUT_SIZE, 65, 86, 70, 133) != nullptr &&
        (lbFileSize = valueLabel(AboutForm, "lbFileSize", fileSize, 65, 85, 135, 534)) != nullptr &&
        (lbCompName = valueLabel(AboutForm, "lbCompName", company, 105, 125, 70, 535)) != nullptr &&
        textLabel(AboutForm, MSG_ABOUT_RIGHTS, 125, 145, 70, 535) != nullptr &&
        (lbAddress1 = valueLabel(AboutForm, "lbAddress1", compAddr1, 145, 165, 70, 535)) != nullptr &&
        (lbAddress2 = valueLabel(AboutForm, "lbAddress2", compAddr2, 165, 185, 70, 535)) != nullptr &&
        iconLabel(AboutForm, "lbico1", iconDataSource, 8) != nullptr &&
        iconLabel(AboutForm, "lbico2", iconConnection, 40) != nullptr &&
        iconLabel(AboutForm, "lbico3", iconSecurity, 72) != nullptr &&
        iconLabel(AboutForm, "lbico4", iconSettings, 104) != nullptr;
    if (!made) {
        showOutOfMemoryError(shell1);
        return nullptr;
    }
    // The version is set after creation.
    XmString version = XmStringCreateLocalized(FileVersion);
    XtVaSetValues(lbVersion, XmNlabelString, version, nullptr);
    XmStringFree(version);
    return AboutForm;
}
