#pragma once

#include "core/JsonCodec.h"

namespace velmora {

// Stored under "BasicPreferences".
struct BasicPreferences {
    bool autoUpdate = true;

    bool operator==(const BasicPreferences&) const = default;
};

void to_json(Json& j, const BasicPreferences& p);
void from_json(const Json& j, BasicPreferences& p);

} // namespace velmora
