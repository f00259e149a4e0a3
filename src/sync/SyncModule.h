#pragma once

#include "app/AppContext.h"
#include "app/ControlReply.h"
#include "app/Module.h"
#include "sync/PreferencesMirror.h"
#include "sync/SyncAccountStore.h"

#include <QObject>
#include <QTimer>
#include <memory>

namespace velmora {

// Settings that follow the user: the synchronised preferences mirrored to the user's own cloud
// (a WebDAV server), set up on the General page or with `velmora sync`. Without an account nothing
// is sent anywhere; with one, every record is synchronised at start, each change shortly after it is
// made, and changes made on other machines are looked for every minute and when the network returns.
class SyncModule final : public QObject, public Module {
    Q_OBJECT
public:
    static constexpr int kCheckSeconds = 60;
    // The check interval given in the environment (VELMORA_SYNC_CHECK_SECONDS): kCheckSeconds when
    // unset, and when not a whole number of seconds above zero, which is logged.
    static int checkSecondsFrom(const QString& variable);

    // passwordFromEnvironment: VELMORA_SYNC_PASSWORD; checkSeconds: how often the cloud is looked at.
    SyncModule(AppContext& context, QString passwordFromEnvironment, int checkSeconds = kCheckSeconds);
    ~SyncModule() override;

    QString name() const override { return "sync"; }
    void registerWith(ModuleRegistry& registry) override;
    void start() override;
    void stop() override;

    bool isAvailable() const { return m_mirror != nullptr; }
    // The account set up here, without its password.
    std::optional<CloudAccount> account() const { return m_accounts.configured(); }
    // Signs in with account without keeping anything; error empty when it works.
    void testConnection(const CloudAccount& account, std::function<void(QString error)> done);
    // Tests, keeps and uses account, then synchronises everything. warning: it works, but read this.
    void setUp(const CloudAccount& account, std::function<void(QString error, QString warning)> done);
    void syncNow(std::function<void(bool ok)> done);
    // Forgets the account; the values stay as they are on this machine.
    void turnOff();

    // "off", "syncing", "error" or "ok".
    QString statusName() const;
    // Why sync does not work, in plain words; empty when it does.
    QString problem() const;
    std::optional<double> lastSyncTime() const;
    const QTimer& timer() const { return m_timer; }
    PreferencesMirror* mirror() { return m_mirror.get(); }
    Json status() const;

signals:
    void changed();

private:
    void command(const QStringList& arguments, std::function<void(ControlReply)> reply);
    void setUpFromCommand(const QStringList& arguments, std::function<void(ControlReply)> reply);
    void useStoredAccount();
    std::optional<QString> problemWith(const CloudAccount& account) const;

    AppContext& m_context;
    SyncAccountStore m_accounts;
    std::unique_ptr<PreferencesMirror> m_mirror;
    QTimer m_timer;
    QString m_accountProblem;
};

} // namespace velmora
