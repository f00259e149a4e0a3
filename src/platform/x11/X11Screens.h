#pragma once

#include "core/Strut.h"
#include "platform/Screens.h"
#include "platform/x11/X11Connection.h"

namespace velmora {

// Monitors from RandR, with visible frames from the struts of dock windows. Asked fresh on every
// call: a handful of round trips, and never stale after a monitor is plugged or the dock moves.
class X11Screens final : public Screens {
public:
    explicit X11Screens(X11Connection x) : m_x(x) {}

    std::vector<ScreenInfo> screens() const override;
    std::optional<ScreenInfo> mainScreen() const override;

private:
    struct Monitor {
        QString name;
        Rect frame; // top-left space
    };
    std::vector<Monitor> monitors() const;
    std::vector<Strut> struts() const;
    std::optional<Point> focusedWindowCentre() const;
    std::optional<Point> pointer() const;

    X11Connection m_x;
};

} // namespace velmora
