#pragma once

#include "platform/x11/X11Connection.h"

#include <QAbstractNativeEventFilter>
#include <QObject>

namespace velmora {

// The one place where X events of the toolkit's connection are seen: a native event filter on the
// main thread that turns them into change signals. It selects what it needs on the root window (in
// addition to what the toolkit selected), and on each window it is asked to watch.
class X11EventHub final : public QObject, public QAbstractNativeEventFilter {
    Q_OBJECT
public:
    // Borrows the toolkit's connection; the hub lives as long as the application.
    explicit X11EventHub(X11Connection connection);
    ~X11EventHub() override;

    const X11Connection& x() const { return m_x; }
    // Property, geometry, mapping and destruction of this window are reported from now on.
    void watch(xcb_window_t window);

    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;

signals:
    // The monitors may have changed (RandR, or the root window resized).
    void screensChanged();
    void rootPropertyChanged(xcb_atom_t property);
    void windowPropertyChanged(xcb_window_t window, xcb_atom_t property);
    // Moved, resized, mapped, unmapped or destroyed.
    void windowChanged(xcb_window_t window);
    // The owner of a selection (CLIPBOARD) changed; owner 0 when it went away.
    void selectionOwnerChanged(xcb_atom_t selection, xcb_window_t owner);
    // Another client's override-redirect window was mapped or restacked at the top level.
    void windowStackedOnTop();

private:
    void selectRootEvents();
    void dispatch(const xcb_generic_event_t* event);
    bool dispatchTopLevel(const xcb_generic_event_t* event);
    bool isOwnWindow(xcb_window_t window) const;

    X11Connection m_x;
    std::uint8_t m_randrEventBase = 0;
    std::uint8_t m_xfixesEventBase = 0;
};

} // namespace velmora
