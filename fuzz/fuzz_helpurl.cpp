// The help layer's URL text on arbitrary bytes, each input in an exact-size
// block so that a read past its length is an ASan report: escaping must
// decode back to the input, unescaping must never grow the text, and the
// "javascript:" form must hold the escaped text verbatim.
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "help/wwhelp.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size == 0 || size > 4096)
        return 0;
    std::vector<char> input(data, data + size);
    const long length = static_cast<long>(size);

    char* escaped = nullptr;
    long escapedLength = 0;
    if (WWHelp_URL_EscapeForJavaScript(input.data(), length, &escaped, &escapedLength) != 0)
        abort();
    if (escaped[escapedLength] != 0 || escapedLength < length || escapedLength > 3 * length)
        abort();
    char* back = nullptr;
    long backLength = 0;
    if (WWHelp_URL_Unescape(escaped, escapedLength, &back, &backLength) != 0 || backLength != length ||
        std::memcmp(back, input.data(), size) != 0)
        abort();
    std::free(back);

    char* smart = nullptr;
    long smartLength = 0;
    if (WWHelp_URL_BuildSmartURL(input.data(), length, &smart, &smartLength) != 0 ||
        std::memcmp(smart + 23, escaped, static_cast<size_t>(escapedLength)) != 0)
        abort();
    std::free(smart);
    std::free(escaped);

    char* plain = nullptr;
    long plainLength = 0;
    if (WWHelp_URL_Unescape(input.data(), length, &plain, &plainLength) == 0) {
        if (plainLength > length || plain[plainLength] != 0)
            abort();
        std::free(plain);
    }
    return 0;
}
