// What the input tap costs a key that is not for the agent. A window of this program has the focus and
// XTest plays chords on the same key, Down, in turns:
//   - Super+Ctrl+Down, which nobody grabs: the base;
//   - Super+Alt+Down, which the agent grabs but lets through on a landscape screen (its zone is for
//     portrait screens): the keyboard is frozen until the agent's verdict replays the key;
//   - Super+Shift+Down, grabbed by replay_grabber, which replays every press at once: the yardstick.
// Each delay runs from sending the chord to the Down press arriving in the window; the extra delay of
// a grabbed chord is its delay minus the base of the same round. Last, a swallowed chord
// (Super+Alt+C, centre) followed by "x": how much later "x" comes than alone, the time the keyboard
// stays frozen while the agent decides (the action itself runs after the verdict).
//   tap_latency [PRESSES_EACH]
#include "child.h"
#include "desk.h"
#include "key_window.h"
#include "results.h"
#include "samples.h"

#include <climits>
#include <cstdio>
#include <functional>
#include <string>
#include <unistd.h>

using namespace bench;

namespace {

constexpr auto kPressTimeout = 1s;
constexpr auto kBetweenPresses = 3ms; // the releases of one chord are handled before the next
constexpr int kWarmUp = 10;

std::string besideThisProgram(const char* name) {
    char path[PATH_MAX];
    const auto n = ::readlink("/proc/self/exe", path, sizeof path - 1);
    if (n <= 0)
        fail("cannot find where this program is");
    std::string dir(path, std::size_t(n));
    return dir.substr(0, dir.rfind('/') + 1) + name;
}

// Milliseconds from sending to `key` reaching the window, once the last chord's releases are through.
double delay(Desk& d, KeyWindow& window, const std::function<void()>& send, xcb_keycode_t key,
             const char* what) {
    d.drainUntil(Clock::now() + kBetweenPresses);
    const auto ms = window.pressArrives(send, key, kPressTimeout);
    if (!ms)
        fail("%s did not reach the focused window within 1 s (focus is on 0x%x)", what, d.focusedWindow());
    return *ms;
}

} // namespace

int main(int argc, char** argv) {
    programName = "tap_latency";
    const int pressesEach = argc > 1 ? std::atoi(argv[1]) : 500;
    Desk d;
    KeyWindow window(d, "velmora-bench keys");
    const auto super = d.code(XKB_KEY_Super_L), alt = d.code(XKB_KEY_Alt_L),
               control = d.code(XKB_KEY_Control_L), shift = d.code(XKB_KEY_Shift_L),
               down = d.code(XKB_KEY_Down), c = d.code(XKB_KEY_c), x = d.code(XKB_KEY_x);
    constexpr std::uint16_t kSuper = XCB_MOD_MASK_4, kAlt = XCB_MOD_MASK_1;

    if (d.grabbedBySomeone(kSuper | XCB_MOD_MASK_CONTROL, down))
        fail("Super+Ctrl+Down is grabbed by some client; the base needs a chord nobody grabs");
    if (d.grabbedBySomeone(kSuper | XCB_MOD_MASK_SHIFT, down))
        fail("Super+Shift+Down is grabbed by some client; replay_grabber needs it");
    if (!d.grabbedBySomeone(kSuper | kAlt, down))
        fail("nobody grabs Super+Alt+Down: is the agent running with its default zones?");
    Child grabber({besideThisProgram("replay_grabber"), std::to_string(down),
                   std::to_string(kSuper | XCB_MOD_MASK_SHIFT)});
    if (grabber.readLine(3000ms) != "grabbed")
        fail("replay_grabber did not grab Super+Shift+Down within 3 s");

    const Chord base{{super, control}, down}, held{{super, alt}, down}, replayed{{super, shift}, down},
        centre{{super, alt}, c};
    Samples baseMs, agentMs, grabberMs, agentExtra, grabberExtra;
    for (int round = 0; round < kWarmUp + pressesEach; ++round) {
        double ms[3];
        // The order turns each round, so no kind always follows the same one.
        for (int k = 0; k < 3; ++k) {
            const int kind = (round + k) % 3;
            const Chord& chord = kind == 0 ? base : kind == 1 ? held : replayed;
            ms[kind] = delay(
                d, window, [&] { d.play(chord); }, down,
                kind == 0   ? "Super+Ctrl+Down"
                : kind == 1 ? "Super+Alt+Down (held by the agent)"
                            : "Super+Shift+Down (held by replay_grabber)");
        }
        if (round < kWarmUp)
            continue;
        baseMs.add(ms[0]);
        agentMs.add(ms[1]);
        grabberMs.add(ms[2]);
        agentExtra.add(ms[1] - ms[0]);
        grabberExtra.add(ms[2] - ms[0]);
    }

    Samples aloneMs, afterSwallowedMs, swallowedExtra;
    const auto tapX = [&] { d.play({{}, x}); };
    const auto centreThenX = [&] {
        d.play(centre);
        d.play({{}, x});
    };
    for (int round = 0; round < kWarmUp + pressesEach; ++round) {
        const double alone = delay(d, window, tapX, x, "x");
        const double after = delay(d, window, centreThenX, x, "x after Super+Alt+C");
        if (round < kWarmUp)
            continue;
        aloneMs.add(alone);
        afterSwallowedMs.add(after);
        swallowedExtra.add(after - alone);
    }

    const auto line = [](const char* name, const Samples& s) {
        std::printf("%-52s median %7.3f ms  p99 %7.3f ms  (n=%zu)\n", name, s.median(), s.p99(), s.size());
    };
    line("ungrabbed chord reaches the window", baseMs);
    line("let-through chord held by the agent", agentMs);
    line("let-through chord held by replay_grabber", grabberMs);
    line("  extra delay, agent", agentExtra);
    line("  extra delay, replay_grabber", grabberExtra);
    line("key alone", aloneMs);
    line("key after a swallowed chord (Super+Alt+C)", afterSwallowedMs);

    record({"let-through chord: extra delay",
            "ms",
            {agentExtra.median(), agentExtra.p99()},
            "minimal replaying grabber",
            Figure{grabberExtra.median(), grabberExtra.p99()},
            "<0.5 p50",
            agentExtra.median() < 0.5});
    record({"let-through chord: press to arrival",
            "ms",
            {agentMs.median(), agentMs.p99()},
            "minimal replaying grabber",
            Figure{grabberMs.median(), grabberMs.p99()},
            "",
            std::nullopt});
    record({"ungrabbed chord: press to arrival",
            "ms",
            {baseMs.median(), baseMs.p99()},
            "",
            std::nullopt,
            "",
            std::nullopt});
    record({"swallowed chord: next key held back",
            "ms",
            {swallowedExtra.median(), swallowedExtra.p99()},
            "",
            std::nullopt,
            "",
            std::nullopt});
    return 0;
}
