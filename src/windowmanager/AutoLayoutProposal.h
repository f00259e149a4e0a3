#pragma once

#include "core/Rect.h"
#include "windowmanager/WindowManagerTypes.h"

#include <optional>
#include <vector>

namespace velmora {

// Which row of the auto-layout panel has the keyboard: the first candidate, a window (and maybe
// one of its tabs), or the search field.
struct AutoLayoutFocus {
    enum class Kind { candidate, window, search };
    Kind kind = Kind::candidate;
    quint32 window = 0;
    std::optional<int> tabIndex;
    bool operator==(const AutoLayoutFocus&) const = default;
};

// What the auto-layout panel proposes: the focused window stays where it is snapped and another
// window fills the space it leaves. Frames in top-left space.
struct AutoLayoutProposal {
    WindowInfo snappedWindow;
    std::vector<Rect> targetFrames; // one frame: the free space
    Rect maximizedWindowFrame;      // the screen's usable rectangle
    AutoLayoutFocus focus;
    bool operator==(const AutoLayoutProposal&) const = default;
};

} // namespace velmora
