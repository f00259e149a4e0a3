#pragma once

#include "clipboard/SimpleClipboardItem.h"
#include "platform/FileThumbnails.h"

#include <QSize>
#include <QString>

class QThreadPool;
class QWidget;

namespace velmora {

// The view the preview window shows for one history entry, and how the window calls itself.
struct QuickLookContent {
    QWidget* view = nullptr; // no parent; whoever asked owns it
    QString title;
    QSize preferredSize; // invalid: the view's size hint
};

// Chooses and builds the view for an entry: a file by its type (image, video, PDF, text, anything
// else), else the entry's own data (image, HTML, plain text, URL), else a short message.
class QuickLookContentFactory {
public:
    // Text beyond this many bytes is not shown (a log file copied from a file manager can be huge).
    static constexpr qint64 textLimit = 1024 * 1024;
    // The icon of a file shown by type is asked this large.
    static constexpr int iconSize = 128;

    // thumbnails may be null (then videos are not shown and files get no icon); it and the pool must
    // outlive the views made. maxSize is the room for a view: images are scaled down to fit it.
    QuickLookContentFactory(FileThumbnails* thumbnails, QThreadPool& pool, QSize maxSize);

    QuickLookContent make(const SimpleClipboardItem& item) const;

private:
    QuickLookContent forFile(const QString& path) const;
    QuickLookContent forData(const SimpleClipboardItem& item) const;
    QWidget* imageFile(const QString& path) const;
    QWidget* videoFile(const QString& path) const;
    QWidget* pdfFile(const QString& path, QSize* preferredSize) const;
    QWidget* textFile(const QString& path) const;
    QWidget* otherFile(const QString& path) const;
    QWidget* imageData(const SimpleClipboardPayload& payload) const;

    FileThumbnails* m_thumbnails;
    QThreadPool& m_pool;
    QSize m_maxSize;
};

} // namespace velmora
