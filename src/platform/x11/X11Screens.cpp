#include "platform/x11/X11Screens.h"

#include <xcb/randr.h>

namespace velmora {

std::vector<X11Screens::Monitor> X11Screens::monitors() const {
    std::vector<Monitor> result;
    auto* c = m_x.connection();
    auto cookie = xcb_randr_get_monitors(c, m_x.root(), 1);
    XcbPtr<xcb_randr_get_monitors_reply_t> reply(xcb_randr_get_monitors_reply(c, cookie, nullptr));
    if (reply) {
        for (auto it = xcb_randr_get_monitors_monitors_iterator(reply.get()); it.rem;
             xcb_randr_monitor_info_next(&it)) {
            const auto* m = it.data;
            auto nameCookie = xcb_get_atom_name(c, m->name);
            XcbPtr<xcb_get_atom_name_reply_t> nameReply(xcb_get_atom_name_reply(c, nameCookie, nullptr));
            QString name = nameReply ? QString::fromLatin1(xcb_get_atom_name_name(nameReply.get()),
                                                           xcb_get_atom_name_name_length(nameReply.get()))
                                     : QString::number(m->name);
            result.push_back({name, {double(m->x), double(m->y), double(m->width), double(m->height)}});
        }
    }
    if (result.empty()) {
        // No RandR monitors (an old server): the whole root window is one screen.
        auto geo = xcb_get_geometry(c, m_x.root());
        XcbPtr<xcb_get_geometry_reply_t> g(xcb_get_geometry_reply(c, geo, nullptr));
        if (g)
            result.push_back({"default", {0, 0, double(g->width), double(g->height)}});
    }
    return result;
}

std::vector<Strut> X11Screens::struts() const {
    std::vector<Strut> result;
    const auto clients = m_x.cardinals(m_x.root(), m_x.atom("_NET_CLIENT_LIST"));
    for (const auto window : clients) {
        auto partial = m_x.cardinals(window, m_x.atom("_NET_WM_STRUT_PARTIAL"));
        if (partial.size() >= 12) {
            const auto d = [&](int i) { return double(partial[i]); };
            result.push_back({d(0), d(1), d(2), d(3), d(4), d(5), d(6), d(7), d(8), d(9), d(10), d(11)});
            continue;
        }
        auto plain = m_x.cardinals(window, m_x.atom("_NET_WM_STRUT"));
        if (plain.size() >= 4) {
            // The old form reserves along the whole edge.
            constexpr double all = 1e9;
            result.push_back({double(plain[0]), double(plain[1]), double(plain[2]), double(plain[3]), 0, all,
                              0, all, 0, all, 0, all});
        }
    }
    return result;
}

std::vector<ScreenInfo> X11Screens::screens() const {
    const auto mons = monitors();
    if (mons.empty())
        return {};
    auto* c = m_x.connection();
    XcbPtr<xcb_get_geometry_reply_t> root(
        xcb_get_geometry_reply(c, xcb_get_geometry(c, m_x.root()), nullptr));
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

std::optional<Point> X11Screens::focusedWindowCentre() const {
    auto* c = m_x.connection();
    const auto active = m_x.windowProperty(m_x.root(), m_x.atom("_NET_ACTIVE_WINDOW"));
    if (!active || *active == XCB_WINDOW_NONE)
        return std::nullopt;
    XcbPtr<xcb_get_geometry_reply_t> g(xcb_get_geometry_reply(c, xcb_get_geometry(c, *active), nullptr));
    if (!g)
        return std::nullopt; // the window vanished since the property was read
    auto tc = xcb_translate_coordinates(c, *active, m_x.root(), 0, 0);
    XcbPtr<xcb_translate_coordinates_reply_t> t(xcb_translate_coordinates_reply(c, tc, nullptr));
    if (!t)
        return std::nullopt;
    return Point{t->dst_x + g->width / 2.0, t->dst_y + g->height / 2.0};
}

std::optional<Point> X11Screens::pointer() const {
    auto* c = m_x.connection();
    XcbPtr<xcb_query_pointer_reply_t> p(
        xcb_query_pointer_reply(c, xcb_query_pointer(c, m_x.root()), nullptr));
    if (!p)
        return std::nullopt;
    return Point{double(p->root_x), double(p->root_y)};
}

std::optional<ScreenInfo> X11Screens::mainScreen() const {
    const auto all = screens();
    if (all.empty())
        return std::nullopt;
    const double H = all.front().frame.height;
    for (const auto& where : {focusedWindowCentre(), pointer()}) {
        if (!where)
            continue;
        for (const auto& s : all)
            if (s.frame.flipped(H).contains(*where))
                return s;
    }
    return all.front();
}

} // namespace velmora
