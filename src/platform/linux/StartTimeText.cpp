#include "platform/linux/StartTimeText.h"

#include <cstdio>

namespace velmora {

QString startTimeText(std::time_t seconds) {
    static constexpr const char* kDays[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
    static constexpr const char* kMonths[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                              "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    std::tm local{};
    if (!localtime_r(&seconds, &local) || local.tm_wday < 0 || local.tm_wday > 6 || local.tm_mon < 0 ||
        local.tm_mon > 11)
        return {};
    char text[64];
    std::snprintf(text, sizeof text, "%s %s %2d %02d:%02d:%02d %d", kDays[local.tm_wday],
                  kMonths[local.tm_mon], local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec,
                  local.tm_year + 1900);
    return QString::fromLatin1(text);
}

} // namespace velmora
