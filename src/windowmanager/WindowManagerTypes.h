#pragma once

#include "core/Rect.h"

#include <QString>
#include <optional>

namespace velmora {

// One on-screen window as the window server lists it, after the listing rules.
struct CGWindowInfo {
    quint32 id = 0;
    quint64 spaceId = 0;
    qint32 pid = 0;
    Rect frame; // top-left space
    bool isFocused = false;
    std::optional<QString> appName;
    std::optional<QString> title;
    bool operator==(const CGWindowInfo&) const = default;
};

// One window as the window manager acts on it.
struct WindowInfo {
    quint32 id = 0;
    qint32 pid = 0;
    Rect frame; // top-left space
    bool isFocused = false;
    quint64 spaceId = 0;
    std::optional<QString> title;
    std::optional<QString> appName;
    bool operator==(const WindowInfo&) const = default;
};

// Which edges of a window lie against a reference rectangle (a screen or another window).
struct Edges {
    bool left = false, right = false, top = false, bottom = false;
    bool operator==(const Edges&) const = default;
};

} // namespace velmora
