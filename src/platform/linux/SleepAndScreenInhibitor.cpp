#include "platform/linux/SleepAndScreenInhibitor.h"

#include "platform/linux/LinuxLog.h"

namespace velmora {

SleepAndScreenInhibitor::SleepAndScreenInhibitor(std::unique_ptr<SleepInhibitor> sleep,
                                                 std::unique_ptr<SleepInhibitor> screen)
    : m_sleep(std::move(sleep)), m_screen(std::move(screen)) {}

void SleepAndScreenInhibitor::hold(const QString& reason, Done done) {
    m_sleep->hold(reason, [this, reason, done = std::move(done)](const QString& error) {
        // Without the login manager nothing keeps the computer from sleeping: the screen alone is not
        // held either, so that nothing claims more than it does.
        if (!error.isEmpty() || !m_screen) {
            done(error);
            return;
        }
        m_screen->hold(reason, [done](const QString& screenError) {
            if (!screenError.isEmpty())
                qCWarning(lcLinux).noquote()
                    << "Sleep is blocked, but the screen may still blank:" << screenError;
            done({});
        });
    });
}

void SleepAndScreenInhibitor::release() {
    if (m_screen)
        m_screen->release();
    m_sleep->release();
}

QStringList SleepAndScreenInhibitor::heldMechanisms() const {
    QStringList held = m_sleep->heldMechanisms();
    if (m_screen)
        held += m_screen->heldMechanisms();
    return held;
}

} // namespace velmora
