#pragma once

#include "core/ScreenInfo.h"
#include "core/TapEvent.h"
#include "core/WindowManagerPreferences.h"
#include "windowmanager/DragStateMachine.h"
#include "windowmanager/WindowManagerAnchors.h"
#include "windowmanager/WindowManagerTypes.h"

#include <QObject>
#include <QTimer>
#include <functional>
#include <optional>

namespace velmora {

class Accessibility;
class Screens;
class WindowsCache;
class WindowManagerActions;
class WindowManagerModel;

// Snapping by dragging a window with the mouse. Fed every pointer event of the input tap and every
// change of the window list: the window under the pointer at the press is watched, its first frame
// change tells a move from a resize, and while it is moved the pointer's place on its screen is
// hit-tested against the zones' anchors. The preview follows the model's snap target; releasing over
// a target places the window there once the window manager has let go of it.
class DragSnapping : public QObject {
    Q_OBJECT
public:
    // The window manager's own move ends with the button; placing the window at once would race
    // its last configure of the frame.
    static constexpr int kPlaceAfterReleaseMs = 60;
    // While the button is held the pointer is also looked at this often: a pointer moved by warping
    // (remote desktops, tablets, test tools) makes no raw motion events.
    static constexpr int kFollowMs = 16;

    DragSnapping(WindowsCache& cache, const Accessibility& access, const Screens& screens,
                 WindowManagerActions& actions, WindowManagerModel& model,
                 std::function<const WindowManagerPreferences&()> preferences, std::function<bool()> enabled,
                 std::function<qint64()> nowMs, QObject* parent = nullptr);

    void handle(const TapEvent& event);
    WindowManagerState state() const { return m_machine.state(); }
    // The window of the gesture in progress.
    std::optional<quint32> window() const { return m_window ? std::optional(m_window->id) : std::nullopt; }
    // Drops the preview and what the gesture would place (Escape, the window went away).
    void cancel();

signals:
    // A window was placed by a drop: its id and the zone.
    void placed(quint32 window, const SnapTarget& target);

private:
    bool snappingAllowed(const TapEvent& event) const;
    void pressed(bool snapping);
    void windowsChanged();
    void checkManipulation();
    void windowWentAway();
    void step(bool pointerEvent);
    void apply(DragEffect effect);
    void updatePreview();
    void released();
    std::optional<WindowInfo> windowAt(const Point& pointer) const;
    static std::optional<ScreenInfo> screenAt(const std::vector<ScreenInfo>& screens, const Point& pointer,
                                              double primaryHeight);

    WindowsCache& m_cache;
    const Accessibility& m_access;
    const Screens& m_screens;
    WindowManagerActions& m_actions;
    WindowManagerModel& m_model;
    // Read on every pointer event: by reference, never copied.
    std::function<const WindowManagerPreferences&()> m_preferences;
    std::function<bool()> m_enabled;
    std::function<qint64()> m_nowMs;
    DragStateMachine m_machine;
    AnchorsCache m_anchors;
    std::optional<WindowInfo> m_window; // as it was at the press
    bool m_snapping = false;            // the Shift rule at the last event
    struct Drop {
        quint32 window = 0;
        SnapTarget target;
        Rect usable;
        double gap = 0;
    };
    std::optional<Drop> m_drop; // what the release placed, until the window manager has let go
    Rect m_usable;              // of the screen under the pointer at the last hit test
    double m_gap = 0;
    QTimer m_placeTimer;
    QTimer m_followTimer;
    std::optional<Point> m_lastPointer;
};

} // namespace velmora
