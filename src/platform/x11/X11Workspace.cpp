#include "platform/x11/X11Workspace.h"

#include "platform/x11/X11EventHub.h"

#include <QDir>
#include <QIcon>
#include <QSet>
#include <algorithm>
#include <cstring>
#include <xcb/res.h>

namespace velmora {

namespace {

// More windows than anyone keeps open; past it the cache starts again rather than growing forever.
constexpr qsizetype kMaxCachedIcons = 256;
// _NET_WM_ICON holds every size a program offers; 256 x 256 is the largest worth reading.
constexpr std::uint32_t kMaxIconLongs = 2 + 256 * 256 * 4;
// Large enough for a caller to scale down to any list or badge size.
constexpr int kFrontmostIconSize = 64;
constexpr int kListIconSize = 32;
constexpr qsizetype kMaxKnownWindows = 256;

// An entry's Icon: an absolute file, else a theme name (some entries add the file's extension).
QImage entryIcon(const QString& icon, int size) {
    if (icon.isEmpty())
        return {};
    QIcon found = QDir::isAbsolutePath(icon) ? QIcon(icon) : QIcon::fromTheme(icon);
    if (found.isNull() && !QDir::isAbsolutePath(icon))
        for (const char* extension : {".png", ".svg", ".xpm"})
            if (icon.endsWith(QLatin1String(extension)))
                found = QIcon::fromTheme(icon.chopped(4));
    if (found.isNull())
        return {};
    return found.pixmap(QSize(size, size), 1.0).toImage();
}

// Icons come in the sizes their makers drew; callers are promised this one.
QImage atSize(QImage image, int size) {
    if (!image.isNull() && (image.width() != size || image.height() != size))
        image = image.scaled(size, size, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    return image;
}

ApplicationIdentity identityOf(const ApplicationEntry& entry, int iconSize) {
    return {entry.id, entry.fileURL, entry.name, atSize(entryIcon(entry.icon, iconSize), iconSize)};
}

// Replies collected with an error slot, so that a window closed meanwhile is not reported as an X error.
XcbPtr<xcb_get_property_reply_t> propertyReply(xcb_connection_t* c, xcb_get_property_cookie_t cookie) {
    xcb_generic_error_t* error = nullptr;
    XcbPtr<xcb_get_property_reply_t> reply(xcb_get_property_reply(c, cookie, &error));
    std::free(error);
    return reply;
}

} // namespace

X11Workspace::X11Workspace(X11Connection connection, X11EventHub& hub,
                           std::unique_ptr<ApplicationEntries> entries)
    : m_x(std::move(connection)), m_hub(hub), m_entries(std::move(entries)) {
    xcb_prefetch_extension_data(m_x.connection(), &xcb_res_id);
    // Asked now, so that no reading of a window stops half-way to intern them.
    m_iconAtom = m_x.atom("_NET_WM_ICON");
    m_desktopType = m_x.atom("_NET_WM_WINDOW_TYPE_DESKTOP");
    connect(&hub, &X11EventHub::windowPropertyChanged, this, &X11Workspace::windowPropertyChanged);
    connect(&hub, &X11EventHub::rootPropertyChanged, this, [this](xcb_atom_t p) {
        if (p == m_x.atom("_NET_ACTIVE_WINDOW"))
            m_activeStale = true;
        else if (p == m_x.atom("_NET_CLIENT_LIST"))
            m_clientsStale = true;
    });
    // Moved, mapped or destroyed: a destroyed window's id may come back for another program.
    connect(&hub, &X11EventHub::windowChanged, this, [this](xcb_window_t w) { m_windows.remove(w); });
}

void X11Workspace::windowPropertyChanged(xcb_window_t window, xcb_atom_t property) {
    const auto facts = m_windows.find(window);
    if (property == m_iconAtom) {
        m_icons.remove(window);
        if (facts != m_windows.end())
            facts->identity.reset();
    } else if (facts == m_windows.end()) {
        return;
    } else if (property == XCB_ATOM_WM_NAME || property == m_x.atom("_NET_WM_NAME")) {
        facts->titleStale = true;
    } else if (property == XCB_ATOM_WM_CLASS || property == m_x.atom("_NET_WM_PID") ||
               property == m_x.atom("_NET_WM_WINDOW_TYPE")) {
        m_windows.erase(facts);
    }
}

QImage X11Workspace::applicationIcon(quint32 windowId, const QString& appName, int size) {
    if (const auto it = m_icons.constFind(windowId); it != m_icons.constEnd())
        return *it;
    QImage icon = publishedIcon(windowId, size);
    if (icon.isNull() && !appName.isEmpty()) {
        const QIcon themed = QIcon::fromTheme(appName.toLower());
        if (!themed.isNull())
            icon = themed.pixmap(size, size).toImage();
    }
    if (m_icons.size() >= kMaxCachedIcons)
        m_icons.clear();
    m_icons.insert(windowId, icon);
    return icon;
}

// The property is a list of (width, height, width * height ARGB pixels) entries.
QImage X11Workspace::publishedIcon(quint32 windowId, int size) const {
    if (m_x.hasError())
        return {};
    const auto cookie =
        xcb_get_property(m_x.connection(), 0, windowId, m_iconAtom, XCB_ATOM_CARDINAL, 0, kMaxIconLongs);
    const auto reply = m_x.reply(cookie);
    if (!reply || reply->format != 32)
        return {};
    const auto* data = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
    const std::size_t count = std::size_t(xcb_get_property_value_length(reply.get())) / 4;
    const std::uint32_t* best = nullptr;
    std::uint32_t bestWidth = 0, bestHeight = 0;
    for (std::size_t i = 0; i + 2 <= count;) {
        const std::uint32_t w = data[i], h = data[i + 1];
        if (w == 0 || h == 0 || w > 1024 || h > 1024 || std::size_t(w) * h > count - i - 2)
            break; // a malformed entry ends the list
        const bool better =
            !best ||
            (bestWidth < std::uint32_t(size) ? w > bestWidth : w >= std::uint32_t(size) && w < bestWidth);
        if (better) {
            best = data + i + 2;
            bestWidth = w;
            bestHeight = h;
        }
        i += 2 + std::size_t(w) * h;
    }
    if (!best)
        return {};
    QImage image(int(bestWidth), int(bestHeight), QImage::Format_ARGB32);
    for (std::uint32_t y = 0; y < bestHeight; ++y)
        std::memcpy(image.scanLine(int(y)), best + std::size_t(y) * bestWidth, bestWidth * 4);
    if (int(bestWidth) != size || int(bestHeight) != size)
        image = image.scaled(size, size, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    return image;
}

X11Workspace::WindowFacts* X11Workspace::activeFacts() {
    if (m_x.hasError())
        return nullptr;
    const auto window = activeWindow();
    if (!window)
        return nullptr;
    // A window that is gone stays gone: nothing is in front until the window manager names another.
    const auto gone = [this, window]() -> WindowFacts* {
        m_windows.remove(*window);
        m_active.reset();
        return nullptr;
    };
    WindowFacts* facts = factsOf(*window);
    if (!facts || (facts->titleStale && !read(*window, *facts, true)))
        return gone();
    // A hidden window the window manager still names (it names none other) is not in front.
    return facts->mapped ? facts : nullptr;
}

X11Workspace::WindowFacts* X11Workspace::factsOf(xcb_window_t window) {
    if (const auto known = m_windows.find(window); known != m_windows.end())
        return &*known;
    WindowFacts fresh;
    if (!read(window, fresh, false))
        return nullptr;
    if (m_windows.size() >= kMaxKnownWindows)
        m_windows.clear();
    return &*m_windows.insert(window, std::move(fresh));
}

const ApplicationIdentity& X11Workspace::cachedIdentity(xcb_window_t window, WindowFacts& facts) {
    const quint64 generation = m_entries ? m_entries->generation() : 0;
    if (!facts.identity || facts.entriesGeneration != generation) {
        facts.identity = identify(window, facts);
        facts.entriesGeneration = generation;
    }
    return *facts.identity;
}

std::optional<FrontmostApplication> X11Workspace::frontmostApplication() {
    WindowFacts* facts = activeFacts();
    if (!facts || facts->isDesktop)
        return std::nullopt;
    return FrontmostApplication{cachedIdentity(*m_active, *facts), facts->title};
}

std::vector<RunningApplication> X11Workspace::runningApplications() {
    std::vector<RunningApplication> running;
    if (m_x.hasError())
        return running;
    if (std::exchange(m_clientsStale, false))
        m_clients = m_x.cardinals(m_x.root(), m_x.atom("_NET_CLIENT_LIST"));
    QSet<qint64> owners;
    for (const xcb_window_t window : m_clients) {
        WindowFacts* facts = factsOf(window);
        if (!facts || facts->isDesktop || facts->pid <= 0 || owners.contains(facts->pid))
            continue;
        owners.insert(facts->pid);
        const ApplicationIdentity& identity = cachedIdentity(window, *facts);
        running.push_back({facts->pid, identity.name, identity.id});
    }
    return running;
}

std::optional<FocusedWindow> X11Workspace::focusedWindow() {
    const WindowFacts* facts = activeFacts();
    if (!facts)
        return std::nullopt;
    return FocusedWindow{quint32(*m_active), facts->wmInstance, facts->wmClass};
}

// _NET_ACTIVE_WINDOW, read again only after the hub saw it change.
std::optional<xcb_window_t> X11Workspace::activeWindow() {
    if (std::exchange(m_activeStale, false)) {
        const auto values = m_x.cardinals(m_x.root(), m_x.atom("_NET_ACTIVE_WINDOW"));
        const bool none = values.empty() || values[0] == XCB_WINDOW_NONE || values[0] == m_x.root();
        m_active = none ? std::nullopt : std::optional<xcb_window_t>(values[0]);
    }
    return m_active;
}

// Every request sent, then every reply collected: one round trip. False when the window is gone.
bool X11Workspace::read(xcb_window_t window, WindowFacts& facts, bool titleOnly) {
    auto* c = m_x.connection();
    if (!titleOnly)
        m_hub.watch(window); // first, so that no change after the reads goes unreported
    const auto attributes = xcb_get_window_attributes(c, window);
    const auto netName = m_x.requestProperty(window, m_x.atom("_NET_WM_NAME"));
    const auto name = m_x.requestProperty(window, XCB_ATOM_WM_NAME);
    xcb_get_property_cookie_t pid{}, wmClass{}, type{};
    std::optional<xcb_res_query_client_ids_cookie_t> owner;
    if (!titleOnly) {
        pid = m_x.requestProperty(window, m_x.atom("_NET_WM_PID"));
        wmClass = m_x.requestProperty(window, XCB_ATOM_WM_CLASS);
        type = m_x.requestProperty(window, m_x.atom("_NET_WM_WINDOW_TYPE"));
        // A request to a missing extension would close the connection; asking is cached by xcb.
        if (const auto* res = xcb_get_extension_data(c, &xcb_res_id); res && res->present) {
            xcb_res_client_id_spec_t query{window, XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID};
            owner = xcb_res_query_client_ids(c, 1, &query);
        }
    }

    xcb_generic_error_t* error = nullptr;
    const XcbPtr<xcb_get_window_attributes_reply_t> exists(
        xcb_get_window_attributes_reply(c, attributes, &error));
    std::free(error);
    auto netNameReply = propertyReply(c, netName);
    auto nameReply = propertyReply(c, name);
    if (const auto text = X11Connection::text(std::move(netNameReply)))
        facts.title = QString::fromUtf8(*text);
    else if (const auto plain = X11Connection::text(std::move(nameReply)))
        facts.title = QString::fromLatin1(*plain);
    else
        facts.title.reset();
    facts.titleStale = false;
    if (exists)
        facts.mapped = exists->map_state != XCB_MAP_STATE_UNMAPPED;
    if (titleOnly)
        return bool(exists);

    const auto pids = X11Connection::cardinals(propertyReply(c, pid));
    const auto classes = X11Connection::text(propertyReply(c, wmClass)).value_or(QByteArray()).split('\0');
    const auto types = X11Connection::cardinals(propertyReply(c, type));
    qint32 ownerPid = 0;
    if (owner) {
        error = nullptr;
        const XcbPtr<xcb_res_query_client_ids_reply_t> reply(
            xcb_res_query_client_ids_reply(c, *owner, &error));
        std::free(error);
        for (auto it = reply ? xcb_res_query_client_ids_ids_iterator(reply.get())
                             : xcb_res_client_id_value_iterator_t{};
             it.rem; xcb_res_client_id_value_next(&it))
            if (it.data->spec.mask & XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID &&
                xcb_res_client_id_value_value_length(it.data) > 0)
                ownerPid = qint32(*xcb_res_client_id_value_value(it.data));
    }
    if (!exists)
        return false;
    facts.pid = pids.empty() ? ownerPid : qint32(pids[0]);
    facts.wmInstance = QString::fromUtf8(classes.value(0));
    facts.wmClass = QString::fromUtf8(classes.value(1));
    facts.isDesktop = std::find(types.begin(), types.end(), m_desktopType) != types.end();
    return true;
}

// The window's desktop entry, else what the window says of itself.
ApplicationIdentity X11Workspace::identify(xcb_window_t window, const WindowFacts& facts) {
    if (m_entries)
        if (const auto entry = m_entries->applicationOf({facts.wmInstance, facts.wmClass, facts.pid})) {
            ApplicationIdentity identity = identityOf(*entry, kFrontmostIconSize);
            if (identity.icon.isNull())
                identity.icon = publishedIcon(window, kFrontmostIconSize);
            return identity;
        }
    ApplicationIdentity identity;
    const QString name = !facts.wmClass.isEmpty() ? facts.wmClass : facts.wmInstance;
    if (!name.isEmpty())
        identity.id = identity.name = name;
    identity.icon = publishedIcon(window, kFrontmostIconSize);
    if (identity.icon.isNull() && !name.isEmpty())
        identity.icon = atSize(entryIcon(name.toLower(), kFrontmostIconSize), kFrontmostIconSize);
    return identity;
}

std::vector<ApplicationIdentity> X11Workspace::installedApplications() {
    std::vector<ApplicationIdentity> list;
    if (!m_entries)
        return list;
    for (const ApplicationEntry& entry : m_entries->applications())
        list.push_back(identityOf(entry, kListIconSize));
    return list;
}

std::optional<ApplicationIdentity> X11Workspace::applicationFromFile(const QString& path, QString* error) {
    if (!m_entries)
        return Workspace::applicationFromFile(path, error);
    const auto entry = m_entries->applicationIn(path, error);
    return entry ? std::optional(identityOf(*entry, kListIconSize)) : std::nullopt;
}

} // namespace velmora
