#include "windowmanager/DragStateMachine.h"

#include <gtest/gtest.h>

using namespace velmora;

namespace {

using S = WindowManagerState;
using E = DragEffect;

const Rect start{100, 100, 800, 600};
const Rect moved{140, 90, 800, 600};
const Rect resized{100, 100, 820, 600};

} // namespace

TEST(DragStateMachine, ShiftRule) {
    EXPECT_TRUE(snappingAllowed(false, false));
    EXPECT_FALSE(snappingAllowed(false, true));
    EXPECT_FALSE(snappingAllowed(true, false));
    EXPECT_TRUE(snappingAllowed(true, true));
}

TEST(DragStateMachine, TheFirstFrameChangeTellsAMoveFromAResize) {
    DragStateMachine move;
    EXPECT_EQ(move.buttonPressed(), E::None);
    EXPECT_EQ(move.state(), S::CheckingManipulation);
    EXPECT_EQ(move.frameChanged(start, start, true), E::None); // nothing changed yet
    EXPECT_EQ(move.state(), S::CheckingManipulation);
    EXPECT_EQ(move.frameChanged(start, moved, true), E::UpdatePreview);
    EXPECT_EQ(move.state(), S::Dragging);
    EXPECT_EQ(move.frameChanged(moved, resized, true), E::None); // a move stays a move
    EXPECT_EQ(move.state(), S::Dragging);
    EXPECT_EQ(move.pointerMoved(true), E::UpdatePreview);
    EXPECT_EQ(move.buttonReleased(), E::PlaceIfTarget);
    EXPECT_EQ(move.state(), S::Idle);

    DragStateMachine resize;
    resize.buttonPressed();
    EXPECT_EQ(resize.frameChanged(start, resized, true), E::None);
    EXPECT_EQ(resize.state(), S::ResizeManipulation);
    EXPECT_EQ(resize.frameChanged(resized, moved, true), E::None);
    EXPECT_EQ(resize.pointerMoved(true), E::None); // a resize never snaps
    EXPECT_EQ(resize.state(), S::ResizeManipulation);
    EXPECT_EQ(resize.buttonReleased(), E::None);
    EXPECT_EQ(resize.state(), S::Idle);
}

TEST(DragStateMachine, ClicksAndFramesOutsideAGestureDoNothing) {
    DragStateMachine m;
    EXPECT_EQ(m.frameChanged(start, moved, true), E::None); // a placement, not the user
    EXPECT_EQ(m.pointerMoved(true), E::None);
    EXPECT_EQ(m.escape(), E::None);
    EXPECT_EQ(m.buttonReleased(), E::None);
    EXPECT_EQ(m.state(), S::Idle);
    m.buttonPressed();
    EXPECT_EQ(m.pointerMoved(true), E::None); // the pointer moves before the window does
    EXPECT_EQ(m.buttonReleased(), E::None);
    EXPECT_EQ(m.state(), S::Idle);
}

TEST(DragStateMachine, ShiftSwitchesSnappingDuringAMove) {
    DragStateMachine m;
    m.buttonPressed();
    EXPECT_EQ(m.frameChanged(start, moved, false), E::None);
    EXPECT_EQ(m.state(), S::MoveManipulation);
    EXPECT_EQ(m.pointerMoved(false), E::None);
    EXPECT_EQ(m.snappingChanged(true), E::UpdatePreview);
    EXPECT_EQ(m.state(), S::Dragging);
    EXPECT_EQ(m.pointerMoved(false), E::ClearPreview);
    EXPECT_EQ(m.state(), S::MoveManipulation);
    EXPECT_EQ(m.buttonReleased(), E::None); // released while not snapping: nothing is placed
    EXPECT_EQ(m.state(), S::Idle);
}

TEST(DragStateMachine, EscapeDropsThePreviewForTheRestOfTheDrag) {
    DragStateMachine m;
    m.buttonPressed();
    m.frameChanged(start, moved, true);
    EXPECT_EQ(m.escape(), E::ClearPreview);
    EXPECT_EQ(m.state(), S::MoveManipulation);
    EXPECT_EQ(m.pointerMoved(true), E::None);
    EXPECT_EQ(m.snappingChanged(true), E::None);
    EXPECT_EQ(m.state(), S::MoveManipulation);
    EXPECT_EQ(m.buttonReleased(), E::None);

    // Escape before the window moved holds for the move that follows; the next press snaps again.
    m.buttonPressed();
    EXPECT_EQ(m.escape(), E::None);
    EXPECT_EQ(m.frameChanged(start, moved, true), E::None);
    EXPECT_EQ(m.state(), S::MoveManipulation);
    m.buttonReleased();
    m.buttonPressed();
    EXPECT_EQ(m.frameChanged(start, moved, true), E::UpdatePreview);
    EXPECT_EQ(m.state(), S::Dragging);
}
