#include "crc32.h"

#include <array>

namespace {
constexpr std::array<uint32_t, 256> makeTable()
{
    std::array<uint32_t, 256> t{};
    for (uint32_t i = 0; i < 256; ++i) {
        uint32_t c = i;
        for (int k = 0; k < 8; ++k)
            c = (c & 1) != 0 ? 0xEDB88320u ^ (c >> 1) : c >> 1;
        t[i] = c;
    }
    return t;
}
constexpr std::array<uint32_t, 256> kTable = makeTable();
}  // namespace

const uint32_t CRC32Table[256] = {
#define ROW(i) kTable[i], kTable[i + 1], kTable[i + 2], kTable[i + 3], kTable[i + 4], kTable[i + 5], kTable[i + 6], kTable[i + 7]
    ROW(0),   ROW(8),   ROW(16),  ROW(24),  ROW(32),  ROW(40),  ROW(48),  ROW(56),
    ROW(64),  ROW(72),  ROW(80),  ROW(88),  ROW(96),  ROW(104), ROW(112), ROW(120),
    ROW(128), ROW(136), ROW(144), ROW(152), ROW(160), ROW(168), ROW(176), ROW(184),
    ROW(192), ROW(200), ROW(208), ROW(216), ROW(224), ROW(232), ROW(240), ROW(248),
#undef ROW
};

unsigned long updateCRC32(unsigned long crc, const unsigned char* data, unsigned long length)
{
    auto c = static_cast<uint32_t>(crc);
    for (unsigned long i = 0; i < length; ++i)
        c = CRC32Table[(c ^ data[i]) & 0xFF] ^ (c >> 8);
    return c;
}
