#pragma once

#include "core/ClipboardPreferences.h"
#include "core/KeyboardBindings.h"
#include "core/ThemePreferences.h"
#include "core/WindowManagerPreferences.h"

#include <QString>
#include <optional>

namespace velmora {

// What a record must mean beyond its shape, checked before a record from outside (the command line, a
// file) replaces the current one. Each answer names the field and the allowed values in plain words;
// absent when the record is fine.
namespace PreferenceLimits {
inline constexpr double kMaxSpacing = 5;
inline constexpr int kMinRetention = 1;
inline constexpr int kMaxRetention = 10000;
inline constexpr double kMinSwitcherWidth = 200;
inline constexpr double kMaxSwitcherWidth = 2000;
} // namespace PreferenceLimits

std::optional<QString> problemWith(const WindowManagerPreferences& record, const KeyboardBindings& bindings);
std::optional<QString> problemWith(const KeyboardBindings& record,
                                   const WindowManagerPreferences& windowManager);
std::optional<QString> problemWith(const ClipboardPreferences& record);
std::optional<QString> problemWith(const ThemePreferences& record);
// The menu-bar icon: absent, or image data that decodes.
std::optional<QString> problemWithIcon(const std::optional<QByteArray>& image);

} // namespace velmora
