#include "platform/x11/X11EventHub.h"

#include "platform/x11/X11Log.h"

#include <QCoreApplication>
#include <xcb/randr.h>
#include <xcb/xfixes.h>

namespace velmora {

X11EventHub::X11EventHub(X11Connection connection) : m_x(std::move(connection)) {
    selectRootEvents();
    QCoreApplication::instance()->installNativeEventFilter(this);
}

X11EventHub::~X11EventHub() {
    if (auto* app = QCoreApplication::instance())
        app->removeNativeEventFilter(this);
}

void X11EventHub::selectRootEvents() {
    auto* c = m_x.connection();
    // Event masks are per client: add ours to what the toolkit already selected on the root window.
    auto attributesCookie = xcb_get_window_attributes(c, m_x.root());
    auto xfixesCookie = xcb_xfixes_query_version(c, 5, 0);
    XcbPtr<xcb_get_window_attributes_reply_t> attributes(
        xcb_get_window_attributes_reply(c, attributesCookie, nullptr));
    XcbPtr<xcb_xfixes_query_version_reply_t> xfixesVersion(
        xcb_xfixes_query_version_reply(c, xfixesCookie, nullptr));
    // Substructure: windows mapped or restacked at the top level, which overlays must stay above.
    const std::uint32_t mask = (attributes ? attributes->your_event_mask : 0) |
                               XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY |
                               XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
    xcb_change_window_attributes(c, m_x.root(), XCB_CW_EVENT_MASK, &mask);

    if (const auto* randr = xcb_get_extension_data(c, &xcb_randr_id); randr && randr->present) {
        m_randrEventBase = randr->first_event;
        xcb_randr_select_input(c, m_x.root(),
                               XCB_RANDR_NOTIFY_MASK_SCREEN_CHANGE | XCB_RANDR_NOTIFY_MASK_OUTPUT_CHANGE |
                                   XCB_RANDR_NOTIFY_MASK_CRTC_CHANGE | XCB_RANDR_NOTIFY_MASK_OUTPUT_PROPERTY);
    }
    if (const auto* xfixes = xcb_get_extension_data(c, &xcb_xfixes_id);
        xfixes && xfixes->present && xfixesVersion) {
        m_xfixesEventBase = xfixes->first_event;
        xcb_xfixes_select_selection_input(c, m_x.root(), m_x.atom("CLIPBOARD"),
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                                              XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
                                              XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
        // A compositing manager holds this selection while it runs.
        xcb_xfixes_select_selection_input(c, m_x.root(), m_x.atom("_NET_WM_CM_S0"),
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                                              XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
                                              XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
    } else {
        qCWarning(lcX11) << "The X server has no XFIXES: clipboard changes will not be seen.";
    }
    xcb_flush(c);
}

bool X11EventHub::isOwnWindow(xcb_window_t window) const {
    const xcb_setup_t* setup = xcb_get_setup(m_x.connection());
    return (window & ~setup->resource_id_mask) == setup->resource_id_base;
}

void X11EventHub::watch(xcb_window_t window) {
    // The toolkit's own windows are left alone: an event mask is per client, and selecting ours on
    // them would replace the toolkit's (its keys and focus would stop arriving).
    if (isOwnWindow(window))
        return;
    const std::uint32_t mask = XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    // A window that is already gone makes the server answer with an error, which the toolkit ignores.
    xcb_change_window_attributes(m_x.connection(), window, XCB_CW_EVENT_MASK, &mask);
}

bool X11EventHub::nativeEventFilter(const QByteArray& eventType, void* message, qintptr*) {
    if (eventType == "xcb_generic_event_t")
        dispatch(static_cast<const xcb_generic_event_t*>(message));
    return false; // the toolkit sees every event too
}

// Events about the root window's children (the substructure) are kept apart from the events of the
// windows the hub watches, which they would otherwise repeat.
bool X11EventHub::dispatchTopLevel(const xcb_generic_event_t* event) {
    const std::uint8_t type = event->response_type & 0x7f;
    xcb_window_t parent = XCB_WINDOW_NONE, window = XCB_WINDOW_NONE;
    bool overrideRedirect = false;
    if (type == XCB_MAP_NOTIFY) {
        const auto* e = reinterpret_cast<const xcb_map_notify_event_t*>(event);
        parent = e->event, window = e->window, overrideRedirect = e->override_redirect;
    } else if (type == XCB_CONFIGURE_NOTIFY) {
        const auto* e = reinterpret_cast<const xcb_configure_notify_event_t*>(event);
        parent = e->event, window = e->window, overrideRedirect = e->override_redirect;
    } else if (type == XCB_UNMAP_NOTIFY) {
        const auto* e = reinterpret_cast<const xcb_unmap_notify_event_t*>(event);
        parent = e->event, window = e->window;
    } else if (type == XCB_DESTROY_NOTIFY) {
        const auto* e = reinterpret_cast<const xcb_destroy_notify_event_t*>(event);
        parent = e->event, window = e->window;
    } else if (type == XCB_REPARENT_NOTIFY || type == XCB_CREATE_NOTIFY || type == XCB_GRAVITY_NOTIFY ||
               type == XCB_CIRCULATE_NOTIFY) {
        return true; // only the substructure mask brings these
    } else {
        return false;
    }
    if (parent != m_x.root() || window == m_x.root())
        return false;
    // Managed windows are restacked by the window manager, which the window list reports.
    if (overrideRedirect && !isOwnWindow(window))
        emit windowStackedOnTop();
    return true;
}

void X11EventHub::dispatch(const xcb_generic_event_t* event) {
    if (dispatchTopLevel(event))
        return;
    const std::uint8_t type = event->response_type & 0x7f;
    switch (type) {
    case XCB_PROPERTY_NOTIFY: {
        const auto* e = reinterpret_cast<const xcb_property_notify_event_t*>(event);
        if (e->window == m_x.root())
            emit rootPropertyChanged(e->atom);
        else
            emit windowPropertyChanged(e->window, e->atom);
        return;
    }
    case XCB_CONFIGURE_NOTIFY: {
        const auto* e = reinterpret_cast<const xcb_configure_notify_event_t*>(event);
        if (e->window == m_x.root())
            emit screensChanged(); // a monitor change may come only as the root window's new size
        else
            emit windowChanged(e->window);
        return;
    }
    case XCB_MAP_NOTIFY:
        emit windowChanged(reinterpret_cast<const xcb_map_notify_event_t*>(event)->window);
        return;
    case XCB_UNMAP_NOTIFY:
        emit windowChanged(reinterpret_cast<const xcb_unmap_notify_event_t*>(event)->window);
        return;
    case XCB_DESTROY_NOTIFY:
        emit windowChanged(reinterpret_cast<const xcb_destroy_notify_event_t*>(event)->window);
        return;
    default:
        break;
    }
    if (m_randrEventBase && (type == m_randrEventBase + XCB_RANDR_SCREEN_CHANGE_NOTIFY ||
                             type == m_randrEventBase + XCB_RANDR_NOTIFY)) {
        emit screensChanged();
        return;
    }
    if (m_xfixesEventBase && type == m_xfixesEventBase + XCB_XFIXES_SELECTION_NOTIFY) {
        const auto* e = reinterpret_cast<const xcb_xfixes_selection_notify_event_t*>(event);
        emit selectionOwnerChanged(e->selection, e->owner);
    }
}

} // namespace velmora
