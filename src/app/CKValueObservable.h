#pragma once

#include "app/LoggingManager.h"
#include "core/JsonCodec.h"
#include "core/MainThread.h"
#include "platform/CloudDatabase.h"
#include "platform/Defaults.h"

#include <QDateTime>
#include <functional>
#include <optional>
#include <utility>

namespace velmora {

// The untyped side of a synchronised preference value: its key, its stored form and its status, so
// that the command line and the store can treat every record alike.
class CKValueObservableBase : public QObject {
    Q_OBJECT
public:
    enum class Status { syncing, error, ok };

    static constexpr const char* kRecordType = "CD_JSONValue";
    static constexpr const char* kDataRecordKey = "CD_jsonData";
    static constexpr const char* kKeyRecordKey = "CD_key";

    CKValueObservableBase(QString key, bool isOptional, Defaults& defaults, LoggingManager& log,
                          QObject* parent);

    const QString& key() const { return m_key; }
    bool isOptional() const { return m_isOptional; }
    Status status() const { return m_status; }
    std::optional<double> modificationDate() const { return m_modificationDate; }

    // The value as stored: JSON text for records, raw bytes for the optional image; empty when absent.
    virtual QByteArray data() const = 0;
    // Decodes and checks first; on success assigns the whole value (stored at once), else leaves it
    // untouched. *error says why in plain words.
    virtual bool assignData(const QByteArray& data, QString* error) = 0;
    // Whether data decodes to the value in force (however it is spaced or ordered).
    virtual bool holds(const QByteArray& data) const = 0;

    // Reads the local form written by an earlier run (or another process).
    void loadLocalValue();

    // One synchronisation with the cloud's record (its log entries name it perfomSync()): the newer
    // side wins, the value stays in force on any failure. A call while one runs is folded into it:
    // the running one goes round once more. done(true) once the value and the cloud agree.
    void performSync(CloudDatabase& database, std::function<void(bool)> done = {});
    bool isSyncing() const { return m_sync.running; }
    QString lastSyncError() const { return m_sync.lastError; }
    // The cloud's version of the record when this machine last agreed with it; empty when it never
    // did with the account in use (a machine that has never synchronised adopts the cloud's values).
    QString cloudTag() const;
    // For a new account: what was agreed with the previous one says nothing about it.
    void forgetCloudTag();

signals:
    // Also sent when a change could not be stored, so that every view shows the value still in force.
    void valueChanged();
    // The value was changed here (not taken from the cloud) and stored: the cloud should hear of it.
    void changedLocally();
    void statusChanged();
    // A change was refused because the settings cannot be written; reason in plain words.
    void writeFailed(const QString& reason);

protected:
    virtual bool publishDecoded(const std::optional<QByteArray>& data, QString* error) = 0;
    // Writes the current value; false (nothing written, the reason logged and announced) on failure.
    bool storeLocally(QString* error);

    QString modificationDateKey() const { return m_key + ".modificationDate"; }
    QString cloudTagKey() const { return m_key + ".cloudTag"; }
    // Each successful local change counts, so that a sync can tell that the value moved under it.
    void countLocalChange();

    Defaults& m_defaults;
    LoggingManager& m_log;

private:
    static constexpr int kMaxConflicts = 7;

    struct SyncRun {
        bool running = false;
        bool again = false;
        CloudDatabase* database = nullptr;
        int conflicts = 0;
        quint64 changesAtFetch = 0;
        QString lastError;
        std::vector<std::function<void(bool)>> waiting;
    };

    bool writeLocalForm(const QByteArray& bytes, double date);
    void setStatus(Status status);
    void fetchForSync(CloudDatabase& database);
    void decide(CloudDatabase& database, const CloudFetchResult& fetched);
    void push(CloudDatabase& database, const QString& expectedTag);
    bool adopt(const CloudRecord& record, double clockOffset, QString* error);
    bool localIsLater(const CloudRecord& record, double clockOffset) const;
    void rememberCloudTag(const QString& tag);
    void finishSync(bool ok, const QString& error = {});

    QString m_key;
    bool m_isOptional;
    Status m_status = Status::ok;
    std::optional<double> m_modificationDate;
    bool m_writing = false;
    quint64 m_localChanges = 0;
    SyncRun m_sync;
};

// One synchronised preference value, read and written whole.
template <class T> class CKValueObservable final : public CKValueObservableBase {
public:
    using ToData = std::function<QByteArray(const T&)>;
    using FromData = std::function<std::optional<T>(const std::optional<QByteArray>&, QString* error)>;

    CKValueObservable(QString key, T defaultValue, bool isOptional, ToData toData, FromData fromData,
                      Defaults& defaults, LoggingManager& log, QObject* parent = nullptr)
        : CKValueObservableBase(std::move(key), isOptional, defaults, log, parent),
          m_value(std::move(defaultValue)), m_toData(std::move(toData)), m_fromData(std::move(fromData)) {
        loadLocalValue();
    }

    using Check = std::function<std::optional<QString>(const T&)>;

    const T& value() const { return m_value; }
    // Stores the whole value; false when it cannot be stored, and the previous value stays.
    bool setValue(T value, QString* error = nullptr) {
        assertMainThread("CKValueObservable::setValue");
        T previous = std::exchange(m_value, std::move(value));
        const bool stored = storeLocally(error);
        if (!stored)
            m_value = std::move(previous);
        emit valueChanged();
        if (stored)
            countLocalChange();
        return stored;
    }
    // What a value from outside (the command line) must satisfy beyond decoding.
    void setCheck(Check check) { m_check = std::move(check); }

    QByteArray data() const override { return m_toData(m_value); }
    bool assignData(const QByteArray& data, QString* error) override {
        auto decoded = m_fromData(data, error);
        if (!decoded)
            return false;
        if (m_check)
            if (const auto problem = m_check(*decoded)) {
                if (error)
                    *error = *problem;
                return false;
            }
        return setValue(std::move(*decoded), error);
    }

    bool holds(const QByteArray& data) const override {
        const auto decoded = m_fromData(data, nullptr);
        return decoded && *decoded == m_value;
    }

protected:
    bool publishDecoded(const std::optional<QByteArray>& data, QString* error) override {
        auto decoded = m_fromData(data, error);
        if (!decoded)
            return false;
        if (!(*decoded == m_value)) {
            m_value = std::move(*decoded);
            emit valueChanged();
        }
        return true;
    }

private:
    T m_value;
    ToData m_toData;
    FromData m_fromData;
    Check m_check;
};

// The encoder/decoder pair of a JSON record.
template <class T> QByteArray encodeRecord(const T& value) {
    return QByteArray::fromStdString(encodeJson(value));
}
template <class T> std::optional<T> decodeRecord(const std::optional<QByteArray>& data, QString* error) {
    if (!data) {
        if (error)
            *error = "no data";
        return std::nullopt;
    }
    std::string reason;
    auto value = decodeJson<T>(data->toStdString(), &reason);
    if (!value && error)
        *error = QString::fromStdString(reason);
    return value;
}

} // namespace velmora
