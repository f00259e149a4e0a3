#pragma once

#include "core/JsonCodec.h"

#include <QString>

namespace velmora {

// The answer to one command-line request: JSON on success, else a one-line reason and no change.
struct ControlReply {
    bool ok = true;
    Json result;
    QString error;

    static ControlReply success(Json result) { return {true, std::move(result), {}}; }
    static ControlReply failure(QString error) { return {false, nullptr, std::move(error)}; }
};

} // namespace velmora
