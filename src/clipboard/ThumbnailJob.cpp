#include "clipboard/ThumbnailJob.h"

#include "clipboard/ClipboardLog.h"
#include "core/MainThread.h"

#include <QFileInfo>
#include <QMetaObject>
#include <QStringList>

namespace velmora {

namespace {

const QStringList contentExtensions = {
    // videos
    "mp4", "mov", "avi", "mkv", "flv", "wmv", "m4v", "webm", "mpeg", "mpg", "3gp", "3g2", "ogg", "ogv",
    // images
    "jpg", "jpeg", "png", "gif", "bmp", "tiff", "tif", "webp", "heic", "heif", "svg", "ico"};

} // namespace

ThumbnailJob::ThumbnailJob(FileThumbnails& thumbnails, QObject* parent)
    : QObject(parent), thumbnails(thumbnails) {
    pool.setMaxThreadCount(1);
}

ThumbnailJob::~ThumbnailJob() {
    pool.clear();
    pool.waitForDone();
}

bool ThumbnailJob::showsContent(const QString& path) {
    return contentExtensions.contains(QFileInfo(path).suffix().toLower());
}

template <typename Result>
void ThumbnailJob::start(std::function<Result()> work, std::function<void(Result)> deliver) {
    // The job outlives every task (its destructor waits), so the worker may post back to it; a result
    // posted while the job is being destroyed is discarded with it.
    pool.start([this, work = std::move(work), deliver = std::move(deliver)] {
        QMetaObject::invokeMethod(
            this, [deliver, result = work()]() mutable { deliver(std::move(result)); }, Qt::QueuedConnection);
    });
}

void ThumbnailJob::inspectFile(const QString& path, bool hasThumbnail,
                               std::function<void(CopiedFileDetails)> done) {
    assertMainThread("ThumbnailJob::inspectFile");
    start<CopiedFileDetails>([this, path] { return inspectOffMainThread(path); },
                             [this, path, hasThumbnail, done](CopiedFileDetails details) {
                                 // The icon theme may only be used on the main thread.
                                 if (!showsContent(path) && !hasThumbnail)
                                     addFileTypeIcon(details, path);
                                 done(std::move(details));
                             });
}

void ThumbnailJob::decodeImages(QList<QByteArray> images, std::function<void(DecodedImages)> done) {
    assertMainThread("ThumbnailJob::decodeImages");
    start<DecodedImages>(
        [images] {
            DecodedImages decoded;
            for (const QByteArray& bytes : images)
                decoded.push_back(ClipboardImages::decodeImageData(bytes));
            return decoded;
        },
        std::move(done));
}

CopiedFileDetails ThumbnailJob::inspectOffMainThread(const QString& path) {
    CopiedFileDetails details;
    const QFileInfo info(path);
    if (!info.exists()) {
        qCWarning(lcClipboard).noquote() << "The copied file" << path << "cannot be found; its size is 0";
        return details;
    }
    details.fileBytes = info.size();
    if (!showsContent(path))
        return details;
    const auto thumbnail = thumbnails.contentThumbnail(path, fileTarget);
    if (!thumbnail)
        return details; // the platform said why
    details.thumbnailPng =
        ClipboardImages::pngData(ClipboardImages::scaledToLongerSide(thumbnail->image, fileTarget));
    if (!details.thumbnailPng)
        return details;
    const QSize natural = thumbnail->naturalSize.isEmpty() ? thumbnail->image.size() : thumbnail->naturalSize;
    details.width = natural.width();
    details.height = natural.height();
    return details;
}

void ThumbnailJob::addFileTypeIcon(CopiedFileDetails& details, const QString& path) {
    const QByteArray png = ClipboardImages::iconPng(thumbnails.fileTypeIcon(path, fileTarget), fileTarget);
    if (png.isEmpty())
        return;
    details.thumbnailPng = png;
    details.thumbnailIsIcon = true;
}

} // namespace velmora
