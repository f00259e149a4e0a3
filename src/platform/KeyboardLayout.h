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
};

} // namespace velmora
