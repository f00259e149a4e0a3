#pragma once

#include "core/SystemSnapshot.h"

#include <vector>

namespace velmora {

// What makes a process an application.
enum class ApplicationRule {
    // By its bundle path alone: a bundle (".app/") or in an application folder, and neither nested
    // in another bundle nor under the system library. Where every application is a bundle.
    bundlePaths,
    // It owns a window of the desktop and is not nested in another application's bundle. On Linux,
    // where programs in shared folders (/usr/bin) have no bundle at all.
    windowOwners,
};

bool isApplication(const ProcessSnapshot& process, ApplicationRule rule);

// Fills the snapshot's application and system usage and its groups: one per application, in input
// order, each with the processes that belong to it, then "System" with the top consumers of the rest.
void groupProcesses(SystemSnapshot& snapshot, const std::vector<ProcessSnapshot>& processes,
                    ApplicationRule rule);

// The processes among the first n by CPU, by memory or by network (ties by ascending pid), each
// once, in input order.
std::vector<ProcessSnapshot> topConsumers(const std::vector<ProcessSnapshot>& processes, std::size_t n);

} // namespace velmora
