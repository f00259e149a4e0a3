#include "windowmanager/WindowManagerModel.h"
#include "core/DefaultValues.h"

#include <QSignalSpy>
#include <gtest/gtest.h>

using namespace velmora;

TEST(WindowManagerModel, SignalsOnlyRealChanges) {
    WindowManagerModel model;
    QSignalSpy changed(&model, &WindowManagerModel::changed);
    EXPECT_EQ(model.mode(), WindowManagerMode::DraggingAndKeyboard);
    EXPECT_FALSE(model.snapTarget());

    model.setMode(WindowManagerMode::KeyboardOnly);
    model.setMode(WindowManagerMode::KeyboardOnly);
    EXPECT_EQ(changed.count(), 1);

    const SnapTarget left{factoryZones()[1], Rect{10, 20, 700, 800}};
    model.setSnapTarget(left);
    model.setSnapTarget(left);
    EXPECT_EQ(changed.count(), 2);
    SnapTarget moved = left;
    moved.frame.x = 11;
    model.setSnapTarget(moved);
    EXPECT_EQ(changed.count(), 3);
    EXPECT_EQ(model.snapTarget(), moved);
    model.setSnapTarget(std::nullopt);
    EXPECT_EQ(changed.count(), 4);

    model.setScreenFrame(Rect{0, 0, 1920, 1080});
    model.setScreenFrame(Rect{0, 0, 1920, 1080});
    model.setSearchQuery("term");
    model.setSearchQuery("term");
    EXPECT_EQ(changed.count(), 6);
    EXPECT_EQ(model.screenFrame(), (Rect{0, 0, 1920, 1080}));
    EXPECT_EQ(model.searchQuery(), "term");
}
