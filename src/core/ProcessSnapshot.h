#pragma once

#include "core/JsonCodec.h"
#include "core/ResourceUsage.h"

#include <QString>
#include <optional>

namespace velmora {

// One process of the current user at the moment of a sample.
struct ProcessSnapshot {
    qint64 pid = 0;
    // The application's name when the process is a running application, else the executable's name.
    QString name;
    std::optional<qint64> parentPid;
    std::optional<QString> bundleIdentifier; // the application's id (its desktop entry on Linux)
    // A file URL of the folder the program is installed in, with a trailing "/"; absent for programs
    // in shared folders such as /usr/bin.
    std::optional<QString> bundlePath;
    QString lstart; // the start time as `ps -o lstart` writes it
    ResourceUsage resourceUsage;

    // Not encoded: how the desktop keeps track of what belongs together.
    bool isRunningApplication = false; // owns a window of the desktop
    std::optional<QString> scope;      // the systemd application scope ("app-gnome-firefox-1234.scope")

    bool operator==(const ProcessSnapshot&) const = default;
};

void to_json(Json& j, const ProcessSnapshot& p);
void from_json(const Json& j, ProcessSnapshot& p);

} // namespace velmora
