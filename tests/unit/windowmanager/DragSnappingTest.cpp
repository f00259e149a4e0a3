// Snapping by dragging, over the fake desktop: the press, the window manager moving the frame, the
// pointer reaching an edge, the release; with the numbers of a 1440 x 900 screen.
#include "windowmanager/DragSnapping.h"
#include "../agent/FakeAgent.h"
#include "core/KeyEvent.h"
#include "platform/fake/FakePlatform.h"
#include "windowmanager/WindowManagerActions.h"
#include "windowmanager/WindowManagerModel.h"
#include "windowmanager/WindowManagerModule.h"
#include "windowmanager/WindowsCache.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QThread>
#include <gtest/gtest.h>

using namespace velmora;

namespace {

struct Desk {
    FakePlatform fake;
    WindowManagerPreferences prefs;
    WindowManagerModel model;
    WindowsCache cache{*fake.platform.windowServer, 1, [] { return qint64(0); }};
    WindowManagerActions actions{cache, *fake.platform.accessibility, *fake.platform.screens,
                                 [this] { return prefs; }, &model};
    DragSnapping drag{cache,
                      *fake.platform.accessibility,
                      *fake.platform.screens,
                      actions,
                      model,
                      [this]() -> const WindowManagerPreferences& { return prefs; },
                      [] { return true; },
                      [] { return qint64(1000); }};
    std::vector<quint32> placed;

    Desk() {
        prefs.spacing = 0;
        fake.screens->all = {{"main", {0, 0, 1440, 900}, {0, 0, 1440, 900}, 1}};
        fake.desktop.add({1, 100, "app", QString("w"), {300, 200, 400, 300}, {}});
        cache.refresh();
        QObject::connect(&drag, &DragSnapping::placed,
                         [this](quint32 w, const SnapTarget&) { placed.push_back(w); });
    }
    Rect frame() { return fake.desktop.find(1)->frame; }
    void send(int type, std::uint64_t flags = 0, std::uint16_t key = 0) {
        drag.handle({type, flags, key, false});
    }
    void pointer(double x, double y) { fake.screens->pointer = Point{x, y}; }
    // The window manager moving (or resizing) the window as the user drags.
    void windowManagerSets(const Rect& frame) {
        fake.desktop.find(1)->frame = frame;
        static_cast<FakeWindowServer&>(*fake.platform.windowServer).changed();
    }
    void dragTo(double x, double y, std::uint64_t flags = 0) {
        pointer(x, y);
        windowManagerSets({x - 100, y - 10, frame().width, frame().height});
        send(TapEventType::LeftMouseDragged, flags);
    }
    void settle() {
        QElapsedTimer waited;
        waited.start();
        while (waited.elapsed() < DragSnapping::kPlaceAfterReleaseMs * 3) {
            QCoreApplication::processEvents();
            QThread::msleep(5);
        }
    }
};

} // namespace

TEST(DragSnapping, ADragToTheLeftEdgeShowsTheLeftHalfAndPlacesTheWindowThere) {
    Desk d;
    d.pointer(400, 210);
    d.send(TapEventType::LeftMouseDown);
    EXPECT_EQ(d.drag.state(), WindowManagerState::CheckingManipulation);
    d.dragTo(600, 400); // the middle: no target yet
    EXPECT_EQ(d.drag.state(), WindowManagerState::Dragging);
    EXPECT_FALSE(d.model.snapTarget());
    d.dragTo(3, 450);
    ASSERT_TRUE(d.model.snapTarget());
    EXPECT_EQ(d.model.snapTarget()->area.name, "Left Half");
    EXPECT_EQ(d.model.snapTarget()->frame, (Rect{0, 0, 720, 900}));
    d.send(TapEventType::LeftMouseUp);
    EXPECT_FALSE(d.model.snapTarget()); // the preview goes with the release
    EXPECT_EQ(d.drag.state(), WindowManagerState::Idle);
    d.settle();
    EXPECT_EQ(d.frame(), (Rect{0, 0, 720, 900}));
    EXPECT_EQ(d.placed, std::vector<quint32>{1});
}

TEST(DragSnapping, ACornerGivesTheQuarterAndLeavingTheEdgeClearsThePreview) {
    Desk d;
    d.pointer(400, 210);
    d.send(TapEventType::LeftMouseDown);
    d.dragTo(1438, 2);
    ASSERT_TRUE(d.model.snapTarget());
    EXPECT_EQ(d.model.snapTarget()->area.name, "Top Right");
    d.dragTo(700, 450);
    EXPECT_FALSE(d.model.snapTarget());
    d.send(TapEventType::LeftMouseUp);
    d.settle();
    EXPECT_TRUE(d.placed.empty());
}

TEST(DragSnapping, AResizeNeverSnaps) {
    Desk d;
    d.pointer(699, 499);
    d.send(TapEventType::LeftMouseDown);
    d.pointer(2, 450);
    d.windowManagerSets({300, 200, 500, 350}); // the size changed: a resize
    d.send(TapEventType::LeftMouseDragged);
    EXPECT_EQ(d.drag.state(), WindowManagerState::ResizeManipulation);
    EXPECT_FALSE(d.model.snapTarget());
    d.send(TapEventType::LeftMouseUp);
    d.settle();
    EXPECT_TRUE(d.placed.empty());
    EXPECT_EQ(d.frame(), (Rect{300, 200, 500, 350}));
}

TEST(DragSnapping, ShiftFollowsTheRuleAndEscapeDropsTheDrop) {
    Desk d;
    d.pointer(400, 210);
    d.send(TapEventType::LeftMouseDown);
    d.dragTo(3, 450, ModifierMask::Shift); // Shift disables snapping by default
    EXPECT_EQ(d.drag.state(), WindowManagerState::MoveManipulation);
    EXPECT_FALSE(d.model.snapTarget());
    d.send(TapEventType::FlagsChanged, 0); // Shift let go over the edge
    EXPECT_EQ(d.drag.state(), WindowManagerState::Dragging);
    EXPECT_TRUE(d.model.snapTarget());
    d.send(TapEventType::KeyDown, 0, KeyCode::Escape);
    EXPECT_FALSE(d.model.snapTarget());
    d.dragTo(4, 450);
    EXPECT_FALSE(d.model.snapTarget()); // for the rest of this drag
    d.send(TapEventType::LeftMouseUp);
    d.settle();
    EXPECT_TRUE(d.placed.empty());

    d.prefs.shiftEnablesDragging = true;
    d.pointer(200, 460);
    d.send(TapEventType::LeftMouseDown);
    d.dragTo(3, 450);
    EXPECT_FALSE(d.model.snapTarget());
    d.dragTo(3, 451, ModifierMask::Shift);
    EXPECT_TRUE(d.model.snapTarget());
}

TEST(DragSnapping, AClickOnTheDesktopOrAWindowThatGoesAwayPlacesNothing) {
    Desk d;
    d.pointer(1200, 800); // no window there
    d.send(TapEventType::LeftMouseDown);
    EXPECT_EQ(d.drag.state(), WindowManagerState::Idle);
    d.send(TapEventType::LeftMouseUp);

    d.pointer(400, 210);
    d.send(TapEventType::LeftMouseDown);
    d.dragTo(3, 450);
    ASSERT_TRUE(d.model.snapTarget());
    d.fake.desktop.windows.clear();
    static_cast<FakeWindowServer&>(*d.fake.platform.windowServer).changed();
    d.send(TapEventType::LeftMouseDragged);
    d.send(TapEventType::LeftMouseUp);
    d.settle();
    EXPECT_TRUE(d.placed.empty());
}

// The module follows this machine's switch: off, a drag to the edge previews and places nothing.
TEST(DragSnapping, SwitchedOffInThePreferencesADragSnapsNothing) {
    FakeAgent agent;
    auto& local = agent.app.preferences()->local;
    auto& module = *agent.app.module<WindowManagerModule>();
    EXPECT_EQ(module.model().mode(), WindowManagerMode::DraggingAndKeyboard);
    local.setMouseSnappingEnabled(false);
    EXPECT_EQ(module.model().mode(), WindowManagerMode::KeyboardOnly);
    agent.fake.desktop.add({1, 100, "app", QString("w"), {300, 200, 400, 300}, {}});
    static_cast<FakeWindowServer&>(*agent.fake.platform.windowServer).changed();
    agent.fake.screens->pointer = Point{400, 210};
    module.dragSnapping().handle({TapEventType::LeftMouseDown, 0, 0, false});
    EXPECT_EQ(module.dragSnapping().state(), WindowManagerState::Idle);
    local.setMouseSnappingEnabled(true);
    module.dragSnapping().handle({TapEventType::LeftMouseDown, 0, 0, false});
    EXPECT_EQ(module.dragSnapping().state(), WindowManagerState::CheckingManipulation);
}
