#include "../agent/FakeAgent.h"
#include "agent/MenubarPopover.h"
#include "power/PowerManagementModule.h"
#include "ui/power/PowerPreferencesPage.h"

#include <QCheckBox>
#include <QLabel>
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

} // namespace

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
