#include "ui/GeneralPreferencesPage.h"

#include "Version.h"
#include "app/UserPreferences.h"
#include "platform/LoginItem.h"
#include "ui/AppIcon.h"
#include "ui/HintLabel.h"

#include <QCheckBox>
#include <QDir>
#include <QGridLayout>
#include <QLabel>
#include <QVBoxLayout>

namespace velmora {

namespace {

QWidget* aboutSection() {
    auto* about = new QWidget();
    auto* grid = new QGridLayout(about);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setHorizontalSpacing(14);
    auto* icon = new QLabel();
    icon->setPixmap(appIcon().pixmap(64, 64));
    grid->addWidget(icon, 0, 0, 3, 1, Qt::AlignTop);
    grid->addWidget(new QLabel("<b>Velmora</b>"), 0, 1);
    auto* version = new QLabel(QString("Version %1").arg(kVersion));
    version->setObjectName("version");
    version->setTextInteractionFlags(Qt::TextSelectableByMouse);
    grid->addWidget(version, 1, 1);
    grid->addWidget(
        hintLabel(
            "Desktop tools behind one tray icon: window zones by keyboard, a window switcher, a clipboard "
            "history and keyboard cleaning, for X11 desktops."),
        2, 1);
    grid->setColumnStretch(1, 1);
    return about;
}

} // namespace

GeneralPreferencesPage::GeneralPreferencesPage(UserPreferences& preferences, LoginItem& loginItem,
                                               QWidget* syncSection, QWidget* parent)
    : QWidget(parent), m_preferences(preferences), m_loginItem(loginItem) {
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(new QLabel("<h3>General</h3>"));

    m_launchAtLogin = new QCheckBox("Launch at login");
    m_launchAtLogin->setObjectName("launchOnStart");
    layout->addWidget(m_launchAtLogin);
    m_launchProblem = new QLabel();
    m_launchProblem->setObjectName("launchOnStartProblem");
    m_launchProblem->setWordWrap(true);
    QPalette warning = m_launchProblem->palette();
    warning.setColor(QPalette::WindowText, QColor(0xc0, 0x30, 0x30));
    m_launchProblem->setPalette(warning);
    m_launchProblem->hide();
    layout->addWidget(m_launchProblem);

    auto* autoUpdate = new QCheckBox("Check for updates automatically");
    autoUpdate->setObjectName("autoUpdate");
    autoUpdate->setChecked(m_preferences.basic.value().autoUpdate);
    connect(autoUpdate, &QCheckBox::toggled, this, [this](bool on) {
        BasicPreferences record = m_preferences.basic.value();
        record.autoUpdate = on;
        m_preferences.basic.setValue(record);
    });
    // The record may change elsewhere (another machine through sync, the command line).
    connect(&m_preferences.basic, &CKValueObservableBase::valueChanged, autoUpdate, [this, autoUpdate] {
        const QSignalBlocker quiet(autoUpdate);
        autoUpdate->setChecked(m_preferences.basic.value().autoUpdate);
    });
    layout->addWidget(autoUpdate);

    if (syncSection) {
        layout->addSpacing(18);
        layout->addWidget(syncSection);
    }

    layout->addSpacing(18);
    layout->addWidget(new QLabel("<h3>About</h3>"));
    layout->addWidget(aboutSection());
    layout->addStretch(1);

    showLaunchAtLogin(m_loginItem.isEnabled());
    connect(m_launchAtLogin, &QCheckBox::toggled, this, &GeneralPreferencesPage::requestLaunchAtLogin);
}

void GeneralPreferencesPage::showEvent(QShowEvent* event) {
    showLaunchAtLogin(m_loginItem.isEnabled());
    QWidget::showEvent(event);
}

void GeneralPreferencesPage::requestLaunchAtLogin(bool on) {
    const bool result = m_loginItem.setEnabled(on);
    showLaunchAtLogin(result);
    if (result == on) {
        m_launchProblem->hide();
        return;
    }
    QString reason = m_loginItem.lastError();
    reason.replace(QDir::homePath() + '/', "~/");
    m_launchProblem->setText(QString("Launch at login could not be turned %1%2.")
                                 .arg(on ? "on" : "off", reason.isEmpty() ? QString() : ": " + reason));
    m_launchProblem->show();
}

// The switch and the stored flag follow the login item: it is what runs at the next login.
void GeneralPreferencesPage::showLaunchAtLogin(bool on) {
    const QSignalBlocker block(m_launchAtLogin);
    m_launchAtLogin->setChecked(on);
    if (m_preferences.local.launchOnStart() != on)
        m_preferences.local.setLaunchOnStart(on);
}

} // namespace velmora
