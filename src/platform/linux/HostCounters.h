#pragma once

#include "platform/SystemProbes.h"
#include "platform/linux/ProcDirectory.h"

#include <QString>

#include <optional>
#include <string>
#include <string_view>

namespace velmora {

// Machine-wide figures: CPU ticks from <proc>/stat, memory from <proc>/meminfo, and the fill of the
// volume that holds the user's documents.
class HostCounters {
public:
    struct Memory {
        quint64 totalBytes = 0;
        quint64 availableBytes = 0;
    };

    HostCounters(const ProcDirectory& proc, QString documentsFolder);

    qint64 processorCount() const;
    qint64 physicalMemoryBytes();
    std::optional<CpuTicks> cpuTicks();
    float memoryInUseFraction();
    float storageInUseFraction() const;

    // From the "cpu" line: busy = user + nice + system + irq + softirq + steal, idle = idle + iowait
    // (guest time is already inside user and nice).
    static std::optional<CpuTicks> parseCpuTicks(std::string_view stat);
    // MemTotal and MemAvailable (MemFree on a kernel too old to estimate what is available).
    static std::optional<Memory> parseMemInfo(std::string_view meminfo);

private:
    std::optional<Memory> memory();

    const ProcDirectory& m_proc;
    const QString m_documents;
    std::string m_text;
    bool m_complained = false;
    std::optional<qint64> m_totalBytes;
};

} // namespace velmora
