#pragma once

#include "core/ScreenInfo.h"
#include "core/WindowManagerPreferences.h"
#include "platform/Accessibility.h"
#include "windowmanager/WindowManagerTypes.h"
#include "windowmanager/WindowSnapAreas.h"

#include <functional>

namespace velmora {

class Screens;
class WindowsCache;
class WindowManagerModel;

// The window actions of the keyboard: snap to a zone, centre, 16:9, next screen, match another
// window. Each works on the focused window and does nothing without one.
class WindowManagerActions {
public:
    WindowManagerActions(WindowsCache& cache, Accessibility& access, const Screens& screens,
                         std::function<WindowManagerPreferences()> preferences,
                         WindowManagerModel* model = nullptr);

    // The zones bound to a chord, resolved for the focused window's screen; absent when none is offered.
    std::optional<ZoneChoice> zonesForChord(const KeyboardShortcut& chord) const;

    void applyZone(const ZoneChoice& choice);
    // Puts a window (a dragged one, not necessarily focused) into a zone's frame on a usable rectangle.
    void placeInFrame(quint32 window, const Rect& frame, const Rect& usable, double gap);
    void centerWindow();
    void makeWindow16By9();
    void moveWindowToScreen();
    void matchSnappedWindowFrame();

    // Told, in a few plain words, when an action finds nothing to act on (no focused window, one screen).
    std::function<void(const QString&)> onNothingToDo;

    // Centres a window on a screen, shrinking it to 80 % of the screen when it does not fit.
    void center(const WindowInfo& window, const ScreenInfo& screen, std::optional<Size> size = std::nullopt);

private:
    struct Target {
        ScreenInfo screen;
        Rect usable;
        double gap;
    };
    std::optional<Target> targetFor(const Rect& windowFrame) const;
    Target targetOn(const ScreenInfo& screen) const;
    void snapped(const Rect& frame, const Rect& usable);
    std::optional<WindowInfo> focusedOrSay() const;
    void nothingToDo(const QString& why) const;

    WindowsCache& m_cache;
    Accessibility& m_access;
    const Screens& m_screens;
    std::function<WindowManagerPreferences()> m_preferences;
    WindowManagerModel* m_model;
};

} // namespace velmora
