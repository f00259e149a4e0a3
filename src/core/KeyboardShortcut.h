#pragma once

#include "core/JsonCodec.h"

#include <QtGlobal>

namespace velmora {

// One key chord as stored in the preferences: a virtual key code (the same numbers on every platform,
// so that a synced record means the same key everywhere) and the four modifier flags.
struct KeyboardShortcut {
    bool control = false;
    bool alt = false;
    bool command = false;
    bool shift = false;
    quint16 keyCode = 0;
    // Set when the user switches the binding off; a disabled binding never matches a real key press.
    bool disabled = false;

    // The comparison the shortcut matcher uses: a pressed chord (never disabled) only matches enabled
    // bindings.
    bool matches(const KeyboardShortcut& pressed) const;
    bool hasModifier() const { return control || alt || command || shift; }
    // Whether the chord may work across the desktop: it holds Ctrl, Alt or Super, or it is a function
    // key. Shift alone is typing ("A"), so a Shift-only chord would eat ordinary text.
    bool canBeGlobal() const { return control || alt || command || isFunctionKey(keyCode); }
    static bool isFunctionKey(quint16 keyCode);

    bool operator==(const KeyboardShortcut&) const = default;
};

// Modifier sets, so that chords read like their labels: chord(Modifier::Control | Modifier::Alt, 8).
enum class Modifier : quint8 { None = 0, Control = 1, Alt = 2, Command = 4, Shift = 8 };

constexpr Modifier operator|(Modifier a, Modifier b) {
    return Modifier(quint8(a) | quint8(b));
}

constexpr bool hasFlag(Modifier set, Modifier flag) {
    return (quint8(set) & quint8(flag)) != 0;
}

constexpr KeyboardShortcut chord(Modifier modifiers, quint16 keyCode) {
    return KeyboardShortcut{hasFlag(modifiers, Modifier::Control),
                            hasFlag(modifiers, Modifier::Alt),
                            hasFlag(modifiers, Modifier::Command),
                            hasFlag(modifiers, Modifier::Shift),
                            keyCode,
                            false};
}

// A bare key, as the history and auto-layout panels use for navigation.
constexpr KeyboardShortcut bareKey(quint16 keyCode) {
    return chord(Modifier::None, keyCode);
}

void to_json(Json& j, const KeyboardShortcut& s);
void from_json(const Json& j, KeyboardShortcut& s);

} // namespace velmora
