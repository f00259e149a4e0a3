#pragma once

#include "windowmanager/WindowManagerTypes.h"

#include <QHash>
#include <QObject>
#include <QTimer>
#include <functional>
#include <set>
#include <vector>

namespace velmora {

class Accessibility;
class WindowServer;

// The windows the window manager acts on, in switcher order (most recently focused first), with the
// time each was last seen focused. Focus is sampled twice a second from the window server; a full
// listing (titles included) runs at start and whenever the set of windows or of spaces changes.
class WindowsCache : public QObject {
    Q_OBJECT
public:
    WindowsCache(const WindowServer& server, const Accessibility& access, qint32 ownPid,
                 std::function<qint64()> nowMs, QObject* parent = nullptr);

    void start();
    void tick();
    void refresh();

    // A fresh listing, front to back (not the cached one): what keyboard actions work on.
    std::vector<WindowInfo> listWindows() const;
    std::optional<WindowInfo> focusedWindow() const;
    void recordFocus(quint32 id);

    const std::vector<WindowInfo>& windows() const { return m_windows; }
    const QHash<quint32, WindowInfo>& windowsByID() const { return m_windowsByID; }
    const QHash<quint32, qint64>& windowFocusTimeByID() const { return m_focusTimes; }

    // The switcher order: whether a goes before b.
    static bool goesBefore(const WindowInfo& a, const WindowInfo& b,
                           const QHash<quint32, qint64>& focusTimes);

signals:
    void windowsChanged();

private:
    const WindowServer& m_server;
    const Accessibility& m_access;
    qint32 m_ownPid;
    std::function<qint64()> m_nowMs;
    QTimer m_timer;
    std::vector<WindowInfo> m_windows;
    QHash<quint32, WindowInfo> m_windowsByID;
    QHash<quint32, qint64> m_focusTimes;
    std::set<quint32> m_knownIds;
    std::set<quint64> m_knownSpaces;
    std::optional<quint32> m_lastFocused;
};

} // namespace velmora
