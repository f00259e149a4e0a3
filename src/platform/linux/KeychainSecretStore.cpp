#include "platform/linux/KeychainSecretStore.h"

#include <qt6keychain/keychain.h>

namespace velmora {

namespace {

QString failureText(const QKeychain::Job& job) {
    if (job.error() == QKeychain::NoBackendAvailable)
        return QString("no secret store is running (%1)").arg(job.errorString());
    return QString("the secret store refused: %1").arg(job.errorString());
}

// Jobs delete themselves once finished; the reply reaches done on the main thread.
template <class J> J* startJob(const QString& name, std::function<void(J&)> finished) {
    auto* job = new J(KeychainSecretStore::kService);
    job->setKey(name);
    job->setInsecureFallback(false);
    QObject::connect(job, &QKeychain::Job::finished, job, [job, finished] { finished(*job); });
    return job;
}

} // namespace

void KeychainSecretStore::read(const QString& name,
                               std::function<void(std::optional<QString>, QString)> done) {
    auto* job = startJob<QKeychain::ReadPasswordJob>(name, [done](QKeychain::ReadPasswordJob& finished) {
        if (finished.error() == QKeychain::EntryNotFound)
            return done(std::nullopt, {});
        if (finished.error() != QKeychain::NoError)
            return done(std::nullopt, failureText(finished));
        done(finished.textData(), {});
    });
    job->start();
}

void KeychainSecretStore::write(const QString& name, const QString& secret,
                                std::function<void(QString)> done) {
    auto* job = startJob<QKeychain::WritePasswordJob>(name, [done](QKeychain::WritePasswordJob& finished) {
        done(finished.error() == QKeychain::NoError ? QString() : failureText(finished));
    });
    job->setTextData(secret);
    job->start();
}

void KeychainSecretStore::remove(const QString& name, std::function<void(QString)> done) {
    auto* job = startJob<QKeychain::DeletePasswordJob>(name, [done](QKeychain::DeletePasswordJob& finished) {
        const bool gone =
            finished.error() == QKeychain::NoError || finished.error() == QKeychain::EntryNotFound;
        done(gone ? QString() : failureText(finished));
    });
    job->start();
}

} // namespace velmora
