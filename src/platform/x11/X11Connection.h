#pragma once

#include "core/Rect.h"
#include "platform/x11/XcbPtr.h"

#include <QByteArray>
#include <xcb/xcb.h>

#include <optional>
#include <unordered_map>
#include <vector>

namespace velmora {

// One X connection: the toolkit's own, borrowed (never closed here), or a private one, owned and
// closed with this object. Move-only. Its atoms are interned in one batch when it is made.
class X11Connection {
public:
    // The toolkit's connection; absent when the application does not run on X11.
    static std::optional<X11Connection> borrowApplication();
    // A private connection (for work that waits on the server); absent when the server is unreachable.
    static std::optional<X11Connection> open();

    X11Connection(X11Connection&& other) noexcept;
    X11Connection& operator=(X11Connection&& other) noexcept;
    X11Connection(const X11Connection&) = delete;
    X11Connection& operator=(const X11Connection&) = delete;
    ~X11Connection();

    xcb_connection_t* connection() const { return m_connection; }
    xcb_window_t root() const { return m_root; }
    bool hasError() const { return !m_connection || xcb_connection_has_error(m_connection); }

    // An atom by name: from the batch interned at start, else asked once and remembered.
    xcb_atom_t atom(const char* name) const;

    // Property reads, one round trip each; for many windows, send with requestProperty() first and
    // collect the replies after.
    xcb_get_property_cookie_t requestProperty(xcb_window_t window, xcb_atom_t property) const;
    static std::vector<std::uint32_t> cardinals(XcbPtr<xcb_get_property_reply_t> reply);
    static std::optional<QByteArray> text(XcbPtr<xcb_get_property_reply_t> reply);
    XcbPtr<xcb_get_property_reply_t> reply(xcb_get_property_cookie_t cookie) const;
    std::vector<std::uint32_t> cardinals(xcb_window_t window, xcb_atom_t property) const;
    std::optional<xcb_window_t> windowProperty(xcb_window_t window, xcb_atom_t property) const;

    // A window's outer frame (decorations included) in root coordinates, asked in one round trip;
    // absent once the window is gone.
    struct FrameRequest {
        xcb_get_geometry_cookie_t geometry;
        xcb_translate_coordinates_cookie_t position;
        xcb_get_property_cookie_t extents;
    };
    FrameRequest requestFrame(xcb_window_t window) const;
    std::optional<Rect> frame(const FrameRequest& request) const;
    std::optional<Rect> outerFrame(xcb_window_t window) const { return frame(requestFrame(window)); }

private:
    X11Connection(xcb_connection_t* c, xcb_window_t root, bool owned);
    void internKnownAtoms();

    xcb_connection_t* m_connection = nullptr;
    xcb_window_t m_root = 0;
    bool m_owned = false;
    mutable std::unordered_map<std::string, xcb_atom_t> m_atoms;
};

// Decorations the window manager draws around a client: left, right, top, bottom, from
// _NET_FRAME_EXTENTS (all 0 when absent).
struct FrameExtents {
    double left = 0, right = 0, top = 0, bottom = 0;
    bool operator==(const FrameExtents&) const = default;
};
FrameExtents frameExtentsFrom(const std::vector<std::uint32_t>& values);

} // namespace velmora
