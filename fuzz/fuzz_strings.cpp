// strLike and buttoken on arbitrary bytes.  The input is split into a text
// and a pattern by its first byte, and both go into exact-size blocks, so a
// read past either length is an ASan report.  LIKE is also checked against a
// plain recursive matcher on inputs small enough for it.
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "core/strlike.h"
#include "core/strtoken.h"
#include "platform/ram.h"

namespace {
// Reference LIKE on single bytes: '%' any run, '_' one byte, '!' escape.
bool reference(const unsigned char* t, std::size_t tl, const unsigned char* p, std::size_t pl)
{
    if (pl == 0)
        return tl == 0;
    if (p[0] == '%')
        return reference(t, tl, p + 1, pl - 1) || (tl > 0 && reference(t + 1, tl - 1, p, pl));
    if (tl == 0)
        return false;
    if (p[0] == '_')
        return reference(t + 1, tl - 1, p + 1, pl - 1);
    if (p[0] == '!') {
        if (pl < 2)
            return false;
        return t[0] == p[1] && reference(t + 1, tl - 1, p + 2, pl - 2);
    }
    return t[0] == p[0] && reference(t + 1, tl - 1, p + 1, pl - 1);
}
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size < 2)
        return 0;
    const std::size_t split = data[0] % (size - 1);
    const std::size_t textLength = split;
    const std::size_t patternLength = size - 1 - split;
    auto* text = static_cast<char*>(std::malloc(textLength + 1));
    auto* pattern = static_cast<char*>(std::malloc(patternLength + 1));
    std::memcpy(text, data + 1, textLength);
    std::memcpy(pattern, data + 1 + split, patternLength);
    for (zuCPType type : {ZU_CP_SBCS, ZU_CP_UTF8, ZU_CP_LOCALE}) {
        const int got = strLike(text, static_cast<long>(textLength), pattern, static_cast<long>(patternLength), '%', '_',
                                '!', 1, 1, type);
        if (type == ZU_CP_SBCS && textLength <= 12 && patternLength <= 12 &&
            got != static_cast<int>(reference(reinterpret_cast<const unsigned char*>(text), textLength,
                                              reinterpret_cast<const unsigned char*>(pattern), patternLength)))
            std::abort();
        strLike(text, static_cast<long>(textLength), pattern, static_cast<long>(patternLength), '%', '_', 0, 0, 0, type);
    }

    // The tokenizer walks the whole input as one terminated text, in every
    // mode, with a small exact-size token buffer.
    std::vector<char> terminated(data + 1, data + size);
    terminated.push_back(0);
    for (int mode = 1; mode <= 6; ++mode) {
        for (int extra : {0, ZU_TOKEN_CUT, ZU_TOKEN_GROW, ZU_TOKEN_KEEP_CASE}) {
            const char* p = terminated.data();
            const long tokenSize = 1 + data[0] % 24;
            for (int steps = 0; steps < 4096 && *p != 0; ++steps) {
                // Cleared, so that the pointer bytes read as null unless the
                // token grew into a block of its own.
                auto* token = static_cast<char*>(std::calloc(static_cast<std::size_t>(tokenSize), 1));
                const char* before = p;
                const int r = buttoken(token, &p, mode | extra, tokenSize, data[0] & 1 ? ZU_CP_UTF8 : ZU_CP_SBCS);
                if (r == 0 && (extra & ZU_TOKEN_GROW) != 0 && tokenSize >= 2 + static_cast<long>(sizeof(void*)) &&
                    token[1] == 0) {
                    char* block = nullptr;
                    std::memcpy(&block, token + 2, sizeof block);
                    if (block != nullptr) {
                        if (block[0] != token[0])
                            std::abort();
                        ramFreeC(block);
                    }
                }
                std::free(token);
                if (r != 0 || p == before)
                    break;
                if (p < terminated.data() || p > terminated.data() + terminated.size() - 1)
                    std::abort();
            }
        }
    }
    std::free(text);
    std::free(pattern);
    return 0;
}
