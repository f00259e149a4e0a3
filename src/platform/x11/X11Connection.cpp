#include "platform/x11/X11Connection.h"

#include <QGuiApplication>
#include <cstring>
#include <utility>

namespace velmora {

namespace {

// Every atom the backend uses, interned together when a connection is made.
constexpr const char* kKnownAtoms[] = {
    "_NET_CLIENT_LIST",
    "_NET_CLIENT_LIST_STACKING",
    "_NET_ACTIVE_WINDOW",
    "_NET_CURRENT_DESKTOP",
    "_NET_SUPPORTING_WM_CHECK",
    "_NET_WM_NAME",
    "_NET_WM_PID",
    "_NET_WM_DESKTOP",
    "_NET_WM_STATE",
    "_NET_WM_STATE_HIDDEN",
    "_NET_WM_STATE_MAXIMIZED_VERT",
    "_NET_WM_STATE_MAXIMIZED_HORZ",
    "_NET_WM_WINDOW_TYPE",
    "_NET_WM_WINDOW_TYPE_NORMAL",
    "_NET_WM_WINDOW_TYPE_DIALOG",
    "_NET_WM_WINDOW_TYPE_UTILITY",
    "_NET_FRAME_EXTENTS",
    "_NET_MOVERESIZE_WINDOW",
    "_NET_WM_STRUT",
    "_NET_WM_STRUT_PARTIAL",
    "CLIPBOARD",
    "UTF8_STRING",
};

} // namespace

X11Connection::X11Connection(xcb_connection_t* c, xcb_window_t root, bool owned)
    : m_connection(c), m_root(root), m_owned(owned) {
    internKnownAtoms();
}

X11Connection::X11Connection(X11Connection&& other) noexcept
    : m_connection(std::exchange(other.m_connection, nullptr)), m_root(other.m_root),
      m_owned(std::exchange(other.m_owned, false)), m_atoms(std::move(other.m_atoms)) {}

X11Connection& X11Connection::operator=(X11Connection&& other) noexcept {
    if (this != &other) {
        if (m_owned && m_connection)
            xcb_disconnect(m_connection);
        m_connection = std::exchange(other.m_connection, nullptr);
        m_root = other.m_root;
        m_owned = std::exchange(other.m_owned, false);
        m_atoms = std::move(other.m_atoms);
    }
    return *this;
}

X11Connection::~X11Connection() {
    if (m_owned && m_connection)
        xcb_disconnect(m_connection);
}

std::optional<X11Connection> X11Connection::borrowApplication() {
    auto* x11 = qGuiApp ? qGuiApp->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    if (!x11 || !x11->connection() || xcb_connection_has_error(x11->connection()))
        return std::nullopt;
    xcb_connection_t* c = x11->connection();
    const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(c)).data;
    if (!screen)
        return std::nullopt;
    return X11Connection(c, screen->root, false);
}

std::optional<X11Connection> X11Connection::open() {
    xcb_connection_t* c = xcb_connect(nullptr, nullptr);
    if (xcb_connection_has_error(c)) {
        xcb_disconnect(c);
        return std::nullopt;
    }
    return X11Connection(c, xcb_setup_roots_iterator(xcb_get_setup(c)).data->root, true);
}

void X11Connection::internKnownAtoms() {
    std::vector<xcb_intern_atom_cookie_t> cookies;
    for (const char* name : kKnownAtoms)
        cookies.push_back(xcb_intern_atom(m_connection, 0, std::uint16_t(std::strlen(name)), name));
    for (std::size_t i = 0; i < cookies.size(); ++i) {
        XcbPtr<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(m_connection, cookies[i], nullptr));
        if (reply)
            m_atoms.emplace(kKnownAtoms[i], reply->atom);
    }
}

xcb_atom_t X11Connection::atom(const char* name) const {
    if (const auto it = m_atoms.find(name); it != m_atoms.end())
        return it->second;
    auto cookie = xcb_intern_atom(m_connection, 0, std::uint16_t(std::strlen(name)), name);
    XcbPtr<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(m_connection, cookie, nullptr));
    const xcb_atom_t a = reply ? reply->atom : xcb_atom_t(XCB_ATOM_NONE);
    if (a != XCB_ATOM_NONE)
        m_atoms.emplace(name, a);
    return a;
}

xcb_get_property_cookie_t X11Connection::requestProperty(xcb_window_t window, xcb_atom_t property) const {
    return xcb_get_property(m_connection, 0, window, property, XCB_GET_PROPERTY_TYPE_ANY, 0, 4096);
}

XcbPtr<xcb_get_property_reply_t> X11Connection::reply(xcb_get_property_cookie_t cookie) const {
    return XcbPtr<xcb_get_property_reply_t>(xcb_get_property_reply(m_connection, cookie, nullptr));
}

std::vector<std::uint32_t> X11Connection::cardinals(XcbPtr<xcb_get_property_reply_t> reply) {
    if (!reply || reply->format != 32)
        return {};
    const auto* data = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
    const int n = xcb_get_property_value_length(reply.get()) / 4;
    return std::vector<std::uint32_t>(data, data + n);
}

std::optional<QByteArray> X11Connection::text(XcbPtr<xcb_get_property_reply_t> reply) {
    if (!reply || reply->type == XCB_ATOM_NONE || reply->format != 8)
        return std::nullopt;
    return QByteArray(static_cast<const char*>(xcb_get_property_value(reply.get())),
                      xcb_get_property_value_length(reply.get()));
}

std::vector<std::uint32_t> X11Connection::cardinals(xcb_window_t window, xcb_atom_t property) const {
    return cardinals(reply(requestProperty(window, property)));
}

std::optional<xcb_window_t> X11Connection::windowProperty(xcb_window_t window, xcb_atom_t property) const {
    const auto values = cardinals(window, property);
    if (values.empty())
        return std::nullopt;
    return values.front();
}

X11Connection::FrameRequest X11Connection::requestFrame(xcb_window_t window) const {
    return {xcb_get_geometry(m_connection, window),
            xcb_translate_coordinates(m_connection, window, m_root, 0, 0),
            requestProperty(window, atom("_NET_FRAME_EXTENTS"))};
}

std::optional<Rect> X11Connection::frame(const FrameRequest& request) const {
    XcbPtr<xcb_get_geometry_reply_t> g(xcb_get_geometry_reply(m_connection, request.geometry, nullptr));
    XcbPtr<xcb_translate_coordinates_reply_t> t(
        xcb_translate_coordinates_reply(m_connection, request.position, nullptr));
    const auto e = frameExtentsFrom(cardinals(reply(request.extents)));
    if (!g || !t)
        return std::nullopt;
    return Rect{t->dst_x - e.left, t->dst_y - e.top, g->width + e.left + e.right,
                g->height + e.top + e.bottom};
}

FrameExtents frameExtentsFrom(const std::vector<std::uint32_t>& e) {
    if (e.size() < 4)
        return {};
    return {double(e[0]), double(e[1]), double(e[2]), double(e[3])};
}

} // namespace velmora
