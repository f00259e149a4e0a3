#include "platform/x11/KeyLabel.h"

#include <xkbcommon/xkbcommon-keysyms.h>

#include <utility>

namespace velmora {

namespace {

// Space and the editing keys have characters of their own (a blank, control codes), which say nothing
// on a cap; they are named before the character is looked at.
constexpr std::pair<xkb_keysym_t, const char*> kNamedKeys[] = {
    {XKB_KEY_Left, "←"},
    {XKB_KEY_Right, "→"},
    {XKB_KEY_Up, "↑"},
    {XKB_KEY_Down, "↓"},
    {XKB_KEY_Return, "Return"},
    {XKB_KEY_KP_Enter, "Return"},
    {XKB_KEY_Tab, "Tab"},
    {XKB_KEY_ISO_Left_Tab, "Tab"},
    {XKB_KEY_space, "Space"},
    {XKB_KEY_BackSpace, "Backspace"},
    {XKB_KEY_Delete, "Delete"},
    {XKB_KEY_Escape, "Esc"},
    {XKB_KEY_Home, "Home"},
    {XKB_KEY_End, "End"},
    {XKB_KEY_Page_Up, "Page Up"},
    {XKB_KEY_Page_Down, "Page Down"},
};

} // namespace

QString keyLabel(xkb_keysym_t keysym) {
    for (const auto& [sym, name] : kNamedKeys)
        if (sym == keysym)
            return QString::fromUtf8(name);
    if (keysym >= XKB_KEY_F1 && keysym <= XKB_KEY_F12)
        return QStringLiteral("F%1").arg(keysym - XKB_KEY_F1 + 1);
    const char32_t ucs = xkb_keysym_to_utf32(keysym);
    if (ucs < 0x20 || (ucs >= 0x7f && ucs < 0xa0))
        return {};
    return QString::fromUcs4(&ucs, 1).toUpper();
}

} // namespace velmora
