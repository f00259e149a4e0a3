#pragma once

#include "platform/Workspace.h"
#include "platform/x11/X11Connection.h"

#include <QHash>
#include <QObject>

namespace velmora {

class X11EventHub;

// Application icons from _NET_WM_ICON (the size nearest the one asked for, never a smaller one when a
// larger exists), else the icon theme's for the WM_CLASS name. Kept per window until the window
// changes its icon, so that opening the switcher again costs no X traffic.
class X11Workspace final : public QObject, public Workspace {
    Q_OBJECT
public:
    X11Workspace(X11Connection connection, X11EventHub& hub);

    QImage applicationIcon(quint32 windowId, const QString& appName, int size) override;
    std::optional<FrontmostApplication> frontmostApplication() override;
    std::vector<ApplicationIdentity> installedApplications() override;

private:
    QImage publishedIcon(quint32 windowId, int size) const;

    X11Connection m_x;
    QHash<quint32, QImage> m_icons;
};

} // namespace velmora
