#pragma once

#include "clipboard/ClipboardIndexEntry.h"
#include "clipboard/ClipboardIndexEntryStore.h"
#include "clipboard/DefaultInitAllocator.h"
#include "clipboard/HeldEntryChunks.h"

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
// list per distinct character would cost hundreds of megabytes. A first character is answered from
// each entry's CharacterSet instead, without reading the texts: that index lists its entries with
// no positions yet (prefixLength() 0) and gathers them a slice at a time (gatherPositions), which
// its owner runs while the user has not typed on; refining it gathers whatever is left first.
//
// Beside each position the index keeps the next four UTF-16 units of the text (the characters
// after the query's first, in texts of one unit per character), taken while the text is in the
// cache anyway. The next characters are checked against those: reading a hundred thousand texts at
// scattered places, not comparing, is what a refine would otherwise cost.
//
// Entries live in a store the index shares with those refined or copied from it (see
// ClipboardIndexEntryStore), so a capture or deletion changes one index without copying the
// others' entries. A deletion leaves a gap in the lists that a later compaction closes: deleting
// costs amortised constant time wherever the entry is, trimming the oldest included.
//
// Matching is exact containment of the lower-cased query in the lower-cased searchable text,
// compared character by character (grapheme clusters): no word splitting and no diacritic folding.
// Not for use from several threads at once, nor are indexes sharing entries (membership look-ups
// fill a cache; captures write into the shared store).
class ClipboardHistoryIndex {
public:
    struct ItemInfo {
        QUuid id;
        QString searchableText; // lower-cased, see searchableText(const SimpleClipboardItem&)
    };

    using Entry = ClipboardIndexEntry;

    ClipboardHistoryIndex() = default;
    ClipboardHistoryIndex(const ClipboardHistoryIndex&) = default;
    ClipboardHistoryIndex(ClipboardHistoryIndex&&) noexcept = default;
    // Copies and moves alike: the lists this index held become spare ones for the next refine.
    ClipboardHistoryIndex& operator=(ClipboardHistoryIndex other) noexcept;
    ~ClipboardHistoryIndex();

    // Items newest first; the index keeps that order. A repeated id is logged and only its newest
    // occurrence indexed.
    static ClipboardHistoryIndex base(std::vector<ItemInfo> itemsNewestFirst);
    // The same from entries made one by one (entryFor) as their texts are read: each text is
    // narrowed while it is the newest allocation, so a long history does not leave the wide
    // texts' memory behind as holes between the narrow ones.
    static ClipboardHistoryIndex fromEntries(std::vector<Entry> entriesNewestFirst);
    static Entry entryFor(ItemInfo item);

    // The entries of this index that contain lowerCasedQuery. The query must extend this index's
    // query character by character (see canBeRefinedTo); otherwise this is logged and an unchanged
    // copy returned. Any query refines the base index.
    ClipboardHistoryIndex refined(const QString& lowerCasedQuery) const&;
    // The same from an index let go: where the added characters follow every position (the rest of
    // a word being typed), its lists become the result's without being read or copied.
    ClipboardHistoryIndex refined(const QString& lowerCasedQuery) &&;
    // Whether this index's query characters begin lowerCasedQuery's. "e" does not begin "e" followed
    // by a combining accent, although the strings do: that is one other character.
    bool canBeRefinedTo(const QString& lowerCasedQuery) const;

    QString query() const { return m_query.text(); }
    int prefixLength() const { return m_prefixLength; }
    std::size_t size() const { return m_live; }
    bool isEmpty() const { return m_live == 0; }

    bool contains(const QUuid& id) const { return find(id).has_value(); }
    const Entry* entry(const QUuid& id) const;
    // Where query()'s first prefixLength() characters begin in the entry's characters, ascending.
    // Empty in the base index, in one whose positions are still being gathered and for an entry
    // not listed.
    std::span<const int> positions(const QUuid& id) const;
    std::vector<QUuid> ids() const; // newest first
    // The `count` ids after the `from` newest, newest first.
    std::vector<QUuid> ids(std::size_t from, std::size_t count) const;

    // Whether the positions of a first character are still to be gathered (see above).
    bool positionsPending() const { return m_prefixLength < m_query.size(); }
    // Gathers the positions of up to `hits` more entries, oldest first; true once none is left.
    bool gatherPositions(std::size_t hits);
    // Where the next character is the first past the units kept beside each position, reads the
    // units from there for up to `positions` more positions, so that the next character is checked
    // without reading the texts; true once nothing is left to read. Like gathering, for idle time.
    bool prepareNextWindow(std::size_t positions);

    // Follow the history as it changes, without rebuilding. An item that does not contain query()
    // is not added (it is no error). Returns false, logging why, when the id is already indexed.
    bool insertNewest(ItemInfo item);
    // Returns whether the id was indexed.
    bool remove(const QUuid& id);
    void clear();
    // Frees the lists kept for the next refine by this index and those it shares entries with
    // (see m_spare); for when no search is shown.
    void releaseSpareLists();

private:
    // One listed entry, with what the narrowing loops read kept beside it: small, since refining
    // copies one per surviving entry.
    struct Hit {
        static constexpr std::uint32_t kDeleted = 0xFFFFFFFF;

        std::uint32_t entry;         // its number in the store, kDeleted until the next compaction
        std::uint32_t firstPosition; // into m_positions; the list ends where the next hit's begins
        std::uint32_t characters : 31;
        std::uint32_t oneUnitPerCharacter : 1;

        bool isDeleted() const { return entry == kDeleted; }
    };

    static Hit hitFor(const Entry& entry, std::uint32_t number, std::uint32_t firstPosition);
    const Entry& entryOf(const Hit& hit) const { return m_chunks.entry(hit.entry); }
    static ClipboardHistoryIndex refinedFrom(const ClipboardHistoryIndex& source, SearchableCharacters query);
    bool isPrefixOf(const SearchableCharacters& query) const;
    // Whether query's further characters follow every position, by the units kept beside them.
    bool everyPositionFollows(const SearchableCharacters& query) const;
    std::optional<std::size_t> find(const QUuid& id) const;
    std::uint32_t endOfPositions(std::size_t hit) const;
    // Stores the entry and lists it last, its positions from firstPosition on.
    void append(Entry entry, std::uint32_t firstPosition);
    void scanFrom(const ClipboardHistoryIndex& source);
    void selectByCharacterSet(const ClipboardHistoryIndex& source);
    void narrowFrom(const ClipboardHistoryIndex& source);
    // Lists the source's hit last, its positions from firstPosition on.
    void keep(const ClipboardHistoryIndex& source, const Hit& hit, std::size_t firstPosition);
    void prefetchText(std::size_t hit, bool whole, int offset) const;
    void prefetchFollowing(std::size_t position, int offset) const;
    void swap(ClipboardHistoryIndex& other) noexcept;
    void keepListsForReuse();
    void reuseSpareLists();
    void sortByNextUnit();
    void forgetNextUnits();
    void dropDeletedNewest();
    void compactIfSparse();
    int nextWindow() const;
    void forgetNextWindow();

    SearchableCharacters m_query;
    int m_prefixLength = 0;
    std::size_t m_gathered = 0; // hits whose positions are in the lists, while positionsPending()
    // The query character the units beside each position (m_following) begin at.
    int m_followingFrom = 1;
    std::shared_ptr<ClipboardIndexEntryStore> m_store;
    HeldEntryChunks m_chunks;
    template <typename T> using Buffer = std::vector<T, DefaultInitAllocator<T>>;

    Buffer<Hit> m_hits;     // oldest first, so that a capture is an append
    std::size_t m_live = 0; // hits not deleted
    Buffer<int> m_positions;
    // Beside each position, the text's UTF-16 units from a query character on (see followingFrom).
    Buffer<std::uint64_t> m_following;
    // The units from the next window on, for the positions before m_prepared (prepareNextWindow).
    Buffer<std::uint64_t> m_nextFollowing;
    std::size_t m_prepared = 0;
    // Beside each position, its hit: narrowing is one pass over the positions, not a loop per hit.
    Buffer<std::uint32_t> m_owners;
    // Of a first character's index only, until it changes: position indices grouped by the unit
    // after each position, and where each group starts (see sortByNextUnit).
    Buffer<std::uint32_t> m_byNextUnit;
    std::vector<std::uint32_t> m_nextUnitStarts;
    // Lists of an index let go, kept for the next refine in the family: writing into fresh memory
    // costs a page fault per 4 KiB, more than the narrowing itself.
    struct SpareLists;
    std::shared_ptr<SpareLists> m_spare;
    // id -> position in m_hits plus m_hitsErased, filled on the first look-up; dropped when
    // positions shift other than by erasing the oldest.
    mutable std::optional<QHash<QUuid, std::size_t>> m_hitsById;
    std::size_t m_hitsErased = 0;
};

} // namespace velmora
