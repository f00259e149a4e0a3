#include "platform/linux/ScreenSaverInhibitor.h"

#include "platform/linux/LinuxLog.h"

#include <QDBusPendingCallWatcher>

namespace velmora {

namespace {

const QString kService = "org.freedesktop.ScreenSaver";
const QString kPath = "/org/freedesktop/ScreenSaver";

} // namespace

ScreenSaverInhibitor::ScreenSaverInhibitor(std::unique_ptr<SleepInhibitor> fallback, QDBusConnection bus)
    : m_fallback(std::move(fallback)), m_bus(std::move(bus)) {}

ScreenSaverInhibitor::~ScreenSaverInhibitor() {
    m_waiting.clear();
    // The service also drops the cookies of a client that leaves the bus.
    if (m_cookie)
        m_bus.call(QDBusMessage::createMethodCall(kService, kPath, kService, "UnInhibit") << *m_cookie,
                   QDBus::NoBlock);
}

void ScreenSaverInhibitor::hold(const QString& reason, Done done) {
    if (isHeld()) {
        done({});
        return;
    }
    m_waiting.push_back(std::move(done));
    if (m_waiting.size() > 1)
        return;
    if (!m_bus.isConnected()) {
        holdFallback(reason, "no session bus");
        return;
    }
    QDBusMessage call = QDBusMessage::createMethodCall(kService, kPath, kService, "Inhibit");
    call << QString("Velmora") << reason;
    auto* watcher = new QDBusPendingCallWatcher(m_bus.asyncCall(call), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this,
            [this, reason, generation = m_generation](QDBusPendingCallWatcher* w) {
                w->deleteLater();
                answered(w->reply(), reason, generation);
            });
}

void ScreenSaverInhibitor::answered(const QDBusMessage& reply, const QString& reason, quint64 generation) {
    if (generation != m_generation) {
        // Released meanwhile: a cookie that came anyway is handed back at once.
        if (reply.type() == QDBusMessage::ReplyMessage)
            m_bus.call(QDBusMessage::createMethodCall(kService, kPath, kService, "UnInhibit")
                           << reply.arguments().value(0),
                       QDBus::NoBlock);
        return;
    }
    if (reply.type() != QDBusMessage::ReplyMessage) {
        holdFallback(reason, reply.errorName() == "org.freedesktop.DBus.Error.ServiceUnknown"
                                 ? QString("no screen saver service")
                                 : "the screen saver service refused: " + reply.errorMessage());
        return;
    }
    m_cookie = reply.arguments().value(0).toUInt();
    qCInfo(lcLinux) << "The screen saver service keeps the screen on for Velmora.";
    finish({});
}

void ScreenSaverInhibitor::holdFallback(const QString& reason, const QString& whyNotService) {
    if (!m_fallback) {
        finish(whyNotService);
        return;
    }
    m_fallback->hold(reason, [this, whyNotService](const QString& error) {
        finish(error.isEmpty() ? QString() : whyNotService + ", and " + error);
    });
}

void ScreenSaverInhibitor::finish(const QString& error) {
    for (auto& done : std::exchange(m_waiting, {}))
        done(error);
}

void ScreenSaverInhibitor::release() {
    ++m_generation;
    finish("released before the screen saver answered");
    if (m_cookie) {
        m_bus.call(QDBusMessage::createMethodCall(kService, kPath, kService, "UnInhibit") << *m_cookie,
                   QDBus::NoBlock);
        m_cookie.reset();
    }
    if (m_fallback)
        m_fallback->release();
}

bool ScreenSaverInhibitor::isHeld() const {
    return m_cookie || (m_fallback && m_fallback->isHeld());
}

QStringList ScreenSaverInhibitor::heldMechanisms() const {
    if (m_cookie)
        return {QString("screen saver service: inhibited (cookie %1)").arg(*m_cookie)};
    return m_fallback ? m_fallback->heldMechanisms() : QStringList{};
}

} // namespace velmora
