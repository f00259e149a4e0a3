#include "core/ScreenInfo.h"

namespace velmora {

std::optional<ScreenInfo> primaryScreen(const std::vector<ScreenInfo>& screens) {
    for (const auto& s : screens)
        if (s.frame.x == 0 && s.frame.y == 0)
            return s;
    return std::nullopt;
}

std::optional<ScreenInfo> screenAt(const std::vector<ScreenInfo>& screens, Point screenPoint) {
    for (const auto& s : screens)
        if (s.frame.contains(screenPoint))
            return s;
    return std::nullopt;
}

} // namespace velmora
