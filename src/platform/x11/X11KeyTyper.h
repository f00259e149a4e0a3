#pragma once

#include "core/KeyboardShortcut.h"

#include <QString>
#include <optional>
#include <set>
#include <xcb/xcb.h>
#include <xcb/xcb_keysyms.h>

namespace velmora {

// Types chords through XTest on a connection it does not own, on that connection's thread. A key
// pressed through XTest stays down until it is released through XTest, so every press here is
// paired with its release.
class X11KeyTyper {
public:
    X11KeyTyper(xcb_connection_t* connection, xcb_key_symbols_t* symbols)
        : m_connection(connection), m_symbols(symbols) {}

    // The X key code of the chord's key in the current layout; absent when the layout lacks it.
    std::optional<xcb_keycode_t> keycodeOf(const KeyboardShortcut& chord) const;
    // Whether a key other than a modifier is down: a shortcut's key still held keeps the keyboard
    // grabbed by whoever took the shortcut, so typing now would reach that client, not the window.
    bool nonModifierKeyDown(const std::set<xcb_keycode_t>& modifierKeycodes);
    // Lets go of the modifier keys that are down now (the user still holding the shortcut that asked
    // for the typing). One round trip.
    void releaseHeldModifiers(const std::set<xcb_keycode_t>& modifierKeycodes);
    // Presses the chord's modifiers, then its key, and releases them in reverse order. False, with
    // the reason, when a key is missing from the layout; nothing is typed then.
    bool type(const KeyboardShortcut& chord, QString* error);

private:
    std::optional<xcb_keycode_t> keycodeOfKeysym(xcb_keysym_t keysym) const;
    void fake(std::uint8_t type, xcb_keycode_t keycode);

    xcb_connection_t* m_connection;
    xcb_key_symbols_t* m_symbols;
};

} // namespace velmora
