#pragma once

#include "core/Rect.h"

#include <QString>
#include <optional>

namespace velmora {

struct Size {
    double width = 0;
    double height = 0;
    bool operator==(const Size&) const = default;
};

// Reading and moving other programs' windows, by window id. Positions and sizes address the outer
// frame in the top-left space. Reads of a window that vanished come back absent; writes to it do
// nothing.
class Accessibility {
public:
    virtual ~Accessibility() = default;

    virtual std::optional<QString> title(quint32 window) const = 0;
    virtual std::optional<Rect> frame(quint32 window) const = 0;
    // Each returns once the window manager has applied (or refused) the change.
    virtual void setPosition(quint32 window, Point topLeft) = 0;
    virtual void setSize(quint32 window, Size size) = 0;
    // Position and size in one request, then the frame the window really took (a program may keep a
    // minimum size); absent when the window is gone. The default asks position, size and frame in turn.
    virtual std::optional<Rect> setFrame(quint32 window, const Rect& frame) {
        setPosition(window, {frame.x, frame.y});
        setSize(window, {frame.width, frame.height});
        return this->frame(window);
    }
    virtual void raise(quint32 window) = 0;
    // Makes the window the active one; with activateApplication its program comes forward too.
    virtual void focus(quint32 window, bool activateApplication) = 0;
};

} // namespace velmora
