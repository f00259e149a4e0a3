#pragma once

#include "core/KeyboardShortcut.h"
#include "core/TapEvent.h"
#include "platform/InputTap.h"

#include <QByteArray>
#include <QString>
#include <atomic>
#include <chrono>
#include <functional>
#include <mutex>
#include <optional>
#include <set>
#include <thread>
#include <utility>
#include <vector>
#include <xcb/xcb.h>
#include <xcb/xcb_keysyms.h>

namespace velmora {

// The input tap's own X connection and thread. It observes every key and the left mouse button
// through XInput2 raw events and XKB state, and holds the swallowable chords with synchronous
// passive grabs: while such a grab waits for the verdict every keyboard is frozen, so the verdict is
// awaited for at most 200 ms, then the key passes and the tap counts as disabled by time-out.
class X11TapWorker {
public:
    static constexpr int kVerdictTimeoutMs = 200;

    struct Delegate {
        // Hands an event to the main thread; with a verdict wanted, blocks until the answer or the timeout.
        std::function<std::optional<TapVerdict>(const TapEvent&, bool wantVerdict)> deliver;
        std::function<void(std::vector<RefusedChord>)> refused;
    };

    X11TapWorker(QByteArray display, Delegate delegate);
    ~X11TapWorker();

    // Connects and starts the thread; false (with the reason) when the X server cannot be used.
    bool start(QString* error);
    InputTap::State state() const { return m_state.load(); }

    // Makes a tap that was disabled by time-out active again, on the same connection and thread.
    void renew();
    void setChords(std::vector<KeyboardShortcut> chords);
    void setKeyboardGrabbed(bool grabbed);
    // Types the chord on this thread (see InputTap::postKeyChord).
    void postChord(const KeyboardShortcut& chord);

private:
    struct Grab {
        xcb_keycode_t keycode;
        std::uint16_t mods;
        bool operator<(const Grab& o) const {
            return std::pair(keycode, mods) < std::pair(o.keycode, o.mods);
        }
    };

    void run();
    void wake();
    void applyPendingCommands();
    void handle(xcb_generic_event_t* event);
    void handleGrabbedKeyPress(const xcb_key_press_event_t* event);
    void handleXInput(const xcb_ge_generic_event_t* event);
    void handleModifierState(std::uint16_t mods);

    bool selectEvents(QString* error);
    void readModifierMapping();
    void regrab();
    void ungrabAll();
    void tryKeyboardGrab();
    bool isModifierKey(xcb_keycode_t keycode) const;
    std::optional<std::uint16_t> virtualKeyCode(xcb_keycode_t keycode) const;
    std::uint16_t xModifiers(const KeyboardShortcut& chord) const;
    std::uint64_t flagsFromX(std::uint16_t state) const;
    void disableByTimeout();
    void typeChord(const KeyboardShortcut& chord);
    void typeWhenKeysAreUp();
    bool isOwnTyping(xcb_keycode_t keycode, bool consume);

    QByteArray m_display;
    Delegate m_delegate;
    xcb_connection_t* m_connection = nullptr;
    xcb_window_t m_root = 0;
    xcb_key_symbols_t* m_symbols = nullptr;
    std::uint8_t m_xinputOpcode = 0;
    std::uint8_t m_xkbEventBase = 0;
    std::uint16_t m_numLockMask = 0;
    std::uint16_t m_modState = 0;
    std::set<xcb_keycode_t> m_modifierKeycodes;
    bool m_button1Down = false;
    bool m_keyboardGrabActive = false;
    std::set<Grab> m_grabs;
    // The key of the chord typed last and until when its events are the agent's own, not the user's:
    // they pass through every grab untouched and are not reported.
    std::optional<xcb_keycode_t> m_typedKey;
    std::chrono::steady_clock::time_point m_typedUntil;
    int m_typedPressesLeft = 0;
    bool m_typedThroughGrab = false;
    // Chords waiting for the user to let go of the shortcut's key, and how long they may wait.
    std::vector<KeyboardShortcut> m_typingQueue;
    std::chrono::steady_clock::time_point m_typingDeadline;

    std::thread m_thread;
    int m_wakeFd = -1;
    std::atomic<bool> m_stop{false};
    std::atomic<InputTap::State> m_state{InputTap::State::none};

    std::mutex m_mutex; // guards the pending commands below
    std::optional<std::vector<KeyboardShortcut>> m_pendingChords;
    std::optional<bool> m_pendingKeyboardGrab;
    bool m_pendingRenew = false;
    std::vector<KeyboardShortcut> m_pendingTyping;
    std::vector<KeyboardShortcut> m_chords;
    bool m_wantKeyboardGrab = false;
};

} // namespace velmora
