#pragma once

#include "platform/WindowServer.h"
#include "platform/x11/X11EventHub.h"

#include <QTimer>
#include <set>
#include <unordered_map>

namespace velmora {

// The managed windows of an EWMH window manager, kept in memory from the event hub's signals:
// _NET_CLIENT_LIST_STACKING front to back, and for each window what the listing needs. Changes are
// gathered and read in one batch per turn of the event loop (every request sent, then every reply
// collected), so a burst of changes costs one round trip. Only mapped, not minimised windows are on
// screen; docks, desktops and menus are not on the normal layer.
class X11WindowServer final : public WindowServer {
    Q_OBJECT
public:
    explicit X11WindowServer(X11EventHub& hub);

    std::vector<ServerWindow> onScreenWindows() const override;
    std::optional<qint32> frontmostApplicationPid() const override;
    std::set<quint64> currentSpaces() const override;
    std::vector<ServerWindow> listAfresh() const override;
    bool announcesChanges() const override { return true; }

    // What placing a window needs to know of it, from memory.
    struct Placement {
        FrameExtents extents;
        bool maximized = false;
        Rect frame;
    };
    std::optional<Placement> placement(xcb_window_t window) const;
    // The active window, when it is one of the managed windows.
    std::optional<ServerWindow> activeWindow() const;

private:
    struct Record {
        ServerWindow window;
        bool viewable = false;
        bool hidden = false;
        bool maximized = false;
        FrameExtents extents;
    };
    using Records = std::unordered_map<xcb_window_t, Record>;

    std::vector<xcb_window_t> readStacking() const;
    Records fetch(const std::vector<xcb_window_t>& windows) const;
    std::vector<ServerWindow> listed(const std::vector<xcb_window_t>& stacking, const Records& records) const;

    void rootPropertyChanged(xcb_atom_t property);
    void windowPropertyChanged(xcb_window_t window, xcb_atom_t property);
    void windowChanged(xcb_window_t window);
    void scheduleSync();
    void sync();

    X11EventHub& m_hub;
    const X11Connection& m_x;
    QTimer m_syncTimer;
    std::vector<xcb_window_t> m_stacking; // back to front, as the window manager lists it
    Records m_records;
    std::optional<xcb_window_t> m_active;
    std::optional<std::uint32_t> m_currentDesktop;
    bool m_stackingDirty = true, m_activeDirty = true, m_desktopDirty = true;
    std::set<xcb_window_t> m_dirty;
};

} // namespace velmora
