#include "core/BasicPreferences.h"

namespace velmora {

void to_json(Json& j, const BasicPreferences& p) {
    j = Json::object();
    j["autoUpdate"] = p.autoUpdate;
}

void from_json(const Json& j, BasicPreferences& p) {
    p.autoUpdate = requiredField<bool>(j, "autoUpdate");
}

} // namespace velmora
