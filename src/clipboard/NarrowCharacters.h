#pragma once

#include <array>
#include <cstdint>

namespace velmora {

// The one-byte form of the texts the search keeps: Latin-1, with the bytes of the C1 controls
// (never typed, hardly ever copied) standing for the typographic characters that window titles
// and prose use most, as Windows-1252 has them: dashes, curly quotes, the ellipsis, the euro sign.
// Without those, one dash in a window title would keep a whole entry at two bytes a character.
namespace narrow {

inline constexpr std::array<char16_t, 32> kC1Characters = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

// The character each byte stands for.
inline constexpr std::array<char16_t, 256> kUnitOfByte = [] {
    std::array<char16_t, 256> units{};
    for (std::size_t b = 0; b < units.size(); ++b)
        units[b] = b >= 0x80 && b < 0xA0 ? kC1Characters[b - 0x80] : static_cast<char16_t>(b);
    return units;
}();

// The byte that stands for a UTF-16 unit, or -1 when none does.
constexpr int byteOf(char16_t unit) {
    if (unit < 0x80 || (unit >= 0xA0 && unit <= 0xFF))
        return unit;
    for (std::size_t i = 0; i < kC1Characters.size(); ++i) {
        if (kC1Characters[i] == unit)
            return static_cast<int>(0x80 + i);
    }
    return -1;
}

inline char16_t unitOf(char byte) {
    return kUnitOfByte[static_cast<unsigned char>(byte)];
}

} // namespace narrow

} // namespace velmora
