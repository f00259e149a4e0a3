#pragma once

#include <QObject>
#include <QTimer>
#include <functional>

namespace velmora {

class Permission;

// Asks the platform every second whether the agent may watch input and move windows, and tells the
// input tap: kept alive while allowed, torn down while not.
class AccessibilityModel : public QObject {
    Q_OBJECT
public:
    using TickHandler = std::function<void(bool hasPermission)>;

    AccessibilityModel(Permission& permission, TickHandler onTick, QObject* parent = nullptr);

    void start();
    void tick();
    bool hasPermission() const { return m_hasPermission; }
    const QString& reason() const { return m_reason; }

signals:
    void hasPermissionChanged(bool hasPermission);

private:
    Permission& m_permission;
    TickHandler m_onTick;
    QTimer m_timer;
    bool m_hasPermission = false;
    QString m_reason;
};

} // namespace velmora
