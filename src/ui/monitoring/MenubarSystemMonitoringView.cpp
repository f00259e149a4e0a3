#include "ui/monitoring/MenubarSystemMonitoringView.h"

#include "app/UserPreferences.h"
#include "core/SystemMonitoringModel.h"
#include "ui/monitoring/MBSMWidgetView.h"

namespace velmora {

MenubarSystemMonitoringView::MenubarSystemMonitoringView(UserPreferences& preferences,
                                                         SystemMonitoringModel& model, QObject* parent)
    : QObject(parent), m_preferences(preferences), m_model(model) {
    connect(&preferences.theme, &CKValueObservableBase::valueChanged, this,
            &MenubarSystemMonitoringView::redraw);
    connect(&model, &SystemMonitoringModel::snapshotsChanged, this, &MenubarSystemMonitoringView::redraw);
    redraw();
}

void MenubarSystemMonitoringView::setDarkPanel(bool dark) {
    if (dark == m_darkPanel)
        return;
    m_darkPanel = dark;
    redraw();
}

void MenubarSystemMonitoringView::redraw() {
    std::vector<MonitoringGauge> gauges;
    for (const MonitoringWidget& widget : m_preferences.theme.value().mbsm.widgets) {
        const MBSMWidgetView view(widget, m_model.newest(), m_darkPanel);
        gauges.push_back({widget, view.icon(), view.text(), view.toolTip()});
    }
    m_gauges = std::move(gauges);
    emit gaugesChanged();
}

} // namespace velmora
