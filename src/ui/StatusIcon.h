#pragma once

#include "app/StatusIndicator.h"

#include <QIcon>
#include <QRect>
#include <optional>

namespace velmora {

// The tray icon: a monochrome symbolic glyph, light on a dark panel and dark on a light one, as
// desktop trays draw their icons. While a state the user must see lasts (the keyboard is off, sleep is
// prevented), the glyph becomes that state's own with a coloured mark.
struct StatusIconLook {
    bool darkPanel = true;
    std::optional<StatusGlyph> state;
    bool operator==(const StatusIconLook&) const = default;
};

QIcon statusIcon(const StatusIconLook& look);

// Whether the panel behind an icon's place on the screen is dark, judged from its pixels (the corners
// of the place, which the glyph leaves empty); absent when the screen cannot be read there.
std::optional<bool> panelIsDarkAt(const QRect& iconGeometry);

} // namespace velmora
