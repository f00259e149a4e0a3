#pragma once

#include "clipboard/ClipboardIndexEntry.h"
#include "clipboard/SearchableCharacters.h"

#include <QStringView>

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>
#include <type_traits>
#include <vector>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace velmora::indexed_text {

// How the search index reads its entries' texts: the units beside each position, the scan for a
// character, and the check that a query's further characters follow. Inline, for the index's loops.

// The UTF-16 units kept beside each position: one 64-bit word.
constexpr int kFollowingUnits = 4;
// The units a scan keeps begin at the character after the one found.
constexpr int kScannedWindow = 1;

// The query character the units beside each position begin at (an index's "window"): the first
// character is found by a scan that keeps the four after it (window 1), those serve the next four
// characters, then the four from the next one on are read from the text, and so on. This is where
// the window is once query characters [from, end) were compared starting from `window`.
inline int windowAfter(int window, int from, int end) {
    for (int k = from; k < end; ++k) {
        if (k >= window + kFollowingUnits)
            window = k;
    }
    return window;
}

// Up to four units of a text from `at` on, the first in the lowest bits; none past the end.
inline std::uint64_t unitsFrom(const char16_t* units, int length, int at) {
    const int count = std::min(kFollowingUnits, length - at);
    std::uint64_t following = 0;
    if constexpr (std::endian::native == std::endian::little) {
        if (count == kFollowingUnits) {
            std::memcpy(&following, units + at, sizeof following);
            return following;
        }
    }
    for (int slot = 0; slot < count; ++slot)
        following |= static_cast<std::uint64_t>(units[at + slot]) << (16 * slot);
    return following;
}

// The same from a text kept one byte per character: each byte as the unit it stands for.
inline std::uint64_t unitsFrom(const char* bytes, int length, int at) {
    const int count = std::min(kFollowingUnits, length - at);
    if constexpr (std::endian::native == std::endian::little) {
        std::uint32_t four = 0;
        if (count == kFollowingUnits &&
            (std::memcpy(&four, bytes + at, sizeof four), (four & 0x80808080u) == 0)) {
            // Four ASCII bytes, each its own unit: spread into the four 16-bit slots at once.
            std::uint64_t spread = four;
            spread = (spread | (spread << 16)) & 0x0000FFFF0000FFFFull;
            return (spread | (spread << 8)) & 0x00FF00FF00FF00FFull;
        }
    }
    std::uint64_t following = 0;
    for (int slot = 0; slot < count; ++slot)
        following |= static_cast<std::uint64_t>(narrow::unitOf(bytes[at + slot])) << (16 * slot);
    return following;
}

// For texts of one unit per character, whichever way they are kept.
inline std::uint64_t unitsFrom(const SearchableCharacters& text, int at) {
    return text.isNarrow() ? unitsFrom(text.bytes(), text.size(), at)
                           : unitsFrom(text.utf16(), text.size(), at);
}

inline char16_t unitAt(std::uint64_t following, int slot) {
    return static_cast<char16_t>(following >> (16 * slot));
}

// The query characters one refine checks beyond the scan, from `from` on, as single units: only a
// text of one unit per character can match them that way, and none can when one of them is longer.
struct FurtherCharacters {
    FurtherCharacters(const SearchableCharacters& query, int from) : query(query), from(from) {
        for (int k = from; k < query.size(); ++k) {
            const QStringView character = query.at(k);
            if (character.size() != 1) {
                singleUnits = false;
                break;
            }
            units.push_back(character.front().unicode());
        }
    }

    const SearchableCharacters& query;
    int from;
    int end = query.size();
    std::vector<char16_t> units;
    bool singleUnits = true;
};

// The further characters as they read in the units kept beside a position from `window` on: where
// they all lie there, a position is followed by them when (following & mask) == pattern.
struct KeptUnitsPattern {
    KeptUnitsPattern(const FurtherCharacters& further, int window)
        : applies(further.singleUnits && further.end <= window + kFollowingUnits) {
        for (int k = further.from; applies && k < further.end; ++k) {
            const char16_t unit = further.units[static_cast<std::size_t>(k - further.from)];
            mask |= std::uint64_t{0xFFFF} << (16 * (k - window));
            pattern |= static_cast<std::uint64_t>(unit) << (16 * (k - window));
            anyNull |= unit == 0;
        }
    }

    bool applies;
    std::uint64_t mask = 0;
    std::uint64_t pattern = 0;
    // Units past a text's end read as 0: a pattern without one cannot match there.
    bool anyNull = false;
};

// A text as the scanning and narrowing loops read it.
struct IndexedText {
    const ClipboardIndexEntry& entry;
    int characters;
    bool oneUnitPerCharacter;

    explicit IndexedText(const ClipboardIndexEntry& entry)
        : entry(entry), characters(entry.searchableCharacters.size()),
          oneUnitPerCharacter(entry.searchableCharacters.isOneUnitPerCharacter()) {}

    std::uint64_t unitsFrom(int at) const { return indexed_text::unitsFrom(entry.searchableCharacters, at); }
};

// Calls found(at) for each place of `wanted` (a byte of a narrow text, or a unit) in
// units[0, length), in order.
template <typename Unit, typename Found>
void findUnit(const Unit* units, int length, std::make_unsigned_t<Unit> wanted, Found&& found) {
    static_assert(sizeof(Unit) == 1 || sizeof(Unit) == 2);
    int i = 0;
#if defined(__SSE2__)
    // Sixteen bytes at a time: this pass runs over every text of the history on the first character.
    constexpr int kPerBlock = 16 / sizeof(Unit);
    const __m128i pattern = sizeof(Unit) == 1 ? _mm_set1_epi8(static_cast<char>(wanted))
                                              : _mm_set1_epi16(static_cast<short>(wanted));
    for (; i + kPerBlock <= length; i += kPerBlock) {
        const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i*>(units + i));
        auto mask = static_cast<unsigned>(_mm_movemask_epi8(
            sizeof(Unit) == 1 ? _mm_cmpeq_epi8(block, pattern) : _mm_cmpeq_epi16(block, pattern)));
        if constexpr (sizeof(Unit) == 2)
            mask &= 0x5555u; // one bit per byte: keep the low byte's bit of each matching unit
        for (; mask != 0; mask &= mask - 1)
            found(i + __builtin_ctz(mask) / static_cast<int>(sizeof(Unit)));
    }
#endif
    for (; i < length; ++i) {
        if (static_cast<std::make_unsigned_t<Unit>>(units[i]) == wanted)
            found(i);
    }
}

// Appends where `character` occurs in the text, by one pass over it, each position with the units
// after it.
template <typename Positions, typename Following>
void scanFor(const IndexedText& text, QStringView character, Positions& positions, Following& following) {
    if (!text.oneUnitPerCharacter) {
        for (int i = 0; i < text.characters; ++i) {
            if (text.entry.searchableCharacters.equalsAt(i, character)) {
                positions.push_back(i);
                following.push_back(0); // positions count characters here, not units: unused
            }
        }
        return;
    }
    if (character.size() != 1) // a text of single units never holds a longer character
        return;
    const SearchableCharacters& characters = text.entry.searchableCharacters;
    const auto scan = [&](const auto* units, auto wanted) {
        findUnit(
            units, text.characters, wanted, [&](int at) __attribute__((always_inline)) {
                positions.push_back(at);
                following.push_back(unitsFrom(units, text.characters, at + 1));
            });
    };
    const char16_t wanted = character.front().unicode();
    if (!characters.isNarrow())
        scan(characters.utf16(), wanted);
    else if (const int byte = narrow::byteOf(wanted); byte >= 0)
        scan(characters.bytes(), static_cast<unsigned char>(byte));
}

// Whether the text holds the character anywhere: a scan that stops at the first.
inline bool holds(const IndexedText& text, QStringView character) {
    const SearchableCharacters& characters = text.entry.searchableCharacters;
    if (!text.oneUnitPerCharacter) {
        for (int i = 0; i < text.characters; ++i) {
            if (characters.equalsAt(i, character))
                return true;
        }
        return false;
    }
    if (character.size() != 1)
        return false;
    const char16_t wanted = character.front().unicode();
    if (characters.isNarrow()) {
        const int byte = narrow::byteOf(wanted);
        return byte >= 0 && std::memchr(characters.bytes(), byte, static_cast<std::size_t>(text.characters));
    }
    const char16_t* units = characters.utf16();
    return std::find(units, units + text.characters, wanted) != units + text.characters;
}

// Whether the further characters follow at character p of a text with characters of several
// units, which keeps no units beside its positions.
inline bool followsByCharacters(const IndexedText& text, const FurtherCharacters& further, int p) {
    for (int k = further.from; k < further.query.size(); ++k) {
        if (p + k >= text.characters || !text.entry.searchableCharacters.equalsAt(p + k, further.query.at(k)))
            return false;
    }
    return true;
}

// Whether the further characters follow at position p of a text of `characters` single units,
// compared with the units kept beside the position (`following`, from query character `window`
// on; updated to those the narrowed position keeps). `unitsFrom(at)` reads the text, only when the
// units kept run out.
template <typename UnitsFrom>
inline bool followsAt(int characters, UnitsFrom&& unitsFrom, const FurtherCharacters& further, int p,
                      int window, std::uint64_t& following) {
    if (p + further.end > characters) // the text ends before the query does
        return false;
    int followingFromCharacter = window;
    for (int k = further.from; k < further.end; ++k) {
        if (k >= followingFromCharacter + kFollowingUnits) {
            following = unitsFrom(p + k);
            followingFromCharacter = k;
        }
        if (unitAt(following, k - followingFromCharacter) != further.units[k - further.from])
            return false;
    }
    return true;
}

} // namespace velmora::indexed_text
