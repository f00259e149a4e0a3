#pragma once

namespace velmora {

// The whole machine at a glance, for the drop-down panel's gauges: each a fraction in [0, 1].
struct SystemOverview {
    float cpuLoad = 0;
    float memoryInUse = 0;
    float storageInUse = 0;
};

} // namespace velmora
