#pragma once

#include "core/ProcessSnapshot.h"
#include "monitoring/RunningApplications.h"

#include <vector>

namespace velmora {

// The process list as `ps -U UID -cero pid,ppid,pcpu,rss,comm,lstart` prints it, one process per
// line in output order; lines that do not parse (the header among them) are dropped. The path of
// systems that have no /proc: Linux reads the kernel's table directly.
std::vector<ProcessSnapshot> parseProcessList(const QString& output,
                                              const RunningApplicationMap& applications);

} // namespace velmora
