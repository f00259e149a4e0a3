#include "platform/linux/HostCounters.h"

#include "platform/linux/LinuxLog.h"

#include <QDir>
#include <QFileInfo>
#include <algorithm>
#include <charconv>
#include <sys/statvfs.h>
#include <unistd.h>

namespace velmora {

namespace {

std::optional<quint64> numberAt(std::string_view& rest) {
    const auto start = rest.find_first_not_of(' ');
    if (start == std::string_view::npos)
        return std::nullopt;
    rest.remove_prefix(start);
    quint64 value = 0;
    const auto [end, error] = std::from_chars(rest.data(), rest.data() + rest.size(), value);
    if (error != std::errc())
        return std::nullopt;
    rest.remove_prefix(std::size_t(end - rest.data()));
    return value;
}

// The value of "<key>:   <number> kB" in meminfo, in bytes.
std::optional<quint64> memInfoBytes(std::string_view text, std::string_view key) {
    for (std::size_t at = 0; at < text.size();) {
        const auto end = std::min(text.find('\n', at), text.size());
        std::string_view line = text.substr(at, end - at);
        at = end + 1;
        if (!line.starts_with(key) || line.size() <= key.size() || line[key.size()] != ':')
            continue;
        line.remove_prefix(key.size() + 1);
        const auto value = numberAt(line);
        return value ? std::optional(*value * 1024) : std::nullopt;
    }
    return std::nullopt;
}

} // namespace

HostCounters::HostCounters(const ProcDirectory& proc, QString documentsFolder)
    : m_proc(proc), m_documents(std::move(documentsFolder)) {}

qint64 HostCounters::processorCount() const {
    return std::max(1L, ::sysconf(_SC_NPROCESSORS_ONLN));
}

// Physical memory does not change while the agent runs: read once.
qint64 HostCounters::physicalMemoryBytes() {
    if (!m_totalBytes)
        if (const auto found = memory())
            m_totalBytes = qint64(found->totalBytes);
    return m_totalBytes.value_or(0);
}

std::optional<CpuTicks> HostCounters::cpuTicks() {
    const auto ticks = m_proc.read("stat", m_text) ? parseCpuTicks(m_text) : std::nullopt;
    if (!ticks && !std::exchange(m_complained, true))
        qCWarning(lcLinux) << "Cannot read the CPU counters of" << m_proc.root().c_str();
    return ticks;
}

float HostCounters::memoryInUseFraction() {
    const auto found = memory();
    if (!found || found->totalBytes == 0)
        return 0;
    const double available = double(std::min(found->availableBytes, found->totalBytes));
    return float(1.0 - available / double(found->totalBytes));
}

// The documents folder may not exist (yet): its volume is then the home folder's.
float HostCounters::storageInUseFraction() const {
    struct statvfs volume {};
    const QString folder = QFileInfo(m_documents).isDir() ? m_documents : QDir::homePath();
    if (::statvfs(QFile::encodeName(folder).constData(), &volume) != 0 || volume.f_blocks == 0)
        return 0;
    return float(std::clamp(1.0 - double(volume.f_bavail) / double(volume.f_blocks), 0.0, 1.0));
}

std::optional<CpuTicks> HostCounters::parseCpuTicks(std::string_view stat) {
    if (!stat.starts_with("cpu "))
        return std::nullopt;
    std::string_view rest = stat.substr(4, stat.find('\n') - 4);
    quint64 values[8] = {}; // user nice system idle iowait irq softirq steal
    for (int i = 0; i < 8; ++i) {
        const auto value = numberAt(rest);
        if (!value && i < 4)
            return std::nullopt;
        values[i] = value.value_or(0); // iowait, irq, softirq and steal came with later kernels
        if (!value)
            break;
    }
    const auto [user, nice, system, idle, iowait, irq, softirq, steal] = values;
    CpuTicks ticks;
    ticks.busy = user + nice + system + irq + softirq + steal;
    ticks.total = ticks.busy + idle + iowait;
    return ticks;
}

std::optional<HostCounters::Memory> HostCounters::parseMemInfo(std::string_view meminfo) {
    const auto total = memInfoBytes(meminfo, "MemTotal");
    if (!total)
        return std::nullopt;
    auto available = memInfoBytes(meminfo, "MemAvailable");
    if (!available)
        available = memInfoBytes(meminfo, "MemFree");
    return Memory{*total, available.value_or(0)};
}

std::optional<HostCounters::Memory> HostCounters::memory() {
    const auto found = m_proc.read("meminfo", m_text) ? parseMemInfo(m_text) : std::nullopt;
    if (!found && !std::exchange(m_complained, true))
        qCWarning(lcLinux) << "Cannot read the memory counters of" << m_proc.root().c_str();
    return found;
}

} // namespace velmora
