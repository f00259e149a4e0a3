#pragma once

#include "core/UnitRect.h"

#include <QString>
#include <QStringList>
#include <optional>
#include <variant>
#include <vector>

namespace velmora {

// What a shortcut, a menu or the command line asks the application to do, one type per action with
// its arguments.
namespace action {
// The zones of the pressed chord offered on the window's screen, and the one to snap to.
struct WindowAreas {
    std::vector<UnitRect> candidates;
    int index = 0;
    bool operator==(const WindowAreas&) const = default;
};
struct OpenWindowSwitcher {
    bool previous = false; // start on the previous window
    bool operator==(const OpenWindowSwitcher&) const = default;
};
#define VELMORA_PLAIN_ACTION(Name)                                                                           \
    struct Name {                                                                                            \
        bool operator==(const Name&) const = default;                                                        \
    }
VELMORA_PLAIN_ACTION(MoveWindowToScreen);
VELMORA_PLAIN_ACTION(CenterWindow);
VELMORA_PLAIN_ACTION(MakeWindow16By9);
VELMORA_PLAIN_ACTION(ProposeAutoLayout);
VELMORA_PLAIN_ACTION(NavigateWindowSwitcher);
VELMORA_PLAIN_ACTION(OpenClipboardHistory);
VELMORA_PLAIN_ACTION(PerformDirectPastePlainText);
VELMORA_PLAIN_ACTION(ToggleMonitorDimming);
VELMORA_PLAIN_ACTION(OpenSystemMonitoringDashboard);
VELMORA_PLAIN_ACTION(MatchSnappedWindowFrame);
VELMORA_PLAIN_ACTION(Noop);
#undef VELMORA_PLAIN_ACTION
} // namespace action

using AppAction =
    std::variant<action::WindowAreas, action::OpenWindowSwitcher, action::MoveWindowToScreen,
                 action::CenterWindow, action::MakeWindow16By9, action::ProposeAutoLayout,
                 action::NavigateWindowSwitcher, action::OpenClipboardHistory,
                 action::PerformDirectPastePlainText, action::ToggleMonitorDimming,
                 action::OpenSystemMonitoringDashboard, action::MatchSnappedWindowFrame, action::Noop>;

// The action's name as the command line and the logs spell it ("centerWindow").
QString actionName(const AppAction& action);
// Every action name, in declaration order.
QStringList allActionNames();
// The action of a name, with default arguments; absent for an unknown name.
std::optional<AppAction> actionFromName(const QString& name);

} // namespace velmora
