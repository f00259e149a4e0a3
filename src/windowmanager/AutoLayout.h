#pragma once

#include "core/WindowManagerPreferences.h"
#include "windowmanager/AutoLayoutProposal.h"
#include "windowmanager/WindowManagerModel.h"

#include <functional>
#include <vector>

namespace velmora {

class Accessibility;
class Screens;
class WindowManagerActions;
class WindowsCache;

// Completes a half-done layout: when the focused window is snapped against one side of its screen,
// the space it leaves free is proposed to another window of the current desktop. The proposal lives
// in the model from propose() until fill() or end(); the model's mode is FillSpace meanwhile.
class AutoLayout {
public:
    AutoLayout(WindowsCache& cache, Accessibility& access, const Screens& screens,
               WindowManagerActions& actions, WindowManagerModel& model,
               std::function<const WindowManagerPreferences&()> preferences);

    // Sets the model's proposal for the focused window and tells whether there is one. There is none
    // without a focused window, without free space beside it, or without another window to put there;
    // then any earlier proposal ends too.
    bool propose();
    // The windows that can fill the space, in switcher order (most recently used first), the snapped
    // one left out. Empty without a proposal.
    std::vector<WindowInfo> candidates() const;
    // Puts the window into the free space, focuses it and ends the proposal. False when there is no
    // proposal or the window is gone (the proposal then stays, for another choice).
    bool fill(quint32 window);
    void end();

private:
    WindowsCache& m_cache;
    Accessibility& m_access;
    const Screens& m_screens;
    WindowManagerActions& m_actions;
    WindowManagerModel& m_model;
    std::function<const WindowManagerPreferences&()> m_preferences;
    WindowManagerMode m_modeBefore = WindowManagerMode::DraggingAndKeyboard;
};

} // namespace velmora
