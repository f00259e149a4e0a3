#include "app/AppAction.h"

#include <array>

namespace velmora {

namespace {

constexpr std::array<const char*, std::variant_size_v<AppAction>> kNames{
    "windowAreas",
    "openWindowSwitcher",
    "moveWindowToScreen",
    "centerWindow",
    "makeWindow16By9",
    "proposeAutoLayout",
    "navigateWindowSwitcher",
    "openClipboardHistory",
    "performDirectPastePlainText",
    "toggleMonitorDimming",
    "openSystemMonitoringDashboard",
    "matchSnappedWindowFrame",
    "noop",
};

template <std::size_t... I> AppAction defaultAction(std::size_t index, std::index_sequence<I...>) {
    AppAction result = action::Noop{};
    ((index == I ? (result = std::variant_alternative_t<I, AppAction>{}, 0) : 0), ...);
    return result;
}

} // namespace

QString actionName(const AppAction& action) {
    return kNames[action.index()];
}

QStringList allActionNames() {
    QStringList names;
    for (const char* name : kNames)
        names << name;
    return names;
}

std::optional<AppAction> actionFromName(const QString& name) {
    for (std::size_t i = 0; i < kNames.size(); ++i)
        if (name == kNames[i])
            return defaultAction(i, std::make_index_sequence<std::variant_size_v<AppAction>>{});
    return std::nullopt;
}

} // namespace velmora
