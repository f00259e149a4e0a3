#pragma once

#include "core/DefaultValues.h"
#include "core/JsonCodec.h"
#include "core/WindowArea.h"

#include <vector>

namespace velmora {

// Stored under "WindowManagerPreferences". A default-constructed record holds the factory zones with
// fresh ids, so two defaults compare unequal by their zone ids.
struct WindowManagerPreferences {
    // Bumped by the zone editor whenever the zone list changes; only a change of value means anything.
    double updated = 0;
    // Gap between snapped windows and screen edges, relative to the screen's shorter side.
    double spacing = 0.5;
    // false: dragging snaps and Shift suppresses it; true: dragging snaps only while Shift is held.
    bool shiftEnablesDragging = false;
    std::vector<WindowArea> areas = factoryZones();
    bool enableAutoLayout = true;
    bool enableWindowSwitcher = true;

    bool operator==(const WindowManagerPreferences&) const = default;
};

// The `updated` stamp of a zone edit made now. Only a change of value counts, so a clock that has not
// moved since the last edit must not repeat the old stamp.
double nextUpdatedStamp(double previous);

void to_json(Json& j, const WindowManagerPreferences& p);
void from_json(const Json& j, WindowManagerPreferences& p);

} // namespace velmora
