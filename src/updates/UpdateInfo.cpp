#include "updates/UpdateInfo.h"

#include "core/JsonCodec.h"

#include <QRegularExpression>
#include <QUrl>

namespace velmora {

namespace {

std::optional<UpdateInfo> fail(QString* error, const QString& reason) {
    if (error)
        *error = reason;
    return std::nullopt;
}

// An optional text field: absent and null read as empty; anything but text is an error.
std::optional<QString> textField(const Json& object, const char* key, QString* error) {
    if (!object.contains(key) || object[key].is_null())
        return QString();
    if (!object[key].is_string()) {
        if (error)
            *error =
                QString("\"%1\" must be text, not %2").arg(key, QString::fromStdString(object[key].dump()));
        return std::nullopt;
    }
    return QString::fromStdString(object[key].get<std::string>());
}

bool isDigest(const QString& text) {
    static const QRegularExpression hex("^[0-9a-fA-F]{64}$");
    return hex.match(text).hasMatch();
}

} // namespace

std::optional<UpdateInfo> decodeUpdateInfo(const QByteArray& data, QString* error) {
    const Json json = Json::parse(data.constData(), data.constData() + data.size(), nullptr, false);
    if (json.is_discarded())
        return fail(error, "the answer is not JSON");
    if (!json.is_object())
        return fail(error, "the answer is not a JSON object");
    UpdateInfo info;
    const auto url = textField(json, "url", error);
    const auto sha256 = url ? textField(json, "sha256", error) : std::nullopt;
    const auto version = sha256 ? textField(json, "version", error) : std::nullopt;
    if (!version)
        return std::nullopt;
    if (url->isEmpty())
        return info;
    const QUrl address(*url, QUrl::StrictMode);
    if (!address.isValid() || (address.scheme() != "https" && address.scheme() != "http") ||
        address.host().isEmpty())
        return fail(error, QString("the update's address %1 is not an http or https address").arg(*url));
    if (!isDigest(*sha256))
        return fail(
            error,
            sha256->isEmpty()
                ? QString("the answer offers an update without its \"sha256\" digest")
                : QString("the update's \"sha256\" digest %1 is not 64 hexadecimal digits").arg(*sha256));
    info.url = address.toString(QUrl::FullyEncoded);
    info.sha256 = sha256->toLower();
    info.version = *version;
    return info;
}

} // namespace velmora
