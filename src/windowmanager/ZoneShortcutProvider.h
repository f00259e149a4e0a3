#pragma once

#include "app/ActionProvider.h"

#include <functional>

namespace velmora {

class WindowManagerActions;
struct WindowManagerPreferences;

// Zone chords: every chord some zone is bound to, while the window manager is on. A chord resolves to
// the zones offered on the focused window's screen and the one to snap to, decided here, once, from
// the window and screen models in memory.
class ZoneShortcutProvider final : public ActionProvider {
public:
    ZoneShortcutProvider(const WindowManagerActions& actions, std::function<bool()> enabled,
                         std::function<const WindowManagerPreferences&()> preferences);

    std::vector<KeyboardShortcut> chords() const override;
    std::optional<KeyboardBinding> resolve(const KeyboardShortcut& chord) const override;

private:
    const WindowManagerActions& m_actions;
    std::function<bool()> m_enabled;
    std::function<const WindowManagerPreferences&()> m_preferences;
};

} // namespace velmora
