#include "platform/linux/SystemdSleepSettings.h"

#include "platform/fake/FakeCommands.h"
#include "platform/fake/FakeSleepInhibitor.h"
#include "power/PowerManagementModel.h"

#include <gtest/gtest.h>

using namespace velmora;

TEST(SystemdSleepSettings, OnlyAMaskedSleepTargetMeansSleepIsDisabled) {
    EXPECT_TRUE(SystemdSleepSettings::sleepTargetMasked("masked\n"));
    EXPECT_TRUE(SystemdSleepSettings::sleepTargetMasked("  masked  "));
    // Masked until the next boot still keeps the computer awake now.
    EXPECT_TRUE(SystemdSleepSettings::sleepTargetMasked("masked-runtime\n"));
    EXPECT_TRUE(SystemdSleepSettings::sleepTargetMasked("\nmasked\n"));
    EXPECT_FALSE(SystemdSleepSettings::sleepTargetMasked("static\n"));
    EXPECT_FALSE(SystemdSleepSettings::sleepTargetMasked("enabled\n"));
    EXPECT_FALSE(SystemdSleepSettings::sleepTargetMasked(""));
    EXPECT_FALSE(SystemdSleepSettings::sleepTargetMasked("unmasked\n"));
    EXPECT_FALSE(SystemdSleepSettings::sleepTargetMasked(
        "Failed to get unit file state for sleep.target: No such file or directory\n"));
}

TEST(SystemdSleepSettings, AsksSystemctlAndReadsItsAnswerWhateverTheExitStatus) {
    FakeCommands commands;
    SystemdSleepSettings settings(commands);
    // systemctl says "masked" with exit status 1.
    commands.results["systemctl"] = {true, 1, "masked\n", {}};
    std::optional<bool> disabled;
    settings.isSleepDisabled([&](bool d) { disabled = d; });
    ASSERT_EQ(commands.calls.size(), 1u);
    EXPECT_EQ(commands.calls[0].program, "systemctl");
    EXPECT_EQ(commands.calls[0].arguments, QStringList({"is-enabled", "sleep.target"}));
    EXPECT_EQ(disabled, true);

    // No systemctl at all: sleep is not disabled.
    commands.results.clear();
    settings.isSleepDisabled([&](bool d) { disabled = d; });
    EXPECT_EQ(disabled, false);
}

TEST(SystemdSleepSettings, ChangesGoThroughPkexecAndSayWhyTheyFailed) {
    FakeCommands commands;
    SystemdSleepSettings settings(commands);
    auto change = [&](bool disable) {
        std::optional<QString> error;
        settings.setSleepDisabled(disable, [&](const QString& e) { error = e; });
        return error.value_or("no answer");
    };
    commands.results["pkexec"] = {true, 0, {}, {}};
    EXPECT_EQ(change(true), "");
    EXPECT_EQ(commands.calls.back().program, "pkexec");
    EXPECT_EQ(commands.calls.back().arguments,
              QStringList({"systemctl", "mask", "sleep.target", "suspend.target", "hibernate.target",
                           "hybrid-sleep.target"}));
    EXPECT_EQ(change(false), "");
    EXPECT_EQ(commands.calls.back().arguments.mid(0, 3),
              QStringList({"systemctl", "unmask", "sleep.target"}));

    commands.results["pkexec"] = {
        true, 126, {}, "Error executing command as another user: Request dismissed\n"};
    EXPECT_EQ(change(true),
              "Failed to execute systemctl command: the administrator prompt was cancelled: Error "
              "executing command as another user: Request dismissed");
    commands.results["pkexec"] = {true, 127, {}, {}};
    EXPECT_EQ(change(true), "Failed to execute systemctl command: not authorised (no authentication agent is "
                            "running, or the password was refused)");
    commands.results["pkexec"] = {true, 1, {}, "Failed to mask unit: Access denied\n"};
    EXPECT_EQ(change(true),
              "Failed to execute systemctl command: exited with 1: Failed to mask unit: Access denied");
    commands.results.remove("pkexec");
    EXPECT_TRUE(
        change(true).startsWith("Failed to execute pkexec systemctl command: pkexec could not be started"));
}

// The whole persistent path over the command runner: the prompt is cancelled, systemctl still says
// "static", and the switch reads back off.
TEST(SystemdSleepSettings, ACancelledPromptTurnsTheSwitchBackOff) {
    FakeCommands commands;
    commands.results["systemctl"] = {true, 0, "static\n", {}};
    commands.results["pkexec"] = {true, 126, {}, {}};
    SystemdSleepSettings settings(commands);
    FakeSleepInhibitor inhibitor;
    PowerManagementModel model(inhibitor, settings);
    model.startUp();
    ASSERT_TRUE(model.setUsePMSet(true));
    ASSERT_TRUE(model.setPreventSleep(true));
    EXPECT_FALSE(model.preventSleep());
    EXPECT_TRUE(model.usePMSet());
    EXPECT_TRUE(model.lastError().contains("cancelled"));
    EXPECT_FALSE(inhibitor.held);
}
