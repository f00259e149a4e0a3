#pragma once

#include "platform/FileThumbnails.h"

namespace velmora {

// File pictures on a Linux desktop: images through Qt's image readers, videos through
// ffmpegthumbnailer (with libavformat for the natural size), PDF files through QtPdf, file type icons
// from the icon theme.
//
// contentThumbnail() is reentrant and meant for worker threads. fileTypeIcon() is main thread only:
// Qt's icon theme loader keeps unguarded caches, so off the main thread it warns and gives a null image.
class LinuxFileThumbnails final : public FileThumbnails {
public:
    std::optional<FileThumbnail> contentThumbnail(const QString& path, int target) override;
    QImage fileTypeIcon(const QString& path, int size) override;
};

} // namespace velmora
