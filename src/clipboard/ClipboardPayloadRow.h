#pragma once

#include <QString>
#include <QStringList>

#include <map>
#include <optional>

namespace velmora {

// The `data` column of a payload row: for each representation type, the name of the file that
// holds its bytes, kept as a small JSON object.
struct ClipboardPayloadRow {
    std::map<QString, QString> files;

    QString toText() const;
    // Absent when the text is not such an object.
    static std::optional<ClipboardPayloadRow> fromText(const QString& text);
    QStringList fileNames() const;
};

} // namespace velmora
