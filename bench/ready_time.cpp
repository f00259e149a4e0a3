// How soon after launch the agent's shortcuts work. A window of this program has the focus; the agent
// is launched, and a shortcut of its (Super+Alt+C) is played every few milliseconds. Until the tap is
// active the chord reaches the window; the first one that does not was taken by the agent. The
// yardstick, launched in turn with the agent and probed the same way: testwin, a minimal Qt program
// that grabs Super+Alt+F right after creating its QApplication. Also kept: the agent's own count
// (tap.activeAfterMs of `status`, from the start of its set-up, so without the process and Qt start
// before it). No other agent may run on the display.
//   ready_time VELMORA TESTWIN LAUNCHES LOG
#include "child.h"
#include "control.h"
#include "desk.h"
#include "fail.h"
#include "key_window.h"
#include "results.h"
#include "samples.h"

#include <cstdio>
#include <thread>

using namespace bench;

namespace {

constexpr auto kLaunchTimeout = 10s;
constexpr auto kBetweenProbes = 2ms;
// A probe that has not arrived by then is taken as swallowed, unless it still comes a little later.
constexpr auto kProbeTimeout = 50ms;
constexpr auto kLateProbe = 500ms;

// Milliseconds from `launched` to sending the first probe that did not reach the window.
double untilTaken(Desk& d, KeyWindow& window, const Chord& probe, Child& program, Clock::time_point launched,
                  const char* log) {
    for (;;) {
        if (Clock::now() - launched > kLaunchTimeout)
            fail("no probe chord was taken within 10 s of launch (see %s)", log);
        if (program.hasExited(0ms))
            fail("the launched program exited during start-up (see %s)", log);
        const auto sent = Clock::now();
        if (!window.pressArrives([&] { d.play(probe); }, probe.key, kProbeTimeout) &&
            !window.pressArrivesBy(probe.key, Clock::now() + kLateProbe))
            return std::chrono::duration<double, std::milli>(sent - launched).count();
        std::this_thread::sleep_for(kBetweenProbes);
    }
}

double agentsOwnCount() {
    for (const auto deadline = Clock::now() + 5s; Clock::now() < deadline; std::this_thread::sleep_for(10ms))
        if (const auto status = askAgent({"status"}, 1s); status && status->contains("tap"))
            if (const auto& ms = (*status)["tap"]["activeAfterMs"]; ms.is_number())
                return ms.get<double>();
    fail("the agent took a shortcut but its status shows no tap.activeAfterMs within 5 s");
}

} // namespace

int main(int argc, char** argv) {
    programName = "ready_time";
    if (argc != 5)
        fail("usage: ready_time VELMORA TESTWIN LAUNCHES LOG");
    const char *velmora = argv[1], *testwin = argv[2], *log = argv[4];
    const int launches = std::atoi(argv[3]);
    if (askAgent({"status"}, 500ms))
        fail("an agent is already running on this display");
    Desk d;
    KeyWindow window(d, "velmora-bench ready");
    const auto super = d.code(XKB_KEY_Super_L), alt = d.code(XKB_KEY_Alt_L);
    const Chord agentProbe{{super, alt}, d.code(XKB_KEY_c)}, testwinProbe{{super, alt}, d.code(XKB_KEY_f)};
    for (const Chord* probe : {&agentProbe, &testwinProbe})
        if (!window.pressArrives([&] { d.play(*probe); }, probe->key, 1s))
            fail("a probe chord does not reach the focused window before anything is launched");

    Samples agentMs, testwinMs, ownCount;
    for (int i = 0; i < launches; ++i) {
        {
            window.focus();
            d.drainUntil(Clock::now() + 100ms);
            const auto launched = Clock::now();
            Child agent({velmora}, log);
            agentMs.add(untilTaken(d, window, agentProbe, agent, launched, log));
            ownCount.add(agentsOwnCount());
            askAgent({"quit"}, 1s);
            if (!agent.hasExited(5s))
                std::fprintf(stderr, "ready_time: the agent did not quit within 5 s; ending it\n");
        }
        {
            window.focus();
            d.drainUntil(Clock::now() + 100ms);
            const auto launched = Clock::now();
            Child grabber({testwin, "--title", "velmora-bench testwin", "--grab-super-alt", "f"}, log);
            testwinMs.add(untilTaken(d, window, testwinProbe, grabber, launched, log));
        }
    }

    std::printf("launch to the first shortcut taken, agent:   median %.1f ms  p99 %.1f ms  (n=%zu)\n",
                agentMs.median(), agentMs.p99(), agentMs.size());
    std::printf("launch to the first shortcut taken, testwin: median %.1f ms  p99 %.1f ms  (n=%zu)\n",
                testwinMs.median(), testwinMs.p99(), testwinMs.size());
    std::printf("agent's own tap.activeAfterMs: median %.1f ms  p99 %.1f ms\n", ownCount.median(),
                ownCount.p99());
    record({"ready: launch to first shortcut taken",
            "ms",
            {agentMs.median(), agentMs.p99()},
            "Qt program grabbing (testwin)",
            Figure{testwinMs.median(), testwinMs.p99()},
            "<100 p50",
            agentMs.median() < 100});
    record({"ready: tap.activeAfterMs (agent's count)",
            "ms",
            {ownCount.median(), ownCount.p99()},
            "",
            std::nullopt,
            "",
            std::nullopt});
    return 0;
}
