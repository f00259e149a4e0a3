#pragma once

#include "core/Rect.h"
#include "platform/x11/XcbPtr.h"

#include <QByteArray>
#include <xcb/xcb.h>

#include <optional>
#include <vector>

namespace velmora {

// The toolkit's own X connection and the small helpers every X11 service needs.
class X11Connection {
public:
    // Absent when the application does not run on X11.
    static std::optional<X11Connection> fromApplication();
    // A private connection of its own (for work that waits on the server); closed by close().
    static std::optional<X11Connection> open();
    void close();

    xcb_connection_t* connection() const { return m_connection; }
    xcb_window_t root() const { return m_root; }

    xcb_atom_t atom(const char* name) const;
    std::vector<std::uint32_t> cardinals(xcb_window_t window, xcb_atom_t property) const;
    std::optional<xcb_window_t> windowProperty(xcb_window_t window, xcb_atom_t property) const;
    std::vector<xcb_atom_t> atoms(xcb_window_t window, xcb_atom_t property) const;
    // Text of a string property (UTF8_STRING or Latin-1), absent when not set.
    std::optional<QByteArray> text(xcb_window_t window, xcb_atom_t property) const;

    // Decorations the window manager draws around a client: left, right, top, bottom.
    struct Extents {
        double left = 0, right = 0, top = 0, bottom = 0;
    };
    Extents frameExtents(xcb_window_t window) const;
    // The client's outer frame (decorations included) in root coordinates; absent once it is gone.
    std::optional<Rect> outerFrame(xcb_window_t window) const;

private:
    X11Connection(xcb_connection_t* c, xcb_window_t root) : m_connection(c), m_root(root) {}

    xcb_connection_t* m_connection;
    xcb_window_t m_root;
};

} // namespace velmora
