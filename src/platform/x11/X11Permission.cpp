#include "platform/x11/X11Permission.h"

#include <xcb/randr.h>
#include <xcb/xfixes.h>
#include <xcb/xinput.h>
#include <xcb/xtest.h>

namespace velmora {

PermissionState X11Permission::check() {
    if (!m_x)
        return {false, "not an X11 session (Wayland is not supported yet)"};
    auto* c = m_x->connection();
    if (xcb_connection_has_error(c))
        return {false, "the connection to the X server is lost"};
    const std::pair<xcb_extension_t*, const char*> required[] = {
        {&xcb_input_id, "XInputExtension"},
        {&xcb_test_id, "XTEST"},
        {&xcb_randr_id, "RANDR"},
        {&xcb_xfixes_id, "XFIXES"},
    };
    for (const auto& [ext, name] : required) {
        const auto* data = xcb_get_extension_data(c, ext);
        if (!data || !data->present)
            return {false, QString("the X server lacks the %1 extension").arg(name)};
    }
    if (!windowManagerIsEwmh())
        return {false, "no EWMH-compliant window manager is running"};
    return {true, {}};
}

bool X11Permission::windowManagerIsEwmh() const {
    // The check window names itself, which tells a live window manager from a stale property.
    const xcb_atom_t check = m_x->atom("_NET_SUPPORTING_WM_CHECK");
    const auto window = m_x->windowProperty(m_x->root(), check);
    if (!window || *window == XCB_WINDOW_NONE)
        return false;
    const auto self = m_x->windowProperty(*window, check);
    return self && *self == *window;
}

} // namespace velmora
