#include "platform/linux/ProcessTable.h"

#include "platform/linux/InstallationFolder.h"
#include "platform/linux/LinuxLog.h"
#include "platform/linux/ProcessStat.h"
#include "platform/linux/StartTimeText.h"
#include "platform/linux/SystemdScope.h"

#include <charconv>
#include <ctime>
#include <string_view>
#include <unistd.h>

namespace velmora {

namespace {

// How long after its start a process's control group is read again at each reading.
constexpr double kScopeSettledSeconds = 30;

double bootClock() {
    timespec now{};
    ::clock_gettime(CLOCK_BOOTTIME, &now);
    return double(now.tv_sec) + double(now.tv_nsec) / 1e9;
}

// The second number of statm: resident pages.
std::optional<qint64> residentPages(std::string_view statm) {
    const auto space = statm.find(' ');
    if (space == std::string_view::npos)
        return std::nullopt;
    statm.remove_prefix(space + 1);
    qint64 pages = 0;
    const auto [end, error] = std::from_chars(statm.data(), statm.data() + statm.size(), pages);
    if (error != std::errc() || end == statm.data())
        return std::nullopt;
    return pages;
}

std::optional<qint64> bootTimeIn(std::string_view stat) {
    const auto at = stat.find("\nbtime ");
    if (at == std::string_view::npos)
        return std::nullopt;
    stat.remove_prefix(at + 7);
    qint64 seconds = 0;
    const auto [end, error] = std::from_chars(stat.data(), stat.data() + stat.size(), seconds);
    if (error != std::errc() || end == stat.data())
        return std::nullopt;
    return seconds;
}

} // namespace

ProcessTable::ProcessTable(const ProcDirectory& proc, uid_t uid, std::function<double()> secondsSinceBoot)
    : m_proc(proc), m_uid(uid),
      m_secondsSinceBoot(secondsSinceBoot ? std::move(secondsSinceBoot) : std::function<double()>(bootClock)),
      m_ticksPerSecond(double(::sysconf(_SC_CLK_TCK))), m_pageSize(::sysconf(_SC_PAGESIZE)) {}

std::optional<std::vector<ProcessRow>> ProcessTable::read() {
    // Before the listing: whatever it misses started after this moment, and counts from its start next time.
    const double now = m_secondsSinceBoot();
    const auto pids = m_proc.processesOf(m_uid);
    if (!pids) {
        if (!std::exchange(m_complained, true))
            qCWarning(lcLinux) << "Cannot list the processes in" << m_proc.root().c_str();
        return std::nullopt;
    }
    std::unordered_map<qint64, Seen> seen;
    seen.reserve(pids->size());
    std::vector<ProcessRow> rows;
    rows.reserve(pids->size());
    for (const qint64 pid : *pids)
        if (auto row = readProcess(pid, now, seen))
            rows.push_back(std::move(*row));
    m_seen = std::move(seen);
    m_lastReading = now;
    return rows;
}

std::optional<ProcessRow> ProcessTable::readProcess(qint64 pid, double now,
                                                    std::unordered_map<qint64, Seen>& seen) {
    if (!m_proc.read(pid, "stat", m_text))
        return std::nullopt;
    const auto stat = parseProcessStat(m_text);
    if (!stat)
        return std::nullopt;
    // One file less per process where stat carries the resident size (every kernel since 2.6).
    auto pages = stat->residentPages;
    if (!pages && m_proc.read(pid, "statm", m_text))
        pages = residentPages(m_text);
    if (!pages)
        return std::nullopt;

    const auto before = m_seen.find(pid);
    const Seen* same =
        before != m_seen.end() && before->second.startTicks == stat->startTicks ? &before->second : nullptr;
    ProcessRow row;
    row.pid = pid;
    row.parentPid = stat->parentPid;
    row.usedCPUs = usedCPUs(same, stat->startTicks, stat->usedTicks, now);
    row.residentBytes = *pages * m_pageSize;
    row.command = stat->command;
    if (same) {
        row.lstart = same->lstart;
    } else if (const auto boot = bootTime()) {
        row.lstart = startTimeText(std::time_t(*boot + qint64(stat->startTicks / quint64(m_ticksPerSecond))));
    }
    // The program changes only by exec, which also renames the process: the link is read again then.
    if (same && same->command == stat->command) {
        row.executablePath = same->executable;
        row.bundlePath = same->bundlePath;
    } else {
        // A program replaced on disk while running reads "<path> (deleted)": the path is still its own.
        row.executablePath = QString::fromUtf8(m_proc.link(pid, "exe"));
        if (row.executablePath.endsWith(QLatin1String(" (deleted)")))
            row.executablePath.chop(10);
        row.bundlePath = installationFolderUrl(row.executablePath);
    }
    // A launcher moves its program into a scope right after starting it; after that it stays.
    const bool settled = same && now - double(stat->startTicks) / m_ticksPerSecond > kScopeSettledSeconds;
    if (settled)
        row.scope = same->scope;
    else if (m_proc.read(pid, "cgroup", m_text))
        row.scope = applicationScope(m_text);
    seen[pid] = {stat->startTicks,   stat->usedTicks, row.command, row.lstart,
                 row.executablePath, row.bundlePath,  row.scope};
    return row;
}

// In cores: ticks over elapsed ticks. A process first seen now counts from its start when it started
// after the previous reading (all its ticks are then in the interval); one that was already running
// then, unseen (or on the very first reading), has no interval to count over and gives 0.
double ProcessTable::usedCPUs(const Seen* before, quint64 startTicks, quint64 usedTicks, double now) const {
    if (!m_lastReading)
        return 0;
    double used = 0, elapsed = 0;
    if (before) {
        used = usedTicks >= before->usedTicks ? double(usedTicks - before->usedTicks) : 0;
        elapsed = now - *m_lastReading;
    } else {
        const double started = double(startTicks) / m_ticksPerSecond;
        // Start times are whole ticks, cut down: one tick before the reading may be just after it.
        if (started + 1 / m_ticksPerSecond <= *m_lastReading)
            return 0;
        used = double(usedTicks);
        // At least one tick: a process a few microseconds old has used at most the tick it is in.
        elapsed = std::max(now - started, 1 / m_ticksPerSecond);
    }
    return elapsed > 0 ? used / (elapsed * m_ticksPerSecond) : 0;
}

std::optional<qint64> ProcessTable::bootTime() {
    if (!m_bootTime && m_proc.read("stat", m_text))
        m_bootTime = bootTimeIn(m_text);
    return m_bootTime;
}

} // namespace velmora
