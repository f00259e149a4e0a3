#include "power/PowerManagementModel.h"

#include "platform/fake/FakeSleepInhibitor.h"
#include "platform/fake/FakeSleepSettings.h"

#include <gtest/gtest.h>

using namespace velmora;

namespace {

// The model over an inhibitor and a sleep setting in memory, started as the agent starts it.
struct Power {
    explicit Power(bool sleepDisabledAtStart = false) {
        settings.disabled = sleepDisabledAtStart;
        model.startUp();
    }
    // The published values and what the system really does, in one line for a readable failure.
    std::string state() const {
        return QString("usePMSet=%1 preventSleep=%2 | disabled=%3 held=%4")
            .arg(model.usePMSet())
            .arg(model.preventSleep())
            .arg(settings.disabled)
            .arg(inhibitor.held)
            .toStdString();
    }
    void turnOn(bool persistent) {
        ASSERT_TRUE(model.setUsePMSet(persistent));
        ASSERT_TRUE(model.setPreventSleep(true));
    }
    bool tornDown() {
        bool done = false;
        model.tearDown([&] { done = true; });
        return done;
    }

    FakeSleepInhibitor inhibitor;
    FakeSleepSettings settings;
    PowerManagementModel model{inhibitor, settings};
};

} // namespace

TEST(PowerManagementModel, StartUpTakesTheSystemSettingAsModeAndSwitch) {
    Power awake(false);
    EXPECT_TRUE(awake.model.initialized());
    EXPECT_EQ(awake.state(), "usePMSet=0 preventSleep=0 | disabled=0 held=0");
    EXPECT_TRUE(awake.settings.changes.isEmpty());

    // Sleep disabled before the agent started: the persistent mode is on, and nothing is changed.
    Power disabled(true);
    EXPECT_TRUE(disabled.model.initialized());
    EXPECT_FALSE(disabled.model.busy());
    EXPECT_EQ(disabled.state(), "usePMSet=1 preventSleep=1 | disabled=1 held=0");
    EXPECT_TRUE(disabled.settings.changes.isEmpty());
    EXPECT_EQ(disabled.inhibitor.holds, 0);
}

TEST(PowerManagementModel, NoChangeIsTakenBeforeTheSettingIsRead) {
    FakeSleepInhibitor inhibitor;
    FakeSleepSettings settings;
    PowerManagementModel model(inhibitor, settings);
    EXPECT_FALSE(model.setPreventSleep(true));
    EXPECT_FALSE(model.setUsePMSet(true));
    EXPECT_FALSE(model.preventSleep());
    EXPECT_FALSE(model.usePMSet());
    EXPECT_EQ(inhibitor.holds, 0);
}

TEST(PowerManagementModel, TemporaryModeHoldsTheInhibitorOnlyWhileOn) {
    Power power;
    power.turnOn(false);
    EXPECT_EQ(power.state(), "usePMSet=0 preventSleep=1 | disabled=0 held=1");
    EXPECT_EQ(power.inhibitor.reasons, QStringList{PowerManagementModel::kReason});
    ASSERT_TRUE(power.model.setPreventSleep(false));
    EXPECT_EQ(power.state(), "usePMSet=0 preventSleep=0 | disabled=0 held=0");
    // The system setting is only read, never changed, in this mode.
    EXPECT_TRUE(power.settings.changes.isEmpty());
}

TEST(PowerManagementModel, WithoutALoginManagerTheSwitchReadsBackOff) {
    Power power;
    power.inhibitor.refusal = "no login manager (org.freedesktop.login1) on the system bus";
    power.turnOn(false);
    EXPECT_EQ(power.state(), "usePMSet=0 preventSleep=0 | disabled=0 held=0");
    EXPECT_EQ(
        power.model.lastError(),
        "Failed to keep the computer awake: no login manager (org.freedesktop.login1) on the system bus");
    EXPECT_FALSE(power.model.busy());
}

TEST(PowerManagementModel, PersistentModeChangesTheSystemSettingAndReadsItBack) {
    Power power;
    power.turnOn(true);
    EXPECT_EQ(power.state(), "usePMSet=1 preventSleep=1 | disabled=1 held=0");
    EXPECT_EQ(power.settings.changes, QStringList{"disable"});
    ASSERT_TRUE(power.model.setPreventSleep(false));
    EXPECT_EQ(power.state(), "usePMSet=1 preventSleep=0 | disabled=0 held=0");
    EXPECT_EQ(power.settings.changes, QStringList({"disable", "enable"}));
    EXPECT_TRUE(power.model.lastError().isEmpty());
}

TEST(PowerManagementModel, ACancelledPromptLeavesTheSwitchShowingTheRealState) {
    Power power;
    power.settings.refusal = "Failed to execute systemctl command: the administrator prompt was cancelled";
    power.turnOn(true);
    EXPECT_EQ(power.state(), "usePMSet=1 preventSleep=0 | disabled=0 held=0");
    EXPECT_EQ(power.model.lastError(), power.settings.refusal);

    // Allowed once, then the prompt to allow sleep again is cancelled: sleep stays prevented.
    power.settings.refusal.clear();
    ASSERT_TRUE(power.model.setPreventSleep(true));
    power.settings.refusal = "Failed to execute systemctl command: the administrator prompt was cancelled";
    ASSERT_TRUE(power.model.setPreventSleep(false));
    EXPECT_EQ(power.state(), "usePMSet=1 preventSleep=1 | disabled=1 held=0");
}

TEST(PowerManagementModel, ChangingTheModeWhileOnHandsOverBetweenTheMechanisms) {
    Power power;
    power.turnOn(false);
    ASSERT_TRUE(power.model.setUsePMSet(true));
    EXPECT_EQ(power.state(), "usePMSet=1 preventSleep=1 | disabled=1 held=0");
    EXPECT_TRUE(power.model.initialized());
    ASSERT_TRUE(power.model.setUsePMSet(false));
    EXPECT_EQ(power.state(), "usePMSet=0 preventSleep=1 | disabled=0 held=1");
    EXPECT_EQ(power.settings.changes, QStringList({"disable", "enable"}));
    EXPECT_TRUE(power.model.initialized());
}

TEST(PowerManagementModel, AModeChangeTheSystemRefusesShowsWhatStillHolds) {
    // To the persistent mode, refused: the inhibitor is gone with the old mode, so sleep is allowed.
    Power toPersistent;
    toPersistent.turnOn(false);
    toPersistent.settings.refusal = "cancelled";
    ASSERT_TRUE(toPersistent.model.setUsePMSet(true));
    EXPECT_EQ(toPersistent.state(), "usePMSet=1 preventSleep=0 | disabled=0 held=0");

    // To the temporary mode, refused: the system setting still keeps the computer awake, and that
    // is the mode shown, so that turning it off later restores sleep.
    Power toTemporary;
    toTemporary.turnOn(true);
    toTemporary.settings.refusal = "cancelled";
    ASSERT_TRUE(toTemporary.model.setUsePMSet(false));
    EXPECT_EQ(toTemporary.state(), "usePMSet=1 preventSleep=1 | disabled=1 held=0");
    toTemporary.settings.refusal.clear();
    ASSERT_TRUE(toTemporary.model.setPreventSleep(false));
    EXPECT_EQ(toTemporary.state(), "usePMSet=1 preventSleep=0 | disabled=0 held=0");
}

TEST(PowerManagementModel, ChangingTheModeWhileOffOnlyChoosesTheNextMechanism) {
    Power power;
    ASSERT_TRUE(power.model.setUsePMSet(true));
    EXPECT_EQ(power.state(), "usePMSet=1 preventSleep=0 | disabled=0 held=0");
    EXPECT_TRUE(power.settings.changes.isEmpty());
    EXPECT_EQ(power.inhibitor.holds, 0);
}

TEST(PowerManagementModel, QuittingGivesBackWhatEachModeHolds) {
    Power temporary;
    temporary.turnOn(false);
    EXPECT_TRUE(temporary.tornDown());
    EXPECT_FALSE(temporary.inhibitor.held);
    EXPECT_TRUE(temporary.settings.changes.isEmpty());

    Power persistent;
    persistent.turnOn(true);
    EXPECT_TRUE(persistent.tornDown());
    EXPECT_EQ(persistent.settings.changes, QStringList({"disable", "enable"}));
    EXPECT_FALSE(persistent.settings.disabled);

    // Found disabled at start (another session of Velmora): quitting restores sleep as well.
    Power found(true);
    EXPECT_TRUE(found.tornDown());
    EXPECT_EQ(found.settings.changes, QStringList{"enable"});

    // Off: nothing is asked, and no change is taken after quitting.
    Power off;
    EXPECT_TRUE(off.tornDown());
    EXPECT_TRUE(off.settings.changes.isEmpty());
    EXPECT_FALSE(off.model.setPreventSleep(true));
    EXPECT_EQ(off.inhibitor.holds, 0);
}

TEST(PowerManagementModel, AChangeWaitingForThePromptHoldsOffOthersAndTheQuit) {
    Power power;
    power.settings.deferred = true;
    bool answered = false;
    ASSERT_TRUE(power.model.setUsePMSet(true));
    ASSERT_TRUE(power.model.setPreventSleep(true, [&] { answered = true; }));
    EXPECT_TRUE(power.model.busy());
    EXPECT_FALSE(answered);
    // A second change while the prompt is open is refused and leaves the model as it was.
    EXPECT_FALSE(power.model.setPreventSleep(false));
    EXPECT_FALSE(power.model.setUsePMSet(false));
    EXPECT_TRUE(power.model.usePMSet());

    // Quitting meanwhile waits for the answer, then restores sleep.
    bool quit = false;
    power.model.tearDown([&] { quit = true; });
    EXPECT_FALSE(quit);
    power.settings.answer();
    EXPECT_TRUE(answered);
    EXPECT_TRUE(power.settings.disabled);
    EXPECT_EQ(power.settings.pending.size(), 1u);
    EXPECT_FALSE(quit);
    power.settings.answer();
    EXPECT_TRUE(quit);
    EXPECT_FALSE(power.settings.disabled);
    EXPECT_EQ(power.settings.changes, QStringList({"disable", "enable"}));
}
