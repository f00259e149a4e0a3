#include "monitoring/ProcessListParser.h"

#include <QRegularExpression>
#include <cmath>
#include <limits>

namespace velmora {

namespace {

std::optional<ProcessSnapshot> parseLine(const QString& rawLine) {
    static const QRegularExpression kLine(R"(^\s*(\d+)\s+(\d+)\s+(\d+\.?\d*)\s+(\d+)\s+([^\s]+)\s+(.+)$)");
    const QRegularExpressionMatch match = kLine.match(rawLine.trimmed());
    if (!match.hasMatch() || match.lastCapturedIndex() < 6)
        return std::nullopt;
    bool pidOk = false, parentOk = false, cpuOk = false, rssOk = false;
    ProcessSnapshot process;
    process.pid = match.captured(1).toLongLong(&pidOk);
    const qint64 parent = match.captured(2).toLongLong(&parentOk);
    const double percent = match.captured(3).toDouble(&cpuOk);
    const double rssKilobytes = match.captured(4).toDouble(&rssOk);
    // Digits beyond what the fields hold are not a process line.
    const double rssBytes = rssKilobytes * 1024.0;
    if (!pidOk || !parentOk || !cpuOk || !rssOk || !std::isfinite(percent) ||
        rssBytes >= double(std::numeric_limits<qint64>::max()))
        return std::nullopt;
    process.parentPid = parent;
    process.name = match.captured(5);
    process.lstart = match.captured(6).trimmed();
    process.resourceUsage.usedCPUs = percent / 100.0;
    process.resourceUsage.usedMemoryBytes = qint64(rssBytes);
    return process;
}

} // namespace

std::vector<ProcessSnapshot> parseProcessList(const QString& output,
                                              const RunningApplicationMap& applications) {
    std::vector<ProcessSnapshot> processes;
    for (const QString& line : output.split('\n')) {
        auto process = parseLine(line);
        if (!process)
            continue;
        attachRunningApplication(*process, applications);
        processes.push_back(std::move(*process));
    }
    return processes;
}

} // namespace velmora
