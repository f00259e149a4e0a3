#pragma once

#include "core/KeyboardAppAction.h"
#include "core/KeyboardBindings.h"
#include "core/WindowArea.h"

#include <QString>
#include <QUuid>
#include <optional>
#include <vector>

namespace velmora {

// The actions a chord triggers from anywhere on the desktop (the others are keys of the panels,
// read only while a panel has the focus).
bool isGlobalAction(KeyboardAppAction action);

// What a global chord is used by: a global binding or a zone.
struct ShortcutUse {
    std::optional<KeyboardAppAction> action;
    std::optional<QUuid> zone;
    QString title; // "Center Window", "zone “Left Half”"

    bool operator==(const ShortcutUse&) const = default;
};

// Every enabled global binding and zone bound to the chord, in the order of the records.
std::vector<ShortcutUse> shortcutUses(const KeyboardBindings& bindings, const std::vector<WindowArea>& zones,
                                      const KeyboardShortcut& chord);

// The uses of the chord other than the binding of `self` (a binding's own row); zones sharing a chord
// cycle, so a zone's row passes shareWithZones and sees only the global bindings.
std::vector<ShortcutUse> otherShortcutUses(const KeyboardBindings& bindings,
                                           const std::vector<WindowArea>& zones,
                                           const KeyboardShortcut& chord,
                                           std::optional<KeyboardAppAction> self, bool shareWithZones);

// Unbinds each use (its action or zone loses the chord), so the chord can be given to another.
void removeShortcutUses(KeyboardBindings& bindings, std::vector<WindowArea>& zones,
                        const std::vector<ShortcutUse>& uses);

// Why a chord cannot be a global shortcut, in plain words; absent when it can.
std::optional<QString> globalChordProblem(const KeyboardShortcut& chord);

// The first reason the bindings and zones do not fit together (a Shift-only global chord, two global
// actions on one chord, a zone on a global action's chord), in plain words; absent when they fit.
// Zones may share a chord with each other: pressing it again cycles through them.
std::optional<QString> shortcutsProblem(const KeyboardBindings& bindings,
                                        const std::vector<WindowArea>& zones);

} // namespace velmora
