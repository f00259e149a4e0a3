// How long a snap takes as the user sees it: from the key press (XTest) to the window's frame standing
// in the zone on the server, for the agent's zone chords and, in the same run, for Openbox's own
// MoveResizeTo key bindings to the same frames (tools/openbox/rc-bench.xml). The presses take turns
// so that every press moves the window and both are measured under the same conditions:
// agent to the left half, Openbox to the right, Openbox to the left, agent to the right, and so on.
//   snap_latency [PRESSES_EACH]
#include "desk.h"
#include "results.h"
#include "samples.h"

#include <algorithm>
#include <cstdio>
#include <optional>
#include <string>

using namespace bench;

namespace {

constexpr auto kPressTimeout = 1s;
constexpr auto kBetweenPresses = 15ms; // leaves the agent and Openbox idle before the next press
constexpr int kWarmUp = 8;
constexpr int kTimeoutsAllowed = 3;

struct Snapper {
    const char* name;
    Chord left, right;
    Rect leftFrame, rightFrame;
};

// Presses a chord and returns the frame once ConfigureNotify stops coming for a while.
Rect settle(Desk& d, xcb_window_t frame, const Chord& chord) {
    d.play(chord);
    const auto deadline = Clock::now() + 2s;
    auto quietUntil = Clock::now() + 300ms;
    while (Clock::now() < deadline) {
        auto e = d.nextEvent(std::min(quietUntil, deadline));
        if (!e) {
            if (Clock::now() >= quietUntil)
                break;
            continue;
        }
        if (eventType(e) == XCB_CONFIGURE_NOTIFY)
            quietUntil = Clock::now() + 150ms;
    }
    return d.outerRect(frame);
}

// Milliseconds from sending the chord to the frame's ConfigureNotify that puts it at the target; none
// when it did not get there in time.
std::optional<double> snap(Desk& d, xcb_window_t frame, const Chord& chord, const Rect& target) {
    d.drainUntil(Clock::now());
    const auto start = Clock::now();
    d.play(chord);
    const auto deadline = start + kPressTimeout;
    while (auto e = d.nextEvent(deadline)) {
        if (eventType(e) != XCB_CONFIGURE_NOTIFY)
            continue;
        const auto& c = *reinterpret_cast<const xcb_configure_notify_event_t*>(e.get());
        if (c.window == frame && Desk::outerRect(c) == target)
            return msSince(start);
    }
    return std::nullopt;
}

} // namespace

int main(int argc, char** argv) {
    programName = "snap_latency";
    const int pressesEach = argc > 1 ? std::atoi(argv[1]) : 500;
    Desk d;
    const xcb_window_t w = d.openWindow("velmora-bench snap", {200, 200, 500, 350}, 0);
    d.activate(w);
    const xcb_window_t frame = d.frameOf(w);
    d.watchStructure(frame);

    const auto super = d.code(XKB_KEY_Super_L), alt = d.code(XKB_KEY_Alt_L),
               control = d.code(XKB_KEY_Control_L), left = d.code(XKB_KEY_Left),
               right = d.code(XKB_KEY_Right);
    Snapper agent{"agent", {{super, alt}, left}, {{super, alt}, right}, {}, {}};
    Snapper openbox{"Openbox", {{super, control}, left}, {{super, control}, right}, {}, {}};

    // Where each one puts the window; the agent's zones are what the Openbox bindings must repeat.
    for (Snapper* s : {&agent, &openbox}) {
        s->leftFrame = settle(d, frame, s->left);
        s->rightFrame = settle(d, frame, s->right);
        std::printf("%-8s left half %-20s right half %s\n", s->name, s->leftFrame.text().c_str(),
                    s->rightFrame.text().c_str());
        if (s->leftFrame == s->rightFrame)
            fail("%s did not move the window between the halves (is it running, are its chords bound?)",
                 s->name);
    }
    const bool sameFrames = agent.leftFrame == openbox.leftFrame && agent.rightFrame == openbox.rightFrame;
    if (!sameFrames)
        std::printf("warning: Openbox's bindings do not reach the agent's frames; "
                    "set them in tools/openbox/rc-bench.xml to the agent's left and right halves above\n");
    std::printf("%d client windows managed, the tray among them\n", d.clientCount());

    struct Turn {
        Snapper* snapper;
        bool toLeft;
    };
    const Turn turns[] = {{&agent, true}, {&openbox, false}, {&openbox, true}, {&agent, false}};
    Samples agentSamples, openboxSamples;
    int timeouts = 0;
    for (int i = 0;
         agentSamples.size() < std::size_t(pressesEach) || openboxSamples.size() < std::size_t(pressesEach);
         ++i) {
        const Turn& turn = turns[i % 4];
        const Rect& target = turn.toLeft ? turn.snapper->leftFrame : turn.snapper->rightFrame;
        const auto ms = snap(d, frame, turn.toLeft ? turn.snapper->left : turn.snapper->right, target);
        if (!ms) {
            std::fprintf(stderr, "snap_latency: %s did not reach %s within 1 s (now %s)\n",
                         turn.snapper->name, target.text().c_str(), d.outerRect(frame).text().c_str());
            if (++timeouts >= kTimeoutsAllowed)
                fail("giving up after %d presses that had no effect", timeouts);
        }
        if (i >= kWarmUp)
            (turn.snapper == &agent ? agentSamples : openboxSamples)
                .add(ms.value_or(std::chrono::duration<double, std::milli>(kPressTimeout).count()));
        d.drainUntil(Clock::now() + kBetweenPresses);
    }

    std::printf("snap, key press to zone frame: agent   median %.2f ms  p99 %.2f ms  (n=%zu)\n",
                agentSamples.median(), agentSamples.p99(), agentSamples.size());
    std::printf("snap, key press to zone frame: Openbox median %.2f ms  p99 %.2f ms  (n=%zu)\n",
                openboxSamples.median(), openboxSamples.p99(), openboxSamples.size());
    const double ratio = agentSamples.median() / openboxSamples.median();
    record({"snap: key press to zone frame",
            "ms",
            {agentSamples.median(), agentSamples.p99()},
            sameFrames ? "Openbox MoveResizeTo key" : "Openbox key (OTHER FRAMES)",
            Figure{openboxSamples.median(), openboxSamples.p99()},
            "ratio<=1.5, <3 p50, <6 p99",
            sameFrames && ratio <= 1.5 && agentSamples.median() < 3 && agentSamples.p99() < 6});
    return 0;
}
