#include "app/BindingsProvider.h"

#include "app/AppActionDispatcher.h"

namespace velmora {

BindingsProvider::BindingsProvider(std::function<const KeyboardBindings&()> bindings,
                                   const AppActionDispatcher& dispatcher, std::vector<Entry> entries)
    : m_bindings(std::move(bindings)), m_dispatcher(dispatcher), m_entries(std::move(entries)) {}

const KeyboardShortcut* BindingsProvider::boundAndAvailable(const Entry& entry) const {
    const auto& bound = m_bindings().shortcut(entry.id);
    if (!bound || bound->disabled || !m_dispatcher.isAvailable(entry.action))
        return nullptr;
    return &*bound;
}

std::vector<KeyboardShortcut> BindingsProvider::chords() const {
    std::vector<KeyboardShortcut> result;
    for (const auto& entry : m_entries)
        if (const auto* bound = boundAndAvailable(entry))
            result.push_back(*bound);
    return result;
}

std::optional<KeyboardBinding> BindingsProvider::resolve(const KeyboardShortcut& chord) const {
    for (const auto& entry : m_entries)
        if (const auto* bound = boundAndAvailable(entry); bound && bound->matches(chord))
            return KeyboardBinding{*bound, entry.action, true, rawName(entry.id)};
    return std::nullopt;
}

} // namespace velmora
