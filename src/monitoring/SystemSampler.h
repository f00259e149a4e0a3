#pragma once

#include "core/SystemSnapshot.h"
#include "monitoring/HostCpuLoad.h"
#include "monitoring/NetworkDeltas.h"
#include "monitoring/ProcessGrouping.h"
#include "monitoring/RunningApplications.h"
#include "monitoring/SystemOverview.h"

namespace velmora {

class SystemProbes;

// What one sample gives: the snapshot (absent when the processes could not be read), the overview
// gauges and whether network counters were there.
struct SystemSample {
    std::optional<SystemSnapshot> snapshot;
    SystemOverview overview;
    bool networkAvailable = false;
};

// Takes one snapshot of the machine: processes with their applications and network deltas, grouped,
// with the system's memory rescaled. Keeps what the deltas need between samples, so one sampler is
// used by one thread at a time (the module's worker).
class SystemSampler {
public:
    explicit SystemSampler(SystemProbes& probes, ApplicationRule rule = ApplicationRule::windowOwners);

    SystemSample generate(const RunningApplicationMap& applications, qint64 nowMs);

private:
    std::optional<std::vector<ProcessSnapshot>> readProcesses(const RunningApplicationMap& applications);
    bool addNetworkDeltas(std::vector<ProcessSnapshot>& processes);

    SystemProbes& m_probes;
    ApplicationRule m_rule;
    NetworkDeltas m_network;
    HostCpuLoad m_cpuLoad;
};

} // namespace velmora
