#pragma once

#include "app/ActionProvider.h"
#include "core/KeyboardAppAction.h"
#include "core/KeyboardBindings.h"

#include <functional>

namespace velmora {

class AppActionDispatcher;

// A provider for actions bound in the global bindings record: a chord is answered when the user bound
// it to one of these actions and the action can run now (its module is built and its feature is on).
class BindingsProvider final : public ActionProvider {
public:
    struct Entry {
        KeyboardAppAction id;
        AppAction action;
    };

    BindingsProvider(std::function<const KeyboardBindings&()> bindings, const AppActionDispatcher& dispatcher,
                     std::vector<Entry> entries);

    std::vector<KeyboardShortcut> chords() const override;
    std::optional<KeyboardBinding> resolve(const KeyboardShortcut& chord) const override;

private:
    const KeyboardShortcut* boundAndAvailable(const Entry& entry) const;

    std::function<const KeyboardBindings&()> m_bindings;
    const AppActionDispatcher& m_dispatcher;
    std::vector<Entry> m_entries;
};

} // namespace velmora
