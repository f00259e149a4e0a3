#pragma once

#include "app/CKValueObservable.h"
#include "platform/CloudDatabase.h"

#include <QObject>
#include <QSet>
#include <QTimer>
#include <functional>
#include <optional>
#include <vector>

namespace velmora {

// Keeps every synchronised preference in step with the cloud database: all of them when sync starts,
// each one shortly after it changes here, and those that changed elsewhere when a look at the cloud's
// versions (cheap: no data is read) finds a version this machine has not agreed with.
class PreferencesMirror : public QObject {
    Q_OBJECT
public:
    using Status = CKValueObservableBase::Status;
    static constexpr int kSettleMs = 400; // a slider dragged is one change, not fifty

    PreferencesMirror(std::vector<CKValueObservableBase*> records, CloudDatabase& database,
                      Defaults& defaults, std::function<double()> nowSeconds, QObject* parent = nullptr);

    // While off, local changes are only stored here and nothing is sent.
    void setEnabled(bool enabled);
    bool isEnabled() const { return m_enabled; }
    // Synchronises every record; done(true) when all agree with the cloud.
    void syncAll(std::function<void(bool)> done = {});
    // Asks for the cloud's versions and synchronises the records that differ, or that failed before.
    void lookForChanges(std::function<void(bool)> done = {});
    // For a new account: nothing agreed with the previous one holds.
    void forgetAgreements();

    // Off while disabled (absent), else syncing while anything runs, error after any failure, ok.
    std::optional<Status> status() const;
    QString lastError() const;
    // When every record last agreed with the cloud, seconds since 1970; none before the first time.
    std::optional<double> lastSyncTime() const;
    const std::vector<CKValueObservableBase*>& records() const { return m_records; }

    static constexpr auto kLastSyncKey = "SyncLastTime";

signals:
    void changed();

private:
    void syncSettled();
    // Runs a sync of each record and calls done once with whether all succeeded.
    void syncEach(const std::vector<CKValueObservableBase*>& records, std::function<void(bool)> done);
    void noteUnknownKeys(const CloudListing& listing);

    std::vector<CKValueObservableBase*> m_records;
    CloudDatabase& m_database;
    Defaults& m_defaults;
    std::function<double()> m_now;
    bool m_enabled = false;
    int m_running = 0; // listings and sync rounds under way
    QString m_listingError;
    QSet<CKValueObservableBase*> m_changed;
    QTimer m_settle;
    QSet<QString> m_unknownKeysNoted;
};

} // namespace velmora
