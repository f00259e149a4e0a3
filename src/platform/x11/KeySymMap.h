#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <optional>

namespace velmora {

// Between X keysyms and the virtual key codes stored in records (the same codes on every platform, so
// that a binding synchronised between machines means the same key).
std::optional<std::uint16_t> virtualKeyCodeForKeysym(xcb_keysym_t keysym);
std::optional<xcb_keysym_t> keysymForVirtualKeyCode(std::uint16_t keyCode);

} // namespace velmora
