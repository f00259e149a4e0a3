#pragma once

#include "clipboard/ClipboardImages.h"
#include "platform/FileThumbnails.h"

#include <QByteArray>
#include <QList>
#include <QObject>
#include <QString>
#include <QThreadPool>

#include <functional>
#include <optional>
#include <vector>

namespace velmora {

// What a history record learns about the file it points to: its size and its picture.
struct CopiedFileDetails {
    qint64 fileBytes = 0; // 0 when the file's attributes cannot be read
    std::optional<QByteArray> thumbnailPng;
    bool thumbnailIsIcon = false;
    int width = 0; // natural size of the content; 0 for icons
    int height = 0;
};

// Makes the pictures of captured records off the main thread: a copied file's size and thumbnail, and
// the decoding of pasted image data (a 50 MB image must not stall the main thread).
//
// One worker thread serves all requests in the order they were made, so results arrive on the main
// thread in start order, and at most one large image is decoded at a time. Destroying the job drops the
// requests not yet started and waits for the running one; no callback runs after that. The
// FileThumbnails given must outlive the job.
class ThumbnailJob final : public QObject {
    Q_OBJECT
public:
    // File content thumbnails are as large as those of pasted images, so that a copied image file and
    // the same image copied as data look alike in the history.
    static constexpr int fileTarget = ClipboardImages::thumbnailTarget;

    explicit ThumbnailJob(FileThumbnails& thumbnails, QObject* parent = nullptr);
    ~ThumbnailJob() override;

    // Whether the path names an image or video file, whose content becomes its thumbnail.
    static bool showsContent(const QString& path);

    // The size and picture of a copied file: for image and video files a content thumbnail (with the
    // content's natural size), for other files the file type icon unless the record has a thumbnail
    // already. done runs on the main thread.
    void inspectFile(const QString& path, bool hasThumbnail, std::function<void(CopiedFileDetails)> done);

    // Decodes pasted image data, one result per input in input order (nothing for data that does not
    // decode). done runs on the main thread.
    using DecodedImages = std::vector<std::optional<ClipboardImages::DecodedImage>>;
    void decodeImages(QList<QByteArray> images, std::function<void(DecodedImages)> done);

private:
    CopiedFileDetails inspectOffMainThread(const QString& path);
    void addFileTypeIcon(CopiedFileDetails& details, const QString& path);

    template <typename Result> void start(std::function<Result()> work, std::function<void(Result)> deliver);

    FileThumbnails& thumbnails;
    QThreadPool pool;
};

} // namespace velmora
