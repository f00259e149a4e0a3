#pragma once

#include "platform/SecretStore.h"

#include <QMap>

namespace velmora {

// A secret store in memory; unavailable makes it answer as a session without one does.
class FakeSecretStore final : public SecretStore {
public:
    QMap<QString, QString> secrets;
    bool unavailable = false;

    void read(const QString& name, std::function<void(std::optional<QString>, QString)> done) override {
        if (unavailable)
            return done(std::nullopt, kNone);
        done(secrets.contains(name) ? std::optional(secrets.value(name)) : std::nullopt, {});
    }
    void write(const QString& name, const QString& secret, std::function<void(QString)> done) override {
        if (unavailable)
            return done(kNone);
        secrets[name] = secret;
        done({});
    }
    void remove(const QString& name, std::function<void(QString)> done) override {
        if (unavailable)
            return done(kNone);
        secrets.remove(name);
        done({});
    }

    static constexpr auto kNone = "no secret store is running";
};

} // namespace velmora
