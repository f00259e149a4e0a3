#pragma once

#include "platform/WindowServer.h"
#include "platform/x11/X11Connection.h"

namespace velmora {

// The managed windows of an EWMH window manager: _NET_CLIENT_LIST_STACKING read front to back; only
// mapped, not minimised windows are on screen. Docks, desktops and menus are not on the normal layer.
class X11WindowServer final : public WindowServer {
public:
    explicit X11WindowServer(X11Connection x) : m_x(x) {}

    std::vector<ServerWindow> onScreenWindows() const override;
    std::optional<qint32> frontmostApplicationPid() const override;
    std::set<quint64> currentSpaces() const override;

    qint32 pidOf(xcb_window_t window) const;

private:
    bool isOnScreen(xcb_window_t window) const;
    int layerOf(xcb_window_t window) const;
    std::optional<QString> ownerName(xcb_window_t window) const;

    X11Connection m_x;
};

} // namespace velmora
