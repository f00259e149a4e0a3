#include "sync/SyncAccountStore.h"

#include "sync/SyncLog.h"

namespace velmora {

SyncAccountStore::SyncAccountStore(Defaults& defaults, SecretStore* secrets, QString passwordFromEnvironment)
    : m_defaults(defaults), m_secrets(secrets),
      m_passwordFromEnvironment(std::move(passwordFromEnvironment)) {}

std::optional<CloudAccount> SyncAccountStore::configured() const {
    const QString address = m_defaults.value(kAddressKey).value_or(QVariant()).toString();
    const QString user = m_defaults.value(kUserKey).value_or(QVariant()).toString();
    if (address.isEmpty() || user.isEmpty())
        return std::nullopt;
    return CloudAccount{QUrl(address), user, {}};
}

QString SyncAccountStore::secretName(const CloudAccount& account) {
    return QString("sync %1 at %2").arg(account.user, account.address.toString(QUrl::RemoveUserInfo));
}

void SyncAccountStore::load(std::function<void(std::optional<CloudAccount>, QString)> done) {
    auto account = configured();
    if (!account)
        return done(std::nullopt, "sync is not set up");
    auto fallback = [this, account, done](const QString& storeProblem) mutable {
        if (m_passwordForThisRun) {
            account->password = *m_passwordForThisRun;
            return done(account, {});
        }
        if (!m_passwordFromEnvironment.isEmpty()) {
            account->password = m_passwordFromEnvironment;
            return done(account, {});
        }
        done(std::nullopt, QString("no password for %1 (%2); set it up again, or set %3")
                               .arg(account->user, storeProblem, kPasswordVariable));
    };
    if (!m_secrets)
        return fallback("this build has no secret store");
    m_secrets->read(secretName(*account),
                    [account, done, fallback](std::optional<QString> secret, QString error) mutable {
                        if (secret && !secret->isEmpty()) {
                            account->password = *secret;
                            return done(account, {});
                        }
                        fallback(error.isEmpty() ? QString("the secret store has none") : error);
                    });
}

void SyncAccountStore::save(const CloudAccount& account, std::function<void(QString, QString)> done) {
    auto keepSettings = [this, account]() -> QString {
        if (m_defaults.setValue(kAddressKey, account.address.toString()) &&
            m_defaults.setValue(kUserKey, account.user))
            return {};
        return QString("the settings cannot be saved: %1").arg(m_defaults.lastWriteError());
    };
    auto withoutStore = [this, account, done, keepSettings](const QString& storeProblem) {
        if (const QString error = keepSettings(); !error.isEmpty())
            return done(error, {});
        if (!m_passwordFromEnvironment.isEmpty() && m_passwordFromEnvironment == account.password) {
            m_passwordForThisRun.reset();
            return done({}, {});
        }
        m_passwordForThisRun = account.password;
        done({}, QString("the password is kept only until Velmora quits (%1); set %2 in Velmora's "
                         "environment to keep it")
                     .arg(storeProblem, kPasswordVariable));
    };
    if (!m_secrets)
        return withoutStore("this build has no secret store");
    m_secrets->write(secretName(account), account.password,
                     [this, done, keepSettings, withoutStore](QString error) {
                         if (!error.isEmpty()) {
                             qCWarning(lcSync).noquote()
                                 << "The sync password cannot be kept in the secret store:" << error;
                             return withoutStore(error);
                         }
                         m_passwordForThisRun.reset();
                         done(keepSettings(), {});
                     });
}

void SyncAccountStore::forget() {
    const auto account = configured();
    m_passwordForThisRun.reset();
    m_defaults.remove(kAddressKey);
    m_defaults.remove(kUserKey);
    if (account && m_secrets)
        m_secrets->remove(secretName(*account), [](QString error) {
            if (!error.isEmpty())
                qCWarning(lcSync).noquote()
                    << "The sync password could not be removed from the secret store:" << error;
        });
}

} // namespace velmora
