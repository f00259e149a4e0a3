#pragma once

#include "core/KeyboardAppAction.h"
#include "core/KeyboardBindings.h"

#include <QString>
#include <utility>
#include <vector>

namespace velmora {

class KeyboardLayout;
struct KeyEvent;

// The keys a panel answers while it has the keyboard (the clipboard history, the auto-layout panel):
// its bindings in the order their hints are shown, each with the few words of its hint (none for
// keys that need no hint, such as the arrows).
using PanelBindings = std::vector<std::pair<KeyboardAppAction, const char*>>;

// The chord a key press makes, to match against the bindings.
KeyboardShortcut chordOf(const KeyEvent& key);

// The hint line: "<b>Return</b> paste   <b>Alt+→</b> show tabs ...", rich text, with the user's own
// shortcuts; disabled ones are left out.
QString panelHintsText(const PanelBindings& panel, const KeyboardBindings& bindings,
                       const KeyboardLayout& layout);

} // namespace velmora
