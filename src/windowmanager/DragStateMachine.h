#pragma once

#include "core/Rect.h"

namespace velmora {

// The Shift rule of mouse snapping: with shiftEnablesDragging a drag snaps only while Shift is held;
// without it, holding Shift keeps a drag from snapping.
bool snappingAllowed(bool shiftEnablesDragging, bool shiftHeld);

// Where a mouse gesture on a window stands.
enum class WindowManagerState {
    Idle,                 // no button down
    CheckingManipulation, // the button is down; the window has not changed yet
    Dragging,             // the window is being moved and snaps: the preview follows the pointer
    MoveManipulation,     // the window is being moved without snapping (Shift rule, or Escape)
    ResizeManipulation,   // the window is being resized; resizing never snaps
};

// What the caller does after an event.
enum class DragEffect {
    None,
    UpdatePreview, // hit-test the pointer and show or clear the preview accordingly
    ClearPreview,  // drop the preview and the snap target
    PlaceIfTarget, // the button is up: place the window in the snap target if there is one, then
                   // drop the preview; with no target nothing moves
};

// The mouse gesture on a window, fed with the pointer's events and the window's frame changes; knows
// nothing of X11 or of the zones. A drag is a button press followed by a frame change while the button
// is down; the first change decides what it is:
//
//   Idle                 --press-->                         CheckingManipulation
//   CheckingManipulation --frame moved, same size-->        Dragging (snapping allowed) / MoveManipulation
//   CheckingManipulation --size changed-->                  ResizeManipulation
//   CheckingManipulation --release-->                       Idle (a click)
//   Dragging             --pointer moved-->                 Dragging, UpdatePreview
//   Dragging             --snapping no longer allowed-->    MoveManipulation, ClearPreview
//   MoveManipulation     --snapping allowed again-->        Dragging, UpdatePreview (not after Escape)
//   Dragging             --Escape-->                        MoveManipulation, ClearPreview
//   CheckingManipulation, MoveManipulation --Escape-->      unchanged, but the gesture no longer snaps
//   Dragging             --release-->                       Idle, PlaceIfTarget
//   MoveManipulation, ResizeManipulation --release-->       Idle
//
// Escape holds for the rest of the gesture: the window still follows the pointer, but nothing snaps and
// nothing is placed until the next press. Once a move or a resize is decided it stays so until the
// release, whatever the frame does (a program may resize itself while moved). Frame changes while Idle
// are not the user's (placement, shortcuts) and are ignored, as is a second press during a gesture.
class DragStateMachine {
public:
    WindowManagerState state() const { return m_state; }

    DragEffect buttonPressed();
    DragEffect frameChanged(const Rect& oldFrame, const Rect& newFrame, bool snapping);
    DragEffect pointerMoved(bool snapping);
    // Shift went down or up without the pointer moving.
    DragEffect snappingChanged(bool snapping);
    DragEffect buttonReleased();
    DragEffect escape();

private:
    DragEffect followSnapping(bool snapping);

    WindowManagerState m_state = WindowManagerState::Idle;
    bool m_cancelled = false;
};

} // namespace velmora
