#include "updates/UpdateChecker.h"

#include "app/UserPreferences.h"
#include "platform/fake/FakeDefaults.h"
#include "platform/fake/FakeUpdateChannel.h"

#include <gtest/gtest.h>

using namespace velmora;

namespace {

constexpr double kLaunch = 1'700'000'000;
const QByteArray kOffer =
    R"({"url": "https://dl.velmora.app/velmora-0.2.0.tar.gz", "sha256": ")" + QByteArray(64, 'a') + R"("})";

// A fresh install (no check yet), a clock the test moves, and a server that answers at once.
struct Checking {
    FakeDefaults defaults;
    LoggingManager log{[] { return false; }};
    UserPreferences preferences{defaults, log};
    FakeUpdateChannel server;
    double now = kLaunch;
    UpdateChecker checker{
        server, preferences, "https://updates.velmora.app", {"6.1.0-18-amd64", "0.1.0", {}}, [this] {
            return now;
        }};
    std::vector<std::pair<UpdateCheckResult, bool>> finished;

    Checking() {
        QObject::connect(
            &checker, &UpdateChecker::checkFinished,
            [this](const UpdateCheckResult& r, bool fromTimer) { finished.emplace_back(r, fromTimer); });
    }
    // The timer ticks 600 s after the previous tick.
    bool tickAfter(double seconds) {
        now += seconds;
        return checker.tick();
    }
    void setAutoUpdate(bool on) {
        auto basic = preferences.basic.value();
        basic.autoUpdate = on;
        preferences.basic.setValue(basic);
    }
};

} // namespace

TEST(UpdateChecker, AFreshInstallChecksOnTheFirstTickAndRemembersWhen) {
    Checking c;
    EXPECT_EQ(c.preferences.local.autoUpdateLastCheckTime(), 0);
    EXPECT_TRUE(c.tickAfter(600));
    ASSERT_EQ(c.server.requests.size(), 1u);
    EXPECT_EQ(c.preferences.local.autoUpdateLastCheckTime(), kLaunch + 600);
    const UpdateRequest& request = c.server.requests.front();
    EXPECT_EQ(request.url.toString(QUrl::FullyEncoded),
              "https://updates.velmora.app/api/products/linux/6.1.0-18-amd64/vel-mora/0.1.0/" +
                  c.preferences.local.userId() + "/update?channel=stable");
    EXPECT_EQ(request.timeoutMs, 30'000);
    EXPECT_EQ(request.maxRedirects, 5);
    ASSERT_EQ(c.finished.size(), 1u);
    EXPECT_TRUE(c.finished[0].first.checked);
    EXPECT_FALSE(c.finished[0].first.offered());
    EXPECT_TRUE(c.finished[0].second);
}

TEST(UpdateChecker, ChecksAtMostOnceAnHour) {
    Checking c;
    ASSERT_TRUE(c.tickAfter(600));
    // Ticks 600 s apart: 600, 1200 ... 3000 s after the check do nothing; 3600 s after it checks.
    for (int tick = 1; tick < 6; ++tick)
        EXPECT_FALSE(c.tickAfter(600)) << tick;
    EXPECT_EQ(c.server.requests.size(), 1u);
    EXPECT_TRUE(c.tickAfter(600));
    EXPECT_EQ(c.server.requests.size(), 2u);
    EXPECT_EQ(c.preferences.local.autoUpdateLastCheckTime(), kLaunch + 4200);
}

TEST(UpdateChecker, ARecentCheckOfAnEarlierRunCounts) {
    Checking c;
    c.preferences.local.setAutoUpdateLastCheckTime(kLaunch - 3000);
    EXPECT_FALSE(c.tickAfter(599));
    EXPECT_TRUE(c.tickAfter(1));
}

TEST(UpdateChecker, ALastCheckInTheFutureDoesNotStopChecks) {
    Checking c;
    c.preferences.local.setAutoUpdateLastCheckTime(kLaunch + 10 * 365 * 86400.0);
    EXPECT_TRUE(c.tickAfter(600));
    EXPECT_EQ(c.preferences.local.autoUpdateLastCheckTime(), kLaunch + 600);
}

TEST(UpdateChecker, AutomaticUpdatesOffSendsNoRequest) {
    Checking c;
    c.setAutoUpdate(false);
    for (int tick = 0; tick < 12; ++tick)
        EXPECT_FALSE(c.tickAfter(600));
    EXPECT_TRUE(c.server.requests.empty());
    EXPECT_EQ(c.preferences.local.autoUpdateLastCheckTime(), 0);
    c.setAutoUpdate(true);
    EXPECT_TRUE(c.tickAfter(600));
}

TEST(UpdateChecker, AFailedCheckWaitsForTheNextEligibleTick) {
    Checking c;
    c.server.response = {std::nullopt, "the server answered 500 Internal Server Error"};
    ASSERT_TRUE(c.tickAfter(600));
    ASSERT_EQ(c.finished.size(), 1u);
    EXPECT_FALSE(c.finished[0].first.checked);
    EXPECT_EQ(c.finished[0].first.error, "the server answered 500 Internal Server Error");
    EXPECT_EQ(c.preferences.local.autoUpdateLastCheckTime(), kLaunch + 600);
    EXPECT_FALSE(c.tickAfter(600));
    c.server.response = {kOffer, {}};
    EXPECT_TRUE(c.tickAfter(3000));
    ASSERT_EQ(c.finished.size(), 2u);
    EXPECT_TRUE(c.finished[1].first.offered());
    EXPECT_EQ(c.finished[1].first.info.url, "https://dl.velmora.app/velmora-0.2.0.tar.gz");
}

TEST(UpdateChecker, AnUnreadableAnswerIsAFailedCheck) {
    Checking c;
    c.server.response = {QByteArray(R"({"url": "https://dl.velmora.app/b.tar.gz", "sha256": "abc"})"), {}};
    c.checker.check();
    ASSERT_TRUE(c.checker.lastResult());
    EXPECT_FALSE(c.checker.lastResult()->checked);
    EXPECT_FALSE(c.checker.lastResult()->offered());
    EXPECT_TRUE(c.checker.lastResult()->error.startsWith("unreadable answer: the update's \"sha256\" digest"))
        << c.checker.lastResult()->error.toStdString();
}

TEST(UpdateChecker, AnAskedForCheckIgnoresTheHourAndJoinsOneUnderWay) {
    Checking c;
    c.setAutoUpdate(false);
    c.preferences.local.setAutoUpdateLastCheckTime(kLaunch - 10);
    c.server.holdAnswers = true;
    c.server.response = {kOffer, {}};
    std::vector<UpdateCheckResult> answers;
    c.checker.check([&](const UpdateCheckResult& r) { answers.push_back(r); });
    c.checker.check([&](const UpdateCheckResult& r) { answers.push_back(r); });
    EXPECT_TRUE(c.checker.isChecking());
    c.setAutoUpdate(true);
    EXPECT_FALSE(c.tickAfter(7200)) << "a tick while a check is under way starts none";
    EXPECT_EQ(c.server.requests.size(), 1u);
    c.server.answer();
    ASSERT_EQ(answers.size(), 2u);
    EXPECT_TRUE(answers[0].offered() && answers[1].offered());
    EXPECT_EQ(answers[0].time, kLaunch);
    EXPECT_FALSE(c.checker.isChecking());
    ASSERT_EQ(c.finished.size(), 1u);
    EXPECT_FALSE(c.finished[0].second);
}
