#include "platform/linux/NetworkUpdateChannel.h"

#include "platform/linux/HttpFailure.h"
#include "platform/linux/LinuxLog.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QNetworkReply>
#include <QProcess>
#include <QTemporaryDir>
#include <QTimer>

namespace velmora {

namespace {

struct Exchange {
    bool timedOut = false;
    bool tooLarge = false;
};

QString failure(const QNetworkReply& reply, const Exchange& exchange, const UpdateRequest& request) {
    if (exchange.tooLarge)
        return QString("the answer is larger than %1 bytes").arg(request.maxBytes);
    return httpFailureText(reply, exchange.timedOut, request.timeoutMs, request.maxRedirects);
}

} // namespace

NetworkUpdateChannel::NetworkUpdateChannel(QString executablePath, QString logFile, QObject* parent)
    : QObject(parent), m_executable(std::move(executablePath)), m_logFile(std::move(logFile)) {}

void NetworkUpdateChannel::get(const UpdateRequest& request, std::function<void(UpdateResponse)> done) {
    QNetworkRequest asked(request.url);
    asked.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::NoLessSafeRedirectPolicy);
    asked.setMaximumRedirectsAllowed(request.maxRedirects);
    QNetworkReply* reply = m_network.get(asked);
    auto exchange = std::make_shared<Exchange>();
    // A server that trickles its answer would never trip a time-out between packets: the whole
    // exchange has one deadline.
    auto* deadline = new QTimer(reply);
    deadline->setSingleShot(true);
    connect(deadline, &QTimer::timeout, reply, [reply, exchange] {
        exchange->timedOut = true;
        reply->abort();
    });
    deadline->start(request.timeoutMs);
    connect(reply, &QNetworkReply::readyRead, reply, [reply, exchange, limit = request.maxBytes] {
        if (reply->bytesAvailable() > limit) {
            exchange->tooLarge = true;
            reply->abort();
        }
    });
    connect(reply, &QNetworkReply::finished, this, [reply, exchange, request, done = std::move(done)] {
        reply->deleteLater();
        const QVariant status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute);
        if (!exchange->timedOut && !exchange->tooLarge && reply->error() == QNetworkReply::NoError &&
            status.toInt() == 200) {
            done({reply->readAll(), {}});
            return;
        }
        const QString error = failure(*reply, *exchange, request);
        qCDebug(lcLinux).noquote() << "Update request" << request.url.toString() << "failed:" << error;
        done({std::nullopt, error});
    });
}

std::optional<QString> NetworkUpdateChannel::installationFolder() const {
    const QFileInfo executable(m_executable);
    QDir bin = executable.absoluteDir();
    if (bin.dirName() != "bin" || !bin.cdUp())
        return std::nullopt;
    const QString folder = bin.canonicalPath();
    if (folder.isEmpty() || folder == "/" || !QFileInfo::exists(folder + '/' + kMarker) ||
        !QFileInfo(executable.absolutePath() + '/' + kUpdaterName).isExecutable())
        return std::nullopt;
    return folder;
}

bool NetworkUpdateChannel::handOver(const UpdateHandOver& handOver, QString* error) {
    const QFileInfo executable(m_executable);
    const QString updater = executable.absolutePath() + '/' + kUpdaterName;
    const QFileInfo folder(handOver.installationFolder);
    // The updater replaces its own folder, so it runs from a copy beside the installation (on the same
    // file system, where the new folder can be renamed into place).
    QTemporaryDir temporary(folder.absolutePath() + "/.velmora-updater-XXXXXX");
    if (!temporary.isValid()) {
        *error = QString("cannot make a folder for the updater beside %1: %2")
                     .arg(folder.absoluteFilePath(), temporary.errorString());
        return false;
    }
    const QString copy = temporary.filePath(kUpdaterName);
    if (!QFile::copy(updater, copy)) {
        *error = QString("cannot copy %1 to %2").arg(updater, temporary.path());
        return false;
    }
    QProcess process;
    process.setProgram(copy);
    process.setArguments({"--url", handOver.url.toString(QUrl::FullyEncoded), "--sha256", handOver.sha256,
                          "--install-dir", folder.absoluteFilePath(), "--relaunch",
                          folder.absoluteFilePath() + "/bin/" + executable.fileName(), "--quit-pid",
                          QString::number(QCoreApplication::applicationPid()), "--log", m_logFile});
    process.setWorkingDirectory(folder.absolutePath());
    if (!process.startDetached()) {
        *error = QString("cannot start %1: %2").arg(copy, process.errorString());
        return false;
    }
    // The updater removes its folder when it is done.
    temporary.setAutoRemove(false);
    return true;
}

} // namespace velmora
