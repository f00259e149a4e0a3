#pragma once

#include "app/KeyboardBinding.h"

#include <functional>
#include <optional>
#include <vector>

namespace velmora {

class UserPreferences;

// The action providers, asked in a fixed order for a pressed chord; the first answer wins. Each area
// puts its provider into its slot as it lands.
class ActionProviders {
public:
    enum class Slot {
        windowManagerFocusedWindow,
        zoneShortcuts,
        windowManagerScreens,
        monitorDimming,
        switcherAndAutoLayout,
        clipboardHistory,
        application,
    };
    using Provider = std::function<std::optional<KeyboardBinding>(const KeyboardShortcut& chord)>;

    void set(Slot slot, Provider provider);
    std::optional<KeyboardBinding> match(const KeyboardShortcut& chord) const;

    // Every chord some provider could answer now (what the platform must be ready to swallow).
    using ChordSource = std::function<std::vector<KeyboardShortcut>()>;
    void addChordSource(ChordSource source) { m_chordSources.push_back(std::move(source)); }
    std::vector<KeyboardShortcut> swallowableChords() const;

    // The global actions of KeyboardBindings, each in its provider's slot.
    static ActionProviders forPreferences(UserPreferences& preferences);

private:
    std::vector<std::pair<Slot, Provider>> m_providers;
    std::vector<ChordSource> m_chordSources;
};

} // namespace velmora
