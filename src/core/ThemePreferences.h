#pragma once

#include "core/JsonCodec.h"
#include "core/MenubarSystemMonitoringPreferences.h"

namespace velmora {

// The appearance record, stored and synchronised like the other preference records.
struct ThemePreferences {
    bool clipboardUseCompactView = false;
    double windowSwitcherWidth = 400.0;
    MenubarSystemMonitoringPreferences mbsm;

    bool operator==(const ThemePreferences&) const = default;
};

void to_json(Json& j, const ThemePreferences& p);
// Records written before the switcher width or the menu-bar gauges existed decode with their defaults.
void from_json(const Json& j, ThemePreferences& p);

} // namespace velmora
