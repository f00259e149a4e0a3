#include "clipboard/ClipboardHistorySearch.h"

#include "clipboard/ClipboardLog.h"

namespace velmora {

ClipboardHistorySearch::ClipboardHistorySearch(std::vector<ClipboardHistoryIndex::ItemInfo> itemsNewestFirst)
    : m_base(ClipboardHistoryIndex::base(std::move(itemsNewestFirst))) {}

ClipboardHistorySearch::ClipboardHistorySearch(ClipboardHistoryIndex base) : m_base(std::move(base)) {}

void ClipboardHistorySearch::setText(const QString& text) {
    if (text.isEmpty()) {
        m_search.reset();
        m_base.releaseSpareLists();
        return;
    }
    const QString query = text.toLower();
    if (m_search && m_search->query() == query)
        return;
    if (m_search && m_search->canBeRefinedTo(query))
        m_search = std::move(*m_search).refined(query);
    else
        m_search = m_base.refined(query);
}

QString ClipboardHistorySearch::query() const {
    return current().query();
}

bool ClipboardHistorySearch::matches(const QUuid& id) const {
    return current().contains(id);
}

std::vector<QUuid> ClipboardHistorySearch::matchingIds() const {
    return current().ids();
}

std::vector<QUuid> ClipboardHistorySearch::matchingIds(std::size_t from, std::size_t count) const {
    return current().ids(from, count);
}

std::size_t ClipboardHistorySearch::matchCount() const {
    return current().size();
}

bool ClipboardHistorySearch::prepareNextCharacter(std::size_t work) {
    // A position costs about a quarter of what scanning an entry's text does.
    return !m_search || (m_search->gatherPositions(work) && m_search->prepareNextWindow(work * 4));
}

void ClipboardHistorySearch::insertNewest(ClipboardHistoryIndex::ItemInfo item) {
    if (!m_base.insertNewest(item))
        return;
    if (m_search)
        m_search->insertNewest(std::move(item));
}

void ClipboardHistorySearch::remove(const QUuid& id) {
    if (!m_base.remove(id)) {
        qCWarning(lcClipboard) << "Clipboard entry" << id << "to remove from the search is not indexed";
        return;
    }
    if (m_search)
        m_search->remove(id);
}

void ClipboardHistorySearch::clear() {
    m_base.clear();
    if (m_search)
        m_search->clear();
}

} // namespace velmora
