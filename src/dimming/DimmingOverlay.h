#pragma once

#include "core/Rect.h"

#include <functional>
#include <memory>

namespace velmora {

class MonitorDimmingModel;

// The dark layer over one monitor, as the dimming logic sees it: a window that follows the model's
// factor by itself (drawn while the factor is below 1.0), lets every click through, and is kept in
// front of everything else.
class DimmingOverlay {
public:
    virtual ~DimmingOverlay() = default;
    // What it covers, top-left space.
    virtual Rect coveredFrame() const = 0;
    // Drawn on the screen now.
    virtual bool isShown() const = 0;
    // Back in front of all other windows.
    virtual void bringToFront() = 0;
    // Stops following the model and goes from the screen; the owner destroys it next.
    virtual void dismiss() = 0;
};

// Makes the overlay for a monitor's frame (top-left space), bound to the model.
using DimmingOverlayFactory =
    std::function<std::unique_ptr<DimmingOverlay>(MonitorDimmingModel& model, const Rect& frame)>;

} // namespace velmora
