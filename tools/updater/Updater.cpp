#include "Updater.h"

#include "Download.h"

#include <QCommandLineParser>
#include <QDeadlineTimer>
#include <QDebug>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QThread>

#include <csignal>
#include <sys/types.h>

namespace {

constexpr int kStallTimeoutMs = 30'000;
constexpr int kMaxRedirects = 5;
constexpr int kUnpackTimeoutMs = 300'000;
constexpr int kAgentQuitTimeoutMs = 30'000;

bool isInstallation(const QString& folder) {
    return QFileInfo(folder + "/bin/velmora").isExecutable() &&
           QFileInfo::exists(folder + '/' + kInstallationMarker);
}

// The unpacked tree: the archive's top level, or its one folder.
std::optional<QString> unpackedRoot(const QString& tree) {
    if (isInstallation(tree))
        return tree;
    const QStringList entries = QDir(tree).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden);
    if (entries.size() == 1 && isInstallation(tree + '/' + entries.first()))
        return tree + '/' + entries.first();
    return std::nullopt;
}

bool unpack(const QString& archive, const QString& into, QString* error) {
    if (!QDir().mkpath(into)) {
        *error = "cannot make " + into;
        return false;
    }
    QProcess tar;
    tar.start("tar", {"-xzf", archive, "-C", into, "--no-same-owner"});
    if (!tar.waitForFinished(kUnpackTimeoutMs) || tar.exitStatus() != QProcess::NormalExit ||
        tar.exitCode() != 0) {
        *error = "tar could not unpack it: " +
                 (tar.error() == QProcess::FailedToStart
                      ? tar.errorString()
                      : QString::fromLocal8Bit(tar.readAllStandardError()).trimmed());
        tar.kill();
        return false;
    }
    return true;
}

// A process counts as gone when it has ended, also while it waits to be reaped.
bool isRunning(qint64 pid) {
    QFile stat(QString("/proc/%1/stat").arg(pid));
    if (!stat.open(QIODevice::ReadOnly))
        return false;
    const QByteArray text = stat.readAll();
    const qsizetype end = text.lastIndexOf(')');
    return end < 0 || text.mid(end + 2, 1) != "Z";
}

// Only the agent of this installation is asked to quit; a number reused by another program is not.
bool runsFrom(qint64 pid, const QString& folder) {
    QString exe = QFile::symLinkTarget(QString("/proc/%1/exe").arg(pid));
    exe.remove(QRegularExpression(" \\(deleted\\)$"));
    const QString canonical = QFileInfo(folder).canonicalFilePath();
    return !exe.isEmpty() && !canonical.isEmpty() && exe.startsWith(canonical + '/');
}

bool askAgentToQuit(qint64 pid, const QString& folder) {
    if (pid <= 0 || !isRunning(pid))
        return true;
    if (!runsFrom(pid, folder)) {
        qWarning().noquote()
            << QString("Process %1 is not Velmora from %2; it is left alone.").arg(pid).arg(folder);
        return true;
    }
    ::kill(static_cast<pid_t>(pid), SIGTERM);
    QDeadlineTimer deadline(kAgentQuitTimeoutMs);
    while (isRunning(pid) && !deadline.hasExpired())
        QThread::msleep(50);
    return !isRunning(pid);
}

bool start(const QString& program) {
    return QProcess::startDetached(program, {}, QDir::homePath());
}

// The new folder in place of the old in two renames; on failure the old one is put back.
UpdaterExit swap(const QString& installDir, const QString& newRoot, QTemporaryDir& staging) {
    const QString aside = staging.filePath("previous");
    if (!QDir().rename(installDir, aside)) {
        qWarning().noquote() << QString("Cannot move %1 aside; nothing was changed.").arg(installDir);
        return UpdaterExit::swapFailed;
    }
    if (QDir().rename(newRoot, installDir))
        return UpdaterExit::installed;
    qWarning().noquote()
        << QString("Cannot move the new build to %1; the old one is put back.").arg(installDir);
    if (!QDir().rename(aside, installDir)) {
        // Never delete the only copy there is.
        staging.setAutoRemove(false);
        qCritical().noquote() << QString("Cannot put the old installation back; it is in %1.").arg(aside);
    }
    return UpdaterExit::swapFailed;
}

} // namespace

std::optional<UpdaterOptions> parseUpdaterArguments(const QStringList& arguments, QString* error) {
    QCommandLineParser parser;
    const QCommandLineOption url("url", "The new build (.tar.gz).", "URL");
    const QCommandLineOption sha256("sha256", "Its SHA-256 digest.", "HEX");
    const QCommandLineOption installDir("install-dir", "The installation folder to replace.", "DIR");
    const QCommandLineOption relaunch("relaunch", "The program to start afterwards.", "PATH");
    const QCommandLineOption quitPid("quit-pid", "The running agent to ask to quit.", "PID");
    const QCommandLineOption log("log", "A file to append the lines to.", "FILE");
    parser.addOptions({url, sha256, installDir, relaunch, quitPid, log});
    if (!parser.parse(arguments)) {
        *error = parser.errorText();
        return std::nullopt;
    }
    UpdaterOptions options;
    options.url = QUrl(parser.value(url), QUrl::StrictMode);
    options.sha256 = parser.value(sha256).toLower().toLatin1();
    options.installDir = QDir::cleanPath(QFileInfo(parser.value(installDir)).absoluteFilePath());
    options.relaunch = parser.value(relaunch);
    options.logFile = parser.value(log);
    bool pidOk = true;
    if (parser.isSet(quitPid))
        options.quitPid = parser.value(quitPid).toLongLong(&pidOk);
    if (!options.url.isValid() || (options.url.scheme() != "https" && options.url.scheme() != "http"))
        *error = "--url must be an http or https address";
    else if (!QRegularExpression("^[0-9a-f]{64}$").match(QString::fromLatin1(options.sha256)).hasMatch())
        *error = "--sha256 must be 64 hexadecimal digits";
    else if (!parser.isSet(installDir) || QDir(options.installDir).isRoot())
        *error = "--install-dir must name the installation folder";
    else if (!pidOk || options.quitPid < 0)
        *error = "--quit-pid must be a process id";
    else
        return options;
    return std::nullopt;
}

UpdaterExit runUpdate(const UpdaterOptions& options) {
    const QString installDir = options.installDir;
    if (!isInstallation(installDir)) {
        qWarning().noquote()
            << QString("%1 is not a Velmora installation of its own (bin/velmora and %2); nothing was "
                       "changed.")
                   .arg(installDir, kInstallationMarker);
        return UpdaterExit::badArguments;
    }
    // Beside the installation, so that the new folder is renamed into place on the same file system.
    QTemporaryDir staging(QFileInfo(installDir).absolutePath() + "/.velmora-update-XXXXXX");
    if (!staging.isValid()) {
        qWarning().noquote()
            << QString("Cannot make a folder beside %1: %2").arg(installDir, staging.errorString());
        return UpdaterExit::downloadFailed;
    }
    qInfo().noquote() << QString("Downloading %1").arg(options.url.toString());
    const QString archive = staging.filePath("build.tar.gz");
    const DownloadResult fetched = download(options.url, archive, kStallTimeoutMs, kMaxRedirects);
    if (!fetched.ok) {
        qWarning().noquote() << QString("The download failed: %1; nothing was changed.").arg(fetched.error);
        return UpdaterExit::downloadFailed;
    }
    if (fetched.sha256 != options.sha256) {
        qWarning().noquote() << QString("The download's SHA-256 digest is %1, not %2; nothing was changed.")
                                    .arg(QString::fromLatin1(fetched.sha256),
                                         QString::fromLatin1(options.sha256));
        return UpdaterExit::digestMismatch;
    }
    QString error;
    const QString tree = staging.filePath("new");
    if (!unpack(archive, tree, &error)) {
        qWarning().noquote()
            << QString("The new build could not be unpacked: %1; nothing was changed.").arg(error);
        return UpdaterExit::badArchive;
    }
    QFile::remove(archive);
    const auto newRoot = unpackedRoot(tree);
    if (!newRoot) {
        qWarning().noquote() << QString("The new build holds no bin/velmora and %1; nothing was changed.")
                                    .arg(kInstallationMarker);
        return UpdaterExit::badArchive;
    }
    if (!askAgentToQuit(options.quitPid, installDir)) {
        qWarning().noquote()
            << QString("Velmora (pid %1) did not quit; nothing was changed.").arg(options.quitPid);
        return UpdaterExit::agentStillRunning;
    }
    const UpdaterExit swapped = swap(installDir, *newRoot, staging);
    if (swapped != UpdaterExit::installed) {
        // The agent was asked to quit: the old build starts again.
        if (!options.relaunch.isEmpty() && options.quitPid > 0)
            start(options.relaunch);
        return swapped;
    }
    qInfo().noquote() << QString("Installed the new build in %1.").arg(installDir);
    if (!options.relaunch.isEmpty() && !start(options.relaunch)) {
        qWarning().noquote()
            << QString("The new build is installed but %1 could not be started.").arg(options.relaunch);
        return UpdaterExit::relaunchFailed;
    }
    return UpdaterExit::installed;
}
