#pragma once

#include "platform/SecretStore.h"

namespace velmora {

// The desktop's secret service (GNOME Keyring, KWallet, KeePassXC ...) through QtKeychain, under the
// service name "Velmora". Without one every call fails with the library's reason; the password is
// then never written anywhere in its place.
class KeychainSecretStore final : public SecretStore {
public:
    static constexpr auto kService = "Velmora";

    void read(const QString& name, std::function<void(std::optional<QString>, QString)> done) override;
    void write(const QString& name, const QString& secret, std::function<void(QString)> done) override;
    void remove(const QString& name, std::function<void(QString)> done) override;
};

} // namespace velmora
