#pragma once

#include "platform/SystemProbes.h"

namespace velmora {

// The machine's CPU load between two readings of its tick counters, in [0, 1]; 0 on the first
// reading and when no time passed.
class HostCpuLoad {
public:
    // An absent reading (the counters could not be read) is logged and leaves the previous one.
    float sample(std::optional<CpuTicks> ticks);

private:
    CpuTicks m_previous;
};

} // namespace velmora
