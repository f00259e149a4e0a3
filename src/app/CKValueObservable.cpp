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

bool CKValueObservableBase::storeLocally(QString* error) {
    m_writing = true;
    const double now = QDateTime::currentMSecsSinceEpoch() / 1000.0;
    const QByteArray bytes = data();
    bool stored = false;
    if (m_isOptional && bytes.isEmpty())
        stored = m_defaults.remove(m_key);
    else if (m_isOptional)
        stored = m_defaults.setValue(m_key, bytes);
    else
        stored = m_defaults.setValue(m_key, QString::fromUtf8(bytes)); // JSON text stays readable in the file
    if (stored)
        stored = m_defaults.setValue(modificationDateKey(), now);
    m_writing = false;
    if (stored) {
        m_modificationDate = now;
        return true;
    }
    const QString reason =
        QString("the settings cannot be saved: %1")
            .arg(m_defaults.lastWriteError().isEmpty() ? QString("the file cannot be written")
                                                       : m_defaults.lastWriteError());
    VELMORA_LOG(m_log, LogContext::Default, LogLevel::Error,
                QString("%1 was not changed: %2.").arg(m_key, reason));
    if (error)
        *error = reason;
    emit writeFailed(reason);
    return false;
}

} // namespace velmora
