#pragma once

#include <QString>

#include <ctime>

namespace velmora {

// A moment in local time as `ps -o lstart` writes it: "Mon Nov 23 13:40:09 2026", the day of the month
// padded with a space below 10 ("Mon Nov  2 ..."). The names are English whatever the locale, so that
// the text reads the same everywhere it is shown or compared.
QString startTimeText(std::time_t seconds);

} // namespace velmora
