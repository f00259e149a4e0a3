#include "clipboard/ClipboardItemRow.h"

#include <QSqlQuery>
#include <QVariant>

namespace velmora {

namespace {

template <class T> QVariant orNull(const std::optional<T>& value) {
    return value ? QVariant::fromValue(*value) : QVariant();
}

std::optional<QString> optionalText(const QSqlQuery& query, int column) {
    if (query.isNull(column))
        return std::nullopt;
    return query.value(column).toString();
}

std::optional<QByteArray> optionalBytes(const QSqlQuery& query, int column) {
    if (query.isNull(column))
        return std::nullopt;
    return query.value(column).toByteArray();
}

} // namespace

QString ClipboardItemRow::idText(const QUuid& id) {
    return id.toString(QUuid::WithoutBraces);
}

QStringList ClipboardItemRow::files() const {
    QStringList names;
    for (const auto* file : {&plainTextFile, &htmlFile, &rtfFile, &tabularTextFile, &thumbnailDataFile}) {
        if (*file)
            names.append(**file);
    }
    return names;
}

void ClipboardItemRow::bindTo(QSqlQuery& query) const {
    const QVariant values[] = {
        idText(item.id),
        item.timestamp,
        orNull(item.sourceBundleId),
        orNull(item.sourceBundleURL),
        orNull(item.sourceAppName),
        orNull(item.sourceWindowTitle),
        item.isUniversalClipboard,
        orNull(item.sourceIconData),
        orNull(plainTextFile),
        orNull(htmlFile),
        orNull(rtfFile),
        orNull(tabularTextFile),
        orNull(item.url),
        orNull(item.fileURL),
        orNull(item.color),
        item.fileBytes,
        item.fileContentsBytes,
        item.pngBytes,
        item.jpegBytes,
        item.tiffBytes,
        item.pdfBytes,
        item.soundBytes,
        item.width,
        item.height,
        item.thumbnailIsIcon,
        orNull(thumbnailDataFile),
    };
    for (int i = 0; i < int(std::size(values)); ++i)
        query.bindValue(i, values[i]);
}

ClipboardItemRow ClipboardItemRow::read(const QSqlQuery& query) {
    ClipboardItemRow row;
    SimpleClipboardItem& item = row.item;
    int c = 0;
    item.id = QUuid::fromString(query.value(c++).toString());
    item.timestamp = query.value(c++).toLongLong();
    item.sourceBundleId = optionalText(query, c++);
    item.sourceBundleURL = optionalText(query, c++);
    item.sourceAppName = optionalText(query, c++);
    item.sourceWindowTitle = optionalText(query, c++);
    item.isUniversalClipboard = query.value(c++).toBool();
    item.sourceIconData = optionalBytes(query, c++);
    row.plainTextFile = optionalText(query, c++);
    row.htmlFile = optionalText(query, c++);
    row.rtfFile = optionalText(query, c++);
    row.tabularTextFile = optionalText(query, c++);
    item.url = optionalText(query, c++);
    item.fileURL = optionalText(query, c++);
    item.color = optionalBytes(query, c++);
    item.fileBytes = query.value(c++).toLongLong();
    item.fileContentsBytes = query.value(c++).toLongLong();
    item.pngBytes = query.value(c++).toLongLong();
    item.jpegBytes = query.value(c++).toLongLong();
    item.tiffBytes = query.value(c++).toLongLong();
    item.pdfBytes = query.value(c++).toLongLong();
    item.soundBytes = query.value(c++).toLongLong();
    item.width = query.value(c++).toInt();
    item.height = query.value(c++).toInt();
    item.thumbnailIsIcon = query.value(c++).toBool();
    row.thumbnailDataFile = optionalText(query, c++);
    return row;
}

std::optional<QString> ClipboardItemRow::externalColumnFor(const QString& type) {
    if (type == u"text/plain")
        return QStringLiteral("plainText");
    if (type == u"text/html")
        return QStringLiteral("html");
    if (type == u"text/rtf")
        return QStringLiteral("rtf");
    if (type == u"text/tab-separated-values")
        return QStringLiteral("tabularText");
    if (type == u"thumbnail")
        return QStringLiteral("thumbnailData");
    return std::nullopt;
}

} // namespace velmora
