#pragma once

#include <QString>

namespace velmora {

// Whether the platform lets the agent see and move other programs' windows and input. On X11 that
// needs the X connection, the input and screen extensions, and an EWMH window manager.
struct PermissionState {
    bool trusted = false;
    QString reason; // why not, when not trusted
};

class Permission {
public:
    virtual ~Permission() = default;
    virtual PermissionState check() = 0;
};

} // namespace velmora
