#pragma once

#include "core/KeyboardAppAction.h"
#include "core/KeyboardBindings.h"
#include "core/KeyboardShortcut.h"
#include "core/WindowArea.h"

#include <QWidget>
#include <array>
#include <functional>
#include <vector>

class QPushButton;

namespace velmora {

class EventTap;
class UndoBar;
class KeyboardLayout;
class KeyboardShortcutField;
class KeyboardShortcutModel;
class UserPreferences;

// Whether the action's shortcut is global and so must include a modifier (a bare key would be taken
// from every application); the panel navigation keys are bare keys read only while a panel has focus.
bool shortcutRequiresModifier(KeyboardAppAction action);

// Every binding of the bindings record, one row per action under its group's heading. A recorded or
// switched chord is written back as a whole new record; a chord the platform could not reserve is
// marked on its row with the reason.
class KeyboardShortcutsPreferencesPage : public QWidget {
    Q_OBJECT
public:
    static constexpr const char* kTitle = "Keyboard Shortcuts";

    KeyboardShortcutsPreferencesPage(UserPreferences& preferences, KeyboardShortcutModel& model,
                                     const KeyboardLayout& layout, EventTap& tap,
                                     std::function<bool(KeyboardAppAction)> offered = {},
                                     QWidget* parent = nullptr);

    // The row of the action; null when this build has nothing that answers it (offered said no).
    KeyboardShortcutField* field(KeyboardAppAction action) const { return m_fields[std::size_t(action)]; }
    QPushButton* restoreButton() const { return m_restore; }
    UndoBar* undoBar() const { return m_undo; }

private:
    void refresh();
    void assign(KeyboardAppAction action, const KeyboardShortcut& shortcut);
    void restoreDefaults();
    bool write(const KeyboardBindings& bindings, const std::vector<WindowArea>& zones);

    UserPreferences& m_preferences;
    EventTap& m_tap;
    QPushButton* m_restore = nullptr;
    UndoBar* m_undo = nullptr;
    std::array<KeyboardShortcutField*, keyboardAppActionCount> m_fields{};
};

} // namespace velmora
