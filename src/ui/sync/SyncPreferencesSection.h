#pragma once

#include <QWidget>

class QLabel;
class QLineEdit;
class QPushButton;

namespace velmora {

class SyncModule;

// The "Sync" section of the General page: the WebDAV folder, the user name and app password, a test
// of the connection, how the last synchronisation went, and "Sync now".
class SyncPreferencesSection : public QWidget {
    Q_OBJECT
public:
    explicit SyncPreferencesSection(SyncModule& sync, QWidget* parent = nullptr);

    // "Last synced 2 min ago" and the like, for a time in seconds since 1970 seen at now.
    static QString lastSyncText(std::optional<double> lastSync, double now);

private:
    void testConnection();
    void syncNow();
    void turnOff();
    void showStatus();
    void showResult(const QString& text, bool good);
    void setBusy(bool busy);

    SyncModule& m_sync;
    QLineEdit* m_address;
    QLineEdit* m_user;
    QLineEdit* m_password;
    QPushButton* m_test;
    QPushButton* m_syncNow;
    QPushButton* m_turnOff;
    QLabel* m_result;
    QLabel* m_status;
    bool m_busy = false;
};

} // namespace velmora
