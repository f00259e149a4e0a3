#pragma once

#include "platform/SleepInhibitor.h"

#include <QDBusConnection>
#include <QObject>
#include <vector>

namespace velmora {

// systemd-logind's "sleep:idle" block inhibitor on the system bus. The login manager hands over a
// file descriptor; the inhibitor lasts while it is open, so it is held here, closed on release, and
// closed by the kernel if the agent dies.
class LoginManagerInhibitor final : public QObject, public SleepInhibitor {
    Q_OBJECT
public:
    explicit LoginManagerInhibitor(QDBusConnection bus = QDBusConnection::systemBus());
    ~LoginManagerInhibitor() override;

    void hold(const QString& reason, Done done) override;
    void release() override;
    bool isHeld() const override { return m_fd >= 0; }
    QStringList heldMechanisms() const override;

private:
    void answered(const QDBusMessage& reply, quint64 generation);

    QDBusConnection m_bus;
    int m_fd = -1;
    // A release while the login manager is still answering makes that answer moot.
    quint64 m_generation = 0;
    std::vector<Done> m_waiting;
};

} // namespace velmora
