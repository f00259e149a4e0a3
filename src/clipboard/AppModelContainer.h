#pragma once

#include "clipboard/ClipboardItemRow.h"
#include "clipboard/ExternalStorage.h"
#include "clipboard/SimpleClipboardItem.h"

#include <QByteArray>
#include <QObject>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QString>
#include <QUuid>

#include <functional>
#include <map>
#include <optional>
#include <vector>

namespace velmora {

// The clipboard history's persistent store: a SQLite database (WAL, foreign keys on) in the folder
// it is given, with the large values as files in `<store>_external` beside it. Folder and external
// folder are owner-only (0700), every file 0600.
//
// An item and its files are stored as a whole or not at all: the files are written before the
// transaction that names them commits and removed again when it does not; files of deleted rows
// are removed after the deletion commits, and whatever a crash left behind is swept at the next
// open. Main thread only.
class AppModelContainer : public QObject {
    Q_OBJECT
public:
    static constexpr auto kStoreFileName = "Velmora.store";

    explicit AppModelContainer(QString folder, QObject* parent = nullptr);
    ~AppModelContainer() override;
    AppModelContainer(const AppModelContainer&) = delete;
    AppModelContainer& operator=(const AppModelContainer&) = delete;

    // Opens the store, making it if needed. A damaged store, or one of another shape, is kept aside
    // as `Velmora.store.corrupt-<yyyyMMdd-hhmmss>` and a fresh one made. False, with errorString(),
    // when not even a fresh store can be made.
    bool open();
    bool isOpen() const { return m_db.isOpen(); }
    QString errorString() const { return m_error; }
    // The store file, as a plain path; empty while not open.
    QString path() const;

    // The files of an item's large values, written ahead of its row.
    struct ItemFiles {
        std::optional<QString> plainText, html, rtf, tabularText, thumbnailData;
        std::map<QString, QString> payload; // type -> file
        QStringList names() const;
    };

    // Stores the item with its payload (`inMemoryPayload` is attached as `payload` first) in one
    // transaction. False, with the history as it was, when that fails.
    bool persistItem(SimpleClipboardItem& item);
    // The same in two steps, so that large values reach the disk off the main thread: writeFiles() may
    // run on any thread while the store is open, persistItem() then commits the rows that name them
    // (or removes the files when it cannot). `inMemoryPayload` counts as the payload.
    std::optional<ItemFiles> writeFiles(const SimpleClipboardItem& item, QString* error) const;
    bool persistItem(SimpleClipboardItem& item, const ItemFiles& files);
    // Deletes the oldest items so that the stored ones plus `incoming` fit in `retention`.
    bool trim(int incoming, int retention);

    // Newest first (ties: the later stored first). Small fields and `plainText` only: the other
    // external values and the payload are left absent; representation() or item() read them.
    // A negative limit lists all.
    std::vector<SimpleClipboardItem> items(int limit, int offset = 0) const;
    // The item with every value, its payload included.
    std::optional<SimpleClipboardItem> item(const QUuid& id) const;
    std::optional<SimpleClipboardItem> mostRecent() const;
    // The items of these ids, as items() gives them, in the order of the ids; gone ones are left out.
    std::vector<SimpleClipboardItem> itemsWithIds(const std::vector<QUuid>& ids) const;
    // One representation: a payload type ("image/png"...), or "text/plain" (UTF-8), "text/html",
    // "text/rtf", "text/tab-separated-values", "thumbnail".
    std::optional<QByteArray> representation(const QUuid& id, const QString& type) const;
    int count() const;

    // False when there is no such item or payload, or the deletion failed.
    bool deleteItem(const QUuid& id);
    bool deletePayload(const QUuid& itemId);
    bool deleteAll();

    // The general key/value record; an absent value removes the key.
    bool setJsonValue(const QString& key, const std::optional<QByteArray>& jsonData);
    std::optional<QByteArray> jsonValue(const QString& key) const;

signals:
    // After every committed change.
    void changed();
    // The finer news of the same commits, for views that follow the history without reading it again.
    void itemAdded(const SimpleClipboardItem& item);
    void itemsRemoved(const QList<QUuid>& ids);
    void allRemoved();

private:
    enum class Check { Ready, Damaged, Failed };

    QString storePath() const;
    bool fail(const QString& reason);
    Check connect(QString* error);
    Check checkShape(bool* fresh, QString* error);
    bool configure(bool fresh, QString* error);
    bool setAside(QString* error);
    void disconnect();
    void tightenFileModes() const;
    void reconcileExternalFiles();

    QSqlQuery* statement(const QString& sql, QString* error) const;
    bool exec(const QString& sql, const QVariantList& values, QString* error) const;
    bool inTransaction(const std::function<bool(QString*)>& work, QString* error);

    bool insert(const SimpleClipboardItem& item, const ItemFiles& files, QString* error);
    std::optional<ClipboardItemRow> row(const QUuid& id, QString* error) const;
    void loadExternals(SimpleClipboardItem& item, const ClipboardItemRow& row) const;
    std::optional<SimpleClipboardPayload> loadPayload(const QUuid& id) const;
    std::optional<QStringList> filesOfItems(const std::optional<QUuid>& id, QString* error) const;
    std::optional<QByteArray> readExternal(const QString& name) const;
    // The item of the query's current row as lists show it: its values without the external ones,
    // the plain text excepted.
    SimpleClipboardItem listedItem(const QSqlQuery& query) const;
    bool deleteItems(const QList<QUuid>& ids, const char* function);

    QString m_folder;
    ExternalStorage m_storage;
    QString m_connectionName;
    QSqlDatabase m_db;
    QString m_error;
    // Prepared once per text and reused; cleared before the connection goes.
    mutable std::map<QString, QSqlQuery> m_statements;
};

} // namespace velmora
