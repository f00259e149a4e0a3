#include "windowmanager/AutoLayout.h"

#include "core/MainThread.h"
#include "platform/Accessibility.h"
#include "platform/Screens.h"
#include "windowmanager/AutoLayoutFreeSpace.h"
#include "windowmanager/LowLevelHelpers.h"
#include "windowmanager/WindowManagerActions.h"
#include "windowmanager/WindowManagerLog.h"
#include "windowmanager/WindowSnapAreas.h"
#include "windowmanager/WindowsCache.h"

namespace velmora {

AutoLayout::AutoLayout(WindowsCache& cache, Accessibility& access, const Screens& screens,
                       WindowManagerActions& actions, WindowManagerModel& model,
                       std::function<const WindowManagerPreferences&()> preferences)
    : m_cache(cache), m_access(access), m_screens(screens), m_actions(actions), m_model(model),
      m_preferences(std::move(preferences)) {}

bool AutoLayout::propose() {
    assertMainThread("AutoLayout::propose");
    m_cache.refresh();
    const auto focused = m_cache.focusedWindow();
    if (!focused) {
        qCInfo(lcWindowManager) << "Auto-layout: no window has the focus";
        end();
        return false;
    }
    WindowInfo snapped = *focused;
    // The cache may be a tick old; the window may have been snapped a moment ago.
    if (const auto frame = m_access.frame(snapped.id))
        snapped.frame = *frame;
    const auto screens = m_screens.screens();
    const auto screen = screenForWindowFrame(snapped.frame, screens, m_screens.mainScreen());
    if (!screen) {
        end();
        return false;
    }
    const auto primary = primaryScreen(screens);
    const Rect usable = usableRect(*screen, primary ? primary->frame.height : screen->frame.height);
    const auto free = autoLayoutFreeSpace(snapped.frame, usable, m_preferences().spacing);
    if (!free) {
        end();
        return false;
    }
    AutoLayoutProposal proposal{snapped, {*free}, usable, {}};
    if (m_model.autoLayoutProposal())
        proposal.focus = m_model.autoLayoutProposal()->focus;
    if (m_model.mode() != WindowManagerMode::FillSpace)
        m_modeBefore = m_model.mode();
    m_model.setAutoLayoutProposal(proposal);
    if (candidates().empty()) {
        end();
        return false;
    }
    m_model.setMode(WindowManagerMode::FillSpace);
    return true;
}

std::vector<WindowInfo> AutoLayout::candidates() const {
    std::vector<WindowInfo> list;
    const auto& proposal = m_model.autoLayoutProposal();
    if (!proposal)
        return list;
    const auto& current = m_cache.windowsByID();
    for (const auto& w : m_cache.windows())
        if (w.id != proposal->snappedWindow.id && current.contains(w.id))
            list.push_back(w);
    return list;
}

bool AutoLayout::fill(quint32 window) {
    assertMainThread("AutoLayout::fill");
    const auto proposal = m_model.autoLayoutProposal();
    if (!proposal || proposal->targetFrames.empty())
        return false;
    if (!m_access.frame(window)) {
        qCWarning(lcWindowManager) << "Auto-layout: window" << window
                                   << "went away before it could be placed";
        return false;
    }
    const Rect& usable = proposal->maximizedWindowFrame;
    m_actions.placeInFrame(window, proposal->targetFrames.front(), usable,
                           snapGap(usable, m_preferences().spacing));
    m_access.focus(window, true);
    m_access.raise(window);
    m_cache.recordFocus(window);
    end();
    return true;
}

void AutoLayout::end() {
    m_model.setAutoLayoutProposal(std::nullopt);
    if (m_model.mode() == WindowManagerMode::FillSpace)
        m_model.setMode(m_modeBefore);
}

} // namespace velmora
