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

    // For connecting, and for an answer to a command that declares no wait of its own.
    static constexpr int kDefaultTimeoutMs = 5000;

    // Absent when no agent is listening.
    static std::optional<Answer> request(const QStringList& args, int timeoutMs = kDefaultTimeoutMs);

    // Runs a command for the user: prints JSON on success, one line on standard error otherwise. A
    // module's command is waited for as long as the agent says it may take (an administrator prompt).
    static int run(const QStringList& args);

    // One line from standard input, not echoed when it is a terminal (prompt shown there); none when
    // there is no line or it is empty.
    static std::optional<QString> readSecret(const char* prompt);

private:
    static int timeoutFor(const QString& command);
};

} // namespace velmora
