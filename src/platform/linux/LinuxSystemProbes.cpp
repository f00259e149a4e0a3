#include "platform/linux/LinuxSystemProbes.h"

#include <QStandardPaths>
#include <unistd.h>

namespace velmora {

LinuxSystemProbes::LinuxSystemProbes()
    : m_uid(::getuid()), m_processes(m_proc, m_uid),
      m_host(m_proc, QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation)), m_sockets(m_uid),
      m_owners(m_proc) {}

// Asked before any reading, the answer is whether a dump works at all.
bool LinuxSystemProbes::hasNetworkCounters() {
    if (!m_asked) {
        m_asked = true;
        m_sockets.read();
    }
    return m_sockets.isAvailable();
}

std::optional<std::map<qint64, NetworkTotals>> LinuxSystemProbes::networkTotals() {
    m_asked = true;
    const auto sockets = m_sockets.read();
    const auto pids = sockets ? m_proc.processesOf(m_uid) : std::nullopt;
    if (!pids)
        return std::nullopt;
    std::vector<quint64> inodes;
    inodes.reserve(sockets->size());
    for (const auto& [inode, bytes] : *sockets)
        inodes.push_back(inode);
    m_owners.update(*pids, inodes);
    std::vector<HeldSocket> held;
    held.reserve(sockets->size());
    for (const auto& [inode, bytes] : *sockets)
        if (const auto owner = m_owners.ownerOf(inode))
            held.push_back({inode, *owner, bytes});
    return m_ledger.record(*pids, held);
}

} // namespace velmora
