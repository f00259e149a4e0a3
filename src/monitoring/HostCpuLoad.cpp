#include "monitoring/HostCpuLoad.h"

#include "monitoring/MonitoringLog.h"

#include <algorithm>

namespace velmora {

float HostCpuLoad::sample(std::optional<CpuTicks> ticks) {
    if (!ticks) {
        qCWarning(lcMonitoring) << "Failed to sample CPU usage.";
        return 0;
    }
    const CpuTicks previous = std::exchange(m_previous, *ticks);
    if (ticks->total <= previous.total || previous.total == 0 || ticks->busy < previous.busy)
        return 0;
    const double load = double(ticks->busy - previous.busy) / double(ticks->total - previous.total);
    return float(std::clamp(load, 0.0, 1.0));
}

} // namespace velmora
