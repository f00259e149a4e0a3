#pragma once

#include "core/JsonCodec.h"
#include "core/KeyboardAppAction.h"
#include "core/KeyboardShortcut.h"

#include <optional>

namespace velmora {

// Stored under "KeyboardBindings": one optional shortcut per action, named by the action's raw name, in
// the actions' order. Absent means the action has no shortcut until the user records one.
struct KeyboardBindings {
    using Binding = std::optional<KeyboardShortcut>;

    // Key codes are the virtual key codes kept in every record (C 8, F 3, V 9, Return 36, Space 49, ...).
    Binding windowManagerCenterWindow = chord(Modifier::Control | Modifier::Alt, 8);
    Binding makeWindow16By9 = chord(Modifier::Control | Modifier::Alt, 3);
    Binding clipboardOpenWindow = chord(Modifier::Shift | Modifier::Command, 9);
    // Bare keys: navigation inside the history panel, read by its view.
    Binding clipboardPrevious = bareKey(126);
    Binding clipboardNext = bareKey(125);
    Binding clipboardSelect = bareKey(36);
    Binding clipboardPasteOriginal = bareKey(31);
    Binding clipboardPastePlainText = bareKey(35);
    Binding clipboardDirectPastePlainText = chord(Modifier::Control, 9);
    Binding clipboardShowInFinder = bareKey(3);
    Binding clipboardQuickLook = bareKey(49);
    Binding clipboardDelete = bareKey(51);
    Binding clipboardOpenURL = chord(Modifier::Command, 36);
    Binding clipboardSearch = bareKey(1);
    Binding toggleMonitorDimming = chord(Modifier::Control | Modifier::Alt, 11);
    Binding openSystemMonitoringDashboard = std::nullopt;
    Binding proposeAutoLayout = chord(Modifier::Control | Modifier::Alt, 49);
    // Bare keys: navigation inside the auto-layout panel.
    Binding autoLayoutPrevious = bareKey(126);
    Binding autoLayoutNext = bareKey(125);
    Binding autoLayoutChooseCandidate = bareKey(36);
    Binding switchWindow = chord(Modifier::Alt, 48);
    Binding switchWindowPrevious = chord(Modifier::Alt | Modifier::Shift, 48);
    Binding moveWindowToScreen = chord(Modifier::Control | Modifier::Alt, 46);
    Binding matchSnappedWindowFrame = chord(Modifier::Control, 49);
    Binding autoLayoutExpandTabs = chord(Modifier::Alt, 124);
    Binding autoLayoutCollapseTabs = chord(Modifier::Alt, 123);
    Binding windowSwitcherSearch = chord(Modifier::Alt, 1);

    Binding& shortcut(KeyboardAppAction action);
    const Binding& shortcut(KeyboardAppAction action) const;

    bool operator==(const KeyboardBindings&) const = default;
};

void to_json(Json& j, const KeyboardBindings& b);
void from_json(const Json& j, KeyboardBindings& b);

} // namespace velmora
