#include "updates/UpdatesModule.h"
#include "../agent/FakeAgent.h"

#include <gtest/gtest.h>

using namespace velmora;

namespace {

const QString kDigest = QString(64, 'b');
const QByteArray kOffer =
    R"({"url": "https://dl.velmora.app/velmora-0.2.0.tar.gz", "sha256": ")" + kDigest.toLatin1() + R"("})";

struct UpdatingAgent {
    explicit UpdatingAgent(QProcessEnvironment environment = {})
        : app(fake.platform, std::move(environment)) {
        fake.defaults->setValue("WelcomeWindowSeen:V26", true);
        app.applicationDidFinishLaunching();
    }
    // The fake server answers at once, so every answer is in by the time handle() returns.
    ControlReply ask(const QStringList& args) {
        std::optional<ControlReply> answer;
        commands.handle(args, [&](ControlReply r) { answer = std::move(r); });
        return answer.value_or(ControlReply::failure("no answer"));
    }
    UpdatesModule& module() { return *app.module<UpdatesModule>(); }
    FakeUpdateChannel& server() { return *fake.updateChannel; }

    FakePlatform fake;
    AppDelegate app;
    ControlCommands commands{app};
};

} // namespace

TEST(UpdatesModule, StartsItsTenMinuteTimerRightAfterTheCloudMirroring) {
    UpdatingAgent agent;
    const QStringList steps = agent.app.startupSteps();
    EXPECT_EQ(steps.indexOf("updateCheckTimer"), steps.indexOf("cloudMirroring") + 1);
    EXPECT_TRUE(agent.module().timer().isActive());
    EXPECT_EQ(agent.module().timer().interval(), 600'000);
    EXPECT_TRUE(agent.server().requests.empty()) << "the first check waits for the first tick";
    agent.app.applicationWillTerminate();
    EXPECT_FALSE(agent.module().timer().isActive());
}

TEST(UpdatesModule, TheEnvironmentNamesTheServer) {
    QProcessEnvironment environment;
    environment.insert("VELMORA_UPDATE_URL", "http://127.0.0.1:8123/base/");
    UpdatingAgent agent(environment);
    agent.ask({"update", "check"});
    ASSERT_EQ(agent.server().requests.size(), 1u);
    EXPECT_TRUE(agent.server().requests[0].url.toString().startsWith(
        "http://127.0.0.1:8123/base/api/products/linux/"));
    EXPECT_EQ(agent.ask({"update", "status"}).result["server"], "http://127.0.0.1:8123/base");
}

TEST(UpdatesModule, CheckSaysWhatItFound) {
    UpdatingAgent agent;
    ControlReply reply = agent.ask({"update", "check"});
    ASSERT_TRUE(reply.ok) << reply.error.toStdString();
    EXPECT_EQ(reply.result.dump(), R"({"checked":true,"offered":false,"url":null,"error":null})");

    agent.server().response = {std::nullopt, "more than 5 redirects (a redirect loop?)"};
    reply = agent.ask({"update", "check"});
    EXPECT_EQ(
        reply.result.dump(),
        R"x({"checked":false,"offered":false,"url":null,"error":"more than 5 redirects (a redirect loop?)"})x");

    agent.server().response = {kOffer, {}};
    reply = agent.ask({"update", "check"});
    EXPECT_EQ(reply.result["offered"], true);
    EXPECT_EQ(reply.result["url"], "https://dl.velmora.app/velmora-0.2.0.tar.gz");
    EXPECT_TRUE(agent.server().handOvers.empty()) << "a check alone installs nothing";
    EXPECT_EQ(agent.ask({"update", "status"}).result["last"], reply.result);

    EXPECT_FALSE(agent.ask({"update", "check", "--now"}).ok);
    EXPECT_FALSE(agent.ask({"update", "later"}).ok);
}

TEST(UpdatesModule, AnOfferOnATickGoesToTheUpdater) {
    UpdatingAgent agent;
    agent.server().folder = "/opt/velmora";
    agent.server().response = {kOffer, {}};
    ASSERT_TRUE(agent.module().checker()->tick());
    ASSERT_EQ(agent.server().handOvers.size(), 1u);
    const UpdateHandOver& handOver = agent.server().handOvers[0];
    EXPECT_EQ(handOver.url, QUrl("https://dl.velmora.app/velmora-0.2.0.tar.gz"));
    EXPECT_EQ(handOver.sha256, kDigest);
    EXPECT_EQ(handOver.installationFolder, "/opt/velmora");
    EXPECT_EQ(agent.ask({"update", "status"}).result["handedOver"], true);
}

TEST(UpdatesModule, AnInstallationOfThePackagesIsNotReplaced) {
    UpdatingAgent agent;
    agent.server().response = {kOffer, {}};
    ASSERT_TRUE(agent.module().checker()->tick());
    EXPECT_TRUE(agent.server().handOvers.empty());
    const ControlReply status = agent.ask({"update", "status"});
    EXPECT_EQ(status.result["handedOver"], false);
    EXPECT_TRUE(status.result["installError"].get<QString>().contains("not an installation of its own"));

    const ControlReply reply = agent.ask({"update", "check", "--install"});
    EXPECT_EQ(reply.result["handedOver"], false);
    EXPECT_TRUE(reply.result["installError"].is_string());
}

TEST(UpdatesModule, InstallHandsOverOnceAndSaysWhenTheUpdaterCannotStart) {
    UpdatingAgent agent;
    agent.server().folder = "/opt/velmora";
    agent.server().response = {kOffer, {}};
    agent.server().refuseHandOver = true;
    ControlReply reply = agent.ask({"update", "check", "--install"});
    EXPECT_EQ(reply.result["handedOver"], false);
    EXPECT_EQ(reply.result["installError"], "the updater is missing");

    agent.server().refuseHandOver = false;
    reply = agent.ask({"update", "check", "--install"});
    EXPECT_EQ(reply.result["handedOver"], true);
    EXPECT_EQ(reply.result["installError"], nullptr);
    EXPECT_EQ(agent.server().handOvers.size(), 1u);
}

TEST(UpdatesModule, WithoutAnUpdateChannelNothingIsChecked) {
    FakePlatform fake;
    fake.platform.updateChannel.reset();
    fake.defaults->setValue("WelcomeWindowSeen:V26", true);
    AppDelegate app(fake.platform, QProcessEnvironment());
    app.applicationDidFinishLaunching();
    ControlCommands commands(app);
    std::optional<ControlReply> reply;
    commands.handle({"update", "check"}, [&](ControlReply r) { reply = std::move(r); });
    ASSERT_TRUE(reply);
    EXPECT_FALSE(reply->ok);
    commands.handle({"update", "status"}, [&](ControlReply r) { reply = std::move(r); });
    EXPECT_EQ(reply->result.dump(), R"({"available":false})");
}
