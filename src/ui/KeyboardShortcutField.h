#pragma once

#include "core/KeyboardShortcut.h"

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
// popover that shows the chord as it is held; the first key pressed with it (with a modifier, when
// requireModifier) becomes the new binding and is handed to onChange. The model stays in recording
// exactly while the popover is open, so that no chord fires its action while it is being recorded.
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

    const std::optional<KeyboardShortcut>& existingShortcut() const { return m_existingShortcut; }
    void setExistingShortcut(std::optional<KeyboardShortcut> shortcut);
    bool requireModifier() const { return m_requireModifier; }
    void setRequireModifier(bool require);
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

    KeyboardShortcutModel& m_model;
    const KeyboardLayout& m_layout;
    std::optional<KeyboardShortcut> m_existingShortcut;
    bool m_requireModifier = false;
    bool m_canDisable = false;
    QString m_refusedReason;
    bool m_isPopoverShown = false;
    std::optional<KeyboardShortcut> m_newShortcut;
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
};

} // namespace velmora
