// How long the input tap holds the keyboard. Run on a desktop where the agent is running (make bench
// does this on a virtual desktop). A window of its own has the focus; XTest sends either a plain key
// "x", or the bound chord Super+Alt+C followed by "x". The keyboard is frozen while the agent
// decides about the chord, so "x" arrives only after the verdict was applied: the difference of the
// two delays is what the tap costs a user. Last, Super+Alt+Down, a chord the agent holds but lets
// through on a landscape screen (its zone is for portrait screens): the delay until the window gets
// the replayed key.
#include <xcb/xcb.h>
#include <xcb/xcb_keysyms.h>
#include <xcb/xtest.h>
#include <xkbcommon/xkbcommon-keysyms.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

struct Desk {
    xcb_connection_t* c = xcb_connect(nullptr, nullptr);
    xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(c)).data;
    xcb_key_symbols_t* symbols = xcb_key_symbols_alloc(c);
    xcb_window_t window = 0;

    xcb_keycode_t code(xcb_keysym_t keysym) {
        xcb_keycode_t* codes = xcb_key_symbols_get_keycode(symbols, keysym);
        const xcb_keycode_t k = codes ? codes[0] : 0;
        std::free(codes);
        return k;
    }
    void fake(std::uint8_t type, xcb_keycode_t key) {
        xcb_test_fake_input(c, type, key, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
    }
    void tap(xcb_keycode_t key) {
        fake(XCB_KEY_PRESS, key);
        fake(XCB_KEY_RELEASE, key);
    }

    void openWindow() {
        window = xcb_generate_id(c);
        const std::uint32_t events = XCB_EVENT_MASK_KEY_PRESS | XCB_EVENT_MASK_STRUCTURE_NOTIFY;
        xcb_create_window(c, XCB_COPY_FROM_PARENT, window, screen->root, 100, 100, 300, 200, 0,
                          XCB_WINDOW_CLASS_INPUT_OUTPUT, screen->root_visual, XCB_CW_EVENT_MASK, &events);
        xcb_map_window(c, window);
        xcb_flush(c);
        while (auto* e = xcb_wait_for_event(c)) {
            const bool mapped = (e->response_type & 0x7f) == XCB_MAP_NOTIFY;
            std::free(e);
            if (mapped)
                break;
        }
        xcb_set_input_focus(c, XCB_INPUT_FOCUS_PARENT, window, XCB_CURRENT_TIME);
        xcb_flush(c);
    }

    void waitForKey(xcb_keycode_t key) {
        while (auto* e = xcb_wait_for_event(c)) {
            const bool got = (e->response_type & 0x7f) == XCB_KEY_PRESS &&
                             reinterpret_cast<xcb_key_press_event_t*>(e)->detail == key;
            std::free(e);
            if (got)
                break;
        }
    }

    // Microseconds from sending the chord Super+Alt+key to the key arriving in the window.
    double replayed(xcb_keycode_t super, xcb_keycode_t alt, xcb_keycode_t key) {
        const auto start = Clock::now();
        fake(XCB_KEY_PRESS, super);
        fake(XCB_KEY_PRESS, alt);
        tap(key);
        fake(XCB_KEY_RELEASE, alt);
        fake(XCB_KEY_RELEASE, super);
        xcb_flush(c);
        waitForKey(key);
        return std::chrono::duration<double, std::micro>(Clock::now() - start).count();
    }

    // Microseconds from sending to the "x" arriving in the window.
    double round(bool withChord, xcb_keycode_t super, xcb_keycode_t alt, xcb_keycode_t cKey,
                 xcb_keycode_t xKey) {
        const auto start = Clock::now();
        if (withChord) {
            fake(XCB_KEY_PRESS, super);
            fake(XCB_KEY_PRESS, alt);
            tap(cKey);
            fake(XCB_KEY_RELEASE, alt);
            fake(XCB_KEY_RELEASE, super);
        }
        tap(xKey);
        xcb_flush(c);
        waitForKey(xKey);
        return std::chrono::duration<double, std::micro>(Clock::now() - start).count();
    }
};

void report(const char* name, std::vector<double> samples) {
    std::sort(samples.begin(), samples.end());
    const double median = samples[samples.size() / 2];
    const double p99 = samples[std::min(samples.size() - 1, samples.size() * 99 / 100)];
    std::printf("%-44s median %8.1f us   p99 %8.1f us   (n=%zu)\n", name, median, p99, samples.size());
}

} // namespace

int main(int argc, char** argv) {
    const int presses = argc > 1 ? std::atoi(argv[1]) : 1000;
    Desk d;
    if (xcb_connection_has_error(d.c)) {
        std::fprintf(stderr, "tap_latency: no X display\n");
        return 1;
    }
    d.openWindow();
    const auto super = d.code(XKB_KEY_Super_L), alt = d.code(XKB_KEY_Alt_L), cKey = d.code(XKB_KEY_c),
               xKey = d.code(XKB_KEY_x);
    const auto down = d.code(XKB_KEY_Down);
    std::vector<double> plain, chord, replay;
    for (int i = 0; i < presses; ++i) {
        plain.push_back(d.round(false, super, alt, cKey, xKey));
        chord.push_back(d.round(true, super, alt, cKey, xKey));
    }
    for (int i = 0; i < presses; ++i)
        replay.push_back(d.replayed(super, alt, down));
    report("plain key, no tap involved", plain);
    report("after a swallowed chord (verdict applied)", chord);
    report("held chord let through (replayed key)", replay);
    return 0;
}
