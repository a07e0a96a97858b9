// The profile cache on arbitrary file contents: the input is the file, its
// first byte picks the names looked up.  The cache holds the text in a block
// of exactly its size plus the NUL, so a search that ran past the text is an
// ASan report.  After the reads a new section is written, and where the
// content has no NUL (which ends every search) it must read back.
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "profile/profile.h"

namespace {
const char* const kNames[] = {"a", "b", "", " ", "[", "]", "=", "a b", "ODBC", "x;y"};
constexpr int kNameCount = sizeof kNames / sizeof kNames[0];

std::string filePath()
{
    static const std::string path = "/tmp/hnsyb-fuzz-profile-" + std::to_string(getpid()) + ".ini";
    return path;
}
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size < 1)
        return 0;
    const std::string path = filePath();
    FILE* out = std::fopen(path.c_str(), "wb");
    if (out == nullptr)
        return 0;
    std::fwrite(data + 1, 1, size - 1, out);
    std::fclose(out);

    ZuIniFileCache cache;
    if (cache.bosZuIniOpen(path.c_str(), 0) != 0)
        std::abort();
    const char* section = kNames[data[0] % kNameCount];
    const char* entry = kNames[(data[0] / kNameCount) % kNameCount];
    char buffer[32];
    for (int bufferSize : {1, 2, 7, 32}) {
        if (cache.bosGetProfileString(section, entry, "default", buffer, bufferSize) > bufferSize &&
            bufferSize > 7)
            std::abort();
        if (cache.bosGetProfileString(section, nullptr, "", buffer, bufferSize) > bufferSize)
            std::abort();
        if (cache.bosGetProfileString(nullptr, nullptr, "", buffer, bufferSize) > bufferSize)
            std::abort();
        if (cache.bosGetProfileSection(section, buffer, bufferSize) > bufferSize)
            std::abort();
    }
    cache.bosGetProfileInt(section, entry, 5);

    // A delete and an update over the same text, then a new section.
    cache.bosPutProfileString(section, entry, nullptr);
    cache.bosPutProfileString(section, entry, "v");
    if (cache.bosPutProfileString("fuzz-new", "key", "value") != 1)
        std::abort();
    if (std::memchr(data + 1, 0, size - 1) == nullptr) {
        ZuIniFileCache check;
        if (check.bosZuIniOpen(path.c_str(), 0) != 0)
            std::abort();
        if (check.bosGetProfileString("fuzz-new", "key", "", buffer, sizeof buffer) != 5 ||
            std::strcmp(buffer, "value") != 0)
            std::abort();
    }
    return 0;
}
