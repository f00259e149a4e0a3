#pragma once

#include "app/StandardWindow.h"
#include "core/Rect.h"

#include <QPointer>
#include <functional>
#include <optional>

namespace velmora {

class KeyboardLayout;

// Whether a key event closes a panel: Command+"w" always (Ctrl+W on Linux; with Shift the
// characters are "W" and the panel stays), Escape as well for the drop-down panel.
bool defaultCloseOnEvent(const KeyEvent& event);
bool dropDownCloseOnEvent(const KeyEvent& event);

// How a panel looks and behaves, named after the window-style values every platform shares.
struct StandardWindowPreset {
    std::uint64_t styleMask = 0;
    bool isFloatingPanel = false;
    bool hasShadow = false;
    std::uint64_t collectionBehavior = 0;
    int level = 0;
    bool isMovableByWindowBackground = false;
    bool closeOnResignKey = false;
    std::function<bool(const KeyEvent&)> closeOnEvent = defaultCloseOnEvent;

    static StandardWindowPreset dropDownPanel();
    static StandardWindowPreset welcomeWindow();
};

// Owns one panel: creates it on first show, drops it on every close, remembers its last frame. A
// panel that opens often and must appear at once can instead be kept (hidden) between closes.
class StandardWindowController : public QObject {
    Q_OBJECT
public:
    using ContentFactory = std::function<QWidget*()>;

    StandardWindowController(const KeyboardLayout& layout, std::optional<QString> title,
                             StandardWindowPreset preset, ContentFactory content, QObject* parent = nullptr);
    ~StandardWindowController() override;

    // Creates the panel if needed, sets its frame (top-left space) when one is given, brings it to the
    // front and gives it the keyboard.
    void show(std::optional<Rect> frame = std::nullopt);
    void close();
    bool isShown() const { return m_window && m_window->isVisible(); }
    // From now on a close hides the panel and the next show brings the same one back, with its
    // content as it was left: no new window, no new backing store to fault in.
    void keepPanelWhenClosed() { m_keepPanel = true; }

    StandardWindow* window() const { return m_window; }
    const StandardWindowPreset& preset() const { return m_preset; }
    std::optional<Rect> lastFrame() const { return m_lastFrame; } // top-left space

    std::function<void()> onClose;

private:
    void createWindow();
    void windowWillClose();

    const KeyboardLayout& m_layout;
    std::optional<QString> m_title;
    StandardWindowPreset m_preset;
    ContentFactory m_content;
    QPointer<StandardWindow> m_window;
    std::optional<Rect> m_lastFrame;
    bool m_keepPanel = false;
};

} // namespace velmora
