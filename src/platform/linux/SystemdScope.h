#pragma once

#include <QString>

#include <optional>
#include <string_view>

namespace velmora {

// The systemd scope a desktop started an application in, from the text of /proc/<pid>/cgroup: the last
// "*.scope" of the process's control group path that is named "app-*.scope" or lies under "app.slice"
// ("app-gnome-firefox-1234.scope", "app-org.gnome.Terminal-5678.scope"). The unified hierarchy ("0::")
// is read, else systemd's own ("name=systemd") on a legacy layout. Nothing when the desktop does not
// start applications in scopes.
std::optional<QString> applicationScope(std::string_view cgroupText);

} // namespace velmora
