#pragma once

#include "app/AppAction.h"
#include "core/KeyboardShortcut.h"

#include <QString>

namespace velmora {

class ActionProvider;

// One binding as matched: the chord, what it does, and whether the key press is kept from the
// focused application when it fires.
struct KeyboardBinding {
    KeyboardShortcut shortcut;
    AppAction action;
    bool blocking = true;
    QString id;                               // the KeyboardAppAction raw name, or "zone:<name>"
    const ActionProvider* provider = nullptr; // who answered, asked again when the chord repeats
};

} // namespace velmora
