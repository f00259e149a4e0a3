#pragma once

#include "platform/Permission.h"
#include "platform/x11/X11Connection.h"

namespace velmora {

// On X11 nothing is granted by the user: the agent can work when the server offers the input and
// screen extensions it uses and an EWMH window manager is running.
class X11Permission final : public Permission {
public:
    // x: the toolkit's connection, or null when the application does not run on X11.
    explicit X11Permission(const X11Connection* x) : m_x(x) {}
    PermissionState check() override;

private:
    bool windowManagerIsEwmh() const;

    const X11Connection* m_x;
};

} // namespace velmora
