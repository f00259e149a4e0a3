#pragma once

#include "clipboard/ClipboardRecordBuilder.h"
#include "clipboard/SimpleClipboardItem.h"

#include <QObject>
#include <QThreadPool>
#include <QTimer>

#include <deque>
#include <functional>
#include <memory>

namespace velmora {

class AppModelContainer;
class FileThumbnails;
class ThumbnailJob;
class Pasteboard;
class UserPreferences;
class Workspace;

// Watches the clipboard and turns each new content into history records: at every change the backend
// reports, and on a half-second tick as a safety net. Records are prepared off the main thread
// (images decoded, file sizes and thumbnails made) and stored in the order they were captured.
class ClipboardHistoryDataModel : public QObject {
    Q_OBJECT
public:
    ClipboardHistoryDataModel(Pasteboard& pasteboard, Workspace& workspace, FileThumbnails* fileThumbnails,
                              AppModelContainer& store, UserPreferences& preferences,
                              std::function<qint64()> nowMs, QObject* parent = nullptr);
    ~ClipboardHistoryDataModel() override;

    // Starts the tick; the content on the clipboard now is not recorded.
    void start();
    void tick();

    bool shouldRecordHistory() const { return m_shouldRecordHistory; }
    // Cleared just before Velmora writes to the clipboard itself, so that its own write is not recorded.
    void setShouldRecordHistory(bool on) { m_shouldRecordHistory = on; }
    qint64 changeCount() const { return m_changeCount; }
    // Records captured and not stored yet.
    int pending() const { return int(m_pending.size()); }

signals:
    // A record was stored (or could not be: stored false).
    void persisted(const SimpleClipboardItem& item, bool stored);

private:
    struct Pending;

    void capture();
    std::optional<ClipboardRecordBuilder::Source> source() const;
    bool isIgnored(const std::optional<QString>& bundleURL) const;
    void prepare(SimpleClipboardItem record);
    void decodeImages(const std::shared_ptr<Pending>& pending);
    void describeFile(const std::shared_ptr<Pending>& pending);
    void writeFiles(const std::shared_ptr<Pending>& pending);
    void persistReady();
    std::vector<struct PasteboardItem> contentToKeep() const;

    Pasteboard& m_pasteboard;
    Workspace& m_workspace;
    AppModelContainer& m_store;
    UserPreferences& m_preferences;
    std::function<qint64()> m_nowMs;
    QTimer m_timer;
    bool m_shouldRecordHistory = true;
    qint64 m_changeCount = 0;
    // Whether the clipboard's present content is the newest history entry: only then may it be kept
    // on the clipboard after its owner leaves (never a concealed or ignored copy, never an old one).
    bool m_newestIsOnClipboard = false;
    std::deque<std::shared_ptr<Pending>> m_pending;
    QThreadPool m_writer; // one thread: files are written in capture order
    // Declared last, so it is destroyed first: its worker stops before anything its callbacks touch.
    std::unique_ptr<ThumbnailJob> m_thumbnails;
};

} // namespace velmora
