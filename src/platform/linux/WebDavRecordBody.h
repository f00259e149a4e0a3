#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace velmora {

// The file a record is kept in on the WebDAV server:
//   {"recordType": "CD_JSONValue", "CD_key": <key>, "CD_jsonData": <the encoded value>}
// A value that is JSON is kept as JSON, readable on the server; raw bytes (the menu-bar icon) are
// kept as base64 text with "CD_dataEncoding": "base64"; an absent value is null.
QByteArray encodeWebDavRecord(const QString& key, const QByteArray& data);
// The value of key's record; none, with the reason, when the file is not such a record.
std::optional<QByteArray> decodeWebDavRecord(const QString& key, const QByteArray& body, QString* error);

} // namespace velmora
