#include "clipboard/ClipboardHistoryIndex.h"

#include "clipboard/ClipboardLog.h"

#include <QSet>

#include <algorithm>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace velmora {

namespace {

// How many entries ahead the loops ask for texts: their reads miss the cache one entry at a time
// otherwise, and that waiting, not the comparing, is what a refine costs at a hundred thousand.
constexpr std::size_t kPrefetchDistance = 16;

void prefetch(const void* address) {
    __builtin_prefetch(address);
}

} // namespace

ClipboardHistoryIndex::Hit ClipboardHistoryIndex::hitFor(const Entry& entry, std::uint32_t firstPosition) {
    const SearchableCharacters& characters = entry.searchableCharacters;
    return Hit{&entry, QStringView(characters.text()).utf16(), characters.size(),
               characters.isOneUnitPerCharacter(), firstPosition};
}

ClipboardHistoryIndex ClipboardHistoryIndex::base(std::vector<ItemInfo> itemsNewestFirst) {
    ClipboardHistoryIndex index;
    index.m_entries = std::make_shared<Entries>();
    Entries& entries = *index.m_entries;
    entries.reserve(itemsNewestFirst.size());
    QSet<QUuid> seen;
    seen.reserve(static_cast<qsizetype>(itemsNewestFirst.size()));
    for (ItemInfo& item : itemsNewestFirst) {
        if (seen.contains(item.id)) {
            qCWarning(lcClipboard) << "Clipboard entry" << item.id
                                   << "is listed twice; only its newest is indexed";
            continue;
        }
        seen.insert(item.id);
        entries.push_back(std::make_shared<const Entry>(
            Entry{item.id, SearchableCharacters(std::move(item.searchableText))}));
    }
    std::reverse(entries.begin(), entries.end());
    index.m_hits.reserve(entries.size());
    for (const auto& entry : entries)
        index.m_hits.push_back(hitFor(*entry, 0));
    return index;
}

bool ClipboardHistoryIndex::isPrefixOf(const SearchableCharacters& query) const {
    if (query.size() < m_query.size())
        return false;
    for (int k = 0; k < m_query.size(); ++k) {
        if (query.at(k) != m_query.at(k))
            return false;
    }
    return true;
}

bool ClipboardHistoryIndex::canBeRefinedTo(const QString& lowerCasedQuery) const {
    return isPrefixOf(SearchableCharacters(lowerCasedQuery));
}

ClipboardHistoryIndex ClipboardHistoryIndex::refined(const QString& lowerCasedQuery) const {
    SearchableCharacters query(lowerCasedQuery);
    if (!isPrefixOf(query)) {
        qCWarning(lcClipboard) << "Search index for" << this->query() << "cannot be narrowed to"
                               << lowerCasedQuery << "; the index is left as it was";
        return *this;
    }
    return refinedFrom(*this, std::move(query));
}

namespace {

// Appends where `character` occurs in the hit's text, by one pass over it.
template <typename Hit> void scanFor(const Hit& hit, QStringView character, std::vector<int>& positions) {
    if (!hit.oneUnitPerCharacter) {
        for (int i = 0; i < hit.characters; ++i) {
            if (hit.entry->searchableCharacters.equalsAt(i, character))
                positions.push_back(i);
        }
        return;
    }
    if (character.size() != 1) // a text of single units never holds a longer character
        return;
    const char16_t wanted = character.front().unicode();
    int i = 0;
#if defined(__SSE2__)
    // Eight units at a time: this pass runs over every text of the history on the first character.
    const __m128i pattern = _mm_set1_epi16(static_cast<short>(wanted));
    for (; i + 8 <= hit.characters; i += 8) {
        const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i*>(hit.units + i));
        // One bit per byte: keep the low byte's bit of each matching unit.
        auto mask = static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi16(block, pattern))) & 0x5555u;
        for (; mask != 0; mask &= mask - 1)
            positions.push_back(i + __builtin_ctz(mask) / 2);
    }
#endif
    for (; i < hit.characters; ++i) {
        if (hit.units[i] == wanted)
            positions.push_back(i);
    }
}

// Keeps the positions from `first` on at which the query's characters from `from` on follow.
template <typename Hit>
void narrow(const Hit& hit, const SearchableCharacters& query, int from, std::vector<int>& positions,
            std::size_t first) {
    for (int k = from; k < query.size() && positions.size() > first; ++k) {
        const QStringView character = query.at(k);
        const auto begin = positions.begin() + static_cast<std::ptrdiff_t>(first);
        if (!hit.oneUnitPerCharacter) {
            positions.erase(std::remove_if(begin, positions.end(),
                                           [&](int p) {
                                               return p + k >= hit.characters ||
                                                      !hit.entry->searchableCharacters.equalsAt(p + k,
                                                                                                character);
                                           }),
                            positions.end());
        } else if (character.size() != 1) { // a text of single units never holds a longer character
            positions.resize(first);
        } else {
            const char16_t wanted = character.front().unicode();
            const int last = hit.characters - k; // positions at or past it have no character k
            positions.erase(std::remove_if(begin, positions.end(),
                                           [&](int p) { return p >= last || hit.units[p + k] != wanted; }),
                            positions.end());
        }
    }
}

} // namespace

ClipboardHistoryIndex ClipboardHistoryIndex::refinedFrom(const ClipboardHistoryIndex& source,
                                                         SearchableCharacters query) {
    if (query.size() == source.m_query.size())
        return source;
    ClipboardHistoryIndex result;
    result.m_query = std::move(query);
    result.m_entries = source.m_entries;
    const SearchableCharacters& wanted = result.m_query;
    const int from = source.m_query.size();
    const std::vector<Hit>& hits = source.m_hits;
    for (std::size_t i = 0; i < hits.size(); ++i) {
        const Hit& hit = hits[i];
        if (i + kPrefetchDistance < hits.size())
            source.prefetchText(i + kPrefetchDistance, from);
        const std::size_t first = result.m_positions.size();
        if (from == 0) {
            scanFor(hit, wanted.at(0), result.m_positions);
            narrow(hit, wanted, 1, result.m_positions, first);
        } else {
            result.m_positions.insert(result.m_positions.end(),
                                      source.m_positions.begin() + hit.firstPosition,
                                      source.m_positions.begin() + source.endOfPositions(i));
            narrow(hit, wanted, from, result.m_positions, first);
        }
        if (result.m_positions.size() > first) {
            Hit kept = hit;
            kept.firstPosition = static_cast<std::uint32_t>(first);
            result.m_hits.push_back(kept);
        }
    }
    return result;
}

void ClipboardHistoryIndex::prefetchText(std::size_t hit, int offset) const {
    const char16_t* units = m_hits[hit].units;
    if (m_query.isEmpty()) {
        for (int at = 0; at < m_hits[hit].characters; at += 32) // a cache line holds 32 units
            prefetch(units + at);
        return;
    }
    // The units the next character is compared with; only for texts of one unit per character
    // are positions also offsets, and those are nearly all.
    if (!m_hits[hit].oneUnitPerCharacter)
        return;
    const std::uint32_t end = endOfPositions(hit);
    for (std::uint32_t p = m_hits[hit].firstPosition; p < end; ++p)
        prefetch(units + m_positions[p] + offset);
}

std::uint32_t ClipboardHistoryIndex::endOfPositions(std::size_t hit) const {
    return hit + 1 < m_hits.size() ? m_hits[hit + 1].firstPosition
                                   : static_cast<std::uint32_t>(m_positions.size());
}

const ClipboardHistoryIndex::Entry* ClipboardHistoryIndex::entry(const QUuid& id) const {
    const auto hit = find(id);
    return hit ? m_hits[*hit].entry : nullptr;
}

std::span<const int> ClipboardHistoryIndex::positions(const QUuid& id) const {
    const auto hit = find(id);
    if (!hit)
        return {};
    return std::span<const int>(m_positions)
        .subspan(m_hits[*hit].firstPosition, endOfPositions(*hit) - m_hits[*hit].firstPosition);
}

std::optional<std::size_t> ClipboardHistoryIndex::find(const QUuid& id) const {
    if (!m_hitsById) {
        QHash<QUuid, std::size_t> hits;
        hits.reserve(static_cast<qsizetype>(m_hits.size()));
        for (std::size_t i = 0; i < m_hits.size(); ++i)
            hits.insert(m_hits[i].entry->id, i);
        m_hitsById = std::move(hits);
    }
    const auto it = m_hitsById->constFind(id);
    return it == m_hitsById->cend() ? std::nullopt : std::optional(*it);
}

std::vector<QUuid> ClipboardHistoryIndex::ids() const {
    std::vector<QUuid> ids;
    ids.reserve(m_hits.size());
    for (auto it = m_hits.rbegin(); it != m_hits.rend(); ++it)
        ids.push_back(it->entry->id);
    return ids;
}

ClipboardHistoryIndex::Entries& ClipboardHistoryIndex::ownEntries() {
    if (!m_entries)
        m_entries = std::make_shared<Entries>();
    else if (m_entries.use_count() > 1)
        m_entries = std::make_shared<Entries>(*m_entries);
    return *m_entries;
}

bool ClipboardHistoryIndex::insertNewest(ItemInfo item) {
    if (contains(item.id)) {
        qCWarning(lcClipboard) << "Clipboard entry" << item.id
                               << "is already in the search index; not added again";
        return false;
    }
    auto entry =
        std::make_shared<const Entry>(Entry{item.id, SearchableCharacters(std::move(item.searchableText))});
    const Hit hit = hitFor(*entry, static_cast<std::uint32_t>(m_positions.size()));
    if (!m_query.isEmpty()) {
        scanFor(hit, m_query.at(0), m_positions);
        narrow(hit, m_query, 1, m_positions, hit.firstPosition);
        if (m_positions.size() == hit.firstPosition)
            return true;
    }
    ownEntries().push_back(std::move(entry));
    m_hits.push_back(hit);
    m_hitsById->insert(item.id, m_hits.size() - 1);
    return true;
}

bool ClipboardHistoryIndex::remove(const QUuid& id) {
    const auto found = find(id);
    if (!found)
        return false;
    const std::size_t index = *found;
    const Entry* removed = m_hits[index].entry;
    const std::uint32_t first = m_hits[index].firstPosition;
    const std::uint32_t count = endOfPositions(index) - first;
    m_positions.erase(m_positions.begin() + first, m_positions.begin() + first + count);
    m_hits.erase(m_hits.begin() + static_cast<std::ptrdiff_t>(index));
    for (std::size_t i = index; i < m_hits.size(); ++i)
        m_hits[i].firstPosition -= count;
    // Deleting the newest entry shifts no other; any other deletion makes the table stale.
    if (index == m_hits.size())
        m_hitsById->remove(id);
    else
        m_hitsById.reset();
    Entries& entries = ownEntries();
    const auto owned =
        std::find_if(entries.begin(), entries.end(), [&](const auto& e) { return e.get() == removed; });
    if (owned != entries.end())
        entries.erase(owned);
    return true;
}

void ClipboardHistoryIndex::clear() {
    m_entries.reset();
    m_hits.clear();
    m_positions.clear();
    m_hitsById.reset();
}

} // namespace velmora
