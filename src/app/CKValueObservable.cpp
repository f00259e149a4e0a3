#include "app/CKValueObservable.h"

namespace velmora {

CKValueObservableBase::CKValueObservableBase(QString key, bool isOptional, Defaults& defaults,
                                             LoggingManager& log, QObject* parent)
    : QObject(parent), m_defaults(defaults), m_log(log), m_key(std::move(key)), m_isOptional(isOptional) {
    // Another process (a second machine's sync, the user's command line) may rewrite the entry.
    connect(&m_defaults, &Defaults::valueChanged, this, [this](const QString& changed) {
        if (changed == m_key && !m_writing)
            loadLocalValue();
    });
}

void CKValueObservableBase::loadLocalValue() {
    const auto stored = m_defaults.value(m_key);
    if (!stored && !m_isOptional)
        return; // never written: the default stands
    std::optional<QByteArray> data;
    if (stored)
        data =
            stored->typeId() == QMetaType::QByteArray ? stored->toByteArray() : stored->toString().toUtf8();
    QString error;
    if (!publishDecoded(data, &error)) {
        VELMORA_LOG(m_log, LogContext::Default, LogLevel::Error,
                    QString("The stored value of %1 does not decode (%2); keeping the current value.")
                        .arg(m_key, error));
        return;
    }
    m_modificationDate = m_defaults.value(modificationDateKey()).value_or(0.0).toDouble();
}

void CKValueObservableBase::storeLocally() {
    m_writing = true;
    m_modificationDate = QDateTime::currentMSecsSinceEpoch() / 1000.0;
    const QByteArray bytes = data();
    if (m_isOptional && bytes.isEmpty())
        m_defaults.remove(m_key);
    else if (m_isOptional)
        m_defaults.setValue(m_key, bytes);
    else
        m_defaults.setValue(m_key, QString::fromUtf8(bytes)); // JSON text stays readable in the file
    m_defaults.setValue(modificationDateKey(), *m_modificationDate);
    m_writing = false;
}

} // namespace velmora
