#include "app/StandardWindowController.h"

#include "core/MainThread.h"

#include <QTimer>
#include <QVBoxLayout>

namespace velmora {

bool defaultCloseOnEvent(const KeyEvent& event) {
    return event.has(ModifierMask::Command) && event.characters == "w";
}

bool dropDownCloseOnEvent(const KeyEvent& event) {
    return defaultCloseOnEvent(event) || event.keyCode == KeyCode::Escape;
}

StandardWindowPreset StandardWindowPreset::dropDownPanel() {
    return {32897, true, false, 0x20002, 3, false, true, dropDownCloseOnEvent};
}

StandardWindowPreset StandardWindowPreset::welcomeWindow() {
    return {32768, false, false, 6, 0, true, false, defaultCloseOnEvent};
}

StandardWindowController::StandardWindowController(const KeyboardLayout& layout, std::optional<QString> title,
                                                   StandardWindowPreset preset, ContentFactory content,
                                                   QObject* parent)
    : QObject(parent), m_layout(layout), m_title(std::move(title)), m_preset(std::move(preset)),
      m_content(std::move(content)) {}

StandardWindowController::~StandardWindowController() {
    if (m_keepPanel && m_window) // nothing else owns a kept panel
        delete m_window.data();
}

void StandardWindowController::show(std::optional<Rect> frame) {
    assertMainThread("StandardWindowController::show");
    if (!m_window)
        createWindow();
    if (frame)
        m_window->setGeometry(frame->toQRectF().toRect());
    m_window->show();
    m_window->raise();
    m_window->activateWindow();
}

void StandardWindowController::close() {
    assertMainThread("StandardWindowController::close");
    if (!m_window)
        return;
    if (!m_keepPanel) {
        m_window->close();
        return;
    }
    if (!m_window->isVisible())
        return;
    m_lastFrame = Rect::fromQRect(m_window->geometry());
    m_window->hide();
    if (onClose)
        onClose();
}

void StandardWindowController::createWindow() {
    // Floating panels stay above normal windows and out of the task bar; all panels hide the title bar.
    Qt::WindowFlags flags = Qt::FramelessWindowHint;
    if (m_preset.isFloatingPanel || m_preset.level > 0)
        flags |= Qt::Tool | Qt::WindowStaysOnTopHint;
    else
        flags |= Qt::Window;
    if (!m_preset.hasShadow)
        flags |= Qt::NoDropShadowWindowHint;

    m_window = new StandardWindow(m_layout, flags, m_preset.isMovableByWindowBackground);
    if (m_title)
        m_window->setWindowTitle(*m_title);
    auto* layout = new QVBoxLayout(m_window);
    layout->setContentsMargins(0, 0, 0, 0);
    if (m_content)
        layout->addWidget(m_content());

    m_window->onKeyDown = [this](const KeyEvent& e) {
        if (m_preset.closeOnEvent && m_preset.closeOnEvent(e))
            close();
    };
    connect(m_window, &StandardWindow::resignedKey, this, [this] {
        // Closing from inside the deactivation would tear the window down under its own event.
        if (m_preset.closeOnResignKey)
            QTimer::singleShot(0, this, &StandardWindowController::close);
    });
    connect(m_window, &StandardWindow::closing, this, &StandardWindowController::windowWillClose);
}

void StandardWindowController::windowWillClose() {
    if (m_window)
        m_lastFrame = Rect::fromQRect(m_window->geometry());
    m_window = nullptr; // deleted by Qt on close
    if (onClose)
        onClose();
}

} // namespace velmora
