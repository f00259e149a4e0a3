#pragma once

#include "clipboard/ClipboardHistorySearch.h"
#include "clipboard/ClipboardMatches.h"

#include <QFutureWatcher>
#include <QObject>
#include <QTimer>
#include <QUuid>

#include <memory>
#include <optional>
#include <variant>
#include <vector>

namespace velmora {

class AppModelContainer;
struct SimpleClipboardItem;

// The search over the whole history. The index is read from the store once, on a worker thread
// after start-up, and from then on follows every capture and deletion; it is never read again.
class ClipboardSearchModel : public QObject {
    Q_OBJECT
public:
    explicit ClipboardSearchModel(AppModelContainer& store, QObject* parent = nullptr);
    ~ClipboardSearchModel() override;

    void start();
    bool isReady() const { return m_ready; }
    std::size_t indexedCount() const { return m_search.baseIndex().size(); }

    // The history window's search text as typed: the matching entries, or nothing when the text is
    // empty (every entry is listed). Refines the previous answer when the text grew.
    std::optional<ClipboardMatches> setText(const QString& text);
    // A search of its own, from the base, that leaves the window's search as it is.
    std::vector<QUuid> find(const QString& text) const;

signals:
    // The index is complete: a search made before now may have missed entries.
    void ready();

private:
    struct Added {
        QUuid id;
        ClipboardHistoryIndex::ItemInfo info;
    };
    struct Removed {
        QList<QUuid> ids;
    };
    struct Cleared {};
    using Change = std::variant<Added, Removed, Cleared>;

    void apply(const Change& change);
    void record(Change change);
    void loaded();
    void prepareSlice();

    AppModelContainer& m_store;
    ClipboardHistorySearch m_search;
    bool m_ready = false;
    // What happened in the store while the index was being read, applied once it is in.
    std::vector<Change> m_changesWhileLoading;
    // The whole search, read and built on a worker; handed over once, then used here only.
    QFutureWatcher<std::shared_ptr<ClipboardHistorySearch>> m_loading;
    // What makes the next character quick, done a slice at a time while the user has not typed on:
    // each slice is short enough that a keystroke waits for it no longer than for a frame.
    QTimer m_preparing;
};

} // namespace velmora
