#include "core/KeyboardShortcut.h"

namespace velmora {

bool KeyboardShortcut::isFunctionKey(quint16 keyCode) {
    // F1 to F12 in the virtual key codes.
    static constexpr quint16 kFunctionKeys[] = {122, 120, 99, 118, 96, 97, 98, 100, 101, 109, 103, 111};
    for (const quint16 f : kFunctionKeys)
        if (keyCode == f)
            return true;
    return false;
}

bool KeyboardShortcut::matches(const KeyboardShortcut& pressed) const {
    return control == pressed.control && alt == pressed.alt && command == pressed.command &&
           shift == pressed.shift && keyCode == pressed.keyCode && disabled == pressed.disabled;
}

void to_json(Json& j, const KeyboardShortcut& s) {
    j = Json::object();
    j["control"] = s.control;
    j["alt"] = s.alt;
    j["command"] = s.command;
    j["shift"] = s.shift;
    j["keyCode"] = s.keyCode;
    j["disabled"] = s.disabled;
}

void from_json(const Json& j, KeyboardShortcut& s) {
    s.control = requiredField<bool>(j, "control");
    s.alt = requiredField<bool>(j, "alt");
    s.command = requiredField<bool>(j, "command");
    s.shift = requiredField<bool>(j, "shift");
    s.keyCode = requiredInteger<quint16>(j, "keyCode");
    // Records written before bindings could be switched off have no "disabled".
    s.disabled = optionalField<bool>(j, "disabled", false);
}

} // namespace velmora
