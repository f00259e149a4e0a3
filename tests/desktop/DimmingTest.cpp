// Dimming on a real X server with two monitors side by side: a 1600 x 900 one (16:9, dimmed) and a
// 1440 x 900 one (16:10, never dimmed). What is checked is what a user sees: the pixels on the screen,
// clicks reaching the window under the dark layer, and a screen at full brightness once the agent
// is gone.
#include "AgentUnderTest.h"
#include "TestWindow.h"

#include <QThread>
#include <csignal>
#include <gtest/gtest.h>

namespace {

using Json = AgentUnderTest::Json;

// The red channel of "#rrggbb" (the test window and the desktop are grey: all channels alike).
int brightnessOf(const QString& colour) {
    bool ok = false;
    const int red = colour.mid(1, 2).toInt(&ok, 16);
    return ok ? red : -1;
}

class DimmingDesktop : public ::testing::Test {
protected:
    static VirtualDesktop::Options twoMonitors() {
        VirtualDesktop::Options o;
        o.twoMonitors = true;
        o.width = 1600;
        o.height = 900;
        o.secondWidth = 1440;
        o.tray = false;
        return o;
    }

    void SetUp() override {
        ASSERT_TRUE(desktop.isReady());
        ASSERT_TRUE(desktop.writeWelcomedSettings());
        desktop.run("xsetroot", {"-solid", "#808080"});
    }
    void startAgent() {
        ASSERT_TRUE(agent.start());
        window = std::make_unique<TestWindow>(desktop, "Under the dark", QStringList{"--size", "400x300"});
        ASSERT_TRUE(window->waitUntilMapped());
        desktop.run("xdotool", {"windowmove", "--sync", window->id(), "200", "200"});
        window->activate();
    }
    Json dimming() const { return agent.status().value("dimming", Json::object()); }
    bool overlayShown() const {
        const Json overlays = dimming().value("overlays", Json::array());
        return overlays.size() == 1 && overlays[0].value("shown", false);
    }
    // A point inside the test window (on the dimmed monitor) and one on the other monitor's desktop.
    int windowBrightness() const { return brightnessOf(desktop.pixel(400, 350)); }
    int otherMonitorBrightness() const { return brightnessOf(desktop.pixel(2300, 450)); }
    // The screen as painted after the last change: two equal looks in a row.
    bool settlesNear(const std::function<int()>& look, int expected, int tolerance = 6) {
        return waitUntil([&] { return std::abs(look() - expected) <= tolerance; }, 5000);
    }

    VirtualDesktop desktop{twoMonitors()};
    AgentUnderTest agent{desktop};
    std::unique_ptr<TestWindow> window;
};

} // namespace

TEST_F(DimmingDesktop, HalfBrightnessDimsTheWideMonitorOnlyAndClicksGoThrough) {
    desktop.startCompositor();
    startAgent();
    const int full = windowBrightness();
    const int other = otherMonitorBrightness();
    ASSERT_GT(full, 200) << desktop.pixel(400, 350).toStdString();

    const auto set = agent.json({"dimming", "set", "0.5"});
    ASSERT_TRUE(set);
    ASSERT_TRUE(waitUntil([&] { return overlayShown(); }, 3000)) << dimming().dump();
    const Json overlay = dimming()["overlays"][0];
    EXPECT_EQ(overlay["key"], "0.0:0.0:1600.0:900.0");
    EXPECT_EQ(overlay["geometry"], Json::parse("[0, 0, 1600, 900]"));
    EXPECT_TRUE(settlesNear([&] { return windowBrightness(); }, full / 2))
        << "full " << full << ", now " << windowBrightness();
    EXPECT_EQ(otherMonitorBrightness(), other);

    // A click on the dark layer reaches the window below it.
    desktop.run("xdotool", {"mousemove", "--sync", "400", "350", "click", "1"});
    EXPECT_TRUE(waitUntil([&] { return window->countLines("click ") == 1; }, 3000))
        << window->output().toStdString();

    // Toggled off and on again, as the shortcut does.
    ASSERT_TRUE(agent.json({"dimming", "toggle"}));
    EXPECT_TRUE(settlesNear([&] { return windowBrightness(); }, full, 2));
    ASSERT_TRUE(agent.json({"dimming", "toggle"}));
    EXPECT_TRUE(settlesNear([&] { return windowBrightness(); }, full / 2));

    // A full-screen window comes up above the other windows, and still under the dark layer: the
    // screen shows its pixels (whatever it drew) at half their brightness.
    // (Mapped again with the state asked for: the window manager reads it when it maps a window.)
    desktop.run("xdotool", {"windowunmap", "--sync", window->id()});
    desktop.run("xprop", {"-id", window->id(), "-f", "_NET_WM_STATE", "32a", "-set", "_NET_WM_STATE",
                          "_NET_WM_STATE_FULLSCREEN"});
    desktop.run("xdotool", {"windowmap", "--sync", window->id()});
    ASSERT_TRUE(waitUntil([&] {
        return desktop.run("xwininfo", {"-id", window->id()}).out.contains("Width: 1600");
    })) << desktop.run("xwininfo", {"-id", window->id()}).out.toStdString();
    const auto drawn = [&] {
        const auto own = desktop.run("import", {"-window", window->id(), "-crop", "1x1+800+450", "txt:-"});
        return brightnessOf("#" + own.out.section('#', 2, 2).left(2));
    };
    EXPECT_TRUE(waitUntil([&] { return std::abs(brightnessOf(desktop.pixel(800, 450)) - drawn() / 2) <= 6; }))
        << desktop.pixel(800, 450).toStdString() << " over " << drawn();
}

TEST_F(DimmingDesktop, KillingTheAgentLeavesNothingDark) {
    desktop.startCompositor();
    startAgent();
    const int full = windowBrightness();
    ASSERT_TRUE(agent.json({"dimming", "set", "0.3"}));
    ASSERT_TRUE(settlesNear([&] { return windowBrightness(); }, full * 3 / 10));
    ::kill(pid_t(agent.process()->processId()), SIGKILL);
    ASSERT_TRUE(agent.process()->waitForFinished(3000));
    EXPECT_TRUE(settlesNear([&] { return windowBrightness(); }, full, 2)) << windowBrightness();
}

TEST_F(DimmingDesktop, NothingTurnsBlackWithoutACompositorAndDimmingStartsWithOne) {
    startAgent();
    const int full = windowBrightness();
    const auto set = agent.json({"dimming", "set", "0.5"});
    ASSERT_TRUE(set); // the level is kept for when it can be shown
    EXPECT_EQ((*set)["factor"], 0.5);
    EXPECT_FALSE((*set)["compositing"].get<bool>());
    EXPECT_TRUE((*set)["overlays"].empty());
    QThread::msleep(300);
    EXPECT_EQ(windowBrightness(), full);
    EXPECT_EQ(desktop.pixel(1500, 850), "#808080");
    EXPECT_EQ(agent.output().count("no compositing manager is running"), 1) << agent.output().toStdString();

    // A compositor started now is noticed: no restart, no new command.
    desktop.startCompositor();
    EXPECT_TRUE(waitUntil([&] { return overlayShown(); }, 3000)) << dimming().dump();
    EXPECT_TRUE(settlesNear([&] { return windowBrightness(); }, full / 2)) << windowBrightness();
}
