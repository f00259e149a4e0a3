#include "clipboard/ClipboardPaster.h"

#include "clipboard/ClipboardLog.h"
#include "platform/InputTap.h"
#include "platform/Workspace.h"

#include <QSet>

namespace velmora {

namespace {

constexpr std::uint16_t kKeyV = 9;

// WM_CLASS names (instance or class, lower-cased) of terminal emulators, where Ctrl+V is a control
// character for the program inside and the paste is Ctrl+Shift+V.
const QSet<QString>& terminalClasses() {
    static const QSet<QString> names = {
        "xterm",
        "uxterm",
        "urxvt",
        "rxvt",
        "kitty",
        "alacritty",
        "foot",
        "footclient",
        "konsole",
        "gnome-terminal",
        "gnome-terminal-server",
        "org.gnome.terminal",
        "org.gnome.console",
        "kgx",
        "xfce4-terminal",
        "tilix",
        "terminator",
        "wezterm",
        "org.wezfurlong.wezterm",
        "st",
        "st-256color",
        "lxterminal",
        "mate-terminal",
        "qterminal",
        "terminology",
        "sakura",
        "guake",
        "tilda",
        "yakuake",
        "cool-retro-term",
        "eterm",
        "ghostty",
        "com.mitchellh.ghostty",
        "ptyxis",
        "org.gnome.ptyxis",
        "blackbox",
        "com.raggesilver.blackbox",
        "deepin-terminal",
        "terminix",
        "hyper",
        "tabby",
        "contour",
        "roxterm",
        "cutefish-terminal",
    };
    return names;
}

} // namespace

ClipboardPaster::ClipboardPaster(InputTap& tap, Workspace& workspace, std::function<bool()> ownWindowFocused,
                                 QObject* parent)
    : QObject(parent), m_tap(tap), m_workspace(workspace), m_ownWindowFocused(std::move(ownWindowFocused)) {
    m_timer.setInterval(kPollMs);
    connect(&m_timer, &QTimer::timeout, this, &ClipboardPaster::poll);
}

bool ClipboardPaster::isTerminal(const FocusedWindow& window) {
    return terminalClasses().contains(window.className.toLower()) ||
           terminalClasses().contains(window.instanceName.toLower());
}

KeyboardShortcut ClipboardPaster::chordFor(const FocusedWindow& window) {
    KeyboardShortcut chord;
    chord.command = true; // Ctrl on this desktop
    chord.shift = isTerminal(window);
    chord.keyCode = kKeyV;
    return chord;
}

void ClipboardPaster::paste(std::optional<quint32> target) {
    if (m_timer.isActive())
        qCInfo(lcClipboard) << "A newer paste replaces the one still waiting for its window.";
    m_target = target;
    m_waitedMs = 0;
    m_timer.start();
    poll(); // often the focus is already where it belongs
}

void ClipboardPaster::poll() {
    const auto focused = m_workspace.focusedWindow();
    const bool ours = m_ownWindowFocused && m_ownWindowFocused();
    const bool pending = clipboardPending && clipboardPending();
    const bool ready = focused && !ours && (!m_target || focused->id == *m_target) && !pending;
    if (ready) {
        if (!m_tap.postKeyChord(chordFor(*focused)))
            finish(false, "this desktop does not let the agent type");
        else
            finish(true, {});
        return;
    }
    m_waitedMs += kPollMs;
    if (m_waitedMs < kFocusWaitMs)
        return;
    if (pending)
        finish(false, "the clipboard was not taken in time");
    else if (!focused)
        finish(false, "no window has the keyboard focus");
    else if (ours)
        finish(false, "a Velmora window kept the keyboard focus");
    else
        finish(false, "the window to paste into did not get the keyboard focus back");
}

void ClipboardPaster::finish(bool sent, const QString& reason) {
    m_timer.stop();
    if (!sent)
        qCWarning(lcClipboard).noquote()
            << "Nothing was pasted:" << reason << "- the entry is on the clipboard, paste it by hand.";
    emit finished(sent, reason);
}

} // namespace velmora
