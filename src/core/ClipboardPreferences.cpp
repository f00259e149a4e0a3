#include "core/ClipboardPreferences.h"

namespace velmora {

void to_json(Json& j, const ClipboardPreferences& p) {
    j = Json::object();
    j["retention"] = p.retention;
    j["blacklistedAppURLs"] = p.blacklistedAppURLs;
}

void from_json(const Json& j, ClipboardPreferences& p) {
    p.retention = requiredInteger<int>(j, "retention");
    p.blacklistedAppURLs = requiredField<std::vector<QString>>(j, "blacklistedAppURLs");
}

} // namespace velmora
