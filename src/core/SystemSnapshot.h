#pragma once

#include "core/JsonCodec.h"
#include "core/ProcessGroup.h"
#include "core/ResourceUsage.h"

#include <vector>

namespace velmora {

// The whole machine at one sample: what the applications and the rest of the system used, and the
// process groups (one per application, then "System").
struct SystemSnapshot {
    qint64 timestamp = 0; // ms since 1970-01-01 UTC
    qint64 totalCPUs = 0;
    qint64 totalMemoryBytes = 0;
    ResourceUsage appsResourceUsage;
    ResourceUsage systemResourceUsage;
    std::vector<ProcessGroup> processGroups;

    // The machine's total: the system's share plus the applications'.
    ResourceUsage totalUsage() const {
        ResourceUsage u = systemResourceUsage;
        u.add(appsResourceUsage);
        return u;
    }
    bool operator==(const SystemSnapshot&) const = default;
};

void to_json(Json& j, const SystemSnapshot& s);
void from_json(const Json& j, SystemSnapshot& s);

} // namespace velmora
