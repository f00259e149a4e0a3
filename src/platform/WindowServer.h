#pragma once

#include "core/Rect.h"

#include <QObject>
#include <QString>
#include <optional>
#include <set>
#include <vector>

namespace velmora {

// One window as the window server lists it, before the window manager's own rules are applied.
struct ServerWindow {
    quint32 id = 0;
    std::optional<int> layer; // 0: a normal application window; absent when unknown
    qint32 pid = 0;           // 0 when the owner is unknown
    Rect frame;               // outer frame, top-left space
    std::optional<QString> ownerName;
    quint64 spaceId = 0; // 0: unknown or on every space
    std::optional<QString> title;

    bool operator==(const ServerWindow&) const = default;
};

// The windows shown on the desktop, front to back, and the spaces (virtual desktops) in view. A
// backend that can watch the desktop answers from memory and announces every change; the others
// answer afresh on each call and announce nothing (their users poll).
class WindowServer : public QObject {
    Q_OBJECT
public:
    using QObject::QObject;
    ~WindowServer() override = default;

    virtual std::vector<ServerWindow> onScreenWindows() const = 0;
    // The process owning the active window; absent on an empty desktop.
    virtual std::optional<qint32> frontmostApplicationPid() const = 0;
    virtual std::set<quint64> currentSpaces() const = 0;
    // Whether the change signals below are sent; a backend without them is polled.
    virtual bool announcesChanges() const { return false; }
    // The windows asked of the server directly, bypassing any memory: to check that memory against.
    virtual std::vector<ServerWindow> listAfresh() const { return onScreenWindows(); }

signals:
    // A window appeared or went, moved, was renamed, or changed its desktop or state.
    void windowsChanged();
    void activeWindowChanged();
    void spacesChanged();
};

} // namespace velmora
