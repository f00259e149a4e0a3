#pragma once

#include "app/AppContext.h"
#include "app/Module.h"

#include <memory>

namespace velmora {

class WindowManagerModule;
class WindowSwitcher;
class AutoLayoutPanel;
class SnapPreviewOverlay;

// The window manager's screens: the window switcher (Alt+Tab), the auto-layout panel, the snap
// preview and the Window Manager preference page.
class WindowManagerScreens final : public Module {
public:
    WindowManagerScreens(AppContext& context, WindowManagerModule& windowManager);
    ~WindowManagerScreens() override;

    QString name() const override { return "windowSwitcher"; }
    void registerWith(ModuleRegistry& registry) override;

    WindowSwitcher& switcher() { return *m_switcher; }
    AutoLayoutPanel& autoLayoutPanel() { return *m_autoLayout; }

private:
    QString switcherUnavailableReason() const;
    QString autoLayoutUnavailableReason() const;
    Json autoLayoutStatus() const;
    Json status() const;

    AppContext& m_context;
    WindowManagerModule& m_windowManager;
    std::unique_ptr<WindowSwitcher> m_switcher;
    std::unique_ptr<SnapPreviewOverlay> m_preview;
    std::unique_ptr<AutoLayoutPanel> m_autoLayout;
};

} // namespace velmora
