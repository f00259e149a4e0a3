#include "platform/x11/X11Permission.h"

#include <xcb/randr.h>
#include <xcb/xfixes.h>
#include <xcb/xinput.h>
#include <xcb/xtest.h>

namespace velmora {

X11Permission::X11Permission(X11EventHub* hub) : m_hub(hub) {
    if (!hub)
        return;
    const xcb_atom_t check = hub->x().atom("_NET_SUPPORTING_WM_CHECK");
    connect(hub, &X11EventHub::rootPropertyChanged, this, [this, check](xcb_atom_t property) {
        if (property == check)
            m_known.reset();
    });
    // A window manager that ends takes its check window with it.
    connect(hub, &X11EventHub::windowChanged, this, [this](xcb_window_t window) {
        if (window == m_checkWindow)
            m_known.reset();
    });
}

PermissionState X11Permission::check() {
    if (!m_hub)
        return {false, "not an X11 session (Wayland is not supported yet)"};
    if (m_hub->x().hasError())
        return {false, "the connection to the X server is lost"};
    if (!m_known)
        m_known = evaluate();
    return *m_known;
}

PermissionState X11Permission::evaluate() {
    auto* c = m_hub->x().connection();
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
    const auto window = ewmhCheckWindow();
    if (!window)
        return {false, "no EWMH-compliant window manager is running"};
    m_checkWindow = *window;
    m_hub->watch(*window);
    return {true, {}};
}

std::optional<xcb_window_t> X11Permission::ewmhCheckWindow() const {
    // The check window names itself, which tells a live window manager from a stale property.
    const auto& x = m_hub->x();
    const xcb_atom_t check = x.atom("_NET_SUPPORTING_WM_CHECK");
    const auto window = x.windowProperty(x.root(), check);
    if (!window || *window == XCB_WINDOW_NONE)
        return std::nullopt;
    const auto self = x.windowProperty(*window, check);
    if (!self || *self != *window)
        return std::nullopt;
    return window;
}

} // namespace velmora
