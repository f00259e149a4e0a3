#include "monitoring/MemoryRescaling.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace velmora {

namespace {

qint64 scaled(qint64 bytes, double factor) {
    const double value = factor * double(bytes);
    // A corrupt figure must not wrap into a negative size.
    if (!std::isfinite(value) || value <= 0)
        return 0;
    return value >= double(std::numeric_limits<qint64>::max()) ? std::numeric_limits<qint64>::max()
                                                               : qint64(value);
}

} // namespace

void rescaleSystemMemory(SystemSnapshot& snapshot, float memoryInUseFraction) {
    const double used = double(snapshot.totalMemoryBytes) * double(memoryInUseFraction);
    const double sum = double(snapshot.appsResourceUsage.usedMemoryBytes) +
                       double(snapshot.systemResourceUsage.usedMemoryBytes);
    if (sum == 0)
        return;
    const double factor = used / sum;
    snapshot.systemResourceUsage.usedMemoryBytes =
        scaled(snapshot.systemResourceUsage.usedMemoryBytes, factor);
    const auto system = std::find_if(snapshot.processGroups.begin(), snapshot.processGroups.end(),
                                     [](const ProcessGroup& g) { return g.pid == 0; });
    if (system != snapshot.processGroups.end())
        system->resourceUsage.usedMemoryBytes = scaled(system->resourceUsage.usedMemoryBytes, factor);
}

} // namespace velmora
