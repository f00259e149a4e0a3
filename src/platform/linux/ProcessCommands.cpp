#include "platform/linux/ProcessCommands.h"

#include <QProcess>

namespace velmora {

void ProcessCommands::run(const QString& program, const QStringList& arguments,
                          std::function<void(const CommandResult&)> done) {
    auto* process = new QProcess();
    auto finish = [process, done](CommandResult result) {
        process->disconnect();
        process->deleteLater();
        if (done)
            done(result);
    };
    QObject::connect(process, &QProcess::finished, process, [process, finish](int exitCode) {
        finish({true, exitCode, process->readAllStandardOutput(), process->readAllStandardError()});
    });
    QObject::connect(process, &QProcess::errorOccurred, process, [finish](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            finish({false, -1, {}, {}});
    });
    process->start(program, arguments);
}

} // namespace velmora
