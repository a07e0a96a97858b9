#include "installspy.h"

#include <dlfcn.h>
#include <odbcinst.h>

namespace {
bool gRecording = false;
std::vector<ProfileWrite> gWrites;

using WriteFunction = BOOL (*)(LPCSTR, LPCSTR, LPCSTR, LPCSTR);
}  // namespace

void spyStart()
{
    gWrites.clear();
    gRecording = true;
}

std::vector<ProfileWrite> spyStop()
{
    gRecording = false;
    return std::move(gWrites);
}

extern "C" __attribute__((visibility("default"))) BOOL SQLWritePrivateProfileString(LPCSTR section, LPCSTR entry,
                                                                                    LPCSTR value, LPCSTR file)
{
    static const auto real = reinterpret_cast<WriteFunction>(dlsym(RTLD_NEXT, "SQLWritePrivateProfileString"));
    if (gRecording)
        gWrites.push_back({section != nullptr ? section : "(null)", entry != nullptr ? entry : "(null)",
                           value != nullptr ? value : "(null)", file != nullptr ? file : "(null)"});
    return real != nullptr ? real(section, entry, value, file) : 0;
}
