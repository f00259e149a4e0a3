#pragma once

#include "core/KeyEvent.h"

class QKeyEvent;

namespace velmora {

// Translates the toolkit's key events into the system's virtual key codes, modifier masks and
// characters, using the current keyboard layout.
class KeyboardLayout {
public:
    virtual ~KeyboardLayout() = default;
    virtual KeyEvent translate(const QKeyEvent& event) const = 0;
    // What the key cap of a virtual key code says in the current layout ("A", "←", "Return"); empty
    // when the layout has no such key.
    virtual QString label(std::uint16_t keyCode) const = 0;
};

} // namespace velmora
