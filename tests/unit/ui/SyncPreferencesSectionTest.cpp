#include "ui/sync/SyncPreferencesSection.h"
#include "../agent/FakeAgent.h"
#include "sync/SyncModule.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <gtest/gtest.h>

using namespace velmora;

namespace {

struct Section {
    FakeAgent agent;
    SyncPreferencesSection section{*agent.app.module<SyncModule>()};

    template <class W> W* find(const char* name) { return section.findChild<W*>(name); }
    void type(const QString& address, const QString& user, const QString& password) {
        find<QLineEdit>("syncAddress")->setText(address);
        find<QLineEdit>("syncUser")->setText(user);
        find<QLineEdit>("syncPassword")->setText(password);
    }
    QString status() { return find<QLabel>("syncStatus")->text(); }
    QString result() {
        return find<QLabel>("syncResult")->isHidden() ? QString() : find<QLabel>("syncResult")->text();
    }
};

} // namespace

TEST(SyncPreferencesSection, SyncNowSetsUpWhatWasTypedAndSaysHowItWent) {
    Section s;
    EXPECT_EQ(s.status(), "Sync is off: your settings stay on this computer.");
    EXPECT_FALSE(s.find<QPushButton>("syncOff")->isEnabled());

    s.type("https://dav.example.org/ann/", "ann", "wrong");
    s.find<QPushButton>("syncTest")->click();
    EXPECT_EQ(s.result(), "The connection does not work: the server refused the user name or app password.");
    s.find<QPushButton>("syncNow")->click();
    EXPECT_EQ(s.result(), "Sync was not set up: the server refused the user name or app password.");
    EXPECT_TRUE(s.agent.fake.cloudDatabase->records.isEmpty());

    s.type("https://dav.example.org/ann/", "ann", "right");
    s.find<QPushButton>("syncTest")->click();
    EXPECT_EQ(s.result(), "The connection works.");
    s.find<QPushButton>("syncNow")->click();
    EXPECT_EQ(s.status(), "Last synced just now · Up to date.");
    EXPECT_TRUE(s.find<QLineEdit>("syncPassword")->text().isEmpty()) << "not left on the screen";
    EXPECT_EQ(s.agent.fake.cloudDatabase->records.size(), 6);

    s.agent.fake.cloudDatabase->failWith = "the server answered 500 Internal Server Error";
    s.find<QPushButton>("syncNow")->click();
    EXPECT_EQ(s.status(),
              "Last synced just now · Sync failed: the server answered 500 Internal Server Error.");

    s.find<QPushButton>("syncOff")->click();
    EXPECT_EQ(s.status(), "Sync is off: your settings stay on this computer.");
}

TEST(SyncPreferencesSection, TheLastSyncReadsAsAUserSaysIt) {
    EXPECT_EQ(SyncPreferencesSection::lastSyncText(std::nullopt, 1000), "Not synced yet");
    EXPECT_EQ(SyncPreferencesSection::lastSyncText(990, 1000), "Last synced just now");
    EXPECT_EQ(SyncPreferencesSection::lastSyncText(1000 - 125, 1000), "Last synced 2 min ago");
    EXPECT_TRUE(SyncPreferencesSection::lastSyncText(1000, 1000 + 7200).startsWith("Last synced "));
}
