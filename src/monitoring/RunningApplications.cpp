#include "monitoring/RunningApplications.h"

namespace velmora {

RunningApplicationMap runningApplicationMap(const std::vector<RunningApplication>& applications) {
    RunningApplicationMap map;
    for (const auto& application : applications)
        map.insert_or_assign(application.pid, application);
    return map;
}

void attachRunningApplication(ProcessSnapshot& process, const RunningApplicationMap& applications) {
    const auto it = applications.find(process.pid);
    process.isRunningApplication = it != applications.end();
    if (!process.isRunningApplication)
        return;
    if (it->second.localizedName)
        process.name = *it->second.localizedName;
    process.bundleIdentifier = it->second.bundleIdentifier;
}

} // namespace velmora
