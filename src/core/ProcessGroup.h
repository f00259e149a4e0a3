#pragma once

#include "core/JsonCodec.h"
#include "core/ProcessSnapshot.h"

#include <vector>

namespace velmora {

// An application with the processes that belong to it, or (pid 0) the "System" group of everything
// else, which lists only the top consumers.
struct ProcessGroup {
    qint64 pid = 0;
    QString name;
    ResourceUsage resourceUsage;
    std::optional<ProcessSnapshot> parent;
    std::vector<ProcessSnapshot> children;

    bool isSystem() const { return pid == 0; }
    bool operator==(const ProcessGroup&) const = default;
};

void to_json(Json& j, const ProcessGroup& g);
void from_json(const Json& j, ProcessGroup& g);

} // namespace velmora
