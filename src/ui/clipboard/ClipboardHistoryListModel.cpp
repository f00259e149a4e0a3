#include "ui/clipboard/ClipboardHistoryListModel.h"

#include "clipboard/AppModelContainer.h"

#include <algorithm>

namespace velmora {

ClipboardHistoryListModel::ClipboardHistoryListModel(AppModelContainer& store, QObject* parent)
    : QAbstractListModel(parent), m_store(store) {
    connect(&m_store, &AppModelContainer::itemAdded, this, &ClipboardHistoryListModel::added);
    connect(&m_store, &AppModelContainer::itemsRemoved, this, &ClipboardHistoryListModel::removed);
    connect(&m_store, &AppModelContainer::allRemoved, this, [this] {
        m_rowCache.clear();
        if (!m_released)
            reload();
    });
    m_readingAhead.setInterval(0);
    connect(&m_readingAhead, &QTimer::timeout, this, &ClipboardHistoryListModel::readAheadSlice);
    reload();
}

void ClipboardHistoryListModel::setFilter(std::optional<ClipboardMatches> matches) {
    m_filter = std::move(matches);
    reload();
}

void ClipboardHistoryListModel::reload() {
    m_released = false;
    beginResetModel();
    m_rows.clear();
    m_exhausted = false;
    endResetModel();
    fetchMore({});
    m_readingAhead.stop();
    m_readAheadFrom = int(m_rows.size());
}

void ClipboardHistoryListModel::release() {
    m_readingAhead.stop();
    beginResetModel();
    m_filter.reset();
    m_rows.clear();
    m_exhausted = true;
    m_released = true;
    endResetModel();
    m_rowCache.clear();
    m_images.clear();
    m_icons.clear();
    m_readAheadFrom = 0;
}

void ClipboardHistoryListModel::readAhead() {
    m_readAheadFrom = std::max(m_readAheadFrom, int(m_rows.size()));
    if (!m_exhausted)
        m_readingAhead.start();
}

int ClipboardHistoryListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : int(m_rows.size());
}

bool ClipboardHistoryListModel::canFetchMore(const QModelIndex& parent) const {
    return !parent.isValid() && !m_exhausted;
}

void ClipboardHistoryListModel::fetchMore(const QModelIndex& parent) {
    if (parent.isValid() || m_exhausted)
        return;
    std::vector<SimpleClipboardItem> page;
    if (m_filter) {
        const auto ids = m_filter->page(m_rows.size(), kPageSize);
        page = rowsWithIds(ids);
        m_exhausted = ids.size() < std::size_t(kPageSize);
    } else {
        page = m_store.items(kPageSize, int(m_rows.size()));
        m_exhausted = page.size() < std::size_t(kPageSize);
        for (SimpleClipboardItem& item : page) // a first character lists mostly the newest
            cache(item);
    }
    if (page.empty())
        return;
    beginInsertRows({}, int(m_rows.size()), int(m_rows.size() + page.size()) - 1);
    std::move(page.begin(), page.end(), std::back_inserter(m_rows));
    endInsertRows();
}

std::vector<SimpleClipboardItem> ClipboardHistoryListModel::rowsWithIds(const std::vector<QUuid>& ids) {
    cacheRows(ids);
    std::vector<SimpleClipboardItem> rows;
    for (const QUuid& id : ids)
        if (const SimpleClipboardItem* cached = m_rowCache.object(id))
            rows.push_back(*cached);
    return rows;
}

void ClipboardHistoryListModel::cacheRows(const std::vector<QUuid>& ids) {
    std::vector<QUuid> missing;
    for (const QUuid& id : ids)
        if (!m_rowCache.contains(id))
            missing.push_back(id);
    for (SimpleClipboardItem& item : m_store.itemsWithIds(missing))
        cache(item);
}

void ClipboardHistoryListModel::cache(SimpleClipboardItem& item) {
    // Most rows carry one of a few applications' icons: those cached share one copy of its bytes.
    if (item.sourceIconData) {
        if (const auto icon = m_icons.constFind(*item.sourceIconData); icon != m_icons.cend())
            item.sourceIconData = *icon;
        else
            m_icons.insert(*item.sourceIconData);
    }
    m_rowCache.insert(item.id, new SimpleClipboardItem(item));
}

void ClipboardHistoryListModel::readAheadSlice() {
    const int end = int(m_rows.size()) + kReadAhead;
    if (m_readAheadFrom >= end) {
        m_readingAhead.stop();
        return;
    }
    const int count = std::min(kReadAheadSlice, end - m_readAheadFrom);
    std::size_t read = 0;
    if (m_filter) {
        const auto ids = m_filter->page(std::size_t(m_readAheadFrom), std::size_t(count));
        cacheRows(ids);
        read = ids.size();
    } else {
        for (SimpleClipboardItem& item : m_store.items(count, m_readAheadFrom)) {
            cache(item);
            ++read;
        }
    }
    m_readAheadFrom += count;
    if (read < std::size_t(count))
        m_readingAhead.stop();
}

const SimpleClipboardItem* ClipboardHistoryListModel::entry(int row) const {
    return row >= 0 && row < int(m_rows.size()) ? &m_rows[row] : nullptr;
}

int ClipboardHistoryListModel::rowOf(const QUuid& id) const {
    for (std::size_t i = 0; i < m_rows.size(); ++i)
        if (m_rows[i].id == id)
            return int(i);
    return -1;
}

QVariant ClipboardHistoryListModel::data(const QModelIndex& index, int role) const {
    const SimpleClipboardItem* e = entry(index.row());
    if (!e)
        return {};
    switch (role) {
    case Qt::DisplayRole:
        return e->plainText.value_or(e->fileURL.value_or(e->url.value_or(QString())));
    case ThumbnailRole:
        // The list reads entries without their external values; the picture is read once it is shown.
        return image(e->id, "thumbnail");
    case SourceIconRole:
        return e->sourceIconData ? QVariant(sourceIcon(*e->sourceIconData)) : QVariant();
    default:
        return {};
    }
}

QImage ClipboardHistoryListModel::sourceIcon(const QByteArray& png) const {
    // A few applications make most copies: each icon is decoded once.
    const QString key = QString::number(qHash(png)) + QStringLiteral("icon");
    if (const QImage* cached = m_images.object(key))
        return *cached;
    const QImage decoded = QImage::fromData(png);
    m_images.insert(key, new QImage(decoded));
    return decoded;
}

QImage ClipboardHistoryListModel::image(const QUuid& id, const QString& kind) const {
    const QString key = id.toString() + kind;
    if (const QImage* cached = m_images.object(key))
        return *cached;
    QImage decoded;
    if (const auto bytes = m_store.representation(id, kind))
        decoded = QImage::fromData(*bytes);
    m_images.insert(key, new QImage(decoded));
    return decoded;
}

void ClipboardHistoryListModel::added(const SimpleClipboardItem& item) {
    // A filtered list is refreshed by its owner, which knows whether the new entry matches.
    if (m_filter || m_released)
        return;
    SimpleClipboardItem row = item;
    row.payload.reset();
    row.html.reset();
    row.rtf.reset();
    row.tabularText.reset();
    beginInsertRows({}, 0, 0);
    m_rows.insert(m_rows.begin(), std::move(row));
    endInsertRows();
    emit rowsChangedUnderneath();
}

void ClipboardHistoryListModel::removed(const QList<QUuid>& ids) {
    if (m_released)
        return;
    for (const QUuid& id : ids) {
        m_rowCache.remove(id); // the filter reads its pages from the search, which follows too
        const int row = rowOf(id);
        if (row < 0)
            continue;
        beginRemoveRows({}, row, row);
        m_rows.erase(m_rows.begin() + row);
        endRemoveRows();
    }
    emit rowsChangedUnderneath();
}

} // namespace velmora
