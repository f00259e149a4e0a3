#include "platform/linux/SystemdSleepSettings.h"

namespace velmora {

namespace {

// pkexec's own exit codes (pkexec(1)): the dialog was dismissed, or no authorisation was obtained.
constexpr int kPromptDismissed = 126;
constexpr int kNotAuthorised = 127;

QString firstLine(const QByteArray& text) {
    return QString::fromUtf8(text).trimmed().section('\n', 0, 0).trimmed();
}

} // namespace

const QStringList SystemdSleepSettings::kTargets = {"sleep.target", "suspend.target", "hibernate.target",
                                                    "hybrid-sleep.target"};

bool SystemdSleepSettings::sleepTargetMasked(const QByteArray& isEnabledOutput) {
    for (const QByteArray& line : isEnabledOutput.split('\n'))
        if (line.trimmed().startsWith("masked"))
            return true;
    return false;
}

QString SystemdSleepSettings::changeFailure(const CommandResult& result) {
    if (!result.started)
        return "Failed to execute pkexec systemctl command: pkexec could not be started (is polkit's pkexec "
               "installed?)";
    if (result.exitCode == 0)
        return {};
    QString details;
    if (result.exitCode == kPromptDismissed)
        details = "the administrator prompt was cancelled";
    else if (result.exitCode == kNotAuthorised)
        details = "not authorised (no authentication agent is running, or the password was refused)";
    else
        details = QString("exited with %1").arg(result.exitCode);
    if (const QString error = firstLine(result.standardError); !error.isEmpty())
        details += ": " + error;
    return "Failed to execute systemctl command: " + details;
}

void SystemdSleepSettings::isSleepDisabled(std::function<void(bool)> done) {
    // "masked" comes with exit status 1, like every state but enabled: the text is the answer.
    m_commands.run("systemctl", {"is-enabled", "sleep.target"},
                   [done = std::move(done)](const CommandResult& result) {
                       done(result.started && sleepTargetMasked(result.standardOutput));
                   });
}

void SystemdSleepSettings::setSleepDisabled(bool disabled, std::function<void(const QString&)> done) {
    m_commands.run("pkexec", QStringList{"systemctl", disabled ? "mask" : "unmask"} + kTargets,
                   [done = std::move(done)](const CommandResult& result) { done(changeFailure(result)); });
}

} // namespace velmora
