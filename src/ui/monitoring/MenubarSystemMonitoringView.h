#pragma once

#include "core/MenubarSystemMonitoringPreferences.h"

#include <QIcon>
#include <QObject>
#include <QString>
#include <vector>

namespace velmora {

class SystemMonitoringModel;
class UserPreferences;

// One gauge as the tray shows it.
struct MonitoringGauge {
    MonitoringWidget widget;
    QIcon icon;
    QString text;    // the full text ("1.5 MB")
    QString toolTip; // the full text and what a click does
};

// The gauges of the monitoring status item: one per configured widget, in the preferences' order,
// drawn from the newest snapshot. They are drawn anew whenever the widget list changes, a snapshot
// arrives or the panel's tone changes; the status item shows what gaugesChanged() announces.
class MenubarSystemMonitoringView : public QObject {
    Q_OBJECT
public:
    MenubarSystemMonitoringView(UserPreferences& preferences, SystemMonitoringModel& model,
                                QObject* parent = nullptr);

    const std::vector<MonitoringGauge>& gauges() const { return m_gauges; }
    // Light gauges on a dark panel, dark ones on a light panel, like the main icon.
    void setDarkPanel(bool dark);

signals:
    void gaugesChanged();

private:
    void redraw();

    UserPreferences& m_preferences;
    SystemMonitoringModel& m_model;
    std::vector<MonitoringGauge> m_gauges;
    bool m_darkPanel = true;
};

} // namespace velmora
