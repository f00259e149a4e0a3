#pragma once

#include <QString>

#include <optional>

namespace velmora {

// The file URL, with its trailing "/", of the folder a program is installed in on its own, from the path
// of its executable:
//   /opt/<vendor>/<name>/<program>        the executable's folder, above a "bin" ("file:///opt/zoom/")
//   /usr/lib/<name>/…, /usr/lib64/<name>/…, /usr/libexec/<name>/…, /usr/lib/<triplet>/<name>/…
//   /snap/<name>/<revision>/…
//   <tmp>/.mount_<id>/…                    a mounted AppImage
//   …/flatpak/app/<id>/…                   a Flatpak application as seen from outside its sandbox
// Programs in shared folders (/usr/bin, /bin, /usr/local/bin, …) have none: their folder says nothing of
// which application they belong to. A running program whose file was replaced reads
// "<path> (deleted)"; the suffix is ignored.
std::optional<QString> installationFolderUrl(const QString& executablePath);

} // namespace velmora
