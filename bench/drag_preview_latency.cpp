// How quickly the snap preview follows a drag: with a window held by its title bar, the pointer jumps
// (XTest motion) from the middle of the screen to the left edge, and the time to the preview overlay
// being mapped is measured; the yardstick, in the same motions, is Openbox moving the dragged frame to
// follow the pointer. Between samples the pointer goes back to the middle, which hides the preview.
//   drag_preview_latency [SAMPLES]
#include "desk.h"
#include "results.h"
#include "samples.h"

#include <cstdio>
#include <optional>

using namespace bench;

namespace {

constexpr auto kTimeout = 1s;
constexpr int kWarmUp = 5;

struct Desktop : Desk {
    void pointerTo(int x, int y) {
        xcb_test_fake_input(c, XCB_MOTION_NOTIFY, 0, XCB_CURRENT_TIME, root, std::int16_t(x), std::int16_t(y),
                            0);
        xcb_flush(c);
    }
    void button(bool down) {
        xcb_test_fake_input(c, down ? XCB_BUTTON_PRESS : XCB_BUTTON_RELEASE, 1, XCB_CURRENT_TIME, XCB_NONE, 0,
                            0, 0);
        xcb_flush(c);
    }
    void watchRoot() {
        const std::uint32_t events = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
        xcb_change_window_attributes(c, root, XCB_CW_EVENT_MASK, &events);
        xcb_flush(c);
    }
};

struct Sample {
    std::optional<double> preview; // ms to the overlay's MapNotify
    std::optional<double> frame;   // ms to the frame's ConfigureNotify
};

// Jumps to the edge and waits for both the preview and the moved frame.
Sample toEdge(Desktop& d, xcb_window_t frame, int y) {
    d.drainUntil(Clock::now());
    const auto start = Clock::now();
    d.pointerTo(2, y);
    Sample s;
    const auto deadline = start + kTimeout;
    while ((!s.preview || !s.frame) && Clock::now() < deadline) {
        auto e = d.nextEvent(deadline);
        if (!e)
            break;
        if (eventType(e) == XCB_MAP_NOTIFY && !s.preview) {
            const auto& m = *reinterpret_cast<const xcb_map_notify_event_t*>(e.get());
            if (m.override_redirect)
                s.preview = msSince(start);
        } else if (eventType(e) == XCB_CONFIGURE_NOTIFY && !s.frame) {
            const auto& c = *reinterpret_cast<const xcb_configure_notify_event_t*>(e.get());
            if (c.window == frame)
                s.frame = msSince(start);
        }
    }
    return s;
}

// Back to the middle; waits for the preview to go away.
bool toMiddle(Desktop& d, int x, int y) {
    d.pointerTo(x, y);
    const auto deadline = Clock::now() + kTimeout;
    while (auto e = d.nextEvent(deadline))
        if (eventType(e) == XCB_UNMAP_NOTIFY)
            return true;
    return false;
}

} // namespace

int main(int argc, char** argv) {
    programName = "drag_preview_latency";
    const int samples = argc > 1 ? std::atoi(argv[1]) : 200;
    Desktop d;
    const xcb_window_t w = d.openWindow("velmora-bench drag", {400, 300, 500, 350}, 0);
    d.activate(w);
    const xcb_window_t frame = d.frameOf(w);
    const Rect at = d.outerRect(frame);
    d.watchStructure(frame);
    d.watchRoot();

    // Hold the title bar and start moving, so that the agent tells a move from a resize.
    const int midX = 720, midY = 450;
    d.pointerTo(at.x + 120, at.y + 8);
    d.drainUntil(Clock::now() + 100ms);
    d.button(true);
    d.drainUntil(Clock::now() + 100ms);
    for (int i = 1; i <= 10; ++i) {
        d.pointerTo(at.x + 120 + (midX - at.x - 120) * i / 10, at.y + 8 + (midY - at.y - 8) * i / 10);
        d.drainUntil(Clock::now() + 20ms);
    }
    d.drainUntil(Clock::now() + 200ms);

    Samples preview, follow;
    int misses = 0;
    for (int i = 0; preview.size() < std::size_t(samples); ++i) {
        const int y = midY - 60 + (i % 7) * 20; // a little vertical variety inside the left-half anchor
        const Sample s = toEdge(d, frame, y);
        if (!s.preview || !s.frame) {
            std::fprintf(stderr, "drag_preview_latency: no %s within 1 s\n",
                         s.preview ? "frame move" : "preview");
            if (++misses >= 3) {
                d.button(false);
                fail("giving up: the preview (is the agent running with mouse snapping on?) or the frame did "
                     "not follow");
            }
        } else if (i >= kWarmUp) {
            preview.add(*s.preview);
            follow.add(*s.frame);
        }
        if (!toMiddle(d, midX, midY + (i % 7) * 10))
            std::fprintf(stderr, "drag_preview_latency: the preview stayed after leaving the edge\n");
        d.drainUntil(Clock::now() + 20ms);
    }
    // Let go in the middle, where nothing snaps.
    d.button(false);
    d.drainUntil(Clock::now() + 200ms);

    std::printf("drag, motion to preview mapped: agent   median %.2f ms  p99 %.2f ms  (n=%zu)\n",
                preview.median(), preview.p99(), preview.size());
    std::printf("drag, motion to frame moved:    Openbox median %.2f ms  p99 %.2f ms  (n=%zu)\n",
                follow.median(), follow.p99(), follow.size());
    record({"drag: motion to snap preview shown",
            "ms",
            {preview.median(), preview.p99()},
            "Openbox moving the dragged frame",
            Figure{follow.median(), follow.p99()},
            "< 16 ms p50 (one frame)",
            preview.median() < 16});
    return 0;
}
