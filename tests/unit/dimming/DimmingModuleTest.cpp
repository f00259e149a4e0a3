#include "dimming/DimmingModule.h"
#include "FakeDimmingOverlay.h"
#include "app/AppActionDispatcher.h"
#include "app/AppContext.h"
#include "app/EventTap.h"
#include "app/KeyboardShortcutModel.h"
#include "app/LoggingManager.h"
#include "app/UserPreferences.h"
#include "platform/fake/FakePlatform.h"

#include <QSignalSpy>
#include <QTest>
#include <gtest/gtest.h>

using namespace velmora;

namespace {

// The module over the in-memory desktop with windowless overlays: a 16:10 primary panel and a 16:9
// monitor to its right.
struct Dimming {
    FakePlatform fake;
    LoggingManager log{[] { return false; }};
    UserPreferences preferences{*fake.defaults, log};
    KeyboardShortcutModel shortcuts{[](const KeyboardShortcut&) { return std::optional<KeyboardBinding>(); },
                                    [](const KeyboardBinding&) {}};
    EventTap tap{*fake.platform.inputTap, shortcuts, log, [] { return qint64(0); }};
    AppActionDispatcher dispatcher{log};
    QStringList briefs;
    AppContext context{fake.platform,
                       preferences,
                       log,
                       shortcuts,
                       tap,
                       dispatcher,
                       [] { return qint64(0); },
                       [this](const QString& text) { briefs << text; }};
    FakeDimmingOverlay::Log overlayLog;
    DimmingModule module{context, FakeDimmingOverlay::factory(overlayLog)};
    int shippedCheckDelayMs = 0;

    Dimming() {
        fake.screens->all = {{"laptop", {0, 0, 1728, 1117}, {0, 0, 1728, 1092}, 1},
                             {"monitor", {1728, 0, 1920, 1080}, {1728, 0, 1920, 1080}, 1}};
        shippedCheckDelayMs = module.reconfigurationCheckDelayMs();
        module.setReconfigurationCheckDelayMs(kCheckDelayMs);
        module.start();
    }
    ~Dimming() { module.stop(); }

    void changeScreens(std::vector<ScreenInfo> screens) {
        fake.screens->all = std::move(screens);
        emit fake.screens->notifier().screensChanged();
    }
    std::size_t overlayCount() const { return module.overlays().overlays().size(); }
    // Lets the reconfiguration check's wait pass.
    static constexpr int kCheckDelayMs = 50;
    void settle() { QTest::qWait(kCheckDelayMs * 4); }
};

} // namespace

TEST(DimmingModule, OverlaysAreMadeAtStartAndFollowTheMonitors) {
    Dimming d;
    ASSERT_EQ(d.overlayCount(), 1u);
    EXPECT_EQ(d.module.overlays().overlays().begin()->first, "1728.0:0.0:1920.0:1080.0");
    d.module.model().setBrightnessFactor(0.5);
    EXPECT_TRUE(d.module.overlays().overlays().begin()->second->isShown());

    // The monitor moves below the panel: its overlay goes with it at once.
    d.changeScreens({{"laptop", {0, 0, 1728, 1117}, {0, 0, 1728, 1092}, 1},
                     {"monitor", {0, -1080, 1920, 1080}, {0, -1080, 1920, 1080}, 1}});
    ASSERT_EQ(d.overlayCount(), 1u);
    EXPECT_EQ(d.module.overlays().overlays().begin()->first, "0.0:-1080.0:1920.0:1080.0");
    EXPECT_EQ(d.overlayLog.frames.back(), (Rect{0, 1117, 1920, 1080}));
    // Unplugged: nothing left to dim.
    d.changeScreens({{"laptop", {0, 0, 1728, 1117}, {0, 0, 1728, 1092}, 1}});
    EXPECT_EQ(d.overlayCount(), 0u);
    EXPECT_EQ(d.overlayLog.dismissed, 2);
}

TEST(DimmingModule, ABurstOfChangesIsCheckedOnceAndClearsOverlaysOnlyAtFullBrightness) {
    Dimming d;
    EXPECT_EQ(d.shippedCheckDelayMs, 2000);
    d.module.model().setBrightnessFactor(0.5);
    for (int i = 0; i < 50; ++i)
        emit d.fake.screens->notifier().screensChanged();
    d.settle();
    EXPECT_EQ(d.module.reconfigurationChecks(), 1);
    EXPECT_EQ(d.overlayCount(), 1u); // dimmed: kept

    d.module.model().setBrightnessFactor(0.99);
    emit d.fake.screens->notifier().screensChanged();
    d.settle();
    EXPECT_EQ(d.module.reconfigurationChecks(), 2);
    EXPECT_EQ(d.overlayCount(), 1u);

    d.module.model().setBrightnessFactor(1.0);
    emit d.fake.screens->notifier().screensChanged();
    d.settle();
    EXPECT_EQ(d.module.reconfigurationChecks(), 3);
    EXPECT_EQ(d.overlayCount(), 0u);
    // Dimming again brings them back.
    d.module.model().setBrightnessFactor(0.7);
    EXPECT_EQ(d.overlayCount(), 1u);
}

TEST(DimmingModule, NoOverlayWithoutACompositorUntilOneStarts) {
    Dimming d;
    QSignalSpy compositing(&d.module, &DimmingModule::compositingChanged);
    d.fake.screens->compositing = false;
    emit d.fake.screens->notifier().compositingChanged();
    EXPECT_EQ(d.overlayCount(), 0u);
    ASSERT_EQ(compositing.count(), 1);
    EXPECT_FALSE(compositing.at(0).at(0).toBool());

    d.module.toggle();
    EXPECT_EQ(d.module.model().brightnessFactor(), 0.6); // the state changes; nothing is drawn
    EXPECT_EQ(d.overlayCount(), 0u);
    EXPECT_EQ(d.briefs.size(), 1);
    EXPECT_FALSE(d.module.status()["compositing"].get<bool>());

    d.fake.screens->compositing = true;
    emit d.fake.screens->notifier().compositingChanged();
    ASSERT_EQ(d.overlayCount(), 1u);
    EXPECT_TRUE(d.module.overlays().overlays().begin()->second->isShown());

    // The compositor goes away while dimming: the layer goes at once, it would be drawn black.
    d.fake.screens->compositing = false;
    emit d.fake.screens->notifier().compositingChanged();
    EXPECT_EQ(d.overlayCount(), 0u);
}

TEST(DimmingModule, StackingChangesBringShownOverlaysToFrontOncePerTurn) {
    Dimming d;
    d.module.model().setBrightnessFactor(0.5);
    for (int i = 0; i < 5; ++i)
        emit d.fake.screens->notifier().windowStackedOnTop();
    emit d.fake.platform.windowServer->windowsChanged();
    QCoreApplication::processEvents();
    EXPECT_EQ(d.overlayLog.broughtToFront, 1);
}

TEST(DimmingModule, StopRemovesEveryOverlay) {
    Dimming d;
    d.module.model().setBrightnessFactor(0.5);
    d.module.stop();
    EXPECT_EQ(d.overlayCount(), 0u);
    d.module.model().setBrightnessFactor(0.4); // no longer observed
    EXPECT_EQ(d.overlayCount(), 0u);
}
