#include "windowmanager/WindowsCache.h"

#include "core/MainThread.h"
#include "platform/Accessibility.h"
#include "platform/WindowServer.h"
#include "windowmanager/LowLevelHelpers.h"

#include <algorithm>

namespace velmora {

WindowsCache::WindowsCache(const WindowServer& server, const Accessibility& access, qint32 ownPid,
                           std::function<qint64()> nowMs, QObject* parent)
    : QObject(parent), m_server(server), m_access(access), m_ownPid(ownPid), m_nowMs(std::move(nowMs)) {
    m_timer.setInterval(500);
    connect(&m_timer, &QTimer::timeout, this, &WindowsCache::tick);
}

void WindowsCache::start() {
    m_timer.start();
    QTimer::singleShot(0, this, &WindowsCache::refresh);
}

std::vector<WindowInfo> WindowsCache::listWindows() const {
    assertMainThread("WindowsCache::listWindows");
    std::vector<WindowInfo> list;
    for (const auto& w : listCGWindows(m_server, m_ownPid)) {
        // A window that vanished since the listing has no frame any more and is left out.
        if (!m_access.frame(w.id))
            continue;
        list.push_back({w.id, w.pid, w.frame, w.isFocused, w.spaceId, m_access.title(w.id), w.appName});
    }
    return list;
}

std::optional<WindowInfo> WindowsCache::focusedWindow() const {
    // Every keyboard action starts here, while a key may be waiting for its verdict: read the
    // details of the focused window only, not of every window.
    for (const auto& w : listCGWindows(m_server, m_ownPid)) {
        if (!w.isFocused)
            continue;
        if (!m_access.frame(w.id))
            return std::nullopt; // it went away since the listing
        return WindowInfo{w.id, w.pid, w.frame, true, w.spaceId, m_access.title(w.id), w.appName};
    }
    return std::nullopt;
}

void WindowsCache::recordFocus(quint32 id) {
    m_focusTimes.insert(id, m_nowMs());
}

void WindowsCache::tick() {
    assertMainThread("WindowsCache::tick");
    const auto listed = listCGWindows(m_server, m_ownPid);
    std::optional<quint32> focused;
    for (const auto& w : listed)
        if (w.isFocused) {
            recordFocus(w.id);
            focused = w.id;
            break;
        }
    // Programs starting or ending and space changes call for a full listing; so does a change of
    // focus, which changes the switcher order. Otherwise the tick stays a single window-list read.
    std::set<quint32> ids;
    for (const auto& w : listed)
        ids.insert(w.id);
    const auto spaces = m_server.currentSpaces();
    const bool focusMoved = focused != m_lastFocused;
    m_lastFocused = focused;
    if (ids != m_knownIds || spaces != m_knownSpaces || focusMoved)
        refresh();
}

void WindowsCache::refresh() {
    assertMainThread("WindowsCache::refresh");
    auto list = listWindows();
    const auto spaces = m_server.currentSpaces();
    m_knownIds.clear();
    for (const auto& w : list)
        m_knownIds.insert(w.id);
    m_knownSpaces = spaces;

    m_windowsByID.clear();
    for (const auto& w : list)
        if (w.spaceId == 0 || spaces.count(w.spaceId))
            m_windowsByID.insert(w.id, w);
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
