#include "agent/AppDelegate.h"
#include "agent/DropDownPanelGeometry.h"
#include "app/StandardWindowController.h"
#include "platform/fake/FakePlatform.h"

#include <QApplication>
#include <QKeyEvent>
#include <gtest/gtest.h>

using namespace velmora;

namespace {

KeyEvent key(std::uint16_t code, std::uint64_t flags, QString characters) {
    return {code, flags, std::move(characters)};
}

} // namespace

TEST(DropDownPanelGeometry, FillsTheVisibleHeightBelowAReservedTop) {
    const Rect S{0, 0, 1440, 900};
    const Rect V{0, 0, 1440, 876}; // a 24-point panel reserves the top
    const Rect F{1000, 876, 22, 24};
    EXPECT_EQ(dropDownPanelFrame(F, V, S), (Rect{1011 - 150, 0, 240, 876}));
}

TEST(DropDownPanelGeometry, IsShorterByTheIconWindowWhenNothingIsReservedAtTheTop) {
    const Rect S{0, 0, 1440, 900};
    const Rect V{0, 30, 1440, 870}; // space reserved at the bottom only: V's top is S's top
    const Rect F{700, 876, 22, 24};
    EXPECT_EQ(dropDownPanelFrame(F, V, S).height, 870 - 24);
}

TEST(DropDownPanelGeometry, StaysOnTheScreenNearItsEdges) {
    const Rect S{1440, 0, 1920, 1080};
    EXPECT_EQ(constrainedToScreen({3300, 0, 240, 500}, S).x, 3360 - 240);
    EXPECT_EQ(constrainedToScreen({1400, 0, 240, 500}, S).x, 1440);
    EXPECT_EQ(constrainedToScreen({2000, 0, 240, 500}, S).x, 2000);
}

TEST(StandardWindowController, CloseChordsFollowThePreset) {
    using namespace ModifierMask;
    // Ctrl+W closes both; with Shift the characters are "W" and nothing closes.
    EXPECT_TRUE(defaultCloseOnEvent(key(13, Command, "w")));
    EXPECT_FALSE(defaultCloseOnEvent(key(13, Command | Shift, "W")));
    EXPECT_FALSE(defaultCloseOnEvent(key(13, 0, "w")));
    EXPECT_TRUE(dropDownCloseOnEvent(key(13, Command, "w")));
    // Escape closes the drop-down panel only.
    EXPECT_TRUE(dropDownCloseOnEvent(key(KeyCode::Escape, 0, "")));
    EXPECT_FALSE(StandardWindowPreset::welcomeWindow().closeOnEvent(key(KeyCode::Escape, 0, "")));

    const auto panel = StandardWindowPreset::dropDownPanel();
    EXPECT_EQ(panel.styleMask, 32897u);
    EXPECT_EQ(panel.collectionBehavior, 0x20002u);
    EXPECT_EQ(panel.level, 3);
    EXPECT_TRUE(panel.closeOnResignKey);
    const auto welcome = StandardWindowPreset::welcomeWindow();
    EXPECT_EQ(welcome.styleMask, 32768u);
    EXPECT_TRUE(welcome.isMovableByWindowBackground);
    EXPECT_FALSE(welcome.closeOnResignKey);
}

TEST(StandardWindowController, MakesAFreshPanelOnEveryShowAndRemembersTheLastFrame) {
    FakeKeyboardLayout layout;
    int closes = 0;
    StandardWindowController controller(layout, QString("Test"), StandardWindowPreset::dropDownPanel(),
                                        [] { return new QWidget(); });
    controller.onClose = [&] { ++closes; };
    EXPECT_FALSE(controller.lastFrame());

    controller.show(Rect{100, 50, 240, 400});
    ASSERT_TRUE(controller.isShown());
    QPointer<StandardWindow> first = controller.window();
    EXPECT_EQ(first->geometry(), QRect(100, 50, 240, 400));

    // Escape reaches the panel as a key press and closes it.
    QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
    QApplication::sendEvent(first, &escape);
    QApplication::processEvents();
    EXPECT_FALSE(controller.isShown());
    EXPECT_EQ(closes, 1);
    EXPECT_EQ(controller.lastFrame(), (Rect{100, 50, 240, 400}));

    controller.show();
    EXPECT_TRUE(controller.isShown());
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(first.isNull());
    // Ctrl+Shift+W types "W" and leaves the panel open.
    QKeyEvent shiftW(QEvent::KeyPress, Qt::Key_W, Qt::ControlModifier | Qt::ShiftModifier, "W");
    QApplication::sendEvent(controller.window(), &shiftW);
    EXPECT_TRUE(controller.isShown());
    controller.close();
    EXPECT_EQ(closes, 2);
}

TEST(StandardWindowController, AKeptPanelIsHiddenOnCloseAndShownAgainUnlessClosedFromOutside) {
    FakeKeyboardLayout layout;
    int closes = 0;
    auto controller = std::make_unique<StandardWindowController>(
        layout, QString("Test"), StandardWindowPreset::dropDownPanel(), [] { return new QWidget(); });
    controller->keepPanelWhenClosed();
    controller->onClose = [&] { ++closes; };

    controller->show(Rect{100, 50, 240, 400});
    QPointer<StandardWindow> kept = controller->window();
    controller->close();
    controller->close(); // already closed: nothing more
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_FALSE(controller->isShown());
    EXPECT_EQ(closes, 1);
    EXPECT_EQ(controller->lastFrame(), (Rect{100, 50, 240, 400}));
    ASSERT_FALSE(kept.isNull());
    EXPECT_FALSE(kept->isVisible());

    controller->show();
    EXPECT_TRUE(controller->isShown());
    EXPECT_EQ(controller->window(), kept.data());

    // Closed by the window manager, the panel goes; the next show makes a fresh one.
    kept->close();
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(kept.isNull());
    EXPECT_EQ(closes, 2);
    controller->show();
    QPointer<StandardWindow> fresh = controller->window();
    ASSERT_FALSE(fresh.isNull());
    controller->close();
    controller.reset();
    EXPECT_TRUE(fresh.isNull());
}

TEST(AppDelegate, StartsInItsFixedOrder) {
    FakePlatform fake;
    AppDelegate app(fake.platform, QProcessEnvironment());
    app.applicationDidFinishLaunching();
    EXPECT_EQ(app.startupSteps(),
              QStringList({"clipboardStore", "preferences", "statusItems", "cloudMirroring",
                           "updateCheckTimer", "permissionPoll", "windowCache", "monitorDimming",
                           "clipboardWatcher", "welcome", "systemMonitoring", "powerManagement"}));
    ASSERT_TRUE(app.menubarPopover());
    EXPECT_EQ(app.menubarPopover()->mainStatusItem()->autosaveName(), "Velmora");
    EXPECT_EQ(app.menubarPopover()->systemMonitoringItem()->autosaveName(), "Velmora:SystemMonitoring");
    EXPECT_FALSE(app.menubarPopover()->systemMonitoringItem()->statusItem().isVisible());
}

TEST(AppDelegate, PreviewHostStartsNothing) {
    FakePlatform fake;
    QProcessEnvironment env;
    env.insert("XCODE_RUNNING_FOR_PREVIEWS", "1");
    AppDelegate app(fake.platform, env);
    app.applicationDidFinishLaunching();
    EXPECT_EQ(app.startupSteps(), QStringList({"clipboardStore", "previewHostStop"}));
    EXPECT_FALSE(app.preferences());
    EXPECT_FALSE(app.menubarPopover());
    EXPECT_FALSE(fake.defaults->value("UserId"));
}

TEST(AppDelegate, WelcomesANewUserOnceAndNeverAfterClosing) {
    FakePlatform fake;
    {
        AppDelegate app(fake.platform, QProcessEnvironment());
        app.applicationDidFinishLaunching();
        ASSERT_TRUE(app.welcomeWindowController()->isShown());
        EXPECT_EQ(app.welcomeWindowController()->window()->size(), QSize(630, 390));
        app.welcomeWindowController()->close();
        EXPECT_EQ(fake.defaults->value("WelcomeWindowSeen:V26"), QVariant(true));
    }
    AppDelegate again(fake.platform, QProcessEnvironment());
    again.applicationDidFinishLaunching();
    EXPECT_FALSE(again.welcomeWindowController()->isShown());
}

TEST(AppDelegate, UserOfAnEarlierVersionIsNotWelcomed) {
    FakePlatform fake;
    fake.defaults->setValue("LastUsedVersion", "2.4.1");
    AppDelegate app(fake.platform, QProcessEnvironment());
    app.applicationDidFinishLaunching();
    EXPECT_FALSE(app.welcomeWindowController()->isShown());
}
