#include "core/JsonCodec.h"

namespace velmora {

std::string decodeCase(const Json& j) {
    if (!j.is_object() || j.size() != 1 || !j.begin().value().is_object() || !j.begin().value().empty())
        throw DecodeError("expected an enumeration case like {\"Case\": {}}, got " + j.dump());
    return j.begin().key();
}

} // namespace velmora
