// velmora-updater --url URL --sha256 HEX --install-dir DIR [--relaunch PATH] [--quit-pid PID] [--log FILE]
//
// Replaces a Velmora installation folder with the build at URL (a .tar.gz of the folder, at its top
// level or in one folder) once its SHA-256 digest matches, then starts PATH. Run by the agent from a
// copy in a temporary folder beside the installation, which it removes when it is done. Every failure
// leaves the installed folder as it was, says why on one line, and exits non-zero.
#include "Updater.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cstdio>

namespace {

QString g_logFile;

void writeLine(QtMsgType, const QMessageLogContext&, const QString& message) {
    std::fprintf(stderr, "velmora-updater: %s\n", message.toLocal8Bit().constData());
    if (g_logFile.isEmpty())
        return;
    QFile log(g_logFile);
    if (log.open(QIODevice::Append | QIODevice::Text))
        log.write((QDateTime::currentDateTime().toString(Qt::ISODate) + ' ' + message + '\n').toUtf8());
}

// The agent runs this program from a copy in a folder of its own; nothing else is removed.
void removeOwnCopy() {
    QDir own(QCoreApplication::applicationDirPath());
    if (own.dirName().startsWith(".velmora-updater-"))
        own.removeRecursively();
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    qInstallMessageHandler(writeLine);
    QString error;
    const auto options = parseUpdaterArguments(app.arguments(), &error);
    if (!options) {
        qWarning().noquote() << error;
        return static_cast<int>(UpdaterExit::badArguments);
    }
    if (!options->logFile.isEmpty() && QDir().mkpath(QFileInfo(options->logFile).absolutePath()))
        g_logFile = options->logFile;
    const UpdaterExit result = runUpdate(*options);
    removeOwnCopy();
    return static_cast<int>(result);
}
