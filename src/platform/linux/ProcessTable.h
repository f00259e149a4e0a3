#pragma once

#include "platform/SystemProbes.h"
#include "platform/linux/ProcDirectory.h"

#include <functional>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace velmora {

// The current user's processes, one pass over /proc/<pid> per reading: stat (parent, CPU ticks, start,
// name), statm (resident pages), the executable and the control group. CPU use is the ticks a process
// used since the previous reading over the time between the two readings, so the table remembers each
// process's ticks, keyed by pid and start time: a pid that comes back with another start time is
// another process. Whatever ended since is forgotten.
class ProcessTable {
public:
    // The clock tells the seconds since boot (the clock process start times count on); both it and the
    // folder are this machine's unless a test gives its own.
    ProcessTable(const ProcDirectory& proc, uid_t uid, std::function<double()> secondsSinceBoot = {});

    // Nothing when the process folder cannot be listed at all; a process that cannot be read is left out.
    std::optional<std::vector<ProcessRow>> read();

private:
    struct Seen {
        quint64 startTicks = 0;
        quint64 usedTicks = 0;
        QString command;
        QString lstart;
        QString executable;
        std::optional<QString> bundlePath;
        std::optional<QString> scope;
    };

    std::optional<ProcessRow> readProcess(qint64 pid, double now, std::unordered_map<qint64, Seen>& seen);
    double usedCPUs(const Seen* before, quint64 startTicks, quint64 usedTicks, double now) const;
    std::optional<qint64> bootTime();

    const ProcDirectory& m_proc;
    const uid_t m_uid;
    std::function<double()> m_secondsSinceBoot;
    const double m_ticksPerSecond;
    const qint64 m_pageSize;
    std::optional<qint64> m_bootTime; // seconds since the epoch, from btime in <root>/stat
    std::optional<double> m_lastReading;
    std::unordered_map<qint64, Seen> m_seen;
    std::string m_text; // one buffer for every file read
    bool m_complained = false;
};

} // namespace velmora
