#pragma once

#include "clipboard/SimpleClipboardItem.h"
#include "platform/FileThumbnails.h"

#include <QObject>
#include <QRect>
#include <QThreadPool>

#include <memory>
#include <optional>

class QScreen;
class QWidget;

namespace velmora {

class QuickLookWindow;

// The process-wide preview of one history entry: a window beside the history panel showing the entry
// at full size (a picture, a video's first frame, a PDF's pages, text, a page of HTML, a file's icon).
// It never takes the keyboard from the panel, so the key that opened it closes it again. Main thread.
class QuickLookHelper : public QObject {
    Q_OBJECT
public:
    // thumbnails makes video frames and file icons; it must outlive the helper. May be null.
    explicit QuickLookHelper(FileThumbnails* thumbnails, QObject* parent = nullptr);
    ~QuickLookHelper() override;

    // Shows the entry (a full record, payload included), or hides the preview when it is visible
    // already. fileURL() becomes the entry's file either way.
    void toggle(const SimpleClipboardItem& item);
    // Shows the entry, in place of the one shown if the preview is visible (the selection moved).
    void show(const SimpleClipboardItem& item);
    void close();
    bool isVisible() const;

    // The file of the entry last given, if it has one.
    std::optional<QString> fileURL() const { return m_fileURL; }
    QWidget* window() const;

    // Where the history panel stands (global coordinates): the preview appears beside it, on its screen.
    // A visible preview moves along.
    void setAnchor(const QRect& panelFrame);

signals:
    void visibilityChanged(bool visible);

private:
    QScreen* screen() const;
    QSize roomForContent() const;
    void fit();

    FileThumbnails* m_thumbnails;
    QThreadPool m_pool; // before the window: views still loading are gone before the pool is waited for
    std::unique_ptr<QuickLookWindow> m_window;
    std::optional<QString> m_fileURL;
    QRect m_anchor;
};

} // namespace velmora
