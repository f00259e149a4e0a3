#pragma once

#include "app/KeyboardBinding.h"

#include <optional>
#include <vector>

namespace velmora {

// Answers pressed chords for one group of actions. chords() lists every chord it can answer right now
// (what the platform grabs); resolve() is only asked about one of those, so grabbing and matching
// cannot disagree. resolve() may still find nothing to do at this moment (no zone for this screen's
// shape), and the key then reaches the focused application.
class ActionProvider {
public:
    virtual ~ActionProvider() = default;
    virtual std::vector<KeyboardShortcut> chords() const = 0;
    virtual std::optional<KeyboardBinding> resolve(const KeyboardShortcut& chord) const = 0;
};

} // namespace velmora
