#include "../agent/FakeAgent.h"
#include "agent/MenubarPopover.h"
#include "app/ModuleRegistry.h"
#include "power/PowerManagementModule.h"
#include "ui/power/PowerPreferencesPage.h"

#include <QCheckBox>
#include <QLabel>
#include <QMenu>
#include <QRadioButton>
#include <gtest/gtest.h>

using namespace velmora;

namespace {

QAbstractButton* panelSwitch(FakeAgent& agent) {
    auto& panel = agent.app.menubarPopover()->windowController();
    panel.show(Rect{0, 0, 240, 800});
    for (auto* button : panel.window()->findChildren<QAbstractButton*>())
        if (button->text() == "Prevent Sleep")
            return button;
    return nullptr;
}

QMenu* trayMenu(FakeAgent& agent) {
    return agent.app.menubarPopover()->mainStatusItem()->statusItem().contextMenu();
}

QStringList titles(QMenu* menu) {
    QStringList texts;
    for (QAction* action : menu->actions())
        texts << (action->isSeparator() ? "-" : action->text());
    return texts;
}

} // namespace

// Sleep kept away is worth knowing, not worth a card on the screen: the tray icon shows a cup, its
// tooltip says so, and its menu offers to allow sleep again.
TEST(PowerManagementScreens, WhileSleepIsPreventedTheTrayShowsItAndItsMenuAllowsSleep) {
    FakeAgent agent;
    const QStringList usualMenu = titles(trayMenu(agent));
    agent.commands.handle({"power", "on"}, [](ControlReply) {});
    const auto active = agent.app.registry()->activeIndicators();
    ASSERT_EQ(active.size(), 1u);
    EXPECT_EQ(active[0].id, "preventSleep");
    EXPECT_EQ(active[0].endTitle, "Allow Sleep");
    EXPECT_EQ(agent.app.menubarPopover()->look().state, StatusGlyph::sleepPrevented);
    EXPECT_TRUE(agent.app.notices().empty());
    const Json status = agent.commands.handle({"status"}).result;
    EXPECT_EQ(status["statusItem"]["state"], "sleepPrevented");
    EXPECT_EQ(status["statusItem"]["toolTip"], "Velmora: Prevent Sleep is on");
    EXPECT_EQ(status["indicators"].dump(),
              R"([{"id":"preventSleep","title":"Prevent Sleep is on","glyph":"sleepPrevented",)"
              R"("notice":false}])");
    EXPECT_EQ(titles(trayMenu(agent)), QStringList({"Allow Sleep", "-"}) + usualMenu);

    trayMenu(agent)->actions().front()->trigger();
    EXPECT_FALSE(agent.fake.sleepInhibitor->held);
    EXPECT_TRUE(agent.app.registry()->activeIndicators().empty());
    EXPECT_FALSE(agent.app.menubarPopover()->look().state);
    EXPECT_EQ(agent.app.menubarPopover()->mainStatusItem()->statusItem().toolTip(), "Velmora");
    EXPECT_EQ(titles(trayMenu(agent)), usualMenu);
}

// The indicator follows what the system really does, however it changes: the panel's switch, a
// refusal, a cancelled prompt.
TEST(PowerManagementScreens, TheIndicatorFollowsTheModel) {
    FakeAgent agent;
    QAbstractButton* toggle = panelSwitch(agent);
    ASSERT_TRUE(toggle);
    toggle->click();
    EXPECT_EQ(agent.app.menubarPopover()->look().state, StatusGlyph::sleepPrevented);
    toggle->click();
    EXPECT_FALSE(agent.app.menubarPopover()->look().state);

    agent.fake.sleepInhibitor->refusal = "no login manager";
    toggle->click();
    EXPECT_TRUE(agent.app.registry()->activeIndicators().empty());

    agent.fake.sleepInhibitor->refusal.clear();
    agent.commands.handle({"power", "on", "--persistent"}, [](ControlReply) {});
    ASSERT_TRUE(agent.fake.sleepSettings->disabled);
    EXPECT_EQ(agent.app.registry()->activeIndicators().size(), 1u);
    // Allowing sleep asks the administrator; cancelled, sleep stays prevented and the tray says so.
    agent.fake.sleepSettings->refusal = "the administrator prompt was cancelled";
    agent.app.registry()->activeIndicators().front().end();
    EXPECT_TRUE(agent.fake.sleepSettings->disabled);
    EXPECT_EQ(agent.app.menubarPopover()->look().state, StatusGlyph::sleepPrevented);
}

TEST(PowerManagementScreens, ThePanelSwitchTurnsPreventionOnAndFollowsTheModel) {
    FakeAgent agent;
    QAbstractButton* toggle = panelSwitch(agent);
    ASSERT_TRUE(toggle);
    EXPECT_FALSE(toggle->isChecked());
    toggle->click();
    EXPECT_TRUE(agent.fake.sleepInhibitor->held);
    agent.commands.handle({"power", "off"}, [](ControlReply) {});
    EXPECT_FALSE(toggle->isChecked());

    // Refused by the system: the switch goes back off by itself.
    agent.fake.sleepInhibitor->refusal = "no login manager";
    toggle->click();
    EXPECT_FALSE(toggle->isChecked());
}

TEST(PowerManagementScreens, ThePageShowsBothModesWithWhatTheyMean) {
    FakeAgent agent;
    PowerManagementModel& model = *agent.app.module<PowerManagementModule>()->model();
    PowerPreferencesPage page(model);
    auto* temporary = page.findChild<QRadioButton*>("temporaryMode");
    auto* persistent = page.findChild<QRadioButton*>("persistentMode");
    auto* preventSleep = page.findChild<QCheckBox*>("preventSleep");
    ASSERT_TRUE(temporary && persistent && preventSleep);
    // "&" is shown as itself, not taken for a mnemonic.
    EXPECT_EQ(temporary->text(), "Temporary && safe");
    EXPECT_EQ(persistent->text(), "Persistent && potentially dangerous");
    QStringList texts;
    for (auto* label : page.findChildren<QLabel*>())
        texts << label->text();
    EXPECT_TRUE(texts.contains("<b>Prevent Sleep mode</b>"));
    EXPECT_TRUE(texts.contains(PowerPreferencesPage::kPersistentDescription));
    EXPECT_TRUE(PowerPreferencesPage::kPersistentDescription.contains("global system settings"));
    EXPECT_FALSE(PowerPreferencesPage::kPersistentDescription.contains("Mac"));
    EXPECT_TRUE(temporary->isChecked());

    persistent->click();
    EXPECT_TRUE(model.usePMSet());
    preventSleep->click();
    EXPECT_TRUE(model.preventSleep());
    EXPECT_TRUE(agent.fake.sleepSettings->disabled);

    // A cancelled prompt: the switch shows the real state, and the reason is on the page.
    agent.fake.sleepSettings->refusal =
        "Failed to execute systemctl command: the administrator prompt was cancelled";
    preventSleep->click();
    EXPECT_TRUE(preventSleep->isChecked());
    auto* problem = page.findChild<QLabel*>("problem");
    ASSERT_TRUE(problem);
    EXPECT_EQ(problem->text(), agent.fake.sleepSettings->refusal);

    // While the system is asked, the controls rest.
    agent.fake.sleepSettings->refusal.clear();
    agent.fake.sleepSettings->deferred = true;
    preventSleep->click();
    EXPECT_FALSE(preventSleep->isEnabled());
    EXPECT_FALSE(temporary->isEnabled());
    agent.fake.sleepSettings->answer();
    EXPECT_TRUE(preventSleep->isEnabled());
    EXPECT_FALSE(preventSleep->isChecked());
}
