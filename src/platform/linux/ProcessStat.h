#pragma once

#include <QString>
#include <QtGlobal>

#include <optional>
#include <string_view>

namespace velmora {

// The fields of /proc/<pid>/stat the system monitor uses.
struct ProcessStat {
    qint64 pid = 0;
    qint64 parentPid = 0;
    quint64 usedTicks = 0;  // utime + stime, in clock ticks
    quint64 startTicks = 0; // clock ticks after boot at which the process started
    QString command;        // `comm`: at most 15 bytes, any of them but NUL, spaces and ')' included
    std::optional<qint64> residentPages; // the same counter as statm's second field, when the line has it

    bool operator==(const ProcessStat&) const = default;
};

// Nothing when the line is not a stat line. The name sits between the first '(' and the LAST ')', since
// a program may call itself "a) (b".
std::optional<ProcessStat> parseProcessStat(std::string_view line);

} // namespace velmora
