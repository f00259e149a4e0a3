#pragma once

#include <QImage>
#include <QSize>
#include <QString>

#include <optional>

namespace velmora {

// A picture of a file's content and the content's natural size.
struct FileThumbnail {
    QImage image;
    QSize naturalSize;
};

// Pictures of files as the desktop makes them. contentThumbnail() may take long (a video is opened, a
// PDF rendered): call it off the main thread. fileTypeIcon() reads the icon theme, whose caches belong
// to the main thread: call it there.
class FileThumbnails {
public:
    virtual ~FileThumbnails() = default;

    // The content of an image, video or PDF file, scaled to fit target x target; nothing when the file
    // cannot be read or decoded.
    virtual std::optional<FileThumbnail> contentThumbnail(const QString& path, int target) = 0;
    // The icon the desktop shows for the file's type, about size x size; a null image when none.
    virtual QImage fileTypeIcon(const QString& path, int size) = 0;
};

} // namespace velmora
