#include "platform/linux/WebDavRecordBody.h"

#include <nlohmann/json.hpp>

namespace velmora {

using OrderedJson = nlohmann::ordered_json;

QByteArray encodeWebDavRecord(const QString& key, const QByteArray& data) {
    OrderedJson body{{"recordType", "CD_JSONValue"}, {"CD_key", key.toStdString()}};
    if (data.isEmpty()) {
        body["CD_jsonData"] = nullptr;
    } else if (auto value = OrderedJson::parse(data.begin(), data.end(), nullptr, false);
               !value.is_discarded()) {
        body["CD_jsonData"] = std::move(value);
    } else {
        body["CD_jsonData"] = data.toBase64().toStdString();
        body["CD_dataEncoding"] = "base64";
    }
    return QByteArray::fromStdString(body.dump(1));
}

std::optional<QByteArray> decodeWebDavRecord(const QString& key, const QByteArray& body, QString* error) {
    auto fail = [error](const QString& reason) -> std::optional<QByteArray> {
        if (error)
            *error = reason;
        return std::nullopt;
    };
    const auto json = OrderedJson::parse(body.begin(), body.end(), nullptr, false);
    if (json.is_discarded() || !json.is_object())
        return fail("it is not JSON");
    if (json.value("recordType", OrderedJson()) != "CD_JSONValue")
        return fail("it is not a CD_JSONValue record");
    if (json.value("CD_key", OrderedJson()) != key.toStdString())
        return fail(QString("it is not the record of %1").arg(key));
    if (!json.contains("CD_jsonData"))
        return fail("it holds no CD_jsonData");
    const auto& value = json["CD_jsonData"];
    if (value.is_null())
        return QByteArray();
    if (json.value("CD_dataEncoding", OrderedJson()) == "base64") {
        if (!value.is_string())
            return fail("its base64 data is not text");
        const auto decoded = QByteArray::fromBase64Encoding(
            QByteArray::fromStdString(value.get<std::string>()), QByteArray::AbortOnBase64DecodingErrors);
        if (!decoded)
            return fail("its base64 data does not decode");
        return *decoded;
    }
    return QByteArray::fromStdString(value.dump());
}

} // namespace velmora
