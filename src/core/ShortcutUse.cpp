#include "core/ShortcutUse.h"

namespace velmora {

namespace {

bool bound(const std::optional<KeyboardShortcut>& shortcut, const KeyboardShortcut& chord) {
    return shortcut && !shortcut->disabled && shortcut->control == chord.control &&
           shortcut->alt == chord.alt && shortcut->command == chord.command &&
           shortcut->shift == chord.shift && shortcut->keyCode == chord.keyCode;
}

QString zoneTitle(const WindowArea& zone) {
    return QString("zone “%1”").arg(zone.name);
}

} // namespace

bool isGlobalAction(KeyboardAppAction action) {
    using A = KeyboardAppAction;
    switch (action) {
    case A::windowManagerCenterWindow:
    case A::makeWindow16By9:
    case A::moveWindowToScreen:
    case A::matchSnappedWindowFrame:
    case A::toggleMonitorDimming:
    case A::switchWindow:
    case A::switchWindowPrevious:
    case A::proposeAutoLayout:
    case A::clipboardOpenWindow:
    case A::clipboardDirectPastePlainText:
    case A::openSystemMonitoringDashboard:
        return true;
    default:
        return false;
    }
}

std::vector<ShortcutUse> shortcutUses(const KeyboardBindings& bindings, const std::vector<WindowArea>& zones,
                                      const KeyboardShortcut& chord) {
    std::vector<ShortcutUse> uses;
    for (const KeyboardAppAction action : allKeyboardAppActions())
        if (isGlobalAction(action) && bound(bindings.shortcut(action), chord))
            uses.push_back({action, std::nullopt, title(action)});
    for (const auto& zone : zones)
        if (bound(zone.keyboardShortcut, chord))
            uses.push_back({std::nullopt, zone.id, zoneTitle(zone)});
    return uses;
}

std::vector<ShortcutUse> otherShortcutUses(const KeyboardBindings& bindings,
                                           const std::vector<WindowArea>& zones,
                                           const KeyboardShortcut& chord,
                                           std::optional<KeyboardAppAction> self, bool shareWithZones) {
    auto uses = shortcutUses(bindings, zones, chord);
    std::erase_if(uses, [&](const ShortcutUse& use) {
        return (self && use.action == self) || (shareWithZones && use.zone);
    });
    return uses;
}

void removeShortcutUses(KeyboardBindings& bindings, std::vector<WindowArea>& zones,
                        const std::vector<ShortcutUse>& uses) {
    for (const ShortcutUse& use : uses) {
        if (use.action)
            bindings.shortcut(*use.action).reset();
        for (WindowArea& zone : zones)
            if (use.zone && zone.id == *use.zone)
                zone.keyboardShortcut.reset();
    }
}

std::optional<QString> globalChordProblem(const KeyboardShortcut& chord) {
    if (chord.canBeGlobal())
        return std::nullopt;
    return QString("a shortcut that works everywhere needs Ctrl, Alt or Super (or a function key); "
                   "without one it would take ordinary typing");
}

std::optional<QString> shortcutsProblem(const KeyboardBindings& bindings,
                                        const std::vector<WindowArea>& zones) {
    const auto describe = [](const ShortcutUse& use) { return use.title; };
    for (const KeyboardAppAction action : allKeyboardAppActions()) {
        const auto& shortcut = bindings.shortcut(action);
        if (!isGlobalAction(action) || !shortcut || shortcut->disabled)
            continue;
        if (const auto problem = globalChordProblem(*shortcut))
            return QString("%1 (%2): %3").arg(rawName(action), title(action), *problem);
        const auto uses = shortcutUses(bindings, zones, *shortcut);
        if (uses.size() > 1)
            return QString("%1 and %2 have the same shortcut; each shortcut can do one thing")
                .arg(describe(uses[0]), describe(uses[1]));
    }
    for (const auto& zone : zones) {
        if (!zone.keyboardShortcut || zone.keyboardShortcut->disabled)
            continue;
        if (const auto problem = globalChordProblem(*zone.keyboardShortcut))
            return QString("%1: %2").arg(zoneTitle(zone), *problem);
    }
    return std::nullopt;
}

} // namespace velmora
