#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace velmora {

// The update server's answer, a JSON object:
//   {"url": "https://…/velmora-0.2.0.tar.gz", "sha256": "<64 hex digits>", "version": "0.2.0"}
// An absent, null or empty "url" means there is no update. With a url, "sha256" (the digest of the
// file at that address) is required: the updater installs nothing it cannot check. "version" is
// optional and only shown. Other fields are ignored.
struct UpdateInfo {
    QString url;
    QString sha256; // lower case
    QString version;

    bool offersUpdate() const { return !url.isEmpty(); }
};

// The answer decoded; absent, with the reason in error, when it is not an answer of that form.
std::optional<UpdateInfo> decodeUpdateInfo(const QByteArray& data, QString* error);

} // namespace velmora
