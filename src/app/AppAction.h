#pragma once

#include "core/WindowArea.h"

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
    std::vector<WindowArea> areas; // windowAreas: the zones bound to the pressed chord, in order
    bool previous = false;         // openWindowSwitcher: start on the previous window

    static QString name(Kind kind);
    QString name() const { return name(kind); }
};

} // namespace velmora
