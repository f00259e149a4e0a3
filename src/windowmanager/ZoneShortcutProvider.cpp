#include "windowmanager/ZoneShortcutProvider.h"

#include "core/WindowManagerPreferences.h"
#include "windowmanager/WindowManagerActions.h"

namespace velmora {

ZoneShortcutProvider::ZoneShortcutProvider(const WindowManagerActions& actions, std::function<bool()> enabled,
                                           std::function<const WindowManagerPreferences&()> preferences)
    : m_actions(actions), m_enabled(std::move(enabled)), m_preferences(std::move(preferences)) {}

std::vector<KeyboardShortcut> ZoneShortcutProvider::chords() const {
    std::vector<KeyboardShortcut> result;
    if (!m_enabled())
        return result;
    for (const auto& area : m_preferences().areas)
        if (area.keyboardShortcut && !area.keyboardShortcut->disabled)
            result.push_back(*area.keyboardShortcut);
    return result;
}

std::optional<KeyboardBinding> ZoneShortcutProvider::resolve(const KeyboardShortcut& chord) const {
    const auto choice = m_actions.zonesForChord(chord);
    if (!choice)
        return std::nullopt;
    return KeyboardBinding{chord, action::WindowAreas{choice->candidates, choice->index}, true,
                           "windowAreas"};
}

} // namespace velmora
