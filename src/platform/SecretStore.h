#pragma once

#include <QString>

#include <functional>
#include <optional>

namespace velmora {

// The desktop's store of secrets (passwords kept encrypted, unlocked with the session). Every call
// answers once, on the main thread.
class SecretStore {
public:
    virtual ~SecretStore() = default;
    // The secret kept under name, none when there is none, or the store's error.
    virtual void read(const QString& name,
                      std::function<void(std::optional<QString> secret, QString error)> done) = 0;
    virtual void write(const QString& name, const QString& secret,
                       std::function<void(QString error)> done) = 0;
    virtual void remove(const QString& name, std::function<void(QString error)> done) = 0;
};

} // namespace velmora
