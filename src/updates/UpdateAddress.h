#pragma once

#include <QString>
#include <QUrl>

#include <optional>

namespace velmora {

// Where updates are asked for when neither the environment nor the settings name a server.
inline constexpr auto kDefaultUpdateServer = "https://updates.velmora.app";
// The environment variable and the settings entry that name another server (tests, mirrors).
inline constexpr auto kUpdateServerVariable = "VELMORA_UPDATE_URL";
inline constexpr auto kUpdateServerKey = "UpdateServerAddress";

// What the request address says about this copy.
struct UpdateAddressParts {
    QString osVersion; // the same text as the log entries' osVersion
    QString version;   // the program's version
    QString userId;    // this machine's user id
};

// The server's base address as given (scheme, host, optional port and path; a trailing "/" is
// dropped); absent when it is not an http or https address with a host, or carries a query.
std::optional<QString> normalizedUpdateServer(const QString& text);

// The server to ask: the environment's, else the settings', else the default. A value that is not
// an address is reported through rejected (the name of its source and the text) and passed over.
QString chooseUpdateServer(const QString& fromEnvironment, const QString& fromSettings,
                           QString* rejected = nullptr);

// BASE/api/products/linux/OS/vel-mora/VERSION/USERID/update?channel=stable, each piece
// percent-encoded (a "/" in a piece stays inside it). The base must come from normalizedUpdateServer.
QUrl updateRequestUrl(const QString& base, const UpdateAddressParts& parts);

} // namespace velmora
