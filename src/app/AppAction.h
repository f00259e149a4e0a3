#pragma once

#include "windowmanager/ZoneNumber.h"

#include <QString>
#include <vector>

namespace velmora {

// What a shortcut or a menu asks the application to do, with its arguments.
struct AppAction {
    enum class Kind {
        windowAreas,
        openWindowSwitcher,
        moveWindowToScreen,
        centerWindow,
        makeWindow16By9,
        proposeAutoLayout,
        navigateWindowSwitcher,
        openClipboardHistory,
        performDirectPastePlainText,
        toggleMonitorDimming,
        openSystemMonitoringDashboard,
        matchSnappedWindowFrame,
        noop,
    };

    Kind kind = Kind::noop;
    std::vector<UnitRect> candidates; // windowAreas: the zones of the pressed chord offered on the screen
    int index = 0;                    // windowAreas: the one to snap to
    bool previous = false;            // openWindowSwitcher: start on the previous window

    static QString name(Kind kind);
    QString name() const { return name(kind); }
};

} // namespace velmora
