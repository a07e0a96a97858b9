// Random bytes through every transform, into targets of exactly the size
// given (so that any write past them is caught), in code pages of every kind:
// single byte, double byte, stateful, EBCDIC, UTF-16, UTF-7.  Where ICU has a
// direct equivalent (u_strFromUTF8 / u_strToUTF8) the results must agree.
#include <unicode/ucnv.h>
#include <unicode/ustring.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "encoding/ux.h"

namespace {
const char* const kPages[] = {"UTF-8",       "ISO-8859-1", "windows-1252", "ibm-943_P15A-2003", "EUC-KR",
                              "GBK",         "ISO-2022-JP", "ibm-37",      "UTF-16BE",          "UTF-7",
                              "ibm-1390",    "GB18030"};

UConverter* open(const char* name)
{
    UErrorCode s = U_ZERO_ERROR;
    UConverter* c = ucnv_open(name, &s);
    return U_SUCCESS(s) ? c : nullptr;
}

void check(bool ok)
{
    if (!ok)
        std::abort();
}
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size < 3)
        return 0;
    static UConverter* utf8 = open("UTF-8");
    UConverter* page = open(kPages[data[0] % (sizeof kPages / sizeof *kPages)]);
    if (page == nullptr)
        return 0;
    const long targetSize = 1 + data[1] % 64 + static_cast<long>(size) * (data[2] % 4);
    const auto* src = data + 3;
    const long n = static_cast<long>(size - 3);
    long written = 0, consumed = 0;

    std::vector<unsigned char> out(static_cast<size_t>(targetSize));
    uxAnsiToUTF8(out.data(), targetSize, src, n, &written, &consumed, page, utf8);
    check(written <= targetSize && consumed <= n);
    uxUTF8ToAnsi(out.data(), targetSize, src, n, &written, &consumed, utf8, page);
    check(written <= targetSize && consumed <= n);
    uxCpgToCpg(out.data(), targetSize, src, n, &written, &consumed, page, utf8);
    uxAnsiToUTF8(out.data(), targetSize, src, n, &written, page, utf8);
    uxUTF8ToAnsi(out.data(), targetSize, src, n, &written, utf8, page);

    std::vector<unsigned short> wide(static_cast<size_t>(targetSize));
    uxAnsiToUCS2(wide.data(), targetSize, src, n, &written, &consumed, page, data[2] & 1);
    check(written <= targetSize);

    // The payload as UTF-16 units at an odd address.
    std::vector<unsigned char> units(static_cast<size_t>(n) + 1);
    std::memcpy(units.data() + 1, src, static_cast<size_t>(n));
    auto* oddUnits = reinterpret_cast<unsigned short*>(units.data() + 1);
    uxUCS2ToAnsi(out.data(), targetSize, oddUnits, n / 2, &written, &consumed, page, data[2] & 2);
    uxUCS2ToAnsi(out.data(), targetSize, oddUnits, n / 2, &written, page, 0);
    uxUTF16ToUTF8(out.data(), targetSize, oddUnits, n / 2, &written, data[2] & 1);
    check(written <= targetSize);
    uxUTF16ToUTF8ReqLen(out.data(), targetSize, oddUnits, n / 2, &written, 0);
    check(out[static_cast<size_t>(targetSize) - 1] == 0);

    // UTF-8 to UTF-16 against ICU.
    std::vector<UChar> ref(static_cast<size_t>(n) + 1);
    UErrorCode s = U_ZERO_ERROR;
    int32_t refLen = 0;
    u_strFromUTF8(ref.data(), static_cast<int32_t>(ref.size()), &refLen, reinterpret_cast<const char*>(src),
                  static_cast<int32_t>(n), &s);
    std::vector<unsigned short> mine(static_cast<size_t>(n) + 1);
    const ZuConvertReturn rc = uxUTF8ToUTF16(mine.data(), n + 1, src, n, &written, 0);
    check((rc == ZU_CONV_SUCCESS) == (U_SUCCESS(s) != 0));
    if (rc == ZU_CONV_SUCCESS)
        check(written == refLen && std::memcmp(mine.data(), ref.data(), static_cast<size_t>(refLen) * 2) == 0);
    uxUTF8ToUTF16ReqLen(wide.data(), targetSize, src, n, &written, 0);
    check(wide[static_cast<size_t>(targetSize) - 1] == 0);

    UChar* t = reinterpret_cast<UChar*>(wide.data());
    const char* p = reinterpret_cast<const char*>(src);
    int32_t len = 0;
    s = U_ZERO_ERROR;
    ConvUTF8ToUTF16(&t, static_cast<int32_t>(targetSize), &len, &p, static_cast<int32_t>(n), &s);
    check(p >= reinterpret_cast<const char*>(src) && p <= reinterpret_cast<const char*>(src) + n);
    if (U_SUCCESS(s) && s != U_STRING_NOT_TERMINATED_WARNING)
        check(len == refLen);

    std::vector<UChar> aligned(static_cast<size_t>(n / 2) + 1);
    std::memcpy(aligned.data(), src, static_cast<size_t>(n / 2) * 2);
    char* t8 = reinterpret_cast<char*>(out.data());
    const UChar* p16 = aligned.data();
    s = U_ZERO_ERROR;
    ConvUTF16ToUTF8(&t8, static_cast<int32_t>(targetSize), &len, &p16, static_cast<int32_t>(n / 2), &s);

    std::vector<unsigned char> upper(src, src + n);
    check(uxUTF8Upper(upper.data(), n) <= n);

    ucnv_close(page);
    return 0;
}
