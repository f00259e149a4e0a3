#include "windowmanager/LowLevelHelpers.h"

#include "platform/WindowServer.h"

#include <cmath>
#include <set>

namespace velmora {

std::vector<CGWindowInfo> listCGWindows(const WindowServer& server, qint32 ownPid) {
    const auto frontmost = server.frontmostApplicationPid();
    std::vector<CGWindowInfo> result;
    std::set<qint32> focusedPids;
    for (const auto& w : server.onScreenWindows()) {
        if (w.layer && *w.layer != 0)
            continue;
        if (w.pid == ownPid)
            continue;
        if (w.frame.width < 150 || w.frame.height < 150)
            continue;
        CGWindowInfo info{w.id, w.spaceId, w.pid, w.frame, false, w.ownerName, w.title};
        if (frontmost && w.pid == *frontmost && focusedPids.insert(w.pid).second)
            info.isFocused = true;
        result.push_back(std::move(info));
    }
    return result;
}

Rect usableRect(const ScreenInfo& screen, double primaryHeight) {
    return screen.visibleFrame.flipped(primaryHeight);
}

std::optional<ScreenInfo> screenForWindowFrame(const Rect& frame, const std::vector<ScreenInfo>& screens,
                                               const std::optional<ScreenInfo>& mainScreen) {
    const auto primary = primaryScreen(screens);
    if (primary) {
        const Point topMiddle{frame.midX(), frame.minY()};
        for (const auto& s : screens)
            if (usableRect(s, primary->frame.height).contains(topMiddle))
                return s;
    }
    return mainScreen;
}

Edges edgesTouching(const Rect& w, const Rect& r, double gap, double t) {
    return {std::abs(r.minX() + gap - w.minX()) < t, std::abs(r.maxX() - gap - w.maxX()) < t,
            std::abs(r.minY() + gap - w.minY()) < t, std::abs(r.maxY() - gap - w.maxY()) < t};
}

} // namespace velmora
