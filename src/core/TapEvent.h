#pragma once

#include <cstdint>

namespace velmora {

// The event types the input tap sees, numbered as on every platform.
namespace TapEventType {
inline constexpr int LeftMouseDown = 1;
inline constexpr int LeftMouseUp = 2;
inline constexpr int MouseMoved = 5;
inline constexpr int LeftMouseDragged = 6;
inline constexpr int KeyDown = 10;
inline constexpr int KeyUp = 11;
inline constexpr int FlagsChanged = 12;
inline constexpr int SystemDefined = 14; // media and brightness keys
} // namespace TapEventType

// One input event as the tap hands it over. flags uses the masks of ModifierMask (KeyEvent.h).
struct TapEvent {
    int type = 0;
    std::uint64_t flags = 0;
    std::uint16_t keyCode = 0; // virtual key code, for key events
    bool isRepeat = false;

    bool isMouse() const {
        return type == TapEventType::LeftMouseDown || type == TapEventType::LeftMouseUp ||
               type == TapEventType::MouseMoved || type == TapEventType::LeftMouseDragged;
    }
};

enum class TapVerdict { pass, swallow };

} // namespace velmora
