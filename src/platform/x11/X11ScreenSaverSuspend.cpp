#include "platform/x11/X11ScreenSaverSuspend.h"

#include "platform/x11/X11Log.h"

#include <xcb/dpms.h>
#include <xcb/screensaver.h>

namespace velmora {

X11ScreenSaverSuspend::X11ScreenSaverSuspend(X11Connection connection)
    : m_connection(std::move(connection)) {}

X11ScreenSaverSuspend::~X11ScreenSaverSuspend() {
    if (!m_connection.hasError())
        release();
}

void X11ScreenSaverSuspend::hold(const QString&, Done done) {
    if (isHeld()) {
        done({});
        return;
    }
    if (m_connection.hasError()) {
        done("the X connection is gone");
        return;
    }
    xcb_connection_t* c = m_connection.connection();
    if (canSuspend()) {
        xcb_screensaver_suspend(c, 1);
        m_suspended = true;
    }
    m_dpmsDisabled = disableDpms();
    xcb_flush(c);
    if (!isHeld()) {
        done("the X server has neither the screen saver (1.1) nor the DPMS extension");
        return;
    }
    qCInfo(lcX11).noquote() << "The X screen saver is" << (m_suspended ? "suspended" : "left alone")
                            << "and DPMS is" << (m_dpmsDisabled ? "off" : "not changed")
                            << "while Velmora keeps the computer awake.";
    done({});
}

void X11ScreenSaverSuspend::release() {
    if (!isHeld() || m_connection.hasError())
        return;
    xcb_connection_t* c = m_connection.connection();
    if (m_suspended)
        xcb_screensaver_suspend(c, 0);
    if (m_dpmsDisabled)
        xcb_dpms_enable(c);
    xcb_flush(c);
    m_suspended = m_dpmsDisabled = false;
    qCInfo(lcX11) << "The X screen saver and DPMS are as they were.";
}

QStringList X11ScreenSaverSuspend::heldMechanisms() const {
    QStringList held;
    if (m_suspended)
        held << "X screen saver: suspended";
    if (m_dpmsDisabled)
        held << "DPMS: off until released";
    return held;
}

// Suspending came with version 1.1 of the extension.
bool X11ScreenSaverSuspend::canSuspend() const {
    xcb_connection_t* c = m_connection.connection();
    const auto* extension = xcb_get_extension_data(c, &xcb_screensaver_id);
    if (!extension || !extension->present)
        return false;
    XcbPtr<xcb_screensaver_query_version_reply_t> version(
        xcb_screensaver_query_version_reply(c, xcb_screensaver_query_version(c, 1, 1), nullptr));
    return version && (version->server_major_version > 1 ||
                       (version->server_major_version == 1 && version->server_minor_version >= 1));
}

// Only a DPMS that is on is switched off, so that release() never turns on what the user had off.
bool X11ScreenSaverSuspend::disableDpms() {
    xcb_connection_t* c = m_connection.connection();
    const auto* extension = xcb_get_extension_data(c, &xcb_dpms_id);
    if (!extension || !extension->present)
        return false;
    const auto capableCookie = xcb_dpms_capable(c);
    const auto infoCookie = xcb_dpms_info(c);
    XcbPtr<xcb_dpms_capable_reply_t> capable(xcb_dpms_capable_reply(c, capableCookie, nullptr));
    XcbPtr<xcb_dpms_info_reply_t> info(xcb_dpms_info_reply(c, infoCookie, nullptr));
    if (!capable || !capable->capable || !info || !info->state)
        return false;
    xcb_dpms_disable(c);
    return true;
}

} // namespace velmora
