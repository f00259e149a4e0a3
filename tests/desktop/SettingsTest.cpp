// Settings as a user meets them: a change either lands in the file or is refused with the reason,
// everywhere it can be made; a stored chord that would eat typing is never grabbed.
#include "AgentUnderTest.h"
#include "TestWindow.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <gtest/gtest.h>

namespace {

using Json = AgentUnderTest::Json;

QString settingsFile(const VirtualDesktop& desktop) {
    return desktop.settingsFile();
}

void seed(const VirtualDesktop& desktop, const QByteArray& ini) {
    ASSERT_TRUE(desktop.writeWelcomedSettings(ini));
}

// Read-only for whoever runs the tests: permission bits stop a user, an immutable flag stops root.
// Returns false when neither can be had here.
bool setReadOnly(const VirtualDesktop& desktop, const QString& path, bool readOnly) {
    const auto writable = QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner;
    if (!readOnly) {
        desktop.run("chattr", {"-i", path});
        return QFile::setPermissions(path, writable);
    }
    QFile::setPermissions(path, QFile::ReadOwner | QFile::ExeOwner);
    if (!QFileInfo(path).isWritable())
        return true;
    return desktop.run("chattr", {"+i", path}).exitCode == 0;
}

double spacing(const AgentUnderTest& agent) {
    const auto record = agent.json({"prefs", "get", "WindowManagerPreferences"});
    return record ? (*record)["spacing"].get<double>() : -1;
}

Json withSpacing(const AgentUnderTest& agent, double value) {
    auto record = agent.json({"prefs", "get", "WindowManagerPreferences"}).value_or(Json::object());
    record["spacing"] = value;
    return record;
}

// Where a user clicks a check box: on its box, at the left end of its frame.
QPoint boxOf(const Json& button) {
    const auto& f = button["frame"];
    return {f[0].get<int>() + 8, f[1].get<int>() + f[3].get<int>() / 2};
}

// Makes the settings writable again whatever the test's outcome, so the desktop's folder can go.
struct WritableAgain {
    const VirtualDesktop& desktop;
    QStringList paths;
    ~WritableAgain() {
        for (const QString& path : paths)
            setReadOnly(desktop, path, false);
    }
};

} // namespace

TEST(Settings, AReadOnlySettingsFileRefusesChangesEverywhereAndTheValueSurvivesARestart) {
    VirtualDesktop desktop;
    seed(desktop, "");
    const QString folder = desktop.configDir() + "/Velmora";
    {
        AgentUnderTest agent(desktop);
        ASSERT_TRUE(agent.start());
        ASSERT_TRUE(agent.json({"prefs", "set", "WindowManagerPreferences",
                                QString::fromStdString(withSpacing(agent, 2).dump())}));
        WritableAgain writable{desktop, {settingsFile(desktop), folder}};
        ASSERT_TRUE(setReadOnly(desktop, settingsFile(desktop), true));
        ASSERT_TRUE(setReadOnly(desktop, folder, true));

        // The command line: non-zero exit, the reason, and the old value still in force.
        const auto refused = agent.command({"prefs", "set", "WindowManagerPreferences",
                                            QString::fromStdString(withSpacing(agent, 3).dump())});
        EXPECT_EQ(refused.exitCode, 1);
        EXPECT_TRUE(refused.err.contains("WindowManagerPreferences was not changed"))
            << refused.err.toStdString();
        EXPECT_TRUE(refused.err.contains("read-only")) << refused.err.toStdString();
        EXPECT_EQ(spacing(agent), 2);

        // The preferences window: the switch clicked springs back, and the window says why.
        ASSERT_TRUE(agent.json({"preferences", "Window Manager"}));
        Json switcher;
        ASSERT_TRUE(waitUntil([&] {
            for (const auto& b : agent.status()["preferencesWindow"].value("buttons", Json::array()))
                if (b["title"] == "Enable window switcher")
                    switcher = b;
            return !switcher.is_null();
        }));
        EXPECT_TRUE(switcher["checked"].get<bool>());
        const QPoint at = boxOf(switcher);
        desktop.run("xdotool", {"mousemove", QString::number(at.x()), QString::number(at.y()), "click", "1"});
        ASSERT_TRUE(waitUntil([&] { return agent.status()["preferencesWindow"].contains("problem"); }))
            << agent.status()["preferencesWindow"].dump();
        const auto window = agent.status()["preferencesWindow"];
        EXPECT_TRUE(window["problem"].get<std::string>().find("read-only") != std::string::npos)
            << window["problem"];
        for (const auto& b : window["buttons"]) {
            if (b["title"] == "Enable window switcher") {
                EXPECT_TRUE(b["checked"].get<bool>());
            }
        }
        EXPECT_TRUE(
            (*agent.json({"prefs", "get", "WindowManagerPreferences"}))["enableWindowSwitcher"].get<bool>());
        EXPECT_EQ(agent.quit(), 0);
    }
    AgentUnderTest again(desktop);
    ASSERT_TRUE(again.start());
    EXPECT_EQ(spacing(again), 2);
}

TEST(Settings, AFileThatDoesNotParseIsKeptAsideBeforeDefaultsAreWritten) {
    VirtualDesktop desktop;
    QDir().mkpath(desktop.configDir() + "/Velmora");
    QFile file(settingsFile(desktop));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    const QByteArray garbage("[General\nWindowManagerPreferences=\"{\\\"spacing\\\": 2\n\x01\x02");
    file.write(garbage);
    file.close();

    AgentUnderTest agent(desktop);
    ASSERT_TRUE(agent.start());
    const QStringList aside =
        QDir(desktop.configDir() + "/Velmora").entryList({"Velmora.conf.corrupt-*"}, QDir::Files);
    ASSERT_EQ(aside.size(), 1) << agent.output().toStdString();
    QFile kept(desktop.configDir() + "/Velmora/" + aside[0]);
    ASSERT_TRUE(kept.open(QIODevice::ReadOnly));
    EXPECT_EQ(kept.readAll(), garbage);
    EXPECT_TRUE(agent.output().contains("could not be read; it is kept as")) << agent.output().toStdString();
    // The agent works on the defaults and can store changes again.
    EXPECT_TRUE(agent.json(
        {"prefs", "set", "WindowManagerPreferences", QString::fromStdString(withSpacing(agent, 1).dump())}));
}

// A Shift-only chord stored by hand (or by an older version) is neither grabbed nor accepted again:
// typing "Anna" gives "Anna" and nothing moves.
TEST(Settings, AStoredShiftChordNeverEatsTyping) {
    VirtualDesktop desktop;
    seed(desktop,
         "KeyboardBindings=\"{\\\"windowManagerCenterWindow\\\":{\\\"control\\\":false,\\\"alt\\\":"
         "false,\\\"command\\\":false,\\\"shift\\\":true,\\\"keyCode\\\":0,\\\"disabled\\\":false}}\"\n");
    AgentUnderTest agent(desktop);
    ASSERT_TRUE(agent.start());
    ASSERT_TRUE(waitUntil([&] { return agent.status()["tap"].value("state", "") == "active"; }));
    TestWindow window(desktop, "typing");
    ASSERT_TRUE(window.waitUntilMapped());
    window.activate();
    desktop.run("xdotool", {"type", "Anna."});
    ASSERT_TRUE(waitUntil([&] { return window.countLines("key 46 ") > 0; })) << window.output().toStdString();
    EXPECT_EQ(window.countLines("key 65 "), 2) << window.output().toStdString(); // A a
    EXPECT_EQ(window.countLines("key 78 "), 2) << window.output().toStdString(); // n n
    EXPECT_TRUE(agent.status()["lastAction"].is_null()) << agent.status()["lastAction"].dump();

    auto bindings = agent.json({"prefs", "get", "KeyboardBindings"});
    ASSERT_TRUE(bindings);
    (*bindings)["makeWindow16By9"] = Json::parse(
        R"({"control":false,"alt":false,"command":false,"shift":true,"keyCode":1,"disabled":false})");
    const auto refused =
        agent.command({"prefs", "set", "KeyboardBindings", QString::fromStdString(bindings->dump())});
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_TRUE(refused.err.contains("needs Ctrl, Alt or Super")) << refused.err.toStdString();
}

// Launch at login is an autostart entry that desktops read; the switch and the command line both
// follow what was really written.
TEST(Settings, LaunchAtLoginTogglesAValidAutostartEntryOrSaysWhyNot) {
    VirtualDesktop desktop;
    seed(desktop, "");
    AgentUnderTest agent(desktop);
    ASSERT_TRUE(agent.start());
    const QString entry = desktop.configDir() + "/autostart/velmora.desktop";

    ASSERT_TRUE(agent.json({"prefs", "set", "LaunchOnStart", "true"}));
    ASSERT_TRUE(QFile::exists(entry));
    const auto validated = desktop.run("desktop-file-validate", {entry});
    EXPECT_EQ(validated.exitCode, 0) << validated.out.toStdString() << validated.err.toStdString();
    EXPECT_EQ(agent.json({"prefs", "get", "LaunchOnStart"}), Json(true));

    // The General page's switch shows it, and clicking it removes the entry.
    ASSERT_TRUE(agent.json({"preferences", "General"}));
    Json box;
    ASSERT_TRUE(waitUntil([&] {
        for (const auto& b : agent.status()["preferencesWindow"].value("buttons", Json::array()))
            if (b["title"] == "Launch at login")
                box = b;
        return !box.is_null();
    }));
    EXPECT_TRUE(box["checked"].get<bool>());
    const QPoint at = boxOf(box);
    desktop.run("xdotool", {"mousemove", QString::number(at.x()), QString::number(at.y()), "click", "1"});
    EXPECT_TRUE(waitUntil([&] { return !QFile::exists(entry); }));
    EXPECT_EQ(agent.json({"prefs", "get", "LaunchOnStart"}), Json(false));

    // A folder that cannot be written: refused with the reason, nothing claims it is on.
    const QString folder = desktop.configDir() + "/autostart";
    WritableAgain writable{desktop, {folder}};
    ASSERT_TRUE(setReadOnly(desktop, folder, true));
    const auto refused = agent.command({"prefs", "set", "LaunchOnStart", "true"});
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_TRUE(refused.err.contains("LaunchOnStart was not changed")) << refused.err.toStdString();
    EXPECT_EQ(agent.json({"prefs", "get", "LaunchOnStart"}), Json(false));
    EXPECT_FALSE(QFile::exists(entry));
}
