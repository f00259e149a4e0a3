#include "core/WindowManagerPreferences.h"

#include <QDateTime>

namespace velmora {

void to_json(Json& j, const WindowManagerPreferences& p) {
    j = Json::object();
    j["updated"] = p.updated;
    j["spacing"] = p.spacing;
    j["shiftEnablesDragging"] = p.shiftEnablesDragging;
    j["areas"] = p.areas;
    j["enableAutoLayout"] = p.enableAutoLayout;
    j["enableWindowSwitcher"] = p.enableWindowSwitcher;
}

void from_json(const Json& j, WindowManagerPreferences& p) {
    p.updated = requiredField<double>(j, "updated");
    p.spacing = requiredField<double>(j, "spacing");
    p.shiftEnablesDragging = requiredField<bool>(j, "shiftEnablesDragging");
    p.areas = requiredField<std::vector<WindowArea>>(j, "areas");
    p.enableAutoLayout = requiredField<bool>(j, "enableAutoLayout");
    p.enableWindowSwitcher = requiredField<bool>(j, "enableWindowSwitcher");
}

double nextUpdatedStamp(double previous) {
    const double now = double(QDateTime::currentMSecsSinceEpoch()) / 1000;
    return now == previous ? previous + 1 : now;
}

} // namespace velmora
