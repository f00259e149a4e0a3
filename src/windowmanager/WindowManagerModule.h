#pragma once

#include "app/AppContext.h"
#include "app/Module.h"
#include "windowmanager/AutoLayout.h"
#include "windowmanager/DragSnapping.h"
#include "windowmanager/WindowManagerActions.h"
#include "windowmanager/WindowManagerModel.h"
#include "windowmanager/WindowTabs.h"
#include "windowmanager/WindowsCache.h"

namespace velmora {

// The window manager by keyboard: the window cache, zones with cycling, centre, 16:9, next screen and
// match. Its screens (the switcher, the preference page) are registered by WindowManagerScreens.
class WindowManagerModule final : public Module {
public:
    explicit WindowManagerModule(AppContext& context);

    QString name() const override { return "windowManager"; }
    void registerWith(ModuleRegistry& registry) override;
    void start() override;

    WindowsCache& windowsCache() { return m_cache; }
    WindowManagerActions& actions() { return m_actions; }
    WindowManagerModel& model() { return m_model; }
    DragSnapping& dragSnapping() { return m_drag; }
    AutoLayout& autoLayout() { return m_autoLayout; }
    WindowTabs& windowTabs() { return m_tabs; }
    // Why the window manager's actions cannot run now, or empty.
    QString unavailableReason() const;

private:
    ControlReply windowsCommand() const;
    Json status() const;

    AppContext& m_context;
    WindowManagerModel m_model;
    WindowsCache m_cache;
    WindowManagerActions m_actions;
    DragSnapping m_drag;
    AutoLayout m_autoLayout;
    WindowTabs m_tabs;
};

} // namespace velmora
