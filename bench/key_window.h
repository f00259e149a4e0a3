// A window of the benchmark that has the keyboard focus and tells when a key press reaches it.
#pragma once

#include "desk.h"

#include <functional>
#include <optional>

namespace bench {

class KeyWindow {
public:
    KeyWindow(Desk& desk, const char* title) : d(desk) {
        w = d.openWindow(title, {150, 150, 400, 300}, XCB_EVENT_MASK_KEY_PRESS);
        d.activate(w);
    }

    void focus() { d.activate(w); }

    // Milliseconds from calling `send` to this window getting a press of `key`; none when it does not
    // come within the timeout.
    std::optional<double> pressArrives(const std::function<void()>& send, xcb_keycode_t key,
                                       Clock::duration timeout) {
        const auto start = Clock::now();
        send();
        if (pressArrivesBy(key, start + timeout))
            return msSince(start);
        return std::nullopt;
    }

    // Whether a press of `key` reaches this window before the deadline.
    bool pressArrivesBy(xcb_keycode_t key, Clock::time_point deadline) {
        while (auto e = d.nextEvent(deadline)) {
            if (eventType(e) != XCB_KEY_PRESS)
                continue;
            const auto& press = *reinterpret_cast<const xcb_key_press_event_t*>(e.get());
            if (press.event == w && press.detail == key)
                return true;
        }
        return false;
    }

private:
    Desk& d;
    xcb_window_t w = 0;
};

} // namespace bench
