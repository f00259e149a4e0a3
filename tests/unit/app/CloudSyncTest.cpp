#include "app/UserPreferences.h"
#include "platform/fake/FakeCloudDatabase.h"
#include "platform/fake/FakeDefaults.h"

#include <QDateTime>
#include <gtest/gtest.h>

using namespace velmora;

// One machine's preferences against a cloud database in memory that answers at once.
namespace {

using Status = CKValueObservableBase::Status;

double now() {
    return QDateTime::currentMSecsSinceEpoch() / 1000.0;
}

struct Machine {
    FakeDefaults defaults;
    LoggingManager log{[] { return true; }};
    UserPreferences prefs{defaults, log};
    FakeCloudDatabase& cloud;

    explicit Machine(FakeCloudDatabase& c) : cloud(c) {}
    bool sync(CKValueObservableBase& record) {
        std::optional<bool> result;
        record.performSync(cloud, [&](bool ok) { result = ok; });
        EXPECT_TRUE(result) << "the fake answers at once";
        return result.value_or(false);
    }
    void setSpacing(double spacing) {
        auto record = prefs.windowManager.value();
        record.spacing = spacing;
        ASSERT_TRUE(prefs.windowManager.setValue(record));
    }
};

QByteArray spacingRecord(double spacing) {
    WindowManagerPreferences record;
    record.spacing = spacing;
    return encodeRecord(record);
}

} // namespace

TEST(CloudSync, FirstLaunchPushesTheDefaultAndRemembersTheCloudsVersion) {
    FakeCloudDatabase cloud;
    Machine machine(cloud);
    EXPECT_TRUE(machine.sync(machine.prefs.basic));
    ASSERT_TRUE(cloud.records.contains("BasicPreferences"));
    EXPECT_TRUE(machine.prefs.basic.holds(cloud.records["BasicPreferences"].data));
    EXPECT_EQ(machine.prefs.basic.cloudTag(), cloud.records["BasicPreferences"].tag);
    EXPECT_EQ(machine.prefs.basic.status(), Status::ok);

    // In step: a second sync reads and writes nothing new.
    EXPECT_TRUE(machine.sync(machine.prefs.basic));
    EXPECT_EQ(cloud.saves, 1);
}

TEST(CloudSync, AMachineThatNeverSyncedAdoptsTheCloudsValuesWhateverItsDates) {
    FakeCloudDatabase cloud;
    cloud.serverNow = now() - 3600; // written an hour ago elsewhere
    cloud.put("WindowManagerPreferences", spacingRecord(7));
    Machine machine(cloud);
    machine.setSpacing(3); // changed here just now, but never agreed with this account
    EXPECT_TRUE(machine.sync(machine.prefs.windowManager));
    EXPECT_EQ(machine.prefs.windowManager.value().spacing, 7);
    EXPECT_EQ(cloud.saves, 0);
    EXPECT_EQ(machine.defaults.value("WindowManagerPreferences.modificationDate")->toDouble(),
              std::floor(cloud.serverNow));
}

TEST(CloudSync, WhenBothSidesChangedTheLaterWinsOnTheServersClock) {
    FakeCloudDatabase cloud;
    Machine machine(cloud);
    ASSERT_TRUE(machine.sync(machine.prefs.windowManager)); // agreed once

    // Another machine wrote a minute ago; this one changes now: local wins, saved over the other's.
    cloud.serverNow = now() - 60;
    const QString othersTag = cloud.put("WindowManagerPreferences", spacingRecord(7)).tag;
    machine.setSpacing(3);
    EXPECT_TRUE(machine.sync(machine.prefs.windowManager));
    EXPECT_EQ(machine.prefs.windowManager.value().spacing, 3);
    EXPECT_TRUE(machine.prefs.windowManager.holds(cloud.records["WindowManagerPreferences"].data));
    EXPECT_NE(cloud.records["WindowManagerPreferences"].tag, othersTag);

    // This one changes, then another machine writes a minute later: the cloud's value wins and is
    // stored here with the cloud's date.
    machine.setSpacing(4);
    cloud.serverNow = now() + 60;
    cloud.put("WindowManagerPreferences", spacingRecord(9));
    EXPECT_TRUE(machine.sync(machine.prefs.windowManager));
    EXPECT_EQ(machine.prefs.windowManager.value().spacing, 9);
    EXPECT_EQ(machine.prefs.windowManager.modificationDate(), std::floor(cloud.serverNow));
}

TEST(CloudSync, TwoChangesHereInOneSecondOfTheServerAreBothPushed) {
    FakeCloudDatabase cloud;
    cloud.serverNow = std::ceil(now()) + 0.5; // the server's second is later than this one
    Machine machine(cloud);
    machine.setSpacing(1);
    ASSERT_TRUE(machine.sync(machine.prefs.windowManager));
    machine.setSpacing(2); // the cloud is as this machine left it: only this side moved
    ASSERT_TRUE(machine.sync(machine.prefs.windowManager));
    EXPECT_EQ(machine.prefs.windowManager.value().spacing, 2);
    EXPECT_TRUE(machine.prefs.windowManager.holds(cloud.records["WindowManagerPreferences"].data));
}

TEST(CloudSync, AClockAnHourAheadDoesNotWinEveryConflict) {
    FakeCloudDatabase cloud;
    Machine machine(cloud);
    ASSERT_TRUE(machine.sync(machine.prefs.windowManager));
    cloud.offset = -3600; // the server's clock is an hour behind this machine's
    machine.setSpacing(3);
    // Written elsewhere a minute after this change, by the server's clock.
    cloud.serverNow = now() - 3600 + 60;
    cloud.put("WindowManagerPreferences", spacingRecord(8));
    EXPECT_TRUE(machine.sync(machine.prefs.windowManager));
    EXPECT_EQ(machine.prefs.windowManager.value().spacing, 8);
    EXPECT_NEAR(*machine.prefs.windowManager.modificationDate(), std::floor(cloud.serverNow) + 3600, 1e-6)
        << "kept on this machine's clock";
}

TEST(CloudSync, ARecordThatDoesNotDecodeKeepsTheLocalValueAndLogsPerfomSync) {
    FakeCloudDatabase cloud;
    cloud.put("ClipboardPreferences", R"({"retention": "many"})");
    Machine machine(cloud);
    EXPECT_FALSE(machine.sync(machine.prefs.clipboard));
    EXPECT_EQ(machine.prefs.clipboard.value().retention, 100);
    EXPECT_EQ(machine.prefs.clipboard.status(), Status::error);
    EXPECT_EQ(cloud.saves, 0) << "a record this version cannot read is not overwritten";
    ASSERT_FALSE(machine.log.entries().empty());
    const Log& entry = machine.log.entries().back();
    EXPECT_EQ(entry.function, "perfomSync()");
    EXPECT_EQ(entry.line, 156);
    EXPECT_TRUE(entry.description.contains("does not decode")) << entry.description.toStdString();
}

TEST(CloudSync, AFailureKeepsTheValueAndTheNextSyncRecovers) {
    FakeCloudDatabase cloud;
    Machine machine(cloud);
    cloud.failWith = "nothing answers at 127.0.0.1:9 (connection refused)";
    machine.setSpacing(5);
    EXPECT_FALSE(machine.sync(machine.prefs.windowManager));
    EXPECT_EQ(machine.prefs.windowManager.status(), Status::error);
    EXPECT_EQ(machine.prefs.windowManager.lastSyncError(), cloud.failWith);
    EXPECT_EQ(machine.prefs.windowManager.value().spacing, 5);

    cloud.failWith.clear();
    EXPECT_TRUE(machine.sync(machine.prefs.windowManager));
    EXPECT_EQ(machine.prefs.windowManager.status(), Status::ok);
    EXPECT_TRUE(machine.prefs.windowManager.holds(cloud.records["WindowManagerPreferences"].data));
}

TEST(CloudSync, AnotherMachineSavingFirstIsNeverOverwrittenUnseen) {
    FakeCloudDatabase cloud;
    Machine machine(cloud);
    ASSERT_TRUE(machine.sync(machine.prefs.windowManager));
    machine.setSpacing(3);
    // Between this machine's look and its save, another machine writes, later than this change.
    cloud.beforeSave = [&] {
        cloud.serverNow = now() + 30;
        cloud.put("WindowManagerPreferences", spacingRecord(6));
    };
    cloud.serverNow = now() - 30;
    cloud.put("WindowManagerPreferences", spacingRecord(2)); // an older change elsewhere: local wins it
    EXPECT_TRUE(machine.sync(machine.prefs.windowManager));
    EXPECT_EQ(machine.prefs.windowManager.value().spacing, 6) << "the save was refused and the rule re-run";
    EXPECT_TRUE(machine.prefs.windowManager.holds(cloud.records["WindowManagerPreferences"].data));
}

TEST(CloudSync, AChangeDuringASyncIsSynchronisedToo) {
    FakeCloudDatabase cloud;
    Machine machine(cloud);
    cloud.holdAnswers = true;
    std::vector<bool> results;
    machine.prefs.windowManager.performSync(cloud, [&](bool ok) { results.push_back(ok); });
    machine.setSpacing(4);
    machine.prefs.windowManager.performSync(cloud, [&](bool ok) { results.push_back(ok); });
    EXPECT_TRUE(machine.prefs.windowManager.isSyncing());
    for (int i = 0; i < 10 && machine.prefs.windowManager.isSyncing(); ++i)
        cloud.answer();
    EXPECT_EQ(results, (std::vector<bool>{true, true}));
    EXPECT_TRUE(machine.prefs.windowManager.holds(cloud.records["WindowManagerPreferences"].data));
    EXPECT_EQ(machine.prefs.windowManager.value().spacing, 4);
}

TEST(CloudSync, TheIconsRawBytesAndItsAbsenceTravelAsTheyAre) {
    FakeCloudDatabase cloud;
    Machine first(cloud);
    const QByteArray png("\x89PNG\r\n\x1a\n\0\0\xff", 11);
    ASSERT_TRUE(first.prefs.menubarMainIcon.setValue(png));
    ASSERT_TRUE(first.sync(first.prefs.menubarMainIcon));
    Machine second(cloud);
    ASSERT_TRUE(second.sync(second.prefs.menubarMainIcon));
    EXPECT_EQ(second.prefs.menubarMainIcon.value(), std::optional<QByteArray>(png));
}
