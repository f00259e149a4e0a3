// Snapping by shortcut with real windows under Openbox on a 1440 x 900 screen (no panel, so the
// usable rectangle is the whole screen): the frames a user gets, read back from the window manager.
#include "AgentUnderTest.h"
#include "TestWindow.h"

#include <QThread>
#include <gtest/gtest.h>

namespace {

using Json = AgentUnderTest::Json;

struct SnapDesktop : ::testing::Test {
    VirtualDesktop desktop{{1440, 900, false}};
    AgentUnderTest agent{desktop};
    std::unique_ptr<TestWindow> window;

    void SetUp() override { ASSERT_TRUE(agent.start()); }

    void openWindow(const QStringList& args = {}) {
        window = std::make_unique<TestWindow>(desktop, "snap", args);
        ASSERT_TRUE(window->waitUntilMapped());
        window->activate();
        ASSERT_TRUE(waitUntil([&] { return focusedFrame().has_value(); }))
            << agent.command({"windows"}).out.toStdString();
        ASSERT_TRUE(waitUntil([&] { return agent.status()["tap"].value("state", "") == "active"; }));
    }
    std::optional<Json> focusedFrame() const {
        const auto windows = agent.json({"windows"});
        if (!windows)
            return std::nullopt;
        for (const auto& w : *windows)
            if (w["focused"].get<bool>() && w["title"] == "snap")
                return w["frame"];
        return std::nullopt;
    }
    // Presses a chord and waits for the window to settle in the expected frame.
    ::testing::AssertionResult snapsTo(const QString& chord, const char* expected) {
        desktop.run("xdotool", {"key", chord});
        const auto want = Json::parse(expected);
        std::optional<Json> got;
        if (waitUntil([&] { return (got = focusedFrame()) && *got == want; }, 3000))
            return ::testing::AssertionSuccess();
        return ::testing::AssertionFailure()
               << chord.toStdString() << " gave " << (got ? got->dump() : "nothing") << ", expected "
               << want.dump();
    }
    void setWindowManagerPreferences(const std::function<void(Json&)>& change) {
        auto record = agent.json({"prefs", "get", "WindowManagerPreferences"});
        ASSERT_TRUE(record);
        change(*record);
        ASSERT_TRUE(
            agent.json({"prefs", "set", "WindowManagerPreferences", QString::fromStdString(record->dump())}));
        QThread::msleep(200); // the grabs follow the new zones
    }
};

} // namespace

TEST_F(SnapDesktop, FactoryChordsGiveTheZoneFramesWithGaps) {
    openWindow();
    // spacing 0.5: gap 900 x 0.5 x 0.017 = 7.65 points, a full gap at the edges, half between zones.
    EXPECT_TRUE(snapsTo("super+alt+Left", "[7, 7, 708, 884]"));
    EXPECT_TRUE(snapsTo("super+alt+Right", "[723, 7, 708, 884]"));
    EXPECT_TRUE(snapsTo("super+alt+u", "[7, 7, 708, 438]"));
    EXPECT_TRUE(snapsTo("super+alt+i", "[723, 7, 708, 438]"));
    EXPECT_TRUE(snapsTo("super+alt+j", "[7, 453, 708, 438]"));
    EXPECT_TRUE(snapsTo("super+alt+k", "[723, 453, 708, 438]"));
    EXPECT_TRUE(snapsTo("super+alt+Up", "[7, 7, 1424, 884]")); // "Custom": the whole screen
    // 1424 x 884 fits: centring keeps the size.
    EXPECT_TRUE(snapsTo("super+alt+c", "[8, 8, 1424, 884]"));
    // 16:9 of the same area is wider than the screen: 80 % of it, centred.
    EXPECT_TRUE(snapsTo("super+alt+f", "[144, 90, 1152, 720]"));
}

TEST_F(SnapDesktop, ChordWithNoZoneForThisScreenReachesTheWindowOnce) {
    openWindow();
    // "Bottom Half" is offered on portrait screens only: the chord is held for it but passes here.
    desktop.run("xdotool", {"key", "super+alt+Down"});
    desktop.run("xdotool", {"type", "q"});
    ASSERT_TRUE(waitUntil([&] { return window->countLines("key 81 ") == 1; }));
    EXPECT_EQ(window->countLines(QString("key %1 ").arg(0x01000015)), 1)
        << window->output().toStdString(); // Qt::Key_Down
}

TEST_F(SnapDesktop, WiderSpacingWidensTheGap) {
    setWindowManagerPreferences([](Json& r) { r["spacing"] = 1.0; });
    openWindow();
    // gap 15.3: x = 15.3, width 720 - 22.95 = 697.05, both truncated.
    EXPECT_TRUE(snapsTo("super+alt+Left", "[15, 15, 697, 869]"));
}

TEST_F(SnapDesktop, ZonesSharingAChordAreCycled) {
    setWindowManagerPreferences([](Json& r) {
        // No gap, so the window sits exactly in its zone; a left two-thirds zone on the left-half chord.
        r["spacing"] = 0.0;
        Json twoThirds = r["areas"][1];
        twoThirds["id"] = "5E6C4B1A-1111-4222-8333-944455556666";
        twoThirds["name"] = "Left Two Thirds";
        twoThirds["w"] = "2/3";
        r["areas"].insert(r["areas"].begin() + 2, twoThirds);
    });
    openWindow();
    EXPECT_TRUE(snapsTo("super+alt+Left", "[0, 0, 720, 900]"));
    EXPECT_TRUE(snapsTo("super+alt+Left", "[0, 0, 960, 900]"));
    EXPECT_TRUE(snapsTo("super+alt+Left", "[0, 0, 720, 900]"));
}

TEST_F(SnapDesktop, MinimumSizeIsCorrectedInsideTheScreen) {
    openWindow({"--min-size", "900x600"});
    // The right half is 708 wide but the window will not go below 902 (900 plus its border): it is
    // moved left by the overshoot so that it stays on the screen.
    EXPECT_TRUE(snapsTo("super+alt+Right", "[529, 7, 902, 884]"));
    EXPECT_TRUE(snapsTo("super+alt+u", "[7, 7, 902, 625]"));
}

TEST_F(SnapDesktop, ActionsFromTheCommandLineAndAVanishedWindow) {
    openWindow();
    ASSERT_TRUE(agent.json({"action", "centerWindow"}));
    const auto frame = focusedFrame();
    ASSERT_TRUE(frame);
    EXPECT_NEAR((*frame)[0].get<double>() + (*frame)[2].get<double>() / 2, 720, 1);
    // The window closes; the shortcuts do nothing and the agent carries on.
    window->process()->kill();
    window->process()->waitForFinished(3000);
    desktop.run("xdotool", {"key", "super+alt+Left"});
    ASSERT_TRUE(agent.json({"action", "makeWindow16By9"}));
    EXPECT_TRUE(agent.json({"status"}));
    EXPECT_EQ(agent.json({"windows"}), Json::array());
}

TEST(TwoMonitors, ZonesUseTheWindowsMonitorAndNextScreenCentresOnTheOther) {
    // Two 1440 x 900 monitors; the tray host sits at the top right of the first one, so only that one
    // loses 24 points at the top.
    VirtualDesktop desktop{{1440, 900, true, true}};
    ASSERT_TRUE(desktop.isReady());
    AgentUnderTest agent(desktop);
    ASSERT_TRUE(agent.start());
    ASSERT_TRUE(waitUntil([&] { return agent.status()["tap"].value("state", "") == "active"; }));
    const auto screens = agent.status()["screens"];
    ASSERT_EQ(screens.size(), 2u) << screens.dump();
    EXPECT_EQ(screens[0]["visibleFrame"], Json::parse("[0, 0, 1440, 876]")); // screen space: y up
    EXPECT_EQ(screens[1]["visibleFrame"], Json::parse("[1440, 0, 1440, 900]"));

    TestWindow window(desktop, "snap");
    ASSERT_TRUE(window.waitUntilMapped());
    window.activate();
    const auto frame = [&]() -> std::optional<Json> {
        const auto windows = agent.json({"windows"});
        if (!windows || windows->empty())
            return std::nullopt;
        return (*windows)[0]["frame"];
    };
    const auto settlesAt = [&](const char* chord, const char* expected) {
        desktop.run("xdotool", {"key", chord});
        const auto want = Json::parse(expected);
        std::optional<Json> got;
        const bool ok = waitUntil([&] { return (got = frame()) && *got == want; }, 3000);
        return ok ? ::testing::AssertionSuccess()
                  : ::testing::AssertionFailure()
                        << chord << ": " << (got ? got->dump() : "nothing") << " != " << want.dump();
    };
    // Gap 876 x 0.5 x 0.017 below the tray on the first monitor.
    EXPECT_TRUE(settlesAt("super+alt+Left", "[7, 31, 708, 861]"));
    // Next screen: centred on the second monitor, same size.
    EXPECT_TRUE(settlesAt("super+alt+m", "[1806, 19, 708, 861]"));
    // There the zones use the whole monitor: gap 900 x 0.5 x 0.017.
    EXPECT_TRUE(settlesAt("super+alt+Left", "[1447, 7, 708, 884]"));
    // Back on the first one the window is taller than its usable height: 80 % of it, centred.
    EXPECT_TRUE(settlesAt("super+alt+m", "[144, 111, 1152, 700]"));
}

TEST(WindowSwitcher, AltTabSwitchesToThePreviousWindowOnRelease) {
    VirtualDesktop desktop{{1440, 900, false}};
    AgentUnderTest agent(desktop);
    ASSERT_TRUE(agent.start());
    TestWindow first(desktop, "first"), second(desktop, "second");
    ASSERT_TRUE(first.waitUntilMapped());
    ASSERT_TRUE(second.waitUntilMapped());
    const auto focusedTitle = [&]() -> std::string {
        const auto windows = agent.json({"windows"});
        if (windows)
            for (const auto& w : *windows)
                if (w["focused"].get<bool>())
                    return w["title"];
        return "";
    };
    first.activate();
    ASSERT_TRUE(waitUntil([&] { return focusedTitle() == "first"; }));
    QThread::msleep(100); // the focus history follows the active window as it changes
    second.activate();
    ASSERT_TRUE(waitUntil([&] { return focusedTitle() == "second"; }));
    QThread::msleep(100);
    ASSERT_TRUE(waitUntil([&] { return agent.status()["tap"].value("state", "") == "active"; }));

    // Alt held, Tab pressed: the switcher opens on the window used before; letting go of Alt picks it.
    desktop.run("xdotool", {"keydown", "alt", "key", "Tab"});
    ASSERT_TRUE(waitUntil([&] { return agent.status()["switcher"].value("open", false); }));
    const auto switcher = agent.status()["switcher"];
    EXPECT_EQ(switcher["rows"], Json::parse(R"(["testwin — second", "testwin — first"])")) << switcher.dump();
    EXPECT_EQ(switcher["selected"], 1);
    desktop.run("xdotool", {"keyup", "alt"});
    EXPECT_TRUE(waitUntil([&] { return focusedTitle() == "first"; })) << focusedTitle();
    EXPECT_FALSE(agent.status()["switcher"].value("open", true));

    // Typing while Alt is held narrows the list; letting go of Alt picks the match.
    TestWindow third(desktop, "third");
    ASSERT_TRUE(third.waitUntilMapped());
    third.activate();
    ASSERT_TRUE(waitUntil([&] { return focusedTitle() == "third"; }));
    desktop.run("xdotool", {"keydown", "alt", "key", "Tab"});
    ASSERT_TRUE(waitUntil([&] { return agent.status()["switcher"].value("open", false); }));
    desktop.run("xdotool", {"type", "sec"});
    EXPECT_TRUE(waitUntil([&] {
        return agent.status()["switcher"]["rows"] == Json::parse(R"(["testwin — second"])");
    })) << agent.status()["switcher"].dump();
    desktop.run("xdotool", {"keyup", "alt"});
    EXPECT_TRUE(waitUntil([&] { return focusedTitle() == "second"; })) << focusedTitle();
    EXPECT_FALSE(agent.status()["switcher"].value("open", true));
    first.activate();
    ASSERT_TRUE(waitUntil([&] { return focusedTitle() == "first"; }));

    // Switched off in the preferences, the chord is left to the focused window.
    auto record = agent.json({"prefs", "get", "WindowManagerPreferences"});
    ASSERT_TRUE(record);
    (*record)["enableWindowSwitcher"] = false;
    ASSERT_TRUE(
        agent.json({"prefs", "set", "WindowManagerPreferences", QString::fromStdString(record->dump())}));
    QThread::msleep(300);
    desktop.run("xdotool", {"key", "alt+Tab"});
    EXPECT_TRUE(
        waitUntil([&] { return first.countLines(QString("key %1 ").arg(0x01000001)) == 1; })) // Qt::Key_Tab
        << first.output().toStdString();
    EXPECT_FALSE(agent.status()["switcher"].value("open", true));
}

// A portrait screen with the factory zones and gaps: Super+Alt+Up cycles the whole screen and the
// top half, pressed again and again (the whole zone's frame ends 9 points short of the right edge).
TEST(PortraitScreen, TheUpChordCyclesWholeScreenAndTopHalf) {
    VirtualDesktop desktop{{900, 1440, false}};
    ASSERT_TRUE(desktop.isReady());
    AgentUnderTest agent(desktop);
    ASSERT_TRUE(agent.start());
    ASSERT_TRUE(waitUntil([&] { return agent.status()["tap"].value("state", "") == "active"; }));
    TestWindow window(desktop, "tall");
    ASSERT_TRUE(window.waitUntilMapped());
    window.activate();
    const auto frame = [&]() -> std::optional<Json> {
        const auto windows = agent.json({"windows"});
        if (!windows || windows->empty())
            return std::nullopt;
        return (*windows)[0]["frame"];
    };
    ASSERT_TRUE(waitUntil([&] { return frame().has_value(); }));
    // Gap 900 x 0.5 x 0.017 = 7.65 on every side, truncated.
    for (const char* expected :
         {"[7, 7, 884, 1424]", "[7, 7, 884, 708]", "[7, 7, 884, 1424]", "[7, 7, 884, 708]"}) {
        desktop.run("xdotool", {"key", "super+alt+Up"});
        const auto want = Json::parse(expected);
        std::optional<Json> got;
        EXPECT_TRUE(waitUntil([&] { return (got = frame()) && *got == want; }, 3000))
            << (got ? got->dump() : "nothing") << " != " << want.dump();
    }
}
