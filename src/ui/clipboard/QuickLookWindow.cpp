#include "ui/clipboard/QuickLookWindow.h"

#include "ui/clipboard/QuickLookPlacement.h"

#include <QKeyEvent>
#include <QVBoxLayout>

namespace velmora {

QuickLookWindow::QuickLookWindow()
    : QWidget(nullptr, Qt::Tool | Qt::WindowDoesNotAcceptFocus | Qt::WindowStaysOnTopHint) {
    setObjectName("quickLookWindow");
    setAttribute(Qt::WA_ShowWithoutActivating);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
}

void QuickLookWindow::setContent(QWidget* view, const QString& title, QSize preferredSize) {
    clearContent();
    m_content = view;
    m_preferredSize = preferredSize;
    layout()->addWidget(view);
    // Now, not at the next turn of the event loop as for a view added to a visible window, so that the
    // window is sized to it.
    view->show();
    setWindowTitle(title);
}

void QuickLookWindow::clearContent() {
    if (!m_content)
        return;
    layout()->removeWidget(m_content);
    m_content->hide();
    m_content->setParent(nullptr);
    // Later: a view may be replaced from a slot its own signal runs.
    m_content->deleteLater();
    m_content = nullptr;
}

void QuickLookWindow::fitBeside(const QRect& anchor, const QRect& available, QSize maxSize) {
    // A view that has just changed (a frame arrived) has only posted its new size hint: take it now.
    if (m_content)
        m_content->updateGeometry();
    layout()->activate();
    const QSize wanted = m_preferredSize.isValid() ? m_preferredSize : sizeHint();
    const QSize size = wanted.boundedTo(maxSize).expandedTo(minimumSizeHint().boundedTo(maxSize));
    // The window manager's title bar and borders, known once the window has been shown.
    const QSize decoration = frameGeometry().size() - geometry().size();
    const QRect frame = QuickLookPlacement::frameBeside(size + decoration, anchor, available);
    resize(frame.size() - decoration);
    move(frame.topLeft());
}

void QuickLookWindow::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape && event->modifiers() == Qt::NoModifier) {
        close();
        return;
    }
    QWidget::keyPressEvent(event);
}

void QuickLookWindow::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    if (!event->spontaneous()) // a window manager's restore of a minimised window changes nothing here
        emit visibilityChanged(true);
}

void QuickLookWindow::hideEvent(QHideEvent* event) {
    QWidget::hideEvent(event);
    if (!event->spontaneous())
        emit visibilityChanged(false);
}

} // namespace velmora
