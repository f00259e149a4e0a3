#include "app/UserDefaultsObservable.h"

namespace velmora {

UserDefaultsObservable::UserDefaultsObservable(QString key, Defaults& storage, QVariant fallback,
                                               QObject* parent)
    : QObject(parent), m_key(std::move(key)), m_storage(storage), m_fallback(std::move(fallback)) {
    m_value = m_storage.value(m_key).value_or(m_fallback);
    connect(&m_storage, &Defaults::valueChanged, this, [this](const QString& changed) {
        if (changed == m_key)
            reload();
    });
}

bool UserDefaultsObservable::setValue(const QVariant& value) {
    return m_storage.setValue(m_key, value); // announces the change, which reload() picks up
}

void UserDefaultsObservable::reload() {
    const QVariant fresh = m_storage.value(m_key).value_or(m_fallback);
    if (fresh == m_value)
        return;
    m_value = fresh;
    emit valueChanged(m_value);
}

} // namespace velmora
