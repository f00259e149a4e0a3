// The drop-down panel and the welcome window, opened and closed the way a user does it.
#include "AgentUnderTest.h"

#include <QDir>
#include <QFile>
#include <QThread>
#include <algorithm>
#include <gtest/gtest.h>

namespace {

using Json = AgentUnderTest::Json;

bool isOpen(const AgentUnderTest& agent, const char* window) {
    return agent.status()[window].value("open", false);
}

void seedSettings(const VirtualDesktop& desktop, const QByteArray& ini) {
    ASSERT_TRUE(desktop.writeSettings("[General]\n" + ini));
}

void click(const VirtualDesktop& desktop, QPoint p) {
    desktop.run("xdotool", {"mousemove", QString::number(p.x()), QString::number(p.y()), "click", "1"});
}

} // namespace

TEST(DropDownPanel, OpensUnderTheTrayIconAndClosesOnEscapeCtrlWAndFocusLoss) {
    VirtualDesktop desktop;
    seedSettings(desktop, "WelcomeWindowSeen:V26=true\n");
    AgentUnderTest agent(desktop);
    ASSERT_TRUE(agent.start());
    const auto icon = agent.waitForStatusIcon();
    ASSERT_TRUE(icon);

    click(desktop, icon->center());
    ASSERT_TRUE(waitUntil([&] { return isOpen(agent, "panel"); }));
    // 240 wide, 150 left of the icon's centre but kept on screen, from under the tray's strut down
    // to the bottom of the screen.
    EXPECT_EQ(agent.status()["panel"]["frame"], Json::parse("[1200, 24, 240, 876]"));

    desktop.run("xdotool", {"key", "Escape"});
    EXPECT_TRUE(waitUntil([&] { return !isOpen(agent, "panel"); }));

    click(desktop, icon->center());
    ASSERT_TRUE(waitUntil([&] { return isOpen(agent, "panel"); }));
    // Ctrl+Shift+W types "W", which is not the close chord.
    desktop.run("xdotool", {"key", "ctrl+shift+w"});
    QThread::msleep(300);
    EXPECT_TRUE(isOpen(agent, "panel"));
    desktop.run("xdotool", {"key", "ctrl+w"});
    EXPECT_TRUE(waitUntil([&] { return !isOpen(agent, "panel"); }));

    // Clicking the icon again toggles; clicking elsewhere takes the focus away and closes it.
    click(desktop, icon->center());
    ASSERT_TRUE(waitUntil([&] { return isOpen(agent, "panel"); }));
    click(desktop, icon->center());
    EXPECT_TRUE(waitUntil([&] { return !isOpen(agent, "panel"); }));
    click(desktop, icon->center());
    ASSERT_TRUE(waitUntil([&] { return isOpen(agent, "panel"); }));
    desktop.start(TESTWIN_BINARY, {"--title", "other"});
    EXPECT_TRUE(waitUntil([&] { return !isOpen(agent, "panel"); }));
}

TEST(DropDownPanel, PreferencesButtonOpensThePreferencesWindow) {
    VirtualDesktop desktop;
    seedSettings(desktop, "WelcomeWindowSeen:V26=true\n");
    AgentUnderTest agent(desktop);
    ASSERT_TRUE(agent.start());
    ASSERT_TRUE(agent.json({"panel", "show"}));
    const auto buttons = agent.status()["panel"]["buttons"];
    const auto preferences = std::find_if(buttons.begin(), buttons.end(),
                                          [](const Json& b) { return b["title"] == "Preferences…"; });
    ASSERT_NE(preferences, buttons.end()) << buttons.dump();
    const auto& f = (*preferences)["frame"];
    click(desktop, {f[0].get<int>() + f[2].get<int>() / 2, f[1].get<int>() + f[3].get<int>() / 2});
    EXPECT_TRUE(waitUntil([&] { return isOpen(agent, "preferencesWindow"); }));
    EXPECT_FALSE(isOpen(agent, "panel"));
}

TEST(WelcomeWindow, ShowsOnceForANewUserAndNeverAfterClosing) {
    VirtualDesktop desktop;
    {
        AgentUnderTest agent(desktop);
        ASSERT_TRUE(agent.start());
        ASSERT_TRUE(waitUntil([&] { return isOpen(agent, "welcomeWindow"); }));
        // 630 x 390, centred on the screen.
        const auto frame = agent.status()["welcomeWindow"]["frame"];
        EXPECT_EQ(frame[2], 630);
        EXPECT_EQ(frame[3], 390);
        EXPECT_NEAR(frame[0].get<int>() + 315, 720, 2);

        // Escape closes the drop-down panel, not the welcome window; Ctrl+W does.
        desktop.run("xdotool", {"key", "Escape"});
        QThread::msleep(300);
        EXPECT_TRUE(isOpen(agent, "welcomeWindow"));
        desktop.run("xdotool", {"key", "ctrl+w"});
        EXPECT_TRUE(waitUntil([&] { return !isOpen(agent, "welcomeWindow"); }));
        EXPECT_EQ(agent.json({"prefs", "get", "DeveloperLogsEnabled"}), Json(false));
        EXPECT_EQ(agent.quit(), 0);
    }
    AgentUnderTest again(desktop);
    ASSERT_TRUE(again.start());
    QThread::msleep(300);
    EXPECT_FALSE(isOpen(again, "welcomeWindow"));
}

TEST(WelcomeWindow, UserOfAnEarlierVersionIsNotWelcomed) {
    VirtualDesktop desktop;
    seedSettings(desktop, "LastUsedVersion=2.4.1\n");
    AgentUnderTest agent(desktop);
    ASSERT_TRUE(agent.start());
    QThread::msleep(300);
    EXPECT_FALSE(isOpen(agent, "welcomeWindow"));
}

TEST(StartUp, PreviewHostStartsNothing) {
    VirtualDesktop desktop;
    QProcess agent;
    auto env = desktop.environment();
    env.insert("XCODE_RUNNING_FOR_PREVIEWS", "1");
    agent.setProcessEnvironment(env);
    agent.start(VELMORA_BINARY, {});
    AgentUnderTest client(desktop);
    ASSERT_TRUE(waitUntil([&] { return client.json({"status"}).has_value(); }));
    const auto status = client.status();
    EXPECT_EQ(status["startup"], Json::parse(R"(["clipboardStore","previewHostStop"])"));
    EXPECT_FALSE(status.contains("statusItem"));
    EXPECT_FALSE(status.contains("welcomeWindow"));
    client.command({"quit"});
    EXPECT_TRUE(agent.waitForFinished(10000));
}
