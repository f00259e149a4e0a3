#include "core/MenubarSystemMonitoringPreferences.h"

#include <array>

namespace velmora {

namespace {

constexpr std::array<const char*, 3> kResourceNames{"cpu", "memory", "network"};

} // namespace

QString resourceTypeName(ResourceType type) {
    return QString::fromLatin1(kResourceNames[std::size_t(type)]);
}

std::optional<ResourceType> resourceTypeFromName(const QString& name) {
    for (std::size_t i = 0; i < kResourceNames.size(); ++i)
        if (name == QLatin1String(kResourceNames[i]))
            return ResourceType(i);
    return std::nullopt;
}

void to_json(Json& j, ResourceType type) {
    j = encodeCase(kResourceNames[std::size_t(type)]);
}

void from_json(const Json& j, ResourceType& type) {
    const std::string name = j.is_string() ? j.get<std::string>() : decodeCase(j);
    const auto decoded = resourceTypeFromName(QString::fromStdString(name));
    if (!decoded)
        throw DecodeError("unknown resource type \"" + name + "\"");
    type = *decoded;
}

void to_json(Json& j, const MonitoringWidget& w) {
    j = Json::object();
    j["id"] = w.id;
    j["resource"] = w.resource;
}

void from_json(const Json& j, MonitoringWidget& w) {
    w.id = requiredField<QUuid>(j, "id");
    w.resource = requiredField<ResourceType>(j, "resource");
}

void to_json(Json& j, const MenubarSystemMonitoringPreferences& p) {
    j = Json::object();
    j["widgets"] = p.widgets;
}

void from_json(const Json& j, MenubarSystemMonitoringPreferences& p) {
    p.widgets = requiredField<std::vector<MonitoringWidget>>(j, "widgets");
}

} // namespace velmora
