#include "windowmanager/DragSnapping.h"

#include "core/KeyEvent.h"
#include "core/MainThread.h"
#include "platform/Screens.h"
#include "windowmanager/LowLevelHelpers.h"
#include "windowmanager/WindowManagerActions.h"
#include "windowmanager/WindowManagerLog.h"
#include "windowmanager/WindowManagerModel.h"
#include "windowmanager/WindowSnapAreas.h"
#include "windowmanager/WindowsCache.h"

namespace velmora {

DragSnapping::DragSnapping(WindowsCache& cache, const Accessibility& access, const Screens& screens,
                           WindowManagerActions& actions, WindowManagerModel& model,
                           std::function<const WindowManagerPreferences&()> preferences,
                           std::function<bool()> enabled, std::function<qint64()> nowMs, QObject* parent)
    : QObject(parent), m_cache(cache), m_access(access), m_screens(screens), m_actions(actions),
      m_model(model), m_preferences(std::move(preferences)), m_enabled(std::move(enabled)),
      m_nowMs(std::move(nowMs)) {
    m_placeTimer.setSingleShot(true);
    m_placeTimer.setInterval(kPlaceAfterReleaseMs);
    connect(&m_placeTimer, &QTimer::timeout, this, [this] {
        const auto drop = std::exchange(m_drop, std::nullopt);
        if (drop && !m_cache.windowsByID().contains(drop->window)) {
            qCInfo(lcWindowManager) << "The dropped window went away before it could be placed";
            return;
        }
        if (drop) {
            m_actions.placeInFrame(drop->window, drop->target.frame, drop->usable, drop->gap);
            emit placed(drop->window, drop->target);
        }
    });
    connect(&m_cache, &WindowsCache::windowsChanged, this, &DragSnapping::windowsChanged);
    m_followTimer.setInterval(kFollowMs);
    connect(&m_followTimer, &QTimer::timeout, this, [this] { step(false); });
}

bool DragSnapping::snappingAllowed(const TapEvent& event) const {
    return velmora::snappingAllowed(m_preferences().shiftEnablesDragging, event.flags & ModifierMask::Shift);
}

void DragSnapping::handle(const TapEvent& event) {
    assertMainThread("DragSnapping::handle");
    switch (event.type) {
    case TapEventType::LeftMouseDown:
        if (m_enabled())
            pressed(snappingAllowed(event));
        return;
    case TapEventType::LeftMouseDragged:
        if (!m_window)
            return;
        m_snapping = snappingAllowed(event);
        step(true);
        return;
    case TapEventType::LeftMouseUp:
        if (m_machine.state() != WindowManagerState::Idle)
            released();
        return;
    case TapEventType::FlagsChanged:
        if (m_window && snappingAllowed(event) != m_snapping) {
            m_snapping = !m_snapping;
            apply(m_machine.snappingChanged(m_snapping));
        }
        return;
    case TapEventType::KeyDown:
        if (m_window && event.keyCode == KeyCode::Escape)
            apply(m_machine.escape());
        return;
    default:
        return;
    }
}

void DragSnapping::pressed(bool snapping) {
    const auto pointer = m_screens.pointerLocation();
    m_window = pointer ? windowAt(*pointer) : std::nullopt;
    if (!m_window)
        return; // the desktop, a panel or one of Velmora's own windows: nothing to snap
    m_snapping = snapping;
    m_lastPointer = pointer;
    apply(m_machine.buttonPressed());
    m_followTimer.start();
}

// One look at the gesture: the frame until it tells move from resize, then the pointer. A timer tick
// that finds the pointer where it was does nothing.
void DragSnapping::step(bool pointerEvent) {
    if (!m_window)
        return;
    if (m_machine.state() == WindowManagerState::CheckingManipulation) {
        checkManipulation();
        if (!m_window)
            return;
    }
    if (!pointerEvent) {
        const auto pointer = m_screens.pointerLocation();
        if (pointer == m_lastPointer)
            return;
        m_lastPointer = pointer;
    }
    apply(m_machine.pointerMoved(m_snapping));
}

// A window closed during the gesture ends it: nothing is placed.
void DragSnapping::windowsChanged() {
    if (m_window && !m_cache.windowsByID().contains(m_window->id))
        windowWentAway();
}

// The gesture goes on until the release, with nothing to place.
void DragSnapping::windowWentAway() {
    qCInfo(lcWindowManager) << "The dragged window went away; nothing is placed";
    m_followTimer.stop();
    cancel();
    m_window.reset();
}

// The frame of the pressed window against the one at the press: the first change decides the
// gesture. Asked of the window manager at each motion until then (a few round trips per drag), since
// a window manager moving a frame does not tell the client every step.
void DragSnapping::checkManipulation() {
    const auto now = m_access.frame(m_window->id);
    if (!now) {
        windowWentAway();
        return;
    }
    if (*now != m_window->frame)
        apply(m_machine.frameChanged(m_window->frame, *now, m_snapping));
}

void DragSnapping::apply(DragEffect effect) {
    switch (effect) {
    case DragEffect::None:
        return;
    case DragEffect::UpdatePreview:
        m_model.setDragging(true);
        updatePreview();
        return;
    case DragEffect::ClearPreview:
        m_model.setDragging(false);
        m_model.setSnapTarget(std::nullopt);
        return;
    case DragEffect::PlaceIfTarget:
        if (const auto& target = m_model.snapTarget(); target && m_window) {
            m_drop = Drop{m_window->id, *target, m_usable, m_gap};
            m_placeTimer.start();
        }
        m_model.setDragging(false);
        m_model.setSnapTarget(std::nullopt);
        return;
    }
}

// The pointer's place on the screen it is over, against that screen's anchors.
void DragSnapping::updatePreview() {
    const auto pointer = m_screens.pointerLocation();
    const auto all = m_screens.screens();
    if (!pointer || all.empty()) {
        m_model.setSnapTarget(std::nullopt);
        return;
    }
    const double primaryHeight = all.front().frame.height;
    const auto screen = screenAt(all, *pointer, primaryHeight);
    if (!screen) {
        m_model.setSnapTarget(std::nullopt);
        return;
    }
    const WindowManagerPreferences& preferences = m_preferences();
    const Rect usable = usableRect(*screen, primaryHeight);
    const auto& groups = m_anchors.groups(usable.width, usable.height, preferences, m_nowMs());
    const Anchor* anchor = hitTest(groups.anchorGroups, unitPoint(*pointer, usable));
    if (!anchor) {
        m_model.setSnapTarget(std::nullopt);
        return;
    }
    m_usable = usable;
    m_gap = snapGap(usable, preferences.spacing);
    m_model.setScreenFrame(usable);
    m_model.setSnapTarget(snapTargetFor(*anchor, usable, m_gap));
}

void DragSnapping::released() {
    m_followTimer.stop();
    const DragEffect effect = m_machine.buttonReleased();
    apply(effect);
    m_model.setDragging(false);
    m_window.reset();
}

void DragSnapping::cancel() {
    if (m_machine.state() != WindowManagerState::Idle)
        apply(m_machine.escape());
    m_model.setDragging(false);
    m_model.setSnapTarget(std::nullopt);
}

// The frontmost window under the pointer (the cache lists front to back and leaves out our own).
std::optional<WindowInfo> DragSnapping::windowAt(const Point& pointer) const {
    for (const WindowInfo& window : m_cache.listWindows())
        if (window.frame.contains(pointer))
            return window;
    return std::nullopt;
}

std::optional<ScreenInfo> DragSnapping::screenAt(const std::vector<ScreenInfo>& screens, const Point& pointer,
                                                 double primaryHeight) {
    for (const ScreenInfo& screen : screens)
        if (screen.frame.flipped(primaryHeight).contains(pointer))
            return screen;
    return std::nullopt;
}

} // namespace velmora
