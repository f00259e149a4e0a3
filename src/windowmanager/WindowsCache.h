#pragma once

#include "windowmanager/WindowManagerTypes.h"

#include <QHash>
#include <QObject>
#include <QTimer>
#include <functional>
#include <set>
#include <vector>

namespace velmora {

class WindowServer;

// The windows the window manager acts on, in switcher order (most recently focused first), with the
// time each was last seen focused. It follows the window server's change signals at once; a tick
// samples the server too: twice a second where the server announces nothing, else every five
// seconds as a safety net that costs no server request.
class WindowsCache : public QObject {
    Q_OBJECT
public:
    WindowsCache(const WindowServer& server, qint32 ownPid, std::function<qint64()> nowMs,
                 QObject* parent = nullptr);

    void start();
    void tick();
    void refresh();

    // The windows front to back as the server lists them now: what keyboard actions work on.
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
    qint32 m_ownPid;
    std::function<qint64()> m_nowMs;
    QTimer m_timer;
    std::vector<WindowInfo> m_windows;
    QHash<quint32, WindowInfo> m_windowsByID;
    QHash<quint32, qint64> m_focusTimes;
    std::optional<quint32> m_lastFocused;
};

} // namespace velmora
