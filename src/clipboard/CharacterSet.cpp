#include "clipboard/CharacterSet.h"

#include <array>

namespace velmora {

namespace {

constexpr int kLetters = 26;
constexpr int kDigits = 10;
constexpr int kOwnBits = kLetters + kDigits + 1; // and the space
constexpr int kSharedBits = 64 - kOwnBits;

constexpr std::uint64_t bitOfUnit(char16_t unit) {
    if (unit >= u'a' && unit <= u'z')
        return std::uint64_t{1} << (unit - u'a');
    if (unit >= u'0' && unit <= u'9')
        return std::uint64_t{1} << (kLetters + unit - u'0');
    if (unit == u' ')
        return std::uint64_t{1} << (kOwnBits - 1);
    // Multiplicative hashing spreads neighbouring units (accented letters, one script's block) apart.
    const auto hashed = static_cast<std::uint32_t>(unit * 2654435761u) >> 16;
    return std::uint64_t{1} << (kOwnBits + hashed % kSharedBits);
}

// Nearly every text is kept narrow: its bytes are looked up, not computed.
constexpr std::array<std::uint64_t, 256> kBitsOfByte = [] {
    std::array<std::uint64_t, 256> bits{};
    for (std::size_t b = 0; b < bits.size(); ++b)
        bits[b] = bitOfUnit(narrow::kUnitOfByte[b]);
    return bits;
}();

std::uint64_t bitsOf(const char* bytes, int length) {
    std::uint64_t bits = 0;
    for (int i = 0; i < length; ++i)
        bits |= kBitsOfByte[static_cast<unsigned char>(bytes[i])];
    return bits;
}

std::uint64_t bitsOf(const char16_t* units, int length) {
    std::uint64_t bits = 0;
    for (int i = 0; i < length; ++i)
        bits |= bitOfUnit(units[i]);
    return bits;
}

} // namespace

CharacterSet CharacterSet::of(const SearchableCharacters& text) {
    CharacterSet set;
    // Every unit of a character is in the text, so a character's first unit is too.
    set.m_bits =
        text.isNarrow() ? bitsOf(text.bytes(), text.size()) : bitsOf(text.utf16(), text.offset(text.size()));
    return set;
}

std::uint64_t CharacterSet::bitOf(QStringView character) {
    return character.isEmpty() ? 0 : bitOfUnit(character.front().unicode());
}

bool CharacterSet::decides(QStringView character) {
    return character.size() == 1 && bitOfUnit(character.front().unicode()) < (std::uint64_t{1} << kOwnBits);
}

} // namespace velmora
