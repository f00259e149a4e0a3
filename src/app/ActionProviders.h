#pragma once

#include "app/ActionProvider.h"

#include <memory>
#include <vector>

namespace velmora {

// The action providers, asked in a fixed order for a pressed chord; the first answer wins. Each module
// puts its providers into their slots.
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

    void add(Slot slot, std::unique_ptr<ActionProvider> provider);

    std::optional<KeyboardBinding> match(const KeyboardShortcut& chord) const;
    // The same binding asked again (the repeat rule): its provider decides afresh, so a zone chord
    // pressed again cycles from where the window stands now. Absent when it no longer answers.
    std::optional<KeyboardBinding> rematch(const KeyboardBinding& binding) const;

    // Every modifier chord some provider can answer now: what the platform must be ready to swallow.
    std::vector<KeyboardShortcut> swallowableChords() const;

private:
    struct Entry {
        Slot slot;
        std::unique_ptr<ActionProvider> provider;
    };
    std::optional<KeyboardBinding> ask(const Entry& entry, const KeyboardShortcut& chord) const;

    std::vector<Entry> m_entries;
};

} // namespace velmora
