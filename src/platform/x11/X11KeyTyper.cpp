#include "platform/x11/X11KeyTyper.h"

#include "platform/x11/KeySymMap.h"
#include "platform/x11/XcbPtr.h"

#include <vector>
#include <xcb/xtest.h>
#include <xkbcommon/xkbcommon-keysyms.h>

namespace velmora {

std::optional<xcb_keycode_t> X11KeyTyper::keycodeOfKeysym(xcb_keysym_t keysym) const {
    XcbPtr<xcb_keycode_t> codes(xcb_key_symbols_get_keycode(m_symbols, keysym));
    if (!codes || codes.get()[0] == XCB_NO_SYMBOL)
        return std::nullopt;
    return codes.get()[0];
}

std::optional<xcb_keycode_t> X11KeyTyper::keycodeOf(const KeyboardShortcut& chord) const {
    const auto keysym = keysymForVirtualKeyCode(chord.keyCode);
    return keysym ? keycodeOfKeysym(*keysym) : std::nullopt;
}

void X11KeyTyper::fake(std::uint8_t type, xcb_keycode_t keycode) {
    xcb_test_fake_input(m_connection, type, keycode, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
}

bool X11KeyTyper::nonModifierKeyDown(const std::set<xcb_keycode_t>& modifierKeycodes) {
    XcbPtr<xcb_query_keymap_reply_t> keymap(
        xcb_query_keymap_reply(m_connection, xcb_query_keymap(m_connection), nullptr));
    if (!keymap)
        return false;
    for (int code = 8; code < 256; ++code)
        if ((keymap->keys[code / 8] & (1 << (code % 8))) && !modifierKeycodes.count(xcb_keycode_t(code)))
            return true;
    return false;
}

void X11KeyTyper::releaseHeldModifiers(const std::set<xcb_keycode_t>& modifierKeycodes) {
    XcbPtr<xcb_query_keymap_reply_t> keymap(
        xcb_query_keymap_reply(m_connection, xcb_query_keymap(m_connection), nullptr));
    if (!keymap)
        return;
    for (const xcb_keycode_t code : modifierKeycodes)
        if (keymap->keys[code / 8] & (1 << (code % 8)))
            fake(XCB_KEY_RELEASE, code);
}

bool X11KeyTyper::type(const KeyboardShortcut& chord, QString* error) {
    // The convention of the whole agent: command is Control, control is Super.
    std::vector<xcb_keysym_t> modifierSyms;
    if (chord.command)
        modifierSyms.push_back(XKB_KEY_Control_L);
    if (chord.shift)
        modifierSyms.push_back(XKB_KEY_Shift_L);
    if (chord.alt)
        modifierSyms.push_back(XKB_KEY_Alt_L);
    if (chord.control)
        modifierSyms.push_back(XKB_KEY_Super_L);
    std::vector<xcb_keycode_t> modifiers;
    for (const xcb_keysym_t sym : modifierSyms) {
        const auto code = keycodeOfKeysym(sym);
        if (!code) {
            *error = QString("the keyboard layout has no key for modifier 0x%1").arg(sym, 0, 16);
            return false;
        }
        modifiers.push_back(*code);
    }
    const auto key = keycodeOf(chord);
    if (!key) {
        *error = QString("the keyboard layout has no key for key code %1").arg(chord.keyCode);
        return false;
    }
    for (const xcb_keycode_t code : modifiers)
        fake(XCB_KEY_PRESS, code);
    fake(XCB_KEY_PRESS, *key);
    fake(XCB_KEY_RELEASE, *key);
    for (auto it = modifiers.rbegin(); it != modifiers.rend(); ++it)
        fake(XCB_KEY_RELEASE, *it);
    xcb_flush(m_connection);
    return true;
}

} // namespace velmora
