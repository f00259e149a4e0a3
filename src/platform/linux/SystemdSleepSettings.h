#pragma once

#include "platform/Commands.h"
#include "platform/SleepSettings.h"

namespace velmora {

// Sleep disabled system-wide = systemd's sleep targets masked, so that nothing (the lid, the idle
// action, a menu) can start them. The change runs `pkexec systemctl mask|unmask ...`: polkit asks
// for an administrator's password, and the child is waited for without holding the main thread.
class SystemdSleepSettings final : public SleepSettings {
public:
    static const QStringList kTargets;

    explicit SystemdSleepSettings(Commands& commands) : m_commands(commands) {}

    // What `systemctl is-enabled sleep.target` printed says sleep is disabled: a line that is
    // "masked" (or "masked-runtime", masked until the next boot).
    static bool sleepTargetMasked(const QByteArray& isEnabledOutput);
    // The line that reports a failed change; empty when the change was made.
    static QString changeFailure(const CommandResult& result);

    void isSleepDisabled(std::function<void(bool)> done) override;
    void setSleepDisabled(bool disabled, std::function<void(const QString&)> done) override;

private:
    Commands& m_commands;
};

} // namespace velmora
