#pragma once

#include "core/JsonCodec.h"

#include <QString>
#include <QUuid>

#include <optional>
#include <vector>

namespace velmora {

// The resource a menu-bar gauge shows. Stored as {"cpu": {}}.
enum class ResourceType { cpu, memory, network };

QString resourceTypeName(ResourceType type);
std::optional<ResourceType> resourceTypeFromName(const QString& name);

void to_json(Json& j, ResourceType type);
// Also reads the bare string form ("cpu").
void from_json(const Json& j, ResourceType& type);

// One gauge in the menu bar; the id tells two gauges of the same resource apart in the editor.
struct MonitoringWidget {
    QUuid id;
    ResourceType resource = ResourceType::cpu;

    bool operator==(const MonitoringWidget&) const = default;
};

void to_json(Json& j, const MonitoringWidget& w);
void from_json(const Json& j, MonitoringWidget& w);

// The gauges of the monitoring status item, in display order. Empty by default, so the item shows
// nothing until the user adds a gauge.
struct MenubarSystemMonitoringPreferences {
    std::vector<MonitoringWidget> widgets;

    bool operator==(const MenubarSystemMonitoringPreferences&) const = default;
};

void to_json(Json& j, const MenubarSystemMonitoringPreferences& p);
void from_json(const Json& j, MenubarSystemMonitoringPreferences& p);

} // namespace velmora
