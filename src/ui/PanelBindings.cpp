#include "ui/PanelBindings.h"

#include "core/KeyEvent.h"
#include "ui/ShortcutRenderer.h"

#include <QStringList>

namespace velmora {

KeyboardShortcut chordOf(const KeyEvent& key) {
    KeyboardShortcut chord;
    chord.command = key.has(ModifierMask::Command);
    chord.control = key.has(ModifierMask::Control);
    chord.alt = key.has(ModifierMask::Option);
    chord.shift = key.has(ModifierMask::Shift);
    chord.keyCode = key.keyCode;
    return chord;
}

QString panelHintsText(const PanelBindings& panel, const KeyboardBindings& bindings,
                       const KeyboardLayout& layout) {
    QStringList parts;
    for (const auto& [binding, what] : panel) {
        const auto& shortcut = bindings.shortcut(binding);
        if (!what || !shortcut || shortcut->disabled)
            continue;
        parts << QString("<b>%1</b>&nbsp;%2").arg(shortcutText(*shortcut, layout).toHtmlEscaped(), what);
    }
    return parts.join(QStringLiteral(" &nbsp; "));
}

} // namespace velmora
