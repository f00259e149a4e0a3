#pragma once

#include "core/UnitRect.h"
#include "core/WindowArea.h"

#include <QString>
#include <optional>

namespace velmora {

// Reads one number of a zone as the user typed it: a decimal ("0.75"), a percentage ("75%") or a
// fraction ("3/4"). The value must lie in (0, 1), with the ends admitted by allowZero and allowOne;
// anything else, or text that is no number at all, is absent. Empty text stands for the fallback.
std::optional<double> parseZoneNumber(const QString& text, bool allowZero, bool allowOne, double fallback);

// The rules of a zone's coordinates: a position may be 0 but not 1 (a zone starting at the far edge
// would be empty), a size may be 1 but not 0. Empty text means the top-left edge, or the full extent.
std::optional<double> parseZonePosition(const QString& text);
std::optional<double> parseZoneSize(const QString& text);
// A zone's width or height: a unit size as above, or a plain number above 1, a size in points.
std::optional<double> parseZoneSizeOrPoints(const QString& text);

// The zone's four numbers, or absent when any of them does not read; such a zone is skipped until the
// user fixes it.
std::optional<UnitRect> parseZone(const WindowArea& area);

} // namespace velmora
