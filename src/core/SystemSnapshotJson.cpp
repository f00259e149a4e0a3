// The encoding of the monitoring records: field names as keys, in declaration order.
#include "core/SystemSnapshot.h"

namespace velmora {

void to_json(Json& j, const ResourceUsage& u) {
    j = Json::object();
    j["usedCPUs"] = u.usedCPUs;
    j["usedMemoryBytes"] = u.usedMemoryBytes;
    j["uploadedBytes"] = u.uploadedBytes;
    j["downloadedBytes"] = u.downloadedBytes;
}

void from_json(const Json& j, ResourceUsage& u) {
    u.usedCPUs = requiredField<double>(j, "usedCPUs");
    u.usedMemoryBytes = requiredInteger<qint64>(j, "usedMemoryBytes");
    u.uploadedBytes = requiredInteger<qint64>(j, "uploadedBytes");
    u.downloadedBytes = requiredInteger<qint64>(j, "downloadedBytes");
}

void to_json(Json& j, const ProcessSnapshot& p) {
    j = Json::object();
    j["pid"] = p.pid;
    j["name"] = p.name;
    putOptionalMember(j, "parentPid", p.parentPid);
    putOptionalMember(j, "bundleIdentifier", p.bundleIdentifier);
    putOptionalMember(j, "bundlePath", p.bundlePath);
    j["lstart"] = p.lstart;
    j["resourceUsage"] = p.resourceUsage;
}

void from_json(const Json& j, ProcessSnapshot& p) {
    p.pid = requiredInteger<qint64>(j, "pid");
    p.name = requiredField<QString>(j, "name");
    p.parentPid = optionalMember<qint64>(j, "parentPid");
    p.bundleIdentifier = optionalMember<QString>(j, "bundleIdentifier");
    p.bundlePath = optionalMember<QString>(j, "bundlePath");
    p.lstart = requiredField<QString>(j, "lstart");
    p.resourceUsage = requiredField<ResourceUsage>(j, "resourceUsage");
}

void to_json(Json& j, const ProcessGroup& g) {
    j = Json::object();
    j["pid"] = g.pid;
    j["name"] = g.name;
    j["resourceUsage"] = g.resourceUsage;
    putOptionalMember(j, "parent", g.parent);
    j["children"] = g.children;
}

void from_json(const Json& j, ProcessGroup& g) {
    g.pid = requiredInteger<qint64>(j, "pid");
    g.name = requiredField<QString>(j, "name");
    g.resourceUsage = requiredField<ResourceUsage>(j, "resourceUsage");
    g.parent = optionalMember<ProcessSnapshot>(j, "parent");
    g.children = requiredField<std::vector<ProcessSnapshot>>(j, "children");
}

void to_json(Json& j, const SystemSnapshot& s) {
    j = Json::object();
    j["timestamp"] = s.timestamp;
    j["totalCPUs"] = s.totalCPUs;
    j["totalMemoryBytes"] = s.totalMemoryBytes;
    j["appsResourceUsage"] = s.appsResourceUsage;
    j["systemResourceUsage"] = s.systemResourceUsage;
    j["processGroups"] = s.processGroups;
}

void from_json(const Json& j, SystemSnapshot& s) {
    s.timestamp = requiredInteger<qint64>(j, "timestamp");
    s.totalCPUs = requiredInteger<qint64>(j, "totalCPUs");
    s.totalMemoryBytes = requiredInteger<qint64>(j, "totalMemoryBytes");
    s.appsResourceUsage = requiredField<ResourceUsage>(j, "appsResourceUsage");
    s.systemResourceUsage = requiredField<ResourceUsage>(j, "systemResourceUsage");
    s.processGroups = requiredField<std::vector<ProcessGroup>>(j, "processGroups");
}

} // namespace velmora
