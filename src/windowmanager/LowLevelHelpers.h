#pragma once

#include "core/ScreenInfo.h"
#include "windowmanager/WindowManagerTypes.h"

#include <vector>

namespace velmora {

class WindowServer;

// The windows the window manager may act on, front to back: normal-layer windows of other programs,
// at least 150 x 150 points; only the front window of the frontmost program counts as focused.
std::vector<CGWindowInfo> listCGWindows(const WindowServer& server, qint32 ownPid);

// A screen's visible frame in the top-left space: the rectangle zones and placement work in.
Rect usableRect(const ScreenInfo& screen, double primaryHeight);

// The screen holding the middle of the window's top edge; the main screen when none does.
std::optional<ScreenInfo> screenForWindowFrame(const Rect& frame, const std::vector<ScreenInfo>& screens,
                                               const std::optional<ScreenInfo>& mainScreen);

Edges edgesTouching(const Rect& window, const Rect& reference, double gap, double tolerance);

} // namespace velmora
