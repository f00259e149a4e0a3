#pragma once

#include "platform/SystemProbes.h"

#include <QString>
#include <map>

namespace velmora {

// Bytes a process moved during one sampling interval.
struct NetworkDelta {
    qint64 bytesIn = 0;
    qint64 bytesOut = 0;
};

// Per-process byte totals as `nettop -P -x -L 1 -J bytes_in,bytes_out` prints them: a header, then
// "name.pid,in,out" per process. Lines that do not parse are skipped; a count that does not parse is 0.
std::map<qint64, NetworkTotals> parseNettopTotals(const QString& output);

// Turns running totals into the bytes of the last interval. A process seen for the first time
// reports 0 rather than its lifetime total; a counter that went back reports 0; a process that is
// gone is forgotten, so a new process with its pid starts afresh.
class NetworkDeltas {
public:
    std::map<qint64, NetworkDelta> update(const std::map<qint64, NetworkTotals>& totals);

private:
    std::map<qint64, NetworkTotals> m_previous;
};

} // namespace velmora
