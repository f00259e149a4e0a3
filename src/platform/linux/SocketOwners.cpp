#include "platform/linux/SocketOwners.h"

#include <algorithm>

namespace velmora {

void SocketOwners::update(const std::vector<qint64>& pids, const std::vector<quint64>& inodes) {
    const std::unordered_set<qint64> present(pids.begin(), pids.end());
    std::erase_if(m_scanned, [&](qint64 pid) { return !present.contains(pid); });
    // The sockets of a process that ended may live on in its children: they are looked for again.
    std::erase_if(m_owners, [&](const auto& owner) { return !present.contains(owner.second); });
    const std::unordered_set<quint64> open(inodes.begin(), inodes.end());
    std::erase_if(m_owners, [&](const auto& owner) { return !open.contains(owner.first); });
    std::erase_if(m_unowned, [&](quint64 inode) { return !open.contains(inode); });

    std::vector<qint64> known;
    for (const qint64 pid : pids)
        if (m_scanned.contains(pid))
            known.push_back(pid);
        else
            scan(pid);
    const auto unknown = [&](quint64 inode) {
        return !m_owners.contains(inode) && !m_unowned.contains(inode);
    };
    if (std::any_of(inodes.begin(), inodes.end(), unknown))
        for (const qint64 pid : known)
            scan(pid);
    for (const quint64 inode : inodes)
        if (unknown(inode))
            m_unowned.insert(inode);
}

std::optional<qint64> SocketOwners::ownerOf(quint64 inode) const {
    const auto owner = m_owners.find(inode);
    return owner != m_owners.end() ? std::optional(owner->second) : std::nullopt;
}

void SocketOwners::scan(qint64 pid) {
    m_found.clear();
    m_proc.socketInodes(pid, m_found); // a folder closed to us holds nothing we can count
    ++m_scans;
    m_scanned.insert(pid);
    for (const quint64 inode : m_found) {
        m_owners.try_emplace(inode, pid);
        m_unowned.erase(inode);
    }
}

} // namespace velmora
