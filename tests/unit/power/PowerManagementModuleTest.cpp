#include "power/PowerManagementModule.h"
#include "../agent/FakeAgent.h"
#include "agent/ControlClient.h"

#include <gtest/gtest.h>

using namespace velmora;

namespace {

struct PoweredAgent {
    FakePlatform& fake() { return agent.fake; }
    // The fakes answer at once, so every answer is in by the time handle() returns.
    ControlReply ask(const QStringList& args) {
        std::optional<ControlReply> answer;
        agent.commands.handle(args, [&](ControlReply r) { answer = std::move(r); });
        return answer.value_or(ControlReply::failure("no answer"));
    }
    FakeAgent agent;
};

} // namespace

TEST(PowerManagementModule, StartsAfterTheSamplerAndAnswersItsStatus) {
    PoweredAgent powered;
    const QStringList steps = powered.agent.app.startupSteps();
    EXPECT_EQ(steps.indexOf("powerManagement"), steps.indexOf("systemMonitoring") + 1);
    const ControlReply status = powered.ask({"power", "status"});
    ASSERT_TRUE(status.ok) << status.error.toStdString();
    EXPECT_EQ(status.result.dump(),
              R"({"available":true,"initialized":true,"usePMSet":false,"preventSleep":false,)"
              R"("mode":"temporary","busy":false,"held":[],"lastError":""})");
}

TEST(PowerManagementModule, OnAndOffFromTheCommandLine) {
    PoweredAgent powered;
    ControlReply on = powered.ask({"power", "on"});
    ASSERT_TRUE(on.ok) << on.error.toStdString();
    EXPECT_EQ(on.result["preventSleep"], true);
    EXPECT_EQ(on.result["held"], Json::array({"fake"}));
    EXPECT_TRUE(powered.fake().sleepInhibitor->held);

    // Already on: --persistent hands over to the system setting.
    on = powered.ask({"power", "on", "--persistent"});
    ASSERT_TRUE(on.ok) << on.error.toStdString();
    EXPECT_EQ(on.result["mode"], "persistent");
    EXPECT_TRUE(powered.fake().sleepSettings->disabled);
    EXPECT_FALSE(powered.fake().sleepInhibitor->held);

    const ControlReply off = powered.ask({"power", "off"});
    ASSERT_TRUE(off.ok) << off.error.toStdString();
    EXPECT_EQ(off.result["preventSleep"], false);
    EXPECT_FALSE(powered.fake().sleepSettings->disabled);

    EXPECT_FALSE(powered.ask({"power", "on", "--forever"}).ok);
    EXPECT_FALSE(powered.ask({"power", "sideways"}).ok);
}

TEST(PowerManagementModule, ARefusalIsAFailedCommandAndTheStatusSaysWhy) {
    PoweredAgent powered;
    powered.fake().sleepSettings->refusal =
        "Failed to execute systemctl command: the administrator prompt was cancelled";
    const ControlReply on = powered.ask({"power", "on", "--persistent"});
    ASSERT_FALSE(on.ok);
    EXPECT_EQ(on.error.toStdString(), "sleep is not prevented: Failed to execute systemctl command: the "
                                      "administrator prompt was cancelled");
    const ControlReply status = powered.ask({"power", "status"});
    EXPECT_EQ(status.result["preventSleep"], false);
    EXPECT_EQ(status.result["mode"], "persistent");
}

TEST(PowerManagementModule, QuittingReleasesTheInhibitor) {
    PoweredAgent powered;
    ASSERT_TRUE(powered.ask({"power", "on"}).ok);
    powered.agent.app.applicationWillTerminate();
    EXPECT_FALSE(powered.fake().sleepInhibitor->held);
    EXPECT_TRUE(powered.fake().sleepSettings->changes.isEmpty());
}

// Turning the persistent mode on or off may wait for an administrator; the command line is told to
// wait minutes for power, and the usual few seconds for everything else.
TEST(PowerManagementModule, TheCommandLineWaitsLongForPowerOnly) {
    PoweredAgent powered;
    EXPECT_EQ(powered.ask({"timeout", "power"}).result, 180'000);
    EXPECT_EQ(powered.ask({"timeout", "status"}).result, ControlClient::kDefaultTimeoutMs);
    EXPECT_EQ(powered.ask({"timeout", "keyboard-cleaning"}).result, ControlClient::kDefaultTimeoutMs);
    EXPECT_EQ(powered.ask({"timeout", "nonsense"}).result, ControlClient::kDefaultTimeoutMs);
    EXPECT_FALSE(powered.ask({"timeout"}).ok);
    EXPECT_TRUE(ControlCommands::isAgentCommand("status"));
    EXPECT_TRUE(ControlCommands::isAgentCommand("prefs"));
    EXPECT_FALSE(ControlCommands::isAgentCommand("power"));
}
