#pragma once

#include "clipboard/SimpleClipboardItem.h"

#include <QString>
#include <QStringList>

#include <optional>

class QSqlQuery;

namespace velmora {

// One row of the item table: the record's small fields, and for each externally stored value the
// name of its file (the value itself is read only when asked for).
struct ClipboardItemRow {
    SimpleClipboardItem item; // externally stored values and the payload left absent
    std::optional<QString> plainTextFile;
    std::optional<QString> htmlFile;
    std::optional<QString> rtfFile;
    std::optional<QString> tabularTextFile;
    std::optional<QString> thumbnailDataFile;

    QStringList files() const;

    // Binds every column in schema order as positional values from 0.
    void bindTo(QSqlQuery& query) const;
    // Reads a row selected with every column in schema order, from 0.
    static ClipboardItemRow read(const QSqlQuery& query);

    // The item column holding a representation ("text/plain", "text/html", "text/rtf",
    // "text/tab-separated-values", "thumbnail"); absent for a payload type.
    static std::optional<QString> externalColumnFor(const QString& type);

    // How the id column writes a UUID.
    static QString idText(const QUuid& id);
};

} // namespace velmora
