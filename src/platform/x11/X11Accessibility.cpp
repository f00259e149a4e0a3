#include "platform/x11/X11Accessibility.h"

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

} // namespace

std::optional<QString> X11Accessibility::title(quint32 window) const {
    if (auto name = m_x.text(window, m_x.atom("_NET_WM_NAME")))
        return QString::fromUtf8(*name);
    if (auto name = m_x.text(window, XCB_ATOM_WM_NAME))
        return QString::fromLatin1(*name);
    return std::nullopt;
}

std::optional<Rect> X11Accessibility::frame(quint32 window) const {
    return m_x.outerFrame(window);
}

void X11Accessibility::setPosition(quint32 window, Point topLeft) {
    const auto current = frame(window);
    if (!current)
        return;
    unmaximize(window);
    if (current->x == topLeft.x && current->y == topLeft.y)
        return;
    // North-west gravity: x and y place the outer frame's top-left corner.
    moveResize(window, kFlagX | kFlagY, std::int32_t(topLeft.x), std::int32_t(topLeft.y), 0, 0);
}

void X11Accessibility::setSize(quint32 window, Size size) {
    const auto current = frame(window);
    if (!current)
        return;
    unmaximize(window);
    if (current->width == size.width && current->height == size.height)
        return;
    const auto e = m_x.frameExtents(window);
    const auto width = std::int32_t(std::max(1.0, size.width - e.left - e.right));
    const auto height = std::int32_t(std::max(1.0, size.height - e.top - e.bottom));
    moveResize(window, kFlagWidth | kFlagHeight, 0, 0, width, height);
}

void X11Accessibility::moveResize(xcb_window_t window, std::uint32_t flags, std::int32_t x, std::int32_t y,
                                  std::int32_t w, std::int32_t h) {
    const std::uint32_t data[5] = {kGravityNorthWest | flags | kSourcePager, std::uint32_t(x),
                                   std::uint32_t(y), std::uint32_t(w), std::uint32_t(h)};
    const std::uint32_t mask = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(m_x.connection(), window, XCB_CW_EVENT_MASK, &mask);
    sendToRoot(window, m_x.atom("_NET_MOVERESIZE_WINDOW"), data);
    waitForConfigure(window);
}

void X11Accessibility::unmaximize(xcb_window_t window) {
    // A maximised window ignores moves: take it out of that state first.
    const auto vert = m_x.atom("_NET_WM_STATE_MAXIMIZED_VERT"),
               horz = m_x.atom("_NET_WM_STATE_MAXIMIZED_HORZ");
    bool maximized = false;
    for (auto state : m_x.atoms(window, m_x.atom("_NET_WM_STATE")))
        maximized |= state == vert || state == horz;
    if (!maximized)
        return;
    const std::uint32_t mask = XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_change_window_attributes(m_x.connection(), window, XCB_CW_EVENT_MASK, &mask);
    const std::uint32_t data[5] = {0 /* remove */, vert, horz, 2, 0};
    sendToRoot(window, m_x.atom("_NET_WM_STATE"), data);
    // The frame extents may change with the state; wait until the window manager has answered.
    waitForConfigure(window);
}

void X11Accessibility::raise(quint32 window) {
    const std::uint32_t above = XCB_STACK_MODE_ABOVE;
    xcb_configure_window(m_x.connection(), window, XCB_CONFIG_WINDOW_STACK_MODE, &above);
    xcb_flush(m_x.connection());
}

void X11Accessibility::focus(quint32 window, bool activateApplication) {
    const auto active =
        m_x.windowProperty(m_x.root(), m_x.atom("_NET_ACTIVE_WINDOW")).value_or(XCB_WINDOW_NONE);
    // Source 2 (a pager) asks the window manager to activate the window even if its program is not
    // in front, which is what bringing the program forward means on X11.
    const std::uint32_t data[5] = {activateApplication ? 2u : 1u, XCB_CURRENT_TIME, active, 0, 0};
    sendToRoot(window, m_x.atom("_NET_ACTIVE_WINDOW"), data);
    raise(window);
}

void X11Accessibility::sendToRoot(xcb_window_t window, xcb_atom_t type, const std::uint32_t (&data)[5]) {
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = window;
    event.type = type;
    std::memcpy(event.data.data32, data, sizeof data);
    xcb_send_event(m_x.connection(), 0, m_x.root(),
                   XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                   reinterpret_cast<const char*>(&event));
    xcb_flush(m_x.connection());
}

bool X11Accessibility::waitForConfigure(xcb_window_t window) {
    auto* c = m_x.connection();
    QElapsedTimer timer;
    timer.start();
    pollfd fd{xcb_get_file_descriptor(c), POLLIN, 0};
    while (timer.elapsed() < kAnswerTimeoutMs) {
        while (auto* event = xcb_poll_for_event(c)) {
            const bool answer = (event->response_type & 0x7f) == XCB_CONFIGURE_NOTIFY &&
                                reinterpret_cast<xcb_configure_notify_event_t*>(event)->window == window;
            std::free(event);
            if (answer) {
                // Let the rest of the window manager's answer (a second notify, new extents) arrive.
                std::free(xcb_get_input_focus_reply(c, xcb_get_input_focus(c), nullptr));
                while (auto* more = xcb_poll_for_event(c))
                    std::free(more);
                return true;
            }
        }
        ::poll(&fd, 1, int(std::max<qint64>(1, kAnswerTimeoutMs - timer.elapsed())));
    }
    return false;
}

} // namespace velmora
