// Settings that follow the user, as two machines see them: two agents, each on its own desktop with
// its own settings folder and its own secret store (GNOME Keyring on the desktop's session bus), share
// one WebDAV folder on an Apache server of the test's own. Agents look for changes every 2 s here.
#include "AgentUnderTest.h"
#include "DavServer.h"

#include <QFile>
#include <gtest/gtest.h>

namespace {

using Json = AgentUnderTest::Json;

constexpr auto kUser = "ann";
constexpr auto kPassword = "app-password-1";

// One machine: a desktop with a keyring, and Velmora on it.
struct Machine {
    VirtualDesktop desktop{VirtualDesktop::Options{.tray = false}};
    AgentUnderTest agent{desktop};
    bool keyring = false;

    Machine() {
        desktop.setVariable("VELMORA_SYNC_CHECK_SECONDS", "2");
        keyring = desktop.startKeyring();
        desktop.writeWelcomedSettings();
    }
    bool start() { return keyring && agent.start(); }
    VirtualDesktop::Output setUp(const DavServer& server, const QString& password = kPassword) {
        return desktop.run(VELMORA_BINARY, {"sync", "setup", server.address(), "--user", kUser}, 60000,
                           password.toUtf8() + "\n");
    }
    Json sync() const { return agent.json({"sync", "status"}).value_or(Json::object()); }
    Json windowManager() const {
        return agent.json({"prefs", "get", "WindowManagerPreferences"}).value_or(Json::object());
    }
    bool setWindowManager(const Json& record) const {
        const auto o = agent.command(
            {"prefs", "set", "WindowManagerPreferences", QString::fromStdString(record.dump())});
        if (o.exitCode != 0)
            ADD_FAILURE() << o.err.toStdString();
        return o.exitCode == 0;
    }
    QString firstZoneName() const {
        const Json record = windowManager();
        return record.contains("areas")
                   ? QString::fromStdString(record["areas"][0]["name"].get<std::string>())
                   : QString();
    }
    bool renameFirstZone(const QString& name) const {
        Json record = windowManager();
        record["areas"][0]["name"] = name.toStdString();
        return setWindowManager(record);
    }
};

// Two machines set up with one server.
struct TwoMachines {
    DavServer server{kUser, kPassword};
    Machine first, second;
    bool ready() {
        return server.isReady() && first.start() && second.start() && first.setUp(server).exitCode == 0 &&
               second.setUp(server).exitCode == 0;
    }
};

bool isOk(const Json& status) {
    return status.value("status", std::string()) == "ok";
}

} // namespace

TEST(Sync, AZoneRenamedOnOneMachineAppearsOnTheOther) {
    DavServer server(kUser, kPassword);
    ASSERT_TRUE(server.isReady()) << server.errorLog().toStdString();
    Machine first, second;
    ASSERT_TRUE(first.start() && second.start());

    const auto setUp = first.setUp(server);
    ASSERT_EQ(setUp.exitCode, 0) << setUp.err.toStdString();
    const Json status = Json::parse(setUp.out.toStdString());
    EXPECT_EQ(status["error"], nullptr) << status.dump() << server.errorLog().toStdString();
    EXPECT_NE(status["lastSyncTime"], nullptr);
    EXPECT_EQ(status["warning"], nullptr) << "the keyring keeps the password";
    EXPECT_FALSE(QString::fromUtf8(server.file("WindowManagerPreferences")).isEmpty());
    QFile settings(first.desktop.settingsFile());
    ASSERT_TRUE(settings.open(QIODevice::ReadOnly));
    EXPECT_FALSE(settings.readAll().contains(kPassword)) << "never in the settings file";

    ASSERT_TRUE(first.renameFirstZone("Left from the first machine"));
    ASSERT_TRUE(waitUntil([&] {
        return server.file("WindowManagerPreferences").contains("Left from the first");
    })) << "sent once the change settles";
    ASSERT_EQ(second.setUp(server).exitCode, 0);
    EXPECT_EQ(second.firstZoneName(), "Left from the first machine") << "a new machine adopts the cloud's";

    ASSERT_TRUE(second.renameFirstZone("Renamed on the second"));
    EXPECT_TRUE(waitUntil([&] { return first.firstZoneName() == "Renamed on the second"; }, 15000))
        << first.firstZoneName().toStdString();
    EXPECT_TRUE(waitUntil([&] { return isOk(first.sync()) && isOk(second.sync()); }));

    // The password came from the keyring after a restart.
    EXPECT_EQ(first.agent.quit(), 0);
    ASSERT_TRUE(first.agent.start());
    EXPECT_TRUE(waitUntil([&] { return isOk(first.sync()); })) << first.sync().dump();
}

TEST(Sync, EditsMadeAtTheSameTimeEndTheSameOnBothMachines) {
    TwoMachines both;
    ASSERT_TRUE(both.ready());
    DavServer& server = both.server;
    Machine &first = both.first, &second = both.second;

    for (int round = 0; round < 3; ++round) {
        Json a = first.windowManager(), b = second.windowManager();
        a["spacing"] = 1.0 + round * 0.5;
        b["spacing"] = 3.0 + round * 0.5;
        ASSERT_TRUE(first.setWindowManager(a)) << a.dump();
        ASSERT_TRUE(second.setWindowManager(b)) << b.dump();
        EXPECT_TRUE(waitUntil(
            [&] {
                return first.windowManager()["spacing"] == second.windowManager()["spacing"] &&
                       isOk(first.sync()) && isOk(second.sync());
            },
            20000))
            << first.windowManager()["spacing"] << " / " << second.windowManager()["spacing"];
        const double agreed = first.windowManager()["spacing"].get<double>();
        EXPECT_TRUE(agreed == 1.0 + round * 0.5 || agreed == 3.0 + round * 0.5) << agreed;
        const Json file = Json::parse(server.file("WindowManagerPreferences").toStdString(), nullptr, false);
        ASSERT_FALSE(file.is_discarded()) << "the server's record is whole";
        EXPECT_EQ(file["CD_jsonData"]["spacing"].get<double>(), agreed);
    }
}

TEST(Sync, AServerThatStopsIsReportedAndTheChangeArrivesOnceItIsBack) {
    TwoMachines both;
    ASSERT_TRUE(both.ready());
    DavServer& server = both.server;
    Machine &first = both.first, &second = both.second;

    server.stop();
    ASSERT_TRUE(first.renameFirstZone("Made while the server was away"));
    EXPECT_TRUE(waitUntil([&] { return first.sync().value("status", std::string()) == "error"; }));
    EXPECT_TRUE(
        QString::fromStdString(first.sync().value("error", std::string())).contains("connection refused"))
        << first.sync().dump();
    EXPECT_EQ(first.firstZoneName(), "Made while the server was away") << "kept here meanwhile";
    const auto now = first.agent.command({"sync", "now"});
    EXPECT_NE(now.exitCode, 0);
    EXPECT_TRUE(now.err.contains("not every setting was synchronised")) << now.err.toStdString();

    ASSERT_TRUE(server.start());
    EXPECT_TRUE(waitUntil([&] { return second.firstZoneName() == "Made while the server was away"; }, 20000));
    EXPECT_TRUE(waitUntil([&] { return isOk(first.sync()); }));
}

TEST(Sync, AWrongPasswordSetsNothingUpAndOffForgetsTheAccount) {
    DavServer server(kUser, kPassword);
    ASSERT_TRUE(server.isReady());
    Machine machine;
    ASSERT_TRUE(machine.start());

    const auto refused = machine.setUp(server, "not-the-password");
    EXPECT_NE(refused.exitCode, 0);
    EXPECT_TRUE(refused.err.contains("the server refused the user name or app password"))
        << refused.err.toStdString();
    EXPECT_EQ(machine.sync()["status"], "off");
    EXPECT_TRUE(server.file("BasicPreferences").isEmpty());

    const auto nothingOnStdin = machine.desktop.run(
        VELMORA_BINARY, {"sync", "setup", server.address(), "--user", kUser}, 10000, QByteArray());
    EXPECT_NE(nothingOnStdin.exitCode, 0);

    ASSERT_EQ(machine.setUp(server).exitCode, 0);
    ASSERT_EQ(machine.agent.command({"sync", "off"}).exitCode, 0);
    EXPECT_EQ(machine.sync()["status"], "off");
    EXPECT_EQ(machine.sync()["server"], nullptr);
}
