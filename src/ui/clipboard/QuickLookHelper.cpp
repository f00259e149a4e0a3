#include "ui/clipboard/QuickLookHelper.h"

#include "ui/clipboard/QuickLookContentFactory.h"
#include "ui/clipboard/QuickLookVideoView.h"
#include "ui/clipboard/QuickLookWindow.h"

#include <QGuiApplication>
#include <QScreen>
#include <QTimer>

namespace velmora {

namespace {

// The share of the screen's free area a preview may cover.
constexpr double kScreenShare = 0.85;

} // namespace

QuickLookHelper::QuickLookHelper(FileThumbnails* thumbnails, QObject* parent)
    : QObject(parent), m_thumbnails(thumbnails), m_window(std::make_unique<QuickLookWindow>()) {
    // One preview loads at a time; a frame asked for an entry no longer shown only delays the next.
    m_pool.setMaxThreadCount(1);
    connect(m_window.get(), &QuickLookWindow::visibilityChanged, this, [this](bool visible) {
        if (!visible)
            m_window->clearContent();
        emit visibilityChanged(visible);
    });
}

QuickLookHelper::~QuickLookHelper() {
    // The window hides as it goes; nobody is to hear of it from a helper being destroyed.
    m_window->disconnect(this);
}

void QuickLookHelper::toggle(const SimpleClipboardItem& item) {
    m_fileURL = item.fileURL;
    if (isVisible()) {
        close();
        return;
    }
    show(item);
}

void QuickLookHelper::show(const SimpleClipboardItem& item) {
    m_fileURL = item.fileURL;
    const QuickLookContentFactory factory(m_thumbnails, m_pool, roomForContent());
    const QuickLookContent content = factory.make(item);
    m_window->setContent(content.view, content.title, content.preferredSize);
    if (auto* video = qobject_cast<QuickLookVideoView*>(content.view))
        connect(video, &QuickLookVideoView::finished, this, &QuickLookHelper::fit);
    fit();
    m_window->show();
    m_window->raise();
    // Once shown, the window manager's frame and the content's final size are known: place it again.
    QTimer::singleShot(0, this, [this] {
        if (isVisible())
            fit();
    });
}

void QuickLookHelper::close() {
    m_window->hide();
}

bool QuickLookHelper::isVisible() const {
    return m_window->isVisible();
}

QWidget* QuickLookHelper::window() const {
    return m_window.get();
}

void QuickLookHelper::setAnchor(const QRect& panelFrame) {
    m_anchor = panelFrame;
    if (isVisible())
        fit();
}

QScreen* QuickLookHelper::screen() const {
    QScreen* screen = m_anchor.isEmpty() ? nullptr : QGuiApplication::screenAt(m_anchor.center());
    return screen ? screen : QGuiApplication::primaryScreen();
}

QSize QuickLookHelper::roomForContent() const {
    const QScreen* on = screen();
    const QSize available = on ? on->availableGeometry().size() : QSize(1024, 768);
    return (QSizeF(available) * kScreenShare).toSize();
}

void QuickLookHelper::fit() {
    const QScreen* on = screen();
    const QRect available = on ? on->availableGeometry() : QRect(0, 0, 1024, 768);
    m_window->fitBeside(m_anchor, available, roomForContent());
}

} // namespace velmora
