#include "agent/ModelCheck.h"

#include "platform/Platform.h"

namespace velmora {

namespace {

Json rect(const Rect& r) {
    return Json::array({r.x, r.y, r.width, r.height});
}

Json windowsJson(const std::vector<ServerWindow>& windows) {
    Json list = Json::array();
    for (const auto& w : windows)
        list.push_back({{"id", w.id},
                        {"layer", w.layer ? Json(*w.layer) : Json(nullptr)},
                        {"pid", w.pid},
                        {"frame", rect(w.frame)},
                        {"owner", w.ownerName ? Json(*w.ownerName) : Json(nullptr)},
                        {"space", w.spaceId},
                        {"title", w.title ? Json(*w.title) : Json(nullptr)}});
    return list;
}

Json screensJson(const std::vector<ScreenInfo>& screens) {
    Json list = Json::array();
    for (const auto& s : screens)
        list.push_back({{"id", s.id}, {"frame", rect(s.frame)}, {"visibleFrame", rect(s.visibleFrame)}});
    return list;
}

} // namespace

Json modelCheck(const Platform& platform) {
    const auto cachedWindows = platform.windowServer->onScreenWindows();
    const auto freshWindows = platform.windowServer->listAfresh();
    const auto cachedScreens = platform.screens->screens();
    const auto freshScreens = platform.screens->screensAfresh();
    return {{"windowsAgree", cachedWindows == freshWindows},
            {"screensAgree", cachedScreens == freshScreens},
            {"windows", {{"cached", windowsJson(cachedWindows)}, {"fresh", windowsJson(freshWindows)}}},
            {"screens", {{"cached", screensJson(cachedScreens)}, {"fresh", screensJson(freshScreens)}}}};
}

} // namespace velmora
