#include "clipboard/ClipboardHistoryIndex.h"

#include "clipboard/ClipboardLog.h"
#include "clipboard/IndexedText.h"

#include <QSet>

#include <algorithm>
#include <utility>

namespace velmora {

using namespace indexed_text;

namespace {

// How many entries ahead the loops ask for texts: their reads miss the cache one entry at a time
// otherwise, and that waiting, not the comparing, is what a scan of the texts costs.
constexpr std::size_t kPrefetchDistance = 16;
// Positions of a first character are grouped by the low byte of the unit after it.
constexpr std::size_t kNextUnitBuckets = 256;
// Deleted hits are left in place until there are this many and a quarter as many as live ones.
constexpr std::size_t kFewestDeletedToCompact = 64;

constexpr auto kKeptNarrow = SearchableCharacters::Storage::NarrowWherePossible;

void prefetch(const void* address) {
    __builtin_prefetch(address);
}

} // namespace

struct ClipboardHistoryIndex::SpareLists {
    Buffer<Hit> hits;
    Buffer<int> positions;
    Buffer<std::uint64_t> following;
    Buffer<std::uint32_t> owners;
    Buffer<std::uint32_t> byNextUnit;
    bool filled = false;
};

ClipboardHistoryIndex& ClipboardHistoryIndex::operator=(ClipboardHistoryIndex other) noexcept {
    swap(other);
    return *this;
}

ClipboardHistoryIndex::~ClipboardHistoryIndex() {
    keepListsForReuse();
}

void ClipboardHistoryIndex::swap(ClipboardHistoryIndex& other) noexcept {
    using std::swap;
    swap(m_query, other.m_query);
    swap(m_prefixLength, other.m_prefixLength);
    swap(m_gathered, other.m_gathered);
    swap(m_followingFrom, other.m_followingFrom);
    swap(m_nextFollowing, other.m_nextFollowing);
    swap(m_prepared, other.m_prepared);
    swap(m_store, other.m_store);
    swap(m_chunks, other.m_chunks);
    swap(m_hits, other.m_hits);
    swap(m_live, other.m_live);
    swap(m_positions, other.m_positions);
    swap(m_following, other.m_following);
    swap(m_owners, other.m_owners);
    swap(m_spare, other.m_spare);
    swap(m_hitsById, other.m_hitsById);
    swap(m_hitsErased, other.m_hitsErased);
    swap(m_byNextUnit, other.m_byNextUnit);
    swap(m_nextUnitStarts, other.m_nextUnitStarts);
}

// One set of lists is enough: while typing, the index before last is let go as the next refine
// begins. Only a searched index's lists are kept (the base has no positions).
void ClipboardHistoryIndex::keepListsForReuse() {
    if (!m_spare || m_spare->filled || m_positions.capacity() == 0)
        return;
    m_hits.clear();
    m_positions.clear();
    m_following.clear();
    m_owners.clear();
    m_byNextUnit.clear();
    *m_spare = SpareLists{std::move(m_hits),   std::move(m_positions),  std::move(m_following),
                          std::move(m_owners), std::move(m_byNextUnit), true};
}

void ClipboardHistoryIndex::reuseSpareLists() {
    if (!m_spare || !m_spare->filled)
        return;
    m_hits = std::move(m_spare->hits);
    m_positions = std::move(m_spare->positions);
    m_following = std::move(m_spare->following);
    m_owners = std::move(m_spare->owners);
    m_byNextUnit = std::move(m_spare->byNextUnit);
    *m_spare = SpareLists{};
}

void ClipboardHistoryIndex::releaseSpareLists() {
    if (m_spare)
        *m_spare = SpareLists{};
}

ClipboardHistoryIndex::Hit ClipboardHistoryIndex::hitFor(const Entry& entry, std::uint32_t number,
                                                         std::uint32_t firstPosition) {
    const SearchableCharacters& characters = entry.searchableCharacters;
    Hit hit{number, firstPosition, static_cast<std::uint32_t>(characters.size()), 0};
    hit.oneUnitPerCharacter = characters.isOneUnitPerCharacter() ? 1 : 0;
    return hit;
}

ClipboardHistoryIndex::Entry ClipboardHistoryIndex::entryFor(ItemInfo item) {
    return Entry{item.id, SearchableCharacters(std::move(item.searchableText), kKeptNarrow)};
}

ClipboardHistoryIndex ClipboardHistoryIndex::base(std::vector<ItemInfo> itemsNewestFirst) {
    std::vector<Entry> entries;
    entries.reserve(itemsNewestFirst.size());
    for (ItemInfo& item : itemsNewestFirst)
        entries.push_back(entryFor(std::move(item)));
    return fromEntries(std::move(entries));
}

ClipboardHistoryIndex ClipboardHistoryIndex::fromEntries(std::vector<Entry> entriesNewestFirst) {
    ClipboardHistoryIndex index;
    index.m_store = std::make_shared<ClipboardIndexEntryStore>();
    index.m_spare = std::make_shared<SpareLists>();
    std::vector<Entry*> kept;
    kept.reserve(entriesNewestFirst.size());
    QSet<QUuid> seen;
    seen.reserve(static_cast<qsizetype>(entriesNewestFirst.size()));
    for (Entry& entry : entriesNewestFirst) {
        if (seen.contains(entry.id)) {
            qCWarning(lcClipboard) << "Clipboard entry" << entry.id
                                   << "is listed twice; only its newest is indexed";
            continue;
        }
        seen.insert(entry.id);
        kept.push_back(&entry);
    }
    index.m_hits.reserve(kept.size());
    for (auto it = kept.rbegin(); it != kept.rend(); ++it)
        index.append(std::move(**it), 0);
    return index;
}

void ClipboardHistoryIndex::append(Entry entry, std::uint32_t firstPosition) {
    if (!m_store)
        m_store = std::make_shared<ClipboardIndexEntryStore>();
    const auto placed = m_store->add(std::move(entry));
    m_hits.push_back(hitFor(*placed.entry, placed.number, firstPosition));
    m_chunks.hold(ClipboardIndexEntryStore::chunkOf(placed.number), [&] { return m_store->newestChunk(); });
    ++m_live;
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

ClipboardHistoryIndex ClipboardHistoryIndex::refined(const QString& lowerCasedQuery) && {
    SearchableCharacters query(lowerCasedQuery);
    if (!isPrefixOf(query) || !everyPositionFollows(query))
        return std::as_const(*this).refined(lowerCasedQuery);
    ClipboardHistoryIndex result(std::move(*this));
    result.m_query = std::move(query);
    result.m_prefixLength = result.m_query.size();
    result.forgetNextWindow(); // read for the character after the shorter query
    return result;
}

bool ClipboardHistoryIndex::everyPositionFollows(const SearchableCharacters& query) const {
    // A first character's index keeps lists of its own (m_byNextUnit); deleted hits and texts of
    // several units per character need more than the units kept.
    if (m_query.size() < 2 || query.size() == m_query.size() || positionsPending() || m_live != m_hits.size())
        return false;
    const KeptUnitsPattern kept(FurtherCharacters(query, m_query.size()), m_followingFrom);
    if (!kept.applies || kept.anyNull)
        return false;
    // In blocks, so that a position that is not followed ends the look early, and without a branch
    // per position within one.
    constexpr std::size_t kBlock = 1024;
    const std::uint64_t* following = m_following.data();
    const std::size_t count = m_following.size();
    for (std::size_t from = 0; from < count; from += kBlock) {
        std::uint64_t differs = 0;
        for (std::size_t j = from; j < std::min(count, from + kBlock); ++j)
            differs |= (following[j] & kept.mask) ^ kept.pattern;
        if (differs != 0)
            return false;
    }
    return std::all_of(m_hits.begin(), m_hits.end(), [](const Hit& hit) { return hit.oneUnitPerCharacter; });
}

ClipboardHistoryIndex ClipboardHistoryIndex::refined(const QString& lowerCasedQuery) const& {
    SearchableCharacters query(lowerCasedQuery);
    if (!isPrefixOf(query)) {
        qCWarning(lcClipboard) << "Search index for" << this->query() << "cannot be narrowed to"
                               << lowerCasedQuery << "; the index is left as it was";
        return *this;
    }
    return refinedFrom(*this, std::move(query));
}

ClipboardHistoryIndex ClipboardHistoryIndex::refinedFrom(const ClipboardHistoryIndex& source,
                                                         SearchableCharacters query) {
    if (query.size() == source.m_query.size())
        return source;
    ClipboardHistoryIndex result;
    result.m_query = std::move(query);
    result.m_store = source.m_store;
    result.m_spare = source.m_spare;
    result.reuseSpareLists();
    result.m_hits.reserve(source.m_live);
    result.m_prefixLength = result.m_query.size();
    if (source.m_query.isEmpty() && result.m_query.size() == 1)
        result.selectByCharacterSet(source);
    else if (source.m_query.isEmpty() || source.positionsPending())
        result.scanFrom(source);
    else
        result.narrowFrom(source);
    result.m_live = result.m_hits.size();
    return result;
}

// A query of several characters from texts not narrowed yet (the base's, or those of a first
// character still gathering): the first character by a scan of each text, then the further ones at
// the positions found.
void ClipboardHistoryIndex::scanFrom(const ClipboardHistoryIndex& source) {
    m_followingFrom = windowAfter(kScannedWindow, 1, m_query.size());
    const FurtherCharacters further(m_query, 1);
    const QStringView character = m_query.at(0);
    const auto& hits = source.m_hits;
    Buffer<int> scanned;
    Buffer<std::uint64_t> scannedFollowing;
    for (std::size_t i = 0; i < hits.size(); ++i) {
        const Hit& hit = hits[i];
        if (i + kPrefetchDistance < hits.size())
            source.prefetchText(i + kPrefetchDistance, true, 0);
        if (hit.isDeleted())
            continue;
        const IndexedText text(source.entryOf(hit));
        const std::size_t first = m_positions.size();
        scanned.clear();
        scannedFollowing.clear();
        scanFor(text, character, scanned, scannedFollowing);
        for (std::size_t j = 0; j < scanned.size(); ++j) {
            std::uint64_t following = scannedFollowing[j];
            const bool follows =
                text.oneUnitPerCharacter
                    ? further.singleUnits && followsAt(
                                                 text.characters, [&](int at) { return text.unitsFrom(at); },
                                                 further, scanned[j], kScannedWindow, following)
                    : followsByCharacters(text, further, scanned[j]);
            if (follows) {
                m_positions.push_back(scanned[j]);
                m_following.push_back(following);
            }
        }
        if (m_positions.size() > first) {
            m_owners.resize(m_positions.size(), static_cast<std::uint32_t>(m_hits.size()));
            keep(source, hit, first);
        }
    }
}

// The entries whose character sets hold the first character, read from the sets alone where they
// decide it; positions are gathered later.
void ClipboardHistoryIndex::selectByCharacterSet(const ClipboardHistoryIndex& source) {
    const QStringView character = m_query.at(0);
    const std::uint64_t bit = CharacterSet::bitOf(character);
    const bool decided = CharacterSet::decides(character);
    const auto& hits = source.m_hits;
    for (std::size_t i = 0; i < hits.size(); ++i) {
        if (i + kPrefetchDistance < hits.size() && !hits[i + kPrefetchDistance].isDeleted())
            prefetch(&source.entryOf(hits[i + kPrefetchDistance]).characterSet);
        const Hit& hit = hits[i];
        if (hit.isDeleted())
            continue;
        const Entry& entry = source.entryOf(hit);
        // In a text of several units per character, an "e" may be the start of an accented one.
        if (entry.characterSet.mayHold(bit) &&
            ((decided && hit.oneUnitPerCharacter) || holds(IndexedText(entry), character)))
            keep(source, hit, 0);
    }
    m_prefixLength = 0;
    m_gathered = 0;
    m_followingFrom = kScannedWindow;
}

int ClipboardHistoryIndex::nextWindow() const {
    const int typed = m_query.size();
    return windowAfter(m_followingFrom, typed, typed + 1);
}

bool ClipboardHistoryIndex::prepareNextWindow(std::size_t positions) {
    const int window = nextWindow();
    if (m_query.isEmpty() || positionsPending() || window == m_followingFrom)
        return true;
    const std::size_t count = m_positions.size(); // captures meanwhile add positions: read them too
    m_nextFollowing.resize(count);
    const std::size_t end = m_prepared + std::min(positions, count - m_prepared);
    for (; m_prepared < end; ++m_prepared) {
        if (m_prepared + kPrefetchDistance < count)
            prefetchFollowing(m_prepared + kPrefetchDistance, window);
        const Hit& hit = m_hits[m_owners[m_prepared]];
        m_nextFollowing[m_prepared] =
            hit.isDeleted() || !hit.oneUnitPerCharacter
                ? 0
                : unitsFrom(entryOf(hit).searchableCharacters, m_positions[m_prepared] + window);
    }
    if (m_prepared < count)
        return false;
    m_following.swap(m_nextFollowing);
    m_followingFrom = window;
    forgetNextWindow();
    return true;
}

void ClipboardHistoryIndex::forgetNextWindow() {
    m_nextFollowing.clear();
    m_prepared = 0;
}

bool ClipboardHistoryIndex::gatherPositions(std::size_t hits) {
    if (!positionsPending())
        return true;
    const QStringView character = m_query.at(0);
    const std::size_t end = m_gathered + std::min(hits, m_hits.size() - m_gathered);
    for (; m_gathered < end; ++m_gathered) {
        if (m_gathered + kPrefetchDistance < m_hits.size())
            prefetchText(m_gathered + kPrefetchDistance, true, 0);
        Hit& hit = m_hits[m_gathered];
        hit.firstPosition = static_cast<std::uint32_t>(m_positions.size());
        if (hit.isDeleted())
            continue;
        scanFor(IndexedText(entryOf(hit)), character, m_positions, m_following);
        m_owners.resize(m_positions.size(), static_cast<std::uint32_t>(m_gathered));
    }
    if (m_gathered < m_hits.size())
        return false;
    m_prefixLength = 1;
    compactIfSparse();
    sortByNextUnit();
    return true;
}

// Groups the positions of a first character by the unit after it, so that the second character
// reads only those it can follow.
void ClipboardHistoryIndex::sortByNextUnit() {
    const std::size_t count = m_positions.size();
    const auto bucketOf = [&](std::size_t j) {
        return m_hits[m_owners[j]].oneUnitPerCharacter
                   ? static_cast<std::size_t>(m_following[j] % kNextUnitBuckets)
                   : kNextUnitBuckets;
    };
    std::vector<std::uint32_t> starts(kNextUnitBuckets + 2, 0);
    for (std::size_t j = 0; j < count; ++j)
        ++starts[bucketOf(j) + 1];
    for (std::size_t b = 1; b < starts.size(); ++b)
        starts[b] += starts[b - 1];
    m_byNextUnit.resize(count);
    std::vector<std::uint32_t> next(starts.begin(), starts.end() - 1);
    for (std::size_t j = 0; j < count; ++j)
        m_byNextUnit[next[bucketOf(j)]++] = static_cast<std::uint32_t>(j);
    m_nextUnitStarts = std::move(starts);
}

void ClipboardHistoryIndex::forgetNextUnits() {
    m_byNextUnit.clear();
    m_nextUnitStarts.clear();
}

// The further characters by one pass over all positions, with the units kept beside them: no
// text is read until those units run out. The pass writes every position and hit to buffers sized
// for all of them and only advances past the kept ones: no branch on whether a position matches,
// which would be mispredicted about as often as not.
void ClipboardHistoryIndex::narrowFrom(const ClipboardHistoryIndex& source) {
    const FurtherCharacters further(m_query, source.m_query.size());
    const int window = source.m_followingFrom;
    m_followingFrom = windowAfter(window, further.from, further.end);
    // The usual case, a character or a few typed: compared with the units kept, all at once.
    const KeptUnitsPattern inKept(further, window);
    const bool inKeptUnits = inKept.applies;
    const std::uint64_t mask = inKept.mask;
    const std::uint64_t pattern = inKept.pattern;
    const bool readsTexts = !inKeptUnits && further.singleUnits;
    const std::size_t count = source.m_positions.size();
    // After the first character, only the positions followed by the second one's unit are read
    // (and those in texts of several units per character, which are not sorted).
    const bool byNextUnit = inKeptUnits && !source.m_nextUnitStarts.empty();
    const std::uint32_t* sorted = source.m_byNextUnit.data();
    std::size_t bucket = 0;
    std::size_t bucketEnd = 0;
    std::size_t wholeCharacters = 0;
    std::size_t wholeCharactersEnd = 0;
    if (byNextUnit) {
        const std::size_t b = further.units.front() % kNextUnitBuckets;
        bucket = source.m_nextUnitStarts[b];
        bucketEnd = source.m_nextUnitStarts[b + 1];
        wholeCharacters = source.m_nextUnitStarts[kNextUnitBuckets];
        wholeCharactersEnd = source.m_nextUnitStarts[kNextUnitBuckets + 1];
    }
    const std::size_t capacity =
        byNextUnit ? bucketEnd - bucket + wholeCharactersEnd - wholeCharacters : count;
    m_positions.resize(capacity);
    m_following.resize(capacity);
    m_owners.resize(capacity);
    m_hits.resize(source.m_hits.size() + 1);
    // Raw pointers, so that the compiler keeps them in registers across the stores.
    const std::uint32_t* owners = source.m_owners.data();
    const int* positions = source.m_positions.data();
    const std::uint64_t* followingUnits = source.m_following.data();
    const Hit* sourceHits = source.m_hits.data();
    int* keptPositions = m_positions.data();
    std::uint64_t* keptFollowing = m_following.data();
    std::uint32_t* keptOwners = m_owners.data();
    Hit* keptHits = m_hits.data();
    std::size_t kept = 0;
    std::size_t hits = 0;
    std::uint32_t lastOwner = Hit::kDeleted;
    const auto visit = [&](std::size_t j) __attribute__((always_inline)) {
        const std::uint32_t owner = owners[j];
        const Hit& hit = sourceHits[owner];
        const int p = positions[j];
        std::uint64_t following = followingUnits[j];
        bool follows;
        if (inKeptUnits && hit.oneUnitPerCharacter && !hit.isDeleted()) {
            follows = ((following & mask) == pattern) & (p + further.end <= static_cast<int>(hit.characters));
        } else {
            if (readsTexts && j + kPrefetchDistance < count)
                source.prefetchFollowing(j + kPrefetchDistance, further.from);
            follows = !hit.isDeleted() &&
                      (hit.oneUnitPerCharacter
                           ? further.singleUnits &&
                                 followsAt(
                                     static_cast<int>(hit.characters),
                                     [&](int at) {
                                         return unitsFrom(source.entryOf(hit).searchableCharacters, at);
                                     },
                                     further, p, window, following)
                           : followsByCharacters(IndexedText(source.entryOf(hit)), further, p));
        }
        const bool firstOfHit = follows & (owner != lastOwner);
        keptHits[hits] =
            Hit{hit.entry, static_cast<std::uint32_t>(kept), hit.characters, hit.oneUnitPerCharacter};
        hits += firstOfHit;
        lastOwner = firstOfHit ? owner : lastOwner;
        keptPositions[kept] = p;
        keptFollowing[kept] = following;
        keptOwners[kept] = static_cast<std::uint32_t>(hits - 1);
        kept += follows;
    };
    if (!byNextUnit) {
        for (std::size_t j = 0; j < count; ++j)
            visit(j);
    } else {
        // Both lists ascend: merged, the positions stay in the order of their hits.
        while (bucket < bucketEnd || wholeCharacters < wholeCharactersEnd) {
            if (bucket + kPrefetchDistance < bucketEnd) { // scattered reads: ask for them ahead
                const std::uint32_t ahead = sorted[bucket + kPrefetchDistance];
                prefetch(owners + ahead);
                prefetch(positions + ahead);
                prefetch(followingUnits + ahead);
            }
            const bool fromBucket = wholeCharacters == wholeCharactersEnd ||
                                    (bucket < bucketEnd && sorted[bucket] < sorted[wholeCharacters]);
            visit(fromBucket ? sorted[bucket++] : sorted[wholeCharacters++]);
        }
    }
    m_positions.resize(kept);
    m_following.resize(kept);
    m_owners.resize(kept);
    m_hits.resize(hits);
    for (const Hit& hit : m_hits) {
        const std::uint32_t chunk = ClipboardIndexEntryStore::chunkOf(hit.entry);
        m_chunks.hold(chunk, [&] { return source.m_chunks.at(chunk); });
    }
}

void ClipboardHistoryIndex::keep(const ClipboardHistoryIndex& source, const Hit& hit,
                                 std::size_t firstPosition) {
    m_hits.push_back(
        Hit{hit.entry, static_cast<std::uint32_t>(firstPosition), hit.characters, hit.oneUnitPerCharacter});
    const std::uint32_t chunk = ClipboardIndexEntryStore::chunkOf(hit.entry);
    m_chunks.hold(chunk, [&] { return source.m_chunks.at(chunk); });
}

void ClipboardHistoryIndex::prefetchText(std::size_t hit, bool whole, int offset) const {
    const Hit& ahead = m_hits[hit];
    if (ahead.isDeleted())
        return;
    const SearchableCharacters& text = entryOf(ahead).searchableCharacters;
    if (whole) {
        const auto* bytes = static_cast<const char*>(text.addressOf(0));
        const std::size_t size = static_cast<std::size_t>(text.offset(text.size())) * text.bytesPerUnit();
        for (std::size_t at = 0; at < size; at += 64) // a cache line
            prefetch(bytes + at);
        return;
    }
    // Only for texts of one unit per character are positions also offsets; those are nearly all.
    if (!ahead.oneUnitPerCharacter)
        return;
    const std::uint32_t end = endOfPositions(hit);
    for (std::uint32_t p = ahead.firstPosition; p < end; ++p)
        prefetch(text.addressOf(m_positions[p] + offset));
}

void ClipboardHistoryIndex::prefetchFollowing(std::size_t position, int offset) const {
    const Hit& ahead = m_hits[m_owners[position]];
    if (ahead.isDeleted() || !ahead.oneUnitPerCharacter)
        return;
    // Two reads in a row miss the cache here: the entry for its text, then the text.
    const Entry& entry = entryOf(ahead);
    prefetch(entry.searchableCharacters.addressOf(m_positions[position] + offset));
}

std::uint32_t ClipboardHistoryIndex::endOfPositions(std::size_t hit) const {
    return hit + 1 < m_hits.size() ? m_hits[hit + 1].firstPosition
                                   : static_cast<std::uint32_t>(m_positions.size());
}

const ClipboardHistoryIndex::Entry* ClipboardHistoryIndex::entry(const QUuid& id) const {
    const auto hit = find(id);
    return hit ? &entryOf(m_hits[*hit]) : nullptr;
}

std::span<const int> ClipboardHistoryIndex::positions(const QUuid& id) const {
    const auto hit = find(id);
    if (!hit || positionsPending())
        return {};
    return std::span<const int>(m_positions)
        .subspan(m_hits[*hit].firstPosition, endOfPositions(*hit) - m_hits[*hit].firstPosition);
}

std::optional<std::size_t> ClipboardHistoryIndex::find(const QUuid& id) const {
    if (!m_hitsById) {
        QHash<QUuid, std::size_t> hits;
        hits.reserve(static_cast<qsizetype>(m_live));
        for (std::size_t i = 0; i < m_hits.size(); ++i) {
            if (!m_hits[i].isDeleted())
                hits.insert(entryOf(m_hits[i]).id, i + m_hitsErased);
        }
        m_hitsById = std::move(hits);
    }
    const auto it = m_hitsById->constFind(id);
    return it == m_hitsById->cend() ? std::nullopt : std::optional(*it - m_hitsErased);
}

std::vector<QUuid> ClipboardHistoryIndex::ids() const {
    std::vector<QUuid> ids(m_live);
    std::size_t next = 0;
    for (std::size_t i = m_hits.size(); i-- > 0;) {
        // Each id is in its entry, one cache miss apart: asked for ahead, like the texts.
        if (i >= kPrefetchDistance && !m_hits[i - kPrefetchDistance].isDeleted())
            prefetch(&entryOf(m_hits[i - kPrefetchDistance]).id);
        if (!m_hits[i].isDeleted())
            ids[next++] = entryOf(m_hits[i]).id;
    }
    return ids;
}

std::vector<QUuid> ClipboardHistoryIndex::ids(std::size_t from, std::size_t count) const {
    std::vector<QUuid> ids;
    ids.reserve(std::min(count, m_live));
    for (std::size_t i = m_hits.size(); i-- > 0 && ids.size() < count;) {
        if (m_hits[i].isDeleted())
            continue;
        if (from > 0)
            --from;
        else
            ids.push_back(entryOf(m_hits[i]).id);
    }
    return ids;
}

bool ClipboardHistoryIndex::insertNewest(ItemInfo item) {
    if (contains(item.id)) {
        qCWarning(lcClipboard) << "Clipboard entry" << item.id
                               << "is already in the search index; not added again";
        return false;
    }
    Entry entry = entryFor(std::move(item));
    const auto first = static_cast<std::uint32_t>(m_positions.size());
    if (!m_query.isEmpty()) {
        // Matched before it is stored: an entry this index does not list costs the store nothing.
        const IndexedText text(entry);
        std::vector<int> scanned;
        std::vector<std::uint64_t> following;
        scanFor(text, m_query.at(0), scanned, following);
        const FurtherCharacters further(m_query, 1);
        for (std::size_t j = 0; j < scanned.size(); ++j) {
            const bool follows =
                text.oneUnitPerCharacter
                    ? further.singleUnits && followsAt(
                                                 text.characters, [&](int at) { return text.unitsFrom(at); },
                                                 further, scanned[j], kScannedWindow, following[j])
                    : followsByCharacters(text, further, scanned[j]);
            if (follows) {
                m_positions.push_back(scanned[j]);
                // In this index's window, which a preparation for the next character may have moved.
                m_following.push_back(text.oneUnitPerCharacter ? text.unitsFrom(scanned[j] + m_followingFrom)
                                                               : 0);
            }
        }
        if (m_positions.size() == first)
            return true;
        if (positionsPending()) { // gathered with the others, in order
            m_positions.resize(first);
            m_following.resize(first);
        } else {
            m_owners.resize(m_positions.size(), static_cast<std::uint32_t>(m_hits.size()));
            forgetNextUnits();
        }
    }
    append(std::move(entry), first);
    m_hitsById->insert(item.id, m_hits.size() - 1 + m_hitsErased);
    return true;
}

bool ClipboardHistoryIndex::remove(const QUuid& id) {
    const auto found = find(id);
    if (!found)
        return false;
    m_hitsById->remove(id); // before the entry can go with its chunk: `id` may be the entry's own
    Hit& hit = m_hits[*found];
    m_chunks.release(ClipboardIndexEntryStore::chunkOf(hit.entry));
    hit.entry = Hit::kDeleted;
    --m_live;
    dropDeletedNewest();
    compactIfSparse();
    return true;
}

// Deleted hits at the end are dropped at once, so that a capture deleted again leaves nothing.
void ClipboardHistoryIndex::dropDeletedNewest() {
    if (!m_hits.empty() && m_hits.back().isDeleted())
        forgetNextWindow(); // the positions it read may go
    while (!m_hits.empty() && m_hits.back().isDeleted()) {
        if (!positionsPending() || m_hits.size() <= m_gathered) { // its positions are in the lists
            m_positions.resize(m_hits.back().firstPosition);
            m_following.resize(m_hits.back().firstPosition);
            m_owners.resize(m_hits.back().firstPosition);
            forgetNextUnits();
        }
        m_hits.pop_back();
        m_gathered = std::min(m_gathered, m_hits.size());
    }
}

// In place, so that no fresh memory is written: compacting the lists of a common letter moves
// tens of megabytes.
void ClipboardHistoryIndex::compactIfSparse() {
    const std::size_t deleted = m_hits.size() - m_live;
    // While positions are gathered, hits keep their places; the gathering's end compacts.
    if (deleted < kFewestDeletedToCompact || deleted < m_live / 4 || positionsPending())
        return;
    forgetNextWindow(); // positions move
    std::size_t oldest = 0;
    while (m_hits[oldest].isDeleted())
        ++oldest;
    std::size_t hits = 0;
    std::size_t positions = 0;
    for (std::size_t i = 0; i < m_hits.size(); ++i) {
        if (m_hits[i].isDeleted())
            continue;
        // The next hit, not yet moved, still tells where this one's positions end.
        const std::uint32_t begin = m_hits[i].firstPosition;
        const std::uint32_t end = endOfPositions(i);
        for (std::uint32_t j = begin; j < end; ++j) {
            m_positions[positions + j - begin] = m_positions[j];
            m_following[positions + j - begin] = m_following[j];
            m_owners[positions + j - begin] = static_cast<std::uint32_t>(hits);
        }
        m_hits[hits] = m_hits[i];
        m_hits[hits].firstPosition = static_cast<std::uint32_t>(positions);
        positions += end - begin;
        ++hits;
    }
    m_hits.resize(hits);
    m_positions.resize(positions);
    m_following.resize(positions);
    m_owners.resize(positions);
    forgetNextUnits();
    // Trimming deletes the oldest: the others keep their order and the ids' table stays right.
    if (oldest == deleted)
        m_hitsErased += oldest;
    else
        m_hitsById.reset();
}

void ClipboardHistoryIndex::clear() {
    m_hits.clear();
    m_positions.clear();
    m_following.clear();
    m_owners.clear();
    forgetNextUnits();
    m_chunks.clear();
    m_live = 0;
    m_gathered = 0;
    forgetNextWindow();
    m_hitsById.reset();
}

} // namespace velmora
