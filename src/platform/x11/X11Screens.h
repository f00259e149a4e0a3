#pragma once

#include "core/Strut.h"
#include "platform/Screens.h"
#include "platform/x11/X11EventHub.h"

#include <QObject>
#include <QTimer>

namespace velmora {

class X11WindowServer;

// Monitors from RandR, with visible frames from the struts of dock windows, kept in memory: read
// again (in one batch) when RandR or the root window's size says the monitors changed, when docks
// come or go, or when a dock changes what it reserves.
class X11Screens final : public QObject, public Screens {
    Q_OBJECT
public:
    X11Screens(X11EventHub& hub, const X11WindowServer& windows);

    std::vector<ScreenInfo> screens() const override { return m_screens; }
    std::optional<ScreenInfo> mainScreen() const override;
    std::vector<ScreenInfo> screensAfresh() const override { return read(); }
    std::optional<Point> pointerLocation() const override { return pointer(); }
    bool isCompositing() const override;

signals:
    void changed();

private:
    struct Monitor {
        QString name;
        Rect frame; // top-left space
    };
    std::vector<ScreenInfo> read() const;
    std::vector<Monitor> monitors() const;
    std::vector<Strut> struts() const;
    std::optional<Point> pointer() const;
    void refresh();
    void scheduleRefresh();

    const X11Connection& m_x;
    const X11WindowServer& m_windows;
    QTimer m_refreshTimer;
    std::vector<ScreenInfo> m_screens;
};

} // namespace velmora
