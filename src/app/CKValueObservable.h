#pragma once

#include "app/LoggingManager.h"
#include "core/JsonCodec.h"
#include "core/MainThread.h"
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

    // Reads the local form written by an earlier run (or another process).
    void loadLocalValue();

signals:
    // Also sent when a change could not be stored, so that every view shows the value still in force.
    void valueChanged();
    // A change was refused because the settings cannot be written; reason in plain words.
    void writeFailed(const QString& reason);

protected:
    virtual bool publishDecoded(const std::optional<QByteArray>& data, QString* error) = 0;
    // Writes the current value; false (nothing written, the reason logged and announced) on failure.
    bool storeLocally(QString* error);

    QString modificationDateKey() const { return m_key + ".modificationDate"; }

    Defaults& m_defaults;
    LoggingManager& m_log;

private:
    QString m_key;
    bool m_isOptional;
    Status m_status = Status::ok;
    std::optional<double> m_modificationDate;
    bool m_writing = false;
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
