#pragma once

#include "clipboard/SearchableCharacters.h"

#include <QHash>
#include <QString>
#include <QUuid>

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace velmora {

// The in-memory index the history window searches by: the entries whose searchable text contains
// query(), each with the character positions where the query begins. A longer query refines an
// index by narrowing those positions, so typing one more character costs work proportional to the
// surviving positions rather than to the size of the history.
//
// The base index (empty query) keeps no position lists at all: at a hundred thousand entries a
// list per distinct character would cost hundreds of megabytes, while scanning for the first
// character when refining from the base is a single pass over the texts.
//
// Entries are shared, unchanged, between an index and those refined from it, and a refined index
// keeps its positions in one flat list: refining allocates nothing per entry and touches each
// surviving entry's text once.
//
// Matching is exact containment of the lower-cased query in the lower-cased searchable text,
// compared character by character (grapheme clusters): no word splitting and no diacritic folding.
// Not for use from several threads at once (membership look-ups fill a cache).
class ClipboardHistoryIndex {
public:
    struct ItemInfo {
        QUuid id;
        QString searchableText; // lower-cased, see searchableText(const SimpleClipboardItem&)
    };

    struct Entry {
        QUuid id;
        SearchableCharacters searchableCharacters;

        const QString& searchableText() const { return searchableCharacters.text(); }
    };

    // Items newest first; the index keeps that order. A repeated id is logged and only its newest
    // occurrence indexed.
    static ClipboardHistoryIndex base(std::vector<ItemInfo> itemsNewestFirst);

    // The entries of this index that contain lowerCasedQuery. The query must extend this index's
    // query character by character (see canBeRefinedTo); otherwise this is logged and an unchanged
    // copy returned. Any query refines the base index.
    ClipboardHistoryIndex refined(const QString& lowerCasedQuery) const;
    // Whether this index's query characters begin lowerCasedQuery's. "e" does not begin "e" followed
    // by a combining accent, although the strings do: that is one other character.
    bool canBeRefinedTo(const QString& lowerCasedQuery) const;

    const QString& query() const { return m_query.text(); }
    int prefixLength() const { return m_query.size(); }
    std::size_t size() const { return m_hits.size(); }
    bool isEmpty() const { return m_hits.empty(); }

    bool contains(const QUuid& id) const { return find(id).has_value(); }
    const Entry* entry(const QUuid& id) const;
    // Where query()'s first prefixLength() characters begin in the entry's characters, ascending.
    // Empty in the base index and for an entry not listed.
    std::span<const int> positions(const QUuid& id) const;
    std::vector<QUuid> ids() const; // newest first

    // Follow the history as it changes, without rebuilding. An item that does not contain query()
    // is not added (it is no error). Returns false, logging why, when the id is already indexed.
    bool insertNewest(ItemInfo item);
    // Returns whether the id was indexed.
    bool remove(const QUuid& id);
    void clear();

private:
    // One listed entry, with what the narrowing loops read kept beside it.
    struct Hit {
        const Entry* entry;
        const char16_t* units; // the entry's text
        int characters;
        bool oneUnitPerCharacter;
        std::uint32_t firstPosition; // into m_positions; the list ends where the next hit's begins
    };
    using Entries = std::vector<std::shared_ptr<const Entry>>;

    static Hit hitFor(const Entry& entry, std::uint32_t firstPosition);
    static ClipboardHistoryIndex refinedFrom(const ClipboardHistoryIndex& source, SearchableCharacters query);
    bool isPrefixOf(const SearchableCharacters& query) const;
    std::optional<std::size_t> find(const QUuid& id) const;
    std::uint32_t endOfPositions(std::size_t hit) const;
    void prefetchText(std::size_t hit, int offset) const;
    // The entries for changing: copied first when another index shares them.
    Entries& ownEntries();

    SearchableCharacters m_query;
    // Keeps every listed entry alive; may hold more (an index refined from the base shares its list).
    std::shared_ptr<Entries> m_entries;
    std::vector<Hit> m_hits; // oldest first, so that a capture is an append
    std::vector<int> m_positions;
    // id -> position in m_hits, filled on the first look-up; dropped when positions shift.
    mutable std::optional<QHash<QUuid, std::size_t>> m_hitsById;
};

} // namespace velmora
