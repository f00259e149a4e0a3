#include "ui/DeveloperPreferencesPage.h"

#include "app/LoggingManager.h"
#include "app/UserPreferences.h"

#include <QCheckBox>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace velmora {

DeveloperPreferencesPage::DeveloperPreferencesPage(UserPreferences& preferences, LoggingManager& log,
                                                   QWidget* parent)
    : QWidget(parent) {
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(new QLabel("<h3>Developer</h3>"));

    auto* allow = new QCheckBox("Allow developer logs");
    allow->setObjectName("developerLogsEnabled");
    layout->addWidget(allow);
    auto* hint = new QLabel("Keeps the latest 99 log entries in memory so that you can export them for "
                            "support. Nothing is written to disk unless you export.");
    hint->setWordWrap(true);
    layout->addWidget(hint);

    auto* exportButton = new QPushButton("Export Logs…");
    layout->addWidget(exportButton, 0, Qt::AlignLeft);
    layout->addStretch(1);

    auto refresh = [allow, &preferences] {
        const QSignalBlocker block(allow);
        allow->setChecked(preferences.local.developerLogsEnabled());
    };
    refresh();
    connect(&preferences.local, &LocalUserPreferences::changed, allow, refresh);
    connect(allow, &QCheckBox::toggled, this,
            [&preferences](bool on) { preferences.local.setDeveloperLogsEnabled(on); });
    connect(exportButton, &QPushButton::clicked, this, [this, &log] { log.exportWithDialog(this); });
}

} // namespace velmora
