#include "platform/x11/X11WindowServer.h"

#include <QByteArrayList>
#include <algorithm>
#include <xcb/res.h>

namespace velmora {

namespace {

// The properties read for every window, in one batch.
enum Property { State, Type, Pid, Class, NetName, Name, Desktop, Extents, PropertyCount };

std::optional<QString> ownerNameFrom(const std::optional<QByteArray>& wmClass) {
    // WM_CLASS holds "instance\0Class\0"; the class names the program.
    if (!wmClass)
        return std::nullopt;
    const auto parts = wmClass->split('\0');
    const QByteArray name = parts.size() > 1 && !parts[1].isEmpty() ? parts[1] : parts.value(0);
    if (name.isEmpty())
        return std::nullopt;
    return QString::fromUtf8(name);
}

} // namespace

X11WindowServer::X11WindowServer(X11EventHub& hub) : m_hub(hub), m_x(hub.x()) {
    m_syncTimer.setSingleShot(true);
    m_syncTimer.setInterval(0);
    connect(&m_syncTimer, &QTimer::timeout, this, &X11WindowServer::sync);
    connect(&hub, &X11EventHub::rootPropertyChanged, this, &X11WindowServer::rootPropertyChanged);
    connect(&hub, &X11EventHub::windowPropertyChanged, this, &X11WindowServer::windowPropertyChanged);
    connect(&hub, &X11EventHub::windowChanged, this, &X11WindowServer::windowChanged);
    sync();
}

void X11WindowServer::rootPropertyChanged(xcb_atom_t property) {
    if (property == m_x.atom("_NET_CLIENT_LIST_STACKING"))
        m_stackingDirty = true;
    else if (property == m_x.atom("_NET_ACTIVE_WINDOW"))
        m_activeDirty = true;
    else if (property == m_x.atom("_NET_CURRENT_DESKTOP"))
        m_desktopDirty = true;
    else
        return;
    scheduleSync();
}

void X11WindowServer::windowPropertyChanged(xcb_window_t window, xcb_atom_t property) {
    if (!m_records.count(window))
        return;
    static const char* const relevant[] = {"_NET_WM_NAME",       "_NET_WM_STATE", "_NET_WM_DESKTOP",
                                           "_NET_FRAME_EXTENTS", "_NET_WM_PID",   "_NET_WM_WINDOW_TYPE"};
    bool matters = property == XCB_ATOM_WM_NAME || property == XCB_ATOM_WM_CLASS;
    for (const char* name : relevant)
        matters = matters || property == m_x.atom(name);
    if (!matters)
        return;
    m_dirty.insert(window);
    scheduleSync();
}

void X11WindowServer::windowChanged(xcb_window_t window) {
    if (!m_records.count(window))
        return;
    m_dirty.insert(window);
    scheduleSync();
}

void X11WindowServer::scheduleSync() {
    if (!m_syncTimer.isActive())
        m_syncTimer.start();
}

std::vector<xcb_window_t> X11WindowServer::readStacking() const {
    const auto list = m_x.cardinals(m_x.root(), m_x.atom("_NET_CLIENT_LIST_STACKING"));
    return {list.begin(), list.end()};
}

// Everything that changed since the last turn, in one round trip for the root properties and one for
// the windows (two when some window does not say its pid).
void X11WindowServer::sync() {
    const auto stackingCookie = m_x.requestProperty(m_x.root(), m_x.atom("_NET_CLIENT_LIST_STACKING"));
    const auto activeCookie = m_x.requestProperty(m_x.root(), m_x.atom("_NET_ACTIVE_WINDOW"));
    const auto desktopCookie = m_x.requestProperty(m_x.root(), m_x.atom("_NET_CURRENT_DESKTOP"));
    const bool stackingDirty = std::exchange(m_stackingDirty, false);
    const bool activeDirty = std::exchange(m_activeDirty, false);
    const bool desktopDirty = std::exchange(m_desktopDirty, false);
    const auto stackingValues = X11Connection::cardinals(m_x.reply(stackingCookie));
    const auto activeValues = X11Connection::cardinals(m_x.reply(activeCookie));
    const auto desktopValues = X11Connection::cardinals(m_x.reply(desktopCookie));

    bool spacesMoved = false, activeMoved = false;
    if (stackingDirty) {
        m_stacking.assign(stackingValues.begin(), stackingValues.end());
        for (const auto w : m_stacking)
            if (!m_records.count(w)) {
                m_hub.watch(w);
                m_dirty.insert(w);
            }
        std::erase_if(m_records, [this](const auto& entry) {
            return std::find(m_stacking.begin(), m_stacking.end(), entry.first) == m_stacking.end();
        });
    }
    if (activeDirty) {
        const std::optional<xcb_window_t> active = activeValues.empty() || activeValues[0] == XCB_WINDOW_NONE
                                                       ? std::nullopt
                                                       : std::optional(activeValues[0]);
        activeMoved = active != m_active;
        m_active = active;
    }
    if (desktopDirty) {
        const std::optional<std::uint32_t> desktop =
            desktopValues.empty() ? std::nullopt : std::optional(desktopValues[0]);
        spacesMoved = desktop != m_currentDesktop;
        m_currentDesktop = desktop;
        // Switching desktops maps and unmaps frames, which the clients themselves are not told.
        if (spacesMoved)
            for (const auto& [w, record] : m_records)
                m_dirty.insert(w);
    }

    bool windowsMoved = stackingDirty;
    if (!m_dirty.empty()) {
        const std::vector<xcb_window_t> dirty(m_dirty.begin(), m_dirty.end());
        m_dirty.clear();
        auto fresh = fetch(dirty);
        for (const auto w : dirty) {
            const auto it = fresh.find(w);
            if (it == fresh.end()) {
                windowsMoved |= m_records.erase(w) > 0; // gone since it was listed
                continue;
            }
            auto& record = m_records[w];
            windowsMoved |= record.window != it->second.window || record.viewable != it->second.viewable ||
                            record.hidden != it->second.hidden;
            record = it->second;
        }
    }
    if (spacesMoved)
        emit spacesChanged();
    if (windowsMoved || spacesMoved)
        emit windowsChanged();
    if (activeMoved)
        emit activeWindowChanged();
}

X11WindowServer::Records X11WindowServer::fetch(const std::vector<xcb_window_t>& windows) const {
    auto* c = m_x.connection();
    const xcb_atom_t atoms[PropertyCount] = {m_x.atom("_NET_WM_STATE"),   m_x.atom("_NET_WM_WINDOW_TYPE"),
                                             m_x.atom("_NET_WM_PID"),     XCB_ATOM_WM_CLASS,
                                             m_x.atom("_NET_WM_NAME"),    XCB_ATOM_WM_NAME,
                                             m_x.atom("_NET_WM_DESKTOP"), m_x.atom("_NET_FRAME_EXTENTS")};
    struct Pending {
        xcb_get_window_attributes_cookie_t attributes;
        xcb_get_property_cookie_t properties[PropertyCount];
        X11Connection::FrameRequest frame;
    };
    std::vector<Pending> pending;
    pending.reserve(windows.size());
    for (const auto w : windows) {
        Pending p{};
        p.attributes = xcb_get_window_attributes(c, w);
        for (int i = 0; i < PropertyCount; ++i)
            p.properties[i] = m_x.requestProperty(w, atoms[i]);
        p.frame = m_x.requestFrame(w);
        pending.push_back(p);
    }

    Records records;
    std::vector<xcb_window_t> withoutPid;
    const xcb_atom_t hidden = m_x.atom("_NET_WM_STATE_HIDDEN"),
                     maxVert = m_x.atom("_NET_WM_STATE_MAXIMIZED_VERT"),
                     maxHorz = m_x.atom("_NET_WM_STATE_MAXIMIZED_HORZ");
    const xcb_atom_t normalTypes[] = {m_x.atom("_NET_WM_WINDOW_TYPE_NORMAL"),
                                      m_x.atom("_NET_WM_WINDOW_TYPE_DIALOG"),
                                      m_x.atom("_NET_WM_WINDOW_TYPE_UTILITY")};
    for (std::size_t i = 0; i < windows.size(); ++i) {
        auto& p = pending[i];
        XcbPtr<xcb_get_window_attributes_reply_t> attributes(
            xcb_get_window_attributes_reply(c, p.attributes, nullptr));
        XcbPtr<xcb_get_property_reply_t> replies[PropertyCount];
        for (int k = 0; k < PropertyCount; ++k)
            replies[k] = m_x.reply(p.properties[k]);
        const auto frame = m_x.frame(p.frame);
        if (!attributes || !frame)
            continue; // closed while we were reading
        Record r;
        r.window.id = windows[i];
        r.window.frame = *frame;
        r.viewable = attributes->map_state == XCB_MAP_STATE_VIEWABLE;
        for (const auto state : X11Connection::cardinals(std::move(replies[State]))) {
            r.hidden |= state == hidden;
            r.maximized |= state == maxVert || state == maxHorz;
        }
        const auto types = X11Connection::cardinals(std::move(replies[Type]));
        // No type means a normal window.
        r.window.layer = types.empty() || std::find(std::begin(normalTypes), std::end(normalTypes),
                                                    types.front()) != std::end(normalTypes)
                             ? 0
                             : 1;
        const auto pid = X11Connection::cardinals(std::move(replies[Pid]));
        r.window.pid = pid.empty() ? 0 : qint32(pid[0]);
        if (pid.empty())
            withoutPid.push_back(windows[i]);
        r.window.ownerName = ownerNameFrom(X11Connection::text(std::move(replies[Class])));
        if (auto name = X11Connection::text(std::move(replies[NetName])))
            r.window.title = QString::fromUtf8(*name);
        else if (auto plain = X11Connection::text(std::move(replies[Name])))
            r.window.title = QString::fromLatin1(*plain);
        const auto desktop = X11Connection::cardinals(std::move(replies[Desktop]));
        r.window.spaceId = desktop.empty() || desktop[0] == 0xFFFFFFFF ? 0 : quint64(desktop[0]) + 1;
        r.extents = frameExtentsFrom(X11Connection::cardinals(std::move(replies[Extents])));
        records.emplace(windows[i], std::move(r));
    }

    // Programs that do not say their pid: ask the server which client made the window.
    std::vector<xcb_res_query_client_ids_cookie_t> pidCookies;
    for (const auto w : withoutPid) {
        xcb_res_client_id_spec_t query{w, XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID};
        pidCookies.push_back(xcb_res_query_client_ids(c, 1, &query));
    }
    for (std::size_t i = 0; i < withoutPid.size(); ++i) {
        XcbPtr<xcb_res_query_client_ids_reply_t> reply(
            xcb_res_query_client_ids_reply(c, pidCookies[i], nullptr));
        if (!reply || !records.count(withoutPid[i]))
            continue;
        for (auto it = xcb_res_query_client_ids_ids_iterator(reply.get()); it.rem;
             xcb_res_client_id_value_next(&it))
            if (it.data->spec.mask & XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID &&
                xcb_res_client_id_value_value_length(it.data) > 0)
                records[withoutPid[i]].window.pid = qint32(*xcb_res_client_id_value_value(it.data));
    }
    return records;
}

std::vector<ServerWindow> X11WindowServer::listed(const std::vector<xcb_window_t>& stacking,
                                                  const Records& records) const {
    std::vector<ServerWindow> list;
    for (auto it = stacking.rbegin(); it != stacking.rend(); ++it) {
        const auto found = records.find(*it);
        if (found == records.end() || !found->second.viewable || found->second.hidden)
            continue;
        list.push_back(found->second.window);
    }
    return list;
}

std::vector<ServerWindow> X11WindowServer::onScreenWindows() const {
    return listed(m_stacking, m_records);
}

std::vector<ServerWindow> X11WindowServer::listAfresh() const {
    const auto stacking = readStacking();
    return listed(stacking, fetch(stacking));
}

std::optional<qint32> X11WindowServer::frontmostApplicationPid() const {
    const auto active = activeWindow();
    if (!active || active->pid == 0)
        return std::nullopt;
    return active->pid;
}

std::optional<ServerWindow> X11WindowServer::activeWindow() const {
    if (!m_active)
        return std::nullopt;
    const auto it = m_records.find(*m_active);
    if (it == m_records.end())
        return std::nullopt;
    return it->second.window;
}

std::set<quint64> X11WindowServer::currentSpaces() const {
    if (!m_currentDesktop)
        return {};
    return {quint64(*m_currentDesktop) + 1};
}

std::optional<X11WindowServer::Placement> X11WindowServer::placement(xcb_window_t window) const {
    const auto it = m_records.find(window);
    if (it == m_records.end())
        return std::nullopt;
    return Placement{it->second.extents, it->second.maximized, it->second.window.frame};
}

} // namespace velmora
