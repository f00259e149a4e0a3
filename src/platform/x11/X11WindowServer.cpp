#include "platform/x11/X11WindowServer.h"

#include <QByteArrayList>
#include <xcb/res.h>

namespace velmora {

std::vector<ServerWindow> X11WindowServer::onScreenWindows() const {
    std::vector<ServerWindow> list;
    auto stacking = m_x.cardinals(m_x.root(), m_x.atom("_NET_CLIENT_LIST_STACKING"));
    for (auto it = stacking.rbegin(); it != stacking.rend(); ++it) {
        const xcb_window_t w = *it;
        if (!isOnScreen(w))
            continue;
        const auto frame = m_x.outerFrame(w);
        if (!frame)
            continue; // closed while we were reading
        const auto desktop = m_x.cardinals(w, m_x.atom("_NET_WM_DESKTOP"));
        const quint64 space = desktop.empty() || desktop[0] == 0xFFFFFFFF ? 0 : quint64(desktop[0]) + 1;
        list.push_back({w, layerOf(w), pidOf(w), *frame, ownerName(w), space});
    }
    return list;
}

std::optional<qint32> X11WindowServer::frontmostApplicationPid() const {
    const auto active = m_x.windowProperty(m_x.root(), m_x.atom("_NET_ACTIVE_WINDOW"));
    if (!active || *active == XCB_WINDOW_NONE)
        return std::nullopt;
    const qint32 pid = pidOf(*active);
    return pid ? std::optional<qint32>(pid) : std::nullopt;
}

std::set<quint64> X11WindowServer::currentSpaces() const {
    const auto current = m_x.cardinals(m_x.root(), m_x.atom("_NET_CURRENT_DESKTOP"));
    if (current.empty())
        return {};
    return {quint64(current[0]) + 1};
}

bool X11WindowServer::isOnScreen(xcb_window_t w) const {
    auto* c = m_x.connection();
    XcbPtr<xcb_get_window_attributes_reply_t> a(
        xcb_get_window_attributes_reply(c, xcb_get_window_attributes(c, w), nullptr));
    if (!a || a->map_state != XCB_MAP_STATE_VIEWABLE)
        return false;
    const auto hidden = m_x.atom("_NET_WM_STATE_HIDDEN");
    for (auto state : m_x.atoms(w, m_x.atom("_NET_WM_STATE")))
        if (state == hidden)
            return false;
    return true;
}

int X11WindowServer::layerOf(xcb_window_t w) const {
    const auto types = m_x.atoms(w, m_x.atom("_NET_WM_WINDOW_TYPE"));
    if (types.empty())
        return 0; // no type means a normal window
    for (const char* normal :
         {"_NET_WM_WINDOW_TYPE_NORMAL", "_NET_WM_WINDOW_TYPE_DIALOG", "_NET_WM_WINDOW_TYPE_UTILITY"})
        if (types.front() == m_x.atom(normal))
            return 0;
    return 1;
}

qint32 X11WindowServer::pidOf(xcb_window_t w) const {
    const auto pid = m_x.cardinals(w, m_x.atom("_NET_WM_PID"));
    if (!pid.empty())
        return qint32(pid[0]);
    // Programs that do not say their pid: ask the server which client made the window.
    auto* c = m_x.connection();
    xcb_res_client_id_spec_t query{w, XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID};
    XcbPtr<xcb_res_query_client_ids_reply_t> reply(
        xcb_res_query_client_ids_reply(c, xcb_res_query_client_ids(c, 1, &query), nullptr));
    if (!reply)
        return 0;
    for (auto it = xcb_res_query_client_ids_ids_iterator(reply.get()); it.rem;
         xcb_res_client_id_value_next(&it))
        if (it.data->spec.mask & XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID &&
            xcb_res_client_id_value_value_length(it.data) > 0)
            return qint32(*xcb_res_client_id_value_value(it.data));
    return 0;
}

std::optional<QString> X11WindowServer::ownerName(xcb_window_t w) const {
    // WM_CLASS holds "instance\0Class\0"; the class names the program.
    const auto wmClass = m_x.text(w, XCB_ATOM_WM_CLASS);
    if (!wmClass)
        return std::nullopt;
    const auto parts = wmClass->split('\0');
    const QByteArray name = parts.size() > 1 && !parts[1].isEmpty() ? parts[1] : parts.value(0);
    if (name.isEmpty())
        return std::nullopt;
    return QString::fromUtf8(name);
}

} // namespace velmora
