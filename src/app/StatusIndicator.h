#pragma once

#include <QString>
#include <functional>

namespace velmora {

// A state of a module the user must be able to see at all times while it lasts (the keyboard is off):
// the tray icon changes, and each screen shows the notice with a button that ends the state.
// What the tray icon shows while an indicator is on.
enum class StatusGlyph { keyboardOff };

struct StatusIndicator {
    QString id;       // "keyboardCleaning"
    QString title;    // "Keyboard cleaning is on"
    QString text;     // one or two sentences under the title
    QString endTitle; // the button, "End Keyboard Cleaning"
    std::function<void()> end;
    StatusGlyph glyph = StatusGlyph::keyboardOff;
};

} // namespace velmora
