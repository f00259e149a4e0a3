#pragma once

#include <QString>
#include <functional>

namespace velmora {

// A state of a module the user must be able to see at all times while it lasts (the keyboard is off,
// sleep is prevented): the tray icon changes, and, for a state that wants it, each screen shows the
// notice with a button that ends the state; otherwise that button is in the tray icon's menu.
// What the tray icon shows while an indicator is on.
enum class StatusGlyph { keyboardOff, sleepPrevented };

struct StatusIndicator {
    QString id;       // "keyboardCleaning"
    QString title;    // "Keyboard cleaning is on"
    QString text;     // one or two sentences under the title
    QString endTitle; // the button, "End Keyboard Cleaning"
    std::function<void()> end;
    StatusGlyph glyph = StatusGlyph::keyboardOff;
    // A notice on every screen: for a state that stops the user (the keyboard is off), not for one
    // that is only worth knowing about (sleep is prevented).
    bool notice = true;
};

} // namespace velmora
