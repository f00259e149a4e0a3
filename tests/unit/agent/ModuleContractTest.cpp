// The module contract over the fake platform: what a module registers is seen, once, by matching,
// grabbing, the command line, status and the help; what cannot run is neither matched nor grabbed.
#include "FakeAgent.h"
#include "agent/MenubarPopover.h"
#include "app/ModuleRegistry.h"
#include "clipboard/KeyboardCleaningModule.h"
#include "core/KeyEvent.h"
#include "ui/BriefMessage.h"
#include "ui/ScreenNotice.h"
#include "windowmanager/WindowManagerModule.h"

#include <QAbstractButton>
#include <QCoreApplication>
#include <QGuiApplication>
#include <QMenu>
#include <QPushButton>
#include <gtest/gtest.h>

using namespace velmora;
using namespace velmora::ModifierMask;

namespace {

struct Agent : FakeAgent {
    bool grabbed(const KeyboardShortcut& c) const {
        const auto& chords = fake.inputTap->chords;
        return std::count(chords.begin(), chords.end(), c) == 1;
    }
    TapVerdict press(std::uint16_t key, std::uint64_t flags) {
        fake.inputTap->send({TapEventType::FlagsChanged, flags, 0});
        const auto verdict = fake.inputTap->send({TapEventType::KeyDown, flags, key});
        fake.inputTap->send({TapEventType::KeyUp, flags, key});
        fake.inputTap->send({TapEventType::FlagsChanged, 0, 0});
        return verdict;
    }
};

} // namespace

TEST(ModuleContract, WhatModulesRegisterIsGrabbedMatchedAndListed) {
    Agent agent;
    ASSERT_TRUE(agent.app.module<WindowManagerModule>());
    ASSERT_TRUE(agent.app.module<KeyboardCleaningModule>());

    // Grabbing: each chord once: the window manager's, the switcher's and auto-layout's, the clipboard's,
    // dimming's.
    const auto centre = chord(Modifier::Control | Modifier::Alt, 8);
    const auto leftHalf = chord(Modifier::Control | Modifier::Alt, 123);
    const auto up = chord(Modifier::Control | Modifier::Alt, 126); // two zones share it
    EXPECT_TRUE(agent.grabbed(centre));
    EXPECT_TRUE(agent.grabbed(leftHalf));
    EXPECT_TRUE(agent.grabbed(up));
    EXPECT_TRUE(agent.grabbed(chord(Modifier::Alt, 48)));                      // Alt+Tab
    EXPECT_TRUE(agent.grabbed(chord(Modifier::Control, 9)));                   // paste plain text directly
    EXPECT_TRUE(agent.grabbed(chord(Modifier::Command | Modifier::Shift, 9))); // clipboard history
    EXPECT_TRUE(agent.grabbed(chord(Modifier::Control | Modifier::Alt, 11)));  // dimming
    EXPECT_TRUE(agent.grabbed(chord(Modifier::Control | Modifier::Alt, 49)));  // auto-layout

    // Matching: the same chords, nothing else.
    EXPECT_EQ(agent.press(8, Control | Option), TapVerdict::swallow);
    EXPECT_EQ(agent.press(11, Control | Option | Shift), TapVerdict::pass); // no binding has this chord
    QCoreApplication::processEvents();                                      // actions run after the verdict
    EXPECT_EQ(agent.app.dispatcher().lastAction(), "centerWindow");

    // The command line, status and help see the modules' registrations.
    const auto status = agent.commands.handle({"status"});
    ASSERT_TRUE(status.ok);
    EXPECT_TRUE(status.result.contains("windowManager"));
    EXPECT_TRUE(status.result.contains("switcher"));
    EXPECT_EQ(status.result["keyboardCleaning"], false);
    const QString help = ControlCommands::usage(agent.app.registry());
    EXPECT_TRUE(help.contains("  windows  ") || help.contains("windows "));
    EXPECT_TRUE(help.contains("keyboard-cleaning on|off"));
    EXPECT_EQ(help.count("keyboard-cleaning"), 1);
    EXPECT_TRUE(agent.commands.handle({"windows"}).ok);
    const auto missing = agent.commands.handle({"keyboard-cleaning"});
    EXPECT_FALSE(missing.ok);
    EXPECT_EQ(missing.error, "usage: velmora keyboard-cleaning on|off");
    ASSERT_TRUE(agent.commands.handle({"keyboard-cleaning", "on"}).ok);
    EXPECT_TRUE(agent.fake.inputTap->keyboardGrabbed);
    EXPECT_EQ(agent.press(8, Control | Option), TapVerdict::swallow); // silenced, not dispatched
    agent.app.applicationWillTerminate(); // stopping the module gives the keyboard back
    EXPECT_FALSE(agent.fake.inputTap->keyboardGrabbed);
}

TEST(ModuleContract, SwitchingAFeatureOffFreesItsChordsAndTheCommandLineSaysWhy) {
    Agent agent;
    const auto centre = chord(Modifier::Control | Modifier::Alt, 8);
    agent.app.preferences()->local.setWindowManagerEnabled(false);
    EXPECT_FALSE(agent.grabbed(centre));
    EXPECT_FALSE(agent.grabbed(chord(Modifier::Control | Modifier::Alt, 123)));
    EXPECT_FALSE(agent.grabbed(chord(Modifier::Alt, 48)));
    EXPECT_EQ(agent.press(8, Control | Option), TapVerdict::pass);

    const auto refused = agent.commands.handle({"action", "centerWindow"});
    EXPECT_FALSE(refused.ok);
    EXPECT_TRUE(refused.error.contains("window manager is switched off")) << refused.error.toStdString();
    const auto unknown = agent.commands.handle({"action", "centre"});
    EXPECT_FALSE(unknown.ok);
    EXPECT_TRUE(unknown.error.contains("centerWindow, makeWindow16By9")) << unknown.error.toStdString();

    agent.app.preferences()->local.setWindowManagerEnabled(true);
    EXPECT_TRUE(agent.grabbed(centre));
    EXPECT_TRUE(agent.commands.handle({"action", "centerWindow"}).ok);
}

TEST(ModuleContract, PanelRowsAndPreferencePagesComeFromTheModules) {
    Agent agent;
    agent.app.openPreferences();
    ASSERT_TRUE(agent.app.preferencesWindow());
    EXPECT_EQ(agent.app.preferencesWindow()->pageTitles(),
              QStringList({"General", "Window Manager", "Clipboard History", "System Monitor", "Display",
                           "Power", "Keyboard Shortcuts", "Developer"}));

    auto& panelController = agent.app.menubarPopover()->windowController();
    panelController.show(Rect{0, 0, 240, 800});
    ASSERT_TRUE(panelController.window());
    QWidget* panel = panelController.window();
    QAbstractButton* cleaning = nullptr;
    for (auto* b : panel->findChildren<QAbstractButton*>())
        if (b->text() == "Keyboard Cleaning")
            cleaning = b;
    ASSERT_TRUE(cleaning);
    cleaning->click();
    EXPECT_TRUE(agent.app.module<KeyboardCleaningModule>()->model().isOn());
    agent.commands.handle({"keyboard-cleaning", "off"});
    EXPECT_FALSE(cleaning->isChecked()); // the row follows the model
}

// A module's state that must be seen (the keyboard is off) reaches the tray icon and every screen,
// and the notice's button ends it.
TEST(ModuleContract, AnIndicatorShowsOnTheTrayAndEveryScreenUntilItsButtonEndsIt) {
    FakeAgent agent;
    ASSERT_TRUE(agent.commands.handle({"keyboard-cleaning", "on"}).ok);
    const auto active = agent.app.registry()->activeIndicators();
    ASSERT_EQ(active.size(), 1u);
    EXPECT_EQ(active[0].id, "keyboardCleaning");
    EXPECT_EQ(agent.app.menubarPopover()->look().state, StatusGlyph::keyboardOff);
    EXPECT_EQ(agent.app.notices().size(), std::size_t(QGuiApplication::screens().size()));

    agent.app.notices().front()->endButton()->click();
    EXPECT_TRUE(agent.app.registry()->activeIndicators().empty());
    EXPECT_TRUE(agent.app.notices().empty());
    EXPECT_FALSE(agent.app.menubarPopover()->look().state);
    const auto status = agent.commands.handle({"status"});
    EXPECT_FALSE(status.result["keyboardCleaning"].get<bool>());
}

// Two states at once: the tray shows the first added (the keyboard is off) and names both; only the
// one that wants a notice has it; ending it leaves the other showing.
TEST(ModuleContract, IndicatorsWithoutANoticeShareTheTrayWithOnesThatHaveOne) {
    FakeAgent agent;
    agent.commands.handle({"power", "on"}, [](ControlReply) {});
    ASSERT_TRUE(agent.commands.handle({"keyboard-cleaning", "on"}).ok);
    EXPECT_EQ(agent.app.registry()->activeIndicators().size(), 2u);
    EXPECT_EQ(agent.app.menubarPopover()->look().state, StatusGlyph::keyboardOff);
    auto& tray = agent.app.menubarPopover()->mainStatusItem()->statusItem();
    EXPECT_EQ(tray.toolTip(), "Velmora: Keyboard cleaning is on; Prevent Sleep is on");
    ASSERT_EQ(agent.app.notices().size(), std::size_t(QGuiApplication::screens().size()));
    EXPECT_EQ(agent.app.notices().front()->endButton()->text(), "End Keyboard Cleaning");
    EXPECT_EQ(tray.contextMenu()->actions().front()->text(), "Allow Sleep");

    agent.app.notices().front()->endButton()->click();
    EXPECT_TRUE(agent.app.notices().empty());
    EXPECT_EQ(agent.app.menubarPopover()->look().state, StatusGlyph::sleepPrevented);
    EXPECT_EQ(tray.toolTip(), "Velmora: Prevent Sleep is on");
}

// An action with nothing to act on says so, in the log and on the screen.
TEST(ModuleContract, AnActionWithNothingToActOnSaysSo) {
    FakeAgent agent;
    ASSERT_TRUE(agent.commands.handle({"action", "centerWindow"}).ok);
    ASSERT_TRUE(agent.app.brief());
    EXPECT_EQ(agent.app.brief()->text(), "No window has the focus");
    ASSERT_TRUE(agent.commands.handle({"action", "moveWindowToScreen"}).ok);
    EXPECT_EQ(agent.app.brief()->text(), "There is no other screen to move the window to");
}
