#include "ui/monitoring/SystemMonitoringPreferencesPage.h"

#include "ui/HintLabel.h"
#include "ui/monitoring/MenubarSystemMonitoringPreferencesForm.h"

#include <QLabel>
#include <QVBoxLayout>

namespace velmora {

SystemMonitoringPreferencesPage::SystemMonitoringPreferencesPage(UserPreferences& preferences,
                                                                 QWidget* parent)
    : QWidget(parent), m_form(new MenubarSystemMonitoringPreferencesForm(preferences)) {
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(new QLabel(QString("<h3>%1</h3>").arg(kTitle)));
    layout->addWidget(m_form);
    layout->addWidget(hintLabel("Each gauge is an icon of its own in the tray, in this order."));
    layout->addWidget(hintLabel("Click the gauges from the menubar to open the full dashboard."));
    layout->addStretch(1);
}

} // namespace velmora
