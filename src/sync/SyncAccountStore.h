#pragma once

#include "platform/CloudDatabase.h"
#include "platform/Defaults.h"
#include "platform/SecretStore.h"

#include <functional>
#include <optional>

namespace velmora {

// Which server the preferences are mirrored to, as whom, and that account's password. The address
// and the user name are plain settings of this machine (never synchronised); the password is kept in
// the desktop's secret store, never in the settings file. Where there is no secret store, the
// password comes from the agent's environment (VELMORA_SYNC_PASSWORD), or lasts until Velmora quits.
class SyncAccountStore {
public:
    static constexpr auto kAddressKey = "SyncServerAddress";
    static constexpr auto kUserKey = "SyncUserName";
    static constexpr auto kPasswordVariable = "VELMORA_SYNC_PASSWORD";

    // secrets may be null (no secret store in this build).
    SyncAccountStore(Defaults& defaults, SecretStore* secrets, QString passwordFromEnvironment);

    // The account set up on this machine, without its password; none when sync is off.
    std::optional<CloudAccount> configured() const;
    // The configured account with its password; none and the reason when it cannot be had.
    void load(std::function<void(std::optional<CloudAccount>, QString problem)> done);
    // Keeps the account. error: nothing was kept. warning: kept, with a caveat the user should read
    // (the password lasts only until Velmora quits).
    void save(const CloudAccount& account, std::function<void(QString error, QString warning)> done);
    // Forgets the account and its password on this machine.
    void forget();

    // The name the password is kept under: one per user and server.
    static QString secretName(const CloudAccount& account);

private:
    Defaults& m_defaults;
    SecretStore* m_secrets;
    QString m_passwordFromEnvironment;
    std::optional<QString> m_passwordForThisRun;
};

} // namespace velmora
