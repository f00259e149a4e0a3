#include "clipboard/AppModelContainer.h"

#include "clipboard/AppSchemaV2.h"
#include "clipboard/ClipboardLog.h"
#include "clipboard/ClipboardPayloadRow.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QSet>
#include <QSqlError>

#include <type_traits>

namespace velmora {

namespace {

constexpr auto kSetup = "setupAppModelContainer(): ";
constexpr auto kPersist = "persistItem(_:): ";
// Nobody else writes the store; a wait this long only covers a checkpoint of our own.
constexpr auto kConnectOptions = "QSQLITE_BUSY_TIMEOUT=500";
constexpr QFileDevice::Permissions kFileMode = QFileDevice::ReadOwner | QFileDevice::WriteOwner;
const QStringList kDatabaseSuffixes = {QString(), QStringLiteral("-wal"), QStringLiteral("-shm")};

QString nextConnectionName() {
    static int serial = 0;
    return QStringLiteral("velmora-clipboard-store-%1").arg(++serial);
}

// SQLITE_BUSY and SQLITE_LOCKED: another process holds the store, which says nothing of its health.
bool isBusy(const QSqlError& error) {
    return error.nativeErrorCode() == u"5" || error.nativeErrorCode() == u"6";
}

QString selectItemSql(const QString& tail) {
    return QStringLiteral("SELECT %1 FROM SimpleClipboardItem %2")
        .arg(AppSchemaV2::itemColumns().join(u", "), tail);
}

QString insertItemSql() {
    const QStringList& columns = AppSchemaV2::itemColumns();
    return QStringLiteral("INSERT INTO SimpleClipboardItem (%1) VALUES (%2)")
        .arg(columns.join(u", "), QStringList(columns.size(), QStringLiteral("?")).join(u", "));
}

void logPersistError(const QString& error) {
    qCWarning(lcClipboard).noquote()
        << QStringLiteral("%1Error persisting a clipboard item: %2").arg(kPersist, error);
}

} // namespace

AppModelContainer::AppModelContainer(QString folder, QObject* parent)
    : QObject(parent), m_folder(std::move(folder)),
      m_storage(m_folder + u'/' + QLatin1String(kStoreFileName) + QStringLiteral("_external")) {}

AppModelContainer::~AppModelContainer() {
    disconnect();
}

QString AppModelContainer::storePath() const {
    return m_folder + u'/' + QLatin1String(kStoreFileName);
}

QString AppModelContainer::path() const {
    return isOpen() ? QDir::cleanPath(storePath()) : QString();
}

// --- opening ------------------------------------------------------------------------------------

bool AppModelContainer::open() {
    if (isOpen())
        return true;
    m_error.clear();
    QString error;
    if (!ExternalStorage(m_folder).prepare(&error))
        return fail(error);
    for (bool firstTry = true;; firstTry = false) {
        const Check check = connect(&error);
        if (check == Check::Ready)
            break;
        if (check == Check::Failed || !firstTry)
            return fail(error);
        qCWarning(lcClipboard).noquote()
            << QStringLiteral("%1The clipboard history store %2 cannot be used (%3); it is kept aside and a "
                              "fresh one is made.")
                   .arg(kSetup, storePath(), error);
        if (!setAside(&error))
            return fail(error);
    }
    if (!m_storage.prepare(&error))
        return fail(error);
    tightenFileModes();
    reconcileExternalFiles();
    qCInfo(lcClipboard).noquote() << QStringLiteral("%1App model container is setup. %2").arg(kSetup, path());
    return true;
}

bool AppModelContainer::fail(const QString& reason) {
    disconnect();
    m_error = reason;
    qCWarning(lcClipboard).noquote()
        << QStringLiteral("%1The clipboard history store cannot be set up: %2").arg(kSetup, reason);
    return false;
}

AppModelContainer::Check AppModelContainer::connect(QString* error) {
    disconnect();
    const QString path = storePath();
    // Made here rather than by SQLite so that it is owner-only from the start; SQLite gives its
    // -wal and -shm files the database file's mode.
    if (!QFile::exists(path)) {
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly | QIODevice::NewOnly, kFileMode)) {
            *error = QStringLiteral("cannot create %1: %2").arg(path, file.errorString());
            return Check::Failed;
        }
    }
    m_connectionName = nextConnectionName();
    m_db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_connectionName);
    if (!m_db.isValid()) {
        *error = QStringLiteral("the SQLite driver of Qt Sql is not installed");
        return Check::Failed;
    }
    m_db.setDatabaseName(path);
    m_db.setConnectOptions(QLatin1String(kConnectOptions));
    if (!m_db.open()) {
        *error = m_db.lastError().text();
        return Check::Damaged;
    }
    bool fresh = false;
    const Check shape = checkShape(&fresh, error);
    if (shape != Check::Ready)
        return shape;
    return configure(fresh, error) ? Check::Ready : Check::Failed;
}

AppModelContainer::Check AppModelContainer::checkShape(bool* fresh, QString* error) {
    QSqlQuery query(m_db);
    const auto failed = [&] {
        *error = query.lastError().text();
        return isBusy(query.lastError()) ? Check::Failed : Check::Damaged;
    };
    if (!query.exec(QStringLiteral("PRAGMA user_version")) || !query.next())
        return failed();
    const int version = query.value(0).toInt();
    if (version == 0) {
        if (!query.exec(QStringLiteral("SELECT count(*) FROM sqlite_master")) || !query.next())
            return failed();
        if (query.value(0).toInt() != 0) {
            *error = QStringLiteral("it holds tables of an unknown shape");
            return Check::Damaged;
        }
        *fresh = true;
        return Check::Ready;
    }
    if (version != AppSchemaV2::kVersion) {
        *error = QStringLiteral("its schema version is %1, this program reads %2")
                     .arg(version)
                     .arg(AppSchemaV2::kVersion);
        return Check::Damaged;
    }
    if (!query.exec(QStringLiteral("PRAGMA integrity_check")) || !query.next())
        return failed();
    const QString verdict = query.value(0).toString();
    if (verdict != u"ok") {
        *error = QStringLiteral("the integrity check says: %1").arg(verdict);
        return Check::Damaged;
    }
    return Check::Ready;
}

bool AppModelContainer::configure(bool fresh, QString* error) {
    QSqlQuery query(m_db);
    const auto run = [&](const QString& sql) {
        if (query.exec(sql))
            return true;
        *error = QStringLiteral("%1: %2").arg(sql, query.lastError().text());
        return false;
    };
    if (!run(QStringLiteral("PRAGMA foreign_keys = ON")) || !run(QStringLiteral("PRAGMA journal_mode = WAL")))
        return false;
    if (query.next() && query.value(0).toString() != u"wal")
        qCWarning(lcClipboard).noquote()
            << QStringLiteral("%1The store keeps a %2 journal, not a write-ahead log.")
                   .arg(kSetup, query.value(0).toString());
    // With a write-ahead log this keeps every commit consistent; only the last ones may be lost to
    // a power cut, which a clipboard history can afford for fast copies.
    if (!run(QStringLiteral("PRAGMA synchronous = NORMAL")))
        return false;
    if (!fresh)
        return true;
    query.finish();
    return inTransaction(
        [&](QString* error) {
            for (const QString& sql : AppSchemaV2::creationStatements()) {
                if (!query.exec(sql)) {
                    *error = QStringLiteral("%1: %2").arg(sql, query.lastError().text());
                    return false;
                }
            }
            return true;
        },
        error);
}

bool AppModelContainer::setAside(QString* error) {
    disconnect();
    const QString path = storePath();
    const QString stamp = QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-hhmmss"));
    QString aside = QStringLiteral("%1.corrupt-%2").arg(path, stamp);
    for (int n = 2; QFile::exists(aside) || QFile::exists(aside + QStringLiteral("_external")); ++n)
        aside = QStringLiteral("%1.corrupt-%2-%3").arg(path, stamp).arg(n);
    // The log and the shared memory go with it: a fresh database must not replay an old log.
    for (const QString& suffix : kDatabaseSuffixes) {
        if (QFile::exists(path + suffix) && !QFile::rename(path + suffix, aside + suffix)) {
            *error = QStringLiteral("cannot move %1 aside").arg(path + suffix);
            return false;
        }
    }
    // Its files stay with it; the fresh store would otherwise sweep them as nobody's.
    if (QFileInfo::exists(m_storage.folder()) &&
        !QDir().rename(m_storage.folder(), aside + QStringLiteral("_external"))) {
        *error = QStringLiteral("cannot move %1 aside").arg(m_storage.folder());
        return false;
    }
    qCWarning(lcClipboard).noquote() << QStringLiteral("%1The old store is kept as %2").arg(kSetup, aside);
    return true;
}

void AppModelContainer::disconnect() {
    m_statements.clear();
    if (m_db.isValid())
        m_db.close();
    m_db = QSqlDatabase();
    if (!m_connectionName.isEmpty())
        QSqlDatabase::removeDatabase(m_connectionName);
    m_connectionName.clear();
}

void AppModelContainer::tightenFileModes() const {
    for (const QString& suffix : kDatabaseSuffixes) {
        const QString file = storePath() + suffix;
        if (QFile::exists(file) && QFile::permissions(file) != kFileMode)
            QFile::setPermissions(file, kFileMode);
    }
}

// Files no row names are left by a crash between writing and committing (or committing and
// removing): they are removed. A row naming a missing file can only come from outside hands or a
// power cut; that one value is dropped (a payload left with nothing is dropped with it, a JSON value
// is dropped whole) so that the rest of the entry stays usable.
void AppModelContainer::reconcileExternalFiles() {
    const QStringList present = m_storage.names();
    const QSet<QString> onDisk(present.begin(), present.end());
    QSet<QString> named;
    struct Repair {
        QString sql;
        QVariantList values;
    };
    std::vector<Repair> repairs;
    QStringList missing;
    const auto check = [&](const QString& file) {
        named.insert(file);
        if (onDisk.contains(file))
            return true;
        missing.append(file);
        return false;
    };
    QString error;
    QSqlQuery query(m_db);
    query.setForwardOnly(true);
    const QStringList& externals = AppSchemaV2::itemExternalColumns();
    bool complete =
        query.exec(QStringLiteral("SELECT id, %1 FROM SimpleClipboardItem").arg(externals.join(u", ")));
    while (complete && query.next()) {
        for (int i = 0; i < externals.size(); ++i) {
            if (!query.isNull(i + 1) && !check(query.value(i + 1).toString())) {
                repairs.push_back({QStringLiteral("UPDATE SimpleClipboardItem SET %1 = NULL WHERE id = ?")
                                       .arg(externals[i]),
                                   {query.value(0)}});
            }
        }
    }
    complete = complete && query.exec(QStringLiteral("SELECT item, data FROM SimpleClipboardPayload"));
    while (complete && query.next()) {
        auto payload = ClipboardPayloadRow::fromText(query.value(1).toString());
        const qsizetype before = payload ? qsizetype(payload->files.size()) : -1;
        if (payload)
            std::erase_if(payload->files, [&](const auto& entry) { return !check(entry.second); });
        if (payload && qsizetype(payload->files.size()) == before)
            continue;
        if (payload && !payload->files.empty()) {
            repairs.push_back({QStringLiteral("UPDATE SimpleClipboardPayload SET data = ? WHERE item = ?"),
                               {payload->toText(), query.value(0)}});
        } else {
            repairs.push_back(
                {QStringLiteral("DELETE FROM SimpleClipboardPayload WHERE item = ?"), {query.value(0)}});
        }
    }
    complete = complete && query.exec(QStringLiteral("SELECT key, jsonData FROM JSONValue"));
    while (complete && query.next()) {
        if (!query.isNull(1) && !check(query.value(1).toString())) {
            repairs.push_back({QStringLiteral("DELETE FROM JSONValue WHERE key = ?"), {query.value(0)}});
        }
    }
    if (!complete) {
        // Without every name known, a sweep could take a file that a row needs.
        qCWarning(lcClipboard).noquote() << QStringLiteral("%1Cannot look through the stored files: %2")
                                                .arg(kSetup, query.lastError().text());
        return;
    }
    query.finish();
    if (!repairs.empty()) {
        qCWarning(lcClipboard).noquote()
            << QStringLiteral("%1%2 stored value(s) have lost their file and are dropped: %3")
                   .arg(kSetup)
                   .arg(missing.size())
                   .arg(missing.join(u", "));
        const bool repaired = inTransaction(
            [&](QString* error) {
                for (const Repair& repair : repairs) {
                    if (!exec(repair.sql, repair.values, error))
                        return false;
                }
                return true;
            },
            &error);
        if (!repaired)
            qCWarning(lcClipboard).noquote()
                << QStringLiteral("%1Cannot drop the values without a file: %2").arg(kSetup, error);
    }
    QStringList orphans;
    for (const QString& file : present) {
        if (!named.contains(file))
            orphans.append(file);
    }
    if (!orphans.isEmpty()) {
        qCInfo(lcClipboard).noquote() << QStringLiteral("%1Removing %2 stored file(s) that no entry names.")
                                             .arg(kSetup)
                                             .arg(orphans.size());
        m_storage.remove(orphans);
    }
}

// --- statements ---------------------------------------------------------------------------------

QSqlQuery* AppModelContainer::statement(const QString& sql, QString* error) const {
    if (const auto it = m_statements.find(sql); it != m_statements.end())
        return &it->second;
    if (!isOpen()) {
        *error = QStringLiteral("the store is not open");
        return nullptr;
    }
    QSqlQuery query(m_db);
    query.setForwardOnly(true);
    if (!query.prepare(sql)) {
        *error = QStringLiteral("%1: %2").arg(sql, query.lastError().text());
        return nullptr;
    }
    return &m_statements.emplace(sql, std::move(query)).first->second;
}

bool AppModelContainer::exec(const QString& sql, const QVariantList& values, QString* error) const {
    QSqlQuery* query = statement(sql, error);
    if (!query)
        return false;
    for (qsizetype i = 0; i < values.size(); ++i)
        query->bindValue(int(i), values[i]);
    const bool done = query->exec();
    if (!done)
        *error = query->lastError().text();
    query->finish();
    return done;
}

bool AppModelContainer::inTransaction(const std::function<bool(QString*)>& work, QString* error) {
    if (!m_db.transaction()) {
        *error = m_db.lastError().text();
        return false;
    }
    if (work(error) && m_db.commit())
        return true;
    if (error->isEmpty())
        *error = m_db.lastError().text();
    m_db.rollback();
    return false;
}

// --- writing ------------------------------------------------------------------------------------

QStringList AppModelContainer::ItemFiles::names() const {
    QStringList all;
    for (const auto* file : {&plainText, &html, &rtf, &tabularText, &thumbnailData})
        if (*file)
            all << **file;
    for (const auto& [type, file] : payload)
        all << file;
    return all;
}

std::optional<AppModelContainer::ItemFiles> AppModelContainer::writeFiles(const SimpleClipboardItem& item,
                                                                          QString* error) const {
    PendingFiles written(m_storage);
    ItemFiles files;
    const auto store = [&](const auto& value, std::optional<QString>& file) {
        if (!value)
            return true;
        if constexpr (std::is_same_v<std::decay_t<decltype(*value)>, QString>)
            file = written.write(value->toUtf8(), error);
        else
            file = written.write(*value, error);
        return file.has_value();
    };
    if (!store(item.plainText, files.plainText) || !store(item.html, files.html) ||
        !store(item.rtf, files.rtf) || !store(item.tabularText, files.tabularText) ||
        !store(item.thumbnailData, files.thumbnailData))
        return std::nullopt;
    const auto& payload = item.inMemoryPayload ? item.inMemoryPayload : item.payload;
    if (payload) {
        for (const auto& [type, bytes] : payload->data) {
            const auto file = written.write(bytes, error);
            if (!file)
                return std::nullopt;
            files.payload.emplace(type, *file);
        }
    }
    written.keep(); // from here on they belong to the caller, who commits or removes them
    return files;
}

bool AppModelContainer::persistItem(SimpleClipboardItem& item) {
    QString error;
    const auto files = writeFiles(item, &error);
    if (!files) {
        logPersistError(error);
        return false;
    }
    return persistItem(item, *files);
}

bool AppModelContainer::persistItem(SimpleClipboardItem& item, const ItemFiles& files) {
    if (item.inMemoryPayload) {
        qCInfo(lcClipboard).noquote() << QStringLiteral("%1Clipboard History: payload exists").arg(kPersist);
        item.payload = std::move(item.inMemoryPayload);
        item.inMemoryPayload.reset();
    }
    QString error;
    if (!insert(item, files, &error)) {
        m_storage.remove(files.names());
        logPersistError(error);
        return false;
    }
    emit itemAdded(item);
    emit changed();
    return true;
}

bool AppModelContainer::insert(const SimpleClipboardItem& item, const ItemFiles& files, QString* error) {
    if (!isOpen()) {
        *error = QStringLiteral("the store is not open");
        return false;
    }
    ClipboardItemRow row;
    row.item = item;
    row.plainTextFile = files.plainText;
    row.htmlFile = files.html;
    row.rtfFile = files.rtf;
    row.tabularTextFile = files.tabularText;
    row.thumbnailDataFile = files.thumbnailData;
    ClipboardPayloadRow payloadRow;
    payloadRow.files = files.payload;
    const bool hasPayload = item.payload.has_value();
    return inTransaction(
        [&](QString* error) {
            QSqlQuery* query = statement(insertItemSql(), error);
            if (!query)
                return false;
            row.bindTo(*query);
            const bool inserted = query->exec();
            if (!inserted)
                *error = query->lastError().text();
            query->finish();
            if (!inserted || !hasPayload)
                return inserted;
            return exec(QStringLiteral("INSERT INTO SimpleClipboardPayload (item, data) VALUES (?, ?)"),
                        {ClipboardItemRow::idText(item.id), payloadRow.toText()}, error);
        },
        error);
}

bool AppModelContainer::trim(int incoming, int retention) {
    if (!isOpen())
        return false;
    const int excess = count() + incoming - retention;
    if (excess <= 0)
        return true;
    QString error;
    QSqlQuery* query = statement(
        QStringLiteral("SELECT id FROM SimpleClipboardItem ORDER BY timestamp ASC, rowid ASC LIMIT ?"),
        &error);
    QList<QUuid> oldest;
    if (query) {
        query->bindValue(0, excess);
        if (query->exec()) {
            while (query->next())
                oldest.append(QUuid::fromString(query->value(0).toString()));
        } else {
            error = query->lastError().text();
        }
        query->finish();
    }
    if (!error.isEmpty()) {
        qCWarning(lcClipboard).noquote()
            << QStringLiteral("trim(): Cannot find the oldest entries: %1").arg(error);
        return false;
    }
    return deleteItems(oldest, "trim()");
}

bool AppModelContainer::deleteItem(const QUuid& id) {
    return deleteItems({id}, "deleteItem(_:)");
}

bool AppModelContainer::deleteItems(const QList<QUuid>& ids, const char* function) {
    QString error;
    QStringList files;
    for (const QUuid& id : ids) {
        const auto itemFiles = filesOfItems(id, &error);
        if (!itemFiles) {
            if (!error.isEmpty())
                qCWarning(lcClipboard).noquote() << QStringLiteral("%1: %2").arg(function, error);
            return false;
        }
        files += *itemFiles;
    }
    if (ids.isEmpty())
        return true;
    const bool deleted = inTransaction(
        [&](QString* error) {
            for (const QUuid& id : ids) {
                if (!exec(QStringLiteral("DELETE FROM SimpleClipboardItem WHERE id = ?"),
                          {ClipboardItemRow::idText(id)}, error))
                    return false;
            }
            return true;
        },
        &error);
    if (!deleted) {
        qCWarning(lcClipboard).noquote()
            << QStringLiteral("%1: Error deleting clipboard items: %2").arg(function, error);
        return false;
    }
    m_storage.remove(files);
    emit itemsRemoved(ids);
    emit changed();
    return true;
}

bool AppModelContainer::deletePayload(const QUuid& itemId) {
    QString error;
    QSqlQuery* query =
        statement(QStringLiteral("SELECT data FROM SimpleClipboardPayload WHERE item = ?"), &error);
    std::optional<QString> data;
    if (query) {
        query->bindValue(0, ClipboardItemRow::idText(itemId));
        if (query->exec() && query->next())
            data = query->value(0).toString();
        query->finish();
    }
    if (!data)
        return false;
    const bool deleted = inTransaction(
        [&](QString* error) {
            return exec(QStringLiteral("DELETE FROM SimpleClipboardPayload WHERE item = ?"),
                        {ClipboardItemRow::idText(itemId)}, error);
        },
        &error);
    if (!deleted) {
        qCWarning(lcClipboard).noquote() << QStringLiteral("deletePayload(_:): %1").arg(error);
        return false;
    }
    if (const auto payload = ClipboardPayloadRow::fromText(*data))
        m_storage.remove(payload->fileNames());
    emit changed();
    return true;
}

bool AppModelContainer::deleteAll() {
    QString error;
    const auto files = filesOfItems(std::nullopt, &error);
    const bool deleted =
        files && inTransaction(
                     [&](QString* error) {
                         return exec(QStringLiteral("DELETE FROM SimpleClipboardItem"), {}, error);
                     },
                     &error);
    if (!deleted) {
        qCWarning(lcClipboard).noquote() << QStringLiteral("deleteAll(): %1").arg(error);
        return false;
    }
    m_storage.remove(*files);
    emit allRemoved();
    emit changed();
    return true;
}

bool AppModelContainer::setJsonValue(const QString& key, const std::optional<QByteArray>& jsonData) {
    QString error;
    PendingFiles files(m_storage);
    std::optional<QString> file;
    if (jsonData && !(file = files.write(*jsonData, &error))) {
        qCWarning(lcClipboard).noquote() << QStringLiteral("setJsonValue(_:_:): %1").arg(error);
        return false;
    }
    std::optional<QString> previous;
    const bool stored = inTransaction(
        [&](QString* error) {
            QSqlQuery* query =
                statement(QStringLiteral("SELECT jsonData FROM JSONValue WHERE key = ?"), error);
            if (!query)
                return false;
            query->bindValue(0, key);
            if (!query->exec()) {
                *error = query->lastError().text();
                return false;
            }
            if (query->next() && !query->isNull(0))
                previous = query->value(0).toString();
            query->finish();
            if (!file)
                return exec(QStringLiteral("DELETE FROM JSONValue WHERE key = ?"), {key}, error);
            return exec(QStringLiteral("INSERT OR REPLACE INTO JSONValue (key, jsonData) VALUES (?, ?)"),
                        {key, *file}, error);
        },
        &error);
    if (!stored) {
        qCWarning(lcClipboard).noquote() << QStringLiteral("setJsonValue(_:_:): %1").arg(error);
        return false;
    }
    files.keep();
    if (previous)
        m_storage.remove({*previous});
    emit changed();
    return true;
}

// --- reading ------------------------------------------------------------------------------------

int AppModelContainer::count() const {
    QString error;
    QSqlQuery* query = statement(QStringLiteral("SELECT count(*) FROM SimpleClipboardItem"), &error);
    if (!query || !query->exec() || !query->next()) {
        if (query)
            query->finish();
        return 0;
    }
    const int n = query->value(0).toInt();
    query->finish();
    return n;
}

std::vector<SimpleClipboardItem> AppModelContainer::items(int limit, int offset) const {
    std::vector<SimpleClipboardItem> result;
    QString error;
    QSqlQuery* query = statement(
        selectItemSql(QStringLiteral("ORDER BY timestamp DESC, rowid DESC LIMIT ? OFFSET ?")), &error);
    if (!query)
        return result;
    query->bindValue(0, limit < 0 ? -1 : limit);
    query->bindValue(1, std::max(offset, 0));
    if (!query->exec()) {
        qCWarning(lcClipboard).noquote() << QStringLiteral("items(): %1").arg(query->lastError().text());
        return result;
    }
    while (query->next())
        result.push_back(listedItem(*query));
    query->finish();
    return result;
}

std::optional<ClipboardItemRow> AppModelContainer::row(const QUuid& id, QString* error) const {
    QSqlQuery* query = statement(selectItemSql(QStringLiteral("WHERE id = ?")), error);
    if (!query)
        return std::nullopt;
    query->bindValue(0, ClipboardItemRow::idText(id));
    std::optional<ClipboardItemRow> found;
    if (!query->exec())
        *error = query->lastError().text();
    else if (query->next())
        found = ClipboardItemRow::read(*query);
    query->finish();
    return found;
}

std::optional<SimpleClipboardItem> AppModelContainer::item(const QUuid& id) const {
    QString error;
    auto found = row(id, &error);
    if (!found)
        return std::nullopt;
    loadExternals(found->item, *found);
    found->item.payload = loadPayload(id);
    return std::move(found->item);
}

std::vector<SimpleClipboardItem> AppModelContainer::itemsWithIds(const std::vector<QUuid>& ids) const {
    // A statement per page of ids, not per id: the history window reads a page of a search's
    // results at each keystroke, and twenty look-ups took a millisecond.
    constexpr qsizetype kIdsPerStatement = 20;
    static const QString sql =
        selectItemSql(QStringLiteral("WHERE id IN (%1)")
                          .arg(QStringList(kIdsPerStatement, QStringLiteral("?")).join(u", ")));
    QHash<QUuid, SimpleClipboardItem> found;
    QString error;
    for (std::size_t from = 0; from < ids.size() && error.isEmpty(); from += kIdsPerStatement) {
        QSqlQuery* query = statement(sql, &error);
        if (!query)
            break;
        for (qsizetype k = 0; k < kIdsPerStatement; ++k) {
            const std::size_t i = from + std::size_t(k);
            // An empty id stands for none: no entry has one.
            query->bindValue(int(k), i < ids.size() ? ClipboardItemRow::idText(ids[i]) : QString());
        }
        if (!query->exec())
            error = query->lastError().text();
        while (query->next()) {
            SimpleClipboardItem item = listedItem(*query);
            const QUuid id = item.id;
            found.insert(id, std::move(item));
        }
        query->finish();
    }
    if (!error.isEmpty())
        qCWarning(lcClipboard).noquote() << QStringLiteral("itemsWithIds(): %1").arg(error);
    std::vector<SimpleClipboardItem> result;
    result.reserve(std::size_t(found.size()));
    for (const QUuid& id : ids) {
        if (auto it = found.find(id); it != found.end())
            result.push_back(*it);
    }
    return result;
}

std::optional<SimpleClipboardItem> AppModelContainer::mostRecent() const {
    QString error;
    QSqlQuery* query = statement(
        QStringLiteral("SELECT id FROM SimpleClipboardItem ORDER BY timestamp DESC, rowid DESC LIMIT 1"),
        &error);
    if (!query || !query->exec())
        return std::nullopt;
    std::optional<QUuid> id;
    if (query->next())
        id = QUuid::fromString(query->value(0).toString());
    query->finish();
    return id ? item(*id) : std::nullopt;
}

void AppModelContainer::loadExternals(SimpleClipboardItem& item, const ClipboardItemRow& row) const {
    const auto load = [&](const std::optional<QString>& file) {
        return file ? readExternal(*file) : std::nullopt;
    };
    if (const auto text = load(row.plainTextFile))
        item.plainText = QString::fromUtf8(*text);
    item.html = load(row.htmlFile);
    item.rtf = load(row.rtfFile);
    item.tabularText = load(row.tabularTextFile);
    item.thumbnailData = load(row.thumbnailDataFile);
}

std::optional<SimpleClipboardPayload> AppModelContainer::loadPayload(const QUuid& id) const {
    QString error;
    QSqlQuery* query =
        statement(QStringLiteral("SELECT data FROM SimpleClipboardPayload WHERE item = ?"), &error);
    if (!query)
        return std::nullopt;
    query->bindValue(0, ClipboardItemRow::idText(id));
    std::optional<QString> data;
    if (query->exec() && query->next())
        data = query->value(0).toString();
    query->finish();
    if (!data)
        return std::nullopt;
    const auto row = ClipboardPayloadRow::fromText(*data);
    if (!row) {
        qCWarning(lcClipboard).noquote()
            << QStringLiteral("The payload of %1 cannot be read.").arg(ClipboardItemRow::idText(id));
        return std::nullopt;
    }
    SimpleClipboardPayload payload;
    for (const auto& [type, file] : row->files) {
        if (auto bytes = readExternal(file))
            payload.data.emplace(type, std::move(*bytes));
    }
    return payload;
}

std::optional<QByteArray> AppModelContainer::representation(const QUuid& id, const QString& type) const {
    QString error;
    if (const auto column = ClipboardItemRow::externalColumnFor(type)) {
        QSqlQuery* query =
            statement(QStringLiteral("SELECT %1 FROM SimpleClipboardItem WHERE id = ?").arg(*column), &error);
        if (!query)
            return std::nullopt;
        query->bindValue(0, ClipboardItemRow::idText(id));
        std::optional<QString> file;
        if (query->exec() && query->next() && !query->isNull(0))
            file = query->value(0).toString();
        query->finish();
        return file ? readExternal(*file) : std::nullopt;
    }
    QSqlQuery* query =
        statement(QStringLiteral("SELECT data FROM SimpleClipboardPayload WHERE item = ?"), &error);
    if (!query)
        return std::nullopt;
    query->bindValue(0, ClipboardItemRow::idText(id));
    std::optional<ClipboardPayloadRow> payload;
    if (query->exec() && query->next())
        payload = ClipboardPayloadRow::fromText(query->value(0).toString());
    query->finish();
    if (!payload)
        return std::nullopt;
    const auto file = payload->files.find(type);
    return file == payload->files.end() ? std::nullopt : readExternal(file->second);
}

std::optional<QByteArray> AppModelContainer::jsonValue(const QString& key) const {
    QString error;
    QSqlQuery* query = statement(QStringLiteral("SELECT jsonData FROM JSONValue WHERE key = ?"), &error);
    if (!query)
        return std::nullopt;
    query->bindValue(0, key);
    std::optional<QString> file;
    if (query->exec() && query->next() && !query->isNull(0))
        file = query->value(0).toString();
    query->finish();
    return file ? readExternal(*file) : std::nullopt;
}

std::optional<QStringList> AppModelContainer::filesOfItems(const std::optional<QUuid>& id,
                                                           QString* error) const {
    const QString sql =
        QStringLiteral("SELECT i.plainText, i.html, i.rtf, i.tabularText, i.thumbnailData, p.data"
                       " FROM SimpleClipboardItem i LEFT JOIN SimpleClipboardPayload p ON p.item = i.id%1")
            .arg(id ? QStringLiteral(" WHERE i.id = ?") : QString());
    QSqlQuery* query = statement(sql, error);
    if (!query)
        return std::nullopt;
    if (id)
        query->bindValue(0, ClipboardItemRow::idText(*id));
    if (!query->exec()) {
        *error = query->lastError().text();
        return std::nullopt;
    }
    QStringList files;
    bool found = false;
    while (query->next()) {
        found = true;
        for (int i = 0; i < 5; ++i) {
            if (!query->isNull(i))
                files.append(query->value(i).toString());
        }
        if (!query->isNull(5)) {
            if (const auto payload = ClipboardPayloadRow::fromText(query->value(5).toString()))
                files += payload->fileNames();
        }
    }
    query->finish();
    if (id && !found)
        return std::nullopt; // no such item: nothing to report beyond the false
    return files;
}

SimpleClipboardItem AppModelContainer::listedItem(const QSqlQuery& query) const {
    ClipboardItemRow row = ClipboardItemRow::read(query);
    if (row.plainTextFile) {
        if (const auto text = readExternal(*row.plainTextFile))
            row.item.plainText = QString::fromUtf8(*text);
    }
    return std::move(row.item);
}

std::optional<QByteArray> AppModelContainer::readExternal(const QString& name) const {
    QString error;
    auto bytes = m_storage.read(name, &error);
    if (!bytes)
        qCWarning(lcClipboard).noquote() << QStringLiteral("A stored value cannot be read: %1").arg(error);
    return bytes;
}

} // namespace velmora
