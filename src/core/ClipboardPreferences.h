#pragma once

#include "core/JsonCodec.h"

#include <QString>

#include <vector>

namespace velmora {

// Stored under "ClipboardPreferences".
struct ClipboardPreferences {
    // Number of history items kept; older ones are trimmed after each capture.
    int retention = 100;
    // Applications whose copies are not recorded, as file URLs of their desktop entries
    // ("file:///usr/share/applications/x.desktop"), kept as text so that entries from another machine
    // survive unchanged even where the file does not exist.
    std::vector<QString> blacklistedAppURLs;

    bool operator==(const ClipboardPreferences&) const = default;
};

void to_json(Json& j, const ClipboardPreferences& p);
void from_json(const Json& j, ClipboardPreferences& p);

} // namespace velmora
