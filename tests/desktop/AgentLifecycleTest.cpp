// The agent as a user starts, queries, configures and stops it on a real X11 desktop.
#include "AgentUnderTest.h"

#include <QColor>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <gtest/gtest.h>

namespace {

void writeSettings(const VirtualDesktop& desktop, const QByteArray& ini) {
    ASSERT_TRUE(desktop.writeSettings(ini));
}

// The icon's glyph in the colour given (black: dark, white: light): some pixel of its middle row is
// near that colour and none is coloured.
bool glyphIs(const VirtualDesktop& desktop, const QRect& icon, Qt::GlobalColor tone) {
    bool seen = false;
    const QStringList row = desktop.pixelRow(icon.left() + 2, icon.center().y(), icon.width() - 4);
    for (const QString& colour : row) {
        const QColor c(colour);
        if (!c.isValid() || c.saturation() > 40)
            return false;
        seen |= tone == Qt::black ? c.lightness() < 70 : c.lightness() > 200;
    }
    return seen;
}

} // namespace

TEST(AgentLifecycle, StartsWithEmbeddedTrayIconAndAnswersStatus) {
    VirtualDesktop desktop;
    ASSERT_TRUE(desktop.isReady());
    AgentUnderTest agent(desktop);
    ASSERT_TRUE(agent.start());

    const auto icon = agent.waitForStatusIcon();
    ASSERT_TRUE(icon) << agent.status().dump();
    // The tray host sits at the top right; the icon is a dark glyph on its light grey panel.
    EXPECT_GT(icon->x(), 1300);
    EXPECT_LT(icon->y(), 24);
    EXPECT_TRUE(waitUntil([&] { return agent.status()["statusItem"]["panel"] == "light"; }));
    EXPECT_TRUE(waitUntil([&] { return glyphIs(desktop, *agent.waitForStatusIcon(), Qt::black); }));

    const auto status = agent.status();
    EXPECT_EQ(status["version"], "0.1.0");
    EXPECT_EQ(status["pid"].get<qint64>(), agent.process()->processId());
    EXPECT_TRUE(status["platform"]["usable"].get<bool>()) << status.dump();
    EXPECT_EQ(
        status["startup"],
        AgentUnderTest::Json::parse(
            R"(["clipboardStore","preferences","statusItems","cloudMirroring","updateCheckTimer","permissionPoll","windowCache","monitorDimming","clipboardWatcher","welcome","systemMonitoring","powerManagement"])"));
    EXPECT_FALSE(status["monitoringItem"]["visible"].get<bool>());
}

TEST(AgentLifecycle, TheTrayIconFollowsADarkPanel) {
    VirtualDesktop::Options dark;
    dark.darkTray = true;
    VirtualDesktop desktop(dark);
    AgentUnderTest agent(desktop);
    ASSERT_TRUE(agent.start());
    const auto icon = agent.waitForStatusIcon();
    ASSERT_TRUE(icon);
    EXPECT_TRUE(waitUntil([&] { return agent.status()["statusItem"]["panel"] == "dark"; }, 15000))
        << agent.status()["statusItem"].dump();
    // The tray may still be giving the icon its final size when it is first embedded.
    EXPECT_TRUE(waitUntil([&] { return glyphIs(desktop, *agent.waitForStatusIcon(), Qt::white); }));
}

TEST(AgentLifecycle, SecondInstanceSaysSoAndLeavesTheFirstRunning) {
    VirtualDesktop desktop;
    AgentUnderTest agent(desktop);
    ASSERT_TRUE(agent.start());

    const auto second = desktop.run(VELMORA_BINARY, {});
    EXPECT_EQ(second.exitCode, 0);
    EXPECT_TRUE(second.out.contains("already running")) << second.out.toStdString();
    EXPECT_TRUE(second.out.contains("on display " + desktop.display())) << second.out.toStdString();
    EXPECT_EQ(agent.status()["pid"].get<qint64>(), agent.process()->processId());
}

TEST(AgentLifecycle, QuitEndsTheProcessCleanlyAndFreesTheSocket) {
    VirtualDesktop desktop;
    AgentUnderTest agent(desktop);
    ASSERT_TRUE(agent.start());
    EXPECT_EQ(agent.quit(), 0);
    EXPECT_FALSE(QFileInfo::exists(desktop.environment().value("XDG_RUNTIME_DIR") + "/velmora.sock"));
    const auto after = agent.command({"status"});
    EXPECT_NE(after.exitCode, 0);
    EXPECT_TRUE(after.err.contains("not running"));

    // A fresh start over the same user files works again.
    AgentUnderTest again(desktop);
    EXPECT_TRUE(again.start());
}

TEST(AgentLifecycle, TerminationSignalTakesTheQuitPath) {
    VirtualDesktop desktop;
    AgentUnderTest agent(desktop);
    ASSERT_TRUE(agent.start());
    agent.process()->terminate();
    ASSERT_TRUE(agent.process()->waitForFinished(10000));
    EXPECT_EQ(agent.process()->exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(agent.process()->exitCode(), 0);
}

TEST(AgentLifecycle, PreferencesRoundTripAndSurviveARestart) {
    VirtualDesktop desktop;
    AgentUnderTest agent(desktop);
    ASSERT_TRUE(agent.start());

    auto record = agent.json({"prefs", "get", "WindowManagerPreferences"});
    ASSERT_TRUE(record);
    EXPECT_EQ((*record)["areas"].size(), 9u);
    (*record)["spacing"] = 1.0;
    (*record)["areas"].erase(1);
    const auto set =
        agent.json({"prefs", "set", "WindowManagerPreferences", QString::fromStdString(record->dump())});
    ASSERT_TRUE(set);
    EXPECT_EQ(*set, *record);
    EXPECT_EQ(agent.json({"prefs", "get", "WindowManagerPreferences"}), record);

    // Refused values change nothing and say why.
    const auto wrongShape =
        agent.command({"prefs", "set", "WindowManagerPreferences", R"({"spacing": "wide"})"});
    EXPECT_EQ(wrongShape.exitCode, 1);
    EXPECT_TRUE(wrongShape.err.contains("was not changed")) << wrongShape.err.toStdString();
    EXPECT_EQ(agent.command({"prefs", "set", "BasicPreferences", "{nope"}).exitCode, 1);
    EXPECT_EQ(agent.command({"prefs", "get", "NoSuchKey"}).exitCode, 1);
    EXPECT_EQ(agent.json({"prefs", "get", "WindowManagerPreferences"}), record);

    EXPECT_EQ(agent.quit(), 0);
    AgentUnderTest again(desktop);
    ASSERT_TRUE(again.start());
    EXPECT_EQ(again.json({"prefs", "get", "WindowManagerPreferences"}), record);
}

TEST(AgentLifecycle, UndecodableStoredRecordKeepsTheDefaultAndIsLogged) {
    VirtualDesktop desktop;
    writeSettings(desktop, "[General]\nBasicPreferences=\"{\\\"autoUpdate\\\":\\\"sometimes\\\"}\"\n"
                           "WelcomeWindowSeen:V26=true\n");
    AgentUnderTest agent(desktop);
    ASSERT_TRUE(agent.start());
    EXPECT_EQ(agent.json({"prefs", "get", "BasicPreferences"}),
              AgentUnderTest::Json::parse(R"({"autoUpdate":true})"));
    EXPECT_TRUE(waitUntil([&] { return agent.output().contains("BasicPreferences does not decode"); }))
        << agent.output().toStdString();
}

TEST(AgentLifecycle, LogExportWritesTheKeptEntries) {
    VirtualDesktop desktop;
    AgentUnderTest agent(desktop);
    ASSERT_TRUE(agent.start());
    const QString path = desktop.configDir() + "/logs.json";

    // Developer logs are off: nothing is kept.
    ASSERT_TRUE(agent.json({"logs", "export", path}));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), "[]");
    EXPECT_TRUE(waitUntil([&] { return agent.output().contains("File saved at: " + path); }));

    const auto failed = agent.command({"logs", "export", "/nonexistent/dir/logs.json"});
    EXPECT_EQ(failed.exitCode, 1);
    EXPECT_TRUE(waitUntil([&] { return agent.output().contains("Failed to save file: "); }));
}

TEST(AgentLifecycle, WithoutADisplayItSaysWhatIsMissing) {
    QProcess p;
    auto env = QProcessEnvironment::systemEnvironment();
    env.remove("DISPLAY");
    env.remove("WAYLAND_DISPLAY");
    p.setProcessEnvironment(env);
    p.start(VELMORA_BINARY, {});
    ASSERT_TRUE(p.waitForFinished(10000));
    EXPECT_EQ(p.exitCode(), 1);
    EXPECT_TRUE(QString::fromUtf8(p.readAllStandardError()).contains("no X display"));
}
