#include "platform/x11/X11KeyboardLayout.h"

#include "platform/x11/KeyLabel.h"
#include "platform/x11/KeySymMap.h"

#include <QKeyEvent>
#include <xkbcommon/xkbcommon.h>

namespace velmora {

namespace {

// The text of a keysym with Shift applied but without Ctrl, which Qt's own text() folds into
// control characters.
QString charactersOf(xkb_keysym_t keysym) {
    const std::uint32_t ucs = xkb_keysym_to_utf32(keysym);
    if (ucs == 0 || ucs < 0x20 || ucs == 0x7f)
        return {};
    return QString::fromUcs4(reinterpret_cast<const char32_t*>(&ucs), 1);
}

} // namespace

KeyEvent X11KeyboardLayout::translate(const QKeyEvent& event) const {
    const auto keysym = static_cast<xkb_keysym_t>(event.nativeVirtualKey());
    KeyEvent result;
    result.keyCode = virtualKeyCodeForKeysym(keysym).value_or(0xFFFF);
    result.modifierFlags = ModifierMask::fromQt(event.modifiers());
    result.characters = charactersOf(keysym);
    return result;
}

QString X11KeyboardLayout::label(std::uint16_t keyCode) const {
    const auto keysym = keysymForVirtualKeyCode(keyCode);
    return keysym ? keyLabel(*keysym) : QString();
}

} // namespace velmora
