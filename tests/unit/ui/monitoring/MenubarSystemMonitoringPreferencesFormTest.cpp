#include "ui/monitoring/MenubarSystemMonitoringPreferencesForm.h"
#include "app/LoggingManager.h"
#include "app/UserPreferences.h"
#include "platform/fake/FakeDefaults.h"
#include "ui/monitoring/SystemMonitoringPreferencesPage.h"

#include <QLabel>
#include <QListWidget>
#include <QToolButton>
#include <gtest/gtest.h>

using namespace velmora;

namespace {

struct FormSetup {
    FakeDefaults defaults;
    LoggingManager log{[] { return false; }};
    UserPreferences prefs{defaults, log};
    MenubarSystemMonitoringPreferencesForm form{prefs};

    std::vector<ResourceType> stored() const {
        std::vector<ResourceType> result;
        for (const auto& w : prefs.theme.value().mbsm.widgets)
            result.push_back(w.resource);
        return result;
    }
    // What a new agent would read: the record as written to the settings.
    ThemePreferences reread() {
        UserPreferences again{defaults, log};
        return again.theme.value();
    }
};

using R = ResourceType;

} // namespace

TEST(MenubarSystemMonitoringPreferencesForm, AddRemoveAndReorderWriteTheThemeRecord) {
    FormSetup s;
    EXPECT_EQ(s.form.list()->count(), 0);
    EXPECT_FALSE(s.form.resetButton()->isEnabled());
    s.form.add(R::cpu);
    s.form.add(R::network);
    s.form.add(R::cpu); // the same resource twice is two gauges
    EXPECT_EQ(s.stored(), std::vector<R>({R::cpu, R::network, R::cpu}));
    const auto& widgets = s.prefs.theme.value().mbsm.widgets;
    EXPECT_FALSE(widgets[0].id.isNull());
    EXPECT_NE(widgets[0].id, widgets[2].id);
    EXPECT_EQ(s.reread().mbsm, s.prefs.theme.value().mbsm);
    EXPECT_EQ(s.form.list()->currentRow(), 2); // the new gauge is selected

    const QUuid network = widgets[1].id;
    s.form.list()->setCurrentRow(1);
    s.form.moveSelected(-1);
    EXPECT_EQ(s.stored(), std::vector<R>({R::network, R::cpu, R::cpu}));
    EXPECT_EQ(s.form.list()->currentRow(), 0); // the selection went with it
    EXPECT_FALSE(s.form.upButton()->isEnabled());
    s.form.moveSelected(-1); // already first: nothing
    EXPECT_EQ(s.stored(), std::vector<R>({R::network, R::cpu, R::cpu}));
    s.form.downButton()->click();
    s.form.downButton()->click();
    EXPECT_EQ(s.prefs.theme.value().mbsm.widgets[2].id, network);
    EXPECT_FALSE(s.form.downButton()->isEnabled());

    s.form.removeButton()->click();
    EXPECT_EQ(s.stored(), std::vector<R>({R::cpu, R::cpu}));
    EXPECT_EQ(s.form.list()->currentRow(), 1);
    EXPECT_EQ(s.reread().mbsm.widgets.size(), 2u);
    // The rest of the appearance record is kept.
    EXPECT_EQ(s.prefs.theme.value().windowSwitcherWidth, 400.0);
}

TEST(MenubarSystemMonitoringPreferencesForm, ResetRestoresNoGaugesAndTheListFollowsChangesFromElsewhere) {
    FormSetup s;
    s.form.add(R::memory);
    s.form.add(R::cpu);
    EXPECT_EQ(s.form.resetButton()->toolTip(), "Reset");
    s.form.resetButton()->click();
    EXPECT_TRUE(s.stored().empty());
    EXPECT_TRUE(s.reread().mbsm.widgets.empty());
    EXPECT_EQ(s.form.list()->count(), 0);

    // Written by the command line or another machine: the form shows it.
    ThemePreferences theme = s.prefs.theme.value();
    theme.mbsm.widgets = {{QUuid::createUuid(), R::network}};
    ASSERT_TRUE(s.prefs.theme.setValue(theme));
    ASSERT_EQ(s.form.list()->count(), 1);
    EXPECT_TRUE(s.form.list()->item(0)->text().startsWith("Network"));
}

TEST(MenubarSystemMonitoringPreferencesForm, AChangeThatCannotBeStoredLeavesTheListAsItWas) {
    FormSetup s;
    s.form.add(R::cpu);
    s.defaults.failWrites = true;
    s.form.add(R::memory);
    EXPECT_EQ(s.stored(), std::vector<R>({R::cpu}));
    EXPECT_EQ(s.form.list()->count(), 1);
    s.form.reset();
    EXPECT_EQ(s.form.list()->count(), 1);
}

TEST(SystemMonitoringPreferencesPage, HoldsTheFormUnderItsTitleAndSaysHowToReachTheDashboard) {
    FakeDefaults defaults;
    LoggingManager log{[] { return false; }};
    UserPreferences prefs{defaults, log};
    SystemMonitoringPreferencesPage page(prefs);
    QStringList texts;
    for (auto* label : page.findChildren<QLabel*>())
        texts << label->text();
    EXPECT_TRUE(texts.contains("<b>Menubar system monitoring widgets</b>")) << texts.join("|").toStdString();
    EXPECT_TRUE(texts.contains("Click the gauges from the menubar to open the full dashboard."));
    EXPECT_TRUE(page.form());
}
