#include "platform/x11/X11Accessibility.h"

#include "platform/x11/X11WindowServer.h"

#include <QElapsedTimer>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <poll.h>

namespace velmora {

namespace {

constexpr std::uint32_t kGravityNorthWest = 1;
constexpr std::uint32_t kFlagX = 1u << 8, kFlagY = 1u << 9, kFlagWidth = 1u << 10, kFlagHeight = 1u << 11;
constexpr std::uint32_t kSourcePager = 2u << 12; // a pager-like tool: the window manager obeys it

// Whether an event was made after the request with this sequence number was processed. Events carry
// the low 16 bits of the last request the server had processed for this connection when it made them.
bool isAfter(const xcb_generic_event_t* event, xcb_void_cookie_t request) {
    return std::uint16_t(event->sequence - std::uint16_t(request.sequence)) < 0x8000;
}

} // namespace

X11Accessibility::X11Accessibility(X11Connection x, const X11WindowServer& windows)
    : m_x(std::move(x)), m_windows(windows) {}

std::optional<QString> X11Accessibility::title(quint32 window) const {
    auto netName = m_x.requestProperty(window, m_x.atom("_NET_WM_NAME"));
    auto name = m_x.requestProperty(window, XCB_ATOM_WM_NAME);
    if (auto text = X11Connection::text(m_x.reply(netName))) {
        std::free(xcb_get_property_reply(m_x.connection(), name, nullptr));
        return QString::fromUtf8(*text);
    }
    if (auto text = X11Connection::text(m_x.reply(name)))
        return QString::fromLatin1(*text);
    return std::nullopt;
}

std::optional<Rect> X11Accessibility::frame(quint32 window) const {
    return m_x.outerFrame(window);
}

void X11Accessibility::setPosition(quint32 window, Point topLeft) {
    const auto known = m_windows.placement(window);
    if (!known)
        return;
    unmaximize(window);
    moveResize(window, kFlagX | kFlagY, {topLeft.x, topLeft.y, known->frame.width, known->frame.height});
}

void X11Accessibility::setSize(quint32 window, Size size) {
    const auto known = m_windows.placement(window);
    if (!known)
        return;
    unmaximize(window);
    moveResize(window, kFlagWidth | kFlagHeight, {known->frame.x, known->frame.y, size.width, size.height});
}

std::optional<Rect> X11Accessibility::setFrame(quint32 window, const Rect& target) {
    if (!m_windows.placement(window))
        return std::nullopt;
    unmaximize(window);
    moveResize(window, kFlagX | kFlagY | kFlagWidth | kFlagHeight, target);
    return frame(window);
}

void X11Accessibility::moveResize(xcb_window_t window, std::uint32_t flags, const Rect& outer) {
    const auto known = m_windows.placement(window);
    if (known && !known->maximized && known->frame == outer)
        return; // nothing would change, and the window manager might not answer at all
    const FrameExtents e = known ? known->extents : FrameExtents{};
    // North-west gravity: x and y place the outer frame's top-left corner; the size is the client's.
    const auto width = std::int32_t(std::max(1.0, outer.width - e.left - e.right));
    const auto height = std::int32_t(std::max(1.0, outer.height - e.top - e.bottom));
    const std::uint32_t data[5] = {kGravityNorthWest | flags | kSourcePager,
                                   std::uint32_t(std::int32_t(outer.x)), std::uint32_t(std::int32_t(outer.y)),
                                   std::uint32_t(width), std::uint32_t(height)};
    watch(window);
    waitForConfigure(window, sendToRoot(window, m_x.atom("_NET_MOVERESIZE_WINDOW"), data));
}

void X11Accessibility::unmaximize(xcb_window_t window) {
    // A maximised window ignores moves: take it out of that state first.
    const auto known = m_windows.placement(window);
    if (!known || !known->maximized)
        return;
    watch(window);
    const std::uint32_t data[5] = {0 /* remove */, m_x.atom("_NET_WM_STATE_MAXIMIZED_VERT"),
                                   m_x.atom("_NET_WM_STATE_MAXIMIZED_HORZ"), 2, 0};
    waitForConfigure(window, sendToRoot(window, m_x.atom("_NET_WM_STATE"), data));
}

void X11Accessibility::raise(quint32 window) {
    const std::uint32_t above = XCB_STACK_MODE_ABOVE;
    xcb_configure_window(m_x.connection(), window, XCB_CONFIG_WINDOW_STACK_MODE, &above);
    xcb_flush(m_x.connection());
}

void X11Accessibility::focus(quint32 window, bool activateApplication) {
    const auto active = m_windows.activeWindow();
    // Source 2 (a pager) asks the window manager to activate the window even if its program is not
    // in front, which is what bringing the program forward means on X11.
    const std::uint32_t data[5] = {activateApplication ? 2u : 1u, XCB_CURRENT_TIME, active ? active->id : 0,
                                   0, 0};
    sendToRoot(window, m_x.atom("_NET_ACTIVE_WINDOW"), data);
    raise(window);
}

void X11Accessibility::watch(xcb_window_t window) {
    const std::uint32_t mask = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(m_x.connection(), window, XCB_CW_EVENT_MASK, &mask);
}

xcb_void_cookie_t X11Accessibility::sendToRoot(xcb_window_t window, xcb_atom_t type,
                                               const std::uint32_t (&data)[5]) {
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = window;
    event.type = type;
    std::memcpy(event.data.data32, data, sizeof data);
    const auto cookie =
        xcb_send_event(m_x.connection(), 0, m_x.root(),
                       XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                       reinterpret_cast<const char*>(&event));
    xcb_flush(m_x.connection());
    return cookie;
}

// Waits for the window manager's answer to one request: a ConfigureNotify of the window made after
// the request was processed. Notifies queued from earlier changes are not taken for the answer.
bool X11Accessibility::waitForConfigure(xcb_window_t window, xcb_void_cookie_t request) {
    auto* c = m_x.connection();
    QElapsedTimer timer;
    timer.start();
    pollfd fd{xcb_get_file_descriptor(c), POLLIN, 0};
    while (timer.elapsed() < kAnswerTimeoutMs) {
        while (auto* event = xcb_poll_for_event(c)) {
            const bool answer = (event->response_type & 0x7f) == XCB_CONFIGURE_NOTIFY &&
                                reinterpret_cast<xcb_configure_notify_event_t*>(event)->window == window &&
                                isAfter(event, request);
            std::free(event);
            if (answer)
                return true;
        }
        if (xcb_connection_has_error(c))
            return false;
        ::poll(&fd, 1, int(std::max<qint64>(1, kAnswerTimeoutMs - timer.elapsed())));
    }
    return false;
}

} // namespace velmora
