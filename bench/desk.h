// The desktop as the desktop benchmarks drive it: one X connection, chords sent through XTest, plain
// windows that the window manager frames, and geometry read back from the server. Every wait is
// bounded: a benchmark that gets no answer stops with a message instead of hanging `make bench`.
#pragma once

#include "fail.h"

#include <xcb/xcb.h>
#include <xcb/xcb_keysyms.h>
#include <xcb/xtest.h>
#include <xkbcommon/xkbcommon-keysyms.h>

#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <poll.h>
#include <string>
#include <vector>

namespace bench {

using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

inline double msSince(Clock::time_point start) {
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

struct Rect {
    int x = 0, y = 0, w = 0, h = 0;
    bool operator==(const Rect&) const = default;
    std::string text() const {
        return std::to_string(w) + "x" + std::to_string(h) + "+" + std::to_string(x) + "+" +
               std::to_string(y);
    }
};

using Event = std::unique_ptr<xcb_generic_event_t, decltype(&std::free)>;

inline std::uint8_t eventType(const Event& e) {
    return e->response_type & 0x7f;
}

// A chord as a hand plays it: modifier keys held down around one key.
struct Chord {
    std::vector<xcb_keycode_t> modifiers;
    xcb_keycode_t key = 0;
};

class Desk {
public:
    xcb_connection_t* c = xcb_connect(nullptr, nullptr);
    xcb_screen_t* screen = nullptr;
    xcb_window_t root = 0;

    Desk() {
        if (xcb_connection_has_error(c))
            fail("cannot open the X display \"%s\"", std::getenv("DISPLAY") ? std::getenv("DISPLAY") : "");
        screen = xcb_setup_roots_iterator(xcb_get_setup(c)).data;
        root = screen->root;
        symbols = xcb_key_symbols_alloc(c);
    }
    Desk(const Desk&) = delete;
    Desk& operator=(const Desk&) = delete;
    ~Desk() {
        xcb_key_symbols_free(symbols);
        xcb_disconnect(c);
    }

    xcb_keycode_t code(xcb_keysym_t keysym) {
        xcb_keycode_t* codes = xcb_key_symbols_get_keycode(symbols, keysym);
        const xcb_keycode_t k = codes ? codes[0] : 0;
        std::free(codes);
        if (!k)
            fail("no key code for keysym 0x%x in this keymap", unsigned(keysym));
        return k;
    }

    // Presses the modifiers in order, taps the key, releases the modifiers; all in one flush, so the
    // server sees the chord at once and the time to its effect starts with the call.
    void play(const Chord& chord) {
        for (auto m : chord.modifiers)
            fake(XCB_KEY_PRESS, m);
        fake(XCB_KEY_PRESS, chord.key);
        fake(XCB_KEY_RELEASE, chord.key);
        for (auto it = std::rbegin(chord.modifiers); it != std::rend(chord.modifiers); ++it)
            fake(XCB_KEY_RELEASE, *it);
        xcb_flush(c);
    }

    // True when another client holds a passive grab on the chord: our own attempt is then refused.
    // Only for chords nobody is about to grab, since a successful probe holds the grab for a moment.
    bool grabbedBySomeone(std::uint16_t modifiers, xcb_keycode_t key) {
        auto cookie =
            xcb_grab_key_checked(c, 0, root, modifiers, key, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
        if (xcb_generic_error_t* error = xcb_request_check(c, cookie)) {
            std::free(error);
            return true;
        }
        xcb_ungrab_key(c, key, root, modifiers);
        xcb_flush(c);
        return false;
    }

    xcb_atom_t atom(const char* name) {
        auto* r = xcb_intern_atom_reply(c, xcb_intern_atom(c, 0, std::strlen(name), name), nullptr);
        const xcb_atom_t a = r ? r->atom : xcb_atom_t(XCB_ATOM_NONE);
        std::free(r);
        return a;
    }

    // A normal, titled top-level window; returns once the window manager has mapped it.
    xcb_window_t openWindow(const char* title, Rect at, std::uint32_t events) {
        const xcb_window_t w = xcb_generate_id(c);
        events |= XCB_EVENT_MASK_STRUCTURE_NOTIFY;
        xcb_create_window(c, XCB_COPY_FROM_PARENT, w, root, std::int16_t(at.x), std::int16_t(at.y),
                          std::uint16_t(at.w), std::uint16_t(at.h), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                          screen->root_visual, XCB_CW_EVENT_MASK, &events);
        xcb_change_property(c, XCB_PROP_MODE_REPLACE, w, XCB_ATOM_WM_NAME, XCB_ATOM_STRING, 8,
                            std::strlen(title), title);
        static const char wmClass[] = "velmora-bench\0VelmoraBench";
        xcb_change_property(c, XCB_PROP_MODE_REPLACE, w, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, 8,
                            sizeof wmClass, wmClass);
        xcb_map_window(c, w);
        xcb_flush(c);
        const auto deadline = Clock::now() + 3s;
        while (!isViewable(w)) {
            if (Clock::now() > deadline)
                fail("the window manager did not map window \"%s\" within 3 s", title);
            drainUntil(Clock::now() + 10ms);
        }
        return w;
    }

    // Makes the window the active one the way a pager does, so the window manager and the agent agree
    // on it; returns once both the active-window property and the input focus name it.
    void activate(xcb_window_t w) {
        const xcb_atom_t active = atom("_NET_ACTIVE_WINDOW");
        xcb_client_message_event_t m{};
        m.response_type = XCB_CLIENT_MESSAGE;
        m.format = 32;
        m.window = w;
        m.type = active;
        m.data.data32[0] = 2; // from a pager: honoured without focus-stealing checks
        m.data.data32[1] = XCB_CURRENT_TIME;
        const auto deadline = Clock::now() + 3s;
        for (int attempt = 0; activeWindow(active) != w || focusedWindow() != w; ++attempt) {
            if (Clock::now() > deadline)
                fail("the window manager did not activate window 0x%x within 3 s", w);
            if (attempt % 20 == 0) {
                xcb_send_event(c, 0, root,
                               XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                               reinterpret_cast<const char*>(&m));
                xcb_flush(c);
            }
            drainUntil(Clock::now() + 5ms);
        }
    }

    xcb_window_t activeWindow(xcb_atom_t active) {
        auto* r =
            xcb_get_property_reply(c, xcb_get_property(c, 0, root, active, XCB_ATOM_WINDOW, 0, 1), nullptr);
        const xcb_window_t w = r && xcb_get_property_value_length(r) >= 4
                                   ? *static_cast<xcb_window_t*>(xcb_get_property_value(r))
                                   : 0;
        std::free(r);
        return w;
    }

    xcb_window_t focusedWindow() {
        auto* r = xcb_get_input_focus_reply(c, xcb_get_input_focus(c), nullptr);
        const xcb_window_t w = r ? r->focus : 0;
        std::free(r);
        return w;
    }

    // How many client windows the window manager lists (_NET_CLIENT_LIST).
    int clientCount() {
        auto* r = xcb_get_property_reply(
            c, xcb_get_property(c, 0, root, atom("_NET_CLIENT_LIST"), XCB_ATOM_WINDOW, 0, 1024), nullptr);
        const int n = r ? xcb_get_property_value_length(r) / 4 : 0;
        std::free(r);
        return n;
    }

    // The window manager's frame around a client: its ancestor that is a child of the root.
    xcb_window_t frameOf(xcb_window_t w) {
        for (;;) {
            auto* t = xcb_query_tree_reply(c, xcb_query_tree(c, w), nullptr);
            if (!t)
                fail("window 0x%x vanished", w);
            const xcb_window_t parent = t->parent;
            std::free(t);
            if (parent == root || parent == XCB_NONE)
                return w;
            w = parent;
        }
    }

    // The outer rectangle of a child of the root, border included, as the server has it now.
    Rect outerRect(xcb_window_t w) {
        auto* g = xcb_get_geometry_reply(c, xcb_get_geometry(c, w), nullptr);
        Rect r;
        if (g)
            r = {g->x, g->y, g->width + 2 * g->border_width, g->height + 2 * g->border_width};
        std::free(g);
        return r;
    }

    // The same rectangle as a ConfigureNotify of that window announces it.
    static Rect outerRect(const xcb_configure_notify_event_t& e) {
        return {e.x, e.y, e.width + 2 * e.border_width, e.height + 2 * e.border_width};
    }

    // Asks for the window's structure events (ConfigureNotify) although another client owns it.
    void watchStructure(xcb_window_t w) {
        const std::uint32_t events = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
        xcb_change_window_attributes(c, w, XCB_CW_EVENT_MASK, &events);
        xcb_flush(c);
    }

    // The next event from the server, or none once the deadline has passed.
    Event nextEvent(Clock::time_point deadline) {
        for (;;) {
            if (auto* e = xcb_poll_for_event(c))
                return Event(e, &std::free);
            if (xcb_connection_has_error(c))
                fail("the X connection broke");
            const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
            if (left.count() <= 0)
                return Event(nullptr, &std::free);
            pollfd p{xcb_get_file_descriptor(c), POLLIN, 0};
            ::poll(&p, 1, int(left.count()));
        }
    }

    // Drops whatever the server sends until the deadline: for callers that only look again after.
    void drainUntil(Clock::time_point deadline) {
        while (nextEvent(deadline)) {
        }
    }

    // A round trip: every request sent before has been carried out by the server when it returns.
    void sync() { std::free(xcb_get_input_focus_reply(c, xcb_get_input_focus(c), nullptr)); }

private:
    xcb_key_symbols_t* symbols = nullptr;

    void fake(std::uint8_t type, xcb_keycode_t key) {
        xcb_test_fake_input(c, type, key, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
    }

    bool isViewable(xcb_window_t w) {
        auto* a = xcb_get_window_attributes_reply(c, xcb_get_window_attributes(c, w), nullptr);
        const bool viewable = a && a->map_state == XCB_MAP_STATE_VIEWABLE;
        std::free(a);
        return viewable;
    }
};

} // namespace bench
