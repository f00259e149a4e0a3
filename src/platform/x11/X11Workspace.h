#pragma once

#include "platform/ApplicationEntries.h"
#include "platform/Workspace.h"
#include "platform/x11/X11Connection.h"

#include <QHash>
#include <QObject>
#include <memory>

namespace velmora {

class X11EventHub;

// Application icons from _NET_WM_ICON (the size nearest the one asked for, never a smaller one when a
// larger exists), else the icon theme's for the WM_CLASS name. Kept per window until the window
// changes its icon, so that opening the switcher again costs no X traffic.
//
// The frontmost application is the active window's entry among the installed applications, else its
// WM_CLASS. What it needs of a window (pid, WM_CLASS, type, title) is read once, in one round trip,
// and kept until the hub reports a change, so that asking on every copy costs nothing while the user
// stays in one window. Without `entries` every application is known by its WM_CLASS alone.
class X11Workspace final : public QObject, public Workspace {
    Q_OBJECT
public:
    X11Workspace(X11Connection connection, X11EventHub& hub,
                 std::unique_ptr<ApplicationEntries> entries = {});

    QImage applicationIcon(quint32 windowId, const QString& appName, int size) override;
    // Its icon is 64 x 64 pixels when there is one.
    std::optional<FrontmostApplication> frontmostApplication() override;
    std::optional<FocusedWindow> focusedWindow() override;
    // From _NET_CLIENT_LIST, read again only after the hub saw it change; a window's owner and entry are
    // read once, so a caller asking every few seconds costs no X traffic while the windows stay.
    std::vector<RunningApplication> runningApplications() override;
    // Their icons are 32 x 32 pixels, for a list.
    std::vector<ApplicationIdentity> installedApplications() override;
    std::optional<ApplicationIdentity> applicationFromFile(const QString& path, QString* error) override;

private:
    struct WindowFacts {
        qint32 pid = 0;
        QString wmInstance;
        QString wmClass;
        bool isDesktop = false;
        // Mapped itself. Whether its frame is mapped too (viewable) is not asked: no event on the
        // window tells when that changes.
        bool mapped = false;
        std::optional<QString> title;
        bool titleStale = false;
        std::optional<ApplicationIdentity> identity;
        quint64 entriesGeneration = 0;
    };

    void windowPropertyChanged(xcb_window_t window, xcb_atom_t property);
    // The active window's facts, read on first sight; null when none is active or it is gone.
    WindowFacts* activeFacts();
    // The window's facts, read on first sight; null when it is gone.
    WindowFacts* factsOf(xcb_window_t window);
    const ApplicationIdentity& cachedIdentity(xcb_window_t window, WindowFacts& facts);
    std::optional<xcb_window_t> activeWindow();
    bool read(xcb_window_t window, WindowFacts& facts, bool titleOnly);
    ApplicationIdentity identify(xcb_window_t window, const WindowFacts& facts);
    QImage publishedIcon(quint32 windowId, int size) const;

    X11Connection m_x;
    X11EventHub& m_hub;
    xcb_atom_t m_iconAtom = XCB_ATOM_NONE;
    xcb_atom_t m_desktopType = XCB_ATOM_NONE;
    std::unique_ptr<ApplicationEntries> m_entries;
    QHash<quint32, QImage> m_icons;
    std::optional<xcb_window_t> m_active;
    bool m_activeStale = true;
    QHash<xcb_window_t, WindowFacts> m_windows;
    std::vector<std::uint32_t> m_clients;
    bool m_clientsStale = true;
};

} // namespace velmora
