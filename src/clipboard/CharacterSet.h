#pragma once

#include "clipboard/SearchableCharacters.h"

#include <cstdint>

namespace velmora {

// Which characters a text holds, in one 64-bit word: a bit of its own for each of a-z, 0-9 and the
// space, the other units sharing the remaining bits. A clear bit proves a character absent; a set
// bit proves it present only where the character is one unit with a bit of its own. Kept per
// entry, it answers a first typed letter without reading a single text.
class CharacterSet {
public:
    static CharacterSet of(const SearchableCharacters& text);

    // The bit a character's first unit sets: a text holding the character has it.
    static std::uint64_t bitOf(QStringView character);
    // Whether the bit alone says the text holds the character.
    static bool decides(QStringView character);

    bool mayHold(std::uint64_t bit) const { return (m_bits & bit) != 0; }

private:
    std::uint64_t m_bits = 0;
};

} // namespace velmora
