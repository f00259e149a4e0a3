#include "app/UserDefaultsObservable.h"
#include "app/UserPreferences.h"
#include "platform/fake/FakeDefaults.h"

#include <QSignalSpy>
#include <gtest/gtest.h>

using namespace velmora;

namespace {

struct Store {
    FakeDefaults defaults;
    LoggingManager log{[] { return true; }};
};

} // namespace

TEST(UserPreferences, FreshUserGetsEveryDefaultAndAStableUserId) {
    Store s;
    UserPreferences prefs(s.defaults, s.log);
    EXPECT_TRUE(prefs.basic.value().autoUpdate);
    EXPECT_EQ(prefs.windowManager.value().areas.size(), 9u);
    EXPECT_EQ(prefs.clipboard.value().retention, 100);
    EXPECT_FALSE(prefs.keyboardBindings.value().openSystemMonitoringDashboard);
    EXPECT_EQ(prefs.theme.value().windowSwitcherWidth, 400);
    EXPECT_FALSE(prefs.menubarMainIcon.value());
    EXPECT_FALSE(prefs.basic.modificationDate());
    EXPECT_TRUE(s.log.entries().empty());

    const QString id = prefs.local.userId();
    EXPECT_EQ(id.size(), 36);
    UserPreferences again(s.defaults, s.log);
    EXPECT_EQ(again.local.userId(), id);
    EXPECT_FALSE(again.local.developerLogsEnabled());
    EXPECT_TRUE(again.local.windowManagerEnabled());
}

TEST(UserPreferences, WritesTheWholeRecordWithItsModificationDate) {
    Store s;
    UserPreferences prefs(s.defaults, s.log);
    auto record = prefs.windowManager.value();
    record.spacing = 1;
    prefs.windowManager.setValue(record);

    const auto stored = s.defaults.value("WindowManagerPreferences");
    ASSERT_TRUE(stored);
    EXPECT_EQ(decodeJson<WindowManagerPreferences>(stored->toString().toStdString()), record);
    const auto date = s.defaults.value("WindowManagerPreferences.modificationDate");
    ASSERT_TRUE(date);
    EXPECT_GT(date->toDouble(), 1.7e9); // seconds since 1970, not milliseconds
    EXPECT_LT(date->toDouble(), 1e10);

    UserPreferences reloaded(s.defaults, s.log);
    EXPECT_EQ(reloaded.windowManager.value(), record);
    EXPECT_EQ(reloaded.windowManager.modificationDate(), date->toDouble());
}

TEST(UserPreferences, UndecodableStoredDataKeepsTheDefaultAndLogsWhy) {
    Store s;
    s.defaults.setValue("BasicPreferences", R"({"autoUpdate": "yes"})");
    s.defaults.setValue("KeyboardBindings", "not json");
    UserPreferences prefs(s.defaults, s.log);
    EXPECT_TRUE(prefs.basic.value().autoUpdate);
    EXPECT_EQ(prefs.keyboardBindings.value(), KeyboardBindings{});
    ASSERT_EQ(s.log.entries().size(), 2u);
    EXPECT_TRUE(s.log.entries()[0].description.contains("BasicPreferences does not decode"));
    EXPECT_EQ(s.log.entries()[0].level, LogLevel::Error);
}

TEST(UserPreferences, RefusedAssignmentChangesNothing) {
    Store s;
    UserPreferences prefs(s.defaults, s.log);
    const int writes = s.defaults.writes();
    QSignalSpy changed(&prefs.clipboard, &CKValueObservableBase::valueChanged);
    QString error;
    EXPECT_FALSE(prefs.clipboard.assignData(R"({"retention": 12.5, "blacklistedAppURLs": []})", &error));
    EXPECT_FALSE(error.isEmpty());
    EXPECT_EQ(s.defaults.writes(), writes);
    EXPECT_EQ(changed.count(), 0);
    EXPECT_TRUE(prefs.clipboard.assignData(R"({"retention": 12, "blacklistedAppURLs": []})", &error));
    EXPECT_EQ(prefs.clipboard.value().retention, 12);
    EXPECT_EQ(changed.count(), 1);
}

TEST(UserPreferences, OutsideChangeOfTheEntryIsPublished) {
    Store s;
    UserPreferences prefs(s.defaults, s.log);
    QSignalSpy changed(&prefs.basic, &CKValueObservableBase::valueChanged);
    s.defaults.simulateOutsideChange("BasicPreferences", R"({"autoUpdate": false})");
    EXPECT_FALSE(prefs.basic.value().autoUpdate);
    EXPECT_EQ(changed.count(), 1);
    // A broken outside write leaves the value in force.
    s.defaults.simulateOutsideChange("BasicPreferences", R"({)");
    EXPECT_FALSE(prefs.basic.value().autoUpdate);
}

TEST(UserPreferences, MenubarIconIsOptionalRawData) {
    Store s;
    UserPreferences prefs(s.defaults, s.log);
    const QByteArray png("\x89PNG\r\n\x1a\n", 8);
    prefs.menubarMainIcon.setValue(png);
    UserPreferences reloaded(s.defaults, s.log);
    EXPECT_EQ(reloaded.menubarMainIcon.value(), png);
    reloaded.menubarMainIcon.setValue(std::nullopt);
    EXPECT_FALSE(s.defaults.value("MenubarMainIcon"));
}

TEST(UserDefaultsObservable, FollowsTheEntryBothWays) {
    FakeDefaults defaults;
    UserDefaultsObservable seen("WelcomeWindowSeen:V26", defaults, false);
    QSignalSpy changed(&seen, &UserDefaultsObservable::valueChanged);
    EXPECT_FALSE(seen.value().toBool());
    seen.setValue(true);
    EXPECT_EQ(defaults.value("WelcomeWindowSeen:V26"), QVariant(true));
    EXPECT_TRUE(seen.value().toBool());
    defaults.simulateOutsideChange("WelcomeWindowSeen:V26", false);
    EXPECT_FALSE(seen.value().toBool());
    EXPECT_EQ(changed.count(), 2);
}
