#pragma once

#include "core/ScreenInfo.h"
#include "platform/ScreensNotifier.h"

#include <optional>
#include <vector>

namespace velmora {

// The monitors of the desktop, in the screen space (bottom-left origin relative to the primary
// screen). The visible frame leaves out what docks and panels reserve.
class Screens {
public:
    virtual ~Screens() = default;

    virtual std::vector<ScreenInfo> screens() const = 0;
    // The screen the user is working on: the one holding the focused window, else the one under
    // the pointer. Absent only when there are no screens at all.
    virtual std::optional<ScreenInfo> mainScreen() const = 0;
    // The screens asked of the server directly, bypassing any memory: to check that memory against.
    virtual std::vector<ScreenInfo> screensAfresh() const { return screens(); }
    // Where the pointer is, in top-left space (as window frames are); absent when it cannot be asked.
    virtual std::optional<Point> pointerLocation() const { return std::nullopt; }
    // Whether a compositing manager draws the desktop: without one, a translucent window shows its
    // transparent pixels black.
    virtual bool isCompositing() const { return false; }

    // Where changes of the above are announced.
    ScreensNotifier& notifier() const { return m_notifier; }

private:
    mutable ScreensNotifier m_notifier;
};

} // namespace velmora
