#include "updates/UpdateAddress.h"

#include <QtGlobal>

namespace velmora {

namespace {

QByteArray piece(const QString& text) {
    return QUrl::toPercentEncoding(text);
}

} // namespace

std::optional<QString> normalizedUpdateServer(const QString& text) {
    QUrl url(text.trimmed(), QUrl::StrictMode);
    if (!url.isValid() || (url.scheme() != "https" && url.scheme() != "http") || url.host().isEmpty() ||
        url.hasQuery() || url.hasFragment() || !url.userInfo().isEmpty())
        return std::nullopt;
    QString base = url.toString(QUrl::FullyEncoded);
    while (base.endsWith('/'))
        base.chop(1);
    return base;
}

QString chooseUpdateServer(const QString& fromEnvironment, const QString& fromSettings, QString* rejected) {
    const std::pair<const char*, QString> sources[] = {{kUpdateServerVariable, fromEnvironment},
                                                       {kUpdateServerKey, fromSettings}};
    for (const auto& [source, text] : sources) {
        if (text.trimmed().isEmpty())
            continue;
        if (const auto base = normalizedUpdateServer(text))
            return *base;
        if (rejected)
            *rejected = QString("%1=%2").arg(source, text);
    }
    return kDefaultUpdateServer;
}

QUrl updateRequestUrl(const QString& base, const UpdateAddressParts& parts) {
    const QByteArray address = base.toUtf8() + "/api/products/linux/" + piece(parts.osVersion) +
                               "/vel-mora/" + piece(parts.version) + "/" + piece(parts.userId) +
                               "/update?channel=stable";
    const QUrl url = QUrl::fromEncoded(address, QUrl::StrictMode);
    // The base was checked when it was chosen and every piece is encoded: a bad address here is a
    // fault of this program, not of its input.
    if (!url.isValid())
        qFatal("Cannot form the update request address from %s", address.constData());
    return url;
}

} // namespace velmora
