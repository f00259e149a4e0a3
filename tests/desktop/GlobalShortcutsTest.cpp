// Global shortcuts and keyboard cleaning with real key presses (XTest through xdotool) on a real
// X server, checked where a user would notice: which window got the key, what the agent did.
#include "AgentUnderTest.h"
#include "TestWindow.h"

#include <QThread>
#include <algorithm>
#include <gtest/gtest.h>
#include <signal.h>

namespace {

using Json = AgentUnderTest::Json;

int dispatchCount(const AgentUnderTest& agent) {
    const auto last = agent.status()["lastAction"];
    return last.is_null() ? 0 : last["count"].get<int>();
}

bool tapIsActive(const AgentUnderTest& agent) {
    return agent.status()["tap"].value("state", "") == "active";
}

struct ShortcutDesktop : ::testing::Test {
    VirtualDesktop desktop;
    AgentUnderTest agent{desktop};
    std::unique_ptr<TestWindow> window;

    void SetUp() override {
        ASSERT_TRUE(desktop.isReady());
        ASSERT_TRUE(agent.start());
        ASSERT_TRUE(waitUntil([&] { return tapIsActive(agent); })) << agent.status().dump();
        window = std::make_unique<TestWindow>(desktop, "keys");
        ASSERT_TRUE(window->waitUntilMapped());
        window->activate();
    }
    void key(const QString& chord) { desktop.run("xdotool", {"key", chord}); }
    void type(const QString& text) { desktop.run("xdotool", {"type", text}); }
    // Typing a marker and waiting for it tells that every key before it was delivered.
    void settle(const QString& marker = "q") {
        type(marker);
        const QString line = QString("key %1 ").arg(int(marker.toUpper()[0].unicode()));
        waitUntil([&] { return window->countLines(line) > 0; });
    }
};

} // namespace

TEST_F(ShortcutDesktop, BoundChordIsSwallowedAndDispatchedOthersReachTheWindowOnce) {
    key("super+alt+c"); // "Center Window"
    ASSERT_TRUE(waitUntil([&] { return dispatchCount(agent) == 1; }));
    EXPECT_EQ(agent.status()["lastAction"]["action"], "centerWindow");
    EXPECT_EQ(agent.status()["lastAction"]["source"], "windowManagerCenterWindow");

    key("ctrl+alt+x");  // bound to nothing
    key("super+alt+y"); // bound to nothing, but uses the same modifiers as the bound chords
    settle();
    EXPECT_EQ(window->countLines("key 67 "), 0) << window->output().toStdString();
    EXPECT_EQ(window->countLines("key 88 "), 1) << window->output().toStdString();
    EXPECT_EQ(window->countLines("key 89 "), 1) << window->output().toStdString();
    EXPECT_EQ(dispatchCount(agent), 1);

    // Alt+Shift+Tab is "Select Previous Window", not "Open Window Switcher".
    key("alt+shift+Tab");
    ASSERT_TRUE(waitUntil([&] { return dispatchCount(agent) == 2; }));
    EXPECT_EQ(agent.status()["lastAction"]["source"], "switchWindowPrevious");
}

TEST_F(ShortcutDesktop, LockKeysDoNotBreakShortcuts) {
    key("Num_Lock");
    key("super+alt+c");
    ASSERT_TRUE(waitUntil([&] { return dispatchCount(agent) == 1; }));
    key("Caps_Lock");
    key("super+alt+c");
    ASSERT_TRUE(waitUntil([&] { return dispatchCount(agent) == 2; }));
    key("Caps_Lock");
    key("Num_Lock");
    settle();
    EXPECT_EQ(window->countLines("key 67 "), 0);
}

TEST_F(ShortcutDesktop, ChangedBindingsAreGrabbedAtOnce) {
    auto bindings = agent.json({"prefs", "get", "KeyboardBindings"});
    ASSERT_TRUE(bindings);
    (*bindings)["makeWindow16By9"] = Json::parse(
        R"({"control":true,"alt":true,"command":false,"shift":false,"keyCode":2,"disabled":false})");
    (*bindings)["windowManagerCenterWindow"]["disabled"] = true;
    ASSERT_TRUE(agent.json({"prefs", "set", "KeyboardBindings", QString::fromStdString(bindings->dump())}));
    QThread::msleep(200);

    key("super+alt+d");
    ASSERT_TRUE(waitUntil([&] { return dispatchCount(agent) == 1; }));
    EXPECT_EQ(agent.status()["lastAction"]["action"], "makeWindow16By9");
    key("super+alt+c"); // switched off: reaches the window
    settle();
    EXPECT_EQ(window->countLines("key 67 "), 1) << window->output().toStdString();
    EXPECT_EQ(dispatchCount(agent), 1);
}

// Switched off by the user: the window switcher's Alt+Tab and auto-layout's Super+Alt+Space are not
// grabbed, so the focused program gets them, once; asked for by name, they say why not.
TEST_F(ShortcutDesktop, ChordsOfActionsThatCannotRunReachTheWindowOnce) {
    auto wm = agent.json({"prefs", "get", "WindowManagerPreferences"});
    ASSERT_TRUE(wm);
    (*wm)["enableWindowSwitcher"] = false;
    (*wm)["enableAutoLayout"] = false;
    ASSERT_TRUE(agent.json({"prefs", "set", "WindowManagerPreferences", QString::fromStdString(wm->dump())}));
    QThread::msleep(200);
    key("super+alt+space");
    key("alt+Tab");
    settle();
    EXPECT_EQ(window->countLines("key 32 "), 1) << window->output().toStdString();       // Space
    EXPECT_EQ(window->countLines("key 16777217 "), 1) << window->output().toStdString(); // Tab
    EXPECT_EQ(dispatchCount(agent), 0);
    const auto refused = agent.command({"action", "proposeAutoLayout"});
    EXPECT_NE(refused.exitCode, 0);
    EXPECT_TRUE(refused.err.contains("auto-layout is switched off")) << refused.err.toStdString();
    const auto off = agent.command({"action", "openWindowSwitcher"});
    EXPECT_NE(off.exitCode, 0);
    EXPECT_TRUE(off.err.contains("window switcher is switched off")) << off.err.toStdString();
}

TEST_F(ShortcutDesktop, KeyboardCleaningSwallowsKeysButNotClicks) {
    ASSERT_TRUE(agent.json({"keyboard-cleaning", "on"}));
    QThread::msleep(300);
    type("hello");
    key("super+alt+c");
    key("XF86AudioMute");
    const auto geometry =
        desktop.run("xdotool", {"search", "--name", "^keys$", "getwindowgeometry", "--shell"});
    int x = 0, y = 0;
    for (const auto& line : geometry.out.split('\n')) {
        if (line.startsWith("X="))
            x = line.mid(2).toInt();
        if (line.startsWith("Y="))
            y = line.mid(2).toInt();
    }
    desktop.run("xdotool", {"mousemove", QString::number(x + 40), QString::number(y + 40), "click", "1"});
    ASSERT_TRUE(waitUntil([&] { return window->countLines("click") == 1; }));
    EXPECT_EQ(window->countLines("key"), 0) << window->output().toStdString();
    EXPECT_EQ(dispatchCount(agent), 0);

    ASSERT_TRUE(agent.json({"keyboard-cleaning", "off"}));
    window->activate();
    settle("k");
    EXPECT_EQ(window->countLines("key 75 "), 1);
}

TEST_F(ShortcutDesktop, CleaningIsEndedByClickingItsSwitchInThePanel) {
    ASSERT_TRUE(agent.json({"keyboard-cleaning", "on"}));
    ASSERT_TRUE(agent.json({"panel", "show"}));
    const auto buttons = agent.status()["panel"]["buttons"];
    const auto toggle = std::find_if(buttons.begin(), buttons.end(),
                                     [](const Json& b) { return b["title"] == "Keyboard Cleaning"; });
    ASSERT_NE(toggle, buttons.end()) << buttons.dump();
    EXPECT_TRUE((*toggle)["checked"].get<bool>());
    const auto& f = (*toggle)["frame"];
    desktop.run("xdotool", {"mousemove", QString::number(f[0].get<int>() + 10),
                            QString::number(f[1].get<int>() + f[3].get<int>() / 2), "click", "1"});
    EXPECT_TRUE(waitUntil([&] { return !agent.status()["keyboardCleaning"].get<bool>(); }));
    window->activate();
    settle("k");
    EXPECT_EQ(window->countLines("key 75 "), 1);
}

// While the keyboard is off the tray icon says so, and the screen shows a notice whose button ends it.
TEST_F(ShortcutDesktop, CleaningShowsOnTheTrayAndTheScreenAndItsNoticeEndsIt) {
    EXPECT_EQ(agent.status()["statusItem"]["state"], "normal");
    ASSERT_TRUE(agent.json({"keyboard-cleaning", "on"}));
    const auto status = agent.status();
    EXPECT_EQ(status["statusItem"]["state"], "keyboardOff");
    EXPECT_EQ(status["statusItem"]["toolTip"], "Velmora: Keyboard cleaning is on");
    ASSERT_EQ(status["notices"].size(), 1u) << status.dump();
    const auto& notice = status["notices"][0];
    EXPECT_TRUE(notice["open"].get<bool>());
    const auto& frame = notice["frame"];
    EXPECT_NEAR(frame[0].get<int>() + frame[2].get<int>() / 2, 720, 2); // centred on the screen
    ASSERT_EQ(notice["buttons"].size(), 1u);
    EXPECT_EQ(notice["buttons"][0]["title"], "End Keyboard Cleaning");

    const auto& f = notice["buttons"][0]["frame"];
    desktop.run("xdotool", {"mousemove", QString::number(f[0].get<int>() + f[2].get<int>() / 2),
                            QString::number(f[1].get<int>() + f[3].get<int>() / 2), "click", "1"});
    EXPECT_TRUE(waitUntil([&] { return !agent.status()["keyboardCleaning"].get<bool>(); }));
    EXPECT_TRUE(agent.status()["notices"].empty());
    EXPECT_EQ(agent.status()["statusItem"]["state"], "normal");
    window->activate();
    settle("k");
    EXPECT_EQ(window->countLines("key 75 "), 1);
}

TEST_F(ShortcutDesktop, KillingTheAgentDuringCleaningGivesTheKeyboardBack) {
    ASSERT_TRUE(agent.json({"keyboard-cleaning", "on"}));
    QThread::msleep(300);
    type("x");
    ::kill(pid_t(agent.process()->processId()), SIGKILL);
    ASSERT_TRUE(agent.process()->waitForFinished(5000));
    window->activate();
    settle("k");
    EXPECT_EQ(window->countLines("key 88 "), 0);
    EXPECT_EQ(window->countLines("key 75 "), 1);
}

TEST_F(ShortcutDesktop, BusyMainThreadNeverFreezesTheKeyboard) {
    // The command keeps the agent's main thread asleep for two seconds.
    QProcess busy;
    busy.setProcessEnvironment(desktop.environment());
    busy.start(VELMORA_BINARY, {"debug", "block-main-thread", "2000"});
    QThread::msleep(300);
    key("super+alt+c");
    type("z");
    // Both keys reach the window while the agent is still asleep.
    EXPECT_TRUE(waitUntil([&] { return window->countLines("key 90 ") == 1; }, 1500));
    EXPECT_EQ(window->countLines("key 67 "), 1);
    ASSERT_TRUE(busy.waitForFinished(5000));
    // The key that was let through does not fire its action afterwards; the tap reports the time-out.
    EXPECT_EQ(dispatchCount(agent), 0);
    EXPECT_EQ(agent.status()["tap"]["state"], "disabledByTimeout");
}

TEST(ShortcutRefusals, ChordHeldByAnotherProgramIsReportedOthersWork) {
    VirtualDesktop desktop;
    TestWindow holder(desktop, "holder", {"--grab-super-alt", "f"});
    ASSERT_TRUE(waitUntil([&] { return holder.output().contains("grabbed"); }));
    AgentUnderTest agent(desktop);
    ASSERT_TRUE(agent.start());
    ASSERT_TRUE(waitUntil([&] { return !agent.status()["tap"]["refused"].empty(); }));
    const auto refused = agent.status()["tap"]["refused"];
    ASSERT_EQ(refused.size(), 1u);
    EXPECT_EQ(refused[0]["shortcut"]["keyCode"], 3); // "Make Window 16 by 9"
    EXPECT_TRUE(waitUntil([&] { return agent.output().contains("cannot be used"); }));

    desktop.run("xdotool", {"key", "super+alt+c"});
    EXPECT_TRUE(waitUntil([&] { return dispatchCount(agent) == 1; }));

    // Pressed anyway, the chord goes to the program that holds it; the agent only says so.
    desktop.run("xdotool", {"key", "super+alt+f"});
    EXPECT_TRUE(waitUntil([&] { return agent.status().contains("brief"); })) << agent.status().dump();
    EXPECT_EQ(agent.status().value("brief", ""),
              "Super+Alt+F belongs to another program; choose another shortcut in Preferences");
    EXPECT_EQ(dispatchCount(agent), 1);
}

// An action with nothing to act on says so on the screen instead of doing nothing silently.
TEST_F(ShortcutDesktop, AnActionWithNothingToDoSaysSoBriefly) {
    key("super+alt+m"); // next screen, on a desktop with one screen
    ASSERT_TRUE(waitUntil([&] { return agent.status().contains("brief"); })) << agent.status().dump();
    EXPECT_EQ(agent.status()["brief"], "There is no other screen to move the window to");
    // It goes away by itself.
    EXPECT_TRUE(waitUntil([&] { return !agent.status().contains("brief"); }, 4000));
}
