#pragma once

#include "clipboard/ClipboardHistoryIndex.h"

#include <QString>
#include <QUuid>

#include <optional>
#include <vector>

namespace velmora {

// What the history window's search field filters by: the base index over every entry and, while
// there is search text, the search index for it. A query that extends the previous one narrows the
// current search index; any other query (a deleted character, a pasted replacement) starts again
// from the base. Captures and deletions update both, so the results follow the history.
class ClipboardHistorySearch {
public:
    explicit ClipboardHistorySearch(std::vector<ClipboardHistoryIndex::ItemInfo> itemsNewestFirst = {});
    explicit ClipboardHistorySearch(ClipboardHistoryIndex base);

    // The search field's text as typed; empty lists every entry.
    void setText(const QString& text);
    bool isFiltering() const { return m_search.has_value(); }
    QString query() const;

    // Without search text every indexed entry matches.
    bool matches(const QUuid& id) const;
    std::vector<QUuid> matchingIds() const; // newest first
    std::vector<QUuid> matchingIds(std::size_t from, std::size_t count) const;
    std::size_t matchCount() const;
    // Does up to about `work` more of what makes the next character quick (gathering a first
    // character's positions, reading the units past those kept; see ClipboardHistoryIndex); true
    // once there is nothing left to do.
    bool prepareNextCharacter(std::size_t work);

    void insertNewest(ClipboardHistoryIndex::ItemInfo item);
    void remove(const QUuid& id);
    void clear();

    const ClipboardHistoryIndex& baseIndex() const { return m_base; }
    const ClipboardHistoryIndex* searchIndex() const { return m_search ? &*m_search : nullptr; }

private:
    const ClipboardHistoryIndex& current() const { return m_search ? *m_search : m_base; }

    ClipboardHistoryIndex m_base;
    std::optional<ClipboardHistoryIndex> m_search;
};

} // namespace velmora
