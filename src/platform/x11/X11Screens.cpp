#include "platform/x11/X11Screens.h"

#include "platform/x11/X11Log.h"
#include "platform/x11/X11WindowServer.h"

#include <xcb/randr.h>

namespace velmora {

X11Screens::X11Screens(X11EventHub& hub, const X11WindowServer& windows) : m_x(hub.x()), m_windows(windows) {
    m_refreshTimer.setSingleShot(true);
    m_refreshTimer.setInterval(0);
    connect(&m_refreshTimer, &QTimer::timeout, this, &X11Screens::refresh);
    connect(&hub, &X11EventHub::screensChanged, this, &X11Screens::scheduleRefresh);
    connect(&hub, &X11EventHub::rootPropertyChanged, this, [this](xcb_atom_t property) {
        if (property == m_x.atom("_NET_CLIENT_LIST"))
            scheduleRefresh(); // a dock came or went
    });
    connect(&hub, &X11EventHub::windowPropertyChanged, this, [this](xcb_window_t, xcb_atom_t property) {
        if (property == m_x.atom("_NET_WM_STRUT_PARTIAL") || property == m_x.atom("_NET_WM_STRUT"))
            scheduleRefresh();
    });
    connect(&hub, &X11EventHub::selectionOwnerChanged, this, [this](xcb_atom_t selection, xcb_window_t) {
        if (selection == m_x.atom("_NET_WM_CM_S0")) {
            qCInfo(lcX11) << (isCompositing() ? "A compositing manager started."
                                              : "The compositing manager ended.");
            emit notifier().compositingChanged();
        }
    });
    connect(&hub, &X11EventHub::windowStackedOnTop, &notifier(), &ScreensNotifier::windowStackedOnTop);
    m_screens = read();
}

void X11Screens::scheduleRefresh() {
    if (!m_refreshTimer.isActive())
        m_refreshTimer.start();
}

void X11Screens::refresh() {
    auto fresh = read();
    if (fresh == m_screens)
        return;
    m_screens = std::move(fresh);
    qCInfo(lcX11) << "The screens changed:" << m_screens.size() << "now.";
    emit changed();
    emit notifier().screensChanged();
}

std::vector<X11Screens::Monitor> X11Screens::monitors() const {
    std::vector<Monitor> result;
    auto* c = m_x.connection();
    XcbPtr<xcb_randr_get_monitors_reply_t> reply(
        xcb_randr_get_monitors_reply(c, xcb_randr_get_monitors(c, m_x.root(), 1), nullptr));
    if (reply) {
        std::vector<xcb_get_atom_name_cookie_t> names;
        for (auto it = xcb_randr_get_monitors_monitors_iterator(reply.get()); it.rem;
             xcb_randr_monitor_info_next(&it))
            names.push_back(xcb_get_atom_name(c, it.data->name));
        std::size_t i = 0;
        for (auto it = xcb_randr_get_monitors_monitors_iterator(reply.get()); it.rem;
             xcb_randr_monitor_info_next(&it), ++i) {
            const auto* m = it.data;
            XcbPtr<xcb_get_atom_name_reply_t> name(xcb_get_atom_name_reply(c, names[i], nullptr));
            result.push_back({name ? QString::fromLatin1(xcb_get_atom_name_name(name.get()),
                                                         xcb_get_atom_name_name_length(name.get()))
                                   : QString::number(m->name),
                              {double(m->x), double(m->y), double(m->width), double(m->height)}});
        }
    }
    if (result.empty()) {
        // No RandR monitors (an old server): the whole root window is one screen.
        XcbPtr<xcb_get_geometry_reply_t> g(
            xcb_get_geometry_reply(c, xcb_get_geometry(c, m_x.root()), nullptr));
        if (g)
            result.push_back({"default", {0, 0, double(g->width), double(g->height)}});
    }
    return result;
}

std::vector<Strut> X11Screens::struts() const {
    const auto clients = m_x.cardinals(m_x.root(), m_x.atom("_NET_CLIENT_LIST"));
    std::vector<std::pair<xcb_get_property_cookie_t, xcb_get_property_cookie_t>> cookies;
    for (const auto window : clients)
        cookies.emplace_back(m_x.requestProperty(window, m_x.atom("_NET_WM_STRUT_PARTIAL")),
                             m_x.requestProperty(window, m_x.atom("_NET_WM_STRUT")));
    std::vector<Strut> result;
    for (auto& [partialCookie, plainCookie] : cookies) {
        const auto partial = X11Connection::cardinals(m_x.reply(partialCookie));
        const auto plain = X11Connection::cardinals(m_x.reply(plainCookie));
        if (partial.size() >= 12) {
            const auto d = [&](int i) { return double(partial[std::size_t(i)]); };
            result.push_back({d(0), d(1), d(2), d(3), d(4), d(5), d(6), d(7), d(8), d(9), d(10), d(11)});
        } else if (plain.size() >= 4) {
            // The old form reserves along the whole edge.
            constexpr double all = 1e9;
            result.push_back({double(plain[0]), double(plain[1]), double(plain[2]), double(plain[3]), 0, all,
                              0, all, 0, all, 0, all});
        }
    }
    return result;
}

std::vector<ScreenInfo> X11Screens::read() const {
    auto* c = m_x.connection();
    auto rootCookie = xcb_get_geometry(c, m_x.root());
    const auto mons = monitors();
    XcbPtr<xcb_get_geometry_reply_t> root(xcb_get_geometry_reply(c, rootCookie, nullptr));
    if (mons.empty())
        return {};
    const double desktopWidth = root ? root->width : mons.front().frame.maxX();
    const double desktopHeight = root ? root->height : mons.front().frame.maxY();
    const auto dockStruts = struts();

    // The primary screen is the monitor at the root origin; its height anchors the screen space.
    const Monitor* primary = &mons.front();
    for (const auto& m : mons)
        if (m.frame.x == 0 && m.frame.y == 0) {
            primary = &m;
            break;
        }
    const double H = primary->frame.height;

    std::vector<ScreenInfo> result;
    auto add = [&](const Monitor& m) {
        const Rect visible = visibleArea(m.frame, dockStruts, desktopWidth, desktopHeight);
        result.push_back({m.name, m.frame.flipped(H), visible.flipped(H), 1.0});
    };
    add(*primary);
    for (const auto& m : mons)
        if (&m != primary)
            add(m);
    return result;
}

std::optional<Point> X11Screens::pointer() const {
    auto* c = m_x.connection();
    XcbPtr<xcb_query_pointer_reply_t> p(
        xcb_query_pointer_reply(c, xcb_query_pointer(c, m_x.root()), nullptr));
    if (!p)
        return std::nullopt;
    return Point{double(p->root_x), double(p->root_y)};
}

// A compositing manager owns the selection _NET_WM_CM_S<screen> for as long as it runs; the agent
// works on the display's first X screen, as every monitor of a RandR desktop is part of it.
bool X11Screens::isCompositing() const {
    auto* c = m_x.connection();
    XcbPtr<xcb_get_selection_owner_reply_t> owner(
        xcb_get_selection_owner_reply(c, xcb_get_selection_owner(c, m_x.atom("_NET_WM_CM_S0")), nullptr));
    return owner && owner->owner != XCB_WINDOW_NONE;
}

std::optional<ScreenInfo> X11Screens::mainScreen() const {
    if (m_screens.empty())
        return std::nullopt;
    const double H = m_screens.front().frame.height;
    // The focused window is known from memory; only an empty desktop asks where the pointer is.
    std::optional<Point> where;
    if (const auto active = m_windows.activeWindow())
        where = Point{active->frame.midX(), active->frame.midY()};
    else
        where = pointer();
    if (where)
        for (const auto& s : m_screens)
            if (s.frame.flipped(H).contains(*where))
                return s;
    return m_screens.front();
}

} // namespace velmora
