#pragma once

#include "core/Rect.h"

#include <QString>

#include <optional>
#include <vector>

namespace velmora {

// One monitor. frame and visibleFrame are in the screen space (bottom-left origin, y up).
struct ScreenInfo {
    QString id;
    Rect frame;
    Rect visibleFrame;
    double scaleFactor = 1;

    bool operator==(const ScreenInfo&) const = default;
};

// The primary screen is the first one whose frame starts at the origin.
std::optional<ScreenInfo> primaryScreen(const std::vector<ScreenInfo>& screens);

// The first screen whose frame holds a screen-space point.
std::optional<ScreenInfo> screenAt(const std::vector<ScreenInfo>& screens, Point screenPoint);

} // namespace velmora
