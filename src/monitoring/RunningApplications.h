#pragma once

#include "core/ProcessSnapshot.h"
#include "platform/Workspace.h"

#include <unordered_map>
#include <vector>

namespace velmora {

// The running applications by pid; when two share a pid, the later one wins.
using RunningApplicationMap = std::unordered_map<qint64, RunningApplication>;

RunningApplicationMap runningApplicationMap(const std::vector<RunningApplication>& applications);

// Gives a process its application's name and identifier when it is one; else its name stays the
// command's and it has no identifier. The bundle path is the process's own (its installation folder).
void attachRunningApplication(ProcessSnapshot& process, const RunningApplicationMap& applications);

} // namespace velmora
