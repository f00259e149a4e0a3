#include "windowmanager/DragStateMachine.h"

namespace velmora {

bool snappingAllowed(bool shiftEnablesDragging, bool shiftHeld) {
    return shiftEnablesDragging == shiftHeld;
}

DragEffect DragStateMachine::buttonPressed() {
    if (m_state == WindowManagerState::Idle) {
        m_state = WindowManagerState::CheckingManipulation;
        m_cancelled = false;
    }
    return DragEffect::None;
}

DragEffect DragStateMachine::frameChanged(const Rect& oldFrame, const Rect& newFrame, bool snapping) {
    if (m_state != WindowManagerState::CheckingManipulation)
        return DragEffect::None;
    if (oldFrame.width != newFrame.width || oldFrame.height != newFrame.height) {
        m_state = WindowManagerState::ResizeManipulation;
        return DragEffect::None;
    }
    if (oldFrame.x == newFrame.x && oldFrame.y == newFrame.y)
        return DragEffect::None;
    m_state = WindowManagerState::MoveManipulation;
    return followSnapping(snapping);
}

DragEffect DragStateMachine::pointerMoved(bool snapping) {
    if (m_state == WindowManagerState::Dragging && snapping)
        return DragEffect::UpdatePreview;
    return followSnapping(snapping);
}

DragEffect DragStateMachine::snappingChanged(bool snapping) {
    return followSnapping(snapping);
}

DragEffect DragStateMachine::buttonReleased() {
    const bool place = m_state == WindowManagerState::Dragging;
    m_state = WindowManagerState::Idle;
    return place ? DragEffect::PlaceIfTarget : DragEffect::None;
}

DragEffect DragStateMachine::escape() {
    if (m_state == WindowManagerState::Idle)
        return DragEffect::None;
    m_cancelled = true;
    if (m_state != WindowManagerState::Dragging)
        return DragEffect::None;
    m_state = WindowManagerState::MoveManipulation;
    return DragEffect::ClearPreview;
}

// Only a move switches between snapping and not; a resize, a click or no gesture never snaps.
DragEffect DragStateMachine::followSnapping(bool snapping) {
    const bool snaps = snapping && !m_cancelled;
    if (m_state == WindowManagerState::Dragging && !snaps) {
        m_state = WindowManagerState::MoveManipulation;
        return DragEffect::ClearPreview;
    }
    if (m_state == WindowManagerState::MoveManipulation && snaps) {
        m_state = WindowManagerState::Dragging;
        return DragEffect::UpdatePreview;
    }
    return DragEffect::None;
}

} // namespace velmora
