#include "windowmanager/WindowManagerActions.h"

#include "core/MainThread.h"
#include "platform/Screens.h"
#include "windowmanager/LowLevelHelpers.h"
#include "windowmanager/WindowManagerModel.h"
#include "windowmanager/WindowPlacement.h"
#include "windowmanager/WindowsCache.h"

#include <algorithm>
#include <cmath>

namespace velmora {

WindowManagerActions::WindowManagerActions(WindowsCache& cache, Accessibility& access, const Screens& screens,
                                           std::function<WindowManagerPreferences()> preferences,
                                           WindowManagerModel* model)
    : m_cache(cache), m_access(access), m_screens(screens), m_preferences(std::move(preferences)),
      m_model(model) {}

WindowManagerActions::Target WindowManagerActions::targetOn(const ScreenInfo& screen) const {
    const auto primary = primaryScreen(m_screens.screens());
    const Rect usable = usableRect(screen, primary ? primary->frame.height : screen.frame.height);
    return {screen, usable, snapGap(usable, m_preferences().spacing)};
}

std::optional<WindowManagerActions::Target> WindowManagerActions::targetFor(const Rect& windowFrame) const {
    const auto screen = screenForWindowFrame(windowFrame, m_screens.screens(), m_screens.mainScreen());
    if (!screen || screen->visibleFrame.isEmpty())
        return std::nullopt; // no screen, or one of zero size: nothing sensible to place into
    return targetOn(*screen);
}

std::optional<ZoneChoice> WindowManagerActions::zonesForChord(const KeyboardShortcut& chord) const {
    const auto zones = velmora::zonesForChord(m_preferences().areas, chord);
    if (zones.empty())
        return std::nullopt;
    const auto focused = m_cache.focusedWindow();
    std::optional<ScreenInfo> screen =
        focused ? screenForWindowFrame(focused->frame, m_screens.screens(), m_screens.mainScreen())
                : m_screens.mainScreen();
    if (!screen)
        return std::nullopt;
    const auto target = targetOn(*screen);
    return chooseZone(zones, target.usable, focused ? std::optional<Rect>(focused->frame) : std::nullopt,
                      target.gap);
}

std::optional<WindowInfo> WindowManagerActions::focusedOrSay() const {
    auto window = m_cache.focusedWindow();
    if (!window)
        nothingToDo("No window has the focus");
    return window;
}

void WindowManagerActions::nothingToDo(const QString& why) const {
    if (onNothingToDo)
        onNothingToDo(why);
}

void WindowManagerActions::applyZone(const ZoneChoice& choice) {
    assertMainThread("WindowManagerActions::applyZone");
    const auto window = focusedOrSay();
    if (!window || choice.index < 0 || std::size_t(choice.index) >= choice.candidates.size())
        return;
    const auto target = targetFor(window->frame);
    if (!target)
        return;
    // The zone was decided when the chord was matched, against the same window and screen.
    const Rect frame = zoneFrame(choice.candidates[std::size_t(choice.index)], target->usable, target->gap);
    const Point at = placeWindow(m_access, window->id, frame, target->usable, target->gap);
    snapped({at.x, at.y, frame.width, frame.height}, target->usable);
}

void WindowManagerActions::placeInFrame(quint32 window, const Rect& frame, const Rect& usable, double gap) {
    assertMainThread("WindowManagerActions::placeInFrame");
    const Point at = placeWindow(m_access, window, frame, usable, gap);
    snapped({at.x, at.y, frame.width, frame.height}, usable);
}

void WindowManagerActions::center(const WindowInfo& window, const ScreenInfo& screen,
                                  std::optional<Size> size) {
    const auto target = targetOn(screen);
    if (!size) {
        const auto frame = m_access.frame(window.id);
        size = frame ? Size{frame->width, frame->height} : Size{window.frame.width, window.frame.height};
    }
    const Rect& U = target.usable;
    if (size->width > U.width || size->height > U.height) {
        size = Size{0.8 * U.width, 0.8 * U.height};
        m_access.setSize(window.id, *size);
    }
    const Rect frame{U.minX() + (U.width - size->width) / 2, U.minY() + (U.height - size->height) / 2,
                     size->width, size->height};
    placeWindow(m_access, window.id, frame, U, target.gap);
}

void WindowManagerActions::centerWindow() {
    assertMainThread("WindowManagerActions::centerWindow");
    const auto window = focusedOrSay();
    if (!window)
        return;
    if (const auto target = targetFor(window->frame))
        center(*window, target->screen);
}

void WindowManagerActions::makeWindow16By9() {
    assertMainThread("WindowManagerActions::makeWindow16By9");
    const auto window = focusedOrSay();
    if (!window)
        return;
    const double k = std::sqrt(window->frame.width * window->frame.height / 144);
    const Size size{16 * k, 9 * k};
    m_access.setSize(window->id, size);
    if (const auto target = targetFor(window->frame))
        center(*window, target->screen, size);
}

void WindowManagerActions::moveWindowToScreen() {
    assertMainThread("WindowManagerActions::moveWindowToScreen");
    const auto screens = m_screens.screens();
    const auto main = m_screens.mainScreen();
    if (screens.size() < 2) {
        nothingToDo("There is no other screen to move the window to");
        return;
    }
    const auto window = focusedOrSay();
    if (!main || !window)
        return;
    // The next screen after the one with the keyboard focus, not after the window's own.
    const auto it =
        std::find_if(screens.begin(), screens.end(), [&](const ScreenInfo& s) { return s.id == main->id; });
    if (it == screens.end())
        return;
    const auto& next = screens[(std::size_t(it - screens.begin()) + 1) % screens.size()];
    if (!next.visibleFrame.isEmpty())
        center(*window, next);
}

void WindowManagerActions::matchSnappedWindowFrame() {
    assertMainThread("WindowManagerActions::matchSnappedWindowFrame");
    const auto window = focusedOrSay();
    if (!window)
        return;
    const auto target = targetFor(window->frame);
    if (!target)
        return;
    const Rect& U = target->usable;
    const double g = target->gap, t = std::max(2.0, g / 2);
    // The most recently used other window on this screen that is snapped to one side decides: the
    // focused window takes the rest of the screen beside it.
    for (const auto& other : m_cache.windows()) {
        if (other.id == window->id || !U.contains({other.frame.midX(), other.frame.midY()}))
            continue;
        const Rect& o = other.frame;
        const Edges e = edgesTouching(o, U, g, t);
        std::optional<Rect> frame;
        if (e.left && e.top && e.bottom && !e.right)
            frame = Rect{o.maxX() + g, U.minY() + g, U.maxX() - g - (o.maxX() + g), U.height - 2 * g};
        else if (e.right && e.top && e.bottom && !e.left)
            frame = Rect{U.minX() + g, U.minY() + g, o.minX() - g - (U.minX() + g), U.height - 2 * g};
        else if (e.top && e.left && e.right && !e.bottom)
            frame = Rect{U.minX() + g, o.maxY() + g, U.width - 2 * g, U.maxY() - g - (o.maxY() + g)};
        else if (e.bottom && e.left && e.right && !e.top)
            frame = Rect{U.minX() + g, U.minY() + g, U.width - 2 * g, o.minY() - g - (U.minY() + g)};
        if (!frame || frame->width < 1 || frame->height < 1)
            continue;
        const Point at = placeWindow(m_access, window->id, *frame, U, g);
        snapped({at.x, at.y, frame->width, frame->height}, U);
        return;
    }
    nothingToDo("No window on this screen is snapped to a side to match");
}

void WindowManagerActions::snapped(const Rect& frame, const Rect& usable) {
    if (!m_model)
        return;
    m_model->setScreenFrame(usable);
    SnapTarget target;
    target.frame = frame;
    m_model->setSnapTarget(target);
}

} // namespace velmora
