#include "ui/GeneralPreferencesPage.h"

#include "app/UserPreferences.h"

#include <QCheckBox>
#include <QLabel>
#include <QVBoxLayout>

namespace velmora {

GeneralPreferencesPage::GeneralPreferencesPage(UserPreferences& preferences, QWidget* parent)
    : QWidget(parent) {
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(new QLabel("<h3>General</h3>"));

    auto* autoUpdate = new QCheckBox("Automatic updates");
    autoUpdate->setObjectName("autoUpdate");
    layout->addWidget(autoUpdate);
    layout->addStretch(1);

    auto refresh = [autoUpdate, &preferences] {
        const QSignalBlocker block(autoUpdate);
        autoUpdate->setChecked(preferences.basic.value().autoUpdate);
    };
    refresh();
    connect(&preferences.basic, &CKValueObservableBase::valueChanged, autoUpdate, refresh);
    connect(autoUpdate, &QCheckBox::toggled, this, [&preferences](bool on) {
        auto record = preferences.basic.value();
        record.autoUpdate = on;
        preferences.basic.setValue(record);
    });
}

} // namespace velmora
