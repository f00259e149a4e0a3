#include "app/ActionProviders.h"

#include <algorithm>

namespace velmora {

void ActionProviders::add(Slot slot, std::unique_ptr<ActionProvider> provider) {
    m_entries.push_back({slot, std::move(provider)});
    std::stable_sort(m_entries.begin(), m_entries.end(),
                     [](const Entry& a, const Entry& b) { return a.slot < b.slot; });
}

std::optional<KeyboardBinding> ActionProviders::ask(const Entry& entry, const KeyboardShortcut& chord) const {
    // The same rule as grabbing: a chord that is ordinary typing (a bare key, Shift+key) is never
    // taken from the focused program, even when a stored record still binds it.
    const auto chords = entry.provider->chords();
    const bool listed = std::any_of(chords.begin(), chords.end(), [&](const KeyboardShortcut& c) {
        return c.canBeGlobal() && c.matches(chord);
    });
    if (!listed)
        return std::nullopt;
    auto binding = entry.provider->resolve(chord);
    if (binding)
        binding->provider = entry.provider.get();
    return binding;
}

std::optional<KeyboardBinding> ActionProviders::match(const KeyboardShortcut& chord) const {
    for (const auto& entry : m_entries)
        if (auto binding = ask(entry, chord))
            return binding;
    return std::nullopt;
}

std::optional<KeyboardBinding> ActionProviders::rematch(const KeyboardBinding& binding) const {
    for (const auto& entry : m_entries)
        if (entry.provider.get() == binding.provider)
            return ask(entry, binding.shortcut);
    return std::nullopt;
}

std::vector<KeyboardShortcut> ActionProviders::swallowableChords() const {
    std::vector<KeyboardShortcut> chords;
    for (const auto& entry : m_entries)
        for (const auto& c : entry.provider->chords())
            if (!c.disabled && c.canBeGlobal() && std::find(chords.begin(), chords.end(), c) == chords.end())
                chords.push_back(c);
    return chords;
}

} // namespace velmora
