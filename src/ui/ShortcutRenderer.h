#pragma once

#include "core/KeyboardShortcut.h"

#include <QStringList>
#include <QWidget>
#include <optional>
#include <vector>

class QHBoxLayout;

namespace velmora {

class KeyboardLayout;
class KeyboardShortcutModel;
class KeyRenderer;

// The caps of a chord, left to right: one per modifier in the order Ctrl, Super, Alt, Shift (the
// command, control, alt and shift flags), then the key as the current layout labels it.
QStringList shortcutCapLabels(const KeyboardShortcut& shortcut, const KeyboardLayout& layout);
// The same caps joined as text ("Ctrl+Alt+V"), for logs and tooltips.
QString shortcutText(const KeyboardShortcut& shortcut, const KeyboardLayout& layout);

// A chord drawn as a row of key caps: either a fixed shortcut, or (showHeldKeys) whatever the model
// says is held right now, modifiers alone until a key goes down. With shouldHighlight, each cap is
// highlighted while its key is held. With requireModifier, a key without a modifier is drawn greyed,
// as it would not be accepted.
class ShortcutRenderer : public QWidget {
    Q_OBJECT
public:
    // What a cap stands for, so that it can tell whether it is held.
    enum class CapKind { Command, Control, Alt, Shift, Key };

    explicit ShortcutRenderer(const KeyboardLayout& layout, KeyboardShortcutModel* model = nullptr,
                              QWidget* parent = nullptr);

    const std::optional<KeyboardShortcut>& shortcut() const { return m_shortcut; }
    void setShortcut(std::optional<KeyboardShortcut> shortcut);

    bool showsHeldKeys() const { return m_showsHeldKeys; }
    void setShowsHeldKeys(bool shows);
    bool requireModifier() const { return m_requireModifier; }
    void setRequireModifier(bool require);
    bool shouldHighlight() const { return m_shouldHighlight; }
    void setShouldHighlight(bool highlight);
    KeyboardShortcutModel* model() const { return m_model; }

    QStringList capLabels() const;
    QList<KeyRenderer*> caps() const { return m_caps; }

private:
    // Called on every change of the model; rebuilds only when the drawn chord follows the model.
    void modelChanged();
    void rebuild();
    void updateHighlights();
    bool isHeld(CapKind kind) const;

    const KeyboardLayout& m_layout;
    KeyboardShortcutModel* m_model;
    std::optional<KeyboardShortcut> m_shortcut;
    bool m_showsHeldKeys = false;
    bool m_requireModifier = false;
    bool m_shouldHighlight = false;
    QHBoxLayout* m_row;
    std::vector<CapKind> m_kinds;
    QList<KeyRenderer*> m_caps;
};

} // namespace velmora
