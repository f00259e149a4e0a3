// How long a snap takes as the user sees it: from the key press (XTest) to the window standing in its
// new frame. Run on a desktop where the agent runs (tools/bench-desktop). The window of this program
// is snapped alternately to the left and right halves, so every press moves it.
#include <xcb/xcb.h>
#include <xcb/xcb_keysyms.h>
#include <xcb/xtest.h>
#include <xkbcommon/xkbcommon-keysyms.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <thread>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

xcb_connection_t* c;
xcb_window_t root;
xcb_key_symbols_t* symbols;

xcb_keycode_t code(xcb_keysym_t keysym) {
    xcb_keycode_t* codes = xcb_key_symbols_get_keycode(symbols, keysym);
    const xcb_keycode_t k = codes ? codes[0] : 0;
    std::free(codes);
    return k;
}

void fake(std::uint8_t type, xcb_keycode_t key) {
    xcb_test_fake_input(c, type, key, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
}

int rootX(xcb_window_t w) {
    auto* t = xcb_translate_coordinates_reply(c, xcb_translate_coordinates(c, w, root, 0, 0), nullptr);
    const int x = t ? t->dst_x : -1;
    std::free(t);
    return x;
}

void report(const char* name, std::vector<double> samples) {
    std::sort(samples.begin(), samples.end());
    std::printf("%-44s median %8.2f ms   p99 %8.2f ms   (n=%zu)\n", name, samples[samples.size() / 2],
                samples[std::min(samples.size() - 1, samples.size() * 99 / 100)], samples.size());
}

} // namespace

int main(int argc, char** argv) {
    const int snaps = argc > 1 ? std::atoi(argv[1]) : 200;
    c = xcb_connect(nullptr, nullptr);
    if (xcb_connection_has_error(c)) {
        std::fprintf(stderr, "snap_latency: no X display\n");
        return 1;
    }
    xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(c)).data;
    root = screen->root;
    symbols = xcb_key_symbols_alloc(c);
    const xcb_window_t w = xcb_generate_id(c);
    xcb_create_window(c, XCB_COPY_FROM_PARENT, w, root, 100, 100, 400, 300, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                      screen->root_visual, 0, nullptr);
    xcb_map_window(c, w);
    xcb_flush(c);
    std::this_thread::sleep_for(std::chrono::milliseconds(500));
    xcb_set_input_focus(c, XCB_INPUT_FOCUS_PARENT, w, XCB_CURRENT_TIME);
    xcb_flush(c);
    std::this_thread::sleep_for(std::chrono::milliseconds(1200)); // the agent's cache sees the focus

    const auto super = code(XKB_KEY_Super_L), alt = code(XKB_KEY_Alt_L), left = code(XKB_KEY_Left),
               right = code(XKB_KEY_Right);
    std::vector<double> samples;
    for (int i = 0; i <= snaps; ++i) {
        const int before = rootX(w);
        const auto start = Clock::now();
        fake(XCB_KEY_PRESS, super);
        fake(XCB_KEY_PRESS, alt);
        fake(XCB_KEY_PRESS, i % 2 ? right : left);
        fake(XCB_KEY_RELEASE, i % 2 ? right : left);
        fake(XCB_KEY_RELEASE, alt);
        fake(XCB_KEY_RELEASE, super);
        xcb_flush(c);
        bool moved = false;
        while (Clock::now() - start < std::chrono::seconds(2)) {
            if (rootX(w) != before) {
                moved = true;
                break;
            }
            std::this_thread::sleep_for(std::chrono::microseconds(100));
        }
        if (!moved) {
            std::fprintf(stderr, "snap_latency: the window did not move (is the agent running?)\n");
            return 1;
        }
        if (i > 0) // the first snap also resizes; the rest only move
            samples.push_back(std::chrono::duration<double, std::milli>(Clock::now() - start).count());
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    report("key press to the window in its new frame", samples);
    return 0;
}
