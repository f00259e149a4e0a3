#pragma once

#include <QString>
#include <Qt>
#include <cstdint>

namespace velmora {

// Modifier masks of key and mouse events, the same numbers on every platform. On Linux, Command is
// the Ctrl key and Control is the Super key (the convention Qt uses across platforms).
namespace ModifierMask {
inline constexpr std::uint64_t Shift = 0x20000;
inline constexpr std::uint64_t Control = 0x40000;
inline constexpr std::uint64_t Option = 0x80000;
inline constexpr std::uint64_t Command = 0x100000;

// The masks of the toolkit's modifiers: Ctrl is Command and Meta (Super) is Control.
inline std::uint64_t fromQt(Qt::KeyboardModifiers m) {
    std::uint64_t flags = 0;
    if (m & Qt::ShiftModifier)
        flags |= Shift;
    if (m & Qt::ControlModifier)
        flags |= Command;
    if (m & Qt::MetaModifier)
        flags |= Control;
    if (m & Qt::AltModifier)
        flags |= Option;
    return flags;
}
} // namespace ModifierMask

// Virtual key codes used in records and matching, shared across platforms.
namespace KeyCode {
inline constexpr std::uint16_t W = 13;
inline constexpr std::uint16_t Return = 36;
inline constexpr std::uint16_t Tab = 48;
inline constexpr std::uint16_t Space = 49;
inline constexpr std::uint16_t Delete = 51;
inline constexpr std::uint16_t Escape = 53;
} // namespace KeyCode

// A key press as the panels see it: the virtual key code, the modifier flags and the characters the
// layout produces for it (with Shift applied, without Command: Command+Shift+w gives "W").
struct KeyEvent {
    std::uint16_t keyCode = 0;
    std::uint64_t modifierFlags = 0;
    QString characters;

    bool has(std::uint64_t mask) const { return (modifierFlags & mask) != 0; }
};

} // namespace velmora
