#include "platform/linux/ProcessStat.h"

#include <charconv>

namespace velmora {

namespace {

// The next space-separated field of `rest`, consumed.
std::string_view nextField(std::string_view& rest) {
    const auto start = rest.find_first_not_of(' ');
    if (start == std::string_view::npos) {
        rest = {};
        return {};
    }
    rest.remove_prefix(start);
    const auto end = std::min(rest.find(' '), rest.size());
    const std::string_view field = rest.substr(0, end);
    rest.remove_prefix(end);
    return field;
}

template <class T> bool parseNumber(std::string_view text, T& value) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc() && end == text.data() + text.size();
}

} // namespace

std::optional<ProcessStat> parseProcessStat(std::string_view line) {
    const auto open = line.find('(');
    const auto close = line.rfind(')');
    if (open == std::string_view::npos || close == std::string_view::npos || close < open)
        return std::nullopt;
    ProcessStat stat;
    std::string_view pid = line.substr(0, open);
    while (!pid.empty() && pid.back() == ' ')
        pid.remove_suffix(1);
    if (!parseNumber(pid, stat.pid))
        return std::nullopt;
    const std::string_view name = line.substr(open + 1, close - open - 1);
    stat.command = QString::fromUtf8(name.data(), qsizetype(name.size()));

    // Fields numbered as proc(5) does: the state after the name is field 3.
    std::string_view rest = line.substr(close + 1);
    quint64 utime = 0, stime = 0;
    bool parent = false, user = false, system = false, start = false;
    for (int field = 3; field <= 22; ++field) {
        const std::string_view text = nextField(rest);
        if (text.empty())
            return std::nullopt;
        if (field == 4)
            parent = parseNumber(text, stat.parentPid);
        else if (field == 14)
            user = parseNumber(text, utime);
        else if (field == 15)
            system = parseNumber(text, stime);
        else if (field == 22)
            start = parseNumber(text, stat.startTicks);
    }
    if (!parent || !user || !system || !start)
        return std::nullopt;
    nextField(rest); // 23: virtual size
    if (qint64 pages = 0; parseNumber(nextField(rest), pages))
        stat.residentPages = pages;
    stat.usedTicks = utime + stime;
    return stat;
}

} // namespace velmora
