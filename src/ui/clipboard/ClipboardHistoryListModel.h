#pragma once

#include "clipboard/ClipboardMatches.h"
#include "clipboard/SimpleClipboardItem.h"

#include <QAbstractListModel>
#include <QCache>
#include <QImage>
#include <QSet>
#include <QTimer>
#include <QUuid>

#include <optional>
#include <vector>

namespace velmora {

class AppModelContainer;

// The history window's rows, newest first, read from the store a page at a time as the list scrolls
// (never the whole store). With a filter the rows are the given ids, read a page at a time as well.
// Follows captures and deletions while it lives. Once the list is shown, the rows after those
// listed are read ahead into a cache: a query one character longer lists mostly entries the
// shorter one listed a little further down, and reading a row (its text is a file of its own) costs
// tens of microseconds.
class ClipboardHistoryListModel : public QAbstractListModel {
    Q_OBJECT
public:
    static constexpr int kPageSize = 20;
    static constexpr int kReadAhead = 100; // rows after those listed
    static constexpr int kReadAheadSlice = 10;
    enum Role { EntryRole = Qt::UserRole, ThumbnailRole, SourceIconRole };

    explicit ClipboardHistoryListModel(AppModelContainer& store, QObject* parent = nullptr);

    // Lists every entry (nullopt) or only these, newest first. Starts again from the first page.
    void setFilter(std::optional<ClipboardMatches> matches);
    // Reads the rows after those listed into the cache, in idle slices, until the list changes: for
    // once the list is shown, so that it is not shown later for it.
    void readAhead();
    bool isFiltered() const { return m_filter.has_value(); }
    // Lists nothing and lets go of every row and image read, while the window is closed; setFilter
    // lists again.
    void release();

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    bool canFetchMore(const QModelIndex& parent) const override;
    void fetchMore(const QModelIndex& parent) override;

    const SimpleClipboardItem* entry(int row) const;
    int rowOf(const QUuid& id) const;

signals:
    // Rows came or went under the user; the window keeps its selection in view.
    void rowsChangedUnderneath();

private:
    void reload();
    void added(const SimpleClipboardItem& item);
    void removed(const QList<QUuid>& ids);
    QImage image(const QUuid& id, const QString& kind) const;
    QImage sourceIcon(const QByteArray& png) const;
    std::vector<SimpleClipboardItem> rowsWithIds(const std::vector<QUuid>& ids);
    void cacheRows(const std::vector<QUuid>& ids);
    void cache(SimpleClipboardItem& item);
    void readAheadSlice();

    AppModelContainer& m_store;
    std::optional<ClipboardMatches> m_filter;
    std::vector<SimpleClipboardItem> m_rows;
    bool m_exhausted = false;
    bool m_released = false;
    mutable QCache<QString, QImage> m_images{200};
    QCache<QUuid, SimpleClipboardItem> m_rowCache{1000};
    QSet<QByteArray> m_icons; // the source icons of the cached rows, one copy each
    QTimer m_readingAhead;
    int m_readAheadFrom = 0;
};

} // namespace velmora
