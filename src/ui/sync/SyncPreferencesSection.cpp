#include "ui/sync/SyncPreferencesSection.h"

#include "sync/SyncModule.h"
#include "ui/HintLabel.h"

#include <QDateTime>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QVBoxLayout>

namespace velmora {

namespace {

QColor resultColour(bool good) {
    return good ? QColor(0x2e, 0x7d, 0x32) : QColor(0xc0, 0x30, 0x30);
}

} // namespace

QString SyncPreferencesSection::lastSyncText(std::optional<double> lastSync, double now) {
    if (!lastSync)
        return "Not synced yet";
    const double seconds = std::max(0.0, now - *lastSync);
    if (seconds < 60)
        return "Last synced just now";
    if (seconds < 3600)
        return QString("Last synced %1 min ago").arg(static_cast<int>(seconds / 60));
    const QDateTime when = QDateTime::fromSecsSinceEpoch(static_cast<qint64>(*lastSync));
    return QString("Last synced %1").arg(QLocale().toString(when, QLocale::ShortFormat));
}

SyncPreferencesSection::SyncPreferencesSection(SyncModule& sync, QWidget* parent)
    : QWidget(parent), m_sync(sync) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(new QLabel("<h3>Sync</h3>"));
    layout->addWidget(hintLabel("Your zones, shortcuts and other settings follow you to your other computers "
                                "through a WebDAV folder of your own (Nextcloud, ownCloud or any WebDAV "
                                "server). Without one, nothing is sent anywhere."));

    auto* form = new QFormLayout();
    m_address = new QLineEdit();
    m_address->setObjectName("syncAddress");
    m_address->setPlaceholderText("https://cloud.example.org/remote.php/dav/files/you/");
    m_user = new QLineEdit();
    m_user->setObjectName("syncUser");
    m_password = new QLineEdit();
    m_password->setObjectName("syncPassword");
    m_password->setEchoMode(QLineEdit::Password);
    m_password->setPlaceholderText("Kept in the desktop's secret store");
    form->addRow("Server address", m_address);
    form->addRow("User name", m_user);
    form->addRow("App password", m_password);
    layout->addLayout(form);

    auto* buttons = new QHBoxLayout();
    m_test = new QPushButton("Test Connection");
    m_test->setObjectName("syncTest");
    m_syncNow = new QPushButton("Sync Now");
    m_syncNow->setObjectName("syncNow");
    m_turnOff = new QPushButton("Turn Off");
    m_turnOff->setObjectName("syncOff");
    buttons->addWidget(m_test);
    buttons->addWidget(m_syncNow);
    buttons->addStretch(1);
    buttons->addWidget(m_turnOff);
    layout->addLayout(buttons);

    m_result = new QLabel();
    m_result->setObjectName("syncResult");
    m_result->setWordWrap(true);
    m_result->hide();
    layout->addWidget(m_result);
    m_status = new QLabel();
    m_status->setObjectName("syncStatus");
    m_status->setWordWrap(true);
    layout->addWidget(m_status);

    if (const auto account = m_sync.account()) {
        m_address->setText(account->address.toString());
        m_user->setText(account->user);
    }
    connect(m_test, &QPushButton::clicked, this, &SyncPreferencesSection::testConnection);
    connect(m_syncNow, &QPushButton::clicked, this, &SyncPreferencesSection::syncNow);
    connect(m_turnOff, &QPushButton::clicked, this, &SyncPreferencesSection::turnOff);
    connect(&m_sync, &SyncModule::changed, this, &SyncPreferencesSection::showStatus);
    showStatus();
}

void SyncPreferencesSection::setBusy(bool busy) {
    m_busy = busy;
    showStatus();
}

void SyncPreferencesSection::showResult(const QString& text, bool good) {
    QPalette palette = m_result->palette();
    palette.setColor(QPalette::WindowText, resultColour(good));
    m_result->setPalette(palette);
    m_result->setText(text);
    m_result->show();
}

void SyncPreferencesSection::testConnection() {
    setBusy(true);
    showResult("Connecting…", true);
    QPointer self(this);
    m_sync.testConnection({QUrl(m_address->text().trimmed()), m_user->text().trimmed(), m_password->text()},
                          [self](QString error) {
                              if (!self)
                                  return;
                              self->setBusy(false);
                              if (error.isEmpty())
                                  self->showResult("The connection works.", true);
                              else
                                  self->showResult("The connection does not work: " + error + '.', false);
                          });
}

// With a new address, user or password typed in, "Sync Now" first sets up that account.
void SyncPreferencesSection::syncNow() {
    const auto account = m_sync.account();
    const CloudAccount typed{QUrl(m_address->text().trimmed()), m_user->text().trimmed(), m_password->text()};
    const bool sameAccount = account && account->address == typed.address && account->user == typed.user;
    QPointer self(this);
    setBusy(true);
    if (sameAccount && typed.password.isEmpty()) {
        m_sync.syncNow([self](bool ok) {
            if (!self)
                return;
            self->setBusy(false);
            if (ok)
                self->m_result->hide();
            else
                self->showResult("Not every setting was synchronised: " + self->m_sync.problem() + '.',
                                 false);
        });
        return;
    }
    showResult("Connecting…", true);
    m_sync.setUp(typed, [self](QString error, QString warning) {
        if (!self)
            return;
        self->setBusy(false);
        if (!error.isEmpty())
            return self->showResult("Sync was not set up: " + error + '.', false);
        self->m_password->clear();
        if (!warning.isEmpty())
            return self->showResult("Sync is on, but " + warning + '.', false);
        self->m_result->hide();
    });
}

void SyncPreferencesSection::turnOff() {
    m_sync.turnOff();
    m_password->clear();
    m_result->hide();
}

void SyncPreferencesSection::showStatus() {
    const QString status = m_sync.statusName();
    const double now = QDateTime::currentMSecsSinceEpoch() / 1000.0;
    QString text;
    if (!m_sync.isAvailable())
        text = "This build cannot synchronise settings.";
    else if (status == "off")
        text = "Sync is off: your settings stay on this computer.";
    else if (status == "syncing")
        text = "Syncing…";
    else if (status == "error")
        text =
            QString("%1 · Sync failed: %2.").arg(lastSyncText(m_sync.lastSyncTime(), now), m_sync.problem());
    else
        text = QString("%1 · Up to date.").arg(lastSyncText(m_sync.lastSyncTime(), now));
    m_status->setText(text);
    const bool available = m_sync.isAvailable();
    m_test->setEnabled(available && !m_busy);
    m_syncNow->setEnabled(available && !m_busy);
    m_turnOff->setEnabled(available && !m_busy && m_sync.account().has_value());
}

} // namespace velmora
