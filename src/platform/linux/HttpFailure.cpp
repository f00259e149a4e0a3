#include "platform/linux/HttpFailure.h"

#include <QNetworkReply>

namespace velmora {

QString httpFailureText(const QNetworkReply& reply, bool timedOut, int timeoutMs, int maxRedirects) {
    if (timedOut)
        return QString("the server did not answer within %1 s").arg(timeoutMs / 1000.0);
    // The last redirect's status is what a redirect error leaves behind: the error says more.
    switch (reply.error()) {
    case QNetworkReply::TooManyRedirectsError:
        return QString("more than %1 redirects (a redirect loop?)").arg(maxRedirects);
    case QNetworkReply::InsecureRedirectError:
        return "the server redirected from https to plain http";
    case QNetworkReply::SslHandshakeFailedError:
        return "the secure connection failed: " + reply.errorString();
    case QNetworkReply::ConnectionRefusedError:
        return QString("nothing answers at %1 (connection refused)").arg(reply.url().authority());
    case QNetworkReply::HostNotFoundError:
        return QString("the server %1 is not known (is the address right, and the network up?)")
            .arg(reply.url().host());
    default:
        break;
    }
    const QVariant status = reply.attribute(QNetworkRequest::HttpStatusCodeAttribute);
    if (status.isValid())
        return QString("the server answered %1 %2")
            .arg(status.toInt())
            .arg(reply.attribute(QNetworkRequest::HttpReasonPhraseAttribute).toString())
            .trimmed();
    return reply.errorString();
}

} // namespace velmora
