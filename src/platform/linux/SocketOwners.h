#pragma once

#include "platform/linux/ProcDirectory.h"

#include <optional>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace velmora {

// Which of the user's processes holds each socket, from the links "socket:[inode]" in /proc/<pid>/fd.
// Reading every descriptor of every process is the expensive part, so a process's descriptors are read
// when it is first seen, and all of them again only when a socket appears that no known process holds
// (a process seen before opened a new one). A socket no process of the user turns out to hold (its
// holder's folder is closed to us) is remembered as such, so it does not cause a rescan at every
// reading. A socket two processes share (inherited across fork) is counted for the first found.
class SocketOwners {
public:
    explicit SocketOwners(const ProcDirectory& proc) : m_proc(proc) {}

    // Brings the owners up to date for the processes and the sockets that exist now.
    void update(const std::vector<qint64>& pids, const std::vector<quint64>& inodes);
    std::optional<qint64> ownerOf(quint64 inode) const;

    // How many processes' descriptors were read so far: what the caching saves shows here.
    quint64 scans() const { return m_scans; }

private:
    void scan(qint64 pid);

    const ProcDirectory& m_proc;
    std::unordered_map<quint64, qint64> m_owners;
    std::unordered_set<qint64> m_scanned;
    std::unordered_set<quint64> m_unowned;
    std::vector<quint64> m_found; // one buffer for every scan
    quint64 m_scans = 0;
};

} // namespace velmora
