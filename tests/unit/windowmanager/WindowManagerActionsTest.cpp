// The window actions over the fake desktop, with the numbers users see on a 1440 x 900 screen.
#include "windowmanager/WindowManagerActions.h"
#include "platform/fake/FakePlatform.h"
#include "windowmanager/WindowsCache.h"

#include <QCoreApplication>
#include <gtest/gtest.h>

using namespace velmora;

namespace {

struct Desk {
    FakePlatform fake;
    WindowManagerPreferences prefs;
    WindowsCache cache{*fake.platform.windowServer, 1, [] { return qint64(0); }};
    WindowManagerActions actions{cache, *fake.platform.accessibility, *fake.platform.screens,
                                 [this] { return prefs; }};

    explicit Desk(Rect usable = {0, 0, 1440, 900}) {
        fake.screens->all = {{"main", {0, 0, 1440, 900}, usable.flipped(900), 1}};
        fake.desktop.frontmostPid = 100;
    }
    // Windows are named by id: adding one may move the others in memory.
    quint32 window(Rect frame, Size minimum = {}) {
        const quint32 id = quint32(fake.desktop.windows.size() + 1);
        fake.desktop.add({id, 100, "app", QString("w"), frame, minimum});
        return id;
    }
    Rect frameOf(quint32 id) { return fake.desktop.find(id)->frame; }
    void pressZone(const KeyboardShortcut& chord) {
        if (auto choice = actions.zonesForChord(chord))
            actions.applyZone(*choice);
    }
};

const auto leftChord = chord(Modifier::Control | Modifier::Alt, 123);

} // namespace

TEST(WindowManagerActions, ZoneShortcutCyclesThroughZonesSharingTheChord) {
    Desk d;
    d.prefs.spacing = 0;
    auto twoThirds = d.prefs.areas[1];
    twoThirds.w = "0.667";
    d.prefs.areas.insert(d.prefs.areas.begin() + 2, twoThirds);
    const auto w = d.window({100, 100, 400, 300});
    d.pressZone(leftChord);
    EXPECT_EQ(d.frameOf(w), (Rect{0, 0, 720, 900}));
    d.pressZone(leftChord);
    EXPECT_EQ(d.frameOf(w), (Rect{0, 0, 960, 900}));
    d.pressZone(leftChord);
    EXPECT_EQ(d.frameOf(w), (Rect{0, 0, 720, 900}));
}

TEST(WindowManagerActions, GapsFollowTheSpacing) {
    Desk d;
    d.prefs.spacing = 1; // gap 900 x 0.017 = 15.3
    const auto w = d.window({100, 100, 400, 300});
    d.pressZone(leftChord);
    EXPECT_EQ(d.frameOf(w), (Rect{15, 15, 697, 869}));
    // Position first, then size.
    EXPECT_TRUE(d.fake.desktop.calls.join('|').startsWith("position 1 15,15|size 1 697x869"));
}

TEST(WindowManagerActions, MinimumSizeIsCorrectedButKeepsTheGap) {
    Desk d;
    const auto w = d.window({100, 100, 400, 300}, {1000, 950});
    d.pressZone(chord(Modifier::Control | Modifier::Alt, 124)); // right half
    // 1000 wide does not fit beside the left half: moved left by the overshoot but not past the gap;
    // 950 tall does not fit at all: moved up to the gap.
    EXPECT_EQ(d.frameOf(w).x, 723 - (1000 - 708));
    EXPECT_EQ(d.frameOf(w).y, 7.65);
    // A window wider than the screen allows: clamped, and kept one gap from the left edge.
    d.fake.desktop.windows.clear();
    const auto big = d.window({0, 0, 400, 300}, {1430, 100});
    d.pressZone(chord(Modifier::Control | Modifier::Alt, 124));
    EXPECT_EQ(d.frameOf(big).x, 7.65);
}

TEST(WindowManagerActions, CentreSixteenByNineAndNextScreen) {
    Desk d;
    const auto w = d.window({0, 0, 1600, 1000}); // larger than the screen
    d.actions.centerWindow();
    EXPECT_EQ(d.frameOf(w), (Rect{144, 90, 1152, 720}));

    d.fake.desktop.find(w)->frame = {0, 0, 1200, 900};
    d.actions.makeWindow16By9();
    // k = sqrt(1200 x 900 / 144) = 86.60: 1385.6 x 779.4, truncated and centred.
    EXPECT_EQ(d.frameOf(w), (Rect{27, 60, 1385, 779}));

    // Three screens, the main one last: the window goes to the first, centred.
    d.fake.screens->all.push_back({"b", {1440, 0, 1920, 1080}, {1440, 0, 1920, 1080}, 1});
    d.fake.screens->all.push_back({"c", {3360, 0, 1280, 1024}, {3360, 0, 1280, 1024}, 1});
    d.fake.screens->mainIndex = 2;
    d.fake.desktop.find(w)->frame = {3400, 100, 400, 300};
    d.actions.moveWindowToScreen();
    EXPECT_EQ(d.frameOf(w), (Rect{520, 300, 400, 300}));
}

TEST(WindowManagerActions, NothingHappensWithoutAFocusedWindowOrOnAZeroScreen) {
    Desk d;
    const auto w = d.window({10, 10, 400, 300});
    d.fake.desktop.frontmostPid = 999; // another program is in front with no window of its own
    d.actions.centerWindow();
    d.pressZone(leftChord);
    EXPECT_EQ(d.frameOf(w), (Rect{10, 10, 400, 300}));
    d.fake.desktop.frontmostPid = 100;
    d.fake.screens->all[0].visibleFrame = {0, 0, 0, 0};
    d.actions.centerWindow();
    EXPECT_EQ(d.frameOf(w), (Rect{10, 10, 400, 300}));
    EXPECT_TRUE(d.fake.desktop.calls.isEmpty());
}

TEST(WindowManagerActions, MatchFillsTheRestBesideASnappedWindow) {
    Desk d;
    const auto focused = d.window({300, 300, 400, 300});
    d.fake.desktop.add({9, 200, "other", QString("o"), {7, 7, 708, 884}, {}});
    d.cache.refresh();
    d.actions.matchSnappedWindowFrame();
    const Rect f = d.frameOf(focused);
    EXPECT_EQ(f.x, std::trunc(715 + 7.65));
    EXPECT_EQ(f.y, 7);
    EXPECT_NEAR(f.x + f.width, 1440 - 7.65, 1.5); // both ends truncated to whole points
}
