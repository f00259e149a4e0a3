#pragma once

#include <QWidget>

namespace velmora {

class MenubarSystemMonitoringPreferencesForm;
class UserPreferences;

// Preferences → System Monitor: the tray gauges and how to reach the dashboard.
class SystemMonitoringPreferencesPage : public QWidget {
    Q_OBJECT
public:
    static constexpr const char* kTitle = "System Monitor";

    explicit SystemMonitoringPreferencesPage(UserPreferences& preferences, QWidget* parent = nullptr);

    MenubarSystemMonitoringPreferencesForm* form() const { return m_form; }

private:
    MenubarSystemMonitoringPreferencesForm* m_form;
};

} // namespace velmora
