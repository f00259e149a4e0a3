#include "platform/x11/X11Connection.h"

#include <QGuiApplication>
#include <QHash>
#include <cstring>

namespace velmora {

std::optional<X11Connection> X11Connection::fromApplication() {
    auto* x11 = qGuiApp ? qGuiApp->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    if (!x11 || !x11->connection() || xcb_connection_has_error(x11->connection()))
        return std::nullopt;
    xcb_connection_t* c = x11->connection();
    const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(c)).data;
    if (!screen)
        return std::nullopt;
    return X11Connection(c, screen->root);
}

std::optional<X11Connection> X11Connection::open() {
    xcb_connection_t* c = xcb_connect(nullptr, nullptr);
    if (xcb_connection_has_error(c)) {
        xcb_disconnect(c);
        return std::nullopt;
    }
    return X11Connection(c, xcb_setup_roots_iterator(xcb_get_setup(c)).data->root);
}

void X11Connection::close() {
    if (m_connection)
        xcb_disconnect(m_connection);
    m_connection = nullptr;
}

std::vector<xcb_atom_t> X11Connection::atoms(xcb_window_t window, xcb_atom_t property) const {
    return cardinals(window, property); // atoms are 32-bit values like cardinals
}

std::optional<QByteArray> X11Connection::text(xcb_window_t window, xcb_atom_t property) const {
    auto cookie = xcb_get_property(m_connection, 0, window, property, XCB_GET_PROPERTY_TYPE_ANY, 0, 1024);
    XcbPtr<xcb_get_property_reply_t> reply(xcb_get_property_reply(m_connection, cookie, nullptr));
    if (!reply || reply->type == XCB_ATOM_NONE || reply->format != 8)
        return std::nullopt;
    return QByteArray(static_cast<const char*>(xcb_get_property_value(reply.get())),
                      xcb_get_property_value_length(reply.get()));
}

X11Connection::Extents X11Connection::frameExtents(xcb_window_t window) const {
    const auto e = cardinals(window, atom("_NET_FRAME_EXTENTS"));
    if (e.size() < 4)
        return {};
    return {double(e[0]), double(e[1]), double(e[2]), double(e[3])};
}

std::optional<Rect> X11Connection::outerFrame(xcb_window_t window) const {
    auto* c = m_connection;
    auto geometryCookie = xcb_get_geometry(c, window);
    auto translateCookie = xcb_translate_coordinates(c, window, m_root, 0, 0);
    XcbPtr<xcb_get_geometry_reply_t> g(xcb_get_geometry_reply(c, geometryCookie, nullptr));
    XcbPtr<xcb_translate_coordinates_reply_t> t(xcb_translate_coordinates_reply(c, translateCookie, nullptr));
    if (!g || !t)
        return std::nullopt;
    const auto e = frameExtents(window);
    return Rect{t->dst_x - e.left, t->dst_y - e.top, g->width + e.left + e.right,
                g->height + e.top + e.bottom};
}

xcb_atom_t X11Connection::atom(const char* name) const {
    // Atoms never change for the life of the server, so each is asked for once.
    static QHash<QByteArray, xcb_atom_t> cache;
    auto it = cache.constFind(name);
    if (it != cache.constEnd())
        return *it;
    auto cookie = xcb_intern_atom(m_connection, 0, std::strlen(name), name);
    XcbPtr<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(m_connection, cookie, nullptr));
    const xcb_atom_t a = reply ? reply->atom : xcb_atom_t(XCB_ATOM_NONE);
    if (a != XCB_ATOM_NONE)
        cache.insert(name, a);
    return a;
}

std::vector<std::uint32_t> X11Connection::cardinals(xcb_window_t window, xcb_atom_t property) const {
    auto cookie = xcb_get_property(m_connection, 0, window, property, XCB_GET_PROPERTY_TYPE_ANY, 0, 4096);
    XcbPtr<xcb_get_property_reply_t> reply(xcb_get_property_reply(m_connection, cookie, nullptr));
    if (!reply || reply->format != 32)
        return {};
    const auto* data = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
    const int n = xcb_get_property_value_length(reply.get()) / 4;
    return std::vector<std::uint32_t>(data, data + n);
}

std::optional<xcb_window_t> X11Connection::windowProperty(xcb_window_t window, xcb_atom_t property) const {
    const auto values = cardinals(window, property);
    if (values.empty())
        return std::nullopt;
    return values.front();
}

} // namespace velmora
