#include "core/KeyboardAppAction.h"

namespace velmora {

namespace {

struct ActionInfo {
    KeyboardAppAction action;
    const char* rawName;
    const char* title;
    ShortcutGroup group;
};

using G = ShortcutGroup;
using A = KeyboardAppAction;

// One row per action, in declaration order, so that the enum value indexes the table.
constexpr std::array<ActionInfo, keyboardAppActionCount> kActions{{
    {A::windowManagerCenterWindow, "windowManagerCenterWindow", "Center Window", G::WindowManager},
    {A::makeWindow16By9, "makeWindow16By9", "Make Window 16 by 9", G::WindowManager},
    {A::clipboardOpenWindow, "clipboardOpenWindow", "Open clipboard history", G::ClipboardHistory},
    {A::clipboardPrevious, "clipboardPrevious", "Previous clipboard item", G::ClipboardHistory},
    {A::clipboardNext, "clipboardNext", "Next clipboard item", G::ClipboardHistory},
    {A::clipboardSelect, "clipboardSelect", "Paste selected item", G::ClipboardHistory},
    {A::clipboardPasteOriginal, "clipboardPasteOriginal", "Paste original", G::ClipboardHistory},
    {A::clipboardPastePlainText, "clipboardPastePlainText", "Paste plain text", G::ClipboardHistory},
    {A::clipboardDirectPastePlainText, "clipboardDirectPastePlainText", "Paste plain text directly",
     G::ClipboardHistory},
    {A::clipboardShowInFinder, "clipboardShowInFinder", "Show in file manager", G::ClipboardHistory},
    {A::clipboardQuickLook, "clipboardQuickLook", "Preview item", G::ClipboardHistory},
    {A::clipboardDelete, "clipboardDelete", "Delete clipboard item", G::ClipboardHistory},
    {A::clipboardOpenURL, "clipboardOpenURL", "Open URL", G::ClipboardHistory},
    {A::clipboardSearch, "clipboardSearch", "Search clipboard history", G::ClipboardHistory},
    {A::toggleMonitorDimming, "toggleMonitorDimming", "Toggle monitor dimming", G::Dashboards},
    {A::openSystemMonitoringDashboard, "openSystemMonitoringDashboard", "Open system monitoring dashboard",
     G::Dashboards},
    {A::proposeAutoLayout, "proposeAutoLayout", "Auto-Layout Windows", G::WindowManager},
    {A::autoLayoutPrevious, "autoLayoutPrevious", "Previous auto-layout candidate", G::WindowManager},
    {A::autoLayoutNext, "autoLayoutNext", "Next auto-layout candidate", G::WindowManager},
    {A::autoLayoutChooseCandidate, "autoLayoutChooseCandidate", "Choose auto-layout candidate",
     G::WindowManager},
    {A::switchWindow, "switchWindow", "Open Window Switcher", G::WindowSwitcher},
    {A::switchWindowPrevious, "switchWindowPrevious", "Select Previous Window", G::WindowSwitcher},
    {A::moveWindowToScreen, "moveWindowToScreen", "Move Window To Next Screen", G::WindowManager},
    {A::matchSnappedWindowFrame, "matchSnappedWindowFrame", "Match With Another Window", G::WindowManager},
    {A::autoLayoutExpandTabs, "autoLayoutExpandTabs", "Expand window tabs", G::WindowManager},
    {A::autoLayoutCollapseTabs, "autoLayoutCollapseTabs", "Collapse window tabs", G::WindowManager},
    {A::windowSwitcherSearch, "windowSwitcherSearch", "Search windows", G::WindowSwitcher},
}};

constexpr bool tableFollowsDeclarationOrder() {
    for (std::size_t i = 0; i < kActions.size(); ++i)
        if (std::size_t(kActions[i].action) != i)
            return false;
    return true;
}
static_assert(tableFollowsDeclarationOrder());
static_assert(std::size_t(A::windowSwitcherSearch) + 1 == keyboardAppActionCount);

const ActionInfo& info(KeyboardAppAction action) {
    return kActions[std::size_t(action)];
}

} // namespace

const std::array<KeyboardAppAction, keyboardAppActionCount>& allKeyboardAppActions() {
    static const auto all = [] {
        std::array<KeyboardAppAction, keyboardAppActionCount> actions{};
        for (std::size_t i = 0; i < actions.size(); ++i)
            actions[i] = kActions[i].action;
        return actions;
    }();
    return all;
}

QString rawName(KeyboardAppAction action) {
    return QString::fromLatin1(info(action).rawName);
}

std::optional<KeyboardAppAction> keyboardAppActionFromRawName(const QString& name) {
    for (const ActionInfo& row : kActions)
        if (name == QLatin1String(row.rawName))
            return row.action;
    return std::nullopt;
}

QString title(KeyboardAppAction action) {
    return QString::fromUtf8(info(action).title);
}

QString groupTitle(ShortcutGroup group) {
    switch (group) {
    case ShortcutGroup::WindowManager:
        return QStringLiteral("Window Manager");
    case ShortcutGroup::WindowSwitcher:
        return QStringLiteral("Window Switcher");
    case ShortcutGroup::ClipboardHistory:
        return QStringLiteral("Clipboard History");
    case ShortcutGroup::Dashboards:
        return QStringLiteral("Dashboards");
    }
    Q_UNREACHABLE();
    return {};
}

ShortcutGroup group(KeyboardAppAction action) {
    return info(action).group;
}

} // namespace velmora
