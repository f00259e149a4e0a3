#include "ui/GeneralPreferencesPage.h"
#include "app/LoggingManager.h"
#include "app/UserPreferences.h"
#include "platform/fake/FakePlatform.h"

#include <QCheckBox>
#include <QLabel>
#include <gtest/gtest.h>

using namespace velmora;

namespace {

struct PageSetup {
    FakePlatform fake;
    LoggingManager log{[] { return false; }};
    UserPreferences prefs{*fake.defaults, log};
    FakeLoginItem& item = *fake.loginItem;
    std::unique_ptr<GeneralPreferencesPage> page;

    void open() { page = std::make_unique<GeneralPreferencesPage>(prefs, item); }
    QCheckBox* launch() const { return page->findChild<QCheckBox*>("launchOnStart"); }
    QLabel* problem() const { return page->findChild<QLabel*>("launchOnStartProblem"); }
    bool problemShown() const { return problem()->isVisibleTo(page.get()) && !problem()->text().isEmpty(); }
};

} // namespace

TEST(GeneralPreferencesPage, LaunchAtLoginShowsWhatRunsAtLoginNotJustTheStoredFlag) {
    PageSetup s;
    s.item.enabled = true;
    s.open();
    EXPECT_EQ(s.launch()->text(), "Launch at login");
    EXPECT_TRUE(s.launch()->isChecked());
    EXPECT_TRUE(s.prefs.local.launchOnStart());

    // Removed behind the page's back (the session's settings): shown as off when the page is shown again.
    s.item.enabled = false;
    s.page->show();
    EXPECT_FALSE(s.launch()->isChecked());
    EXPECT_FALSE(s.prefs.local.launchOnStart());
    EXPECT_EQ(s.item.requests, 0);
}

TEST(GeneralPreferencesPage, TheSwitchTurnsTheLoginItemOnAndOffAndStoresTheResult) {
    PageSetup s;
    s.open();
    ASSERT_FALSE(s.launch()->isChecked());

    s.launch()->click();
    EXPECT_TRUE(s.item.enabled);
    EXPECT_TRUE(s.launch()->isChecked());
    EXPECT_TRUE(s.prefs.local.launchOnStart());
    EXPECT_FALSE(s.problemShown());

    s.launch()->click();
    EXPECT_FALSE(s.item.enabled);
    EXPECT_FALSE(s.launch()->isChecked());
    EXPECT_FALSE(s.prefs.local.launchOnStart());
    EXPECT_EQ(s.item.requests, 2);
}

TEST(GeneralPreferencesPage, ARefusedChangeSpringsBackAndSaysWhyUntilARequestSucceeds) {
    PageSetup s;
    s.item.failing = true;
    s.open();

    s.launch()->click();
    EXPECT_EQ(s.item.requests, 1);
    EXPECT_FALSE(s.launch()->isChecked());
    EXPECT_FALSE(s.prefs.local.launchOnStart());
    ASSERT_TRUE(s.problemShown());
    EXPECT_EQ(s.problem()->text(),
              "Launch at login could not be turned on: the autostart folder is read-only.");

    s.item.failing = false;
    s.launch()->click();
    EXPECT_TRUE(s.launch()->isChecked());
    EXPECT_TRUE(s.prefs.local.launchOnStart());
    EXPECT_FALSE(s.problemShown());

    // Turning off can be refused too: the switch stays on.
    s.item.failing = true;
    s.launch()->click();
    EXPECT_TRUE(s.launch()->isChecked());
    EXPECT_TRUE(s.item.enabled);
    EXPECT_TRUE(s.prefs.local.launchOnStart());
    EXPECT_TRUE(s.problem()->text().startsWith("Launch at login could not be turned off"));
}

TEST(GeneralPreferencesPage, TheUpdateSwitchFollowsTheRecordWhereverItChanges) {
    PageSetup p;
    p.open();
    auto* box = p.page->findChild<QCheckBox*>("autoUpdate");
    ASSERT_TRUE(box);
    EXPECT_TRUE(box->isChecked());
    box->setChecked(false);
    EXPECT_FALSE(p.prefs.basic.value().autoUpdate);
    BasicPreferences record;
    record.autoUpdate = true;
    p.prefs.basic.setValue(record); // from elsewhere: sync, the command line
    EXPECT_TRUE(box->isChecked());
}
