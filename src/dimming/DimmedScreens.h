#pragma once

#include "core/Rect.h"

#include <QString>
#include <optional>

namespace velmora {

// Which monitors are dimmed: by shape alone. Portrait monitors (width / height below 1) and those of
// 16:9 or wider qualify; 16:10 and squarer ones (the usual built-in laptop panels) never do. An
// external 16:10 monitor is therefore not dimmed, and a 16:9 built-in panel would be: deliberate.
bool qualifiesForDimming(const Rect& frame);

// The overlay registry's key of a screen frame: x, y, width and height as the decimal text of a
// double, joined with ":" ("0.0:0.0:2560.0:1440.0").
QString dimmingScreenKey(const Rect& frame);

// A double as decimal text: the shortest that reads back the same, whole numbers with ".0".
QString decimalText(double value);

// Why no overlay can be laid over this frame (no area, not finite, beyond what X11 windows can
// span); absent for a usable frame.
std::optional<QString> unusableFrameReason(const Rect& frame);

} // namespace velmora
