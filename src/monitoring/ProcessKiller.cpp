#include "monitoring/ProcessKiller.h"

#include "monitoring/MonitoringLog.h"
#include "platform/Commands.h"

namespace velmora {

QStringList ProcessKiller::arguments(qint64 pid, bool force) {
    return {QString("-%1").arg(force ? 9 : 15), QString::number(pid)};
}

void ProcessKiller::kill(qint64 pid, bool force, std::function<void(bool, const QString&)> done) {
    m_commands.run("/bin/kill", arguments(pid, force), [pid, done](const CommandResult& result) {
        QString line;
        if (!result.started)
            line = QString("Error killing process %1: /bin/kill could not be started").arg(pid);
        else if (result.exitCode == 0)
            line = QString("Successfully killed process %1").arg(pid);
        else
            line = QString("Failed to kill process %1").arg(pid);
        const bool killed = result.started && result.exitCode == 0;
        if (killed)
            qCInfo(lcMonitoring).noquote() << line;
        else
            qCWarning(lcMonitoring).noquote() << line << QString::fromUtf8(result.standardError).trimmed();
        if (done)
            done(killed, line);
    });
}

} // namespace velmora
