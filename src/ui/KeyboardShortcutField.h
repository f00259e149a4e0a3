#pragma once

#include "core/KeyboardShortcut.h"
#include "core/ShortcutUse.h"

#include <QWidget>
#include <functional>
#include <optional>

class QCheckBox;
class QLabel;
class QPushButton;

namespace velmora {

class KeyboardLayout;
class KeyboardShortcutModel;
class ShortcutRenderer;

// One shortcut preference: shows the current binding and records a new one. Clicking it opens a
// popover that shows the chord as it is held; the first key pressed with it becomes the new binding and
// is handed to onChange. A global field takes only chords that cannot be ordinary typing (Ctrl, Alt or
// Super, or a function key) and says so in the popover otherwise. A chord something else already uses
// is not taken silently: the popover names the other use and asks whether to replace it. The model
// stays in recording exactly while the popover is open, so that no chord fires while being recorded.
class KeyboardShortcutField : public QWidget {
    Q_OBJECT
public:
    static constexpr const char* kPrompt = "Press any\nmodifier + key";

    KeyboardShortcutField(KeyboardShortcutModel& model, const KeyboardLayout& layout,
                          QWidget* parent = nullptr);
    ~KeyboardShortcutField() override;

    // Receives the recorded chord, or the current one switched on or off; the owner stores it and
    // hands it back through setExistingShortcut.
    std::function<void(const KeyboardShortcut&)> onChange;
    // What else uses a chord; the owner's onChange takes the chord from them once the user agreed.
    std::function<std::vector<ShortcutUse>(const KeyboardShortcut&)> usesOf;

    const std::optional<KeyboardShortcut>& existingShortcut() const { return m_existingShortcut; }
    void setExistingShortcut(std::optional<KeyboardShortcut> shortcut);
    bool requireModifier() const { return m_requireModifier; }
    void setRequireModifier(bool require);
    // A global chord works everywhere, so it must not be something people type.
    bool isGlobal() const { return m_global; }
    void setGlobal(bool global);
    bool canDisable() const { return m_canDisable; }
    void setCanDisable(bool canDisable);
    // Why the platform would not reserve this chord; empty when nothing is wrong.
    const QString& refusedReason() const { return m_refusedReason; }
    void setRefusedReason(const QString& reason);

    bool isPopoverShown() const { return m_isPopoverShown; }
    void openPopover();
    // Ends recording without a change.
    void closePopover();
    QWidget* popover() const { return m_popover; }
    // The last chord recorded by this field.
    const std::optional<KeyboardShortcut>& newShortcut() const { return m_newShortcut; }
    // The popover's explanation (a refused chord, or the uses of a chord waiting for an answer).
    QLabel* popoverMessage() const { return m_message; }
    // Waiting for "Replace" or "Cancel" on this chord.
    const std::optional<KeyboardShortcut>& pendingShortcut() const { return m_pendingShortcut; }
    void replaceOtherUses();

    ShortcutRenderer* renderer() const { return m_renderer; }
    QCheckBox* enabledBox() const { return m_enabled; }
    QLabel* warning() const { return m_warning; }

protected:
    void hideEvent(QHideEvent* event) override;

private:
    void refresh();
    void modelChanged();
    void popoverClosed();
    void refreshPopover();
    void take(const KeyboardShortcut& chord);
    void showMessage(const QString& text, bool asking);

    KeyboardShortcutModel& m_model;
    const KeyboardLayout& m_layout;
    std::optional<KeyboardShortcut> m_existingShortcut;
    bool m_requireModifier = false;
    bool m_global = false;
    bool m_canDisable = false;
    QString m_refusedReason;
    bool m_isPopoverShown = false;
    std::optional<KeyboardShortcut> m_newShortcut;
    std::optional<KeyboardShortcut> m_pendingShortcut;
    // The key that was down when the popover opened, or the last one seen since: only a key going
    // down while recording is taken, never one that was already held.
    std::optional<quint16> m_lastKeyCode;

    QPushButton* m_button;
    ShortcutRenderer* m_renderer;
    QLabel* m_none;
    QLabel* m_warning;
    QCheckBox* m_enabled;
    QWidget* m_popover = nullptr;
    QLabel* m_prompt = nullptr;
    ShortcutRenderer* m_held = nullptr;
    QLabel* m_message = nullptr;
    QWidget* m_answers = nullptr;
};

} // namespace velmora
