#pragma once

#include "platform/SystemProbes.h"
#include "platform/linux/SocketCounters.h"

#include <map>
#include <unordered_map>
#include <vector>

namespace velmora {

// One socket at one reading: who holds it and what it has moved so far.
struct HeldSocket {
    quint64 inode = 0;
    qint64 pid = 0;
    SocketBytes bytes;
};

// Per-process totals of bytes moved over TCP, from readings of the sockets that exist at each moment.
// A process's total is the sum over its open sockets plus, for each of its sockets that has closed, the
// counts it had at the last reading that saw it open. So a connection that closes between two readings
// keeps what it had moved by the earlier one; what it moved after that, and every byte of a connection
// that opened and closed between two readings, is lost: the kernel forgets a socket's counters with it.
class NetworkLedger {
public:
    // The totals of each of `pids` (the user's processes now; 0 for one without sockets, so that its
    // first bytes count from a known start), after recording the open `sockets`.
    std::map<qint64, NetworkTotals> record(const std::vector<qint64>& pids,
                                           const std::vector<HeldSocket>& sockets);

private:
    std::unordered_map<quint64, HeldSocket> m_open;
    std::unordered_map<qint64, NetworkTotals> m_closed;
};

} // namespace velmora
