#include "windowmanager/WindowsCache.h"

#include "core/MainThread.h"
#include "platform/WindowServer.h"
#include "windowmanager/LowLevelHelpers.h"

#include <algorithm>

namespace velmora {

WindowsCache::WindowsCache(const WindowServer& server, qint32 ownPid, std::function<qint64()> nowMs,
                           QObject* parent)
    : QObject(parent), m_server(server), m_ownPid(ownPid), m_nowMs(std::move(nowMs)) {
    // A server that announces its changes is followed at once; the tick is then only a safety net
    // and runs rarely, so an idle desktop does not wake the agent twice a second.
    m_timer.setInterval(server.announcesChanges() ? 5000 : 500);
    connect(&m_timer, &QTimer::timeout, this, &WindowsCache::tick);
    // A focus change is seen at once, so the switcher order is right even for a quick Alt+Tab.
    connect(&server, &WindowServer::activeWindowChanged, this, &WindowsCache::tick);
    connect(&server, &WindowServer::windowsChanged, this, &WindowsCache::tick);
    connect(&server, &WindowServer::spacesChanged, this, &WindowsCache::tick);
}

void WindowsCache::start() {
    m_timer.start();
    tick();
}

std::vector<WindowInfo> WindowsCache::listWindows() const {
    assertMainThread("WindowsCache::listWindows");
    std::vector<WindowInfo> list;
    for (const auto& w : listCGWindows(m_server, m_ownPid))
        list.push_back({w.id, w.pid, w.frame, w.isFocused, w.spaceId, w.title, w.appName});
    return list;
}

std::optional<WindowInfo> WindowsCache::focusedWindow() const {
    for (const auto& w : listCGWindows(m_server, m_ownPid))
        if (w.isFocused)
            return WindowInfo{w.id, w.pid, w.frame, true, w.spaceId, w.title, w.appName};
    return std::nullopt;
}

void WindowsCache::recordFocus(quint32 id) {
    m_focusTimes.insert(id, m_nowMs());
}

void WindowsCache::tick() {
    assertMainThread("WindowsCache::tick");
    const auto focused = focusedWindow();
    const std::optional<quint32> focusedId = focused ? std::optional(focused->id) : std::nullopt;
    // The focus time is taken when the focus moves, not on every tick: the switcher orders by it.
    if (focusedId && focusedId != m_lastFocused)
        recordFocus(*focusedId);
    m_lastFocused = focusedId;
    refresh();
}

void WindowsCache::refresh() {
    assertMainThread("WindowsCache::refresh");
    auto list = listWindows();
    const auto spaces = m_server.currentSpaces();
    QHash<quint32, WindowInfo> byId;
    for (const auto& w : list)
        if (w.spaceId == 0 || spaces.count(w.spaceId))
            byId.insert(w.id, w);
    m_windowsByID = std::move(byId);
    std::stable_sort(list.begin(), list.end(), [this](const WindowInfo& a, const WindowInfo& b) {
        return goesBefore(a, b, m_focusTimes);
    });
    if (list != m_windows) {
        m_windows = std::move(list);
        emit windowsChanged();
    }
}

bool WindowsCache::goesBefore(const WindowInfo& a, const WindowInfo& b, const QHash<quint32, qint64>& times) {
    if (!times.isEmpty()) {
        const bool hasA = times.contains(a.id), hasB = times.contains(b.id);
        const qint64 ta = times.value(a.id, 0), tb = times.value(b.id, 0);
        if (hasA && hasB && ta != tb)
            return tb < ta;
        if (hasA && !hasB && ta != 0)
            return ta > 0;
        if (!hasA && hasB && tb != 0)
            return tb < 0;
    }
    const auto label = [](const WindowInfo& w) {
        return w.appName.value_or("") + " - " + w.title.value_or("");
    };
    return label(a) < label(b);
}

} // namespace velmora
