#pragma once

#include "core/KeyboardShortcut.h"

#include <QObject>
#include <QString>
#include <QTimer>
#include <functional>
#include <optional>

namespace velmora {

class InputTap;
class Workspace;
struct FocusedWindow;

// Types the paste chord into the window the user works in, once it has the keyboard again. The
// history window gives the focus back when it closes, which takes the window manager a moment: the
// chord waits for it (never blocking), because typed into the wrong window it would do harm there.
// Terminals take Ctrl+Shift+V, everything else Ctrl+V.
class ClipboardPaster : public QObject {
    Q_OBJECT
public:
    static constexpr int kPollMs = 10;
    static constexpr int kFocusWaitMs = 1000;

    // ownWindowFocused: whether one of the agent's own windows still has the keyboard.
    ClipboardPaster(InputTap& tap, Workspace& workspace, std::function<bool()> ownWindowFocused,
                    QObject* parent = nullptr);

    // Pastes into `target` once it is focused again, or without a target into whichever window has
    // the focus once the agent's own windows let go of it. A paste asked while one waits replaces it.
    void paste(std::optional<quint32> target);
    // Whether what was just written to the clipboard is not in effect yet: the chord waits for it,
    // or the target would paste what was there before.
    std::function<bool()> clipboardPending;
    bool isWaiting() const { return m_timer.isActive(); }

    static bool isTerminal(const FocusedWindow& window);
    static KeyboardShortcut chordFor(const FocusedWindow& window);

signals:
    // sent: the chord went out; otherwise reason says why nothing was typed.
    void finished(bool sent, const QString& reason);

private:
    void poll();
    void finish(bool sent, const QString& reason);

    InputTap& m_tap;
    Workspace& m_workspace;
    std::function<bool()> m_ownWindowFocused;
    QTimer m_timer;
    std::optional<quint32> m_target;
    int m_waitedMs = 0;
};

} // namespace velmora
