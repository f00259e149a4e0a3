#pragma once

#include "platform/FileThumbnails.h"

#include <QFutureWatcher>
#include <QWidget>

#include <optional>

class QLabel;
class QThreadPool;

namespace velmora {

// A video file as its first frame with its natural size under it and a button that opens it. The frame
// is made on the pool's thread (a video must be opened and decoded); "Loading…" shows meanwhile.
class QuickLookVideoView final : public QWidget {
    Q_OBJECT
public:
    // Frames are asked this large; the natural size is shown as it is.
    static constexpr int frameTarget = 1280;

    // The thumbnails and the pool must outlive the frame's making, not the view: a view closed before
    // its frame came drops the frame.
    QuickLookVideoView(const QString& path, FileThumbnails& thumbnails, QThreadPool& pool, QSize maxSize,
                       QWidget* parent = nullptr);

signals:
    // The frame, or the message that there is none, is shown.
    void finished();

private:
    void present(const std::optional<FileThumbnail>& thumbnail);

    QString m_path;
    QSize m_maxSize;
    QLabel* m_loading;
    QFutureWatcher<std::optional<FileThumbnail>> m_watcher;
};

} // namespace velmora
