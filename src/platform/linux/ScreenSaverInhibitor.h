#pragma once

#include "platform/SleepInhibitor.h"

#include <QDBusConnection>
#include <QObject>
#include <memory>
#include <optional>
#include <vector>

namespace velmora {

// Keeps the screen from blanking through the desktop's screen saver service
// (org.freedesktop.ScreenSaver on the session bus): Inhibit gives a cookie, UnInhibit hands it back.
// Where no such service runs, the fallback (the X server's own screen saver) does the work.
class ScreenSaverInhibitor final : public QObject, public SleepInhibitor {
    Q_OBJECT
public:
    explicit ScreenSaverInhibitor(std::unique_ptr<SleepInhibitor> fallback,
                                  QDBusConnection bus = QDBusConnection::sessionBus());
    ~ScreenSaverInhibitor() override;

    void hold(const QString& reason, Done done) override;
    void release() override;
    bool isHeld() const override;
    QStringList heldMechanisms() const override;

private:
    void answered(const QDBusMessage& reply, const QString& reason, quint64 generation);
    void holdFallback(const QString& reason, const QString& whyNotService);
    void finish(const QString& error);

    std::unique_ptr<SleepInhibitor> m_fallback;
    QDBusConnection m_bus;
    std::optional<uint> m_cookie;
    quint64 m_generation = 0;
    std::vector<Done> m_waiting;
};

} // namespace velmora
