#pragma once

#include "platform/Accessibility.h"
#include "platform/x11/X11Connection.h"

namespace velmora {

// Moves and resizes other programs' windows through the window manager (_NET_MOVERESIZE_WINDOW), on a
// connection of its own so that it can wait for the window manager's answer: a size read back right
// after a change is the size the window manager really gave (minimum sizes, resize increments).
class X11Accessibility final : public Accessibility {
public:
    static constexpr int kAnswerTimeoutMs = 150;

    explicit X11Accessibility(X11Connection x) : m_x(x) {}
    ~X11Accessibility() override { m_x.close(); }

    std::optional<QString> title(quint32 window) const override;
    std::optional<Rect> frame(quint32 window) const override;
    void setPosition(quint32 window, Point topLeft) override;
    void setSize(quint32 window, Size size) override;
    void raise(quint32 window) override;
    void focus(quint32 window, bool activateApplication) override;

private:
    void unmaximize(xcb_window_t window);
    void moveResize(xcb_window_t window, std::uint32_t flags, std::int32_t x, std::int32_t y, std::int32_t w,
                    std::int32_t h);
    void sendToRoot(xcb_window_t window, xcb_atom_t type, const std::uint32_t (&data)[5]);
    bool waitForConfigure(xcb_window_t window);

    X11Connection m_x;
};

} // namespace velmora
