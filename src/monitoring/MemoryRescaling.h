#pragma once

#include "core/SystemSnapshot.h"

namespace velmora {

// Resident sizes do not add up to what the kernel counts as used memory. The system's share (and the
// "System" group) is scaled so that applications plus system equal the memory in use; applications
// keep their own figures, so the rest of the machine's used memory shows as "System".
void rescaleSystemMemory(SystemSnapshot& snapshot, float memoryInUseFraction);

} // namespace velmora
