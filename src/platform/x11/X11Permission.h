#pragma once

#include "platform/Permission.h"
#include "platform/x11/X11EventHub.h"

namespace velmora {

// On X11 nothing is granted by the user: the agent can work when the server offers the input and
// screen extensions it uses and an EWMH window manager is running. The answer is kept in memory and
// asked again only when the window manager's check window changes or goes away, so the one-second
// poll costs no request.
class X11Permission final : public QObject, public Permission {
    Q_OBJECT
public:
    // hub: on the toolkit's connection, or null when the application does not run on X11.
    explicit X11Permission(X11EventHub* hub);
    PermissionState check() override;

private:
    PermissionState evaluate();
    std::optional<xcb_window_t> ewmhCheckWindow() const;

    X11EventHub* m_hub;
    std::optional<PermissionState> m_known;
    xcb_window_t m_checkWindow = XCB_WINDOW_NONE;
};

} // namespace velmora
