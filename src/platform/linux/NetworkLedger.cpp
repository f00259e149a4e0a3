#include "platform/linux/NetworkLedger.h"

#include <unordered_set>

namespace velmora {

namespace {

void add(NetworkTotals& totals, const SocketBytes& bytes) {
    totals.bytesIn += qint64(bytes.received);
    totals.bytesOut += qint64(bytes.acked);
}

} // namespace

std::map<qint64, NetworkTotals> NetworkLedger::record(const std::vector<qint64>& pids,
                                                      const std::vector<HeldSocket>& sockets) {
    const std::unordered_set<qint64> present(pids.begin(), pids.end());
    std::unordered_map<quint64, HeldSocket> open;
    open.reserve(sockets.size());
    for (const HeldSocket& socket : sockets)
        open.emplace(socket.inode, socket);
    for (const auto& [inode, last] : m_open)
        if (!open.contains(inode) && present.contains(last.pid))
            add(m_closed[last.pid], last.bytes);
    m_open = std::move(open);
    std::erase_if(m_closed, [&](const auto& closed) { return !present.contains(closed.first); });

    std::map<qint64, NetworkTotals> totals;
    for (const qint64 pid : pids) {
        const auto closed = m_closed.find(pid);
        totals[pid] = closed != m_closed.end() ? closed->second : NetworkTotals{};
    }
    for (const auto& [inode, socket] : m_open)
        if (const auto total = totals.find(socket.pid); total != totals.end())
            add(total->second, socket.bytes);
    return totals;
}

} // namespace velmora
