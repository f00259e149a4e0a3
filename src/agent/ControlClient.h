#pragma once

#include "core/JsonCodec.h"

#include <QStringList>
#include <optional>

namespace velmora {

// The command line's end: sends one request to the running agent and waits for its reply.
class ControlClient {
public:
    struct Answer {
        bool ok = false;
        Json result;
        QString error;
    };

    // Absent when no agent is listening.
    static std::optional<Answer> request(const QStringList& args, int timeoutMs = 5000);

    // Runs a command for the user: prints JSON on success, one line on standard error otherwise.
    static int run(const QStringList& args);
};

} // namespace velmora
