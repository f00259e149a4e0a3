#include "app/AppAction.h"

namespace velmora {

QString AppAction::name(Kind kind) {
    switch (kind) {
    case Kind::windowAreas:
        return "windowAreas";
    case Kind::openWindowSwitcher:
        return "openWindowSwitcher";
    case Kind::moveWindowToScreen:
        return "moveWindowToScreen";
    case Kind::centerWindow:
        return "centerWindow";
    case Kind::makeWindow16By9:
        return "makeWindow16By9";
    case Kind::proposeAutoLayout:
        return "proposeAutoLayout";
    case Kind::navigateWindowSwitcher:
        return "navigateWindowSwitcher";
    case Kind::openClipboardHistory:
        return "openClipboardHistory";
    case Kind::performDirectPastePlainText:
        return "performDirectPastePlainText";
    case Kind::toggleMonitorDimming:
        return "toggleMonitorDimming";
    case Kind::openSystemMonitoringDashboard:
        return "openSystemMonitoringDashboard";
    case Kind::matchSnappedWindowFrame:
        return "matchSnappedWindowFrame";
    case Kind::noop:
        return "noop";
    }
    return "noop";
}

} // namespace velmora
