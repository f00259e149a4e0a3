#include "clipboard/ClipboardSearchLoader.h"

#include "clipboard/ClipboardSearchableText.h"
#include "clipboard/ExternalStorage.h"

#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QUuid>

namespace velmora {

namespace {

constexpr qsizetype kMaxSearchedCharacters = 64 * 1024;

std::optional<QString> text(const QSqlQuery& query, int column) {
    const QVariant value = query.value(column);
    return value.isNull() ? std::nullopt : std::optional(value.toString());
}

} // namespace

ClipboardHistoryIndex::ItemInfo searchItem(SimpleClipboardItem item) {
    if (item.plainText && item.plainText->size() > kMaxSearchedCharacters)
        item.plainText->truncate(kMaxSearchedCharacters);
    return {item.id, searchableText(item)};
}

std::vector<ClipboardHistoryIndex::ItemInfo> loadSearchItems(const QString& storePath, QString* error) {
    std::vector<ClipboardHistoryIndex::ItemInfo> items;
    const QString name = "velmora-search-" + QUuid::createUuid().toString(QUuid::WithoutBraces);
    {
        QSqlDatabase db = QSqlDatabase::addDatabase("QSQLITE", name);
        db.setDatabaseName(storePath);
        db.setConnectOptions("QSQLITE_OPEN_READONLY;QSQLITE_BUSY_TIMEOUT=2000");
        if (!db.open()) {
            *error = db.lastError().text();
        } else {
            const ExternalStorage external(storePath + "_external");
            QSqlQuery query(db);
            query.setForwardOnly(true);
            if (!query.exec(
                    "SELECT id, plainText, url, fileURL, sourceWindowTitle, sourceAppName, sourceBundleId "
                    "FROM SimpleClipboardItem ORDER BY timestamp DESC, rowid DESC")) {
                *error = query.lastError().text();
            } else {
                while (query.next()) {
                    SimpleClipboardItem item;
                    item.id = QUuid::fromString(query.value(0).toString());
                    if (const auto file = text(query, 1)) {
                        if (const auto bytes = external.read(*file))
                            item.plainText = QString::fromUtf8(bytes->left(kMaxSearchedCharacters * 4));
                    }
                    item.url = text(query, 2);
                    item.fileURL = text(query, 3);
                    item.sourceWindowTitle = text(query, 4);
                    item.sourceAppName = text(query, 5);
                    item.sourceBundleId = text(query, 6);
                    items.push_back(searchItem(std::move(item)));
                }
            }
            db.close();
        }
    }
    QSqlDatabase::removeDatabase(name);
    return items;
}

} // namespace velmora
