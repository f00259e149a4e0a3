#pragma once

#include "platform/FileThumbnails.h"

#include <QHash>
#include <QMutex>
#include <QMutexLocker>

namespace velmora {

// File pictures as a test sets them, per path; counts the calls. Safe to call from worker threads.
class FakeFileThumbnails final : public FileThumbnails {
public:
    void setContent(const QString& path, std::optional<FileThumbnail> thumbnail) {
        QMutexLocker lock(&mutex);
        contents[path] = std::move(thumbnail);
    }
    void setIcon(const QString& path, QImage icon) {
        QMutexLocker lock(&mutex);
        icons[path] = std::move(icon);
    }
    int contentCalls() const {
        QMutexLocker lock(&mutex);
        return contentCount;
    }
    int iconCalls() const {
        QMutexLocker lock(&mutex);
        return iconCount;
    }
    int lastTarget() const {
        QMutexLocker lock(&mutex);
        return target;
    }

    std::optional<FileThumbnail> contentThumbnail(const QString& path, int size) override {
        QMutexLocker lock(&mutex);
        ++contentCount;
        target = size;
        return contents.value(path);
    }
    QImage fileTypeIcon(const QString& path, int size) override {
        QMutexLocker lock(&mutex);
        ++iconCount;
        target = size;
        return icons.value(path);
    }

private:
    mutable QMutex mutex;
    QHash<QString, std::optional<FileThumbnail>> contents;
    QHash<QString, QImage> icons;
    int contentCount = 0;
    int iconCount = 0;
    int target = 0;
};

} // namespace velmora
