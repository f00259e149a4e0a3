#include "core/ThemePreferences.h"

namespace velmora {

void to_json(Json& j, const ThemePreferences& p) {
    j = Json::object();
    j["clipboardUseCompactView"] = p.clipboardUseCompactView;
    j["windowSwitcherWidth"] = p.windowSwitcherWidth;
    j["mbsm"] = p.mbsm;
}

void from_json(const Json& j, ThemePreferences& p) {
    const ThemePreferences defaults;
    p.clipboardUseCompactView = requiredField<bool>(j, "clipboardUseCompactView");
    p.windowSwitcherWidth = optionalField<double>(j, "windowSwitcherWidth", defaults.windowSwitcherWidth);
    p.mbsm = optionalField<MenubarSystemMonitoringPreferences>(j, "mbsm", defaults.mbsm);
}

} // namespace velmora
