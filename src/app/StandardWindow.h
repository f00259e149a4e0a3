#pragma once

#include "core/KeyEvent.h"

#include <QWidget>
#include <functional>

namespace velmora {

class KeyboardLayout;

// The borderless panel every StandardWindowController shows. Key presses are handed to onKeyDown as
// the system's key events; losing the active state is announced so the owner can close it.
class StandardWindow : public QWidget {
    Q_OBJECT
public:
    StandardWindow(const KeyboardLayout& layout, Qt::WindowFlags flags, bool movableByBackground);

    std::function<void(const KeyEvent&)> onKeyDown;

signals:
    void resignedKey();
    void closing();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    bool event(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    const KeyboardLayout& m_layout;
    bool m_movableByBackground;
};

} // namespace velmora
