#pragma once

#include <QSystemTrayIcon>

namespace velmora {

// One icon in the tray. The autosave name identifies the item to hosts that remember positions.
class DynamicStatusItem : public QObject {
    Q_OBJECT
public:
    DynamicStatusItem(QString autosaveName, const QIcon& icon, QObject* parent = nullptr);

    QSystemTrayIcon& statusItem() { return m_item; }
    const QString& autosaveName() const { return m_autosaveName; }

private:
    QString m_autosaveName;
    QSystemTrayIcon m_item;
};

} // namespace velmora
