#pragma once

#include "core/SystemSnapshot.h"

namespace velmora::testing {

inline ProcessSnapshot process(qint64 pid, const QString& name, double cpus, qint64 memory,
                               qint64 network = 0) {
    ProcessSnapshot p;
    p.pid = pid;
    p.name = name;
    p.resourceUsage = {cpus, memory, network / 2, network - network / 2};
    return p;
}

// An application group: the application's process and its helpers, the sum as the group's use.
inline ProcessGroup application(const ProcessSnapshot& parent, std::vector<ProcessSnapshot> children = {}) {
    ProcessGroup g;
    g.pid = parent.pid;
    g.name = parent.name;
    g.parent = parent;
    g.resourceUsage = parent.resourceUsage;
    for (const auto& c : children)
        g.resourceUsage.add(c.resourceUsage);
    g.children = std::move(children);
    return g;
}

inline ProcessGroup systemGroup(std::vector<ProcessSnapshot> top) {
    ProcessGroup g;
    g.name = "System";
    for (const auto& c : top)
        g.resourceUsage.add(c.resourceUsage);
    g.children = std::move(top);
    return g;
}

// A snapshot of a 4-core, 8 GB machine with these groups; the totals are the groups' sums.
inline SystemSnapshot snapshotOf(std::vector<ProcessGroup> groups, qint64 timestamp = 0) {
    SystemSnapshot s;
    s.timestamp = timestamp;
    s.totalCPUs = 4;
    s.totalMemoryBytes = 8'000'000'000;
    for (const auto& g : groups)
        (g.isSystem() ? s.systemResourceUsage : s.appsResourceUsage).add(g.resourceUsage);
    s.processGroups = std::move(groups);
    return s;
}

} // namespace velmora::testing
