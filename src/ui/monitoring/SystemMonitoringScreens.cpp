#include "ui/monitoring/SystemMonitoringScreens.h"

#include "app/BindingsProvider.h"
#include "app/ModuleRegistry.h"
#include "app/PanelRows.h"
#include "app/UserPreferences.h"
#include "monitoring/MBSMWidgetText.h"
#include "monitoring/SystemMonitoringModule.h"
#include "ui/monitoring/MenubarSystemMonitoringView.h"
#include "ui/monitoring/OverviewGauges.h"
#include "ui/monitoring/ProcessTreeModel.h"
#include "ui/monitoring/SystemMonitoringDashboard.h"
#include "ui/monitoring/SystemMonitoringPreferencesPage.h"

#include <QGuiApplication>
#include <QScreen>
#include <QTreeView>

namespace velmora {

SystemMonitoringScreens::SystemMonitoringScreens(AppContext& context, SystemMonitoringModule& monitoring)
    : m_context(context), m_monitoring(monitoring),
      m_menubarView(std::make_unique<MenubarSystemMonitoringView>(context.preferences, monitoring.model())) {}

SystemMonitoringScreens::~SystemMonitoringScreens() = default;

void SystemMonitoringScreens::registerWith(ModuleRegistry& registry) {
    registry.actions().setHandler<action::OpenSystemMonitoringDashboard>(
        [this](const action::OpenSystemMonitoringDashboard&) { dashboard().open(); });
    auto& prefs = m_context.preferences;
    using A = KeyboardAppAction;
    registry.addProvider(
        ActionProviders::Slot::application,
        std::make_unique<BindingsProvider>(
            [&prefs]() -> const KeyboardBindings& { return prefs.keyboardBindings.value(); },
            registry.actions(),
            std::vector<BindingsProvider::Entry>{
                {A::openSystemMonitoringDashboard, action::OpenSystemMonitoringDashboard{}}}));
    registry.addShortcutRows({A::openSystemMonitoringDashboard});
    registry.addPanelRows([this, &registry](PanelRows& rows) {
        auto* gauges = new OverviewGauges([this] { return m_monitoring.overview(); });
        QObject::connect(&m_monitoring, &SystemMonitoringModule::overviewChanged, gauges,
                         &OverviewGauges::refresh);
        rows.addWidget(gauges);
        rows.addAction("System Monitor…", [&registry] {
            registry.actions().dispatch(action::OpenSystemMonitoringDashboard{}, "panel");
        });
    });
    registry.addPreferencePage(SystemMonitoringPreferencesPage::kTitle,
                               [this] { return new SystemMonitoringPreferencesPage(m_context.preferences); });
    registry.addStatus("monitoringScreens", [this] { return status(); });
}

SystemMonitoringDashboard& SystemMonitoringScreens::dashboard() {
    if (!m_dashboard) {
        m_dashboard = std::make_unique<SystemMonitoringDashboard>(
            m_monitoring.model(), [this] { return m_monitoring.hasNetworkCounters(); },
            [this](qint64 pid, bool force, SystemMonitoringDashboard::Done done) {
                m_monitoring.killProcess(pid, force, std::move(done));
            });
        if (QScreen* screen = QGuiApplication::primaryScreen()) {
            QRect frame = m_dashboard->geometry();
            frame.moveCenter(screen->availableGeometry().center());
            m_dashboard->move(frame.topLeft());
        }
    }
    return *m_dashboard;
}

bool SystemMonitoringScreens::dashboardIsOpen() const {
    return m_dashboard && m_dashboard->isOpen();
}

Json SystemMonitoringScreens::status() const {
    Json gauges = Json::array();
    for (const MonitoringGauge& gauge : m_menubarView->gauges())
        gauges.push_back({{"resource", resourceTypeName(gauge.widget.resource).toStdString()},
                          {"text", gauge.text.toStdString()}});
    Json dashboard = {{"open", dashboardIsOpen()}};
    if (m_dashboard) {
        const QRect g = m_dashboard->geometry();
        dashboard["frame"] = Json::array({g.x(), g.y(), g.width(), g.height()});
        dashboard["groups"] = m_dashboard->treeModel()->rowCount();
    }
    return {{"snapshots", m_monitoring.model().snapshots().size()},
            {"resource", resourceTypeName(m_monitoring.model().resource()).toStdString()},
            {"gauges", gauges},
            {"dashboard", dashboard}};
}

} // namespace velmora
