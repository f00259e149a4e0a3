// The least a program can do with a chord it grabs and then lets through: a passive grab on the root
// window in synchronous keyboard mode, and each press replayed to the focused window as soon as it
// comes. The yardstick for what the agent adds to a chord it holds but lets through.
//   replay_grabber KEYCODE MODIFIERS
// Prints "grabbed" once the grab is in place, and runs until it is killed or the display closes.
#include <xcb/xcb.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: replay_grabber KEYCODE MODIFIERS\n");
        return 2;
    }
    const auto key = xcb_keycode_t(std::atoi(argv[1]));
    const auto modifiers = std::uint16_t(std::atoi(argv[2]));
    xcb_connection_t* c = xcb_connect(nullptr, nullptr);
    if (xcb_connection_has_error(c)) {
        std::fprintf(stderr, "replay_grabber: cannot open the X display\n");
        return 1;
    }
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(c)).data->root;
    auto cookie = xcb_grab_key_checked(c, 0, root, modifiers, key, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_SYNC);
    if (xcb_generic_error_t* error = xcb_request_check(c, cookie)) {
        std::fprintf(stderr, "replay_grabber: the chord is grabbed by another client (error %d)\n",
                     error->error_code);
        return 1;
    }
    std::printf("grabbed\n");
    std::fflush(stdout);
    while (xcb_generic_event_t* e = xcb_wait_for_event(c)) {
        if ((e->response_type & 0x7f) == XCB_KEY_PRESS) {
            const auto* press = reinterpret_cast<xcb_key_press_event_t*>(e);
            xcb_allow_events(c, XCB_ALLOW_REPLAY_KEYBOARD, press->time);
            xcb_flush(c);
        }
        std::free(e);
    }
    return 0;
}
