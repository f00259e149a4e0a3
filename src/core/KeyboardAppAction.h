#pragma once

#include <QString>

#include <array>
#include <cstddef>
#include <optional>

namespace velmora {

// The closed set of actions a global shortcut can trigger. The order is the order of the bindings
// record and of the preference page; the raw names are the record's field names.
enum class KeyboardAppAction {
    windowManagerCenterWindow,
    makeWindow16By9,
    clipboardOpenWindow,
    clipboardPrevious,
    clipboardNext,
    clipboardSelect,
    clipboardPasteOriginal,
    clipboardPastePlainText,
    clipboardDirectPastePlainText,
    clipboardShowInFinder,
    clipboardQuickLook,
    clipboardDelete,
    clipboardOpenURL,
    clipboardSearch,
    toggleMonitorDimming,
    openSystemMonitoringDashboard,
    proposeAutoLayout,
    autoLayoutPrevious,
    autoLayoutNext,
    autoLayoutChooseCandidate,
    switchWindow,
    switchWindowPrevious,
    moveWindowToScreen,
    matchSnappedWindowFrame,
    autoLayoutExpandTabs,
    autoLayoutCollapseTabs,
    windowSwitcherSearch,
};

inline constexpr std::size_t keyboardAppActionCount = 27;

const std::array<KeyboardAppAction, keyboardAppActionCount>& allKeyboardAppActions();

QString rawName(KeyboardAppAction action);
std::optional<KeyboardAppAction> keyboardAppActionFromRawName(const QString& name);

// The label of the action's row on the shortcuts preference page.
QString title(KeyboardAppAction action);

// The heading the action's row is listed under on the shortcuts preference page.
enum class ShortcutGroup { WindowManager, WindowSwitcher, ClipboardHistory, Dashboards };

QString groupTitle(ShortcutGroup group);
ShortcutGroup group(KeyboardAppAction action);

} // namespace velmora
