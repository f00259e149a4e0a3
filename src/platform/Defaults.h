#pragma once

#include <QObject>
#include <QString>
#include <QVariant>

#include <optional>

namespace velmora {

// The user's defaults database: typed entries under string keys. Changes made by this process and by
// others (another instance, the user editing the file) are both announced through valueChanged.
class Defaults : public QObject {
    Q_OBJECT
public:
    using QObject::QObject;
    ~Defaults() override = default;

    virtual std::optional<QVariant> value(const QString& key) const = 0;
    // Each returns false, with the entry as it was, when the change cannot be stored (a read-only
    // file or folder, a full disk); lastWriteError() then says why in plain words.
    virtual bool setValue(const QString& key, const QVariant& value) = 0;
    virtual bool remove(const QString& key) = 0;
    virtual QString lastWriteError() const { return {}; }

signals:
    void valueChanged(const QString& key);
};

} // namespace velmora
