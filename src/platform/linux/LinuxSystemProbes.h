#pragma once

#include "platform/SystemProbes.h"
#include "platform/linux/HostCounters.h"
#include "platform/linux/NetworkLedger.h"
#include "platform/linux/ProcDirectory.h"
#include "platform/linux/ProcessTable.h"
#include "platform/linux/SocketCounters.h"
#include "platform/linux/SocketOwners.h"

namespace velmora {

// The system monitor's counters on Linux, read from the kernel directly (no program started): the
// user's processes from /proc, their TCP byte counters from socket diagnostics, the machine's CPU and
// memory from /proc and its storage from statvfs. Made on the main thread, then used from one worker
// thread at a time.
class LinuxSystemProbes final : public SystemProbes {
public:
    LinuxSystemProbes();

    qint64 processorCount() override { return m_host.processorCount(); }
    qint64 physicalMemoryBytes() override { return m_host.physicalMemoryBytes(); }
    std::optional<CpuTicks> cpuTicks() override { return m_host.cpuTicks(); }
    float memoryInUseFraction() override { return m_host.memoryInUseFraction(); }
    float storageInUseFraction() override { return m_host.storageInUseFraction(); }
    std::optional<std::vector<ProcessRow>> processRows() override { return m_processes.read(); }
    bool hasNetworkCounters() override;
    std::optional<std::map<qint64, NetworkTotals>> networkTotals() override;

    // How many processes' descriptors were read to find socket owners so far.
    quint64 socketOwnerScans() const { return m_owners.scans(); }

private:
    const uid_t m_uid;
    ProcDirectory m_proc;
    ProcessTable m_processes;
    HostCounters m_host;
    SocketCounters m_sockets;
    SocketOwners m_owners;
    NetworkLedger m_ledger;
    bool m_asked = false;
};

} // namespace velmora
