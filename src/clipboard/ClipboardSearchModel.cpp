#include "clipboard/ClipboardSearchModel.h"

#include "clipboard/AppModelContainer.h"
#include "clipboard/ClipboardLog.h"
#include "clipboard/ClipboardSearchLoader.h"
#include "core/MemoryRelease.h"

#include <QElapsedTimer>
#include <QtConcurrent>

namespace velmora {

ClipboardSearchModel::ClipboardSearchModel(AppModelContainer& store, QObject* parent)
    : QObject(parent), m_store(store) {
    connect(&m_store, &AppModelContainer::itemAdded, this, [this](const SimpleClipboardItem& item) {
        record(Added{item.id, searchItem(item)});
    });
    connect(&m_store, &AppModelContainer::itemsRemoved, this,
            [this](const QList<QUuid>& ids) { record(Removed{ids}); });
    connect(&m_store, &AppModelContainer::allRemoved, this, [this] { record(Cleared{}); });
    connect(&m_loading, &QFutureWatcher<std::shared_ptr<ClipboardHistorySearch>>::finished, this,
            &ClipboardSearchModel::loaded);
    m_preparing.setInterval(0);
    connect(&m_preparing, &QTimer::timeout, this, &ClipboardSearchModel::prepareSlice);
}

ClipboardSearchModel::~ClipboardSearchModel() {
    m_loading.waitForFinished();
}

void ClipboardSearchModel::start() {
    const QString path = m_store.path();
    if (path.isEmpty()) {
        m_ready = true;
        return;
    }
    m_loading.setFuture(QtConcurrent::run([path] {
        QElapsedTimer timer;
        timer.start();
        QString error;
        auto items = loadSearchEntries(path, &error);
        if (!error.isEmpty())
            qCWarning(lcClipboard).noquote()
                << "The clipboard history could not be read for searching:" << error;
        const std::size_t count = items.size();
        auto search =
            std::make_shared<ClipboardHistorySearch>(ClipboardHistoryIndex::fromEntries(std::move(items)));
        qCInfo(lcClipboard) << "Search index read:" << count << "entries in" << timer.elapsed() << "ms";
        return search;
    }));
}

void ClipboardSearchModel::loaded() {
    // Moved out: what the future keeps is an empty search.
    m_search = std::move(*m_loading.result());
    releaseFreedMemory(); // what reading the whole history took and no longer needs
    for (const Change& change : m_changesWhileLoading)
        apply(change);
    m_changesWhileLoading.clear();
    m_ready = true;
    emit ready();
}

void ClipboardSearchModel::record(Change change) {
    if (m_loading.isRunning())
        m_changesWhileLoading.push_back(std::move(change));
    else
        apply(change);
}

void ClipboardSearchModel::apply(const Change& change) {
    if (const auto* added = std::get_if<Added>(&change)) {
        // Read by the loader already when it was stored while the index was being read.
        if (!m_search.baseIndex().contains(added->id))
            m_search.insertNewest(added->info);
    } else if (const auto* removed = std::get_if<Removed>(&change)) {
        for (const QUuid& id : removed->ids)
            m_search.remove(id);
    } else {
        m_search.clear();
    }
}

std::optional<ClipboardMatches> ClipboardSearchModel::setText(const QString& text) {
    // The lists of a finished search are freed but left to the allocator: the next search reuses
    // them instead of faulting in fresh pages, which costs more than the search itself.
    m_search.setText(text);
    if (!m_search.prepareNextCharacter(0))
        m_preparing.start();
    if (!m_search.isFiltering())
        return std::nullopt;
    return ClipboardMatches{m_search.matchCount(), [this](std::size_t from, std::size_t count) {
                                return m_search.matchingIds(from, count);
                            }};
}

void ClipboardSearchModel::prepareSlice() {
    // About a millisecond of texts read, on a history of ~200-character entries.
    constexpr std::size_t kHitsPerSlice = 4096;
    if (!m_search.prepareNextCharacter(kHitsPerSlice))
        return;
    m_preparing.stop();
    // The lists grew by doubling as they were gathered: what they outgrew goes back to the system
    // rather than staying with the agent while the window is open.
    releaseFreedMemory();
}

std::vector<QUuid> ClipboardSearchModel::find(const QString& text) const {
    if (text.isEmpty())
        return m_search.baseIndex().ids();
    return m_search.baseIndex().refined(text.toLower()).ids();
}

} // namespace velmora
