// The agent keeps the windows and screens in memory from X events. After each kind of change a user
// makes, its memory must equal what the server says when asked afresh, and the keyboard must work.
#include "AgentUnderTest.h"
#include "TestWindow.h"

#include <QThread>
#include <gtest/gtest.h>

namespace {

using Json = AgentUnderTest::Json;

// Waits until the cached models equal a fresh listing; on failure says how they differ.
::testing::AssertionResult modelsAgree(const AgentUnderTest& agent) {
    std::optional<Json> check;
    const bool agreed = waitUntil(
        [&] {
            check = agent.json({"debug", "models"});
            return check && (*check)["windowsAgree"].get<bool>() && (*check)["screensAgree"].get<bool>();
        },
        3000);
    if (agreed)
        return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << (check ? check->dump(1) : "no answer");
}

std::optional<Json> cachedWindow(const AgentUnderTest& agent, const QString& title) {
    const auto check = agent.json({"debug", "models"});
    if (!check)
        return std::nullopt;
    for (const auto& w : (*check)["windows"]["cached"])
        if (w["title"] == title.toStdString())
            return w;
    return std::nullopt;
}

struct ModelDesktop : ::testing::Test {
    VirtualDesktop desktop;
    AgentUnderTest agent{desktop};

    void SetUp() override {
        ASSERT_TRUE(desktop.isReady());
        ASSERT_TRUE(agent.start());
        ASSERT_TRUE(waitUntil([&] { return agent.status()["tap"].value("state", "") == "active"; }));
    }
    void xdotool(const QStringList& args) { desktop.run("xdotool", args, 30000); }
};

} // namespace

TEST_F(ModelDesktop, WindowsFollowOpeningMovingRenamingDesktopsAndClosing) {
    TestWindow one(desktop, "one"), two(desktop, "two");
    ASSERT_TRUE(one.waitUntilMapped());
    ASSERT_TRUE(two.waitUntilMapped());
    EXPECT_TRUE(modelsAgree(agent));
    ASSERT_TRUE(cachedWindow(agent, "one"));

    xdotool({"windowmove", one.id(), "300", "200"});
    EXPECT_TRUE(modelsAgree(agent));
    xdotool({"windowsize", two.id(), "500", "400"});
    EXPECT_TRUE(modelsAgree(agent));

    xdotool({"set_window", "--name", "renamed", one.id()});
    EXPECT_TRUE(modelsAgree(agent));
    EXPECT_TRUE(cachedWindow(agent, "renamed"));

    // Another desktop: the window leaves the screen, and comes back when the user follows it.
    xdotool({"set_desktop_for_window", two.id(), "1"});
    EXPECT_TRUE(modelsAgree(agent));
    EXPECT_FALSE(cachedWindow(agent, "two"));
    xdotool({"set_desktop", "1"});
    EXPECT_TRUE(modelsAgree(agent));
    EXPECT_TRUE(cachedWindow(agent, "two"));
    EXPECT_EQ(agent.status()["windowManager"]["windows"], 1);
    xdotool({"set_desktop", "0"});

    one.process()->kill();
    one.process()->waitForFinished(3000);
    EXPECT_TRUE(modelsAgree(agent));
    EXPECT_FALSE(cachedWindow(agent, "renamed"));
}

TEST_F(ModelDesktop, ABurstOfAThousandChangesLeavesTheModelRightAndTheKeyboardFree) {
    TestWindow window(desktop, "burst");
    ASSERT_TRUE(window.waitUntilMapped());
    window.activate();
    // One xdotool process, a thousand property changes and moves in a row.
    QStringList chain;
    for (int i = 1; i <= 1000; ++i) {
        chain << "set_window"
              << "--name" << QString("burst %1").arg(i) << window.id();
        if (i % 100 == 0)
            chain << "windowmove" << window.id() << QString::number(i / 10) << "100";
    }
    xdotool(chain);
    xdotool({"type", "ok"});
    EXPECT_TRUE(waitUntil([&] { return window.countLines("key 75 ") == 1; }))
        << window.output().toStdString();
    EXPECT_TRUE(modelsAgree(agent));
    ASSERT_TRUE(cachedWindow(agent, "burst 1000"));

    // The zone chord works at once, on the frame as it is now.
    xdotool({"key", "super+alt+Left"});
    EXPECT_TRUE(waitUntil([&] {
        const auto w = cachedWindow(agent, "burst 1000");
        return w && (*w)["frame"] == Json::parse("[7, 31, 708, 861]");
    }));
    EXPECT_EQ(agent.status()["tap"]["xRequestsDuringVerdicts"], 0);
    EXPECT_TRUE(modelsAgree(agent));
}

TEST(TwoMonitorModels, ScreensFollowAMonitorRemovedAndAdded) {
    VirtualDesktop desktop{{1440, 900, true, true}};
    ASSERT_TRUE(desktop.isReady());
    AgentUnderTest agent(desktop);
    ASSERT_TRUE(agent.start());
    EXPECT_TRUE(modelsAgree(agent));
    ASSERT_EQ(agent.status()["screens"].size(), 2u);

    desktop.run("xrandr", {"--delmonitor", "RIGHT"});
    EXPECT_TRUE(waitUntil([&] { return agent.status()["screens"].size() == 1u; }))
        << agent.status()["screens"];
    EXPECT_TRUE(modelsAgree(agent));

    desktop.run("xrandr", {"--setmonitor", "RIGHT", "1440/381x900/238+1440+0", "none"});
    EXPECT_TRUE(waitUntil([&] { return agent.status()["screens"].size() == 2u; }))
        << agent.status()["screens"];
    EXPECT_TRUE(modelsAgree(agent));
    EXPECT_EQ(agent.status()["screens"][1]["visibleFrame"], Json::parse("[1440, 0, 1440, 900]"));

    // A window snapped right after the change uses the new monitor's frame.
    TestWindow window(desktop, "snap");
    ASSERT_TRUE(window.waitUntilMapped());
    window.activate();
    desktop.run("xdotool", {"windowmove", window.id(), "1600", "100"});
    desktop.run("xdotool", {"key", "super+alt+Right"});
    EXPECT_TRUE(waitUntil([&] {
        const auto w = cachedWindow(agent, "snap");
        return w && (*w)["frame"] == Json::parse("[2163, 7, 708, 884]");
    })) << agent.json({"debug", "models"})->dump();
}
