#include "sync/PreferencesMirror.h"

#include "sync/SyncLog.h"

#include <algorithm>
#include <memory>

namespace velmora {

PreferencesMirror::PreferencesMirror(std::vector<CKValueObservableBase*> records, CloudDatabase& database,
                                     Defaults& defaults, std::function<double()> nowSeconds, QObject* parent)
    : QObject(parent), m_records(std::move(records)), m_database(database), m_defaults(defaults),
      m_now(std::move(nowSeconds)) {
    m_settle.setSingleShot(true);
    m_settle.setInterval(kSettleMs);
    connect(&m_settle, &QTimer::timeout, this, &PreferencesMirror::syncSettled);
    for (auto* record : m_records) {
        connect(record, &CKValueObservableBase::changedLocally, this, [this, record] {
            if (!m_enabled)
                return;
            m_changed.insert(record);
            m_settle.start();
        });
        connect(record, &CKValueObservableBase::statusChanged, this, &PreferencesMirror::changed);
    }
}

void PreferencesMirror::setEnabled(bool enabled) {
    if (m_enabled == enabled)
        return;
    m_enabled = enabled;
    if (!enabled) {
        m_settle.stop();
        m_changed.clear();
    }
    emit changed();
}

void PreferencesMirror::syncSettled() {
    std::vector<CKValueObservableBase*> changedRecords(m_changed.begin(), m_changed.end());
    m_changed.clear();
    syncEach(changedRecords, {});
}

void PreferencesMirror::syncAll(std::function<void(bool)> done) {
    if (!m_enabled) {
        if (done)
            done(false);
        return;
    }
    m_listingError.clear();
    syncEach(m_records, std::move(done));
}

void PreferencesMirror::lookForChanges(std::function<void(bool)> done) {
    if (!m_enabled) {
        if (done)
            done(false);
        return;
    }
    ++m_running;
    emit changed();
    m_database.list([this, done = std::move(done)](const CloudListing& listing) {
        --m_running;
        if (!listing.error.isEmpty()) {
            // Logged when it first fails, not every minute while the server stays away.
            if (listing.error != m_listingError)
                qCWarning(lcSync).noquote() << "Cannot look for changes on the sync server:" << listing.error;
            m_listingError = listing.error;
            emit changed();
            if (done)
                done(false);
            return;
        }
        m_listingError.clear();
        noteUnknownKeys(listing);
        std::vector<CKValueObservableBase*> stale;
        for (auto* record : m_records) {
            const auto version = std::find_if(listing.versions.begin(), listing.versions.end(),
                                              [record](const auto& v) { return v.key == record->key(); });
            const QString agreed = record->cloudTag();
            const bool differs = version == listing.versions.end() ? true : version->tag != agreed;
            if (differs || record->status() == Status::error)
                stale.push_back(record);
        }
        syncEach(stale, done);
    });
}

void PreferencesMirror::noteUnknownKeys(const CloudListing& listing) {
    for (const auto& version : listing.versions) {
        const bool known = std::any_of(m_records.begin(), m_records.end(),
                                       [&](const auto* r) { return r->key() == version.key; });
        if (!known && !m_unknownKeysNoted.contains(version.key)) {
            m_unknownKeysNoted.insert(version.key);
            qCInfo(lcSync).noquote() << QString(
                                            "The sync server holds %1, which this version of Velmora does "
                                            "not know; it is left as it is.")
                                            .arg(version.key);
        }
    }
}

void PreferencesMirror::syncEach(const std::vector<CKValueObservableBase*>& records,
                                 std::function<void(bool)> done) {
    struct Round {
        int left = 0;
        bool ok = true;
        std::function<void(bool)> done;
    };
    auto round = std::make_shared<Round>(Round{static_cast<int>(records.size()), true, std::move(done)});
    ++m_running;
    auto finish = [this, round] {
        --m_running;
        if (round->ok && m_listingError.isEmpty() &&
            std::none_of(m_records.begin(), m_records.end(),
                         [](const auto* r) { return r->status() == Status::error; }))
            m_defaults.setValue(kLastSyncKey, m_now());
        emit changed();
        if (round->done)
            round->done(round->ok);
    };
    if (records.empty())
        return finish();
    emit changed();
    for (auto* record : records)
        record->performSync(m_database, [round, finish](bool ok) {
            round->ok = round->ok && ok;
            if (--round->left == 0)
                finish();
        });
}

void PreferencesMirror::forgetAgreements() {
    for (auto* record : m_records)
        record->forgetCloudTag();
    m_unknownKeysNoted.clear();
}

std::optional<PreferencesMirror::Status> PreferencesMirror::status() const {
    if (!m_enabled)
        return std::nullopt;
    if (m_running > 0 ||
        std::any_of(m_records.begin(), m_records.end(), [](const auto* r) { return r->isSyncing(); }))
        return Status::syncing;
    if (!m_listingError.isEmpty() || std::any_of(m_records.begin(), m_records.end(),
                                                 [](const auto* r) { return r->status() == Status::error; }))
        return Status::error;
    return Status::ok;
}

QString PreferencesMirror::lastError() const {
    if (!m_listingError.isEmpty())
        return m_listingError;
    for (const auto* record : m_records)
        if (record->status() == Status::error)
            return record->lastSyncError();
    return {};
}

std::optional<double> PreferencesMirror::lastSyncTime() const {
    const auto stored = m_defaults.value(kLastSyncKey);
    if (!stored || stored->toDouble() <= 0)
        return std::nullopt;
    return stored->toDouble();
}

} // namespace velmora
