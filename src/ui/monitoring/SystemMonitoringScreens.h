#pragma once

#include "app/AppContext.h"
#include "app/Module.h"
#include "core/JsonCodec.h"

#include <memory>

namespace velmora {

class MenubarSystemMonitoringView;
class SystemMonitoringDashboard;
class SystemMonitoringModule;

// The system monitor's screens: the dashboard window and its action, the tray gauges, the overview
// gauges and a row in the drop-down panel, and the preference page.
class SystemMonitoringScreens final : public Module {
public:
    SystemMonitoringScreens(AppContext& context, SystemMonitoringModule& monitoring);
    ~SystemMonitoringScreens() override;

    QString name() const override { return "systemMonitoringScreens"; }
    void registerWith(ModuleRegistry& registry) override;

    // Created on first use: most sessions never open it.
    SystemMonitoringDashboard& dashboard();
    bool dashboardIsOpen() const;
    // The gauges the monitoring status item shows.
    MenubarSystemMonitoringView& menubarView() { return *m_menubarView; }

private:
    Json status() const;

    AppContext& m_context;
    SystemMonitoringModule& m_monitoring;
    std::unique_ptr<MenubarSystemMonitoringView> m_menubarView;
    std::unique_ptr<SystemMonitoringDashboard> m_dashboard;
};

} // namespace velmora
