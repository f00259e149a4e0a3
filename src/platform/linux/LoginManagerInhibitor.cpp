#include "platform/linux/LoginManagerInhibitor.h"

#include "platform/linux/LinuxLog.h"

#include <QDBusPendingCallWatcher>
#include <QDBusUnixFileDescriptor>

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace velmora {

LoginManagerInhibitor::LoginManagerInhibitor(QDBusConnection bus) : m_bus(std::move(bus)) {}

LoginManagerInhibitor::~LoginManagerInhibitor() {
    // No one is told any more: those waiting go with the agent.
    m_waiting.clear();
    if (m_fd >= 0)
        ::close(m_fd);
}

void LoginManagerInhibitor::hold(const QString& reason, Done done) {
    if (isHeld()) {
        done({});
        return;
    }
    if (!m_bus.isConnected()) {
        done("no login manager: the system bus cannot be reached (" + m_bus.lastError().message() + ")");
        return;
    }
    if (!(m_bus.connectionCapabilities() & QDBusConnection::UnixFileDescriptorPassing)) {
        done("no login manager: the system bus connection cannot pass file descriptors");
        return;
    }
    m_waiting.push_back(std::move(done));
    if (m_waiting.size() > 1)
        return; // the answer on its way serves every caller
    QDBusMessage call = QDBusMessage::createMethodCall("org.freedesktop.login1", "/org/freedesktop/login1",
                                                       "org.freedesktop.login1.Manager", "Inhibit");
    call << QString("sleep:idle") << QString("Velmora") << reason << QString("block");
    auto* watcher = new QDBusPendingCallWatcher(m_bus.asyncCall(call), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this,
            [this, generation = m_generation](QDBusPendingCallWatcher* w) {
                w->deleteLater();
                answered(w->reply(), generation);
            });
}

void LoginManagerInhibitor::answered(const QDBusMessage& reply, quint64 generation) {
    if (generation != m_generation)
        return; // released meanwhile: the descriptor in the answer is dropped with it
    QString error;
    if (reply.type() != QDBusMessage::ReplyMessage) {
        error = reply.errorName() == "org.freedesktop.DBus.Error.ServiceUnknown"
                    ? QString("no login manager (org.freedesktop.login1) on the system bus")
                    : "the login manager refused: " + reply.errorMessage();
    } else if (const auto fd = reply.arguments().value(0).value<QDBusUnixFileDescriptor>(); !fd.isValid()) {
        error = "the login manager answered without a file descriptor";
    } else {
        // Our own copy: Qt's copies close whenever the answer is freed.
        m_fd = ::fcntl(fd.fileDescriptor(), F_DUPFD_CLOEXEC, 3);
        if (m_fd < 0)
            error =
                QString("the login manager's file descriptor cannot be kept: %1").arg(qt_error_string(errno));
    }
    if (error.isEmpty())
        qCInfo(lcLinux) << "The login manager blocks sleep and idle for Velmora.";
    for (auto& done : std::exchange(m_waiting, {}))
        done(error);
}

void LoginManagerInhibitor::release() {
    ++m_generation;
    for (auto& done : std::exchange(m_waiting, {}))
        done("released before the login manager answered");
    if (m_fd >= 0) {
        ::close(m_fd);
        m_fd = -1;
        qCInfo(lcLinux) << "The login manager's sleep inhibitor is released.";
    }
}

QStringList LoginManagerInhibitor::heldMechanisms() const {
    if (!isHeld())
        return {};
    return {"login manager: sleep and idle blocked"};
}

} // namespace velmora
