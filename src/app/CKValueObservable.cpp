#include "app/CKValueObservable.h"

#include <QPointer>
#include <QTimer>
#include <cmath>

namespace velmora {

CKValueObservableBase::CKValueObservableBase(QString key, bool isOptional, Defaults& defaults,
                                             LoggingManager& log, QObject* parent)
    : QObject(parent), m_defaults(defaults), m_log(log), m_key(std::move(key)), m_isOptional(isOptional) {
    // Another process (a second machine's sync, the user's command line) may rewrite the entry.
    connect(&m_defaults, &Defaults::valueChanged, this, [this](const QString& changed) {
        if (changed == m_key && !m_writing) {
            loadLocalValue();
            countLocalChange(); // someone edited the settings by hand: a change made on this machine
        }
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

bool CKValueObservableBase::writeLocalForm(const QByteArray& bytes, double date) {
    m_writing = true;
    bool stored = false;
    if (m_isOptional && bytes.isEmpty())
        stored = m_defaults.remove(m_key);
    else if (m_isOptional)
        stored = m_defaults.setValue(m_key, bytes);
    else
        stored = m_defaults.setValue(m_key, QString::fromUtf8(bytes)); // JSON text stays readable in the file
    if (stored)
        stored = m_defaults.setValue(modificationDateKey(), date);
    m_writing = false;
    if (stored)
        m_modificationDate = date;
    return stored;
}

bool CKValueObservableBase::storeLocally(QString* error) {
    if (writeLocalForm(data(), QDateTime::currentMSecsSinceEpoch() / 1000.0))
        return true;
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

void CKValueObservableBase::countLocalChange() {
    ++m_localChanges;
    emit changedLocally();
}

// Synchronisation. The rule is "the later side wins"; a few cases are decided before the dates are
// compared, because the dates alone cannot tell them apart:
// - the same value on both sides: nothing to do but remember the cloud's version;
// - the cloud's record unchanged since this machine last agreed with it: only this side moved, so it
//   is pushed even when both changes fall within the server's one-second resolution;
// - this machine never agreed with the account's records: it adopts them, whatever its dates.
// Only when both sides changed do the dates decide, compared on the server's clock.
void CKValueObservableBase::performSync(CloudDatabase& database, std::function<void(bool)> done) {
    assertMainThread("CKValueObservable::performSync");
    if (done)
        m_sync.waiting.push_back(std::move(done));
    if (m_sync.running) {
        m_sync.again = true;
        return;
    }
    m_sync.running = true;
    m_sync.database = &database;
    m_sync.conflicts = 0;
    setStatus(Status::syncing);
    fetchForSync(database);
}

void CKValueObservableBase::fetchForSync(CloudDatabase& database) {
    m_sync.changesAtFetch = m_localChanges;
    database.fetch(m_key, [self = QPointer(this), &database](const CloudFetchResult& fetched) {
        if (self)
            self->decide(database, fetched);
    });
}

void CKValueObservableBase::decide(CloudDatabase& database, const CloudFetchResult& fetched) {
    if (fetched.unreadable) {
        finishSync(false, QString("the cloud's record of %1 cannot be read (%2); the value here stays")
                              .arg(m_key, fetched.error));
        return;
    }
    if (!fetched.error.isEmpty()) {
        finishSync(false, fetched.error);
        return;
    }
    if (m_sync.changesAtFetch != m_localChanges) { // changed here meanwhile: look again
        fetchForSync(database);
        return;
    }
    if (!fetched.record) {
        push(database, {});
        return;
    }
    const CloudRecord& record = *fetched.record;
    if (holds(record.data)) {
        rememberCloudTag(record.tag);
        finishSync(true);
        return;
    }
    const QString agreed = cloudTag();
    if ((!agreed.isEmpty() && record.tag == agreed) || localIsLater(record, database.clockOffset())) {
        push(database, record.tag);
        return;
    }
    QString error;
    if (!adopt(record, database.clockOffset(), &error)) {
        finishSync(false, error);
        return;
    }
    finishSync(true);
}

bool CKValueObservableBase::localIsLater(const CloudRecord& record, double clockOffset) const {
    if (cloudTag().isEmpty() || !m_modificationDate || *m_modificationDate <= 0)
        return false;
    // The server keeps whole seconds: a local time in the same second is not later.
    return std::floor(*m_modificationDate + clockOffset) > record.modificationDate;
}

void CKValueObservableBase::push(CloudDatabase& database, const QString& expectedTag) {
    CloudRecord record{m_key, data(), 0, {}};
    database.save(
        record, expectedTag, [this, self = QPointer(this), &database](const CloudSaveResult& saved) {
            if (!self)
                return;
            switch (saved.outcome) {
            case CloudSaveResult::Outcome::saved:
                rememberCloudTag(saved.tag);
                finishSync(true);
                return;
            case CloudSaveResult::Outcome::conflict:
                // Another machine wrote first: decide again against what it wrote. Some servers refuse
                // every conditional save in the second after a write (their version is provisional
                // then), so further tries wait a little longer each time.
                if (++m_sync.conflicts < kMaxConflicts) {
                    const int waitMs = (m_sync.conflicts - 1) * 300;
                    if (waitMs == 0)
                        fetchForSync(database);
                    else
                        QTimer::singleShot(waitMs, this, [this, &database] { fetchForSync(database); });
                    return;
                }
                finishSync(false,
                           QString("the cloud's record of %1 kept changing while it was saved").arg(m_key));
                return;
            case CloudSaveResult::Outcome::failed:
                finishSync(false, saved.error);
                return;
            }
        });
}

bool CKValueObservableBase::adopt(const CloudRecord& record, double clockOffset, QString* error) {
    QString reason;
    if (!publishDecoded(record.data, &reason)) {
        *error =
            QString("the cloud's record of %1 does not decode (%2); the value here stays").arg(m_key, reason);
        return false;
    }
    // Kept on this machine's clock, as every local time is.
    if (!writeLocalForm(data(), record.modificationDate - clockOffset)) {
        *error = QString("the cloud's value of %1 cannot be stored here: %2")
                     .arg(m_key, m_defaults.lastWriteError().isEmpty() ? QString("the file cannot be written")
                                                                       : m_defaults.lastWriteError());
        return false;
    }
    rememberCloudTag(record.tag);
    return true;
}

QString CKValueObservableBase::cloudTag() const {
    return m_defaults.value(cloudTagKey()).value_or(QVariant()).toString();
}

void CKValueObservableBase::forgetCloudTag() {
    m_defaults.remove(cloudTagKey());
}

void CKValueObservableBase::rememberCloudTag(const QString& tag) {
    if (!tag.isEmpty() && tag != cloudTag())
        m_defaults.setValue(cloudTagKey(), tag);
}

void CKValueObservableBase::setStatus(Status status) {
    if (m_status == status)
        return;
    m_status = status;
    emit statusChanged();
}

void CKValueObservableBase::finishSync(bool ok, const QString& error) {
    if (!ok) {
        m_log.append(LogContext::Default, LogLevel::Error, "perfomSync()", 156,
                     QString("%1 was not synchronised: %2").arg(m_key, error));
        m_sync.lastError = error;
    } else {
        m_sync.lastError.clear();
    }
    if (m_sync.again) { // asked again while running: once more, for the callers waiting on both
        m_sync.again = false;
        m_sync.conflicts = 0;
        fetchForSync(*m_sync.database);
        return;
    }
    m_sync.running = false;
    setStatus(ok ? Status::ok : Status::error);
    auto waiting = std::move(m_sync.waiting);
    m_sync.waiting.clear();
    for (auto& done : waiting)
        done(ok);
}

} // namespace velmora
