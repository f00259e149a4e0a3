#include "app/StandardWindow.h"

#include "platform/KeyboardLayout.h"

#include <QKeyEvent>
#include <QWindow>

namespace velmora {

StandardWindow::StandardWindow(const KeyboardLayout& layout, Qt::WindowFlags flags, bool movableByBackground)
    : QWidget(nullptr, flags), m_layout(layout), m_movableByBackground(movableByBackground) {
    setAttribute(Qt::WA_DeleteOnClose);
}

void StandardWindow::keyPressEvent(QKeyEvent* event) {
    if (onKeyDown)
        onKeyDown(m_layout.translate(*event));
    event->accept();
}

void StandardWindow::mousePressEvent(QMouseEvent* event) {
    if (m_movableByBackground && event->button() == Qt::LeftButton && windowHandle())
        windowHandle()->startSystemMove();
    QWidget::mousePressEvent(event);
}

bool StandardWindow::event(QEvent* event) {
    if (event->type() == QEvent::WindowDeactivate)
        emit resignedKey();
    return QWidget::event(event);
}

void StandardWindow::closeEvent(QCloseEvent* event) {
    emit closing();
    QWidget::closeEvent(event);
}

} // namespace velmora
