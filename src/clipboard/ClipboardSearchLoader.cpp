#include "clipboard/ClipboardSearchLoader.h"

#include "clipboard/ClipboardSearchableText.h"
#include "clipboard/ExternalStorage.h"

#include <QFile>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QUuid>

namespace velmora {

namespace {

constexpr qsizetype kMaxSearchedCharacters = 64 * 1024;

} // namespace

ClipboardHistoryIndex::ItemInfo searchItem(SimpleClipboardItem item) {
    if (item.plainText && item.plainText->size() > kMaxSearchedCharacters)
        item.plainText->truncate(kMaxSearchedCharacters);
    return {item.id, searchableText(item)};
}

namespace {

// Builds each entry's searchable text in buffers that are used again for the next entry, and keeps
// only the finished text, in an allocation of its own exact size. A hundred thousand entries read
// with fresh strings for every field leave the heap full of holes that stay in the agent's footprint.
class SearchTextBuilder {
public:
    explicit SearchTextBuilder(QString storePath) : m_external(storePath + "_external") {}

    ClipboardHistoryIndex::ItemInfo build(const QSqlQuery& row) {
        m_plainText.clear();
        if (const QVariant file = row.value(1); !file.isNull())
            readPlainText(file.toString());
        const QString url = row.value(2).toString(), fileURL = row.value(3).toString(),
                      title = row.value(4).toString(), app = row.value(5).toString(),
                      bundle = row.value(6).toString();
        writeSearchableText({m_plainText, url, fileURL, title, row.value(5).isNull() ? bundle : app}, m_text);
        return {QUuid::fromString(row.value(0).toString()), QString(m_text.constData(), m_text.size())};
    }

private:
    void readPlainText(const QString& fileName) {
        QFile file(m_external.filePath(fileName));
        if (!file.open(QIODevice::ReadOnly))
            return; // an entry whose text file vanished is still found by its source
        m_bytes.resize(std::min<qint64>(file.size(), kMaxSearchedCharacters * 4));
        m_bytes.resize(std::max<qint64>(0, file.read(m_bytes.data(), m_bytes.size())));
        m_plainText = QString::fromUtf8(m_bytes).left(kMaxSearchedCharacters);
    }

    ExternalStorage m_external;
    QByteArray m_bytes;
    QString m_plainText;
    QString m_text;
};

} // namespace

std::vector<ClipboardHistoryIndex::Entry> loadSearchEntries(const QString& storePath, QString* error) {
    std::vector<ClipboardHistoryIndex::Entry> items;
    const QString name = "velmora-search-" + QUuid::createUuid().toString(QUuid::WithoutBraces);
    {
        QSqlDatabase db = QSqlDatabase::addDatabase("QSQLITE", name);
        db.setDatabaseName(storePath);
        db.setConnectOptions("QSQLITE_OPEN_READONLY;QSQLITE_BUSY_TIMEOUT=2000");
        if (!db.open()) {
            *error = db.lastError().text();
        } else {
            QSqlQuery query(db);
            query.setForwardOnly(true);
            if (query.exec("SELECT COUNT(*) FROM SimpleClipboardItem") && query.next())
                items.reserve(query.value(0).toULongLong());
            if (!query.exec(
                    "SELECT id, plainText, url, fileURL, sourceWindowTitle, sourceAppName, sourceBundleId "
                    "FROM SimpleClipboardItem ORDER BY timestamp DESC, rowid DESC")) {
                *error = query.lastError().text();
            } else {
                SearchTextBuilder builder(storePath);
                while (query.next())
                    items.push_back(ClipboardHistoryIndex::entryFor(builder.build(query)));
            }
            query.finish();
            db.close();
        }
    }
    QSqlDatabase::removeDatabase(name);
    return items;
}

} // namespace velmora
