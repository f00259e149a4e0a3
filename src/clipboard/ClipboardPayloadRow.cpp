#include "clipboard/ClipboardPayloadRow.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace velmora {

QString ClipboardPayloadRow::toText() const {
    QJsonObject object;
    for (const auto& [type, file] : files)
        object.insert(type, file);
    return QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact));
}

std::optional<ClipboardPayloadRow> ClipboardPayloadRow::fromText(const QString& text) {
    const QJsonDocument document = QJsonDocument::fromJson(text.toUtf8());
    if (!document.isObject())
        return std::nullopt;
    ClipboardPayloadRow row;
    const QJsonObject object = document.object();
    for (auto it = object.begin(); it != object.end(); ++it) {
        if (!it->isString() || it->toString().isEmpty())
            return std::nullopt;
        row.files.emplace(it.key(), it->toString());
    }
    return row;
}

QStringList ClipboardPayloadRow::fileNames() const {
    QStringList names;
    for (const auto& entry : files)
        names.append(entry.second);
    return names;
}

} // namespace velmora
