#include "Download.h"

#include <QCryptographicHash>
#include <QEventLoop>
#include <QFile>
#include <QNetworkAccessManager>
#include <QNetworkReply>

namespace {

QString failure(const QNetworkReply& reply, int maxRedirects) {
    // The last redirect's status is what a redirect error leaves behind: the error says more.
    if (reply.error() == QNetworkReply::TooManyRedirectsError)
        return QString("more than %1 redirects (a redirect loop?)").arg(maxRedirects);
    if (reply.error() == QNetworkReply::OperationCanceledError)
        return "the transfer stalled";
    const QVariant status = reply.attribute(QNetworkRequest::HttpStatusCodeAttribute);
    if (status.isValid() && status.toInt() != 200)
        return QString("the server answered %1 %2")
            .arg(status.toInt())
            .arg(reply.attribute(QNetworkRequest::HttpReasonPhraseAttribute).toString())
            .trimmed();
    return reply.errorString();
}

} // namespace

DownloadResult download(const QUrl& url, const QString& file, int stallTimeoutMs, int maxRedirects) {
    DownloadResult result;
    QFile out(file);
    if (!out.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        result.error = QString("cannot write %1: %2").arg(file, out.errorString());
        return result;
    }
    QNetworkAccessManager network;
    QNetworkRequest request(url);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::NoLessSafeRedirectPolicy);
    request.setMaximumRedirectsAllowed(maxRedirects);
    request.setTransferTimeout(stallTimeoutMs);
    QNetworkReply* reply = network.get(request);
    QCryptographicHash hash(QCryptographicHash::Sha256);
    bool written = true;
    QObject::connect(reply, &QNetworkReply::readyRead, [&] {
        const QByteArray chunk = reply->readAll();
        hash.addData(chunk);
        result.bytes += chunk.size();
        if (out.write(chunk) != chunk.size() && written) {
            written = false;
            result.error = QString("cannot write %1: %2").arg(file, out.errorString());
            reply->abort();
        }
    });
    QEventLoop loop;
    QObject::connect(reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
    if (!reply->isFinished())
        loop.exec();
    const QByteArray rest = reply->readAll();
    hash.addData(rest);
    result.bytes += rest.size();
    written = written && out.write(rest) == rest.size() && out.flush();
    const QVariant announced = reply->header(QNetworkRequest::ContentLengthHeader);
    const bool ok200 = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt() == 200;
    if (!written) {
        if (result.error.isEmpty())
            result.error = QString("cannot write %1: %2").arg(file, out.errorString());
    } else if (ok200 && announced.isValid() && announced.toLongLong() != result.bytes) {
        // Said first: the connection's error ("Connection closed") tells less.
        result.error = QString("the download stopped after %1 of %2 bytes")
                           .arg(result.bytes)
                           .arg(announced.toLongLong());
    } else if (!ok200 || reply->error() != QNetworkReply::NoError) {
        result.error = failure(*reply, maxRedirects);
    } else {
        result.ok = true;
    }
    result.sha256 = hash.result().toHex();
    reply->deleteLater();
    return result;
}
