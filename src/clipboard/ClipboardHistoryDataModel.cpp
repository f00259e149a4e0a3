#include "clipboard/ClipboardHistoryDataModel.h"

#include <QCoreApplication>
#include <QPointer>

#include "app/UserPreferences.h"
#include "clipboard/AppModelContainer.h"
#include "clipboard/ClipboardImages.h"
#include "clipboard/ClipboardLog.h"
#include "clipboard/PasteboardItemsOfRecord.h"
#include "clipboard/ThumbnailJob.h"
#include "platform/Pasteboard.h"
#include "platform/Workspace.h"

#include <QUrl>

namespace velmora {

namespace {
constexpr int kTickMs = 500;
constexpr int kSourceIconSize = 32;
} // namespace

struct ClipboardHistoryDataModel::Pending {
    SimpleClipboardItem record;
    std::optional<AppModelContainer::ItemFiles> files; // written off the main thread
    bool ready = false;
};

ClipboardHistoryDataModel::ClipboardHistoryDataModel(Pasteboard& pasteboard, Workspace& workspace,
                                                     FileThumbnails* fileThumbnails, AppModelContainer& store,
                                                     UserPreferences& preferences,
                                                     std::function<qint64()> nowMs, QObject* parent)
    : QObject(parent), m_pasteboard(pasteboard), m_workspace(workspace), m_store(store),
      m_preferences(preferences), m_nowMs(std::move(nowMs)) {
    if (fileThumbnails)
        m_thumbnails = std::make_unique<ThumbnailJob>(*fileThumbnails);
    m_writer.setMaxThreadCount(1);
    m_timer.setInterval(kTickMs);
    m_timer.setTimerType(Qt::PreciseTimer);
    connect(&m_timer, &QTimer::timeout, this, &ClipboardHistoryDataModel::tick);
    m_pasteboard.contentToKeep = [this] { return contentToKeep(); };
    auto keepAlive = [this] {
        m_pasteboard.setKeepsContentAlive(m_preferences.local.clipboardKeepsCopiesOfClosedApps());
    };
    keepAlive();
    connect(&m_preferences.local, &LocalUserPreferences::changed, this, keepAlive);
}

ClipboardHistoryDataModel::~ClipboardHistoryDataModel() {
    m_pasteboard.contentToKeep = nullptr;
    // Files being written still belong to nobody: the next start sweeps them.
    m_writer.waitForDone();
}

void ClipboardHistoryDataModel::start() {
    m_changeCount = m_pasteboard.changeCount();
    m_shouldRecordHistory = true;
    connect(&m_pasteboard, &Pasteboard::changed, this, &ClipboardHistoryDataModel::tick);
    m_timer.start();
}

void ClipboardHistoryDataModel::tick() {
    // While history is off the change is left unseen, so it is recorded once history is on again.
    if (!m_preferences.local.clipboardHistoryEnabled())
        return;
    const qint64 count = m_pasteboard.changeCount();
    if (count == m_changeCount)
        return;
    if (m_shouldRecordHistory)
        capture();
    m_shouldRecordHistory = true;
    m_changeCount = count;
}

std::optional<ClipboardRecordBuilder::Source> ClipboardHistoryDataModel::source() const {
    const auto front = m_workspace.frontmostApplication();
    if (!front)
        return std::nullopt;
    ClipboardRecordBuilder::Source s;
    s.bundleId = front->application.id;
    s.bundleURL = front->application.fileURL;
    s.appName = front->application.name;
    s.windowTitle = front->windowTitle;
    if (!front->application.icon.isNull())
        s.iconPng = ClipboardImages::iconPng(front->application.icon, kSourceIconSize);
    return s;
}

bool ClipboardHistoryDataModel::isIgnored(const std::optional<QString>& bundleURL) const {
    if (!bundleURL)
        return false;
    const auto& ignored = m_preferences.clipboard.value().blacklistedAppURLs;
    return std::find(ignored.begin(), ignored.end(), *bundleURL) != ignored.end();
}

void ClipboardHistoryDataModel::capture() {
    m_newestIsOnClipboard = false;
    const auto from = source();
    if (!from)
        return;
    if (isIgnored(from->bundleURL))
        return;
    const auto items = m_pasteboard.items();
    if (items.empty())
        return;
    const int retention = m_preferences.clipboard.value().retention;
    auto records = ClipboardRecordBuilder::records(items, *from, m_nowMs(), retention);
    if (records.empty())
        return;
    m_newestIsOnClipboard = true;
    for (auto& r : records)
        prepare(std::move(r));
}

// Pictures are decoded and files looked at on the thumbnail worker; the record waits in line meanwhile.
void ClipboardHistoryDataModel::prepare(SimpleClipboardItem record) {
    auto pending = std::make_shared<Pending>();
    pending->record = std::move(record);
    m_pending.push_back(pending);
    decodeImages(pending);
}

void ClipboardHistoryDataModel::decodeImages(const std::shared_ptr<Pending>& pending) {
    const auto& payload = pending->record.inMemoryPayload;
    QList<QByteArray> images;
    if (payload)
        for (const QString& type : {PasteboardType::png, PasteboardType::jpeg, PasteboardType::tiff})
            if (const auto bytes = payload->get(type))
                images << *bytes;
    if (images.isEmpty() || !m_thumbnails) {
        describeFile(pending);
        return;
    }
    m_thumbnails->decodeImages(images, [this, pending](ThumbnailJob::DecodedImages decoded) {
        // A later rendering of the picture overwrites what an earlier one gave.
        for (const auto& image : decoded) {
            if (!image) {
                qCWarning(lcClipboard)
                    << "A copied image does not decode; it is kept without a size or thumbnail.";
                continue;
            }
            pending->record.width = image->width;
            pending->record.height = image->height;
            pending->record.thumbnailData = image->thumbnailPng;
        }
        describeFile(pending);
    });
}

void ClipboardHistoryDataModel::describeFile(const std::shared_ptr<Pending>& pending) {
    const QString path = pending->record.fileURL ? QUrl(*pending->record.fileURL).toLocalFile() : QString();
    if (path.isEmpty() || !m_thumbnails) {
        writeFiles(pending);
        return;
    }
    m_thumbnails->inspectFile(path, pending->record.thumbnailData.has_value(),
                              [this, pending](CopiedFileDetails details) {
                                  SimpleClipboardItem& r = pending->record;
                                  r.fileBytes = details.fileBytes;
                                  if (details.thumbnailPng) {
                                      r.thumbnailData = details.thumbnailPng;
                                      r.thumbnailIsIcon = details.thumbnailIsIcon;
                                      if (!details.thumbnailIsIcon) {
                                          r.width = details.width;
                                          r.height = details.height;
                                      }
                                  }
                                  writeFiles(pending);
                              });
}

// A copied picture can be tens of megabytes: its files are written on a worker, never on the main
// thread, and the row naming them is committed here once they are on disk.
void ClipboardHistoryDataModel::writeFiles(const std::shared_ptr<Pending>& pending) {
    QPointer<ClipboardHistoryDataModel> self(this);
    m_writer.start([self, pending, store = &m_store, record = pending->record] {
        QString error;
        auto files = store->writeFiles(record, &error);
        if (!files)
            qCWarning(lcClipboard).noquote() << "Error persisting a clipboard item:" << error;
        QMetaObject::invokeMethod(
            qApp,
            [self, pending, files = std::move(files)]() mutable {
                if (!self)
                    return;
                pending->files = std::move(files);
                pending->ready = true;
                self->persistReady();
            },
            Qt::QueuedConnection);
    });
}

// Records are stored in the order they were captured, each once its preparation is done.
void ClipboardHistoryDataModel::persistReady() {
    while (!m_pending.empty() && m_pending.front()->ready) {
        auto pending = m_pending.front();
        m_pending.pop_front();
        if (!pending->files) {
            emit persisted(pending->record, false);
            continue;
        }
        m_store.trim(1, m_preferences.clipboard.value().retention);
        const bool stored = m_store.persistItem(pending->record, *pending->files);
        emit persisted(pending->record, stored);
    }
}

std::vector<PasteboardItem> ClipboardHistoryDataModel::contentToKeep() const {
    if (!m_newestIsOnClipboard || !m_pending.empty())
        return {};
    const auto newest = m_store.mostRecent();
    if (!newest)
        return {};
    const auto whole = m_store.item(newest->id);
    return whole ? pasteboardItems(*whole) : std::vector<PasteboardItem>{};
}

} // namespace velmora
