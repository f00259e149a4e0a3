#include "sync/SyncModule.h"
#include "../agent/FakeAgent.h"

#include <QScopeGuard>
#include <QTest>
#include <gtest/gtest.h>

using namespace velmora;

namespace {

struct SyncingAgent : FakeAgent {
    FakeCloudDatabase& cloud() { return *fake.cloudDatabase; }
    SyncModule& sync() { return *app.module<SyncModule>(); }
    ControlReply ask(const QStringList& args) {
        std::optional<ControlReply> answer;
        commands.handle(args, [&](ControlReply r) { answer = std::move(r); });
        return answer.value_or(ControlReply::failure("no answer"));
    }
    ControlReply setUp(const QString& password = "app-secret") {
        return ask(
            {"sync", "setup", "https://dav.example.org/files/ann/", "--user", "ann", "--password", password});
    }
    void setSpacing(double spacing) {
        auto record = app.preferences()->windowManager.value();
        record.spacing = spacing;
        ASSERT_TRUE(app.preferences()->windowManager.setValue(record));
    }
};

} // namespace

TEST(SyncModule, ACheckIntervalThatIsNoNumberOfSecondsIsReportedAndTheMinuteKept) {
    EXPECT_EQ(SyncModule::checkSecondsFrom(""), SyncModule::kCheckSeconds);
    EXPECT_EQ(SyncModule::checkSecondsFrom(" 2 "), 2);
    for (const char* bad : {"abc", "0", "-5", "1.5"})
        EXPECT_EQ(SyncModule::checkSecondsFrom(bad), SyncModule::kCheckSeconds) << bad;
}

TEST(SyncModule, WithoutAnAccountNothingIsSentAnywhere) {
    SyncingAgent agent;
    agent.setSpacing(2);
    QTest::qWait(PreferencesMirror::kSettleMs + 100);
    EXPECT_EQ(agent.cloud().fetches + agent.cloud().saves + agent.cloud().lists, 0);
    EXPECT_FALSE(agent.cloud().hasAccount());
    const ControlReply status = agent.ask({"sync", "status"});
    EXPECT_EQ(status.result["status"], "off");
    EXPECT_EQ(status.result["server"], nullptr);
    EXPECT_FALSE(agent.ask({"sync", "now"}).ok);
    const QStringList steps = agent.app.startupSteps();
    EXPECT_EQ(steps.indexOf("cloudMirroring"), steps.indexOf("statusItems") + 1);
}

TEST(SyncModule, SetUpKeepsThePasswordInTheSecretStoreAndMirrorsEveryRecord) {
    SyncingAgent agent;
    const ControlReply reply = agent.setUp();
    ASSERT_TRUE(reply.ok) << reply.error.toStdString();
    EXPECT_EQ(reply.result["status"], "ok");
    EXPECT_EQ(reply.result["warning"], nullptr);
    EXPECT_EQ(agent.cloud().records.size(), 6);
    EXPECT_EQ(agent.fake.secretStore->secrets.values(), QStringList{"app-secret"});
    EXPECT_EQ(agent.cloud().account->password, "app-secret");
    EXPECT_TRUE(agent.sync().lastSyncTime());
    EXPECT_EQ(agent.fake.defaults->value("SyncServerAddress")->toString(),
              "https://dav.example.org/files/ann/");
    for (const auto* record : agent.app.preferences()->records())
        EXPECT_FALSE(agent.fake.defaults->value(record->key())->toString().contains("app-secret"));
}

TEST(SyncModule, AWrongPasswordOrABadAddressKeepsNothing) {
    SyncingAgent agent;
    ControlReply reply = agent.setUp("wrong");
    EXPECT_FALSE(reply.ok);
    EXPECT_EQ(reply.error, "sync was not set up: " + FakeCloudDatabase::refused());
    EXPECT_FALSE(agent.fake.defaults->value("SyncServerAddress"));
    EXPECT_TRUE(agent.fake.secretStore->secrets.isEmpty());
    EXPECT_TRUE(agent.cloud().records.isEmpty());

    reply = agent.ask({"sync", "setup", "ftp://dav.example.org/", "--user", "ann", "--password", "x"});
    EXPECT_EQ(reply.error, "sync was not set up: ftp://dav.example.org/ is not an http or https address");
    EXPECT_FALSE(agent.ask({"sync", "setup", "https://dav.example.org/", "--password", "x"}).ok);
}

TEST(SyncModule, ChangesHereArePushedOnceTheySettleAndChangesElsewhereArriveOnTheNextLook) {
    SyncingAgent agent;
    ASSERT_TRUE(agent.setUp().ok);
    const int saves = agent.cloud().saves;
    agent.setSpacing(1);
    agent.setSpacing(2);
    agent.setSpacing(3);
    EXPECT_EQ(agent.cloud().saves, saves) << "not before the change settles";
    QTest::qWait(PreferencesMirror::kSettleMs + 200);
    EXPECT_EQ(agent.cloud().saves, saves + 1);
    EXPECT_TRUE(
        agent.app.preferences()->windowManager.holds(agent.cloud().records["WindowManagerPreferences"].data));

    // Another machine sets a retention; the periodic look finds the new version and adopts it.
    ClipboardPreferences clipboard;
    clipboard.retention = 250;
    agent.cloud().serverNow = QDateTime::currentSecsSinceEpoch() + 5;
    agent.cloud().put("ClipboardPreferences", encodeRecord(clipboard));
    agent.cloud().put("SomeFutureRecord", R"({"x": 1})");
    const int fetches = agent.cloud().fetches;
    agent.sync().mirror()->lookForChanges();
    EXPECT_EQ(agent.app.preferences()->clipboard.value().retention, 250);
    EXPECT_EQ(agent.cloud().fetches, fetches + 1) << "only the record that changed is read";
    EXPECT_EQ(agent.cloud().records["SomeFutureRecord"].data, R"({"x": 1})")
        << "unknown records are left alone";
    EXPECT_EQ(agent.ask({"sync", "status"}).result["status"], "ok");
}

TEST(SyncModule, AServerThatGoesAwayIsReportedAndTheChangeArrivesWhenItReturns) {
    SyncingAgent agent;
    ASSERT_TRUE(agent.setUp().ok);
    agent.cloud().failWith = "nothing answers at dav.example.org:443 (connection refused)";
    agent.setSpacing(6);
    QTest::qWait(PreferencesMirror::kSettleMs + 200);
    ControlReply status = agent.ask({"sync", "status"});
    EXPECT_EQ(status.result["status"], "error");
    EXPECT_EQ(status.result["error"], agent.cloud().failWith.toStdString());
    EXPECT_EQ(agent.app.preferences()->windowManager.value().spacing, 6);
    EXPECT_FALSE(agent.ask({"sync", "now"}).ok);

    agent.cloud().failWith.clear();
    agent.sync().mirror()->lookForChanges();
    EXPECT_TRUE(
        agent.app.preferences()->windowManager.holds(agent.cloud().records["WindowManagerPreferences"].data));
    EXPECT_EQ(agent.ask({"sync", "status"}).result["status"], "ok");
}

TEST(SyncModule, WithoutASecretStoreThePasswordComesFromTheEnvironmentOrLastsThisRun) {
    {
        SyncingAgent agent;
        agent.fake.secretStore->unavailable = true;
        const ControlReply reply = agent.setUp();
        ASSERT_TRUE(reply.ok);
        EXPECT_TRUE(QString::fromStdString(reply.result["warning"].get<std::string>())
                        .contains("VELMORA_SYNC_PASSWORD"));
    }

    // The next start, with the password in the environment.
    FakePlatform fake;
    fake.secretStore->unavailable = true;
    fake.defaults->setValue("WelcomeWindowSeen:V26", true);
    fake.defaults->setValue("SyncServerAddress", "https://dav.example.org/files/ann/");
    fake.defaults->setValue("SyncUserName", "ann");
    QProcessEnvironment environment;
    environment.insert("VELMORA_SYNC_PASSWORD", "from-env");
    AppDelegate app(fake.platform, environment);
    app.applicationDidFinishLaunching();
    auto stop = qScopeGuard([&] { app.applicationWillTerminate(); });
    ASSERT_TRUE(fake.cloudDatabase->account);
    EXPECT_EQ(fake.cloudDatabase->account->password, "from-env");
    EXPECT_EQ(app.module<SyncModule>()->statusName(), "ok");
}

TEST(SyncModule, ANewMachineAdoptsTheAccountsValuesAndOffForgetsTheAccount) {
    SyncingAgent agent;
    WindowManagerPreferences elsewhere;
    elsewhere.spacing = 4;
    agent.cloud().serverNow = QDateTime::currentSecsSinceEpoch() - 86400; // older than any change here
    agent.cloud().put("WindowManagerPreferences", encodeRecord(elsewhere));
    agent.setSpacing(1);
    ASSERT_TRUE(agent.setUp().ok);
    EXPECT_EQ(agent.app.preferences()->windowManager.value().spacing, 4);

    ASSERT_TRUE(agent.ask({"sync", "off"}).ok);
    EXPECT_FALSE(agent.cloud().hasAccount());
    EXPECT_TRUE(agent.fake.secretStore->secrets.isEmpty());
    EXPECT_FALSE(agent.fake.defaults->value("SyncServerAddress"));
    EXPECT_EQ(agent.app.preferences()->windowManager.value().spacing, 4) << "the values stay";
    EXPECT_TRUE(agent.app.preferences()->windowManager.cloudTag().isEmpty());
    const int saves = agent.cloud().saves;
    agent.setSpacing(5);
    QTest::qWait(PreferencesMirror::kSettleMs + 100);
    EXPECT_EQ(agent.cloud().saves, saves);
}
