#pragma once

#include "platform/Defaults.h"

namespace velmora {

// One defaults entry as an observable value: setting it writes the entry, and a change of the entry
// from elsewhere updates it.
class UserDefaultsObservable : public QObject {
    Q_OBJECT
public:
    UserDefaultsObservable(QString key, Defaults& storage, QVariant fallback, QObject* parent = nullptr);

    const QString& key() const { return m_key; }
    QVariant value() const { return m_value; }
    bool setValue(const QVariant& value);

signals:
    void valueChanged(const QVariant& value);

private:
    void reload();

    QString m_key;
    Defaults& m_storage;
    QVariant m_fallback;
    QVariant m_value;
};

} // namespace velmora
