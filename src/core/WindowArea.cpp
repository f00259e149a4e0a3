#include "core/WindowArea.h"

namespace velmora {

void to_json(Json& j, const WindowArea& a) {
    j = Json::object();
    j["id"] = a.id;
    j["name"] = a.name;
    j["x"] = a.x;
    j["y"] = a.y;
    j["w"] = a.w;
    j["h"] = a.h;
    j["availableOnMacbookScreen"] = a.availableOnMacbookScreen;
    j["availableOnWideScreen"] = a.availableOnWideScreen;
    j["availableOnUltrawideScreen"] = a.availableOnUltrawideScreen;
    j["availableOnSuperUltrawideScreen"] = a.availableOnSuperUltrawideScreen;
    j["availableOnVerticalScreen"] = a.availableOnVerticalScreen;
    putOptionalMember(j, "keyboardShortcut", a.keyboardShortcut);
}

void from_json(const Json& j, WindowArea& a) {
    a.id = requiredField<QUuid>(j, "id");
    a.name = requiredField<QString>(j, "name");
    a.x = requiredField<QString>(j, "x");
    a.y = requiredField<QString>(j, "y");
    a.w = requiredField<QString>(j, "w");
    a.h = requiredField<QString>(j, "h");
    a.availableOnMacbookScreen = requiredField<bool>(j, "availableOnMacbookScreen");
    a.availableOnWideScreen = requiredField<bool>(j, "availableOnWideScreen");
    a.availableOnUltrawideScreen = requiredField<bool>(j, "availableOnUltrawideScreen");
    a.availableOnSuperUltrawideScreen = requiredField<bool>(j, "availableOnSuperUltrawideScreen");
    a.availableOnVerticalScreen = requiredField<bool>(j, "availableOnVerticalScreen");
    a.keyboardShortcut = optionalMember<KeyboardShortcut>(j, "keyboardShortcut");
}

} // namespace velmora
