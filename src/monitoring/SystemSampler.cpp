#include "monitoring/SystemSampler.h"

#include "monitoring/MemoryRescaling.h"
#include "monitoring/MonitoringLog.h"
#include "platform/SystemProbes.h"

#include <algorithm>

namespace velmora {

SystemSampler::SystemSampler(SystemProbes& probes, ApplicationRule rule) : m_probes(probes), m_rule(rule) {}

SystemSample SystemSampler::generate(const RunningApplicationMap& applications, qint64 nowMs) {
    SystemSample sample;
    const float memoryFraction = std::clamp(m_probes.memoryInUseFraction(), 0.0f, 1.0f);
    sample.overview = {m_cpuLoad.sample(m_probes.cpuTicks()), memoryFraction,
                       std::clamp(m_probes.storageInUseFraction(), 0.0f, 1.0f)};
    auto processes = readProcesses(applications);
    if (!processes) {
        qCWarning(lcMonitoring) << "Error: Could not get process output";
        qCWarning(lcMonitoring) << "Failed to generate system snapshot";
        return sample;
    }
    sample.networkAvailable = addNetworkDeltas(*processes);
    SystemSnapshot snapshot;
    snapshot.totalMemoryBytes = std::max<qint64>(0, m_probes.physicalMemoryBytes());
    snapshot.timestamp = nowMs;
    snapshot.totalCPUs = m_probes.processorCount();
    groupProcesses(snapshot, *processes, m_rule);
    rescaleSystemMemory(snapshot, memoryFraction);
    sample.snapshot = std::move(snapshot);
    return sample;
}

std::optional<std::vector<ProcessSnapshot>>
SystemSampler::readProcesses(const RunningApplicationMap& applications) {
    auto rows = m_probes.processRows();
    if (!rows)
        return std::nullopt;
    std::vector<ProcessSnapshot> processes;
    processes.reserve(rows->size());
    for (ProcessRow& row : *rows) {
        ProcessSnapshot process;
        process.pid = row.pid;
        process.name = std::move(row.command);
        process.parentPid = row.parentPid;
        process.bundlePath = std::move(row.bundlePath);
        process.lstart = std::move(row.lstart);
        process.scope = std::move(row.scope);
        process.resourceUsage.usedCPUs = row.usedCPUs;
        process.resourceUsage.usedMemoryBytes = row.residentBytes;
        attachRunningApplication(process, applications);
        processes.push_back(std::move(process));
    }
    // The busiest first, as the process list of other systems comes.
    std::stable_sort(processes.begin(), processes.end(),
                     [](const ProcessSnapshot& a, const ProcessSnapshot& b) {
                         return a.resourceUsage.usedCPUs > b.resourceUsage.usedCPUs;
                     });
    return processes;
}

// False when the counters could not be read: every process then shows 0 bytes, and the totals of the
// last good reading stay for the next.
bool SystemSampler::addNetworkDeltas(std::vector<ProcessSnapshot>& processes) {
    const auto totals = m_probes.networkTotals();
    if (!totals)
        return false;
    const auto deltas = m_network.update(*totals);
    for (ProcessSnapshot& process : processes)
        if (const auto it = deltas.find(process.pid); it != deltas.end()) {
            process.resourceUsage.downloadedBytes = it->second.bytesIn;
            process.resourceUsage.uploadedBytes = it->second.bytesOut;
        }
    return true;
}

} // namespace velmora
