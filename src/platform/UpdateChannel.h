#pragma once

#include <QByteArray>
#include <QString>
#include <QUrl>

#include <functional>
#include <optional>

namespace velmora {

// One GET of the update server's answer.
struct UpdateRequest {
    QUrl url;
    int timeoutMs = 30'000; // for the whole exchange, redirects included
    int maxRedirects = 5;
    qsizetype maxBytes = 64 * 1024; // an answer is a small JSON object; more is not one
};

// The body of a 200 answer, or why there is none ("the server answered 500 Internal Server Error").
struct UpdateResponse {
    std::optional<QByteArray> body;
    QString error;
};

// What the updater is handed: the new build, its SHA-256 digest, and the folder it replaces.
struct UpdateHandOver {
    QUrl url;
    QString sha256;
    QString installationFolder;
};

// The update server and the hand-over to the updater program.
class UpdateChannel {
public:
    virtual ~UpdateChannel() = default;
    // Sends the request; done is called once, on the main thread, also on failure.
    virtual void get(const UpdateRequest& request, std::function<void(UpdateResponse)> done) = 0;
    // The folder this copy of Velmora is installed in on its own, which the updater may replace as a
    // whole; absent for an installation that the system's packages manage (or a build tree).
    virtual std::optional<QString> installationFolder() const = 0;
    // Copies the updater out of the installation into a temporary folder beside it and starts the copy;
    // the updater asks this process to quit once the new build is downloaded and checked. False, with
    // the reason in error, when it could not be started.
    virtual bool handOver(const UpdateHandOver& handOver, QString* error) = 0;
};

} // namespace velmora
