#pragma once

#include "platform/Accessibility.h"
#include "platform/x11/X11Connection.h"

namespace velmora {

class X11WindowServer;

// Moves and resizes other programs' windows through the window manager (_NET_MOVERESIZE_WINDOW), on a
// connection of its own so that it can wait for the window manager's answer: a frame read back after
// a change is the frame the window manager really gave (minimum sizes, resize increments). What it
// needs to know beforehand (decorations, maximised state) comes from the window server's memory.
class X11Accessibility final : public Accessibility {
public:
    static constexpr int kAnswerTimeoutMs = 150;

    X11Accessibility(X11Connection x, const X11WindowServer& windows);

    std::optional<QString> title(quint32 window) const override;
    std::optional<Rect> frame(quint32 window) const override;
    void setPosition(quint32 window, Point topLeft) override;
    void setSize(quint32 window, Size size) override;
    std::optional<Rect> setFrame(quint32 window, const Rect& frame) override;
    void raise(quint32 window) override;
    void focus(quint32 window, bool activateApplication) override;

private:
    // Sends the change and waits for the window manager's answer to it.
    void moveResize(xcb_window_t window, std::uint32_t flags, const Rect& outer);
    void unmaximize(xcb_window_t window);
    xcb_void_cookie_t sendToRoot(xcb_window_t window, xcb_atom_t type, const std::uint32_t (&data)[5]);
    void watch(xcb_window_t window);
    bool waitForConfigure(xcb_window_t window, xcb_void_cookie_t request);

    X11Connection m_x;
    const X11WindowServer& m_windows;
};

} // namespace velmora
